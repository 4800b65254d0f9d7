#include "torva35/form/clsTemplatePages.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {

clsTemplatePage::clsTemplatePage() : fields_(New<clsTemplateFields>()) {
  Hold(*fields_);
}

clsTemplatePage::~clsTemplatePage() {
  LetGo(*fields_);
}

Ref<clsTemplatePage> clsTemplatePage::Copy() const {
  const Kept copy(New<clsTemplatePage>());
  const Kept fields(Fields());
  for (const Ref<clsTemplateField>& field : *fields) copy->fields_->Add(field->Copy());
  return copy.Share();
}

}  // namespace TORVA35
