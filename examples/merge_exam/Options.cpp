#include "merge_exam/Options.h"

#include <CLI/CLI.hpp>
#include <map>

namespace merge_exam {

using namespace TORVA35;

namespace {

constexpr char kFooter[] = R"(
Example:
  merge_exam --objectives learning sample-test.xml

Exit code:
  0  all went well
  1  a step failed, or the library reported a failure
  2  the command line was wrong
  3  a file was refused
)";

}  // namespace

std::optional<int> ReadCommandLine(int argc, char** argv, Options& options) {
  CLI::App app("Reads tests from ExamView XML exports and prints them.", "merge_exam");
  app.footer(kFooter);
  app.get_formatter()->column_width(36);

  app.add_option("FILE", options.files, "ExamView XML exports")->required()->type_name("");
  app.add_flag("-q,--quiet", options.quiet, "Show no warnings; the library goes on as if they had been accepted");

  const auto reading = "Reading";
  app.add_flag("--odd-only", options.oddOnly, "Even-numbered questions use the letters of odd-numbered ones")
      ->group(reading);
  std::vector<Long> kinds;
  const std::map<std::string, Long> kindNames = {{"learning", TORVATestImportObjectivesLearning},
                                                 {"local", TORVATestImportObjectivesLocal},
                                                 {"state", TORVATestImportObjectivesState},
                                                 {"national", TORVATestImportObjectivesNational}};
  app.add_option("--objectives", kinds, "Objectives to read: learning, local, state, national; may be repeated")
      ->transform(CLI::CheckedTransformer(kindNames, CLI::ignore_case).description(""))
      ->take_all()
      ->allow_extra_args(false)
      ->type_name("KIND")
      ->group(reading);
  app.add_option("--state", options.state, "State whose objectives are read, as two letters")
      ->type_name("XX")
      ->group(reading);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kAllWell : kWrongUsage;
  }
  for (const Long kind : kinds) options.objectives |= kind;
  return std::nullopt;
}

}  // namespace merge_exam
