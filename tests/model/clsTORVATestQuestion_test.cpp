#include "model/clsTORVATestQuestion.h"

#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kCopy = u"TORVA35 - clsTORVATestQuestion.Copy";

class Question : public HostTest {
 protected:
  Ref<clsTORVATestQuestion> question = New<clsTORVATestQuestion>();
};

TEST_F(Question, ANewOne) {
  EXPECT_EQ(question->Answers()->Count() + question->LearningObjectives()->Count(), 0);
  EXPECT_EQ(question->CorrectAnswers()->Count(), 0);
  EXPECT_EQ(question->CorrectPoints(), 1);
  EXPECT_EQ(question->IncorrectPoints() + question->NoResponsePoints() + question->SubjectivePoints(), 0);
  EXPECT_TRUE(question->CorrectAnd());
  EXPECT_FALSE(question->MultiplesPermitted());
  EXPECT_EQ(question->QuestionType(), TORVATestQuestionTypeUnknown);
  EXPECT_EQ(question->ID() + question->QuestionText(), u"");
  question->QuestionType(0);
  EXPECT_EQ(question->QuestionType(), 0);
}

// What a text property keeps of 70,000 units, and whether `Copy` carries it to the right place.
TEST_F(Question, TextsAreCutAndCopied) {
  const String longText(70'000, u'x');
  question->QuestionText(u"Q" + longText);
  question->Difficulty(u"D" + longText);
  question->Reference(u"R" + longText);
  question->Topic(u"T" + longText);
  question->Keywords(u"K" + longText);
  question->Miscellaneous(u"M" + longText);
  question->Notes(u"N" + longText);
  question->ID(u"I" + longText);
  for (const auto& either : {question, question->Copy()}) {
    EXPECT_EQ(either->QuestionText(), u"Q" + longText);
    EXPECT_EQ(either->Difficulty(), u"D" + longText.substr(0, 254));
    EXPECT_EQ(either->Reference(), u"R" + longText);
    EXPECT_EQ(either->Topic(), u"T" + longText.substr(0, 254));
    EXPECT_EQ(either->Keywords(), u"K" + longText.substr(0, 254));
    EXPECT_EQ(either->Miscellaneous(), u"M" + longText.substr(0, 254));
    EXPECT_EQ(either->Notes(), u"N" + longText);
    EXPECT_EQ(either->ID(), u"I" + longText.substr(0, 49));
  }
}

TEST_F(Question, MultiplesPermitted) {
  question->CorrectAnswers()->Add(1);
  EXPECT_FALSE(question->MultiplesPermitted());
  question->CorrectAnswers()->Add(5);
  EXPECT_TRUE(question->MultiplesPermitted());
  question->CorrectAnd(false);
  EXPECT_FALSE(question->MultiplesPermitted());
  question->CorrectAnswers(nullptr);
  try {
    question->MultiplesPermitted();
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), kNothing);
    EXPECT_EQ(error.Line(), __LINE__ - 4);
  }
}

TEST_F(Question, CopySharesNothing) {
  question->CorrectPoints(2.5f);
  question->IncorrectPoints(-1);
  question->NoResponsePoints(0.25f);
  question->SubjectivePoints(9);
  question->CorrectAnd(false);
  question->QuestionType(TORVATestQuestionTypeEssay);
  question->Answers()->AddDelimitedString(u"a|b\tc", u"|");
  question->LearningObjectives()->Add(u"objective", u"key");
  question->CorrectAnswers()->Add(2);
  question->CorrectAnswers()->Add(1);

  const auto copy = question->Copy();
  question->Answers()->RemoveAll();
  question->LearningObjectives()->RemoveAll();
  question->CorrectAnswers()->RemoveAll();
  EXPECT_EQ(copy->CorrectPoints(), 2.5f);
  EXPECT_EQ(copy->IncorrectPoints(), -1);
  EXPECT_EQ(copy->NoResponsePoints(), 0.25f);
  EXPECT_EQ(copy->SubjectivePoints(), 9);
  EXPECT_FALSE(copy->CorrectAnd());
  EXPECT_EQ(copy->QuestionType(), TORVATestQuestionTypeEssay);
  EXPECT_EQ(copy->Answers()->AsString(u"|"), u"a|b|c");
  EXPECT_EQ(copy->LearningObjectives()->Item(1), u"objective");
  EXPECT_FALSE(copy->LearningObjectives()->Exists(u"key"));
  EXPECT_EQ(copy->CorrectAnswers()->Item(1), 2);
  EXPECT_TRUE(copy->CorrectAnswers()->Exists(u"1"));

  question->Answers()->Add(u"");
  EXPECT_EQ(question->Copy()->Answers()->Count(), 0);
}

TEST_F(Question, CopyNeedsEveryList) {
  for (const int missing : {1, 2, 3}) {
    question = New<clsTORVATestQuestion>();
    if (missing == 1) question->Answers(nullptr);
    if (missing == 2) question->LearningObjectives(nullptr);
    if (missing == 3) question->CorrectAnswers(nullptr);
    EXPECT_EQ(question->Copy(), nullptr);
    EXPECT_EQ(TakeFailures(), (Failures{{91, kCopy}}));
  }
}

// The set reports its own failure, and the question carries on with what it got.
TEST_F(Question, CopyCarriesOnWithoutTheSetThatCouldNotBeCopied) {
  for (Long i = 0; i <= 32767; ++i) question->CorrectAnswers()->Add(static_cast<Integer>(i));
  const auto copy = question->Copy();
  EXPECT_EQ(TakeFailures(), (Failures{{6, u"TORVA35 - clsTORVATestCorrect.Copy"}}));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->CorrectAnswers(), nullptr);
}

}  // namespace
}  // namespace TORVA35
