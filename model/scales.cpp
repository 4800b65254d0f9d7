// The scales of a test: which labels a question has, and its answer key in those labels.

#include <algorithm>
#include <vector>

#include "base/Arithmetic.h"
#include "base/Text.h"
#include "errors/Reported.h"
#include "model/basPublic.h"
#include "model/clsTORVATest.h"

namespace TORVA35 {
namespace {

constexpr Location kTrimScales(u"TORVA35 - clsTORVATest.TrimScales");
constexpr Location kQuestionScale(u"TORVA35 - clsTORVATest.QuestionScale");
constexpr Location kAsString(u"TORVA35 - clsTORVATest.CorrectAnswersAsString");
constexpr Location kAsArray(u"TORVA35 - clsTORVATest.CorrectAnswersAsArray");

void TrimTo(clsTORVATestStrings& scale, Long count) {
  for (Long i = scale.Count(); i > count; --i) scale.Remove(i);
}

void FitTo(clsTORVATestStrings& scale, Long count) {
  TrimTo(scale, count);
  for (Long i = scale.Count(); i < count; ++i) scale.Add({});
}

}  // namespace

bool clsTORVATest::TrimScales() {
  return Reported(kTrimScales, false, [&](bool& result) {
    Long largest = 0;
    const Long count = Need(questions_).Count();
    for (Long i = 1; i <= count; ++i) {
      largest = std::max(largest, Need(Need(Need(questions_).Find(i)).Answers()).Count());
    }
    TrimTo(Need(multipleChoiceEvenScale_), largest);
    TrimTo(Need(multipleChoiceOddScale_), largest);
    result = true;
  });
}

Ref<clsTORVATestStrings> clsTORVATest::QuestionScale(const TaggedValue& vQuestionIndex,
                                                     const TaggedValue& vIsOddOverride) const {
  return Reported(kQuestionScale, Ref<clsTORVATestStrings>(), [&](Ref<clsTORVATestStrings>& result) {
    if (!Need(questions_).Exists(vQuestionIndex)) return;
    // Held, as what it asks of others may report, and a host may then take the question out.
    const Ref<clsTORVATestQuestion> held = Need(questions_).Find(vQuestionIndex);
    const clsTORVATestQuestion& question = Need(held);
    switch (question.QuestionType()) {
      case TORVATestQuestionTypeTrueFalse:
        result = Need(trueFalseScale_).Copy();
        return;
      case TORVATestQuestionTypeYesNo:
        result = Need(yesNoScale_).Copy();
        return;
      case TORVATestQuestionTypeMultipleChoice:
        break;
      default:
        result = New<clsTORVATestStrings>();
        return;
    }
    Long number = 0;
    if (!vIsOddOverride.IsMissing()) {
      number = BooleanOf(basPublic::CString(vIsOddOverride)) ? 1 : 2;
    } else {
      number = Need(questions_).PositionOfID(question.ID());
      if (number == 0) return;
    }
    result = Need(number % 2 == 1 ? multipleChoiceOddScale_ : multipleChoiceEvenScale_).Copy();
    FitTo(Need(result), Need(question.Answers()).Count());
  });
}

String clsTORVATest::CorrectAnswersAsString(const TaggedValue& vQuestionIndex, const String& sDelimiter,
                                            bool bEnclosedByParens, bool bNumeric) const {
  return Reported(kAsString, String(), [&](String& result) {
    if (!Need(questions_).Exists(vQuestionIndex)) return;
    const auto scale = QuestionScale(vQuestionIndex);
    const auto correct = Need(Need(questions_).Find(vQuestionIndex)).CorrectAnswers();
    const Long count = Need(correct).Count();
    for (Long i = 1; i <= count; ++i) {
      const Integer number = Need(correct).Item(Narrow<Integer>(i));
      result += bNumeric ? Decimal(number) : Need(scale).Item(number);
      result += sDelimiter;
    }
    if (result.empty()) return;
    result.resize(result.size() - sDelimiter.size());
    if (count > 1 && bEnclosedByParens) result = u"(" + result + u")";
  });
}

Array<String> clsTORVATest::CorrectAnswersAsArray(const TaggedValue& vQuestionIndex, bool bAsString) const {
  return Reported(kAsArray, Array<String>(), [&](Array<String>& result) {
    if (!Need(questions_).Exists(vQuestionIndex)) return;
    const auto scale = QuestionScale(vQuestionIndex);
    const auto correct = Need(Need(questions_).Find(vQuestionIndex)).CorrectAnswers();
    const Long count = Need(correct).Count();
    if (count == 0) return;
    std::vector<String> answers;
    for (Long i = 1; i <= count; ++i) {
      const Integer number = Need(correct).Item(Narrow<Integer>(i));
      answers.push_back(bAsString ? Need(scale).Item(number) : Decimal(number));
    }
    result = Array<String>(0, std::move(answers));
  });
}

}  // namespace TORVA35
