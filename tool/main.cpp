// The program torva35: reads files, lets the library make a sheet of them, and prints and writes what came of it.
// No rule about a test stands here.

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>

#include <torva35/TORVA35.h>
#include <torva35/sheet/Export.h>

#include "Console.h"
#include "Options.h"
#include "Outputs.h"
#include "Tables.h"

using namespace tool;
using namespace TORVA35;

namespace {

constexpr char kStandard[] = "-";

// Standard input as a file, which is what the library reads.
class InputCopy {
 public:
  InputCopy() {
    static const std::string kFolder = std::filesystem::temp_directory_path().string();
    path_ = kFolder + "/torva35-XXXXXX";
    const int file = mkstemp(path_.data());
    if (file < 0) throw Outputs::Trouble{path_ + ": cannot be written"};
    FILE* copy = fdopen(file, "wb");
    char part[1 << 16];
    bool good = true;
    for (std::size_t count; (count = std::fread(part, 1, sizeof part, stdin)) > 0;) {
      good = std::fwrite(part, 1, count, copy) == count && good;
    }
    good = std::fclose(copy) == 0 && good;
    if (!good) throw Outputs::Trouble{path_ + ": cannot be written"};
  }
  ~InputCopy() { std::remove(path_.c_str()); }
  InputCopy(const InputCopy&) = delete;
  InputCopy& operator=(const InputCopy&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

class Run {
 public:
  explicit Run(const Options& options) : options_(options), console_(options.quiet) {}

  ExitCode All() {
    if (!PathsAreGood()) return kWrongUsage;
    const sheet::Result result = Make();
    console_.EndProgress();
    const bool withErrors = result.Has(options_.strict ? sheet::Severity::kWarning : sheet::Severity::kError);
    console_.Print(result);
    const bool done = result.status == sheet::Status::kDone;
    if (options_.list) {
      PrintQuestions(std::cout, result);
    } else if (done && !WritesToStandardOutput()) {
      PrintKeys(std::cout, result);
    }
    if (!options_.list) Write(result, withErrors);
    if (!std::cout.flush()) throw Outputs::Trouble{"standard output: cannot be written"};
    if (result.status == sheet::Status::kRefused || result.status == sheet::Status::kCancelled) return kRefused;
    if (std::any_of(result.findings.begin(), result.findings.end(),
                    [](const sheet::Finding& finding) { return finding.kind == "failure"; })) {
      return kFailed;
    }
    return withErrors || !done ? kErrors : kDone;
  }

 private:
  std::vector<std::string> OutputNames() const {
    std::vector<std::string> names;
    for (const std::string& name : {options_.html, options_.answers, options_.csv, options_.json, options_.save}) {
      if (!name.empty()) names.push_back(name);
    }
    return names;
  }

  bool WritesToStandardOutput() const {
    const std::vector<std::string> names = OutputNames();
    return std::find(names.begin(), names.end(), kStandard) != names.end();
  }

  bool PathsAreGood() const {
    const std::vector<std::string> names = OutputNames();
    const bool inputTwice = std::count(options_.files.begin(), options_.files.end(), kStandard) > 1;
    const bool outputTwice = std::count(names.begin(), names.end(), kStandard) > 1;
    if (inputTwice) Console::Say("standard input can be read once only");
    if (outputTwice) Console::Say("standard output can take one file only");
    if (options_.save == kStandard) Console::Say("an LMF file cannot be written to standard output");
    return !inputTwice && !outputTwice && options_.save != kStandard;
  }

  sheet::Result Make() {
    std::vector<sheet::Input> inputs;
    for (const std::string& file : options_.files) {
      if (file == kStandard) {
        standardInput_.emplace();
        inputs.push_back({standardInput_->Path(), "standard input"});
      } else {
        inputs.push_back({file, ""});
      }
    }
    sheet::Options options = options_.sheet;
    options.ask = [this](const sheet::Dialog& dialog) { return console_.Ask(dialog); };
    options.progress = [this](const sheet::Progress& progress) { console_.Show(progress); };
    return sheet::MakeSheet(inputs, options);
  }

  sheet::PageOptions StudentOptions(const sheet::Result& result) const {
    sheet::PageOptions page = options_.page;
    if (options_.markVersion.empty()) return page;
    const auto version =
        std::find_if(result.versions.begin(), result.versions.end(),
                     [&](const sheet::Version& each) { return each.name == options_.markVersion; });
    if (version == result.versions.end()) {
      throw Outputs::Trouble{"--mark-version: no version has the name \"" + options_.markVersion + '"'};
    }
    page.version = static_cast<int>(version - result.versions.begin()) + 1;
    return page;
  }

  // What grades is not written when it would grade wrong; what tells of it is.
  void Write(const sheet::Result& result, bool withErrors) {
    const bool done = result.status == sheet::Status::kDone;
    const bool grades = done && (!withErrors || options_.force);
    Outputs outputs;
    for (const std::string& file : options_.files) {
      if (file != kStandard) outputs.Protect(file);
    }
    std::string withheld;
    const auto add = [&](const std::string& path, bool wanted, const auto& content) {
      if (path.empty()) return;
      if (wanted) {
        outputs.Add(path, content());
      } else {
        withheld += (withheld.empty() ? "" : ", ") + path;
      }
    };
    add(options_.html, grades, [&] { return sheet::StudentPage(result, StudentOptions(result)); });
    add(options_.answers, done, [&] { return sheet::TeacherPage(result, options_.page); });
    add(options_.csv, grades, [&] { return sheet::Csv(result); });
    // Without a sheet there is no file, but a program that reads the output still learns why.
    add(options_.json, done || options_.json == kStandard, [&] { return sheet::Json(result); });
    if (!options_.save.empty() && grades) {
      outputs.Add(options_.save, [&](const std::string& path) { return result.lmf->Save(FromUtf8(path)); });
    } else if (!options_.save.empty()) {
      withheld += (withheld.empty() ? "" : ", ") + options_.save;
    }
    if (!options_.reader.empty() && grades) {
      if (std::filesystem::exists(options_.reader) && !std::filesystem::is_directory(options_.reader)) {
        throw Outputs::Trouble{options_.reader + ": is no folder"};
      }
      for (sheet::OutputFile& file : sheet::ReaderFiles(result, options_.page)) {
        outputs.Add(options_.reader + "/" + file.path, std::move(file.content));
      }
    } else if (!options_.reader.empty()) {
      withheld += (withheld.empty() ? "" : ", ") + options_.reader;
    }
    if (!withheld.empty()) {
      Console::Say(withheld +
                   (done ? ": not written, since marks would be graded wrong; --force writes it all the same"
                         : ": not written, since there is no sheet"));
    }
    outputs.Write();
  }

  const Options& options_;
  Console console_;
  std::optional<InputCopy> standardInput_;
};

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "C.UTF-8");  // for the width of characters in the terminal
  std::signal(SIGPIPE, SIG_IGN);        // a reader that goes away is a failed write, which is said
  Options options;
  if (const auto exitCode = ReadCommandLine(argc, argv, options)) return *exitCode;
  try {
    return Run(options).All();
  } catch (const Outputs::Trouble& trouble) {
    Console::Say(trouble.text);
  } catch (const std::exception& error) {
    Console::Say(error.what());
  }
  return kFailed;
}
