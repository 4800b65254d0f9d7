#include "torva35/sheet/Sheet.h"

#include <algorithm>

namespace TORVA35::sheet {

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

}  // namespace TORVA35::sheet
