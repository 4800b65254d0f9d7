// What a host does from within a call of ours, what of its own objects is asked, and where they fault.

#include <thread>

#include "tests/TempFile.h"
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
  EXPECT_TRUE(New<clsTORVATest>()->SetError(host));
}

TEST_F(HostCalls, NothingIsReadForADialogThatDoesNotShow) {
  struct UnreadableField : clsTemplateField {
    String Name() const override { throw std::runtime_error("no name"); }
    Ref<clsTemplateField> Copy() const override { return Field<UnreadableField>(1, true, {}); }
  };
  engine->Verbose(false);
  EXPECT_FALSE(Merge({Test({Choice(u"1")})}, Form({{Field<UnreadableField>(1, true, {})}})));
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

struct OwnFlag : clsLmfObjectiveFlag {
  explicit OwnFlag(bool value) : clsLmfObjectiveFlag(nullptr, 0), value_(value) {}
  bool Value() const override { return value_; }
  const bool value_;
};
struct OwnFlags : clsLmfObjectiveFlags {
  Ref<clsLmfObjectiveFlag> Item(Long lPosition, CallSite) const override { return New<OwnFlag>(lPosition != 2); }
};
struct FlaggedQuestion : clsLmfQuestion {
  Ref<clsLmfObjectiveFlags> ObjectiveFlags() const override { return New<OwnFlags>(); }
};

TEST_F(HostCalls, FlagsOfAHostAreAskedOneByOne) {
  const auto lmf = New<clsLmf>();
  lmf->Prepare();
  for (const char16_t* text : {u"one", u"two"}) {
    lmf->Objectives()->Add(New<clsLmfObjective>());
    lmf->Objectives()->Item(lmf->Objectives()->Count())->Text(text);
  }
  lmf->Questions()->Add(New<FlaggedQuestion>());
  lmf->Questions()->Item(1)->Graded(true);
  const auto test = New<clsTORVATest>();
  ASSERT_TRUE(basPublic::BuildTestFromLMF(test, lmf));
  EXPECT_EQ(Joined(*test->Questions()->Item(1)->LearningObjectives()), u"two");
}

// --- A host's own form and LMF model, of which one call faults: the n-th that the engine makes. ---

Long callsLeft = -1;

// One of the host's calls. Nothing is owned here when it faults.
void Step() {
  if (--callsLeft == 0) faults::NullRead();
}

template <class List, class T>
struct Faulty : List {
  Long Count() const override { return Step(), List::Count(); }
  Ref<T> Item(const TaggedValue& Index, CallSite at = CallSite::Current()) const override {
    return Step(), List::Item(Index, at);
  }
};

template <class List, class T>
struct FaultyPart : Faulty<List, T> {
  bool Add(Ref<T> oItem, CallSite at = CallSite::Current()) override { return Step(), List::Add(oItem, at); }
};

template <class List, class T>
struct FaultyOutput : Faulty<List, T> {
  void Add(Ref<T> oItem, CallSite at = CallSite::Current()) override { Step(), List::Add(oItem, at); }
};

struct FaultyStrings : clsTemplateStrings {
  Long Count() const override { return Step(), clsTemplateStrings::Count(); }
  String Item(const TaggedValue& Index, CallSite at) const override {
    return Step(), clsTemplateStrings::Item(Index, at);
  }
  void Item(const TaggedValue& Index, String sText, CallSite at) override {
    Step(), clsTemplateStrings::Item(Index, std::move(sText), at);
  }
};

struct FaultyQuestion : clsTemplateQuestion {
  FaultyQuestion() : clsTemplateQuestion(New<FaultyStrings>(), New<FaultyStrings>()) {}
  bool Graded() const override { return Step(), clsTemplateQuestion::Graded(); }
  void Graded(bool bGraded) override { Step(), clsTemplateQuestion::Graded(bGraded); }
  String Text() const override { return Step(), clsTemplateQuestion::Text(); }
  void Text(String sText) override { Step(), clsTemplateQuestion::Text(std::move(sText)); }
  Ref<clsTemplateStrings> Labels() const override { return Step(), clsTemplateQuestion::Labels(); }
  void Labels(Ref<clsTemplateStrings> oLabels) override { Step(), clsTemplateQuestion::Labels(oLabels); }
  Long Number(bool, CallSite at) const override { return Step(), clsTemplateQuestion::Number(true, at); }
};

struct FaultyField : clsTemplateField {
  Ref<clsTemplateQuestions> Questions() const override { return Step(), questions; }
  Integer GroupID() const override { return Step(), clsTemplateField::GroupID(); }
  const Ref<clsTemplateQuestions> questions = New<FaultyPart<clsTemplateQuestions, clsTemplateQuestion>>();
};

struct FaultyPage : clsTemplatePage {
  Ref<clsTemplateFields> Fields() const override { return Step(), fields; }
  const Ref<clsTemplateFields> fields = New<FaultyPart<clsTemplateFields, clsTemplateField>>();
};

struct FaultyForm : clsTemplate {
  Ref<clsTemplatePages> Pages() const override { return Step(), pages; }
  // The host's own work does not fault: what its frames own is its own.
  Ref<clsTemplate> Copy(bool, bool) const override {
    Step();
    const Long left = std::exchange(callsLeft, -1);
    auto copy = make();
    callsLeft = left;
    return copy;
  }
  static Ref<clsTemplate> (*make)();
  const Ref<clsTemplatePages> pages = New<FaultyPart<clsTemplatePages, clsTemplatePage>>();
};
Ref<clsTemplate> (*FaultyForm::make)() = nullptr;

struct FaultyObjectives : Faulty<clsLmfObjectives, clsLmfObjective> {
  void Add(Ref<clsLmfObjective> oObjective, const TaggedValue& Key, CallSite at) override {
    Step(), clsLmfObjectives::Add(oObjective, Key, at);
  }
  bool Exists(const TaggedValue& Key, CallSite at) const override {
    return Step(), clsLmfObjectives::Exists(Key, at);
  }
};

struct FaultyVersions : clsLmfVersions {
  Ref<clsLmfSequences> Sequences() const override { return Step(), sequences; }
  Ref<clsLmfStrings> VersionNames() const override { return Step(), clsLmfVersions::VersionNames(); }
  const Ref<clsLmfSequences> sequences = New<FaultyOutput<clsLmfSequences, clsLmfSequence>>();
};

struct FaultyLmf : clsLmf {
  Ref<clsLmfQuestions> Questions() const override { return Step(), questions; }
  Ref<clsLmfVersions> Versions() const override { return Step(), versions; }
  Ref<clsLmfObjectives> Objectives() const override { return Step(), objectives; }
  const Ref<clsLmfQuestions> questions = New<FaultyOutput<clsLmfQuestions, clsLmfQuestion>>();
  const Ref<clsLmfVersions> versions = New<FaultyVersions>();
  const Ref<clsLmfObjectives> objectives = New<FaultyObjectives>();
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
    FaultyForm::make = [] {
      return Form<FaultyForm, FaultyPage>({{Field<FaultyField, FaultyQuestion>(1, false, {u"A", u"B"}),
                                            Field<FaultyField, FaultyQuestion>(4, true, kFive)}});
    };
    own->TemplateIn(FaultyForm::make());
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
    return n > 150 ? "nothing left" : "too few calls";
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
      torva->TemplateIn(Form({{Field(4, true, kFive)}}));
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
  const TempFile file(
      "<examview><question type='mc' question-id='1'><choices><a/><b/></choices><answer>B</answer></question>"
      "<question type='tf' question-id='2'/><question type='es'/></examview>");
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
