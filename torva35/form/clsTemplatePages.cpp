#include "torva35/form/clsTemplatePages.h"

namespace TORVA35 {

clsTemplatePage::clsTemplatePage() : fields_(New<clsTemplateFields>()) {
  Hold(*fields_);
}

clsTemplatePage::~clsTemplatePage() {
  LetGo(*fields_);
}

Ref<clsTemplatePage> clsTemplatePage::Copy() const {
  auto copy = New<clsTemplatePage>();
  const Ref<clsTemplateFields> fields = Fields();
  for (const Ref<clsTemplateField>& field : *fields) copy->fields_->Add(field->Copy());
  return copy;
}

}  // namespace TORVA35
