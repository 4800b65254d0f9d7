#pragma once

#include <unordered_map>

#include "torva35/base/Array.h"
#include "torva35/base/CallSite.h"
#include "torva35/base/Types.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/Collection.h"
#include "torva35/model/ScaleTexts.h"

namespace TORVA35 {

/// One call of `Merge`, from the copied form on: what the walk over the form carries along. Its steps raise; the
/// member that runs them reports.
class FormMerge {
 public:
  /// From the copy of the form in `TemplateOut`.
  FormMerge(clsTORVA& engine, clsTORVATest& test);

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
  bool MergeQuestion(const clsTemplateField& field, clsTemplateQuestion& formQuestion);
  bool TakeTestQuestion(const clsTemplateField& field, clsTemplateQuestion& formQuestion, clsLmfQuestion& output);
  void TakeScale(const clsTORVATestQuestion& question, clsTemplateQuestion& formQuestion, clsLmfQuestion& output);
  ScaleTexts Scale(const clsTORVATestQuestion& question) const;
  void CopyFromForm(const clsTemplateField& field, const clsTemplateQuestion& formQuestion,
                    clsLmfQuestion& output);
  void AddFlags(clsLmfQuestion& output);
  void MarkObjectives(const clsTORVATestQuestion& question, clsLmfQuestion& output);
  void FindObjectives();
  Ref<clsTORVATestQuestion> NextTestQuestion(CallSite at = CallSite::Current());
  String NextName(CallSite at = CallSite::Current());

  clsTORVA& engine_;
  clsTORVATest& test_;
  Ref<clsTemplate> form_;
  Ref<clsLmf> lmf_;
  // Only read: what a fresh question holds by itself.
  Ref<clsLmfQuestion> sharedQuestion_ = New<clsLmfQuestion>();
  Array<String> names_;  // of the form's questions, in its order
  Collection questionPositions_;
  std::unordered_map<String, Long> objectives_;  // from the folded text to its first position
  Long testPosition_ = 0;
  Long outputPosition_ = 0;
};

}  // namespace TORVA35
