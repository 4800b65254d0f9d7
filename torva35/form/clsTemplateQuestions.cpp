#include "torva35/form/clsTemplateQuestions.h"

#include <utility>
#include <vector>

#include "torva35/form/clsTemplate.h"

namespace TORVA35 {
namespace {

// Both lists of a question, in one allocation.
struct Lists {
  Lists() = default;
  Lists(const clsTemplateStrings* from, const clsTemplateStrings* fromValues)
      : labels(TextsOf(from)), values(TextsOf(fromValues)) {}

  static std::vector<String> TextsOf(const clsTemplateStrings* strings) {
    if (strings == nullptr) return {};
    return std::vector<String>(strings->begin(), strings->end());
  }

  clsTemplateStrings labels;
  clsTemplateStrings values;
};

}  // namespace

clsTemplateQuestion::clsTemplateQuestion() {
  const auto lists = New<Lists>();
  labels_ = Ref<clsTemplateStrings>(lists, &lists->labels);
  values_ = Ref<clsTemplateStrings>(lists, &lists->values);
}

clsTemplateQuestion::clsTemplateQuestion(Ref<clsTemplateStrings> oLabels, Ref<clsTemplateStrings> oValues)
    : labels_(std::move(oLabels)), values_(std::move(oValues)) {}

Long clsTemplateQuestion::Number(bool, CallSite at) const {
  if (settings_.number) return *settings_.number;
  const clsTemplate* form = Form();
  if (form == nullptr) return 0;
  form->NumberQuestions(at);
  return position_;
}

Ref<clsTemplateQuestion> clsTemplateQuestion::Copy() const {
  const auto lists = New<Lists>(labels_.get(), values_.get());
  const auto listOf = [&](const Ref<clsTemplateStrings>& own, clsTemplateStrings& copied) {
    return own == nullptr ? nullptr : Ref<clsTemplateStrings>(lists, &copied);
  };
  auto copy = New<clsTemplateQuestion>(listOf(labels_, lists->labels), listOf(values_, lists->values));
  copy->settings_ = settings_;
  return copy;
}

void clsTemplateQuestions::AddNew() {
  Add(New<clsTemplateQuestion>());
}

}  // namespace TORVA35
