#pragma once

#include "torva35/base/Array.h"
#include "torva35/form/TemplatePart.h"
#include "torva35/form/clsTemplatePages.h"

namespace TORVA35 {

/// A form: pages of fields of questions, each question with the labels and values of its answer positions.
///
/// All lists are 1-based. A host builds a form from the top down or from the bottom up:
///
///     auto oField = New<clsTemplateField>();
///     oField->Questions()->AddNew();
///     oField->Questions()->Item(1)->Labels()->Add(u"A");
///     auto oPage = New<clsTemplatePage>();
///     oPage->Fields()->Add(oField);
///     oForm->Pages()->Add(oPage);
///
/// Each part belongs to one place. What a merge calls is virtual, so that a host can put its own objects in.
class TORVA35_API clsTemplate : public TemplatePart {
 public:
  clsTemplate();
  ~clsTemplate() override;

  /// The pages, in their order; the form's own list.
  virtual Ref<clsTemplatePages> Pages() const { return pages_; }

  /// Number of pages, which is the position of the last one. Raises 6 beyond an Integer, as do the next two.
  virtual Integer PageCount(CallSite at = CallSite::Current()) const;
  /// Number of questions of all fields, in groups or not, graded or not.
  virtual Integer QuestionCount(CallSite at = CallSite::Current()) const;
  /// Number of questions whose `Graded` is True, counted at each call by walking the form.
  virtual Integer GradedCount(CallSite at = CallSite::Current()) const;

  /// Empties the form.
  virtual void Clear();

  /// Names of the questions at positions lFirst to lLast in the order of pages, fields and questions, with lower
  /// bound 1; no elements when lLast is lFirst - 1. Raises 9 for a position that does not exist. The other
  /// arguments have no effect.
  virtual Array<String> QuestionNames(Long lFirst, Long lLast, Long lArgument3, String sDelimiter, Long lArgument5,
                                      CallSite at = CallSite::Current()) const;

  /// A new form that is equal in everything, numbers set by the host included, and shares nothing with this one.
  /// The arguments have no effect.
  virtual Ref<clsTemplate> Copy(bool bArgument1, bool bArgument2) const;

 protected:
  const clsTemplate* Form() const override { return this; }
  void StructureChanged() override { numbered_ = false; }

 private:
  friend class clsTemplateQuestion;

  // Calls visit with each field, in order.
  template <class Visit>
  void EachField(Visit visit) const;
  Long AllQuestions(CallSite at) const;
  // Gives every question its position among the output questions of a merge, unless all have theirs.
  void NumberQuestions(CallSite at) const;

  Ref<clsTemplatePages> pages_;
  mutable bool numbered_ = false;
};

}  // namespace TORVA35
