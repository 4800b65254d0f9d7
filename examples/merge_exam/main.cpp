// Shows the whole road of a host, in its order: an error object for the engine, tests loaded from files, clean-up,
// version checks, a form, the merge, and what to read then.

#include <clocale>
#include <exception>
#include <filesystem>
#include <iostream>

#include <torva35/TORVA35.h>
#include "merge_exam/ConsoleErrorObject.h"
#include "merge_exam/FileRefusal.h"
#include "merge_exam/Form.h"
#include "merge_exam/HtmlPage.h"
#include "merge_exam/Options.h"
#include "merge_exam/Printing.h"

using namespace merge_exam;
using namespace TORVA35;

namespace {

FileKind KindOf(const std::filesystem::path& file) {
  return EqualNoCase(FromUtf8(file.extension().string()), u".lmf") ? FileKind::kLmf : FileKind::kExamView;
}

// The test of a file, or nothing when the file was refused.
Ref<clsTORVATest> LoadTest(const std::string& file, const Options& options) {
  auto oTest = New<clsTORVATest>();
  bool loaded = false, cancelled = false;
  if (KindOf(file) == FileKind::kLmf) {
    loaded = oTest->LoadLMF(FromUtf8(file));
    // The library takes the title from paths with "\" only.
    if (oTest->Title().empty()) oTest->Title(FromUtf8(std::filesystem::path(file).stem().string()));
  } else {
    oTest->ImportObjectives(options.objectives);
    oTest->StateAbbreviation(FromUtf8(options.state));
    loaded = oTest->LoadXML(FromUtf8(file), options.oddOnly, cancelled, !options.quiet);
  }
  if (loaded) return oTest;
  std::cerr << "merge_exam: " << file << ": "
            << (cancelled ? "not loaded, as you chose" : WhyRefused(file, KindOf(file))) << '\n';
  return nullptr;
}

// Prints each test as it is loaded. Returns False when a file was refused.
bool LoadTests(const Options& options, clsTORVATests& tests) {
  bool all = true;
  for (const std::string& file : options.files) {
    if (const auto oTest = LoadTest(file, options)) {
      tests.Add(oTest);
      PrintTest(file, *oTest);
    } else {
      all = false;
    }
  }
  return all;
}

int Failed(const std::string& step, bool silenced = false) {
  std::cerr << "merge_exam: " << step << " failed" << (silenced ? "; without --quiet a dialog says why" : "")
            << '\n';
  return kStepFailed;
}

// Merges the loaded tests, and prints and writes what came of it.
int MergeTests(const Options& options, clsTORVA& oEngine) {
  if (!oEngine.RemoveInvalid(options.maxQuestions)) return Failed("clean-up", options.quiet);
  if (!oEngine.ValidTestVersions()) return Failed("the check of the versions");

  const Form form = BuildForm(options.form, *oEngine.Tests());
  oEngine.TemplateIn(form.oTemplate);
  oEngine.TemplateOut(New<clsTemplate>());  // there must be one; the merge puts its own here
  oEngine.SequenceQuestion(form.sequenceQuestion);
  if (!oEngine.Merge()) return Failed("the merge", options.quiet);

  PrintForm(oEngine);
  PrintAnswerKey(oEngine);
  PrintVersions(oEngine);
  if (!options.saveAs.empty()) {
    oEngine.MIVLMF()->Description(oEngine.Tests()->Item(1)->Title());
    if (!oEngine.MIVLMF()->Save(FromUtf8(options.saveAs))) return Failed("writing " + options.saveAs);
  }
  if (!options.html.empty() && !WriteHtmlPage(oEngine, options.htmlKey, options.html)) {
    return Failed("writing " + options.html);
  }
  return kAllWell;
}

int Run(const Options& options) {
  auto oErr = New<ConsoleErrorObject>();
  auto oEngine = New<clsTORVA>();
  oEngine->SetError(oErr);
  oEngine->Verbose(!options.quiet);

  if (!LoadTests(options, *oEngine->Tests())) return kFileRefused;
  const int result = options.listOnly ? kAllWell : MergeTests(options, *oEngine);

  if (!std::cout.flush()) return Failed("writing to standard output");
  return result == kAllWell && oErr->FailureCount() > 0 ? kStepFailed : result;
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
