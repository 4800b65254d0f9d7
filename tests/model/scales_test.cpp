#include <cmath>

#include "model/basPublic.h"
#include "model/clsTORVATest.h"
#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kQuestionScale = u"TORVA35 - clsTORVATest.QuestionScale";
constexpr const char16_t* kAsString = u"TORVA35 - clsTORVATest.CorrectAnswersAsString";
constexpr const char16_t* kAsArray = u"TORVA35 - clsTORVATest.CorrectAnswersAsArray";

class AnswerScales : public HostTest {
 protected:
  AnswerScales() {
    test->MultipleChoiceOddScale()->Add(u"E");
    test->MultipleChoiceEvenScale()->RemoveAll();
    test->MultipleChoiceEvenScale()->AddDelimitedString(u"F\tG\tH\tI\tJ");
  }
  Ref<clsTORVATestQuestion> Add(Long type, int answers, const std::vector<Integer>& correct = {}) {
    auto question = New<clsTORVATestQuestion>();
    question->ID(Decimal(test->Questions()->Count() + 1));
    question->QuestionType(type);
    for (; answers > 0; --answers) question->Answers()->Add(u"answer");
    for (Integer number : correct) question->CorrectAnswers()->Add(number);
    test->Questions()->Add(question);
    return question;
  }
  String Scale(const TaggedValue& index, const TaggedValue& isOddOverride = Missing) {
    const auto scale = test->QuestionScale(index, isOddOverride);
    return scale == nullptr ? u"nothing" : scale->AsString(u"|");
  }

  Ref<clsTORVATest> test = New<clsTORVATest>();
};

TEST_F(AnswerScales, ByKindAndPosition) {
  Add(TORVATestQuestionTypeMultipleChoice, 3);
  Add(TORVATestQuestionTypeMultipleChoice, 7);
  Add(TORVATestQuestionTypeTrueFalse, 9);
  Add(TORVATestQuestionTypeYesNo, 0);
  Add(TORVATestQuestionTypeSubjective, 2);
  Add(TORVATestQuestionTypeUnknown, 2);
  Add(TORVATestQuestionTypeMultipleChoice, 0);
  EXPECT_EQ(Scale(1), u"A|B|C");
  EXPECT_EQ(Scale(u"2"), u"F|G|H|I|J||");
  EXPECT_EQ(Scale(3), u"T|F");
  EXPECT_EQ(Scale(4, true), u"Y|N");
  for (Long index : {5, 6, 7}) EXPECT_EQ(Scale(index), u"");
  for (const TaggedValue& index : {TaggedValue(8), TaggedValue(u"x"), TaggedValue(Null)}) {
    EXPECT_EQ(Scale(index), u"nothing");
  }
  EXPECT_EQ(test->MultipleChoiceEvenScale()->Count(), 5);

  const auto scale = test->QuestionScale(1);
  scale->RemoveAll();
  EXPECT_EQ(Scale(1), u"A|B|C");
  test->Questions()->Remove(1);
  EXPECT_EQ(Scale(u"2"), u"A|B|C|D|E||");
}

// Of questions that have the same ID by now, the first one's position decides for all.
TEST_F(AnswerScales, PositionIsThatOfTheFirstQuestionWithTheSameID) {
  Add(TORVATestQuestionTypeEssay, 0);
  Add(TORVATestQuestionTypeMultipleChoice, 1)->ID(u"a");
  Add(TORVATestQuestionTypeMultipleChoice, 1)->ID(u"A");
  EXPECT_EQ(Scale(2), u"F");
  EXPECT_EQ(Scale(u"3"), u"A");
  test->Questions()->Item(3)->ID(u"a");
  EXPECT_EQ(Scale(3), u"F");
  test->Questions()->Item(1)->ID(u"a");
  EXPECT_EQ(Scale(3), u"A");
}

TEST_F(AnswerScales, Overrides) {
  Add(TORVATestQuestionTypeMultipleChoice, 1);
  Add(TORVATestQuestionTypeMultipleChoice, 1);
  for (const TaggedValue& odd : {TaggedValue(true), TaggedValue(u"TRUE"), TaggedValue(Integer{-1}), TaggedValue(2),
                                 TaggedValue(u"-1"), TaggedValue(0.5)}) {
    EXPECT_EQ(Scale(2, odd), u"A");
  }
  for (const TaggedValue& even : {TaggedValue(false), TaggedValue(u"false"), TaggedValue(0), TaggedValue(u"0")}) {
    EXPECT_EQ(Scale(1, even), u"F");
  }
  for (const TaggedValue& unreadable : {TaggedValue(Null), TaggedValue(Empty), TaggedValue(u"odd")}) {
    EXPECT_EQ(Scale(1, unreadable), u"nothing");
    EXPECT_EQ(TakeFailures(), (Failures{{13, kQuestionScale}}));
  }
  EXPECT_EQ(Scale(1, test), u"nothing");
  EXPECT_EQ(TakeFailures(), (Failures{{13, u"TORVA35 - basPublic.CString"}, {13, kQuestionScale}}));
}

TEST_F(AnswerScales, CorrectAnswers) {
  Add(TORVATestQuestionTypeMultipleChoice, 5, {3, 1});
  Add(TORVATestQuestionTypeTrueFalse, 2, {2});
  Add(TORVATestQuestionTypeMultipleChoice, 5, {1, 9});
  Add(TORVATestQuestionTypeEssay, 0, {20, -15});
  Add(TORVATestQuestionTypeMultipleChoice, 5);
  Add(TORVATestQuestionTypeEssay, 0, {1});
  EXPECT_EQ(test->CorrectAnswersAsString(1), u"(C,A)");
  EXPECT_EQ(test->CorrectAnswersAsString(u"1", u" or ", false), u"C or A");
  EXPECT_EQ(test->CorrectAnswersAsString(1, u",", true, true), u"(3,1)");
  EXPECT_EQ(test->CorrectAnswersAsString(1, u""), u"(CA)");
  EXPECT_EQ(test->CorrectAnswersAsString(2), u"F");
  EXPECT_EQ(test->CorrectAnswersAsString(3), u"(A,)");
  EXPECT_EQ(test->CorrectAnswersAsString(4), u"(,)");
  EXPECT_EQ(test->CorrectAnswersAsString(4, u""), u"");
  EXPECT_EQ(test->CorrectAnswersAsString(4, u",", false, true), u"20,-15");
  for (Long index : {5, 6, 7}) EXPECT_EQ(test->CorrectAnswersAsString(index), u"");

  EXPECT_EQ(test->CorrectAnswersAsArray(1), (Array<String>{u"3", u"1"}));
  EXPECT_EQ(test->CorrectAnswersAsArray(3, true), (Array<String>{u"A", u""}));
  EXPECT_TRUE(test->CorrectAnswersAsArray(5).IsEmpty());
  EXPECT_TRUE(test->CorrectAnswersAsArray(7, true).IsEmpty());
}

TEST_F(AnswerScales, AListThatIsNothing) {
  const auto question = Add(TORVATestQuestionTypeMultipleChoice, 2, {1});
  question->Answers(nullptr);
  EXPECT_EQ(Scale(1), u"A|B|C|D|E");  // the copy as far as it got
  EXPECT_EQ(TakeFailures(), (Failures{{91, kQuestionScale}}));

  test->MultipleChoiceOddScale(nullptr);
  EXPECT_EQ(test->CorrectAnswersAsString(1), u"");
  EXPECT_EQ(TakeFailures(), (Failures{{91, kQuestionScale}, {91, kAsString}}));
  EXPECT_EQ(test->CorrectAnswersAsString(1, u",", true, true), u"1");
  EXPECT_TRUE(test->CorrectAnswersAsArray(1, true).IsEmpty());
  EXPECT_EQ(TakeFailures(), (Failures{{91, kQuestionScale}, {91, kQuestionScale}, {91, kAsArray}}));

  question->CorrectAnswers(nullptr);
  question->QuestionType(TORVATestQuestionTypeTrueFalse);
  EXPECT_EQ(test->CorrectAnswersAsString(1), u"");
  EXPECT_TRUE(test->CorrectAnswersAsArray(1).IsEmpty());
  EXPECT_EQ(TakeFailures(), (Failures{{91, kAsString}, {91, kAsArray}}));

  test->Questions(nullptr);
  EXPECT_EQ(Scale(1), u"nothing");
  EXPECT_EQ(TakeFailures(), (Failures{{91, kQuestionScale}}));
}

TEST_F(AnswerScales, CString) {
  using basPublic::CString;
  EXPECT_EQ(CString(Null) + CString(Empty) + CString(Missing), u"");
  EXPECT_EQ(CString(false) + CString(-5) + CString(2.5f) + CString(u"x"), u"False-52.5x");
  EXPECT_EQ(CString(nullptr), u"");
  EXPECT_EQ(TakeFailures(), (Failures{{13, u"TORVA35 - basPublic.CString"}}));
}

}  // namespace
}  // namespace TORVA35
