#pragma once

#include <optional>
#include <string>
#include <vector>

#include <torva35/sheet/Page.h>
#include <torva35/sheet/Sheet.h>

namespace tool {

/// What the program ends with.
enum ExitCode {
  kDone = 0,
  kFailed = 1,      ///< something could not be done, such as writing a file
  kWrongUsage = 2,  ///< of the command line
  kRefused = 3,     ///< a file is no test that can be read, or the user cancelled
  kErrors = 4,      ///< a finding is an error: marks would be graded wrong, or there is no sheet
};

/// The command line. Paths are "-" for standard input and output, and empty for what is not wanted.
struct Options {
  std::vector<std::string> files;
  TORVA35::sheet::Options sheet;
  TORVA35::sheet::PageOptions page;
  std::string markVersion;  ///< name of the version that the student's sheet has as marked
  std::string html;         ///< the student's sheet
  std::string answers;      ///< the teacher's page
  std::string csv;
  std::string json;
  std::string save;    ///< the LMF file
  std::string reader;  ///< a folder
  bool list = false;
  bool quiet = false;
  bool strict = false;  ///< warnings are errors
  bool force = false;   ///< writes what would grade wrong
};

/// Fills the options, or gives the exit code when there is nothing more to do: the command line is wrong, or only
/// help was wanted.
std::optional<int> ReadCommandLine(int argc, char** argv, Options& options);

}  // namespace tool
