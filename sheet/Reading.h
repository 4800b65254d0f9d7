#pragma once

#include <string>
#include <vector>

#include "Findings.h"
#include "Recorder.h"
#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// A version as it came from a file, with what the model of the test has no place for. Entry i of each list
/// belongs to the test's question at position i + 1.
struct Source {
  Ref<clsTORVATest> test;
  int file = 0;
  std::string name;
  std::vector<int> questions;  ///< positions in `File::questions`
  std::vector<long> papers;    ///< numbers on the paper
  /// Labels of the rows, where the file gives them; empty when the scales of the test do.
  std::vector<std::vector<String>> labels;
};

/// What reading a file has come to.
enum class Reading { kDone, kRefused, kCancelled, kFailed };

/// Reads a file into `file`, and appends the versions that it holds. Anything but `kDone` comes with a finding.
/// position: of the file in the result.
Reading ReadFile(const Input& input, int position, const Options& options, Recorder& recorder, File& file,
                 std::vector<Source>& sources, Findings& findings);

/// "question 5", or with its ID: "question 5 (ID 170)".
std::string Called(const Question& question);

/// Points as the file says them: a test holds 2.3 as the nearest of its short numbers, which is 2.29999995.
double ExactPoints(Single points);

/// A test question as plain data.
Question PlainQuestion(const clsTORVATestQuestion& oQuestion);

}  // namespace TORVA35::sheet
