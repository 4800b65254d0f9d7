#include "merge_exam/Options.h"

#include <CLI/CLI.hpp>
#include <map>

namespace merge_exam {

using namespace TORVA35;

namespace {

constexpr char kDescription[] =
    "Reads a test, merges it into a bubble-sheet form that it builds from the options below, and prints the "
    "form,\n"
    "the answer key and the question order of each version.\n";

constexpr char kFooter[] = R"(
Examples:
  merge_exam --list --objectives learning sample-test.xml
  merge_exam sample-test.xml sample-test-b.xml sample-test-c.xml --columns 2 --name-grid 8 --html exam.html

Exit code:
  0  all went well
  1  a step failed, or the library reported a failure
  2  the command line was wrong
  3  a file was refused
)";

const std::map<std::string, Long> kObjectives = {{"learning", TORVATestImportObjectivesLearning},
                                                 {"local", TORVATestImportObjectivesLocal},
                                                 {"state", TORVATestImportObjectivesState},
                                                 {"national", TORVATestImportObjectivesNational}};
const std::map<std::string, VersionPlace> kPlaces = {
    {"front", VersionPlace::kFront}, {"back", VersionPlace::kBack}, {"none", VersionPlace::kNone}};

// One of the words, in any case.
template <class Value>
CLI::CheckedTransformer OneOf(const std::map<std::string, Value>& words) {
  CLI::CheckedTransformer check(words, CLI::ignore_case);
  check.description("");  // the words stand in the help text
  return check;
}

}  // namespace

std::optional<int> ReadCommandLine(int argc, char** argv, Options& options) {
  CLI::App app(kDescription, "merge_exam");
  app.footer(kFooter);
  app.get_formatter()->column_width(32);
  app.get_formatter()->label("REQUIRED", "");

  app.add_option("FILE", options.files,
                 "ExamView XML exports, or .lmf files; the first is the test, the others are its versions")
      ->required()
      ->type_name("");
  app.add_flag("-l,--list", options.listOnly, "Print the tests, and merge nothing");
  bool verbose = true;
  auto* quiet = app.add_flag("-q,--quiet", options.quiet,
                             "Show no dialogs, but those of the version checks; warnings count as accepted");
  app.add_flag("--verbose", verbose, "Show all dialogs (default)")->excludes(quiet);

  std::vector<Long> kinds;
  std::optional<VersionPlace> place;
  std::vector<std::string> labels;
  const auto group = [](CLI::Option* option, const char* type, const char* name) {
    return option->type_name(type)->group(name);
  };
  const auto count = [&](const char* name, Long& value, Long most, const char* help) {
    return app.add_option(name, value, help)->check(CLI::Range(1, most).description(""));
  };

  const char* const reading = "Reading";
  app.add_flag("--odd-only", options.oddOnly, "Even-numbered questions use the letters of odd-numbered ones")
      ->group(reading);
  group(app.add_option("--objectives", kinds, "Objectives to read: learning, local, state, national; repeatable")
            ->transform(OneOf(kObjectives))
            ->take_all()
            ->allow_extra_args(false),
        "KIND", reading);
  group(app.add_option("--state", options.state, "State whose objectives are read, as two letters"), "XX",
        reading);
  group(count("--max-questions", options.maxQuestions, 32767, "Keep no more than the first N questions"), "N",
        reading);

  const char* const form = "Form";
  group(count("--questions", options.form.questions, 32000, "Graded questions (default: those of the test)"), "N",
        form);
  group(count("--answers", options.form.answers, 31, "Answers of each (default: as many as needed)"), "N", form);
  group(count("--columns", options.form.columns, 32000, "Fields to split them over (default: one for 25)"), "N",
        form);
  group(count("--name-grid", options.form.nameGrid, 30, "Letters of a name grid (default: none)"), "N", form);
  group(app.add_option("--version-field", place,
                       "Field that tells versions apart: front, back, none (default: front with several files)")
            ->transform(OneOf(kPlaces)),
        "PLACE", form);
  group(app.add_option("--version-labels", labels, "Its labels, as A,B,C (default: versions of the files)")
            ->delimiter(',')
            ->allow_extra_args(false),
        "LABELS", form);

  const char* const result = "Result";
  group(app.add_option("--save", options.saveAs, "Write the merged test to an LMF file"), "FILE", result);
  auto* html =
      group(app.add_option("--html", options.html, "Write the merged form as an HTML page"), "FILE", result);
  app.add_flag("--html-key", options.htmlKey, "Fill the answer key in on that page from the start")
      ->needs(html)
      ->group(result);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kAllWell : kWrongUsage;
  }
  for (const Long kind : kinds) options.objectives |= kind;
  options.form.version = place.value_or(options.files.size() > 1 ? VersionPlace::kFront : VersionPlace::kNone);
  for (const std::string& label : labels) options.form.versionLabels.push_back(FromUtf8(label));
  return std::nullopt;
}

}  // namespace merge_exam
