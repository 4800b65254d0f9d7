#include "Options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include <torva35/TORVA35.h>

#include "Manual.h"

namespace tool {

using namespace TORVA35;

namespace {

constexpr char kDescription[] =
    R"(Makes a bubble sheet of a printed multiple-choice test and its versions: the sheet
for the students, the key of each version, and whatever would make marks count wrong.
)";

constexpr char kFooter[] = R"(Examples:
  torva35 unit-a.xml unit-b.xml --html sheet.html --answers keys.html
  torva35 unit-a.xml --quiet --csv -

Findings:
  What is found goes to standard error, a line for each finding. Where
  one is an error, marks would be graded wrong: the students' sheet, the
  CSV and LMF files and the reader's folder are then not written unless
  --force is given; the teacher's page and the JSON file are. A run that
  fails writes no file.

Exit status:
  0  done
  1  something failed, such as writing a file
  2  the command line was wrong
  3  a file was refused, or a question was answered with Cancel
  4  a finding is an error
)";

const std::map<std::string, Long> kObjectives = {{"learning", TORVATestImportObjectivesLearning},
                                                 {"local", TORVATestImportObjectivesLocal},
                                                 {"state", TORVATestImportObjectivesState},
                                                 {"national", TORVATestImportObjectivesNational}};

constexpr char kLanguages[] = "en de fr es";

// The library takes names of files in UTF-8.
std::string NameTrouble(const std::string& name) {
  if (name.empty()) return "the name of the file is empty";
  return ToUtf8(FromUtf8(name)) == name ? "" : "the name of the file is not UTF-8: " + name;
}

std::string StateTrouble(const std::string& state) {
  const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  return state.size() == 2 && isLetter(state[0]) && isLetter(state[1]) ? "" : "a state has two letters: " + state;
}

// The options, and what is read into variables of its own.
class CommandLine {
 public:
  explicit CommandLine(Options& options) : options_(options) {
    app_.footer(kFooter);
    app_.get_formatter()->column_width(27);
    app_.get_formatter()->label("REQUIRED", "");
    app_.set_help_flag("-h,--help", "Print this and exit");
    app_.set_version_flag("--version", "torva35 " TORVA35_VERSION, "Print the version and exit");
    app_.add_option("FILE", options_.files,
                    "ExamView XML exports or LMF files: the test, then its versions; - is standard input")
        ->required()
        ->type_name("")
        ->check(NameTrouble, "");
    AddReading();
    AddSheet();
    AddOutput();
    AddManual();
  }

  std::optional<int> Read(int argc, char** argv) {
    try {
      app_.parse(argc, argv);
      for (const std::string* path : paths_) {
        if (options_.list && !path->empty()) throw CLI::ExcludesError("--list", *path);
      }
    } catch (const CLI::ParseError& error) {
      return app_.exit(error) == 0 ? kDone : kWrongUsage;
    }
    for (const std::string& kind : objectives_) options_.sheet.objectives |= kObjectives.at(kind);
    if (!versionNames_.empty()) {
      for (const String& name : Split(FromUtf8(versionNames_), u",")) {
        options_.sheet.versionNames.push_back(ToUtf8(name));
      }
    }
    return std::nullopt;
  }

 private:
  CLI::Option* Add(const char* name, std::string& value, const char* type, const char* group, const char* help) {
    return app_.add_option(name, value, help)->type_name(type)->group(group);
  }
  void AddPath(const char* name, std::string& path, const char* type, const char* help) {
    Add(name, path, type, kOutput, help)->check(NameTrouble, "");
    paths_.push_back(&path);
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
        ->transform(CLI::IsMember(kObjectives, CLI::ignore_case).description(""))
        ->take_all()
        ->allow_extra_args(false)
        ->type_name("KIND")
        ->group(group);
    Add("--state", options_.sheet.state, "XX", group, "State whose objectives are read, as two letters")
        ->check(StateTrouble, "");
    AddCount("--max-questions", options_.sheet.maxQuestions, 32767L, group,
             "Keep no more than the first N questions");
  }

  void AddSheet() {
    const char* const group = "Sheet";
    Add("--title", options_.sheet.title, "TEXT", group, "Title (default: that of the first file)");
    Add("--version-names", versionNames_, "NAMES", group,
        "Names of the versions, as A,B,C (default: those of the files)");
    app_.add_flag("--renumber", options_.sheet.renumber,
                  "Number the rows from 1 without gaps; the sheet has a table of both numbers")
        ->group(group);
    AddCount("--id-digits", options_.page.idDigits, sheet::kMostIdDigits, group,
             "Digits of a grid for the student number (default: none)");
    AddCount("--name-letters", options_.page.nameLetters, sheet::kMostNameLetters, group,
             "Letters of a grid for the name (default: none)");
    Add("--mark-version", options_.markVersion, "NAME", group,
        "Print the sheet of this version, its bubble filled in (default: students do)");
    Add("--language", options_.page.language, "LANGUAGE", group,
        "Words on the pages: en, de, fr, es (default: en)")
        ->check(CLI::IsMember(CLI::detail::split(kLanguages, ' ')).description(""));
  }

  void AddOutput() {
    AddPath("--html", options_.html, "FILE", "Write the students' sheet, a page to print, without the key");
    AddPath("--answers", options_.answers, "FILE", "Write the teacher's page, with keys and findings");
    AddPath("--csv", options_.csv, "FILE", "Write the keys as comma-separated values");
    AddPath("--json", options_.json, "FILE", "Write all of it as JSON");
    AddPath("--save", options_.save, "FILE", "Write an LMF file");
    AddPath("--reader", options_.reader, "FOLDER", "Write layout and keys for a sheet reader");
    app_.add_flag("-q,--quiet", options_.quiet,
                  "Of what is found print errors only; questions count as answered with OK")
        ->group(kOutput);
    app_.add_flag("--strict", options_.strict, "Warnings are errors")->group(kOutput);
    app_.add_flag("--force", options_.force, "Write what would grade wrong, too")->group(kOutput);
  }

  // For the build: not in the help.
  void AddManual() {
    app_.add_flag_callback("--print-man-page", [this] { Print(ManPage(app_)); })->group("")->trigger_on_parse();
    app_.add_flag_callback("--print-completion", [this] { Print(Completion(app_, Words())); })
        ->group("")
        ->trigger_on_parse();
  }
  static std::map<std::string, std::string> Words() {
    std::string objectives;
    for (const auto& [word, kind] : kObjectives) objectives += (objectives.empty() ? "" : " ") + word;
    return {{"--language", kLanguages}, {"--objectives", objectives}};
  }
  [[noreturn]] static void Print(const std::string& text) {
    std::cout << text;
    throw CLI::Success();
  }

  static constexpr char kOutput[] = "Output; - is standard output";

  Options& options_;
  CLI::App app_{kDescription, "torva35"};
  std::vector<const std::string*> paths_;  // of the outputs
  std::vector<std::string> objectives_;
  std::string versionNames_;
};

}  // namespace

std::optional<int> ReadCommandLine(int argc, char** argv, Options& options) {
  return CommandLine(options).Read(argc, argv);
}

}  // namespace tool
