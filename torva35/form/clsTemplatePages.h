#pragma once

#include "torva35/form/TemplatePart.h"
#include "torva35/form/clsTemplateFields.h"

namespace TORVA35 {

/// One page of a form. A new one has no fields.
class TORVA35_API clsTemplatePage : public TemplatePart {
 public:
  clsTemplatePage();
  ~clsTemplatePage() override;

  /// The fields, in the order in which their questions are numbered; the page's own list.
  virtual Ref<clsTemplateFields> Fields() const { return fields_; }

  /// A new page with fields of its own, equal in everything, that belongs to no form.
  virtual Ref<clsTemplatePage> Copy() const;

 private:
  Ref<clsTemplateFields> fields_;
};

/// The pages of a form, in their order.
class TORVA35_API clsTemplatePages : public TemplateList<clsTemplatePage> {};

}  // namespace TORVA35
