#pragma once

#include <torva35/TORVA35.h>

namespace TORVA35::bench {

/// A test of so many multiple-choice questions with five answers and 40 objectives, as `LoadXML` reads it from a
/// generated file. rotation: see ExportShape; tests with different ones are versions of each other.
Ref<clsTORVATest> MakeTest(int questions, int rotation = 0);

/// An engine before `Merge`: `tests` versions ("A", "B", ...) and a form of exactly so many questions with five
/// labels each. With several tests one question of the form tells the versions apart, and the tests have one
/// question less.
Ref<clsTORVA> MakeEngine(int formQuestions, int tests);

/// Sets what a merge changes of its engine back to what it was.
void Rewind(clsTORVA& engine);

}  // namespace TORVA35::bench
