// One question element of an ExamView file.

#include <iterator>
#include <utility>

#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/import/ExamViewReader.h"

namespace TORVA35 {
namespace {

constexpr Location kAddXMLQuestion(u"TORVA35 - clsTORVATest.AddXMLQuestion");
constexpr Location kQuestionType(u"TORVA35 - clsTORVATest.QuestionType");

struct TypeRow {
  StringView word;
  Long number;
  TORVATestQuestionType type;
};

constexpr TypeRow kTypes[] = {
    {u"tf", 0, TORVATestQuestionTypeTrueFalse},       {u"mtf", 1, TORVATestQuestionTypeModifiedTrueFalse},
    {u"mc", 2, TORVATestQuestionTypeMultipleChoice},  {u"mr", 3, TORVATestQuestionTypeMultipleChoice},
    {u"bi", 4, TORVATestQuestionTypeBimodal},         {u"yn", 5, TORVATestQuestionTypeYesNo},
    {u"nr", 6, TORVATestQuestionTypeNumericResponse}, {u"co", 7, TORVATestQuestionTypeCompletion},
    {u"ma", 8, TORVATestQuestionTypeMatching},        {u"sa", 9, TORVATestQuestionTypeShortAnswer},
    {u"pr", 10, TORVATestQuestionTypeProblem},        {u"es", 11, TORVATestQuestionTypeEssay},
    {u"ca", 12, TORVATestQuestionTypeCase},           {u"ot", 13, TORVATestQuestionTypeOther},
};

// Keeps the text where it has no blanks at its ends and not much more memory than it needs.
String Trimmed(String text) {
  const StringView trimmed = Trim(text);
  return trimmed.size() == text.size() && text.capacity() - text.size() < 16 ? std::move(text) : String(trimmed);
}

// Reads one element into a question. `test` lends its settings.
class QuestionReader {
 public:
  QuestionReader(const clsTORVATest& test, clsTORVATestQuestion& question, bool& partialCredit,
                 ExamViewDocument& document)
      : test_(test),
        question_(question),
        partialCredit_(partialCredit),
        names_(document.names),
        texts_(document.texts) {}

  void ReadAttributes(const IXMLDOMNode& element) {
    const IXMLDOMNamedNodeMap attributes = element.get_attributes();
    if (const IXMLDOMNode type = attributes.Named("type")) {
      question_.QuestionType(test_.QuestionType(type.get_nodeValue()));
    }
    if (question_.QuestionType() == TORVATestQuestionTypeTrueFalse) {
      Need(question_.Answers()).AddDelimitedString(u"True\tFalse", u"\t");
    } else if (question_.QuestionType() == TORVATestQuestionTypeYesNo) {
      Need(question_.Answers()).AddDelimitedString(u"Yes\tNo", u"\t");
    }
    if (const IXMLDOMNode id = attributes.Named("question-id")) question_.ID(id.Text());
    if (const IXMLDOMNode bank = attributes.Named("bank-id")) question_.ID(question_.ID() + bank.Text());
  }

  void ReadAnswer(const String& value) {
    switch (question_.QuestionType()) {
      case TORVATestQuestionTypeTrueFalse:
        ReadOneOfTwo(value, u'T', u'F');
        break;
      case TORVATestQuestionTypeYesNo:
        ReadOneOfTwo(value, u'Y', u'N');
        break;
      default:
        ReadLetters(value);
    }
  }

  void ReadDisplayMode(const IXMLDOMNode& element) {
    if (const IXMLDOMNode value = element.get_attributes().Named("value")) {
      question_.QuestionType(test_.QuestionType(value.get_nodeValue()));
    }
  }

  void ReadInfo(const IXMLDOMNode& child) {
    switch (names_.Whole(child)) {
      case ExamViewName::kDifficulty:
        return question_.Difficulty(texts_.Take(child));
      case ExamViewName::kKeywords:
        return question_.Keywords(texts_.Take(child));
      case ExamViewName::kMiscellaneous:
        return question_.Miscellaneous(texts_.Take(child));
      case ExamViewName::kNotes:
        return question_.Notes(texts_.Take(child));
      case ExamViewName::kPoints:
        return ReadPoints(child);
      case ExamViewName::kReference:
        return question_.Reference(texts_.Take(child));
      case ExamViewName::kTopic:
        return question_.Topic(texts_.Take(child));
      case ExamViewName::kTextObjective:
        return ReadObjectives(child, TORVATestImportObjectivesLearning);
      case ExamViewName::kLocalStandard:
        return ReadObjectives(child, TORVATestImportObjectivesLocal);
      case ExamViewName::kStateObjective:
        return ReadStateObjectives(child);
      case ExamViewName::kNationalStandard:
        return ReadObjectives(child, TORVATestImportObjectivesNational);
      default:
        return;
    }
  }

 private:
  // The value is not trimmed: a leading blank is no match.
  void ReadOneOfTwo(const String& value, char16_t first, char16_t second) {
    const char16_t letter = value.empty() ? u'\0' : UpperUnit(value.front());
    if (letter == first) Need(question_.CorrectAnswers()).Add(1);
    if (letter == second) Need(question_.CorrectAnswers()).Add(2);
  }

  // "A" is 1. There is no check of the range: nothing in the file says how many answers a key may name.
  void ReadLetters(const String& value) {
    for (const String& part : Split(value, u",")) {
      const StringView letter = Trim(part);
      if (letter.empty()) continue;
      const auto number = static_cast<Integer>(AnsiCode(UpperUnit(letter.front())) - 64);
      Need(question_.CorrectAnswers()).Add(number);  // one that is there already is left alone
    }
  }

  void ReadPoints(const IXMLDOMNode& element) {
    question_.CorrectAnd(true);
    question_.CorrectPoints(LeadingNumber(texts_.Take(element)));
    const IXMLDOMNode method = element.get_attributes().Named("scoring-method");
    if (method && EqualNoCase(method.Text(), u"RightLessWrong")) partialCredit_ = true;
  }

  bool Imports(Long flag) const { return (test_.ImportObjectives() & flag) != 0; }

  void ReadObjectives(const IXMLDOMNode& element, Long flag) {
    if (Imports(flag)) AddObjectives(texts_.Take(element));
  }

  void ReadStateObjectives(const IXMLDOMNode& element) {
    if (!Imports(TORVATestImportObjectivesState)) return;
    const IXMLDOMNamedNodeMap attributes = element.get_attributes();
    const Long count = attributes.get_length();
    if (count == 0) AddObjectives(texts_.Take(element));
    for (Long i = 0; i < count; ++i) {
      const IXMLDOMNode attribute = attributes.get_item(i);
      if (EqualNoCase(attribute.get_nodeName(), u"state") &&
          EqualNoCase(attribute.Text(), test_.StateAbbreviation())) {
        AddObjectives(texts_.Take(element));
      }
    }
  }

  void AddObjectives(const String& text) {
    clsTORVATestStrings& objectives = Need(question_.LearningObjectives());
    for (const String& part : Split(text, text.find(u'|') == text.npos ? u"," : u"|")) {
      const String objective(Trim(part));
      if (!objectives.Exists(objective)) objectives.Add(objective, objective);
    }
  }

  const clsTORVATest& test_;
  clsTORVATestQuestion& question_;
  bool& partialCredit_;
  ExamViewNames& names_;
  TextAllowance& texts_;
};

}  // namespace

bool AddXMLQuestion(clsTORVATest& test, const IXMLDOMNode& oNode, bool& bPartialCredit,
                    ExamViewDocument& document) {
  return Reported(kAddXMLQuestion, false, [&](bool& result) {
    const auto question = New<clsTORVATestQuestion>();
    // Where memory ran out in its making, it lacks a list, and could not be taken out of the test again.
    Need(question->LearningObjectives());
    Need(question->Answers());
    Need(question->CorrectAnswers());
    QuestionReader reader(test, *question, bPartialCredit, document);
    reader.ReadAttributes(oNode);
    for (IXMLDOMNode child = oNode.FirstChild(); child; child = child.NextSibling()) {
      switch (document.names.Whole(child)) {
        case ExamViewName::kText:
          question->QuestionText(Trimmed(document.richText.NodeText(child)));
          break;
        case ExamViewName::kChoices:
          for (IXMLDOMNode choice = child.FirstChild(); choice; choice = choice.NextSibling()) {
            Need(question->Answers()).Add(Trimmed(document.richText.NodeText(choice)));
          }
          break;
        case ExamViewName::kAnswer:
          reader.ReadAnswer(document.texts.Take(child));
          break;
        case ExamViewName::kBiDisplayMode:
          reader.ReadDisplayMode(child);
          break;
        case ExamViewName::kInfo:
          for (IXMLDOMNode property = child.FirstChild(); property; property = property.NextSibling()) {
            reader.ReadInfo(property);
          }
          break;
        default:
          break;
      }
    }
    Need(test.Questions()).Add(question);
    result = true;
  });
}

TORVATestQuestionType clsTORVATest::QuestionType(const TaggedValue& vType) const {
  return Reported(kQuestionType, TORVATestQuestionType{}, [&](TORVATestQuestionType& result) {
    const auto* text = vType.As<String>();
    const String word = text == nullptr ? String() : Lower(*text);
    const Double number = text == nullptr ? NumberOf(vType) : 0;
    result = TORVATestQuestionTypeUnknown;
    for (const TypeRow& row : kTypes) {
      if (text != nullptr ? row.word == word : row.number == number) {
        result = row.type;
        return;
      }
    }
  });
}

}  // namespace TORVA35
