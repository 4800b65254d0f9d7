#include "merge_exam/Form.h"

#include <algorithm>

namespace merge_exam {

using namespace TORVA35;

namespace {

// Class, type and mode of a field of choices, whose labels a merge takes from the test.
constexpr Long kChoices = 1;

constexpr Long kQuestionsOfColumn = 25;

std::vector<String> Letters(Long count) {
  std::vector<String> letters;
  for (Long i = 1; i <= count; ++i)
    letters.push_back(i <= 26 ? String(1, static_cast<char16_t>(u'A' + i - 1)) : Decimal(i));
  return letters;
}

Ref<clsTemplateField> NewField(String sName) {
  auto oField = New<clsTemplateField>();
  oField->Name(std::move(sName));
  oField->FieldClass(kChoices);
  oField->FieldType(kChoices);
  oField->FieldMode(kChoices);
  return oField;
}

// Appends a question that offers these labels; their values are their positions.
Ref<clsTemplateQuestion> AddQuestion(clsTemplateField& oField, String sName, const std::vector<String>& labels) {
  oField.Questions()->AddNew();
  auto oQuestion = oField.Questions()->Item(oField.Questions()->Count());
  oQuestion->Name(std::move(sName));
  for (const String& label : labels) {
    oQuestion->Labels()->Add(label);
    oQuestion->Values()->Add(Decimal(oQuestion->Labels()->Count()));
  }
  return oQuestion;
}

Long GradedCount(const clsTORVATest& oTest) {
  return oTest.Questions()->Count() - oTest.Questions()->TypeCount(TORVATestQuestionTypeSubjective);
}

// Answer positions that no question and no scale of the test goes beyond.
Long MostAnswers(const clsTORVATest& oTest) {
  Long most = 2;
  for (Long i = 1; i <= GradedCount(oTest); ++i)
    most = std::max(most, oTest.Questions()->Item(i)->Answers()->Count());
  if (oTest.Sequences()->Count() > 1) {
    // Its multiple-choice questions take the whole scale, however few answers they have.
    most = std::max({most, oTest.MultipleChoiceOddScale()->Count(), oTest.MultipleChoiceEvenScale()->Count()});
  }
  return most;
}

std::vector<String> VersionLabels(const FormOptions& options, const clsTORVATests& tests) {
  std::vector<String> labels = options.versionLabels;
  for (Long i = 1; options.versionLabels.empty() && i <= tests.Count(); ++i)
    labels.push_back(tests.Item(i)->Version());
  return labels;
}

// A merge keeps the points of the form. Those that the teacher has given to the test must stand on the form.
void TakePoints(clsTemplateQuestion& oQuestion, const clsTORVATestQuestion& oTestQuestion) {
  oQuestion.CorrectPoints(oTestQuestion.CorrectPoints());
  oQuestion.IncorrectPoints(oTestQuestion.IncorrectPoints());
  oQuestion.NoResponsePoints(oTestQuestion.NoResponsePoints());
}

Ref<clsTemplateField> NameGrid(Long count) {
  auto oField = NewField(u"Name");
  for (Long i = 1; i <= count; ++i) AddQuestion(*oField, u"Name " + Decimal(i), Letters(26));
  return oField;
}

Ref<clsTemplateField> VersionField(const std::vector<String>& labels) {
  auto oField = NewField(u"Version");
  AddQuestion(*oField, u"Version", labels);
  return oField;
}

// The graded questions from first to last.
Ref<clsTemplateField> QuestionField(Long first, Long last, const std::vector<String>& labels,
                                    const clsTORVATest& oTest) {
  auto oField = NewField(u"Questions " + Decimal(first) + u" to " + Decimal(last));
  for (Long i = first; i <= last; ++i) {
    const auto oQuestion = AddQuestion(*oField, Decimal(i), labels);
    oQuestion->Graded(true);
    oQuestion->CorrectPoints(1);
    if (i <= GradedCount(oTest)) TakePoints(*oQuestion, *oTest.Questions()->Item(i));
  }
  return oField;
}

}  // namespace

Form BuildForm(const FormOptions& options, const clsTORVATests& tests) {
  const clsTORVATest& oTest = *tests.Item(1);
  const Long graded = GradedCount(oTest);
  const Long questions = options.questions > 0 ? options.questions : std::max(graded, 1);
  const Long answers = options.answers > 0 ? options.answers : MostAnswers(oTest);
  const Long wanted =
      options.columns > 0 ? options.columns : (questions + kQuestionsOfColumn - 1) / kQuestionsOfColumn;
  const Long columns = std::min(wanted, questions);

  auto oPage = New<clsTemplatePage>();
  Ref<clsTemplateField> oVersion;
  if (options.version != VersionPlace::kNone) oVersion = VersionField(VersionLabels(options, tests));

  if (options.nameGrid > 0) oPage->Fields()->Add(NameGrid(options.nameGrid));
  if (options.version == VersionPlace::kFront) oPage->Fields()->Add(oVersion);
  for (Long column = 0, first = 1; column < columns; ++column) {
    const Long count = questions / columns + (column < questions % columns ? 1 : 0);
    oPage->Fields()->Add(QuestionField(first, first + count - 1, Letters(answers), oTest));
    first += count;
  }
  if (options.version == VersionPlace::kBack) oPage->Fields()->Add(oVersion);

  Form form{New<clsTemplate>()};
  form.oTemplate->Pages()->Add(oPage);
  if (oVersion) form.sequenceQuestion = oVersion->Questions()->Item(1)->Number(true);
  // A merge lowers the position by each question in front of it that it switches off, although these stay on the
  // form: what it is going to take is added here.
  if (options.version == VersionPlace::kBack) form.sequenceQuestion += std::max(questions - graded, 0);
  return form;
}

std::vector<MergedQuestion> MergedQuestions(const clsTORVA& oEngine) {
  // Without fields in groups, the questions of form and data file stand in the same order, also those that the
  // merge has added behind the last ones, which the form as it was does not have.
  std::vector<Ref<clsTemplateQuestion>> before;
  for (const auto& oPage : *oEngine.TemplateIn()->Pages()) {
    for (const auto& oField : *oPage->Fields()) {
      before.insert(before.end(), oField->Questions()->begin(), oField->Questions()->end());
    }
  }
  std::vector<MergedQuestion> merged;
  for (const auto& oPage : *oEngine.TemplateOut()->Pages()) {
    for (const auto& oField : *oPage->Fields()) {
      for (const auto& oQuestion : *oField->Questions()) {
        const std::size_t at = merged.size();
        const auto oOutput = oEngine.MIVLMF()->Questions()->Item(static_cast<Long>(at) + 1);
        const bool wasGraded = at < before.size() && before[at]->Graded();
        merged.push_back(
            {oField, oQuestion, oOutput, static_cast<Long>(at) + 1, wasGraded && !oQuestion->Graded()});
      }
    }
  }
  return merged;
}

}  // namespace merge_exam
