#include "Assembly.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace TORVA35::sheet {
namespace {

constexpr Long kChoices = 1;  // class, type and mode of a field of choices

Ref<clsTemplateField> NewField(String sName) {
  auto oField = New<clsTemplateField>();
  oField->Name(std::move(sName));
  oField->FieldClass(kChoices);
  oField->FieldType(kChoices);
  oField->FieldMode(kChoices);
  return oField;
}

// Appends a question that offers these labels; their values are their positions.
clsTemplateQuestion& AddQuestion(clsTemplateField& oField, String sName, const std::vector<String>& labels) {
  oField.Questions()->AddNew();
  clsTemplateQuestion& oQuestion = *oField.Questions()->Item(oField.Questions()->Count());
  oQuestion.Name(std::move(sName));
  Long value = 0;
  for (const String& label : labels) {
    oQuestion.Labels()->Add(label);
    oQuestion.Values()->Add(Decimal(++value));
  }
  return oQuestion;
}

// A text like those of a key: "B", or "(B,D)".
String KeyText(const std::vector<String>& marks) {
  String text;
  for (const String& mark : marks) text += (text.empty() ? u"" : u",") + mark;
  return marks.size() > 1 ? u"(" + text + u")" : text;
}

class Assembly {
 public:
  Assembly(const Options& options, const std::vector<Source>& sources, Result& result, Findings& findings)
      : options_(options), sources_(sources), master_(sources.front()), result_(result), findings_(findings) {
    const clsTORVATestQuestions& oQuestions = *master_.test->Questions();
    graded_ = oQuestions.Count() - oQuestions.TypeCount(TORVATestQuestionTypeSubjective);
    for (Long i = 1; i <= graded_; ++i) places_.emplace(Fold(oQuestions.Item(i)->ID()), i);
  }

  bool Merge() {
    for (const Source& source : sources_) engine_->Tests()->Add(source.test);
    engine_->TemplateIn(BuildForm());
    engine_->TemplateOut(New<clsTemplate>());  // there must be one; the merge puts its own here
    engine_->SequenceQuestion(HasVersionRow() ? 1 : 0);
    return engine_->Merge();
  }

  void TakeRows() {
    for (Long i = 1; i <= graded_; ++i) TakeRow(i);
    for (std::size_t v = 0; v < sources_.size(); ++v) TakeVersion(v);
    for (const auto& oQuestion : *engine_->MIVLMF()->Questions()) {
      if (!oQuestion->Subjective()) continue;
      const clsTORVATestQuestion& oTest =
          *master_.test->Questions()->Item(graded_ + static_cast<Long>(result_.handGraded.size()) + 1);
      result_.handGraded.push_back(
          {ToUtf8(oQuestion->Name()), ToUtf8(oQuestion->Text()), ExactPoints(oTest.SubjectivePoints())});
    }
    result_.lmf = engine_->MIVLMF();
    result_.lmf->Description(FromUtf8(result_.title));
    if (result_.renumbered) {
      findings_.Add(Severity::kNote, "paper-numbers",
                    "an LMF file keeps the numbers of the rows, and not those of the papers");
    }
  }

 private:
  bool HasVersionRow() const { return sources_.size() > 1; }

  static std::vector<String> Numerals(Long count) {
    std::vector<String> labels;
    for (Long i = 1; i <= count; ++i) labels.push_back(Decimal(i));
    return labels;
  }

  // Answer positions that no question and no scale of the test goes beyond.
  Long MostAnswers() const {
    const clsTORVATest& oTest = *master_.test;
    Long most =
        std::max({Long{2}, oTest.MultipleChoiceOddScale()->Count(), oTest.MultipleChoiceEvenScale()->Count()});
    for (Long i = 1; i <= graded_; ++i) most = std::max(most, oTest.Questions()->Item(i)->Answers()->Count());
    return most;
  }

  // The field that tells the versions apart, and one with a question for each that is graded.
  Ref<clsTemplate> BuildForm() const {
    const auto oPage = New<clsTemplatePage>();
    if (HasVersionRow()) {
      std::vector<String> names;
      for (const Source& source : sources_) names.push_back(FromUtf8(source.name));
      const auto oField = NewField(u"Version");
      AddQuestion(*oField, u"Version", names);
      oPage->Fields()->Add(oField);
    }
    const std::vector<String> labels = Numerals(MostAnswers());
    const auto oField = NewField(u"Questions");
    for (Long i = 1; i <= graded_; ++i) {
      const Question& question = QuestionAt(master_, i);
      clsTemplateQuestion& oQuestion = AddQuestion(*oField, Decimal(NumberOfRow(i)), labels);
      oQuestion.Graded(true);
      // A merge keeps the points of the form.
      oQuestion.CorrectPoints(question.points);
      oQuestion.IncorrectPoints(question.incorrectPoints);
      oQuestion.NoResponsePoints(question.noResponsePoints);
    }
    oPage->Fields()->Add(oField);
    auto oForm = New<clsTemplate>();
    oForm->Pages()->Add(oPage);
    return oForm;
  }

  long NumberOfRow(Long row) const {
    return options_.renumber ? row : master_.papers[static_cast<std::size_t>(row - 1)];
  }

  const Question& QuestionAt(const Source& source, Long position) const {
    const File& file = result_.files[static_cast<std::size_t>(source.file)];
    return file.questions[static_cast<std::size_t>(source.questions[static_cast<std::size_t>(position - 1)])];
  }

  // The letters that a version's paper prints at a row, before those that only the sheet has.
  std::vector<String> Printed(const Source& source, Long row) const {
    const auto at = static_cast<std::size_t>(row - 1);
    if (!source.labels.empty()) return source.labels[at];
    const clsTORVATest& oTest = *source.test;
    Ref<clsTORVATestStrings> oScale;
    switch (QuestionAt(source, row).kind) {
      case TORVATestQuestionTypeTrueFalse:
        oScale = oTest.TrueFalseScale();
        break;
      case TORVATestQuestionTypeYesNo:
        oScale = oTest.YesNoScale();
        break;
      default:
        oScale = source.papers[at] % 2 != 0 ? oTest.MultipleChoiceOddScale() : oTest.MultipleChoiceEvenScale();
    }
    std::vector<String> labels;
    for (const String& label : oScale->AsArray()) labels.push_back(label);
    return labels;
  }

  // The labels of a row: with several versions the whole scale, so that any question of the kind fits; else as
  // many as the question has answers.
  std::vector<String> Labels(Long row) const {
    std::vector<String> labels = Printed(master_, row);
    const bool fitted = sources_.size() == 1 && master_.labels.empty() &&
                        QuestionAt(master_, row).kind == TORVATestQuestionTypeMultipleChoice;
    if (fitted) labels.resize(static_cast<std::size_t>(master_.test->Questions()->Item(row)->Answers()->Count()));
    return labels;
  }

  void TakeRow(Long row) {
    const std::vector<String> labels = Labels(row);
    const Long offset = HasVersionRow() ? 1 : 0;
    clsLmfQuestion& oOutput = *engine_->MIVLMF()->Questions()->Item(row + offset);
    SetLabels(labels, row, oOutput);

    Row taken;
    taken.number = NumberOfRow(row);
    taken.paper = master_.papers[static_cast<std::size_t>(row - 1)];
    taken.kind = QuestionAt(master_, row).kind;
    std::vector<int> bubbles;
    for (const String& label : labels) {
      bubbles.push_back(label.empty() ? 0 : static_cast<int>(taken.labels.size()) + 1);
      if (!label.empty()) taken.labels.push_back(ToUtf8(label));
    }
    CheckRow(taken, row);
    bubbles_.push_back(std::move(bubbles));
    result_.rows.push_back(std::move(taken));
  }

  // A merge takes the letters by the place of a question among those that are left, and the paper prints them by
  // its number: where a question was taken out these differ, and the paper is right.
  void SetLabels(const std::vector<String>& labels, Long row, clsLmfQuestion& oOutput) const {
    bool same = oOutput.Labels()->Count() == static_cast<Long>(labels.size());
    for (std::size_t i = 0; same && i < labels.size(); ++i) {
      same = oOutput.Labels()->Item(static_cast<Long>(i) + 1) == labels[i];
    }
    if (same) return;
    oOutput.Labels()->RemoveAll();
    oOutput.Values()->RemoveAll();
    for (std::size_t i = 0; i < labels.size(); ++i) {
      oOutput.Labels()->Add(labels[i]);
      oOutput.Values()->Add(Decimal(static_cast<Long>(i) + 1));
    }
    std::vector<String> key;
    for (const int answer : QuestionAt(master_, row).correct) {
      const auto at = static_cast<std::size_t>(answer - 1);
      key.push_back(at < labels.size() ? labels[at] : String());
    }
    oOutput.CorrectLabels()->RemoveAll();
    oOutput.CorrectLabels()->Add(KeyText(key));
  }

  void CheckRow(const Row& row, Long position) {
    const Question& question = QuestionAt(master_, position);
    if (row.labels.size() < 2) {
      findings_.Add(Severity::kError, "no-choices", master_.file, question,
                    Called(question) + " has no answers to choose from");
    }
    std::set<String> labels;
    for (const std::string& label : row.labels) labels.insert(Fold(FromUtf8(label)));
    if (labels.size() < row.labels.size()) {
      findings_.Add(Severity::kError, "same-labels", master_.file, question,
                    "two bubbles of row " + std::to_string(row.number) + " have the same label");
    }
  }

  void TakeVersion(std::size_t v) {
    const Source& source = sources_[v];
    Version version{source.name, source.file, {}};
    for (Long row = 1; row <= graded_; ++row) {
      version.answers.push_back(TakeAnswer(source, row));
      const bool same = version.answers.back().paper == result_.rows[static_cast<std::size_t>(row - 1)].number;
      result_.renumbered = result_.renumbered || !same;
      if (v > 0) CompareWithRow(source, row);
    }
    result_.versions.push_back(std::move(version));
  }

  Answer TakeAnswer(const Source& source, Long position) {
    const auto at = static_cast<std::size_t>(position - 1);
    const Question& question = QuestionAt(source, position);
    Row& row = result_.rows[at];
    Answer answer;
    answer.question = source.questions[at];
    answer.paper = source.papers[at];
    answer.all = question.all || question.correct.size() < 2;
    answer.points = question.points;
    answer.incorrectPoints = question.incorrectPoints;
    answer.noResponsePoints = question.noResponsePoints;
    if (question.correct.empty()) {
      findings_.Add(Severity::kError, "no-key", source.file, question, Called(question) + " has no right answer");
    }
    // A question that is only shown as true or false has the letters, and no answers of its own.
    const auto choices = static_cast<int>(question.kind == TORVATestQuestionTypeMultipleChoice
                                              ? question.answers.size()
                                              : std::max(question.answers.size(), bubbles_[at].size()));
    for (const int correct : question.correct) {
      const bool there = correct >= 1 && correct <= static_cast<int>(bubbles_[at].size());
      const int bubble = there ? bubbles_[at][static_cast<std::size_t>(correct - 1)] : 0;
      if (correct < 1 || correct > choices) {
        findings_.Add(Severity::kError, "beyond-choices", source.file, question,
                      "the key of " + Called(question) +
                          (correct < 1 ? std::string(" names something that is no letter")
                                       : " names answer " + std::to_string(correct) + ", and there are " +
                                             std::to_string(choices)));
      } else if (bubble == 0) {
        findings_.Add(Severity::kError, "no-bubble", source.file, question,
                      "no bubble stands for the right answer " + std::to_string(correct) + " of " +
                          Called(question) + ": the sheet has letters for " + std::to_string(row.labels.size()) +
                          " answers");
      }
      if (bubble > 0) answer.marks.push_back(bubble);
    }
    // No student can meet a key of which a part has no bubble.
    if (answer.all && answer.marks.size() < question.correct.size()) answer.marks.clear();
    std::sort(answer.marks.begin(), answer.marks.end());
    row.several = row.several || (answer.all && answer.marks.size() > 1);
    WarnOfMissingBubbles(source, question, at);
    return answer;
  }

  // Wrong answers without a bubble lose no marks, but puzzle the student who looks for them.
  void WarnOfMissingBubbles(const Source& source, const Question& question, std::size_t at) {
    const std::size_t bubbles = result_.rows[at].labels.size();
    if (question.answers.size() <= bubbles) return;
    findings_.Add(Severity::kWarning, "missing-bubbles", source.file, question,
                  Called(question) + " has " + std::to_string(question.answers.size()) + " answers, and row " +
                      std::to_string(result_.rows[at].number) + " has bubbles for " + std::to_string(bubbles));
  }

  // A row has the number and the letters of the first version's paper; the others' papers must print the same.
  void CompareWithRow(const Source& source, Long position) {
    const auto at = static_cast<std::size_t>(position - 1);
    const Question& question = QuestionAt(source, position);
    const Row& row = result_.rows[at];
    if (source.papers[at] != row.paper) {
      const std::string text = "where version " + master_.name + " has question " + std::to_string(row.paper) +
                               ", version " + source.name + " has question " + std::to_string(source.papers[at]);
      findings_.Add(options_.renumber ? Severity::kWarning : Severity::kError, "numbers", source.file, question,
                    text + (options_.renumber ? "" : ": no row can have both numbers"));
    }
    const std::vector<String> printed = Printed(source, position);
    for (std::size_t i = 0; i < printed.size() && i < question.answers.size(); ++i) {
      const std::string label = ToUtf8(printed[i]);
      const std::string mine = i < row.labels.size() ? row.labels[i] : std::string();
      if (label.empty() || label == mine) continue;
      findings_.Add(Severity::kError, "letters", source.file, question,
                    "version " + source.name + " has the letter " + label + " where row " +
                        std::to_string(row.number) + " has " + (mine.empty() ? "none" : mine));
      break;
    }
    const Question* same = InMaster(question);
    if (same != nullptr && same->points != question.points) {
      findings_.Add(Severity::kWarning, "points-differ", source.file, question,
                    Called(question) + " has " + ToUtf8(TextOf(question.points)) + " points in version " +
                        source.name + " and " + ToUtf8(TextOf(same->points)) + " in version " + master_.name);
    }
  }

  const Question* InMaster(const Question& question) const {
    const auto found = places_.find(Fold(FromUtf8(question.id)));
    return found == places_.end() ? nullptr : &QuestionAt(master_, found->second);
  }

  const Options& options_;
  const std::vector<Source>& sources_;
  const Source& master_;
  Result& result_;
  Findings& findings_;
  Ref<clsTORVA> engine_ = New<clsTORVA>();
  Long graded_ = 0;
  std::unordered_map<String, Long> places_;  // from the folded ID to the place in the first version
  std::vector<std::vector<int>> bubbles_;    // of each row: the bubble for each answer from 1, or 0
};

}  // namespace

bool Assemble(const Options& options, const std::vector<Source>& sources, Result& result, Recorder& recorder,
              Findings& findings) {
  recorder.About({});
  Assembly assembly(options, sources, result, findings);
  const bool merged = assembly.Merge();
  recorder.Rethrow();
  const std::vector<Failure> failures = recorder.TakeFailures();
  for (const Failure& failure : failures) findings.Add(Severity::kError, "failure", failure.text);
  if (!merged || !failures.empty()) {
    const std::string said = recorder.TakeDialog();
    if (failures.empty()) {
      findings.Add(Severity::kError, "failure", said.empty() ? "the merge failed" : said);
    }
    return false;
  }
  assembly.TakeRows();
  return true;
}

}  // namespace TORVA35::sheet
