#pragma once

#include <ostream>

#include <torva35/sheet/Sheet.h>

namespace tool {

/// The questions of each file as they were read.
void PrintQuestions(std::ostream& out, const TORVA35::sheet::Result& result);

/// The rows of the sheet, and the key of each version.
void PrintKeys(std::ostream& out, const TORVA35::sheet::Result& result);

}  // namespace tool
