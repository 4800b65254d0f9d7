#pragma once

#include <string>

namespace TORVA35::bench {

/// What a generated ExamView file holds. The same fields give the same bytes.
struct ExportShape {
  int questions = 50;
  /// Question 1 stands at position `rotation` + 1, and so on around: equal tests of another order are versions.
  int rotation = 0;
  /// How many objectives there are in the file; each question names one of them.
  int objectives = 40;
  char version = 'A';
};

/// A multiple-choice test of five answers a question, about 0.9 kB each: rich text, key, points and the other
/// properties that an export carries, after a head of preferences that nobody reads.
std::string MakeExport(const ExportShape& shape);

/// Writes it to a file; ends the process when that fails.
void WriteExport(const std::string& path, const ExportShape& shape);

}  // namespace TORVA35::bench
