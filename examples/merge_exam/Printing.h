#pragma once

#include "TORVA35.h"

namespace merge_exam {

/// Prints a test to standard output: title, version, scales, and a table of its questions.
void PrintTest(const TORVA35::clsTORVATest& oTest);

}  // namespace merge_exam
