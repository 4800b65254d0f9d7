// A merge from its checks to the last subjective question. All of it is in one file and reports as one
// member, so that a line tells which statement failed.

#include <optional>
#include <typeinfo>
#include <utility>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/merge/Dialogs.h"
#include "torva35/merge/FormMerge.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/Inside.h"
#include "torva35/platform/Kept.h"

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
    u"Operation aborted.";
constexpr const char16_t* kMoreGraded =
    u"An error occurred merging the test with the specified template. "
    u"The test contains more graded questions than the specified template. Operation aborted.";
constexpr const char16_t* kOtherGraded =
    u"An error occurred merging the test with the specified template. "
    u"The test contains a different number of graded questions than the specified template. Operation aborted.";

constexpr const char16_t* kTooManyAnswers =
    u"An error occurred merging the test with the specified template. "
    u"One or more questions from the test contains more possible answers than are present in "
    u"the specified template. Operation aborted.";

}  // namespace

bool clsTORVA::Merge() {
  return Reported(kMerge, false, [&](bool& result) {
    if (Need(tests_).Count() == 0) return Tell(u"Invalid test", kInvalidTest);
    const Kept test(Need(tests_).Item(1));
    if (templateIn_ == nullptr) return Tell(u"Invalid Template", kInvalidTemplate);
    if (Ask(templateIn_).QuestionCount() == 0) return Tell(u"Invalid Template", kEmptyTemplate);
    const Kept questions(Ask(test).Questions());
    if (Ask(questions).Count() == 0) return Tell(u"Invalid test", kEmptyTest);
    const Long subjective = questions->TypeCount(TORVATestQuestionTypeSubjective);
    const Long graded = CheckedSubtract(questions->Count(), subjective);
    if (graded > Ask(templateIn_).GradedCount()) return Tell(u"Invalid Merge", kMoreGraded);

    Ask(templateOut_).Clear();
    templateOut_ = Ask(templateIn_).Copy(true, false);
    const Kept merge(std::make_shared<FormMerge>(*this, *test));
    merge->Begin();

    Ask(lmf_).Clear();
    Ask(lmf_).PageCount(Ask(templateIn_).PageCount());
    Ask(lmf_).Mode(1);
    Ask(lmf_).Prepare();
    merge->EnterObjectives();

    const Long excess = CheckedSubtract(Long{Ask(templateOut_).GradedCount()}, graded);
    if (excess > 0) merge->SwitchOff(excess);
    if (graded != Ask(templateOut_).GradedCount()) return Tell(u"Invalid Merge", kOtherGraded);

    if (!merge->MergeForm()) return;
    for (Long k = 1; k <= subjective; ++k) merge->MergeSubjective(k);
    result = BuildSequences(merge->QuestionPositions());
  });
}

void FormMerge::Begin(CallSite at) {
  names_ = Ask(form_, at).QuestionNames(1, Ask(form_, at).QuestionCount(at), 0, u"\t", 0, at);
  names_.UBound(at);  // a form without names cannot be merged
}

void FormMerge::EnterObjectives() {
  // Most objectives are there already. Ours say so without a text of their own for the question.
  const clsLmf& lmf = Ask(lmf_);
  const clsLmfObjectives* ours = typeid(lmf) == typeid(clsLmf) ? lmf.Objectives().get() : nullptr;
  const Kept questions(test_.Questions());
  const Long count = Ask(questions).Count();
  for (Long i = 1; i <= count; ++i) {
    const Kept objectives(Need(Inside::Find(*questions, i)).LearningObjectives());
    const Long objectiveCount = Ask(objectives).Count();
    for (Long k = 1; k <= objectiveCount; ++k) {
      const String* found = Inside::Find(*objectives, k);
      if (ours != nullptr && found != nullptr && ours->HasKey(*found)) continue;
      const TaggedValue text(found == nullptr ? String() : *found);
      if (Ask(Kept(Ask(lmf_).Objectives())).Exists(text)) continue;
      const Kept objective(New<clsLmfObjective>());
      objective->Text(*text.As<String>());
      HandOver(Ask(Kept(Ask(lmf_).Objectives())), &clsLmfObjectives::Add, objective, objective->Text(),
               CallSite::Current());
    }
  }
}

void FormMerge::SwitchOff(Long lExcess) {
  const Kept pages(Ask(form_).Pages());
  for (Long p = Ask(pages).Count(); p >= 1; --p) {
    const Kept fields(Ask(Kept(Ask(pages).Item(p))).Fields());
    for (Long f = Ask(fields).Count(); f >= 1; --f) {
      const Kept questions(Ask(Kept(Ask(fields).Item(f))).Questions());
      for (Long q = Ask(questions).Count(); q >= 1; --q) {
        const Kept question(Ask(questions).Item(q));
        if (!Ask(question).Graded()) continue;
        Ask(question).Graded(false);
        --lExcess;
        // The question that tells the versions apart moves forward with all after this one.
        if (Ask(question).Number(true) <= engine_.sequenceQuestion_) {
          engine_.sequenceQuestion_ = CheckedSubtract(engine_.sequenceQuestion_, 1);
        }
        if (lExcess == 0) return;
      }
    }
  }
}

bool FormMerge::MergeForm() {
  Long previousGroup = 0;
  const Kept pages(Ask(form_).Pages());
  const Long pageCount = Ask(pages).Count();
  for (Long p = 1; p <= pageCount; ++p) {
    const Kept fields(Ask(Kept(Ask(pages).Item(p))).Fields());
    const Long fieldCount = Ask(fields).Count();
    for (Long f = 1; f <= fieldCount; ++f) {
      field_ = Ask(fields).Item(f);
      const Long group = Ask(field_).GroupID();
      // Of neighbouring fields with one group only the first is merged; a group goes on after a page break.
      if (group == 0 || group != previousGroup) {
        const Long count = Ask(field_).QuestionCount();
        for (Long q = 1; q <= count; ++q) {
          formQuestion_ = Ask(Kept(Ask(field_).Questions())).Item(q);
          if (!MergeQuestion()) return false;
        }
      }
      previousGroup = group;
    }
  }
  return true;
}

// --- One question of the form: what comes from the form, and what from the test. ---

bool FormMerge::MergeQuestion() {
  Need(formQuestion_);
  outputPosition_ = CheckedAdd(outputPosition_, 1);
  output_ = New<clsLmfQuestion>();
  CopyFromForm();
  if (Ask(formQuestion_).Graded()) {
    if (!TakeTestQuestion()) return false;
  } else if (IsChoiceField()) {
    const Array<String> labels = Ask(Kept(Ask(formQuestion_).Labels())).AsArray(1);
    Need(output_->Labels()).AddArray(labels);
    const Array<String> values = Ask(Kept(Ask(formQuestion_).Values())).AsArray(1);
    Need(output_->Values()).AddArray(values);
  }
  HandOver(Ask(Kept(Ask(lmf_).Questions())), &clsLmfQuestions::Add, output_, CallSite::Current());
  return true;
}

// Whether a merge may rewrite its labels.
bool FormMerge::IsChoiceField() const {
  const Long type = Ask(field_).FieldType();
  return Ask(field_).FieldClass() == 1 && (type == 1 || type == 4 || type == 6);
}

void FormMerge::CopyFromForm() {
  clsLmfQuestion& output = *output_;
  output.CorrectPoints(Ask(formQuestion_).CorrectPoints());
  output.QuestionMode(Ask(field_).FieldMode() == 1 ? 1 : 2);
  output.CarriedFlag2(Ask(formQuestion_).CarriedFlag2());
  output.Graded(Ask(formQuestion_).Graded());
  output.CarriedFlag1(Ask(formQuestion_).CarriedFlag1());
  output.IncorrectPoints(Ask(formQuestion_).IncorrectPoints());
  output.DefaultText(sharedQuestion_->DefaultText());
  output.DefaultValue(sharedQuestion_->DefaultValue());
  const Integer multiples = Ask(formQuestion_).Multiples();
  output.Multiples(multiples > 0 ? multiples : Integer{0});
  output.NoResponsePoints(Ask(formQuestion_).NoResponsePoints());
  output.Name(NextName());
  output.Text(Ask(formQuestion_).Text());
  AddFlags();
}

bool FormMerge::TakeTestQuestion() {
  // Held by the walk, as what follows may report, and a host may then take the question out of the test.
  NextTestQuestion();
  const clsTORVATestQuestion& question = *testQuestion_;
  clsLmfQuestion& output = *output_;
  questionPositions_.Add(outputPosition_, question.ID());
  const Long answers = Inside::Count(Need(question.Answers()));
  if (answers > Ask(Kept(Ask(formQuestion_).Labels())).Count()) {
    // The name of the field is a host's to give, and only asked for when it is shown.
    if (engine_.Verbose()) {
      engine_.Tell(u"Invalid Merge", kTooManyAnswers + String(kBlankLine) + u"\tTemplate Field: " +
                                         Ask(field_).Name() + kLine + u"\tTest Question ID: " + question.ID());
    }
    return false;
  }
  std::optional<KeyTexts> key = KeyTexts::Of(test_, testPosition_, question);
  Need(output.CorrectValues())
      .Add(key ? std::move(key->numbers) : test_.CorrectAnswersAsString(testPosition_, u",", true, true));
  output.CorrectCount(Inside::Count(Need(question.CorrectAnswers())));
  Need(output.CorrectLabels())
      .Add(key ? std::move(key->labels) : test_.CorrectAnswersAsString(testPosition_, u",", true, false));
  output.CorrectAnd(false);
  if (IsChoiceField()) TakeScale();
  output.Difficulty(question.Difficulty());
  output.Keywords(question.Keywords());
  output.Miscellaneous(question.Miscellaneous());
  output.Notes(question.Notes());
  output.Text(question.QuestionText());
  output.Reference(question.Reference());
  output.Topic(question.Topic());
  MarkObjectives();
  return true;
}

void FormMerge::TakeScale() {
  const Integer multiples = testQuestion_->MultiplesPermitted() ? 1 : 0;
  Ask(formQuestion_).Multiples(multiples);
  output_->Multiples(multiples);
  const Long count = TakeLabels();
  const clsLmfStrings& texts = Need(output_->Labels());
  const clsLmfStrings& numbers = Need(output_->Values());
  const Kept labels(Ask(formQuestion_).Labels());
  const Kept values(Ask(formQuestion_).Values());
  // The form keeps its answer positions; the surplus ones show no label.
  for (Long i = Ask(labels).Count(); i > count; --i) Ask(labels).Item(i, String());
  for (Long i = 1; i <= count; ++i) {
    Ask(labels).Item(i, texts.begin()[i - 1]);
    Ask(values).Item(i, numbers.begin()[i - 1]);
  }
  // A question of our own has them.
  if (const clsTemplateQuestion& question = *formQuestion_; typeid(question) != typeid(clsTemplateQuestion)) {
    HandOver(Ask(formQuestion_), &clsTemplateQuestion::Labels, labels);
    HandOver(Ask(formQuestion_), &clsTemplateQuestion::Values, values);
  }
  Ask(formQuestion_).Text(testQuestion_->QuestionText());
}

// The labels and values of the output question, and how many. Taken at once, since the form's lists may be a
// host's own, and change the scale when they are written to.
Long FormMerge::TakeLabels() {
  const ScaleTexts scale = Scale();
  const Long count = scale.Count();
  clsLmfStrings& texts = Need(output_->Labels());
  clsLmfStrings& numbers = Need(output_->Values());
  texts.Reserve(count);
  numbers.Reserve(count);
  for (Long i = 1; i <= count; ++i) {
    texts.Add(scale.At(i));
    numbers.Add(Decimal(i));
  }
  return count;
}

ScaleTexts FormMerge::Scale() const {
  if (testQuestion_->QuestionType() == TORVATestQuestionTypeMultipleChoice &&
      Inside::Count(Need(test_.Sequences())) > 1) {
    return ScaleTexts(test_, *testQuestion_, testPosition_);
  }
  return ScaleTexts(test_, testPosition_);
}

void FormMerge::AddFlags() {
  const Long count = Ask(Kept(Ask(lmf_).Objectives())).Count();
  Need(output_->ObjectiveFlags()).AddFalse(count);
}

// The first objective with this text counts, but never the built-in one. The table has thousands: it is read once.
void FormMerge::FindObjectives() {
  const Kept objectives(Ask(lmf_).Objectives());
  const Long count = Ask(objectives).Count();
  for (Long k = objectives->HasBuiltIn() ? 2 : 1; k <= count; ++k) {
    objectives_.emplace(Ask(Kept(Ask(objectives).Item(k))).Text(), k);
  }
}

void FormMerge::MarkObjectives() {
  const Kept texts(testQuestion_->LearningObjectives());
  const Long count = Ask(texts).Count();
  if (count > 0 && objectives_.empty()) FindObjectives();
  for (Long i = 1; i <= count; ++i) {
    const String* text = Inside::Find(*texts, i);
    const auto found = objectives_.find(text == nullptr ? StringView() : StringView(*text));
    if (found != objectives_.end()) Need(output_->ObjectiveFlags()).Value(found->second, true);
  }
}

void FormMerge::NextTestQuestion(CallSite at) {
  testPosition_ = CheckedAdd(testPosition_, 1, at);
  testQuestion_ = Inside::Find(Need(test_.Questions(), at), testPosition_);
  Need(testQuestion_, at);
}

String FormMerge::NextName(CallSite at) {
  if (outputPosition_ > names_.Size()) Raise(kSubscriptOutOfRange, at);
  return std::move(names_[names_.LBound() + (outputPosition_ - 1)]);  // each is asked for once
}

// --- Subjective questions need no graded question on the form: each gets a field of its own at its end. ---

void FormMerge::MergeSubjective(Long k) {
  NextTestQuestion();
  const clsTORVATestQuestion& question = *testQuestion_;
  const String name = u"Subjective" + Decimal(k);

  field_ = New<clsTemplateField>();
  field_->FieldMode(1);
  field_->FieldType(3);
  field_->Name(name);
  field_->Subjective(true);
  field_->FieldClass(2);
  Need(field_->Questions()).AddNew();
  formQuestion_ = field_->Questions()->Item(1);
  formQuestion_->Subjective(true);
  formQuestion_->CorrectPoints(Double{question.SubjectivePoints()});
  const Kept pages(Ask(form_).Pages());
  const Kept page(Ask(pages).Item(Long{Ask(form_).PageCount()}));
  HandOver(Ask(Kept(Ask(page).Fields())), &clsTemplateFields::Add, field_, CallSite::Current());

  output_ = New<clsLmfQuestion>();
  clsLmfQuestion& output = *output_;
  output.Name(name);
  output.Text(name);
  output.Subjective(true);
  output.Difficulty(question.Difficulty());
  output.Keywords(question.Keywords());
  output.Miscellaneous(question.Miscellaneous());
  output.Notes(question.Notes());
  output.Text(question.QuestionText());
  output.Reference(question.Reference());
  output.Topic(question.Topic());
  AddFlags();
  MarkObjectives();
  HandOver(Ask(Kept(Ask(lmf_).Questions())), &clsLmfQuestions::Add, output_, CallSite::Current());
}

}  // namespace TORVA35
