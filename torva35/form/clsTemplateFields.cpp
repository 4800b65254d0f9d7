#include "torva35/form/clsTemplateFields.h"

#include "torva35/base/Arithmetic.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {

clsTemplateField::clsTemplateField() : questions_(New<clsTemplateQuestions>()) {
  Hold(*questions_);
}

clsTemplateField::~clsTemplateField() {
  LetGo(*questions_);
}

Integer clsTemplateField::QuestionCount(CallSite at) const {
  return Narrow<Integer>(Kept(Questions())->Count(), at);
}

void clsTemplateField::GroupID(Integer iGroup) {
  settings_.groupID = iGroup;
  StructureChanged();
}

Ref<clsTemplateField> clsTemplateField::Copy() const {
  const Kept copy(New<clsTemplateField>());
  copy->settings_ = settings_;
  const Kept questions(Questions());
  for (const Ref<clsTemplateQuestion>& question : *questions) copy->questions_->Add(question->Copy());
  return copy.Share();
}

}  // namespace TORVA35
