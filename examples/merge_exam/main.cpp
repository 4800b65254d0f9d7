// Shows the road of a host: an error object, tests loaded from files, and what a test holds.

#include <clocale>
#include <exception>
#include <iostream>

#include "TORVA35.h"
#include "merge_exam/ConsoleErrorObject.h"
#include "merge_exam/FileRefusal.h"
#include "merge_exam/Options.h"
#include "merge_exam/Printing.h"

using namespace merge_exam;
using namespace TORVA35;

namespace {

// The test of a file, or nothing when the file was refused.
Ref<clsTORVATest> LoadTest(const std::string& file, const Options& options) {
  auto oTest = New<clsTORVATest>();
  oTest->ImportObjectives(options.objectives);
  oTest->StateAbbreviation(FromUtf8(options.state));

  bool cancelled = false;
  if (oTest->LoadXML(FromUtf8(file), options.oddOnly, cancelled, !options.quiet)) return oTest;
  std::cerr << "merge_exam: " << file << ": "
            << (cancelled ? "not loaded, as you chose" : WhyRefused(file, FileKind::kExamView)) << '\n';
  return nullptr;
}

int Run(const Options& options) {
  const auto oErr = New<ConsoleErrorObject>();
  New<clsTORVATest>()->SetError(oErr);

  bool refused = false;
  for (const std::string& file : options.files) {
    const auto oTest = LoadTest(file, options);
    if (oTest) {
      std::cout << file << "\n\n";
      PrintTest(*oTest);
    }
    refused = refused || !oTest;
  }
  if (refused) return kFileRefused;
  return oErr->FailureCount() == 0 && std::cout.flush() ? kAllWell : kStepFailed;
}

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "C.UTF-8");  // for the width of characters in the terminal
  Options options;
  if (const auto exitCode = ReadCommandLine(argc, argv, options)) return *exitCode;
  try {
    return Run(options);
  } catch (const std::exception& error) {
    std::cerr << "merge_exam: " << error.what() << '\n';
    return kStepFailed;
  }
}
