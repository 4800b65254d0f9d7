#include <thread>

#include "tests/LmfText.h"
#include "tests/TempFile.h"
#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

// Loads, merges, and fails now and then, all in one thread; gives what the thread's own error object was told.
class Threads : public MergeTest {
 protected:
  static std::string Work(const String& path, Long rounds) {
    const auto own = New<Recorder>();
    String output;
    for (Long round = 0; round < rounds; ++round) {
      const auto torva = New<clsTORVA>();
      torva->SetError(own);
      const auto test = New<clsTORVATest>();
      test->LoadXML(path);
      torva->Tests()->Add(test);
      torva->RemoveInvalid();
      torva->TemplateIn(Form({{Field(4, true, {u"1", u"2", u"3"})}}));
      torva->TemplateOut(New<clsTemplate>());
      if (!torva->Merge()) return "not merged";
      if (round == 0) output = LmfText(*torva->MIVLMF());
      if (output != LmfText(*torva->MIVLMF())) return "another output";
      torva->Tests()->Remove(round + 2);  // a failure
    }
    return std::to_string(own->failures.size()) + " failures, " + std::to_string(own->dialogs.size()) + " dialogs";
  }
};

TEST_F(Threads, DoNotSeeEachOther) {
  std::string xml = "<examview>";
  for (const char* id : {"1", "2", "3"}) {
    xml += "<question type='mc' question-id='" + std::string(id) +
           "'><choices><a/><b/></choices><answer>B</answer></question>";
  }
  const TempFile file(xml + "<question type='es'/></examview>");
  constexpr Long kRounds[] = {20, 30, 40, 50};
  std::string told[4];
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&, i, path = file.Path()] { told[i] = Work(path, kRounds[i]); });
    }
  }
  for (int i = 0; i < 4; ++i) {
    const std::string count = std::to_string(kRounds[i]);
    EXPECT_EQ(told[i], count + " failures, " + count + " dialogs");
  }
}

}  // namespace
}  // namespace TORVA35
