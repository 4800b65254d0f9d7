#pragma once

#include <string>
#include <vector>

#include "torva35/sheet/Page.h"
#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// The keys as comma-separated values after RFC 4180: the columns version, row, paper, id, kind, labels, key,
/// points and objectives, with a heading; labels and the marks of a key are apart by one blank.
std::string Csv(const Result& result);

/// All of the result but the LMF model, as docs/sheet.schema.json describes it.
std::string Json(const Result& result);

/// A file to write: its path below a folder, with "/", and its content.
struct OutputFile {
  std::string path;
  std::string content;
};

/// The layout and keys for a sheet reader: a folder for each version, and in it, if the sheet has several pages, a
/// folder for each page.
std::vector<OutputFile> ReaderFiles(const Result& result, const PageOptions& options = {});

}  // namespace TORVA35::sheet
