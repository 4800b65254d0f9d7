#include "model/clsTORVATest.h"

#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kClear = u"TORVA35 - clsTORVATest.Clear";
constexpr const char16_t* kCopy = u"TORVA35 - clsTORVATest.Copy";

class Test : public HostTest {
 protected:
  Ref<clsTORVATestQuestion> AddQuestion(const String& id) {
    const auto question = New<clsTORVATestQuestion>();
    question->ID(id);
    question->Answers()->AddDelimitedString(u"one\ttwo");
    question->LearningObjectives()->Add(u"objective");
    test->Questions()->Add(question);
    return question;
  }
  static String Scales(const clsTORVATest& test) {
    return test.MultipleChoiceOddScale()->AsString(u"") + u"|" + test.MultipleChoiceEvenScale()->AsString(u"") +
           u"|" + test.TrueFalseScale()->AsString(u"") + u"|" + test.YesNoScale()->AsString(u"");
  }
  void SetEverything() {
    const String longText(300, u'x');
    test->Title(u"T" + longText);
    test->Version(u"V" + longText);
    test->Notes(u"N" + longText);
    test->CreatedBy(u"C" + longText);
    test->TeacherID(u"I" + longText);
    test->ID(u"#" + longText);
    test->StateAbbreviation(u"OHIO");
    test->Description(u"D" + longText);
    test->Source(TORVATestSourceTypeNGT);
    test->ImportObjectives(TORVATestImportObjectivesLocal + TORVATestImportObjectivesState);
    test->MultipleChoiceOddScale()->Item(1, u"1");
    test->MultipleChoiceEvenScale()->Item(1, u"2");
    test->TrueFalseScale()->Item(1, u"3");
    test->YesNoScale()->Item(1, u"4");
  }

  Ref<clsTORVATest> test = New<clsTORVATest>();
};

TEST_F(Test, ANewOne) {
  EXPECT_EQ(test->Source(), TORVATestSourceTypeExamView);
  EXPECT_EQ(test->ImportObjectives(), TORVATestImportObjectivesNone);
  EXPECT_FALSE(test->UserDefined());
  EXPECT_EQ(Scales(*test), u"ABCD|ABCD|TF|YN");
  EXPECT_NE(test->MultipleChoiceOddScale(), test->MultipleChoiceEvenScale());
  EXPECT_EQ(test->Questions()->Count() + test->Sequences()->Count() + test->NumObjectives(), 0);
}

TEST_F(Test, ClearLeavesScalesAndSettings) {
  SetEverything();
  EXPECT_EQ(test->Title().size() + test->CreatedBy().size(), 510);
  EXPECT_EQ(test->TeacherID().size() + test->Description().size(), 510);
  EXPECT_EQ(test->Version().size() + test->ID().size(), 100);
  EXPECT_EQ(test->Notes().size(), 301);
  test->UserDefined(true);
  const auto question = AddQuestion(u"1");
  test->Sequences()->AddDefault(test->Questions());
  test->Clear();
  EXPECT_EQ(test->Title() + test->Version() + test->Notes() + test->CreatedBy() + test->TeacherID() + test->ID() +
                test->Description(),
            u"");
  EXPECT_EQ(test->Source(), TORVATestSourceTypeUnknown);
  EXPECT_FALSE(test->UserDefined());
  EXPECT_EQ(test->Questions()->Count() + test->Sequences()->Count() + question->Answers()->Count(), 0);
  EXPECT_EQ(Scales(*test), u"1BCD|2BCD|3F|4N");
  EXPECT_EQ(test->ImportObjectives(), 6);
  EXPECT_EQ(test->StateAbbreviation(), u"OH");
}

TEST_F(Test, ClearStopsAtAFailure) {
  AddQuestion(u"1");
  test->Title(u"kept");
  const auto questions = test->Questions();
  test->Questions(nullptr);
  test->Sequences()->AddDefault(questions);
  test->Clear();
  EXPECT_EQ(TakeFailures(), (Failures{{91, kClear}}));
  EXPECT_EQ(test->Sequences()->Count(), 0);
  EXPECT_EQ(test->Title(), u"kept");
}

TEST_F(Test, CopySharesNothing) {
  SetEverything();
  AddQuestion(u"X");
  AddQuestion(u"Y")->QuestionText(u"text");
  test->Sequences()->AddDefault(test->Questions(), u"A");
  const auto turned = New<clsTORVATestSequence>();
  turned->Answer(u"B");
  turned->Order()->Add(u"Y");
  turned->Order()->Add(u"X");
  test->Sequences()->Add(turned);

  const auto copy = test->Copy();
  const auto title = test->Title(), version = test->Version(), notes = test->Notes();
  test->Clear();
  test->YesNoScale()->RemoveAll();
  EXPECT_EQ(copy->Title() + copy->Version() + copy->Notes(), title + version + notes);
  EXPECT_EQ(copy->CreatedBy().size() + copy->TeacherID().size() + copy->Description().size(), 3 * 255);
  EXPECT_EQ(copy->Source(), TORVATestSourceTypeNGT);
  EXPECT_TRUE(copy->UserDefined());
  EXPECT_EQ(copy->ID() + copy->StateAbbreviation(), u"");
  EXPECT_EQ(copy->ImportObjectives(), 0);
  EXPECT_EQ(Scales(*copy), u"1BCD|2BCD|3F|4N");
  EXPECT_EQ(copy->Questions()->Item(u"y")->QuestionText(), u"text");
  EXPECT_EQ(copy->NumObjectives(), 2);
  // Orders are copied by their stored values, which are always 1 to Count.
  EXPECT_EQ(copy->Sequences()->Count(), 2);
  EXPECT_EQ(copy->Sequences()->Item(u"b")->Order()->Item(u"X"), 1);
}

TEST_F(Test, CopyGoesOnBehindAPartThatCouldNotBeCopied) {
  AddQuestion(u"X")->Answers(nullptr);
  AddQuestion(u"Y");
  test->Sequences()->AddDefault(test->Questions());
  test->Questions()->Item(u"Y")->ID(u"x");  // keys of the copy are the IDs of now
  AddQuestion(u"Z")->ID(u"X");
  const auto copy = test->Copy();
  EXPECT_EQ(TakeFailures(), (Failures{{91, u"TORVA35 - clsTORVATestQuestion.Copy"},
                                      {91, u"TORVA35 - clsTORVATestQuestions.Add"},
                                      {457, u"TORVA35 - clsTORVATestQuestions.Add"},
                                      {457, u"TORVA35 - clsTORVATestSequenceOrder.Add"}}));
  EXPECT_EQ(copy->Questions()->Count(), 1);
  EXPECT_EQ(copy->Sequences()->Item(1)->Order()->Count(), 1);

  test->Sequences()->Item(1)->Order(nullptr);
  const auto withoutVersion = test->Copy();
  const Failures failures = TakeFailures();
  EXPECT_EQ(failures[3], (Failure{91, u"TORVA35 - clsTORVATestSequence.Copy"}));
  EXPECT_EQ(failures[4], (Failure{91, u"TORVA35 - clsTORVATestSequences.Add"}));
  EXPECT_EQ(withoutVersion->Sequences()->Count(), 0);
}

TEST_F(Test, CopyNeedsEveryPart) {
  const std::vector<std::function<void()>> removals = {[&] { test->Questions(nullptr); },
                                                       [&] { test->Sequences(nullptr); },
                                                       [&] { test->MultipleChoiceOddScale(nullptr); },
                                                       [&] { test->MultipleChoiceEvenScale(nullptr); },
                                                       [&] { test->TrueFalseScale(nullptr); },
                                                       [&] { test->YesNoScale(nullptr); }};
  for (const auto& remove : removals) {
    test = New<clsTORVATest>();
    remove();
    EXPECT_EQ(test->Copy(), nullptr);
    EXPECT_EQ(TakeFailures(), (Failures{{91, kCopy}}));
  }
}

// The host takes the questions away while one of them is being copied.
TEST_F(Test, CopySurvivesAHostThatChangesTheTestMeanwhile) {
  AddQuestion(u"X")->Answers(nullptr);
  AddQuestion(u"Y");
  host->onFailure = [&] {
    host->onFailure = nullptr;
    test->Questions(New<clsTORVATestQuestions>());
  };
  EXPECT_EQ(test->Copy(), nullptr);
  EXPECT_EQ(TakeFailures(), (Failures{{91, u"TORVA35 - clsTORVATestQuestion.Copy"},
                                      {91, u"TORVA35 - clsTORVATestQuestions.Add"},
                                      {91, kCopy}}));
}

TEST_F(Test, NumObjectivesIsASumOverAllQuestions) {
  AddQuestion(u"X");
  AddQuestion(u"Y")->LearningObjectives()->Add(u"another");
  EXPECT_EQ(test->NumObjectives(), 3);
  AddQuestion(u"Z")->LearningObjectives(nullptr);
  EXPECT_EQ(test->NumObjectives(), 0);
  EXPECT_EQ(TakeFailures(), (Failures{{91, u"TORVA35 - clsTORVATest.NumObjectives"}}));
}

TEST_F(Test, SetErrorHoldsForAllObjects) {
  const auto second = New<Recorder>();
  EXPECT_TRUE(test->SetError(second));
  New<clsTORVATestStrings>()->AddArray({});
  EXPECT_EQ(second->failures.size(), 1);

  String shown;
  SetMessageBoxHook([&](const String& sText, const String&, Long) { shown = sText; });
  EXPECT_FALSE(test->SetError(nullptr));
  New<clsTORVATestStrings>()->AddArray({});
  SetMessageBoxHook({});
  EXPECT_TRUE(shown.starts_with(
      u"Error# 9: Subscript out of range, Location: TORVA35 - clsTORVATestStrings.AddArray; Line: "))
      << ToUtf8(shown);
}

}  // namespace
}  // namespace TORVA35
