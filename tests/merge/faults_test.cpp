// Faults of a host's objects in the middle of a call, and threads side by side.

#include <thread>

#include "tests/LmfText.h"
#include "tests/TempFile.h"
#include "tests/merge/FaultyHost.h"
#include "tests/merge/MergeFixture.h"
#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"
#include "torva35/model/basPublic.h"

namespace TORVA35 {
namespace {

class MemberFaults : public MergeTest {
 protected:
  // A merge that ends in a dialog, at which the host faults; gives the failures and what a merge comes to then.
  std::string FaultInDialog(void (*cause)()) {
    return InChild([&] {
      engine->SetError(host);
      host->onDialog = cause;
      bool merged = false;
      for (int i = 0; i < 2; ++i) merged |= engine->Merge();
      host->onDialog = {};
      host->dialogs.clear();
      host->reply = 6;
      merged |= engine->Merge();  // the process lives on, and a dialog is a dialog again
      std::string text = (merged ? "merged " : "not merged ") + std::to_string(host->dialogs.size());
      TakeDialogs();
      return text + ", " + TakeFailures();
    });
  }
};

TEST_F(MemberFaults, AHostObjectThatFaultsInMerge) {
  EXPECT_EQ(FaultInDialog(faults::NullRead), "not merged 1, 10005 clsTORVA.Merge, 10005 clsTORVA.Merge");
  EXPECT_EQ(FaultInDialog(faults::EndlessRecursion), "not merged 1, 10237 clsTORVA.Merge, 10237 clsTORVA.Merge");
#if defined(__x86_64__)
  EXPECT_EQ(FaultInDialog(faults::IntegerDivision), "not merged 1, 10132 clsTORVA.Merge, 10132 clsTORVA.Merge");
#endif
}

// Merges two versions of a test, and makes a test of the outcome, on objects of a host's of which the n-th call
// faults. Whether all calls were made.
bool WorkWithAFaultAt(Long n, const Ref<Recorder>& host, const std::function<Ref<clsTORVATest>(String)>& make) {
  faulty::callsLeft = -1;
  const auto engine = New<clsTORVA>();
  engine->SetError(host);
  for (const char16_t* name : {u"A", u"B"}) engine->Tests()->Add(make(name));
  engine->TemplateIn(faulty::Form::Make());
  engine->TemplateOut(New<clsTemplate>());
  engine->MIVLMF(New<faulty::Lmf>());
  engine->SequenceQuestion(1);
  faulty::callsLeft = n;
  engine->Merge();
  basPublic::BuildTestFromLMF(New<clsTORVATest>(), engine->MIVLMF());
  const bool all = faulty::callsLeft > 0;
  faulty::callsLeft = -1;
  return all;
}

TEST_F(MemberFaults, LeaveNothingOfTheLibrarysAlive) {
  const auto make = [](String version) {
    const auto test =
        Test({Choice(u"1"), Choice(u"2"), Question(u"3", TORVATestQuestionTypeTrueFalse, 2, {2})}, version);
    test->Questions()->Item(1)->LearningObjectives()->Add(u"reading");
    test->Questions()->Add(Subjective(u"4"));
    return test;
  };
  const auto work = [&]() -> std::string {
    engine.reset();
    const auto before = Object::AliveCount();
    Long n = 0;
    for (bool all = false; !all;) {
      all = WorkWithAFaultAt(++n, host, make);
      basError::goErr() = nullptr;
      const auto left = Object::AliveCount() - before;
      const std::string failures = TakeFailures();
      TakeDialogs();
      if (left != 0) return std::to_string(left) + " left after call " + std::to_string(n) + ", " + failures;
    }
    return n > 150 ? "nothing left" : "too few calls";
  };
  EXPECT_EQ(InChild(work), "nothing left");
}

// A dialog's owner, and what goes while it is released.
TEST_F(MemberFaults, ReleaseTheOwnerOfADialogAndEachReference) {
  struct Going : clsTemplate {
    ~Going() override { faults::NullRead(); }
  };
  EXPECT_EQ(InChild([&] {
              engine.reset();
              const auto before = Object::AliveCount();
              auto own = New<clsTORVA>();
              own->SetError(host);
              host->onDialog = faults::NullRead;
              own->Merge();
              own.reset();
              const auto left = Object::AliveCount() - before;
              host->onDialog = {};
              own = New<clsTORVA>();
              own->TemplateIn(New<Going>());
              own->TemplateOut(New<Going>());
              own.reset();
              TakeDialogs();
              return std::to_string(left) + " left, " + TakeFailures();
            }),
            "0 left, 10005 clsTORVA.Merge, 10005 clsTORVA.Class_Terminate, 10005 clsTORVA.Class_Terminate");
}

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
  std::string told[4];
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i, path = file.Path()] { told[i] = Work(path, 20 + 10 * i); });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < 4; ++i) {
    const std::string count = std::to_string(20 + 10 * i);
    EXPECT_EQ(told[i], count + " failures, " + count + " dialogs");
  }
}

}  // namespace
}  // namespace TORVA35
