#pragma once

#include <optional>
#include <string>
#include <vector>

#include <torva35/TORVA35.h>
#include "merge_exam/Form.h"

namespace merge_exam {

/// What the program ends with.
enum ExitCode { kAllWell = 0, kStepFailed = 1, kWrongUsage = 2, kFileRefused = 3 };

/// What the command line asks for.
struct Options {
  std::vector<std::string> files;
  bool quiet = false;
  bool listOnly = false;

  bool oddOnly = false;
  TORVA35::Long objectives = TORVA35::TORVATestImportObjectivesNone;
  std::string state;

  TORVA35::Long maxQuestions = 0;
  FormOptions form;

  std::string saveAs;
  std::string html;
  bool htmlKey = false;
};

/// Reads the command line. Returns an exit code when the program is to end at once, as after --help.
std::optional<int> ReadCommandLine(int argc, char** argv, Options& options);

}  // namespace merge_exam
