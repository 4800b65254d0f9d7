// Subjective questions need no graded question on the form: each gets a field of its own at its end.

#include "torva35/base/Text.h"
#include "torva35/merge/FormMerge.h"

namespace TORVA35 {

void FormMerge::MergeSubjective(Long k) {
  const Ref<clsTORVATestQuestion> held = NextTestQuestion();
  const clsTORVATestQuestion& question = *held;
  const String name = u"Subjective" + Decimal(k);

  const auto field = New<clsTemplateField>();
  field->FieldMode(1);
  field->FieldType(3);
  field->Name(name);
  field->Subjective(true);
  field->FieldClass(2);
  Need(field->Questions()).AddNew();
  const Ref<clsTemplateQuestion> formQuestion = field->Questions()->Item(1);
  formQuestion->Subjective(true);
  formQuestion->CorrectPoints(Double{question.SubjectivePoints()});
  const Ref<clsTemplatePage> page = Need(form_->Pages()).Item(Long{form_->PageCount()});
  Need(Need(page).Fields()).Add(field);

  const auto output = New<clsLmfQuestion>();
  output->Name(name);
  output->Text(name);
  output->Subjective(true);
  output->Difficulty(question.Difficulty());
  output->Keywords(question.Keywords());
  output->Miscellaneous(question.Miscellaneous());
  output->Notes(question.Notes());
  output->Text(question.QuestionText());
  output->Reference(question.Reference());
  output->Topic(question.Topic());
  AddFlags(*output);
  MarkObjectives(question, *output);
  Need(lmf_->Questions()).Add(output);
}

}  // namespace TORVA35
