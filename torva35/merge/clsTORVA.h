#pragma once

#include <memory>
#include <utility>

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/Types.h"
#include "torva35/form/clsTemplate.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/model/clsTORVATests.h"

namespace TORVA35 {

/// The engine: lays a test over a form. A host calls, in this order: `SetError`; `Tests.Add` for the master test
/// and then for each of its versions; `RemoveInvalid`; with several tests `ValidTestVersions`; sets `TemplateIn`,
/// `TemplateOut` and with several tests `SequenceQuestion`; `Merge`; and reads `TemplateOut`, `MIVLMF` and
/// `SequenceQuestion`. A False on the way ends it.
///
/// The plain properties have no failure. The other members report theirs to the error object and return False.
/// Their dialogs, too, go through the error object: without one, a member fails (91) at its first dialog.
class TORVA35_API clsTORVA : public Object, public std::enable_shared_from_this<clsTORVA> {
 public:
  clsTORVA();
  ~clsTORVA() override;

  /// The form as the host has it; nothing at first. Shared, and never changed.
  Ref<clsTemplate> TemplateIn() const { return templateIn_; }
  void TemplateIn(Ref<clsTemplate> oValue) { templateIn_ = std::move(oValue); }
  /// The merged form; nothing at first. It must hold some form before `Merge`, which empties that object and then
  /// puts another one here. So it is neither the form of `TemplateIn` nor a result that is still wanted.
  Ref<clsTemplate> TemplateOut() const { return templateOut_; }
  void TemplateOut(Ref<clsTemplate> oValue) { templateOut_ = std::move(oValue); }
  /// The tests: the master test first, then its versions. An empty list at first.
  Ref<clsTORVATests> Tests() const { return tests_; }
  void Tests(Ref<clsTORVATests> oValue) { tests_ = std::move(oValue); }
  /// The data file that `Merge` empties and fills. A new one at first.
  Ref<clsLmf> MIVLMF() const { return lmf_; }
  void MIVLMF(Ref<clsLmf> oValue) { lmf_ = std::move(oValue); }

  /// Takes out of every test, in place, the questions that a form cannot grade (all but true/false, yes/no,
  /// multiple choice and subjective ones), and those after the first lMaxQuestions when that is above 0. A test
  /// that lost a question is left with one version, the default one, under the test's `Version`. Returns False
  /// when a test has no question left, or on a failure (as for a lMaxQuestions of 2147483647, which overflows);
  /// later tests are then as they were.
  bool RemoveInvalid(Long lMaxQuestions = 0);

  /// Merges the first test into a copy of `TemplateIn`, by position: the first graded question of the form takes
  /// the first question of the test. Surplus graded questions at the end of the form stop being graded. `MIVLMF`
  /// gets one question for each question of the form, and the question orders of all tests. Returns False when a
  /// check fails or a call does. Nothing is rolled back: checks of the inputs leave all as it was, a later end
  /// leaves `TemplateOut` and `MIVLMF` as far as they came.
  bool Merge();

  /// Whether `RemoveInvalid` and `Merge` show their dialogs; True at first. Results are the same either way.
  bool Verbose() const { return verbose_; }
  void Verbose(bool bValue) { verbose_ = bValue; }

  /// Whether every test has the questions of the first one, by ID, with as many answers and the same answer key.
  /// Shows a dialog at the first difference, whatever `Verbose` says. True for one test or none. Call it after
  /// `RemoveInvalid`: keys are compared as `GetBitWiseRepresentation` gives them, and where one has a number above
  /// 31, an overflow (6) is reported, the rest of that key is left out, and the check goes on.
  bool ValidTestVersions();

  /// Position, from 1, among the questions of `MIVLMF`, of the question whose labels are the version identifiers;
  /// 0 at first. `Merge` lowers it by the questions before it that stop being graded, although these stay in
  /// `MIVLMF`: let the question come before all graded ones, and set this before each merge.
  Long SequenceQuestion() const { return sequenceQuestion_; }
  void SequenceQuestion(Long lValue) { sequenceQuestion_ = lValue; }

  /// Makes oErr the error object of the calling thread, for every object of the library. Returns True when oErr is
  /// an object, and False when it is nothing: failures then show in a message box.
  bool SetError(const Ref<Object>& oErr);

 private:
  friend class FormMerge;

  bool BuildSequences(const Collection& oQuestionPositions);
  bool ValidVersionIdentifier(const String& sVersion) const;
  void Tell(const char16_t* title, String text, CallSite at = CallSite::Current());

  Ref<clsTemplate> templateIn_;
  Ref<clsTemplate> templateOut_;
  Ref<clsTORVATests> tests_;
  Ref<clsLmf> lmf_;
  bool verbose_ = true;
  Long sequenceQuestion_ = 0;
};

}  // namespace TORVA35
