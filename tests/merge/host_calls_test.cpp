// What a host does from within a call of ours, and what of a host's own objects is asked.

#include "tests/merge/MergeFixture.h"
#include "torva35/model/basPublic.h"

namespace TORVA35 {
namespace {

class HostCalls : public MergeTest {};

TEST_F(HostCalls, AQuestionOutlivesItsPlaceInTheTest) {
  const auto test = Test({Choice(u"1"), Choice(u"2")});
  test->MultipleChoiceOddScale(nullptr);
  host->onFailure = [&] { test->Questions()->RemoveAll(); };
  const auto field = Field(2, true, {u"1", u"2", u"3"});
  field->FieldType(2);
  EXPECT_FALSE(Merge(test, Form({{field}})));
  EXPECT_EQ(Output(1)->Text(), u"Text of 1");
  EXPECT_EQ(TakeFailures(),
            "91 clsTORVATest.QuestionScale, 91 clsTORVATest.CorrectAnswersAsString, 91 clsTORVA.Merge");
}

TEST_F(HostCalls, AListOutlivesItsPlaceInTheTest) {
  const auto test = Test({Choice(u"1"), Choice(u"2")});
  test->Questions()->Item(2)->Answers(nullptr);
  host->onFailure = [&] { test->Questions(nullptr); };
  test->Clear();
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestions.Remove");
  EXPECT_EQ(test->Source(), TORVATestSourceTypeUnknown);
}

// Calls the library while it goes.
class Leaving : public Recorder {
 public:
  explicit Leaving(std::function<void()> leave) : leave_(std::move(leave)) {}
  ~Leaving() override { leave_(); }

 private:
  std::function<void()> leave_;
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

class UnreadableField : public clsTemplateField {
 public:
  String Name() const override { throw std::runtime_error("no name"); }
};

class OneFieldForm : public clsTemplate {
 public:
  explicit OneFieldForm(Ref<clsTemplate> copy) : copy_(std::move(copy)) { Pages()->Add(copy_->Pages()->Item(1)); }
  Ref<clsTemplate> Copy(bool, bool) const override { return copy_; }

 private:
  Ref<clsTemplate> copy_;
};

TEST_F(HostCalls, NothingIsReadForADialogThatDoesNotShow) {
  const auto field = New<UnreadableField>();
  field->FieldClass(1);
  field->FieldType(1);
  field->Questions()->AddNew();
  field->Questions()->Item(1)->Graded(true);
  engine->Verbose(false);
  EXPECT_FALSE(Merge(Test({Choice(u"1")}), New<OneFieldForm>(Form({{field}}))));
}

class OwnFlag : public clsLmfObjectiveFlag {
 public:
  explicit OwnFlag(bool value) : clsLmfObjectiveFlag(nullptr, 0), value_(value) {}
  bool Value() const override { return value_; }

 private:
  bool value_;
};

class OwnFlags : public clsLmfObjectiveFlags {
 public:
  Ref<clsLmfObjectiveFlag> Item(Long lPosition, CallSite) const override { return New<OwnFlag>(lPosition != 2); }
};

class FlaggedQuestion : public clsLmfQuestion {
 public:
  Ref<clsLmfObjectiveFlags> ObjectiveFlags() const override { return New<OwnFlags>(); }
};

TEST_F(HostCalls, FlagsOfAHostAreAskedOneByOne) {
  const auto lmf = New<clsLmf>();
  lmf->Prepare();
  for (const char16_t* text : {u"one", u"two"}) {
    const auto objective = New<clsLmfObjective>();
    objective->Text(text);
    lmf->Objectives()->Add(objective);
  }
  const auto question = New<FlaggedQuestion>();
  question->Graded(true);
  lmf->Questions()->Add(question);
  const auto test = New<clsTORVATest>();
  ASSERT_TRUE(basPublic::BuildTestFromLMF(test, lmf));
  EXPECT_EQ(test->Questions()->Item(1)->LearningObjectives()->AsString(u"|"), u"two");
}

}  // namespace
}  // namespace TORVA35
