#pragma once

#include <unordered_map>

#include "torva35/base/Array.h"
#include "torva35/base/CallSite.h"
#include "torva35/base/Text.h"
#include "torva35/base/Types.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/Collection.h"
#include "torva35/model/ScaleTexts.h"

namespace TORVA35 {

/// One call of `Merge`, from the copied form on. Its steps raise; the member that runs them reports. All that the
/// walk over the form holds is in this object, which outlives a fault of a host's object: its steps keep no
/// references in locals while they call what may be a host's.
class FormMerge {
 public:
  FormMerge(clsTORVA& engine, clsTORVATest& test)
      : engine_(engine), test_(test), form_(engine.templateOut_), lmf_(engine.lmf_) {}

  /// Reads the names of the questions from the copy of the form in `TemplateOut`.
  void Begin(CallSite at = CallSite::Current());
  /// Enters every objective of the test into the data file, once each.
  void EnterObjectives();
  /// Switches off the last graded questions of the form, so that lExcess fewer are left.
  void SwitchOff(Long lExcess);
  /// Visits the questions of the form. False when a dialog said why it cannot go on.
  bool MergeForm();
  /// Gives the k-th subjective question of the test, from 1, a field and an output question of its own.
  void MergeSubjective(Long k);

  /// For the ID of each graded question of the test, the position of its output question.
  const Collection& QuestionPositions() const { return questionPositions_; }

 private:
  // Each is about the field, the question of the form and the output question at which the walk stands.
  ///@{
  bool MergeQuestion();
  void CopyFromForm();
  bool TakeTestQuestion();
  void TakeScale();
  Long TakeLabels();
  void AddFlags();
  void MarkObjectives();
  bool IsChoiceField() const;
  ///@}
  ScaleTexts Scale() const;
  void FindObjectives();
  void NextTestQuestion(CallSite at = CallSite::Current());
  String NextName(CallSite at = CallSite::Current());

  clsTORVA& engine_;
  clsTORVATest& test_;
  Ref<clsTemplate> form_;
  Ref<clsLmf> lmf_;
  // Where the walk stands.
  Ref<clsTemplateField> field_;
  Ref<clsTemplateQuestion> formQuestion_;
  Ref<clsTORVATestQuestion> testQuestion_;
  Ref<clsLmfQuestion> output_;
  // Only read: what a fresh question holds by itself.
  Ref<clsLmfQuestion> sharedQuestion_ = New<clsLmfQuestion>();
  Array<String> names_;  // of the form's questions, in its order
  Collection questionPositions_;
  std::unordered_map<String, Long, HashNoCase, SameNoCase> objectives_;  // from the text to its first position
  Long testPosition_ = 0;
  Long outputPosition_ = 0;
};

}  // namespace TORVA35
