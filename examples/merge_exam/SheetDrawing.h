#pragma once

#include <string>
#include <vector>

#include <torva35/TORVA35.h>

namespace merge_exam {

/// A text as content or attribute of a page that is HTML and XML at once.
std::string Escaped(TORVA35::StringView text);

/// Draws the fields of a merged form as bubble sheets: one SVG element for each sheet, each small enough for a
/// page of A4 or Letter. The bubbles of the answer key have the class "key".
std::vector<std::string> DrawSheets(const TORVA35::clsTORVA& oEngine);

}  // namespace merge_exam
