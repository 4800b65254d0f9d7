#include "torva35/model/clsTORVATestQuestion.h"

#include <algorithm>

#include "torva35/errors/Reported.h"
#include "torva35/model/clsTORVATestQuestions.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATestQuestion.Class_Initialize");
constexpr Location kCopy(u"TORVA35 - clsTORVATestQuestion.Copy");

}  // namespace

clsTORVATestQuestion::clsTORVATestQuestion() {
  ReportedConstruction(kInitialize, [&] {
    learningObjectives_ = New<clsTORVATestStrings>();
    answers_ = New<clsTORVATestStrings>();
    correctAnswers_ = New<clsTORVATestCorrect>();
  });
}

bool clsTORVATestQuestion::MultiplesPermitted(CallSite at) const {
  return Need(correctAnswers_, at).Count() > 1 && correctAnd_;
}

void clsTORVATestQuestion::ID(String sValue) {
  id_ = Cut(std::move(sValue), kIDLimit);
  if (holder_ != nullptr) holder_->IDChanged();
  for (clsTORVATestQuestions* list : otherHolders_) list->IDChanged();
}

void clsTORVATestQuestion::MakeRoomForHolder() {
  if (holder_ != nullptr) otherHolders_.reserve(otherHolders_.size() + 1);
}

void clsTORVATestQuestion::AddHolder(clsTORVATestQuestions& list) noexcept {
  if (holder_ == nullptr) {
    holder_ = &list;
  } else {
    otherHolders_.push_back(&list);
  }
}

void clsTORVATestQuestion::RemoveHolder(const clsTORVATestQuestions& list) noexcept {
  if (const auto other = std::ranges::find(otherHolders_, &list); other != otherHolders_.end()) {
    otherHolders_.erase(other);
  } else {
    holder_ = nullptr;
  }
}

Ref<clsTORVATestQuestion> clsTORVATestQuestion::Copy() const {
  return Reported(kCopy, Ref<clsTORVATestQuestion>(), [&](Ref<clsTORVATestQuestion>& result) {
    auto copy = New<clsTORVATestQuestion>();
    Need(copy->answers_).AddDelimitedString(Need(answers_).AsString(u"\t"), u"\t");
    Need(copy->learningObjectives_).AddDelimitedString(Need(learningObjectives_).AsString(u"\t"), u"\t");
    copy->QuestionText(QuestionText());
    copy->Difficulty(Difficulty());
    copy->Reference(Reference());
    copy->Topic(Topic());
    copy->Keywords(Keywords());
    copy->Miscellaneous(Miscellaneous());
    copy->Notes(Notes());
    copy->ID(ID());
    copy->QuestionType(QuestionType());
    copy->CorrectPoints(CorrectPoints());
    copy->IncorrectPoints(IncorrectPoints());
    copy->NoResponsePoints(NoResponsePoints());
    copy->SubjectivePoints(SubjectivePoints());
    copy->CorrectAnd(CorrectAnd());
    copy->CorrectAnswers(Need(correctAnswers_).Copy());
    result = std::move(copy);
  });
}

}  // namespace TORVA35
