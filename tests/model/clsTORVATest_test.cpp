// A question, and the test that holds it.

#include "torva35/model/clsTORVATest.h"

#include "tests/RecordingHost.h"
#include "tests/Values.h"

namespace TORVA35 {
namespace {

// The first so many units of a text that begins with this one and goes on for ever.
String Long300(char16_t first, std::size_t count = 301) {
  return first + String(count - 1, u'x');
}

class Question : public HostTest {
 protected:
  // In the order of these letters.
  static std::vector<String> Texts(const clsTORVATestQuestion& from) {
    return {from.QuestionText(), from.Difficulty(),    from.Reference(), from.Topic(),
            from.Keywords(),     from.Miscellaneous(), from.Notes(),     from.ID()};
  }
  static String Settings(const clsTORVATestQuestion& from) {
    return Values({from.CorrectPoints(), from.IncorrectPoints(), from.NoResponsePoints(), from.SubjectivePoints(),
                   from.CorrectAnd(), Long{from.QuestionType()}});
  }

  Ref<clsTORVATestQuestion> question = New<clsTORVATestQuestion>();
};

TEST_F(Question, ANewOne) {
  EXPECT_EQ(question->Answers()->Count() + question->LearningObjectives()->Count(), 0);
  EXPECT_EQ(question->CorrectAnswers()->Count(), 0);
  EXPECT_EQ(Settings(*question), u"1 0 0 0 True -1");
  EXPECT_EQ(Texts(*question), std::vector<String>(8));
}

TEST_F(Question, TextsAreCutAndACopySharesNothing) {
  question->QuestionText(Long300(u'Q'));
  question->Difficulty(Long300(u'D'));
  question->Reference(Long300(u'R'));
  question->Topic(Long300(u'T'));
  question->Keywords(Long300(u'K'));
  question->Miscellaneous(Long300(u'M'));
  question->Notes(Long300(u'N'));
  question->ID(Long300(u'I'));
  question->CorrectPoints(2.5f);
  question->IncorrectPoints(-1);
  question->NoResponsePoints(0.25f);
  question->SubjectivePoints(9);
  question->CorrectAnd(false);
  question->QuestionType(TORVATestQuestionTypeEssay);
  question->Answers()->AddDelimitedString(u"a|b\tc", u"|");
  question->LearningObjectives()->Add(u"objective", u"key");
  question->CorrectAnswers()->Add(2);
  const auto copy = question->Copy();
  question->Answers()->RemoveAll();
  question->LearningObjectives()->RemoveAll();
  question->CorrectAnswers()->RemoveAll();

  const std::vector<String> texts = {Long300(u'Q'),      Long300(u'D', 255), Long300(u'R'), Long300(u'T', 255),
                                     Long300(u'K', 255), Long300(u'M', 255), Long300(u'N'), Long300(u'I', 50)};
  for (const auto& either : {question, copy}) {
    EXPECT_EQ(Texts(*either), texts);
    EXPECT_EQ(Settings(*either), u"2.5 -1 0.25 9 False 10");
  }
  EXPECT_EQ(copy->Answers()->AsString(u"|"), u"a|b|c");
  EXPECT_EQ(copy->LearningObjectives()->Item(1), u"objective");
  EXPECT_FALSE(copy->LearningObjectives()->Exists(u"key"));
  EXPECT_EQ(copy->CorrectAnswers()->Item(1), 2);
}

TEST_F(Question, MultiplesPermitted) {
  question->CorrectAnswers()->Add(1);
  EXPECT_FALSE(question->MultiplesPermitted());
  question->CorrectAnswers()->Add(5);
  EXPECT_TRUE(question->MultiplesPermitted());
  question->CorrectAnd(false);
  EXPECT_FALSE(question->MultiplesPermitted());
  question->CorrectAnswers(nullptr);
  EXPECT_EQ(Raised([&] { question->MultiplesPermitted(); }), kNothing);
}

TEST_F(Question, CopyNeedsEveryListButNotAllOfThem) {
  question->Answers(nullptr);
  EXPECT_EQ(question->Copy(), nullptr);
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestion.Copy");
  // A set that cannot be copied reports that itself, and the question carries on with what it got.
  question->Answers(New<clsTORVATestStrings>());
  for (Long i = 0; i <= 32767; ++i) question->CorrectAnswers()->Add(static_cast<Integer>(i));
  const auto copy = question->Copy();
  EXPECT_EQ(TakeFailures(), "6 clsTORVATestCorrect.Copy");
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->CorrectAnswers(), nullptr);
}

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
  static std::vector<String> Texts(const clsTORVATest& test) {
    return {test.Title(),     test.Version(),     test.Notes(), test.CreatedBy(),
            test.TeacherID(), test.Description(), test.ID(),    test.StateAbbreviation()};
  }
  static String Settings(const clsTORVATest& test) {
    return Values({Long{test.Source()}, Long{test.ImportObjectives()}, test.UserDefined(),
                   test.Questions()->Count(), test.Sequences()->Count(), test.NumObjectives(), Scales(test)});
  }
  void SetEverything() {
    test->Title(Long300(u'T'));
    test->Version(Long300(u'V'));
    test->Notes(Long300(u'N'));
    test->CreatedBy(Long300(u'C'));
    test->TeacherID(Long300(u'I'));
    test->Description(Long300(u'D'));
    test->ID(Long300(u'#'));
    test->StateAbbreviation(u"OHIO");
    test->Source(TORVATestSourceTypeNGT);
    test->ImportObjectives(TORVATestImportObjectivesLocal + TORVATestImportObjectivesState);
    test->MultipleChoiceOddScale()->Item(1, u"1");
    test->MultipleChoiceEvenScale()->Item(1, u"2");
    test->TrueFalseScale()->Item(1, u"3");
    test->YesNoScale()->Item(1, u"4");
    AddQuestion(u"X");
    AddQuestion(u"Y")->QuestionText(u"text");
    test->Sequences()->AddDefault(test->Questions(), u"A");
    const auto turned = New<clsTORVATestSequence>();
    turned->Answer(u"B");
    for (const char16_t* id : {u"Y", u"X"}) turned->Order()->Add(id);
    test->Sequences()->Add(turned);
  }
  const std::vector<String> cut = {Long300(u'T', 255), Long300(u'V', 50),  Long300(u'N'),     Long300(u'C', 255),
                                   Long300(u'I', 255), Long300(u'D', 255), Long300(u'#', 50), u"OH"};

  Ref<clsTORVATest> test = New<clsTORVATest>();
};

TEST_F(Test, ANewOne) {
  EXPECT_EQ(Settings(*test), u"0 0 False 0 0 0 ABCD|ABCD|TF|YN");
  EXPECT_NE(test->MultipleChoiceOddScale(), test->MultipleChoiceEvenScale());
}

TEST_F(Test, ClearLeavesScalesAndSettings) {
  SetEverything();
  EXPECT_EQ(Texts(*test), cut);
  test->UserDefined(true);
  const auto question = test->Questions()->Item(1);
  test->Clear();
  std::vector<String> cleared(8);
  cleared.back() = u"OH";
  EXPECT_EQ(Texts(*test), cleared);
  EXPECT_EQ(Settings(*test), u"-1 6 False 0 0 0 1BCD|2BCD|3F|4N");
  EXPECT_EQ(question->Answers()->Count(), 0);
}

TEST_F(Test, ClearStopsAtAFailure) {
  SetEverything();
  test->Questions(nullptr);
  test->Clear();
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.Clear");
  EXPECT_EQ(test->Sequences()->Count(), 0);
  EXPECT_EQ(Texts(*test), cut);
}

TEST_F(Test, CopySharesNothing) {
  SetEverything();
  const auto copy = test->Copy();
  test->Clear();
  test->YesNoScale()->RemoveAll();
  auto copied = cut;
  copied[6] = copied[7] = u"";  // ID and state stay behind
  EXPECT_EQ(Texts(*copy), copied);
  EXPECT_EQ(Settings(*copy), u"2 0 True 2 2 2 1BCD|2BCD|3F|4N");
  EXPECT_EQ(copy->Questions()->Item(u"y")->QuestionText(), u"text");
  // Orders are copied by their stored values, which are always 1 to Count.
  EXPECT_EQ(copy->Sequences()->Item(u"b")->Order()->Item(u"X"), 1);
}

TEST_F(Test, CopyGoesOnBehindAPartThatCouldNotBeCopied) {
  AddQuestion(u"X")->Answers(nullptr);
  AddQuestion(u"Y");
  test->Sequences()->AddDefault(test->Questions());
  test->Questions()->Item(u"Y")->ID(u"x");  // keys of the copy are the IDs of now
  AddQuestion(u"Z")->ID(u"X");
  const std::string ofQuestions =
      "91 clsTORVATestQuestion.Copy, 91 clsTORVATestQuestions.Add, 457 clsTORVATestQuestions.Add, ";
  auto copy = test->Copy();
  EXPECT_EQ(copy->Questions()->Count(), 1);
  EXPECT_EQ(copy->Sequences()->Item(1)->Order()->Count(), 1);
  EXPECT_EQ(TakeFailures(), ofQuestions + "457 clsTORVATestSequenceOrder.Add");

  test->Sequences()->Item(1)->Order(nullptr);
  copy = test->Copy();
  EXPECT_EQ(copy->Sequences()->Count(), 0);
  EXPECT_EQ(TakeFailures(), ofQuestions + "91 clsTORVATestSequence.Copy, 91 clsTORVATestSequences.Add");
}

TEST_F(Test, CopyNeedsEveryPart) {
  test->YesNoScale(nullptr);
  EXPECT_EQ(test->Copy(), nullptr);
  test->YesNoScale(New<clsTORVATestStrings>());
  test->Sequences(nullptr);
  EXPECT_EQ(test->Copy(), nullptr);
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.Copy, 91 clsTORVATest.Copy");
}

TEST_F(Test, NumObjectivesIsASumOverAllQuestions) {
  AddQuestion(u"X");
  AddQuestion(u"Y")->LearningObjectives()->Add(u"another");
  EXPECT_EQ(test->NumObjectives(), 3);
  AddQuestion(u"Z")->LearningObjectives(nullptr);
  EXPECT_EQ(test->NumObjectives(), 0);
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.NumObjectives");
}

TEST_F(Test, SetErrorHoldsForAllObjects) {
  const auto second = New<Recorder>();
  EXPECT_TRUE(test->SetError(second));
  New<clsTORVATestStrings>()->AddArray({});
  EXPECT_EQ(second->failures.size(), 1);
  EXPECT_FALSE(test->SetError(nullptr));
}

}  // namespace
}  // namespace TORVA35
