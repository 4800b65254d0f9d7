#include "Reading.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <set>

#include "Refusal.h"
#include "Survey.h"

namespace TORVA35::sheet {
namespace {

std::vector<std::string> Plain(const clsTORVATestStrings& texts) {
  std::vector<std::string> list;
  for (Long i = 1; i <= texts.Count(); ++i) list.push_back(ToUtf8(texts.Item(i)));
  return list;
}

// The first words, so that a teacher finds the question.
std::string FirstWords(const std::string& text) {
  constexpr std::size_t kUnits = 40;
  const String whole = FromUtf8(text);
  return ToUtf8(whole.size() <= kUnits ? whole : String(First(whole, kUnits)) + u"…");
}

std::optional<double> PlainNumber(const String& text) {
  try {
    return NumberOf(text);
  } catch (const Error&) {
    return std::nullopt;
  }
}

// Sees to it that an ExamView file becomes a test, and that nothing it loses goes unsaid.
class ExamViewFile {
 public:
  ExamViewFile(const Input& input, int position, const Options& options, Recorder& recorder, File& file,
               Findings& findings)
      : input_(input),
        position_(position),
        options_(options),
        recorder_(recorder),
        file_(file),
        findings_(findings) {}

  Reading Read(const DOMDocument& document, Source& source) {
    test_->ImportObjectives(options_.objectives);
    test_->StateAbbreviation(FromUtf8(options_.state));
    recorder_.About(file_.name, test_);
    bool cancelled = false;
    const bool loaded = test_->LoadXML(FromUtf8(input_.path), options_.oddOnly, cancelled, true);
    const std::vector<Failure> failures = recorder_.TakeFailures();
    recorder_.Rethrow();
    if (cancelled) {
      findings_.Add(Severity::kError, "cancelled", position_, "not read, as you chose");
      return Reading::kCancelled;
    }
    survey_ = SurveyExport(document);
    file_.title = ToUtf8(test_->Title());
    file_.version = ToUtf8(test_->Version());
    file_.oddScale = Plain(*test_->MultipleChoiceOddScale());
    file_.evenScale = Plain(*test_->MultipleChoiceEvenScale());
    Align(failures, source);
    if (!loaded) {
      const std::string why = failures.empty() ? WhyRefused(input_.path) : failures.back().text;
      findings_.Add(Severity::kError, "refused", position_, why);
      return Reading::kRefused;
    }
    AddLosses();
    CheckLetters();
    source.test = test_;
    source.file = position_;
    source.name = file_.version;
    return Reading::kDone;
  }

 private:
  // Which element each question of the test is, and why the other elements are none. A lost question is reported
  // while the test holds just the questions before it.
  void Align(const std::vector<Failure>& failures, Source& source) {
    std::size_t failure = 0;
    Long kept = 0;
    const Long count = test_->Questions()->Count();
    const auto left = [&](std::size_t at) {
      return static_cast<Long>(survey_.elements.size() - at) > count - kept;
    };
    for (std::size_t at = 0; at < survey_.elements.size(); ++at) {
      const Survey::Element& element = survey_.elements[at];
      while (failure < failures.size() && !LosesQuestion(failures[failure])) ++failure;
      const bool lost = failure < failures.size() && failures[failure].kept == kept;
      const bool fits = kept < count && ToUtf8(test_->Questions()->Item(kept + 1)->ID()) == element.id;
      if (!lost && (fits || !left(at))) {
        ++kept;
        Keep(element, *test_->Questions()->Item(kept));
        source.questions.push_back(static_cast<int>(at));
        source.papers.push_back(static_cast<long>(at) + 1);
      } else {
        Lose(element, lost ? &failures[failure] : nullptr);
        if (lost) ++failure;
      }
    }
  }

  static bool LosesQuestion(const Failure& failure) {
    return failure.location.find("clsTORVATestQuestions.Add") != std::string::npos ||
           failure.location.find("AddXMLQuestion") != std::string::npos;
  }

  void Keep(const Survey::Element& element, const clsTORVATestQuestion& oQuestion) {
    Question question = PlainQuestion(oQuestion);
    SetPlace(question, element);
    CheckKey(element, question);
    CheckPoints(element, question);
    file_.questions.push_back(std::move(question));
  }

  // The library takes the first letter of a key, and of each part between commas, and passes over the rest.
  void CheckKey(const Survey::Element& element, const Question& question) {
    const bool letters = question.kind == TORVATestQuestionTypeMultipleChoice;
    if (!letters && question.kind != TORVATestQuestionTypeTrueFalse &&
        question.kind != TORVATestQuestionTypeYesNo) {
      return;
    }
    for (const Survey::Value& key : element.keys) {
      const String text = FromUtf8(key.text);
      bool plain = true;
      if (letters) {
        for (const String& part : Split(text, u",")) {
          const StringView letter = Trim(part);
          plain = plain && (letter.size() < 2 || (letter.size() == 2 && letter[1] == u'.'));
        }
      } else {
        plain = Trim(text).find_first_of(u" ,;/|&+-") == StringView::npos;
      }
      if (plain) continue;
      findings_.Add(Severity::kError, "key", position_, question, key.line, key.column,
                    "the key \"" + key.text + "\" is " +
                        (letters ? "no list of letters with commas between them" : "not one answer") +
                        ", and is read as " + LettersOf(question));
    }
    if (letters && !element.misplaced.text.empty()) {
      findings_.Add(Severity::kError, "choices", position_, question, element.misplaced.line,
                    element.misplaced.column,
                    "the choices are not in order, so that the letters of the key may mean others: " +
                        element.misplaced.text + " is not in its place");
    }
  }

  static std::string LettersOf(const Question& question) {
    std::string letters;
    for (const int answer : question.correct) {
      if (answer < 1 || answer > 26) continue;
      const auto at = static_cast<std::size_t>(answer - 1);
      letters += letters.empty() ? "" : ",";
      letters += question.kind == TORVATestQuestionTypeMultipleChoice || at >= question.answers.size()
                     ? std::string(1, static_cast<char>('A' + at))
                     : question.answers[at];
    }
    return letters.empty() ? "none" : letters;
  }

  void CheckPoints(const Survey::Element& element, const Question& question) {
    if (element.points.line == 0) return;
    String digits;  // blanks between them do not count
    for (const char16_t unit : FromUtf8(element.points.text)) {
      if (unit != u' ') digits += unit;
    }
    constexpr double kTolerance = 1e-6;  // a test holds points as short numbers
    const std::optional<double> points = PlainNumber(digits.empty() ? u"0" : digits);
    const bool exact = points && std::abs(*points - question.points) <= kTolerance * std::abs(*points);
    const bool counts = question.kind == TORVATestQuestionTypeTrueFalse ||
                        question.kind == TORVATestQuestionTypeYesNo ||
                        question.kind == TORVATestQuestionTypeMultipleChoice;
    const std::string gives = "a right answer gives " + PointsText(question.points) + " points";
    if (!exact) {
      findings_.Add(counts ? Severity::kError : Severity::kWarning, "points", position_, question,
                    element.points.line, element.points.column,
                    "the points \"" + element.points.text + "\" are no plain number: " + gives);
    } else if (counts && question.points <= 0) {
      findings_.Add(Severity::kWarning, "points", position_, question, element.points.line, element.points.column,
                    gives);
    }
  }

  void Lose(const Survey::Element& element, const Failure* failure) {
    Question question;
    SetPlace(question, element);
    question.id = element.id;
    question.text = element.text;
    if (!element.type.empty()) question.kind = test_->QuestionType(FromUtf8(element.type));
    const Question* first = FirstWithID(element.id);
    question.fate = first != nullptr ? Fate::kDuplicate : Fate::kUnreadable;
    const std::string begin = Called(question) + ", \"" + FirstWords(question.text) + "\", is left out: ";
    if (first != nullptr) {
      findings_.Add(Severity::kError, "duplicate-id", position_, question,
                    begin + "question " + std::to_string(first->number) +
                        (first->line > 0 ? " at line " + std::to_string(first->line) : "") + " has the same ID");
    } else {
      findings_.Add(Severity::kError, "unreadable", position_, question,
                    begin + (failure != nullptr ? failure->text : "it could not be read"));
    }
    file_.questions.push_back(std::move(question));
  }

  void SetPlace(Question& question, const Survey::Element& element) {
    question.number = static_cast<long>(file_.questions.size()) + 1;
    question.line = element.line;
    question.column = element.column;
  }

  // IDs are keys, and keys disregard case.
  const Question* FirstWithID(const std::string& id) const {
    const Ref<clsTORVATestQuestion> oFirst = test_->Questions()->Item(FromUtf8(id));
    if (!oFirst) return nullptr;
    const auto found = std::find_if(file_.questions.begin(), file_.questions.end(), [&](const Question& question) {
      return question.fate == Fate::kKept && EqualNoCase(FromUtf8(question.id), oFirst->ID());
    });
    return found == file_.questions.end() ? nullptr : &*found;
  }

  void AddLosses() {
    for (std::size_t at = 0; at < survey_.elements.size(); ++at) {
      for (const Survey::Loss& loss : survey_.elements[at].losses) {
        const Question& question = file_.questions[at];
        findings_.Add(loss.severity, loss.kind, position_, question, loss.line, loss.column, loss.text);
      }
    }
    for (const Survey::Loss& loss : survey_.losses) {
      Question nowhere;
      findings_.Add(loss.severity, loss.kind, position_, nowhere, loss.line, loss.column, loss.text);
    }
    if (survey_.objectives && options_.objectives == TORVATestImportObjectivesNone) {
      findings_.Add(Severity::kNote, "objectives", position_,
                    "the objectives of the questions were not asked for");
    }
    if (!survey_.numbering.empty() && survey_.numbering != "continuous" && !options_.renumber) {
      findings_.Add(Severity::kError, "numbering", position_,
                    "the paper numbers its questions in its own way (\"" + survey_.numbering +
                        "\"), and not from 1 to the last: number the rows anew, or the paper from 1 to the last");
    }
  }

  // The paper prints the letters of the file. Where the library could not take them, the sheet has other ones.
  void CheckLetters() {
    if (survey_.letters.empty()) return;
    const String letters = FromUtf8(survey_.letters);
    const std::size_t bar = letters.find(u'_');
    const String odd = letters.substr(0, bar);
    const String even = bar == letters.npos || options_.oddOnly ? odd : letters.substr(bar + 1);
    for (const Question& question : file_.questions) {
      if (question.fate != Fate::kKept || question.kind != TORVATestQuestionTypeMultipleChoice) continue;
      const bool isOdd = question.number % 2 != 0;
      const std::vector<std::string>& scale = isOdd ? file_.oddScale : file_.evenScale;
      const String& paper = isOdd ? odd : even;
      for (std::size_t i = 0; i < question.answers.size() && i < paper.size() && i < scale.size(); ++i) {
        if (FromUtf8(scale[i]) == String(1, paper[i])) continue;
        findings_.Add(Severity::kError, "letters", position_, question,
                      "the file asks for the letters \"" + survey_.letters +
                          "\", of which a sheet cannot be made: it "
                          "has " +
                          scale[i] + " where the paper of question " + std::to_string(question.number) + " has " +
                          ToUtf8(String(1, paper[i])));
        return;
      }
    }
  }

  const Input& input_;
  const int position_;
  const Options& options_;
  Recorder& recorder_;
  File& file_;
  Findings& findings_;
  Ref<clsTORVATest> test_ = New<clsTORVATest>();
  Survey survey_;
};

// Makes tests of an LMF file: one for each of its versions.
class LmfFile {
 public:
  LmfFile(const Input& input, int position, Recorder& recorder, File& file, Findings& findings)
      : input_(input), position_(position), recorder_(recorder), file_(file), findings_(findings) {}

  Reading Read(std::vector<Source>& sources) {
    recorder_.About(file_.name, test_);
    const bool opened = lmf_->Open(FromUtf8(input_.path));
    const bool loaded = opened && test_->LoadLMF(FromUtf8(input_.path));
    const std::vector<Failure> failures = recorder_.TakeFailures();
    if (!loaded || !failures.empty()) {
      findings_.Add(Severity::kError, "refused", position_,
                    failures.empty() ? WhyRefused(input_.path) : failures.front().text);
      return Reading::kRefused;
    }
    file_.title =
        ToUtf8(test_->Description().empty() ? std::filesystem::path(FromUtf8(input_.name)).stem().u16string()
                                            : test_->Description());
    file_.oddScale = Plain(*test_->MultipleChoiceOddScale());
    file_.evenScale = Plain(*test_->MultipleChoiceEvenScale());
    for (Long i = 1; i <= test_->Questions()->Count(); ++i) {
      const clsTORVATestQuestion& oQuestion = *test_->Questions()->Item(i);
      if (std::isfinite(oQuestion.CorrectPoints()) && std::isfinite(oQuestion.IncorrectPoints()) &&
          std::isfinite(oQuestion.NoResponsePoints()) && std::isfinite(oQuestion.SubjectivePoints())) {
        continue;
      }
      findings_.Add(Severity::kError, "refused", position_,
                    "the points of the question at position " + std::to_string(i) + " are no number");
      return Reading::kRefused;
    }
    TakeQuestions();
    return TakeVersions(sources) ? Reading::kDone : Reading::kFailed;
  }

 private:
  void TakeQuestions() {
    const Long count = test_->Questions()->Count();
    std::set<Long> taken;
    for (Long i = 1; i <= count; ++i) {
      clsTORVATestQuestion& oQuestion = *test_->Questions()->Item(i);
      const auto position = static_cast<Long>(NumberOf(oQuestion.ID()));
      const clsLmfQuestion& oStored = *lmf_->Questions()->Item(position);
      taken.insert(position);
      // A merge stores that several marks are wanted there, and not with the key.
      if (oStored.Multiples() > 0) oQuestion.CorrectAnd(true);
      Question question = PlainQuestion(oQuestion);
      question.number = NumberOnPaper(oStored, i);
      if (oQuestion.QuestionType() != TORVATestQuestionTypeSubjective) {
        CheckKey(oStored, question);
        CheckPoints(question);
      }
      file_.questions.push_back(std::move(question));
    }
    for (Long k = 1; k <= lmf_->Questions()->Count(); ++k) {
      const clsLmfQuestion& oStored = *lmf_->Questions()->Item(k);
      if (taken.contains(k) || k == lmf_->Versions()->SequenceQuestion()) continue;
      const bool byHand = oStored.Subjective();
      findings_.Add(byHand ? Severity::kWarning : Severity::kNote, "left-out", position_,
                    "the question \"" + ToUtf8(oStored.Name()) + "\" is left out: it is " +
                        (byHand ? "graded by hand and stands before one that is not" : "not graded"));
    }
    if (disorder_.empty()) return;
    findings_.Add(Severity::kError, "numbering", position_,
                  "the question \"" + disorder_ + "\" does not have a higher number than the ones before it");
  }

  // Rows of a sheet are named by their numbers. A file of another making counts its questions.
  long NumberOnPaper(const clsLmfQuestion& oStored, Long position) {
    const std::string name = ToUtf8(oStored.Name());
    const bool number = !name.empty() && name.size() < 10 && name.front() != '0' &&
                        std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
    const long value = number ? std::stol(name) : 0;
    if (value > lastNumber_) {
      lastNumber_ = value;
    } else {
      if (number && disorder_.empty()) disorder_ = name;
      lastNumber_ = std::max<long>(lastNumber_ + 1, position);
    }
    return lastNumber_;
  }

  void CheckPoints(const Question& question) {
    if (question.points > std::max({0.0, question.incorrectPoints, question.noResponsePoints})) return;
    findings_.Add(Severity::kWarning, "points", position_, question,
                  "a right answer gives " + PointsText(question.points) + " points, a wrong one " +
                      PointsText(question.incorrectPoints) + ", and none " +
                      PointsText(question.noResponsePoints));
  }

  // The library drops the marks of a key that no label has.
  void CheckKey(const clsLmfQuestion& oStored, const Question& question) {
    const Long entries = oStored.CorrectLabels()->Count();
    if (entries > 1) {
      findings_.Add(Severity::kError, "key", position_, question,
                    "question " + std::to_string(question.number) + " has " + std::to_string(entries) +
                        " keys, of which the first one is read");
    }
    String key = entries == 0 ? String() : oStored.CorrectLabels()->Item(1);
    if (key.size() >= 2 && key.front() == u'(' && key.back() == u')') key = key.substr(1, key.size() - 2);
    std::set<String> marks;
    for (const String& mark : Split(key, u",")) marks.insert(mark);
    if (marks.size() != question.correct.size()) {
      findings_.Add(Severity::kError, "no-bubble", position_, question,
                    "the key \"" + ToUtf8(key) + "\" of question " + std::to_string(question.number) +
                        " has marks that no bubble has");
    }
    if (!question.all && question.correct.size() > 1) {
      findings_.Add(Severity::kWarning, "any-of-several", position_, question,
                    "any one of the right answers counts for question " + std::to_string(question.number));
    }
  }

  bool TakeVersions(std::vector<Source>& sources) {
    std::vector<std::vector<String>> labels;
    for (Long i = 1; i <= test_->Questions()->Count(); ++i) {
      std::vector<String> row;
      const clsTORVATestStrings& answers = *test_->Questions()->Item(i)->Answers();
      for (Long k = 1; k <= answers.Count(); ++k) row.push_back(answers.Item(k));
      labels.push_back(std::move(row));
    }
    const bool versions = lmf_->Versions()->VersionMode() == 2;
    const Long count = versions ? test_->Sequences()->Count() : 1;
    for (Long n = 1; n <= count; ++n) {
      Source source;
      source.file = position_;
      source.labels = labels;
      if (versions) {
        const clsTORVATestSequence& oVersion = *test_->Sequences()->Item(n);
        source.name = ToUtf8(oVersion.Answer());
        if (!InOrder(*oVersion.Order(), source)) return false;
      } else {
        for (std::size_t i = 0; i < file_.questions.size(); ++i) source.questions.push_back(static_cast<int>(i));
        source.test = test_;
      }
      for (const Question& question : file_.questions) source.papers.push_back(question.number);
      sources.push_back(std::move(source));
    }
    if (!sources.empty()) file_.version = sources.front().name;
    test_->Sequences()->RemoveAll();
    if (!versions) {
      findings_.Add(Severity::kNote, "no-version", position_, "an LMF file of one version keeps no name for it");
    }
    return true;
  }

  // A test with copies of the questions in the order of a version.
  bool InOrder(const clsTORVATestSequenceOrder& oOrder, Source& source) {
    const auto count = static_cast<std::size_t>(test_->Questions()->Count());
    source.questions.assign(count, -1);
    for (std::size_t i = 0; i < count; ++i) {
      const Long place = oOrder.Item(test_->Questions()->Item(static_cast<Long>(i) + 1)->ID());
      if (place < 1 || place > test_->Questions()->Count()) return Incomplete(source);
      source.questions[static_cast<std::size_t>(place - 1)] = static_cast<int>(i);
    }
    if (std::find(source.questions.begin(), source.questions.end(), -1) != source.questions.end()) {
      return Incomplete(source);
    }
    source.test = New<clsTORVATest>();
    source.test->MultipleChoiceOddScale(test_->MultipleChoiceOddScale()->Copy());
    source.test->MultipleChoiceEvenScale(test_->MultipleChoiceEvenScale()->Copy());
    source.test->Title(test_->Title());
    for (const int i : source.questions) source.test->Questions()->Add(test_->Questions()->Item(i + 1)->Copy());
    return true;
  }

  bool Incomplete(const Source& source) {
    findings_.Add(Severity::kError, "version-order", position_,
                  "the version \"" + source.name + "\" does not have each question once");
    return false;
  }

  const Input& input_;
  const int position_;
  Recorder& recorder_;
  File& file_;
  Findings& findings_;
  Ref<clsLmf> lmf_ = New<clsLmf>();
  Ref<clsTORVATest> test_ = New<clsTORVATest>();
  long lastNumber_ = 0;
  std::string disorder_;  // the first name that is a number, and not higher than those before it
};

}  // namespace

std::string Called(const Question& question) {
  return "question " + std::to_string(question.number) + (question.id.empty() ? "" : " (ID " + question.id + ")");
}

double ExactPoints(Single points) {
  return std::isfinite(points) ? NumberOf(TextOf(points)) : points;
}

Question PlainQuestion(const clsTORVATestQuestion& oQuestion) {
  Question question;
  question.id = ToUtf8(oQuestion.ID());
  question.kind = oQuestion.QuestionType();
  question.text = ToUtf8(oQuestion.QuestionText());
  question.answers = Plain(*oQuestion.Answers());
  const clsTORVATestCorrect& oCorrect = *oQuestion.CorrectAnswers();
  for (Long i = 1; i <= oCorrect.Count(); ++i) question.correct.push_back(oCorrect.Item(static_cast<Integer>(i)));
  question.all = oQuestion.CorrectAnd();
  question.points = ExactPoints(oQuestion.CorrectPoints());
  question.incorrectPoints = ExactPoints(oQuestion.IncorrectPoints());
  question.noResponsePoints = ExactPoints(oQuestion.NoResponsePoints());
  question.objectives = Plain(*oQuestion.LearningObjectives());
  question.difficulty = ToUtf8(oQuestion.Difficulty());
  question.topic = ToUtf8(oQuestion.Topic());
  question.keywords = ToUtf8(oQuestion.Keywords());
  question.miscellaneous = ToUtf8(oQuestion.Miscellaneous());
  question.reference = ToUtf8(oQuestion.Reference());
  question.notes = ToUtf8(oQuestion.Notes());
  return question;
}

Reading ReadFile(const Input& input, int position, const Options& options, Recorder& recorder, File& file,
                 std::vector<Source>& sources, Findings& findings) {
  DOMDocument document;
  document.KeepPlaces(true);
  if (!document.load(FromUtf8(input.path))) {
    findings.Add(Severity::kError, "refused", position, WhyRefused(input.path));
    return Reading::kRefused;
  }
  if (document.selectSingleNode(u"lmf")) {
    file.format = Format::kLmf;
    return LmfFile(input, position, recorder, file, findings).Read(sources);
  }
  Source source;
  const Reading reading = ExamViewFile(input, position, options, recorder, file, findings).Read(document, source);
  if (reading == Reading::kDone) sources.push_back(std::move(source));
  return reading;
}

}  // namespace TORVA35::sheet
