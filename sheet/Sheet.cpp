#include "torva35/sheet/Sheet.h"

#include <algorithm>
#include <tuple>

#include "Assembly.h"
#include "Findings.h"
#include "Reading.h"
#include "Recorder.h"
#include "Versions.h"

namespace TORVA35::sheet {
namespace {

Status StatusOf(Reading reading) {
  switch (reading) {
    case Reading::kRefused:
      return Status::kRefused;
    case Reading::kCancelled:
      return Status::kCancelled;
    default:
      return Status::kFailed;
  }
}

// One call, from the files to the sheet.
class Making {
 public:
  Making(std::vector<Input> inputs, const Options& options)
      : inputs_(std::move(inputs)), options_(options), recorder_(New<Recorder>(options)) {
    for (Input& input : inputs_) {
      if (input.name.empty()) input.name = input.path;
      result_.files.push_back({});
      result_.files.back().name = input.name;
    }
  }

  Result Make() {
    const ErrorObjectInPlace errors(recorder_);
    if (Run()) result_.status = Status::kDone;
    Sort();
    return std::move(result_);
  }

 private:
  bool Run() {
    if (inputs_.empty()) {
      findings_.Add(Severity::kError, "no-file", "there is no file to read");
      return false;
    }
    if (!ReadAll()) return false;
    Tell("checking");
    result_.title = options_.title.empty() ? result_.files.front().title : options_.title;
    if (!CleanUp(options_, result_, sources_, *recorder_, findings_)) return false;
    if (!NameVersions(inputs_, options_, result_, sources_, findings_)) return false;
    if (!JoinVersions(result_, sources_, *recorder_, findings_)) return false;
    Tell("merging");
    return Assemble(options_, sources_, result_, *recorder_, findings_);
  }

  // All files, so that one bad file does not hide another.
  bool ReadAll() {
    bool all = true;
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
      Tell("reading", inputs_[i].name);
      const Reading reading =
          ReadFile(inputs_[i], static_cast<int>(i), options_, *recorder_, result_.files[i], sources_, findings_);
      if (reading == Reading::kDone) continue;
      if (all || reading == Reading::kCancelled) result_.status = StatusOf(reading);
      all = false;
      if (reading == Reading::kCancelled) break;
    }
    return all;
  }

  void Tell(const char* step, const std::string& file = {}) {
    if (options_.progress) options_.progress({step, file, done_, static_cast<long>(inputs_.size()) + 2});
    ++done_;
  }

  void Sort() {
    const auto place = [](const Finding& finding) {
      return std::tuple(finding.file < 0, finding.file, finding.number == 0, finding.number);
    };
    std::stable_sort(result_.findings.begin(), result_.findings.end(),
                     [&](const Finding& left, const Finding& right) { return place(left) < place(right); });
  }

  std::vector<Input> inputs_;
  const Options& options_;
  Ref<Recorder> recorder_;
  Result result_;
  Findings findings_{result_.findings};
  std::vector<Source> sources_;
  long done_ = 0;
};

}  // namespace

std::string KindWord(Kind kind) {
  switch (kind) {
    case TORVATestQuestionTypeTrueFalse:
      return "tf";
    case TORVATestQuestionTypeYesNo:
      return "yn";
    case TORVATestQuestionTypeMultipleChoice:
      return "mc";
    case TORVATestQuestionTypeModifiedTrueFalse:
      return "mtf";
    case TORVATestQuestionTypeNumericResponse:
      return "nr";
    case TORVATestQuestionTypeCompletion:
      return "co";
    case TORVATestQuestionTypeMatching:
      return "ma";
    case TORVATestQuestionTypeShortAnswer:
      return "sa";
    case TORVATestQuestionTypeProblem:
      return "pr";
    case TORVATestQuestionTypeEssay:
      return "es";
    case TORVATestQuestionTypeCase:
      return "ca";
    case TORVATestQuestionTypeSubjective:
      return "subjective";
    case TORVATestQuestionTypeOther:
      return "ot";
    case TORVATestQuestionTypeBimodal:
      return "bi";
    default:
      return "unknown";
  }
}

bool Result::Has(Severity severity) const {
  return std::any_of(findings.begin(), findings.end(),
                     [&](const Finding& finding) { return finding.severity >= severity; });
}

const Question& QuestionOf(const Result& result, const Version& version, const Answer& answer) {
  return result.files[static_cast<std::size_t>(version.file)].questions[static_cast<std::size_t>(answer.question)];
}

std::string KeyText(const Row& row, const Answer& answer) {
  std::string text;
  for (const int mark : answer.marks) {
    if (!text.empty()) text += answer.all ? ' ' : '|';
    text += row.labels[static_cast<std::size_t>(mark - 1)];
  }
  return text;
}

std::string PointsText(double points) {
  return ToUtf8(TextOf(points));
}

Result MakeSheet(const std::vector<Input>& files, const Options& options) {
  return Making(files, options).Make();
}

}  // namespace TORVA35::sheet
