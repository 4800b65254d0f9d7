#include "torva35/form/clsTemplateFields.h"

#include "torva35/base/Arithmetic.h"

namespace TORVA35 {

clsTemplateField::clsTemplateField() : questions_(New<clsTemplateQuestions>()) {
  Hold(*questions_);
}

clsTemplateField::~clsTemplateField() {
  LetGo(*questions_);
}

Integer clsTemplateField::QuestionCount(CallSite at) const {
  return Narrow<Integer>(Questions()->Count(), at);
}

void clsTemplateField::GroupID(Integer iGroup) {
  settings_.groupID = iGroup;
  StructureChanged();
}

Ref<clsTemplateField> clsTemplateField::Copy() const {
  auto copy = New<clsTemplateField>();
  copy->settings_ = settings_;
  const Ref<clsTemplateQuestions> questions = Questions();
  for (const Ref<clsTemplateQuestion>& question : *questions) copy->questions_->Add(question->Copy());
  return copy;
}

}  // namespace TORVA35
