#include "torva35/model/clsTORVATestQuestion.h"

#include <algorithm>

#include "torva35/errors/Reported.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATestQuestion.Class_Initialize");
constexpr Location kTerminate(u"TORVA35 - clsTORVATestQuestion.Class_Terminate");
constexpr Location kCopy(u"TORVA35 - clsTORVATestQuestion.Copy");

}  // namespace

clsTORVATestQuestion::clsTORVATestQuestion() {
  ReportedConstruction(kInitialize, [&] {
    // A test has thousands of questions: one allocation for all three.
    struct Lists {
      clsTORVATestStrings learningObjectives;
      clsTORVATestStrings answers;
      clsTORVATestCorrect correctAnswers;
    };
    const auto lists = std::make_shared<Lists>();
    learningObjectives_ = Ref<clsTORVATestStrings>(lists, &lists->learningObjectives);
    answers_ = Ref<clsTORVATestStrings>(lists, &lists->answers);
    correctAnswers_ = Ref<clsTORVATestCorrect>(lists, &lists->correctAnswers);
  });
}

clsTORVATestQuestion::~clsTORVATestQuestion() {
  ReportedRelease(kTerminate, CallSite::Current(), learningObjectives_, answers_, correctAnswers_);
}

bool clsTORVATestQuestion::MultiplesPermitted(CallSite at) const {
  return Need(correctAnswers_, at).Count() > 1 && correctAnd_;
}

void clsTORVATestQuestion::ID(String sValue) {
  id_ = Cut(std::move(sValue), kIDUnits);
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
  if (const auto other = std::find(otherHolders_.begin(), otherHolders_.end(), &list);
      other != otherHolders_.end()) {
    otherHolders_.erase(other);
  } else {
    holder_ = nullptr;
  }
}

Ref<clsTORVATestQuestion> clsTORVATestQuestion::Copy() const {
  return Reported(kCopy, Ref<clsTORVATestQuestion>(), [&](Ref<clsTORVATestQuestion>& result) {
    auto copy = New<clsTORVATestQuestion>();
    Inside::AddCopies(Need(copy->answers_), Need(answers_));
    Inside::AddCopies(Need(copy->learningObjectives_), Need(learningObjectives_));
    copy->questionText_ = questionText_;
    copy->difficulty_ = difficulty_;
    copy->reference_ = reference_;
    copy->topic_ = topic_;
    copy->keywords_ = keywords_;
    copy->miscellaneous_ = miscellaneous_;
    copy->notes_ = notes_;
    copy->id_ = id_;
    copy->questionType_ = questionType_;
    copy->correctPoints_ = correctPoints_;
    copy->incorrectPoints_ = incorrectPoints_;
    copy->noResponsePoints_ = noResponsePoints_;
    copy->subjectivePoints_ = subjectivePoints_;
    copy->correctAnd_ = correctAnd_;
    copy->correctAnswers_ = Inside::CopyTo(copy->correctAnswers_, Need(correctAnswers_));
    result = std::move(copy);
  });
}

}  // namespace TORVA35
