// An ExamView file as a whole: header, questions, scales, and the warning about partial credit.

#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/errors/basError.h"
#include "torva35/import/ExamViewReader.h"

namespace TORVA35 {
namespace {

constexpr Location kLoadXML(u"TORVA35 - clsTORVATest.LoadXML");
constexpr Location kPopulateScales(u"TORVA35 - clsTORVATest.PopulateMultipleChoiceScales");

constexpr Long kPartialCreditStyle = 290;
constexpr const char16_t* kPartialCreditTitle = u"Partial Credit";
constexpr const char16_t* kPartialCreditText =
    u"Warning: One or more test questions allow partial credit; however, partial credit is not supported. "
    u"All imported test questions will require that all correct answers be selected in order "
    u"for the response to be considered correct.";

// The two replies that mean that the user cancelled.
constexpr Double kReplyNo = 7;
constexpr Double kReplyCancel = 2;

void ReadHeader(const IXMLDOMNode& header, clsTORVATest& test) {
  const IXMLDOMNodeList children = header.get_childNodes();
  const Long count = children.get_length();
  for (Long i = 0; i < count; ++i) {
    const IXMLDOMNode child = children.get_item(i);
    const String name = Lower(child.get_nodeName());
    if (name == u"title") test.Title(child.Text());
    if (name == u"version") test.Version(child.Text());
  }
}

Array<String> Labels(StringView letters) {
  std::vector<String> labels;
  for (char16_t letter : letters) labels.emplace_back(1, letter);
  return Array<String>(1, std::move(labels));
}

}  // namespace

bool clsTORVATest::LoadXML(const String& sExamViewXMLFile, bool bOddDistractorsOnly) {
  bool userCancelled = false;
  return LoadXML(sExamViewXMLFile, bOddDistractorsOnly, userCancelled);
}

bool clsTORVATest::LoadXML(const String& sExamViewXMLFile, bool bOddDistractorsOnly, bool& bUserCancelled,
                           bool bVerbose) {
  // Outside the body, so that a processor fault in it does not abandon the document.
  DOMDocument document;
  return Reported(kLoadXML, false, [&](bool& result) {
    Clear();
    Source(TORVATestSourceTypeExamView);
    document.put_async(false);
    bool partialCredit = false;
    if (document.load(sExamViewXMLFile) && document.selectSingleNode(u"examview")) {
      const IXMLDOMNodeList headers = document.getElementsByTagName(u"header");
      if (headers.get_length() > 0) ReadHeader(headers.get_item(0), *this);

      ExamViewDocument shared(document);
      const IXMLDOMNodeList questions = document.getElementsByTagName(u"question");
      const Long count = questions.get_length();
      for (Long i = 0; i < count; ++i) {
        AddXMLQuestion(*this, questions.get_item(i), partialCredit, shared);
        if (shared.texts.IsExceeded()) return;  // which has been reported
      }

      IXMLDOMNodeList sequences = document.getElementsByTagName(u"mc-choice-sequence");
      if (sequences.get_length() > 0) {
        PopulateMultipleChoiceScales(*this, sequences.nextNode(), bOddDistractorsOnly);
      }
    }
    document = DOMDocument();

    if (partialCredit && bVerbose) {
      const TaggedValue reply = basError::MsgBoxEx(kPartialCreditTitle, kPartialCreditText, kPartialCreditStyle,
                                                   Missing, u"&OK", u"&Cancel");
      const Double number = NumberOf(reply);
      if (number == kReplyNo || number == kReplyCancel) {
        bUserCancelled = true;
        Clear();
        return;
      }
    }
    if (TrimScales()) result = Need(questions_).Count() >= 1;
  });
}

bool PopulateMultipleChoiceScales(clsTORVATest& test, const IXMLDOMNode& oNode, bool bOddDistractorsOnly) {
  return Reported(kPopulateScales, false, [&](bool& result) {
    if (!oNode || oNode.get_attributes().get_length() == 0) return;
    const String letters = Upper(oNode.get_attributes().get_item(0).Text());
    const std::size_t underscore = letters.find(u'_');
    String odd = letters.substr(0, underscore);
    String even = underscore == letters.npos ? letters : letters.substr(underscore + 1);
    if (bOddDistractorsOnly) even = odd;
    // Five letters for both stand for the eight that a form can have.
    if (odd == even && odd == u"ABCDE") odd = even = u"ABCDEFGH";
    if (odd.size() != even.size() || odd.size() < 5) return;
    Need(test.MultipleChoiceOddScale()).RemoveAll();
    Need(test.MultipleChoiceEvenScale()).RemoveAll();
    const bool oddAdded = Need(test.MultipleChoiceOddScale()).AddArray(Labels(odd));
    const bool evenAdded = Need(test.MultipleChoiceEvenScale()).AddArray(Labels(even));
    result = oddAdded && evenAdded;
  });
}

}  // namespace TORVA35
