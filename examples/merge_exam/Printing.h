#pragma once

#include <string>

#include <torva35/TORVA35.h>

namespace merge_exam {

/// The texts of the objectives that a question belongs to.
TORVA35::String ObjectivesOf(const TORVA35::clsLmfQuestion& oQuestion,
                             const TORVA35::clsLmfObjectives& objectives);

/// Prints a test to standard output: title, version, scales, and a table of its questions.
void PrintTest(const std::string& file, const TORVA35::clsTORVATest& oTest);

/// Prints what a merge has made: the questions of the form with their labels, the answer key, and with several
/// versions which question each of them has at each place.
void PrintForm(const TORVA35::clsTORVA& oEngine);
void PrintAnswerKey(const TORVA35::clsTORVA& oEngine);
void PrintVersions(const TORVA35::clsTORVA& oEngine);

}  // namespace merge_exam
