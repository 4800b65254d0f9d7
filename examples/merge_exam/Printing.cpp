#include "merge_exam/Printing.h"

#include <iostream>

#include "merge_exam/TextTable.h"

namespace merge_exam {

using namespace TORVA35;

namespace {

using Kind = TextTable::Kind;

String KindName(TORVATestQuestionType type) {
  switch (type) {
    case TORVATestQuestionTypeTrueFalse:
      return u"true/false";
    case TORVATestQuestionTypeYesNo:
      return u"yes/no";
    case TORVATestQuestionTypeMultipleChoice:
      return u"choice";
    case TORVATestQuestionTypeModifiedTrueFalse:
      return u"modified t/f";
    case TORVATestQuestionTypeNumericResponse:
      return u"number";
    case TORVATestQuestionTypeCompletion:
      return u"completion";
    case TORVATestQuestionTypeMatching:
      return u"matching";
    case TORVATestQuestionTypeShortAnswer:
      return u"short answer";
    case TORVATestQuestionTypeProblem:
      return u"problem";
    case TORVATestQuestionTypeEssay:
      return u"essay";
    case TORVATestQuestionTypeCase:
      return u"case";
    case TORVATestQuestionTypeSubjective:
      return u"subjective";
    case TORVATestQuestionTypeOther:
      return u"other";
    case TORVATestQuestionTypeBimodal:
      return u"bimodal";
    case TORVATestQuestionTypeUnknown:
      break;
  }
  return u"unknown";
}

void PrintLine(const char* name, StringView value) {
  std::cout << name << OneLine(value) << '\n';
}

}  // namespace

void PrintTest(const clsTORVATest& oTest) {
  PrintLine("Title:       ", oTest.Title());
  PrintLine("Version:     ", oTest.Version());
  PrintLine("Odd scale:   ", oTest.MultipleChoiceOddScale()->AsString(u" "));
  PrintLine("Even scale:  ", oTest.MultipleChoiceEvenScale()->AsString(u" "));
  PrintLine("True/false:  ", oTest.TrueFalseScale()->AsString(u" "));
  PrintLine("Yes/no:      ", oTest.YesNoScale()->AsString(u" "));

  TextTable table({{u"#", Kind::kRight},
                   {u"ID"},
                   {u"Kind"},
                   {u"Answers", Kind::kRight},
                   {u"Key"},
                   {u"Number"},
                   {u"Points", Kind::kRight},
                   {u"Objectives", Kind::kWrapped},
                   {u"Text", Kind::kWrapped}});
  const Long count = oTest.Questions()->Count();
  for (Long i = 1; i <= count; ++i) {
    const auto oQuestion = oTest.Questions()->Item(i);
    table.Add({Decimal(i), oQuestion->ID(), KindName(oQuestion->QuestionType()),
               Decimal(oQuestion->Answers()->Count()), oTest.CorrectAnswersAsString(i),
               oTest.CorrectAnswersAsString(i, u",", true, true), TextOf(oQuestion->CorrectPoints()),
               oQuestion->LearningObjectives()->AsString(u"; "), oQuestion->QuestionText()});
  }
  std::cout << '\n';
  table.Print(std::cout, OutputWidth());
  std::cout << '\n';
}

}  // namespace merge_exam
