#include "Options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "Manual.h"

namespace tool {

using namespace TORVA35;

namespace {

constexpr char kDescription[] =
    "Makes a bubble sheet of a printed multiple-choice test and its versions: the sheet for the students, the key "
    "of "
    "each\nversion, and whatever would make marks count wrong.\n";

constexpr char kFooter[] = R"(
Examples:
  torva35 unit-3-a.xml unit-3-b.xml --html sheet.html --answers answers.html
  torva35 unit-3-a.xml --csv - --quiet

What is found goes to standard error, a line for each finding. Where one is an error, marks would be graded wrong: sheet,
CSV, LMF file and reader's folder are then not written unless --force is given; the teacher's page and the JSON file are.

Exit status:
  0  done
  1  something failed
  2  the command line was wrong
  3  a file was refused, or a question was answered with Cancel
  4  a finding is an error
)";

const std::map<std::string, Long> kObjectives = {{"learning", TORVATestImportObjectivesLearning},
                                                 {"local", TORVATestImportObjectivesLocal},
                                                 {"state", TORVATestImportObjectivesState},
                                                 {"national", TORVATestImportObjectivesNational}};

// One of the words, in any case.
CLI::CheckedTransformer OneOf(const std::map<std::string, Long>& words) {
  CLI::CheckedTransformer check(words, CLI::ignore_case);
  check.description("");  // the words stand in the help text
  return check;
}

// The options, and what is read into variables of its own.
class CommandLine {
 public:
  explicit CommandLine(Options& options) : options_(options) {
    app_.footer(kFooter);
    app_.get_formatter()->column_width(30);
    app_.get_formatter()->label("REQUIRED", "");
    app_.add_option("FILE", options_.files,
                    "ExamView XML exports or LMF files; the first is the test, the others are its versions; - is "
                    "standard input")
        ->required()
        ->type_name("");
    app_.set_version_flag("--version", "torva35 " TORVA35_VERSION, "Print the version");
    AddReading();
    AddSheet();
    AddOutput();
    AddManual();
  }

  std::optional<int> Read(int argc, char** argv) {
    try {
      app_.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return app_.exit(error) == 0 ? kDone : kWrongUsage;
    }
    for (const Long kind : objectives_) options_.sheet.objectives |= kind;
    return std::nullopt;
  }

 private:
  CLI::Option* Add(const char* name, std::string& value, const char* type, const char* group, const char* help) {
    return app_.add_option(name, value, help)->type_name(type)->group(group);
  }
  template <class Number>
  void AddCount(const char* name, Number& value, Number most, const char* group, const char* help) {
    app_.add_option(name, value, help)
        ->check(CLI::Range(Number{1}, most).description(""))
        ->type_name("N")
        ->group(group);
  }

  void AddReading() {
    const char* const group = "Reading";
    app_.add_flag("-l,--list", options_.list, "Print all questions as read, and make no sheet")->group(group);
    app_.add_flag("--odd-only", options_.sheet.oddOnly,
                  "Even-numbered questions have the letters of odd-numbered ones")
        ->group(group);
    app_.add_option("--objectives", objectives_,
                    "Objectives to read: learning, local, state, national; repeatable")
        ->transform(OneOf(kObjectives))
        ->take_all()
        ->allow_extra_args(false)
        ->type_name("KIND")
        ->group(group);
    Add("--state", options_.sheet.state, "XX", group, "State whose objectives are read, as two letters");
    AddCount("--max-questions", options_.sheet.maxQuestions, 32767L, group,
             "Keep no more than the first N questions");
  }

  void AddSheet() {
    const char* const group = "Sheet";
    Add("--title", options_.sheet.title, "TEXT", group, "Title (default: that of the first file)");
    app_.add_option("--version-names", options_.sheet.versionNames,
                    "Names of the versions, as A,B,C (default: those of the files)")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("NAMES")
        ->group(group);
    app_.add_flag("--renumber", options_.sheet.renumber,
                  "Number the rows from 1 without gaps, and print a table of old and new numbers")
        ->group(group);
    AddCount("--id-digits", options_.page.idDigits, 12, group,
             "Digits of a grid for the student number (default: none)");
    AddCount("--name-letters", options_.page.nameLetters, 26, group,
             "Letters of a grid for the name (default: none)");
    Add("--mark-version", options_.markVersion, "NAME", group,
        "Print the sheet of this version, with its bubble filled in (default: students fill it in)");
    Add("--language", options_.page.language, "LANGUAGE", group,
        "Words on the pages: en, de, fr, es (default: en)")
        ->check(CLI::IsMember({"en", "de", "fr", "es"}).description(""));
  }

  void AddOutput() {
    const char* const group = "Output; - is standard output";
    Add("--html", options_.html, "FILE", group, "Write the students' sheet as a page to print, without the key");
    Add("--answers", options_.answers, "FILE", group, "Write the teacher's page, with keys and findings");
    Add("--csv", options_.csv, "FILE", group, "Write the keys as comma-separated values");
    Add("--json", options_.json, "FILE", group, "Write all of it as JSON");
    Add("--save", options_.save, "FILE", group, "Write an LMF file");
    Add("--reader", options_.reader, "FOLDER", group,
        "Write layout and keys for a sheet reader, a folder for each version");
    app_.add_flag("-q,--quiet", options_.quiet, "Print errors only; questions count as answered with OK")
        ->group(group);
    app_.add_flag("--strict", options_.strict, "Warnings are errors")->group(group);
    app_.add_flag("--force", options_.force, "Write what would grade wrong, too")->group(group);
  }

  // For the build: not in the help.
  void AddManual() {
    app_.add_flag_callback("--print-man-page", [this] { Print(ManPage(app_)); })->group("")->trigger_on_parse();
    app_.add_flag_callback("--print-completion", [this] { Print(Completion(app_)); })
        ->group("")
        ->trigger_on_parse();
  }
  [[noreturn]] static void Print(const std::string& text) {
    std::cout << text;
    throw CLI::Success();
  }

  Options& options_;
  CLI::App app_{kDescription, "torva35"};
  std::vector<Long> objectives_;
};

}  // namespace

std::optional<int> ReadCommandLine(int argc, char** argv, Options& options) {
  return CommandLine(options).Read(argc, argv);
}

}  // namespace tool
