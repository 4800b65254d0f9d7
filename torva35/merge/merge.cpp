// The order of a merge: its checks, the preparation of the outputs, and the walk over the form.

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/merge/FormMerge.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr Location kMerge(u"TORVA35 - clsTORVA.Merge");

// In the order in which they can show.
constexpr const char16_t* kInvalidTest =
    u"An error occurred merging the specified template and test. The test is invalid. Operation aborted.";
constexpr const char16_t* kInvalidTemplate =
    u"An error occurred merging the specified template and test. The template is invalid. Operation aborted.";
constexpr const char16_t* kEmptyTemplate =
    u"An error occurred merging the specified template and test. The template does not contain any questions. "
    u"Operation aborted.";
constexpr const char16_t* kEmptyTest =
    u"An error occurred merging the specified template and test. The test does not contain any questions. "
    u"Operation "
    u"aborted.";
constexpr const char16_t* kMoreGraded =
    u"An error occurred merging the test with the specified template. The test contains more graded questions "
    u"than "
    u"the specified template. Operation aborted.";
constexpr const char16_t* kOtherGraded =
    u"An error occurred merging the test with the specified template. The test contains a different number of "
    u"graded "
    u"questions than the specified template. Operation aborted.";

}  // namespace

bool clsTORVA::Merge() {
  return Reported(kMerge, false, [&](bool& result) {
    if (Need(tests_).Count() == 0) return Tell(u"Invalid test", kInvalidTest);
    const Ref<clsTORVATest> test = Need(tests_).Item(1);
    if (templateIn_ == nullptr) return Tell(u"Invalid Template", kInvalidTemplate);
    if (templateIn_->QuestionCount() == 0) return Tell(u"Invalid Template", kEmptyTemplate);
    const Ref<clsTORVATestQuestions> questions = Need(test).Questions();
    if (Need(questions).Count() == 0) return Tell(u"Invalid test", kEmptyTest);
    const Long subjective = questions->TypeCount(TORVATestQuestionTypeSubjective);
    const Long graded = CheckedSubtract(questions->Count(), subjective);
    if (graded > Need(templateIn_).GradedCount()) return Tell(u"Invalid Merge", kMoreGraded);

    Need(templateOut_).Clear();
    templateOut_ = Need(templateIn_).Copy(true, false);
    FormMerge merge(*this, *test);

    Need(lmf_).Clear();
    Need(lmf_).PageCount(Need(templateIn_).PageCount());
    Need(lmf_).Mode(1);
    Need(lmf_).Prepare();
    merge.EnterObjectives();

    const Long excess = CheckedSubtract(Long{Need(templateOut_).GradedCount()}, graded);
    if (excess > 0) merge.SwitchOff(excess);
    if (graded != Need(templateOut_).GradedCount()) return Tell(u"Invalid Merge", kOtherGraded);

    if (!merge.MergeForm()) return;
    for (Long k = 1; k <= subjective; ++k) merge.MergeSubjective(k);
    result = BuildSequences(merge.QuestionPositions());
  });
}

FormMerge::FormMerge(clsTORVA& engine, clsTORVATest& test)
    : engine_(engine), test_(test), form_(engine.templateOut_), lmf_(engine.lmf_) {
  names_ = Need(form_).QuestionNames(1, form_->QuestionCount(), 0, u"\t", 0);
  names_.UBound();  // a form without names cannot be merged
}

void FormMerge::EnterObjectives() {
  const Ref<clsTORVATestQuestions> questions = test_.Questions();
  const Long count = Need(questions).Count();
  for (Long i = 1; i <= count; ++i) {
    const Ref<clsTORVATestStrings> objectives = Need(Inside::Find(*questions, i)).LearningObjectives();
    const Long objectiveCount = Need(objectives).Count();
    for (Long k = 1; k <= objectiveCount; ++k) {
      const String text = objectives->Item(k);
      if (Need(lmf_->Objectives()).Exists(text)) continue;
      const auto objective = New<clsLmfObjective>();
      objective->Text(text);
      Need(lmf_->Objectives()).Add(objective, objective->Text());
    }
  }
}

void FormMerge::SwitchOff(Long lExcess) {
  const Ref<clsTemplatePages> pages = form_->Pages();
  for (Long p = Need(pages).Count(); p >= 1; --p) {
    const Ref<clsTemplateFields> fields = Need(pages->Item(p)).Fields();
    for (Long f = Need(fields).Count(); f >= 1; --f) {
      const Ref<clsTemplateQuestions> questions = Need(fields->Item(f)).Questions();
      for (Long q = Need(questions).Count(); q >= 1; --q) {
        const Ref<clsTemplateQuestion> question = questions->Item(q);
        if (!Need(question).Graded()) continue;
        question->Graded(false);
        --lExcess;
        // The question that tells the versions apart moves forward with all behind this one.
        if (question->Number(true) <= engine_.sequenceQuestion_) {
          engine_.sequenceQuestion_ = CheckedSubtract(engine_.sequenceQuestion_, 1);
        }
        if (lExcess == 0) return;
      }
    }
  }
}

bool FormMerge::MergeForm() {
  Long previousGroup = 0;
  const Ref<clsTemplatePages> pages = form_->Pages();
  const Long pageCount = Need(pages).Count();
  for (Long p = 1; p <= pageCount; ++p) {
    const Ref<clsTemplateFields> fields = Need(pages->Item(p)).Fields();
    const Long fieldCount = Need(fields).Count();
    for (Long f = 1; f <= fieldCount; ++f) {
      const Ref<clsTemplateField> field = fields->Item(f);
      const Long group = Need(field).GroupID();
      // Of neighbouring fields with one group only the first is merged; a group goes on behind a page break.
      if (group == 0 || group != previousGroup) {
        const Long count = field->QuestionCount();
        for (Long q = 1; q <= count; ++q) {
          const Ref<clsTemplateQuestion> question = Need(field->Questions()).Item(q);
          if (!MergeQuestion(*field, Need(question))) return false;
        }
      }
      previousGroup = group;
    }
  }
  return true;
}

}  // namespace TORVA35
