#include "torva35/form/clsTemplateQuestions.h"

#include <utility>

#include "torva35/form/clsTemplate.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {
namespace {

Ref<clsTemplateStrings> CopyOf(const Ref<clsTemplateStrings>& strings) {
  return strings ? strings->Copy() : nullptr;
}

}  // namespace

clsTemplateQuestion::clsTemplateQuestion()
    : clsTemplateQuestion(New<clsTemplateStrings>(), New<clsTemplateStrings>()) {}

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
  const Kept labels(CopyOf(labels_));
  auto copy = New<clsTemplateQuestion>(labels.Share(), CopyOf(values_));
  copy->settings_ = settings_;
  return copy;
}

void clsTemplateQuestions::AddNew() {
  Add(New<clsTemplateQuestion>());
}

}  // namespace TORVA35
