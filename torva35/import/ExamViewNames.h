#pragma once

#include <cstdint>
#include <vector>

#include "torva35/base/Types.h"
#include "torva35/xml/DOMDocument.h"

namespace TORVA35 {

/// The element names that mean something below `question`, without regard to case.
enum class ExamViewName : std::uint8_t {
  kNone,   // a node without a name
  kOther,  // any name that means nothing here
  kText,
  kChoices,
  kAnswer,
  kBiDisplayMode,
  kInfo,
  kDifficulty,
  kKeywords,
  kMiscellaneous,
  kNotes,
  kPoints,
  kReference,
  kTopic,
  kTextObjective,
  kLocalStandard,
  kStateObjective,
  kNationalStandard,
  kPara,
  kBoldItalicUnderline,
  kSup,
  kVariable,
  kFont,
  kChoice,
  kEquation,
};

/// Tells the names of one document apart. Each name is lowered and looked up once, however many elements have it.
class ExamViewNames {
 public:
  ExamViewName Whole(const IXMLDOMNode& node) { return Of(node, whole_, &IXMLDOMNode::get_nodeName); }
  /// By the name without its prefix.
  ExamViewName Base(const IXMLDOMNode& node) { return Of(node, base_, &IXMLDOMNode::get_baseName); }

 private:
  using Known = std::vector<ExamViewName>;  // by the document's number of the name; kNone: not looked up yet
  using Spelling = String (IXMLDOMNode::*)() const;

  static ExamViewName Of(const IXMLDOMNode& node, Known& known, Spelling spelling) {
    const std::uint32_t id = node.NameId();
    if (id == 0) return ExamViewName::kNone;
    if (id < known.size() && known[id] != ExamViewName::kNone) return known[id];
    return LookUp(node, id, known, spelling);
  }
  static ExamViewName LookUp(const IXMLDOMNode& node, std::uint32_t id, Known& known, Spelling spelling);

  Known whole_;
  Known base_;
};

}  // namespace TORVA35
