#pragma once

#include "torva35/base/Types.h"
#include "torva35/import/ExamViewNames.h"
#include "torva35/import/RichText.h"
#include "torva35/import/TextAllowance.h"
#include "torva35/model/clsTORVATest.h"
#include "torva35/xml/DOMDocument.h"

/// The steps of `clsTORVATest::LoadXML`. They fill the test through its public members. Each has a boundary of its
/// own, so that a failure in it costs no more than what it reads, and reports under the name of a member of the
/// test.
namespace TORVA35 {

/// What the questions of one document share while they are read.
struct ExamViewDocument {
  explicit ExamViewDocument(const DOMDocument& document) : texts(document) {}

  ExamViewNames names;
  RichText richText{names};
  TextAllowance texts;
};

/// Reads a `question` element and adds it to the test. bPartialCredit: set True when the question allows it, else
/// left alone. Returns False when it was not read to its end; nothing of it is then in the test.
bool AddXMLQuestion(clsTORVATest& test, const IXMLDOMNode& oNode, bool& bPartialCredit,
                    ExamViewDocument& document);

/// Takes the letters of the multiple-choice scales from a `mc-choice-sequence` element. Returns False when they
/// are no letters for both scales, which then stay as they were.
bool PopulateMultipleChoiceScales(clsTORVATest& test, const IXMLDOMNode& oNode, bool bOddDistractorsOnly);

}  // namespace TORVA35
