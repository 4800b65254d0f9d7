// A question, and the test that holds it.

#include "torva35/model/clsTORVATest.h"

#include "tests/RecordingHost.h"
#include "tests/Values.h"

namespace TORVA35 {
namespace {

// A text that begins with a member's name, and what is left of it when it is cut; 0: it never is.
String LongText(StringView name, std::size_t kept = 0) {
  String text = String(name) + String(300, u'x');
  return kept == 0 ? text : text.substr(0, kept);
}
#define SET_LONG(member) to.member(LongText(u"" #member));
#define TEXT(member) texts.push_back(of.member());

class clsTORVATestQuestionTest : public HostTest {
 protected:
  static std::vector<String> Texts(const clsTORVATestQuestion& of) {
    std::vector<String> texts = {of.QuestionText(), of.ID()};
    DESCRIPTIONS(TEXT);
    return texts;
  }
  static String Settings(const clsTORVATestQuestion& of) {
    return Values({of.CorrectPoints(), of.IncorrectPoints(), of.NoResponsePoints(), of.SubjectivePoints(),
                   of.CorrectAnd(), Long{of.QuestionType()}, Joined(*of.Answers()),
                   Joined(*of.LearningObjectives()), Joined(*of.CorrectAnswers())});
  }

  Ref<clsTORVATestQuestion> question = New<clsTORVATestQuestion>();
};

TEST_F(clsTORVATestQuestionTest, TextsAreCutAndACopySharesNothing) {
  EXPECT_EQ(Settings(*question), u"1 0 0 0 True -1   ");
  EXPECT_EQ(Texts(*question), std::vector<String>(8));
  clsTORVATestQuestion& to = *question;
  SET_LONG(QuestionText);
  SET_LONG(ID);
  DESCRIPTIONS(SET_LONG);
  to.CorrectPoints(2.5f);
  to.IncorrectPoints(-1);
  to.NoResponsePoints(0.25f);
  to.SubjectivePoints(9);
  to.CorrectAnd(false);
  to.QuestionType(TORVATestQuestionTypeEssay);
  to.Answers()->AddDelimitedString(u"a|b\tc", u"|");
  to.LearningObjectives()->Add(u"objective", u"key");
  to.CorrectAnswers()->Add(2);
  EXPECT_EQ(Settings(to), u"2.5 -1 0.25 9 False 10 a|b\tc objective 2");
  const auto copy = to.Copy();
  to.Answers()->RemoveAll();
  to.LearningObjectives()->RemoveAll();
  to.CorrectAnswers()->RemoveAll();

  const std::vector<String> texts = {LongText(u"QuestionText"),       LongText(u"ID", 50),
                                     LongText(u"Difficulty", 255),    LongText(u"Reference"),
                                     LongText(u"Topic", 255),         LongText(u"Keywords", 255),
                                     LongText(u"Miscellaneous", 255), LongText(u"Notes")};
  EXPECT_EQ(Texts(to), texts);
  EXPECT_EQ(Texts(*copy), texts);
  EXPECT_EQ(Settings(*copy), u"2.5 -1 0.25 9 False 10 a|b|c objective 2");
  EXPECT_FALSE(copy->LearningObjectives()->Exists(u"key"));
}

TEST_F(clsTORVATestQuestionTest, MultiplesPermitted) {
  question->CorrectAnswers()->Add(1);
  EXPECT_FALSE(question->MultiplesPermitted());
  question->CorrectAnswers()->Add(5);
  EXPECT_TRUE(question->MultiplesPermitted());
  question->CorrectAnd(false);
  EXPECT_FALSE(question->MultiplesPermitted());
  question->CorrectAnswers(nullptr);
  EXPECT_EQ(Raised([&] { question->MultiplesPermitted(); }), kNothing);
}

TEST_F(clsTORVATestQuestionTest, CopyNeedsEveryListButNotAllOfThem) {
  question->Answers(nullptr);
  EXPECT_EQ(question->Copy(), nullptr);
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestion.Copy");
  // A set that cannot be copied reports that itself, and the question carries on with what it got.
  question->Answers(New<clsTORVATestStrings>());
  const auto correct = question->CorrectAnswers();
  for (Long i = 0; i <= 32767; ++i) correct->Add(static_cast<Integer>(i));
  const auto copy = question->Copy();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->CorrectAnswers(), nullptr);
  EXPECT_FALSE(correct->RemoveAll() || correct->GetBitWiseRepresentation() != 0);
  EXPECT_EQ(correct->Count(), 32768);
  EXPECT_EQ(TakeFailures(),
            "6 clsTORVATestCorrect.Copy, 6 clsTORVATestCorrect.RemoveAll, 6 "
            "clsTORVATestCorrect.GetBitWiseRepresentation");
  correct->Remove(1);
  EXPECT_EQ(question->Copy()->CorrectAnswers()->Count(), 32767);
}

#define TEST_TEXTS(X) \
  X(Title) X(Version) X(Notes) X(CreatedBy) X(TeacherID) X(Description) X(ID) X(StateAbbreviation)

class clsTORVATestTest : public HostTest {
 protected:
  Ref<clsTORVATestQuestion> AddQuestion(const String& id) {
    const auto question = New<clsTORVATestQuestion>();
    question->ID(id);
    question->Answers()->Add(u"one");
    question->LearningObjectives()->Add(u"objective");
    test->Questions()->Add(question);
    return question;
  }
  static std::vector<String> Texts(const clsTORVATest& of) {
    std::vector<String> texts;
    TEST_TEXTS(TEXT);
    return texts;
  }
  static String Settings(const clsTORVATest& of) {
    return Values({Long{of.Source()}, Long{of.ImportObjectives()}, of.UserDefined(), of.Questions()->Count(),
                   of.Sequences()->Count(), of.NumObjectives(), of.MultipleChoiceOddScale()->AsString(u""),
                   of.MultipleChoiceEvenScale()->AsString(u""), of.TrueFalseScale()->AsString(u""),
                   of.YesNoScale()->AsString(u"")});
  }
  void SetEverything() {
    clsTORVATest& to = *test;
    TEST_TEXTS(SET_LONG);
    to.Source(TORVATestSourceTypeNGT);
    to.ImportObjectives(TORVATestImportObjectivesLocal + TORVATestImportObjectivesState);
    to.MultipleChoiceOddScale()->Item(1, u"1");
    to.MultipleChoiceEvenScale()->Item(1, u"2");
    to.TrueFalseScale()->Item(1, u"3");
    to.YesNoScale()->Item(1, u"4");
    AddQuestion(u"X");
    AddQuestion(u"Y")->QuestionText(u"text");
    to.Sequences()->AddDefault(to.Questions(), u"A");
    const auto turned = New<clsTORVATestSequence>();
    turned->Answer(u"B");
    for (const char16_t* id : {u"Y", u"X"}) turned->Order()->Add(id);
    to.Sequences()->Add(turned);
  }
  const std::vector<String> cut = {
      LongText(u"Title", 255),     LongText(u"Version", 50),      LongText(u"Notes"),  LongText(u"CreatedBy", 255),
      LongText(u"TeacherID", 255), LongText(u"Description", 255), LongText(u"ID", 50), u"St"};

  Ref<clsTORVATest> test = New<clsTORVATest>();
};

TEST_F(clsTORVATestTest, ClearLeavesScalesAndSettings) {
  EXPECT_EQ(Settings(*test), u"0 0 False 0 0 0 ABCD ABCD TF YN");
  SetEverything();
  EXPECT_EQ(Texts(*test), cut);
  test->UserDefined(true);
  const auto question = test->Questions()->Item(1);
  test->Clear();
  std::vector<String> cleared(8);
  cleared.back() = u"St";
  EXPECT_EQ(Texts(*test), cleared);
  EXPECT_EQ(Settings(*test), u"-1 6 False 0 0 0 1BCD 2BCD 3F 4N");
  EXPECT_EQ(question->Answers()->Count(), 0);

  SetEverything();
  test->Questions(nullptr);
  test->Clear();  // as far as it gets
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.Clear");
  EXPECT_EQ(test->Sequences()->Count(), 0);
  EXPECT_EQ(Texts(*test), cut);
}

TEST_F(clsTORVATestTest, CopySharesNothing) {
  SetEverything();
  const auto copy = test->Copy();
  test->Clear();
  test->YesNoScale()->RemoveAll();
  auto copied = cut;
  copied[6] = copied[7] = u"";  // ID and state stay behind
  EXPECT_EQ(Texts(*copy), copied);
  EXPECT_EQ(Settings(*copy), u"2 0 True 2 2 2 1BCD 2BCD 3F 4N");
  EXPECT_EQ(copy->Questions()->Item(u"y")->QuestionText(), u"text");
  // Orders are copied by their stored values, which are always 1 to Count.
  EXPECT_EQ(copy->Sequences()->Item(u"b")->Order()->Item(u"X"), 1);
}

TEST_F(clsTORVATestTest, CopyGoesOnAfterAPartThatCouldNotBeCopied) {
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

TEST_F(clsTORVATestTest, CopyNeedsEveryPart) {
  test->YesNoScale(nullptr);
  EXPECT_EQ(test->Copy(), nullptr);
  test->YesNoScale(New<clsTORVATestStrings>());
  test->Sequences(nullptr);
  EXPECT_EQ(test->Copy(), nullptr);
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.Copy, 91 clsTORVATest.Copy");
}

TEST_F(clsTORVATestTest, NumObjectivesIsASumOverAllQuestions) {
  AddQuestion(u"X");
  AddQuestion(u"Y")->LearningObjectives()->Add(u"another");
  EXPECT_EQ(test->NumObjectives(), 3);
  AddQuestion(u"Z")->LearningObjectives(nullptr);
  EXPECT_EQ(test->NumObjectives(), 0);
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.NumObjectives");
}

}  // namespace
}  // namespace TORVA35
