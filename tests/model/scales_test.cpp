#include <cmath>

#include "tests/RecordingHost.h"
#include "torva35/model/basPublic.h"
#include "torva35/model/clsTORVATest.h"

namespace TORVA35 {
namespace {

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
  for (const auto& [type, answers] : {std::pair(TORVATestQuestionTypeMultipleChoice, 3),
                                      {TORVATestQuestionTypeMultipleChoice, 7},
                                      {TORVATestQuestionTypeTrueFalse, 9},
                                      {TORVATestQuestionTypeYesNo, 0},
                                      {TORVATestQuestionTypeSubjective, 2},
                                      {TORVATestQuestionTypeUnknown, 2},
                                      {TORVATestQuestionTypeMultipleChoice, 0}}) {
    Add(type, answers);
  }
  const std::vector<std::pair<TaggedValue, String>> rows = {
      {1, u"A|B|C"}, {u"2", u"F|G|H|I|J||"}, {3, u"T|F"},        {4, u"Y|N"},       {5, u""}, {6, u""},
      {7, u""},      {8, u"nothing"},        {u"x", u"nothing"}, {Null, u"nothing"}};
  for (const auto& [index, scale] : rows) EXPECT_EQ(Scale(index), scale);
  test->QuestionScale(1)->RemoveAll();
  EXPECT_EQ(Scale(1), u"A|B|C");
  test->Questions()->Remove(1);
  EXPECT_EQ(Scale(u"2"), u"A|B|C|D|E||");
}

TEST_F(AnswerScales, PositionIsThatOfTheFirstQuestionWithTheSameID) {
  for (int i = 0; i < 3; ++i) Add(TORVATestQuestionTypeMultipleChoice, 1);
  EXPECT_EQ(Scale(3), u"A");
  test->Questions()->Item(3)->ID(u"2");
  EXPECT_EQ(Scale(3), u"F");
}

TEST_F(AnswerScales, Overrides) {
  Add(TORVATestQuestionTypeMultipleChoice, 1);
  Add(TORVATestQuestionTypeMultipleChoice, 1);
  using Values = std::vector<TaggedValue>;
  for (const TaggedValue& odd : Values{true, u"TRUE", Integer{-1}, 2, u"-1", 0.5, u" true"}) {
    EXPECT_EQ(Scale(2, odd), u"A");
  }
  for (const TaggedValue& even : Values{false, u"false", 0, u" 0 "}) EXPECT_EQ(Scale(1, even), u"F");
  for (const TaggedValue& unreadable : Values{Null, Empty, u"0 0"}) {
    EXPECT_EQ(Scale(1, unreadable), u"nothing");
    EXPECT_EQ(TakeFailures(), "13 clsTORVATest.QuestionScale");
  }
  EXPECT_EQ(Scale(1, test), u"nothing");
  EXPECT_EQ(TakeFailures(), "13 basPublic.CString, 13 clsTORVATest.QuestionScale");
}

TEST_F(AnswerScales, CorrectAnswers) {
  const std::vector<Integer> keys[] = {{3, 1}, {2}, {1, 9}, {20, -15}, {}, {1}, {4, 3}};
  const Long types[] = {3, 1, 3, 11, 3, 11, 3};
  for (std::size_t i = 0; i < 7; ++i) Add(types[i], i == 6 ? 3 : types[i] == 3 ? 5 : 0, keys[i]);
  // The last one is within the scale and beyond the answers.
  const char16_t* const texts[] = {u"(C,A)", u"F", u"(A,)", u"(,)", u"", u"", u"(,C)", u""};
  for (Long i = 1; i <= 8; ++i) EXPECT_EQ(test->CorrectAnswersAsString(i), texts[i - 1]);
  EXPECT_EQ(test->CorrectAnswersAsString(u"1", u" or ", false), u"C or A");
  EXPECT_EQ(test->CorrectAnswersAsString(1, u",", true, true), u"(3,1)");
  EXPECT_EQ(test->CorrectAnswersAsString(1, u""), u"(CA)");
  EXPECT_EQ(test->CorrectAnswersAsString(4, u""), u"");
  EXPECT_EQ(test->CorrectAnswersAsString(4, u",", false, true), u"20,-15");

  EXPECT_EQ(test->CorrectAnswersAsArray(1), (Array<String>{u"3", u"1"}));
  EXPECT_EQ(test->CorrectAnswersAsArray(3, true), (Array<String>{u"A", u""}));
  for (Long index : {5, 8}) EXPECT_TRUE(test->CorrectAnswersAsArray(index, true).IsEmpty());
}

TEST_F(AnswerScales, AListThatIsNothing) {
  const auto question = Add(TORVATestQuestionTypeMultipleChoice, 2, {1});
  question->Answers(nullptr);
  EXPECT_EQ(Scale(1), u"A|B|C|D|E");  // the copy as far as it got
  test->MultipleChoiceOddScale(nullptr);
  EXPECT_EQ(test->CorrectAnswersAsString(1), u"");
  EXPECT_TRUE(test->CorrectAnswersAsArray(1, true).IsEmpty());
  EXPECT_EQ(
      TakeFailures(),
      "91 clsTORVATest.QuestionScale, 91 clsTORVATest.QuestionScale, 91 clsTORVATest.CorrectAnswersAsString, "
      "91 clsTORVATest.QuestionScale, 91 clsTORVATest.CorrectAnswersAsArray");
  EXPECT_EQ(test->CorrectAnswersAsString(1, u",", true, true), u"1");
  test->Questions(nullptr);
  EXPECT_EQ(Scale(1), u"nothing");
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.QuestionScale, 91 clsTORVATest.QuestionScale");
}

TEST_F(AnswerScales, CString) {
  using basPublic::CString;
  EXPECT_EQ(CString(Null) + CString(Empty) + CString(Missing), u"");
  EXPECT_EQ(CString(false) + CString(-5) + CString(2.5f) + CString(u"x"), u"False-52.5x");
  EXPECT_EQ(CString(nullptr), u"");
  EXPECT_EQ(TakeFailures(), "13 basPublic.CString");
}

}  // namespace
}  // namespace TORVA35
