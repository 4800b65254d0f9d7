// What a host does from within a call of ours, what of its own objects is asked, and where they fault.

#include "tests/merge/MergeFixture.h"
#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"
#include "torva35/model/basPublic.h"

namespace TORVA35 {
namespace {

class HostCalls : public MergeTest {};

TEST_F(HostCalls, WhatIsUsedOutlivesItsPlaceInTheTest) {
  const auto test = Test({Choice(u"1"), Choice(u"2")});
  test->MultipleChoiceOddScale(nullptr);
  host->onFailure = [&] { test->Questions()->RemoveAll(); };
  const auto field = Field(2, true, kFive);
  field->FieldType(2);
  EXPECT_FALSE(Merge({test}, Form({{field}})));
  EXPECT_EQ(Output(1)->Text(), u"Text of 1");
  EXPECT_EQ(TakeFailures(),
            "91 clsTORVATest.QuestionScale, 91 clsTORVATest.CorrectAnswersAsString, 91 clsTORVA.Merge");

  for (const char16_t* id : {u"1", u"2"}) test->Questions()->Add(Choice(id));
  test->Questions()->Item(2)->Answers(nullptr);
  host->onFailure = [&] { test->Questions(nullptr); };
  test->Clear();
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestions.Remove");
  EXPECT_EQ(test->Source(), TORVATestSourceTypeUnknown);
}

// Calls the library while it goes.
struct Leaving : Recorder {
  explicit Leaving(std::function<void()> leave) : leave_(std::move(leave)) {}
  ~Leaving() override { leave_(); }
  const std::function<void()> leave_;
};

TEST_F(HostCalls, AnErrorObjectReportsToTheNextOneWhileItGoes) {
  engine->SetError(New<Leaving>([this] { engine->Tests()->Add(nullptr); }));
  EXPECT_TRUE(engine->SetError(host));
  EXPECT_EQ(TakeFailures(), "91 clsTORVATests.Add");

  engine->SetError(New<Leaving>([this] { engine->SetError(nullptr); }));
  EXPECT_FALSE(engine->SetError(host));
  EXPECT_EQ(basError::goErr(), nullptr);
  EXPECT_FALSE(New<clsTORVATest>()->SetError(nullptr));
  EXPECT_TRUE(New<clsTORVATest>()->SetError(host));
}

// A form of a host's whose graded questions cannot be switched off.
TEST_F(HostCalls, AFormThatStaysGradedIsNotMerged) {
  struct GradedForm : clsTemplate {
    Integer GradedCount(CallSite) const override { return 2; }
    Ref<clsTemplate> Copy(bool, bool) const override {
      return MergeTest::Form<GradedForm>({{Field(2, true, kFive)}});
    }
  };
  EXPECT_FALSE(Merge({Test({Choice(u"1")})}, New<GradedForm>()->Copy(true, false)));
  EXPECT_EQ(
      TakeDialogs(),
      Dialogs{Told(u"Invalid Merge",
                   u"An error occurred merging the test with the specified template. The test contains a "
                   u"different number of graded questions than the specified template. Operation aborted.")});
}

TEST_F(HostCalls, AQuestionOfAHostIsGivenItsLists) {
  struct OwnQuestion : clsTemplateQuestion {
    using clsTemplateQuestion::Labels, clsTemplateQuestion::Values;
    void Labels(Ref<clsTemplateStrings> oLabels) override { Text(Text() + u" of " + oLabels->Item(1)); }
    void Values(Ref<clsTemplateStrings> oValues) override { Name(Name() + u" of " + oValues->Item(2)); }
    Ref<clsTemplateQuestion> Copy() const override {
      return Field<clsTemplateField, OwnQuestion>(1, true, kFive)->Questions()->Item(1);
    }
  };
  ASSERT_TRUE(Merge({Test({Choice(u"1")})}, Form({{Field<clsTemplateField, OwnQuestion>(1, true, kFive)}})));
  EXPECT_EQ(OutQuestion(1, 1, 1)->Name(), u" of 2");
}

// --- A host's own questions and LMF model, of which one call faults: the n-th that the engine makes. ---

Long callsLeft = -1;

// One of the host's calls. Nothing is owned here when it faults.
void Step() {
  if (--callsLeft == 0) faults::NullRead();
}

struct FaultyQuestion : clsTemplateQuestion {
  using clsTemplateQuestion::clsTemplateQuestion;
  bool Graded() const override { return Step(), clsTemplateQuestion::Graded(); }
  void Graded(bool bGraded) override { Step(), clsTemplateQuestion::Graded(bGraded); }
  String Text() const override { return Step(), clsTemplateQuestion::Text(); }
  void Text(String sText) override { Step(), clsTemplateQuestion::Text(std::move(sText)); }
  Ref<clsTemplateStrings> Labels() const override { return Step(), clsTemplateQuestion::Labels(); }
  void Labels(Ref<clsTemplateStrings> oLabels) override { Step(), clsTemplateQuestion::Labels(oLabels); }
  Long Number(bool, CallSite at) const override { return Step(), clsTemplateQuestion::Number(true, at); }
  Ref<clsTemplateQuestion> Copy() const override {
    auto copy = New<FaultyQuestion>(clsTemplateQuestion::Labels()->Copy(), Values()->Copy());
    copy->clsTemplateQuestion::Graded(clsTemplateQuestion::Graded());
    return copy;
  }
};

template <class List, class T>
struct FaultyList : List {
  Long Count() const override { return Step(), List::Count(); }
  void Add(Ref<T> oItem, CallSite at) override { Step(), List::Add(oItem, at); }
};

struct FaultyLmf : clsLmf {
  Ref<clsLmfQuestions> Questions() const override { return Step(), questions; }
  Ref<clsLmfVersions> Versions() const override { return Step(), clsLmf::Versions(); }
  Ref<clsLmfObjectives> Objectives() const override { return Step(), clsLmf::Objectives(); }
  const Ref<clsLmfQuestions> questions = New<FaultyList<clsLmfQuestions, clsLmfQuestion>>();
};

class HostFaults : public MergeTest {
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
      merged |= engine->Merge();  // the process lives on, and a dialog is a dialog again
      return (merged ? "merged " : "not merged ") + std::to_string(TakeDialogs().size()) + ", " + TakeFailures();
    });
  }
  // Merges two versions of a test, and makes a test of the outcome, on objects of a host's of which the n-th call
  // faults. Whether all calls were made.
  bool WorkWithAFaultAt(Long n) {
    const auto own = New<clsTORVA>();
    own->SetError(host);
    for (const char16_t* name : {u"A", u"B"}) {
      own->Tests()->Add(
          Test({Choice(u"1"), Question(u"2", TORVATestQuestionTypeTrueFalse, 2), Subjective(u"3")}, name));
      own->Tests()->Item(own->Tests()->Count())->Questions()->Item(1)->LearningObjectives()->Add(u"reading");
    }
    own->TemplateIn(Form({{Field<clsTemplateField, FaultyQuestion>(1, false, {u"A", u"B"}),
                           Field<clsTemplateField, FaultyQuestion>(4, true, kFive)}}));
    own->TemplateOut(New<clsTemplate>());
    own->MIVLMF(New<FaultyLmf>());
    own->SequenceQuestion(1);
    callsLeft = n;
    own->Merge();
    basPublic::BuildTestFromLMF(New<clsTORVATest>(), own->MIVLMF());
    return std::exchange(callsLeft, -1) > 0;
  }
};

TEST_F(HostFaults, InADialogEndTheMergeOnly) {
  EXPECT_EQ(FaultInDialog(faults::NullRead), "not merged 1, 10005 clsTORVA.Merge, 10005 clsTORVA.Merge");
  EXPECT_EQ(FaultInDialog(faults::EndlessRecursion), "not merged 1, 10237 clsTORVA.Merge, 10237 clsTORVA.Merge");
}

TEST_F(HostFaults, LeaveNothingOfTheLibrarysAlive) {
  const auto work = [&]() -> std::string {
    engine.reset();
    const auto before = Object::AliveCount();
    Long n = 0;
    for (bool all = false; !all;) {
      all = WorkWithAFaultAt(++n);
      basError::goErr() = nullptr;
      const auto left = Object::AliveCount() - before;
      const std::string failures = TakeFailures();
      TakeDialogs();
      if (left != 0) return std::to_string(left) + " left after call " + std::to_string(n) + ", " + failures;
    }
    return n > 60 ? "nothing left" : "too few calls";
  };
  EXPECT_EQ(InChild(work), "nothing left");
}

// A dialog's owner, and what goes while it is released.
TEST_F(HostFaults, ReleaseTheOwnerOfADialogAndEachReference) {
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
              own = New<clsTORVA>();
              own->TemplateIn(New<Going>());
              own->TemplateOut(New<Going>());
              own.reset();
              TakeDialogs();
              return std::to_string(left) + " left, " + TakeFailures();
            }),
            "0 left, 10005 clsTORVA.Merge, 10005 clsTORVA.Class_Terminate, 10005 clsTORVA.Class_Terminate");
}

}  // namespace
}  // namespace TORVA35
