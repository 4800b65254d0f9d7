#include "Versions.h"

#include <filesystem>
#include <map>
#include <system_error>

namespace TORVA35::sheet {
namespace {

const char* KindName(Kind kind) {
  switch (kind) {
    case TORVATestQuestionTypeTrueFalse:
      return "true/false";
    case TORVATestQuestionTypeYesNo:
      return "yes/no";
    case TORVATestQuestionTypeMultipleChoice:
      return "multiple choice";
    case TORVATestQuestionTypeModifiedTrueFalse:
      return "modified true/false";
    case TORVATestQuestionTypeNumericResponse:
      return "numeric response";
    case TORVATestQuestionTypeCompletion:
      return "completion";
    case TORVATestQuestionTypeMatching:
      return "matching";
    case TORVATestQuestionTypeShortAnswer:
      return "short answer";
    case TORVATestQuestionTypeProblem:
      return "problem";
    case TORVATestQuestionTypeEssay:
      return "essay";
    case TORVATestQuestionTypeCase:
      return "case";
    case TORVATestQuestionTypeOther:
      return "other";
    case TORVATestQuestionTypeBimodal:
      return "bimodal";
    default:
      return "unknown";
  }
}

bool IsSupported(Kind kind) {
  return (kind >= TORVATestQuestionTypeTrueFalse && kind <= TORVATestQuestionTypeMultipleChoice) ||
         kind == TORVATestQuestionTypeSubjective;
}

std::string Quoted(const std::string& text) {
  constexpr std::size_t kUnits = 40;
  const String whole = FromUtf8(text);
  return '"' + ToUtf8(whole.size() <= kUnits ? whole : String(First(whole, kUnits)) + u"…") + '"';
}

// A question that the clean-up took.
void TakeOut(Question& question, const Source& source, Findings& findings) {
  if (question.fate != Fate::kKept) return;  // said for an earlier version of the same file
  question.fate = IsSupported(question.kind) ? Fate::kOverLimit : Fate::kUnsupported;
  const std::string begin = Called(question) + ", " + Quoted(question.text) + ", is left out: ";
  if (question.fate == Fate::kUnsupported) {
    findings.Add(Severity::kWarning, "left-out", source.file, question,
                 begin + "a bubble sheet cannot grade its kind (" + KindName(question.kind) + ")");
  } else {
    findings.Add(Severity::kNote, "over-limit", source.file, question, begin + "it is beyond the limit");
  }
}

bool CleanUp(const Options& options, Result& result, Source& source, Recorder& recorder, Findings& findings) {
  std::vector<Ref<clsTORVATestQuestion>> before;
  for (Long i = 1; i <= source.test->Questions()->Count(); ++i)
    before.push_back(source.test->Questions()->Item(i));

  const auto oEngine = New<clsTORVA>();
  oEngine->Tests()->Add(source.test);
  recorder.About(result.files[static_cast<std::size_t>(source.file)].name);
  const bool left = oEngine->RemoveInvalid(static_cast<Long>(options.maxQuestions));
  recorder.Rethrow();

  std::vector<int> questions;
  std::vector<long> papers;
  for (std::size_t i = 0; i < before.size(); ++i) {
    const auto now = static_cast<Long>(questions.size()) + 1;
    if (now <= source.test->Questions()->Count() && source.test->Questions()->Item(now) == before[i]) {
      questions.push_back(source.questions[i]);
      papers.push_back(source.papers[i]);
    } else {
      auto& file = result.files[static_cast<std::size_t>(source.file)];
      TakeOut(file.questions[static_cast<std::size_t>(source.questions[i])], source, findings);
    }
  }
  if (!left) {
    findings.Add(Severity::kError, "nothing-left", source.file,
                 "no question is left that a bubble sheet can grade");
    return false;
  }
  std::vector<std::vector<String>> labels;
  for (std::size_t i = 0, now = 0; i < source.labels.size(); ++i) {
    // Labels go by row, and rows by the place in the version.
    if (now < papers.size() && source.papers[i] == papers[now]) {
      labels.push_back(std::move(source.labels[i]));
      ++now;
    }
  }
  source.questions = std::move(questions);
  source.papers = std::move(papers);
  source.labels = std::move(labels);
  return true;
}

// The first thing that keeps a test from being a version of the master, more exactly than the library's dialogs
// say it.
class Difference {
 public:
  Difference(const Result& result, const Source& master, const Source& version)
      : files_(result.files), master_(master), version_(version) {
    for (Long i = 1; i <= master.test->Questions()->Count(); ++i) {
      places_.emplace(Fold(master.test->Questions()->Item(i)->ID()), i);
    }
  }

  // False when there is none.
  bool Find() {
    if (master_.test->Questions()->Count() != version_.test->Questions()->Count()) {
      text_ = "it has " + std::to_string(version_.test->Questions()->Count()) +
              " questions that can be graded, and " + Name(master_) + " has " +
              std::to_string(master_.test->Questions()->Count());
      return true;
    }
    for (Long i = 1; i <= version_.test->Questions()->Count(); ++i) {
      if (FindAt(i)) {
        question_ = &QuestionAt(version_, i);
        return true;
      }
    }
    return false;
  }

  const std::string& Text() const { return text_; }
  const Question* At() const { return question_; }

 private:
  bool FindAt(Long i) {
    const clsTORVATestQuestion& oQuestion = *version_.test->Questions()->Item(i);
    const std::string called = Called(QuestionAt(version_, i));
    const auto found = places_.find(Fold(oQuestion.ID()));
    if (found == places_.end()) {
      text_ = called + " is not in " + Name(master_);
      return true;
    }
    const clsTORVATestQuestion& oOther = *master_.test->Questions()->Item(found->second);
    const std::string other =
        "question " + std::to_string(QuestionAt(master_, found->second).number) + " of " + Name(master_);
    if (oQuestion.Answers()->Count() != oOther.Answers()->Count()) {
      text_ = called + " has " + std::to_string(oQuestion.Answers()->Count()) + " answers, and " + other +
              " has " + std::to_string(oOther.Answers()->Count());
      return true;
    }
    if (oQuestion.CorrectAnswers()->GetBitWiseRepresentation() !=
        oOther.CorrectAnswers()->GetBitWiseRepresentation()) {
      text_ = called + " has another key than " + other + "; answers must not change places within a question";
      return true;
    }
    const Question& row = QuestionAt(master_, i);
    if (oOther.QuestionType() != row.kind) {
      text_ = called + " is " + KindName(oOther.QuestionType()) + ", and stands where " + Name(master_) + " has " +
              KindName(row.kind) + "; kinds must not change places";
      return true;
    }
    return false;
  }

  const Question& QuestionAt(const Source& source, Long position) const {
    const File& file = files_[static_cast<std::size_t>(source.file)];
    return file.questions[static_cast<std::size_t>(source.questions[static_cast<std::size_t>(position - 1)])];
  }

  std::string Name(const Source& source) const {
    return source.name.empty() ? files_[static_cast<std::size_t>(source.file)].name : "version " + source.name;
  }

  const std::vector<File>& files_;
  const Source& master_;
  const Source& version_;
  std::map<String, Long> places_;
  std::string text_;
  const Question* question_ = nullptr;
};

// The IDs of a test in their order, as one text.
String OrderOf(const Source& source) {
  String order;
  for (Long i = 1; i <= source.test->Questions()->Count(); ++i) {
    order += Fold(source.test->Questions()->Item(i)->ID()) + u'\0';
  }
  return order;
}

}  // namespace

bool CleanUp(const Options& options, Result& result, std::vector<Source>& sources, Recorder& recorder,
             Findings& findings) {
  bool all = true;
  for (Source& source : sources) all = CleanUp(options, result, source, recorder, findings) && all;
  return all;
}

bool NameVersions(const std::vector<Input>& inputs, const Options& options, const Result& result,
                  std::vector<Source>& sources, Findings& findings) {
  if (!options.versionNames.empty() && options.versionNames.size() != sources.size()) {
    findings.Add(Severity::kError, "version-names",
                 (sources.size() == 1 ? "there is 1 version"
                                      : "there are " + std::to_string(sources.size()) + " versions") +
                     ", and names for " + std::to_string(options.versionNames.size()));
    return false;
  }
  bool good = true;
  std::map<String, std::size_t> taken;
  for (std::size_t v = 0; v < sources.size(); ++v) {
    Source& source = sources[v];
    if (!options.versionNames.empty()) source.name = options.versionNames[v];
    source.name = ToUtf8(Trim(Cut(FromUtf8(source.name), 50)));
    source.test->Version(FromUtf8(source.name));
    if (sources.size() == 1) break;
    if (source.name.empty()) {
      findings.Add(
          Severity::kError, "version-name", source.file,
          "the file names no version, so that no student can mark which one it is; give the versions names");
      good = false;
      continue;
    }
    const auto [other, free] = taken.emplace(Fold(FromUtf8(source.name)), v);
    if (!free) {
      const std::string& name = result.files[static_cast<std::size_t>(sources[other->second].file)].name;
      findings.Add(Severity::kError, "version-name", source.file,
                   "the version \"" + source.name + "\" is there already, from " + name +
                       "; give the versions names of their own");
      good = false;
    }
  }
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      std::error_code error;
      const auto path = [&](std::size_t at) { return std::filesystem::path(FromUtf8(inputs[at].path)); };
      if (!std::filesystem::equivalent(path(i), path(k), error)) continue;
      findings.Add(Severity::kWarning, "same-file", static_cast<int>(i),
                   "the file is the same as " + inputs[k].name);
      break;
    }
  }
  return good;
}

bool JoinVersions(const Result& result, const std::vector<Source>& sources, Recorder& recorder,
                  Findings& findings) {
  const Source& master = sources.front();
  master.test->Sequences()->RemoveAll();
  master.test->Sequences()->AddDefault(master.test->Questions(), master.test->Version());
  std::map<String, std::size_t> orders = {{OrderOf(master), 0}};
  for (std::size_t v = 1; v < sources.size(); ++v) {
    const Source& version = sources[v];
    recorder.About(result.files[static_cast<std::size_t>(version.file)].name);
    const auto oEngine = New<clsTORVA>();
    oEngine->Tests()->Add(master.test);
    oEngine->Tests()->Add(version.test);
    const bool joined = oEngine->ValidTestVersions() && master.test->AddSequence(version.test);
    recorder.Rethrow();
    if (joined) {
      const auto [other, fresh] = orders.emplace(OrderOf(version), v);
      if (!fresh && master.test->Questions()->Count() > 1) {
        findings.Add(Severity::kWarning, "same-order", version.file,
                     "version " + version.name + " has its questions in the order of version " +
                         sources[other->second].name);
      }
      continue;
    }
    Difference difference(result, master, version);
    const std::string said = recorder.TakeDialog();
    const std::string begin = "version " + version.name + " is not the same test in another order: ";
    const std::vector<Failure> failures = recorder.TakeFailures();
    const std::string text = begin + (difference.Find()   ? difference.Text()
                                      : !said.empty()     ? said
                                      : !failures.empty() ? failures.front().text
                                                          : "the library did not say why");
    if (difference.At() != nullptr) {
      findings.Add(Severity::kError, "not-a-version", version.file, *difference.At(), text);
    } else {
      findings.Add(Severity::kError, "not-a-version", version.file, text);
    }
    return false;
  }
  return true;
}

}  // namespace TORVA35::sheet
