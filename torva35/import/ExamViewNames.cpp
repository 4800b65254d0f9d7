#include "torva35/import/ExamViewNames.h"

#include <algorithm>
#include <iterator>

#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

struct Row {
  StringView text;
  ExamViewName name;
};

constexpr Row kNames[] = {
    {u"text", ExamViewName::kText},
    {u"choices", ExamViewName::kChoices},
    {u"answer", ExamViewName::kAnswer},
    {u"bi-display-mode", ExamViewName::kBiDisplayMode},
    {u"info", ExamViewName::kInfo},
    {u"difficulty", ExamViewName::kDifficulty},
    {u"keywords", ExamViewName::kKeywords},
    {u"miscellaneous", ExamViewName::kMiscellaneous},
    {u"notes", ExamViewName::kNotes},
    {u"points", ExamViewName::kPoints},
    {u"reference", ExamViewName::kReference},
    {u"topic", ExamViewName::kTopic},
    {u"text-objective", ExamViewName::kTextObjective},
    {u"local-standard", ExamViewName::kLocalStandard},
    {u"state-objective", ExamViewName::kStateObjective},
    {u"national-standard", ExamViewName::kNationalStandard},
    {u"para", ExamViewName::kPara},
    {u"b", ExamViewName::kBoldItalicUnderline},
    {u"i", ExamViewName::kBoldItalicUnderline},
    {u"u", ExamViewName::kBoldItalicUnderline},
    {u"sup", ExamViewName::kSup},
    {u"variable", ExamViewName::kVariable},
    {u"font", ExamViewName::kFont},
    {u"choice-a", ExamViewName::kChoice},
    {u"choice-b", ExamViewName::kChoice},
    {u"choice-c", ExamViewName::kChoice},
    {u"choice-d", ExamViewName::kChoice},
    {u"choice-e", ExamViewName::kChoice},
    {u"choice-f", ExamViewName::kChoice},
    {u"choice-g", ExamViewName::kChoice},
    {u"choice-h", ExamViewName::kChoice},
    {u"equation", ExamViewName::kEquation},
};

ExamViewName Meaning(StringView name) {
  const auto* row =
      std::find_if(std::begin(kNames), std::end(kNames), [&](const Row& r) { return r.text == name; });
  return row == std::end(kNames) ? ExamViewName::kOther : row->name;
}

}  // namespace

ExamViewName ExamViewNames::LookUp(const IXMLDOMNode& node, std::uint32_t id, Known& known, Spelling spelling) {
  if (known.empty()) known.resize(node.NameCount() + std::size_t{1}, ExamViewName::kNone);
  // An element whose name ends in a colon has no name after its prefix.
  const String lowered = Lower((node.*spelling)());
  return known[id] = lowered.empty() ? ExamViewName::kNone : Meaning(lowered);
}

}  // namespace TORVA35
