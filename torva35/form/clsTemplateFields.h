#pragma once

#include <utility>

#include "torva35/form/TemplatePart.h"
#include "torva35/form/clsTemplateQuestions.h"

namespace TORVA35 {

/// A named area of a form, such as a block of answer bubbles. A new one has no questions, and 0, False or the
/// empty text everywhere.
class TORVA35_API clsTemplateField : public TemplatePart {
 public:
  clsTemplateField();
  ~clsTemplateField() override;

  /// The questions, in their order; the field's own list.
  virtual Ref<clsTemplateQuestions> Questions() const { return questions_; }
  /// How many of the questions a merge visits, from position 1: all of them. Raises 6 beyond an Integer.
  virtual Integer QuestionCount(CallSite at = CallSite::Current()) const;

  /// Shown to the user when a question of the test has too many answers for this field.
  virtual String Name() const { return settings_.name; }
  virtual void Name(String sName) { settings_.name = std::move(sName); }

  /// 1: the questions take answer labels from a test, when `FieldType` allows it. 2: a field that a merge added.
  virtual Long FieldClass() const { return settings_.fieldClass; }
  virtual void FieldClass(Long lClass) { settings_.fieldClass = lClass; }
  /// 1, 4 and 6: a field of choices, whose labels a merge may rewrite. 3: a field that a merge added.
  virtual Long FieldType() const { return settings_.fieldType; }
  virtual void FieldType(Long lType) { settings_.fieldType = lType; }
  /// 1 gives an output question `QuestionMode` 1, any other value 2.
  virtual Long FieldMode() const { return settings_.fieldMode; }
  virtual void FieldMode(Long lMode) { settings_.fieldMode = lMode; }

  /// 0: the field stands alone. Fields that follow one another with the same other value form one group, of which
  /// a merge visits only the first.
  virtual Integer GroupID() const { return settings_.groupID; }
  void GroupID(Integer iGroup);

  /// True: the field holds a question that is scored by hand.
  virtual bool Subjective() const { return settings_.subjective; }
  virtual void Subjective(bool bSubjective) { settings_.subjective = bSubjective; }

  /// A new field, equal in everything and with questions of its own, that belongs to no form.
  virtual Ref<clsTemplateField> Copy() const;

 private:
  struct Settings {
    String name;
    Long fieldClass = 0;
    Long fieldType = 0;
    Long fieldMode = 0;
    Integer groupID = 0;
    bool subjective = false;
  };

  Settings settings_;
  Ref<clsTemplateQuestions> questions_;
};

/// The fields of a page, in the order in which the questions of the form are numbered.
class TORVA35_API clsTemplateFields : public TemplateList<clsTemplateField> {};

}  // namespace TORVA35
