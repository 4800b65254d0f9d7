// The scales of a test: which labels a question has, and its answer key in those labels.

#include <algorithm>
#include <limits>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/model/Inside.h"
#include "torva35/model/ScaleTexts.h"
#include "torva35/model/basPublic.h"
#include "torva35/model/clsTORVATest.h"

namespace TORVA35 {
namespace {

constexpr Location kTrimScales(u"TORVA35 - clsTORVATest.TrimScales");
constexpr Location kQuestionScale(u"TORVA35 - clsTORVATest.QuestionScale");
constexpr Location kAsString(u"TORVA35 - clsTORVATest.CorrectAnswersAsString");
constexpr Location kAsArray(u"TORVA35 - clsTORVATest.CorrectAnswersAsArray");

// Which labels a question has, for all who show or store them.
struct Labelling {
  enum Extent {
    kUnknown,           // the question has no position that would tell
    kNone,              // its kind has no labels
    kWholeScale,        // as they are in the scale
    kOneForEachAnswer,  // the first ones of a longer scale, and empty ones after those of a shorter one
  };
  Extent extent;
  Ref<clsTORVATestStrings> scale;  // of the test, which may have lost it
};

// position: gives the position, or 0 for none. Asked for multiple choice only.
template <class Position>
Labelling LabellingOf(const clsTORVATest& test, const clsTORVATestQuestion& question, Position position) {
  switch (question.QuestionType()) {
    case TORVATestQuestionTypeTrueFalse:
      return {Labelling::kWholeScale, test.TrueFalseScale()};
    case TORVATestQuestionTypeYesNo:
      return {Labelling::kWholeScale, test.YesNoScale()};
    case TORVATestQuestionTypeMultipleChoice: {
      const Long number = position();
      if (number == 0) return {Labelling::kUnknown, nullptr};
      return {Labelling::kOneForEachAnswer,
              number % 2 == 1 ? test.MultipleChoiceOddScale() : test.MultipleChoiceEvenScale()};
    }
    default:
      return {Labelling::kNone, nullptr};
  }
}

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
      largest = std::max(largest, Need(Need(Inside::Find(Need(questions_), i)).Answers()).Count());
    }
    TrimTo(Need(multipleChoiceEvenScale_), largest);
    TrimTo(Need(multipleChoiceOddScale_), largest);
    result = true;
  });
}

Ref<clsTORVATestStrings> clsTORVATest::QuestionScale(const TaggedValue& vQuestionIndex,
                                                     const TaggedValue& vIsOddOverride) const {
  return Reported(kQuestionScale, Ref<clsTORVATestStrings>(), [&](Ref<clsTORVATestStrings>& result) {
    // Held, as what it asks of others may report, and a host may then take the question out.
    const Ref<clsTORVATestQuestion> held = Inside::Find(Need(questions_), vQuestionIndex);
    if (held == nullptr) return;
    const clsTORVATestQuestion& question = *held;
    const Labelling labels = LabellingOf(*this, question, [&]() -> Long {
      if (vIsOddOverride.IsMissing()) return Inside::PositionOfID(Need(questions_), vQuestionIndex);
      return BooleanOf(basPublic::CString(vIsOddOverride)) ? 1 : 2;
    });
    if (labels.extent == Labelling::kUnknown) return;
    result = labels.extent == Labelling::kNone ? New<clsTORVATestStrings>() : Need(labels.scale).Copy();
    if (labels.extent == Labelling::kOneForEachAnswer) FitTo(Need(result), Need(question.Answers()).Count());
  });
}

ScaleTexts::ScaleTexts(const clsTORVATest& test, const TaggedValue& vQuestionIndex) {
  if (ReadItself(test, vQuestionIndex)) return;
  scale_ = test.QuestionScale(vQuestionIndex);
  if (scale_ != nullptr) count_ = scale_->Count();
}

ScaleTexts::ScaleTexts(const clsTORVATest& test, const clsTORVATestQuestion& question, Long position, CallSite at)
    : scale_(LabellingOf(test, question, [&] { return position; }).scale), count_(Need(scale_, at).Count()) {}

// Whether a scale of the test tells what a copy would: when nothing is missing, and copying changes nothing.
bool ScaleTexts::ReadItself(const clsTORVATest& test, const TaggedValue& vQuestionIndex) {
  const Ref<clsTORVATestQuestions> questions = test.Questions();
  const Ref<clsTORVATestQuestion> question =
      questions == nullptr ? nullptr : Inside::Find(*questions, vQuestionIndex);
  if (question == nullptr) return false;
  const Labelling labels =
      LabellingOf(test, *question, [&] { return Inside::PositionOfID(*questions, vQuestionIndex); });
  scale_ = labels.scale;
  if (scale_ == nullptr || !Inside::CopiesAsItIs(*scale_)) return false;
  const bool fitted = labels.extent == Labelling::kOneForEachAnswer;
  const Ref<clsTORVATestStrings> counted = fitted ? question->Answers() : scale_;
  if (counted == nullptr) return false;
  count_ = Inside::Count(*counted);
  return true;
}

Long ScaleTexts::Count(CallSite at) const {
  Need(scale_, at);
  return count_;
}

String ScaleTexts::At(Long position, CallSite at) const {
  const String* text = Inside::Find(Need(scale_, at), position);
  return text == nullptr || position > count_ ? String() : *text;
}

namespace {

// Appends to the text, which keeps what it has when one raises. label: gives the text of an answer's number.
template <class Label>
void AddKey(String& text, const clsTORVATestCorrect& correct, const String& sDelimiter, bool bEnclosedByParens,
            Label label) {
  const Long count = Inside::Count(correct);
  for (Long i = 1; i <= count; ++i) {
    text += label(Inside::Item(correct, Narrow<Integer>(i)));
    text += sDelimiter;
  }
  if (text.empty()) return;
  text.resize(text.size() - sDelimiter.size());
  if (count > 1 && bEnclosedByParens) text = u"(" + text + u")";
}

}  // namespace

String clsTORVATest::CorrectAnswersAsString(const TaggedValue& vQuestionIndex, const String& sDelimiter,
                                            bool bEnclosedByParens, bool bNumeric) const {
  return Reported(kAsString, String(), [&](String& result) {
    if (Inside::Find(Need(questions_), vQuestionIndex) == nullptr) return;
    const ScaleTexts scale(*this, vQuestionIndex);
    const auto correct = Need(Inside::Find(Need(questions_), vQuestionIndex)).CorrectAnswers();
    AddKey(result, Need(correct), sDelimiter, bEnclosedByParens,
           [&](Integer number) { return bNumeric ? Decimal(number) : scale.At(number); });
  });
}

std::optional<KeyTexts> KeyTexts::Of(const clsTORVATest& test, const TaggedValue& vQuestionIndex,
                                     const clsTORVATestQuestion& question) {
  const Ref<clsTORVATestCorrect> correct = question.CorrectAnswers();
  ScaleTexts scale;
  if (correct == nullptr || Inside::Count(*correct) > std::numeric_limits<Integer>::max() ||
      !scale.ReadItself(test, vQuestionIndex)) {
    return std::nullopt;
  }
  KeyTexts key;
  AddKey(key.numbers, *correct, u",", true, [](Integer number) { return Decimal(number); });
  AddKey(key.labels, *correct, u",", true, [&](Integer number) { return scale.At(number); });
  return key;
}

Array<String> clsTORVATest::CorrectAnswersAsArray(const TaggedValue& vQuestionIndex, bool bAsString) const {
  return Reported(kAsArray, Array<String>(), [&](Array<String>& result) {
    if (Inside::Find(Need(questions_), vQuestionIndex) == nullptr) return;
    const ScaleTexts scale(*this, vQuestionIndex);
    const auto correct = Need(Inside::Find(Need(questions_), vQuestionIndex)).CorrectAnswers();
    const Long count = Inside::Count(Need(correct));
    if (count == 0) return;
    std::vector<String> answers;
    for (Long i = 1; i <= count; ++i) {
      const Integer number = Inside::Item(*correct, Narrow<Integer>(i));
      answers.push_back(bAsString ? scale.At(number) : Decimal(number));
    }
    result = Array<String>(0, std::move(answers));
  });
}

}  // namespace TORVA35
