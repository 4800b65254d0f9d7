// The merge of one question of the form: what comes from the form, and what from the test.

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/merge/Dialogs.h"
#include "torva35/merge/FormMerge.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kTooManyAnswers =
    u"An error occurred merging the test with the specified template. One or more questions from the test "
    u"contains "
    u"more possible answers than are present in the specified template. Operation aborted.";

// A field whose labels a merge may rewrite.
bool IsChoiceField(const clsTemplateField& field) {
  const Long type = field.FieldType();
  return field.FieldClass() == 1 && (type == 1 || type == 4 || type == 6);
}

}  // namespace

bool FormMerge::MergeQuestion(const clsTemplateField& field, clsTemplateQuestion& formQuestion) {
  outputPosition_ = CheckedAdd(outputPosition_, 1);
  const auto output = New<clsLmfQuestion>();
  CopyFromForm(field, formQuestion, *output);
  if (formQuestion.Graded()) {
    if (!TakeTestQuestion(field, formQuestion, *output)) return false;
  } else if (IsChoiceField(field)) {
    Need(output->Labels()).AddArray(Need(formQuestion.Labels()).AsArray(1));
    Need(output->Values()).AddArray(Need(formQuestion.Values()).AsArray(1));
  }
  Need(lmf_->Questions()).Add(output);
  return true;
}

void FormMerge::CopyFromForm(const clsTemplateField& field, const clsTemplateQuestion& formQuestion,
                             clsLmfQuestion& output) {
  output.CorrectPoints(formQuestion.CorrectPoints());
  output.QuestionMode(field.FieldMode() == 1 ? 1 : 2);
  output.CarriedFlag2(formQuestion.CarriedFlag2());
  output.Graded(formQuestion.Graded());
  output.CarriedFlag1(formQuestion.CarriedFlag1());
  output.IncorrectPoints(formQuestion.IncorrectPoints());
  output.DefaultText(sharedQuestion_->DefaultText());
  output.DefaultValue(sharedQuestion_->DefaultValue());
  const Integer multiples = formQuestion.Multiples();
  output.Multiples(multiples > 0 ? multiples : Integer{0});
  output.NoResponsePoints(formQuestion.NoResponsePoints());
  output.Name(NextName());
  output.Text(formQuestion.Text());
  AddFlags(output);
}

bool FormMerge::TakeTestQuestion(const clsTemplateField& field, clsTemplateQuestion& formQuestion,
                                 clsLmfQuestion& output) {
  // Held, as what follows may report, and a host may then take the question out of the test.
  const Ref<clsTORVATestQuestion> held = NextTestQuestion();
  const clsTORVATestQuestion& question = *held;
  questionPositions_.Add(outputPosition_, question.ID());
  if (Need(question.Answers()).Count() > Need(formQuestion.Labels()).Count()) {
    // The name of the field is a host's to give, and only asked for when it is shown.
    if (engine_.Verbose()) {
      engine_.Tell(u"Invalid Merge", kTooManyAnswers + String(kBlankLine) + u"\tTemplate Field: " + field.Name() +
                                         kLine + u"\tTest Question ID: " + question.ID());
    }
    return false;
  }
  Need(output.CorrectValues()).Add(test_.CorrectAnswersAsString(testPosition_, u",", true, true));
  output.CorrectCount(Need(question.CorrectAnswers()).Count());
  Need(output.CorrectLabels()).Add(test_.CorrectAnswersAsString(testPosition_, u",", true, false));
  output.CorrectAnd(false);
  if (IsChoiceField(field)) TakeScale(question, formQuestion, output);
  output.Difficulty(question.Difficulty());
  output.Keywords(question.Keywords());
  output.Miscellaneous(question.Miscellaneous());
  output.Notes(question.Notes());
  output.Text(question.QuestionText());
  output.Reference(question.Reference());
  output.Topic(question.Topic());
  MarkObjectives(question, output);
  return true;
}

void FormMerge::TakeScale(const clsTORVATestQuestion& question, clsTemplateQuestion& formQuestion,
                          clsLmfQuestion& output) {
  const Integer multiples = question.MultiplesPermitted() ? 1 : 0;
  formQuestion.Multiples(multiples);
  output.Multiples(multiples);
  const ScaleTexts scale = Scale(question);
  const Ref<clsTemplateStrings> labels = formQuestion.Labels();
  const Ref<clsTemplateStrings> values = formQuestion.Values();
  const Long count = scale.Count();
  // First, since the form's lists may be a host's own, and change the scale when they are written to.
  clsLmfStrings& texts = Need(output.Labels());
  clsLmfStrings& numbers = Need(output.Values());
  texts.Reserve(count);
  numbers.Reserve(count);
  for (Long i = 1; i <= count; ++i) {
    texts.Add(scale.At(i));
    numbers.Add(Decimal(i));
  }
  // The form keeps its answer positions; the surplus ones show no label.
  for (Long i = Need(labels).Count(); i > count; --i) labels->Item(i, String());
  for (Long i = 1; i <= count; ++i) {
    labels->Item(i, texts.begin()[i - 1]);
    Need(values).Item(i, numbers.begin()[i - 1]);
  }
  formQuestion.Labels(labels);
  formQuestion.Values(values);
  formQuestion.Text(question.QuestionText());
}

ScaleTexts FormMerge::Scale(const clsTORVATestQuestion& question) const {
  if (question.QuestionType() == TORVATestQuestionTypeMultipleChoice && Need(test_.Sequences()).Count() > 1) {
    return ScaleTexts(test_, question, testPosition_);
  }
  return ScaleTexts(test_, testPosition_);
}

void FormMerge::AddFlags(clsLmfQuestion& output) {
  Need(output.ObjectiveFlags()).AddFalse(Need(lmf_->Objectives()).Count());
}

// The first objective with this text counts, and the table has thousands: it is read once.
void FormMerge::FindObjectives() {
  const Ref<clsLmfObjectives> objectives = lmf_->Objectives();
  const Long count = Need(objectives).Count();
  for (Long k = 1; k <= count; ++k) objectives_.emplace(Fold(Need(objectives->Item(k)).Text()), k);
}

void FormMerge::MarkObjectives(const clsTORVATestQuestion& question, clsLmfQuestion& output) {
  const Ref<clsTORVATestStrings> texts = question.LearningObjectives();
  const Long count = Need(texts).Count();
  if (count > 0 && objectives_.empty()) FindObjectives();
  for (Long i = 1; i <= count; ++i) {
    const String* text = Inside::Find(*texts, i);
    const auto found = objectives_.find(text == nullptr ? String() : Fold(*text));
    if (found != objectives_.end()) Need(output.ObjectiveFlags()).Value(found->second, true);
  }
}

Ref<clsTORVATestQuestion> FormMerge::NextTestQuestion(CallSite at) {
  testPosition_ = CheckedAdd(testPosition_, 1, at);
  Ref<clsTORVATestQuestion> question = Inside::Find(Need(test_.Questions(), at), testPosition_);
  Need(question, at);
  return question;
}

String FormMerge::NextName(CallSite at) {
  if (outputPosition_ > names_.Size()) Raise(kSubscriptOutOfRange, at);
  return names_[names_.LBound() + (outputPosition_ - 1)];
}

}  // namespace TORVA35
