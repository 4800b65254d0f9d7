// The program torva35: reads files, lets the library make a sheet of them, and prints and writes what came of it.
// No rule about a test stands here.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <system_error>
#include <utility>

#include <torva35/TORVA35.h>
#include <torva35/sheet/Export.h>

#include "Console.h"
#include "Options.h"
#include "Outputs.h"
#include "Stop.h"
#include "System.h"
#include "Tables.h"

using namespace tool;
using namespace TORVA35;

namespace {

constexpr char kStandard[] = "-";

// Standard input as a file, which is what the library reads.
class InputCopy {
 public:
  InputCopy() : path_(MakeTemporaryFile()) {
    if (path_.empty()) throw Outputs::Trouble{"the copy of standard input: cannot be written"};
    std::ofstream copy(PathOf(path_), std::ios::binary);
    char part[1 << 16];
    for (std::size_t count; (count = std::fread(part, 1, sizeof part, stdin)) > 0;) {
      copy.write(part, static_cast<std::streamsize>(count));
    }
    const std::string unread = std::ferror(stdin) != 0 ? std::strerror(errno) : "";
    copy.close();
    if (copy.good() && unread.empty()) return;
    Remove();
    throw Outputs::Trouble{unread.empty() ? path_ + ": cannot be written" : "standard input: " + unread};
  }
  ~InputCopy() { Remove(); }
  InputCopy(const InputCopy&) = delete;
  InputCopy& operator=(const InputCopy&) = delete;

  const std::string& Path() const { return path_; }

 private:
  void Remove() const {
    std::error_code error;
    std::filesystem::remove(PathOf(path_), error);
  }

  std::string path_;
};

class Run {
 public:
  explicit Run(const Options& options) : options_(options), console_(options.quiet, options.strict) {}

  ExitCode All() {
    if (!PathsAreGood()) return kWrongUsage;
    for (const std::string& file : options_.files) {
      if (file != kStandard) outputs_.Protect(file);
    }
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
    Write(result, withErrors);
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
    const bool needsName = options_.save == kStandard || options_.reader == kStandard;
    if (needsName) Console::Say("an LMF file or a folder cannot be written to standard output");
    return !inputTwice && !outputTwice && !needsName;
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
    options.progress = [this](const sheet::Progress& progress) {
      CheckStop();
      console_.Show(progress);
    };
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
    std::string withheld;
    const auto add = [&](const std::string& path, bool wanted, const auto& content) {
      if (path.empty()) return;
      if (wanted) {
        outputs_.Add(path, content());
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
      outputs_.Add(options_.save, [&](const std::string& path) { return result.lmf->Save(FromUtf8(path)); });
    } else if (!options_.save.empty()) {
      withheld += (withheld.empty() ? "" : ", ") + options_.save;
    }
    if (!options_.reader.empty() && grades) {
      std::vector<sheet::OutputFile> files = sheet::ReaderFiles(result, options_.page);
      CheckReaderFolder(files);
      for (sheet::OutputFile& file : files) {
        outputs_.Add(options_.reader + "/" + file.path, std::move(file.content));
      }
    } else if (!options_.reader.empty()) {
      withheld += (withheld.empty() ? "" : ", ") + options_.reader;
    }
    if (!withheld.empty()) Console::Say(withheld + ": not written, since " + WhyWithheld(result));
    outputs_.Write();
  }

  static std::string WhyWithheld(const sheet::Result& result) {
    if (result.status != sheet::Status::kDone) return "there is no sheet";
    return std::string(result.Has(sheet::Severity::kError) ? "marks would be graded wrong"
                                                           : "there are warnings, and --strict") +
           "; --force writes it all the same";
  }

  // A folder that a version of an earlier sheet has left there would have its scans graded with the wrong key.
  void CheckReaderFolder(const std::vector<sheet::OutputFile>& files) const {
    namespace fs = std::filesystem;
    const fs::path folder = PathOf(options_.reader);
    std::error_code error;
    if (!fs::exists(folder, error)) return;
    if (!fs::is_directory(folder, error)) throw Outputs::Trouble{options_.reader + ": is no folder"};
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder, error)) {
      const fs::path path = entry.path().lexically_relative(folder);
      const bool layout = entry.path().filename() == "template.json";
      const bool ours = std::any_of(files.begin(), files.end(),
                                    [&](const sheet::OutputFile& file) { return PathOf(file.path) == path; });
      if (!layout || ours) continue;
      throw Outputs::Trouble{Utf8Of(entry.path()) +
                             ": is of another sheet; remove its folder, or name another one"};
    }
  }

  const Options& options_;
  Console console_;
  std::optional<InputCopy> standardInput_;
  Outputs outputs_;
};

ExitCode RunAll(const Options& options) {
  try {
    return Run(options).All();
  } catch (const Outputs::Trouble& trouble) {
    Console::Say(trouble.text);
  } catch (const std::exception& error) {
    Console::Say(error.what());
  }
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  PrepareStreams();
  PutArgumentsInUtf8(argc, argv);
  Options options;
  if (const auto exitCode = ReadCommandLine(argc, argv, options)) return std::cout.flush() ? *exitCode : kFailed;
  CatchStops();
  const ExitCode exitCode = RunAll(options);
  PassStop();
  return exitCode;
}
