// Any bytes as an ExamView file.

#include "fuzz/TestReading.h"

using namespace TORVA35;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto host = fuzz::FreshHost();
  const fuzz::InputFile file({reinterpret_cast<const char*>(data), size});
  const auto test = New<clsTORVATest>();
  test->ImportObjectives(TORVATestImportObjectivesLearning | TORVATestImportObjectivesLocal |
                         TORVATestImportObjectivesState | TORVATestImportObjectivesNational);
  test->StateAbbreviation(u"tx");
  bool cancelled = false;
  const bool loaded = test->LoadXML(file.Path(), size % 2 == 1, cancelled);
  fuzz::Require(!cancelled, "nobody has cancelled");
  fuzz::Require(loaded == (test->Questions()->Count() > 0 && !host->tooMuchText),
                "a load succeeds when it brings questions, and all that it is to bring");
  fuzz::Require(test->Source() == TORVATestSourceTypeExamView, "a test from ExamView");
  fuzz::ReadTest(test, static_cast<Long>(size % 8));
  return 0;
}
