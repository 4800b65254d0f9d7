#include "merge_exam/Printing.h"

#include <iostream>
#include <iterator>
#include <vector>

#include "merge_exam/Form.h"
#include "merge_exam/TextTable.h"

namespace merge_exam {

using namespace TORVA35;

namespace {

using Kind = TextTable::Kind;

String KindName(Long type) {
  // In the order of the enumeration, from 1.
  constexpr const char16_t* kNames[] = {u"true/false", u"yes/no",     u"choice",       u"modified t/f", u"number",
                                        u"completion", u"matching",   u"short answer", u"problem",      u"essay",
                                        u"case",       u"subjective", u"other",        u"bimodal"};
  return type >= 1 && type <= std::ssize(kNames) ? kNames[type - 1] : u"unknown";
}

String LabelsOf(const clsTemplateStrings& labels) {
  const Long count = labels.Count();
  constexpr Long kShownAll = 10;
  if (count > kShownAll) return labels.Item(1) + u" to " + labels.Item(count);
  String text;
  for (const String& label : labels) text += (text.empty() ? u"" : u" ") + (label.empty() ? u"-" : label);
  return text;
}

// The versions that came with the test, as from an LMF file.
String VersionsOf(const clsTORVATest& oTest) {
  String text;
  for (Long i = 1; i <= oTest.Sequences()->Count(); ++i) {
    if (i > 1) text += u' ';
    text += oTest.Sequences()->Item(i)->Answer();
  }
  return text;
}

void PrintLine(const char* name, StringView value) {
  std::cout << name << OneLine(value) << '\n';
}

void PrintTable(const char* title, const TextTable& table) {
  std::cout << title << "\n\n";
  table.Print(std::cout, OutputWidth());
  std::cout << '\n';
}

}  // namespace

String ObjectivesOf(const clsLmfQuestion& oQuestion, const clsLmfObjectives& objectives) {
  String text;
  const auto flags = oQuestion.ObjectiveFlags();
  for (Long k = flags->NextTrue(0); k > 0; k = flags->NextTrue(k)) {
    text += (text.empty() ? u"" : u"; ") + objectives.Item(k)->Text();
  }
  return text;
}

void PrintTest(const std::string& file, const clsTORVATest& oTest) {
  PrintLine("File:        ", FromUtf8(file));
  PrintLine("Title:       ", oTest.Title());
  PrintLine("Version:     ", oTest.Version());
  if (oTest.Sequences()->Count() > 0) PrintLine("Versions:    ", VersionsOf(oTest));
  PrintLine("Odd scale:   ", oTest.MultipleChoiceOddScale()->AsString(u" "));
  PrintLine("Even scale:  ", oTest.MultipleChoiceEvenScale()->AsString(u" "));
  PrintLine("True/false:  ", oTest.TrueFalseScale()->AsString(u" "));
  PrintLine("Yes/no:      ", oTest.YesNoScale()->AsString(u" "));
  std::cout << '\n';

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
  PrintTable("Questions", table);
}

void PrintForm(const clsTORVA& oEngine) {
  TextTable table({{u"#", Kind::kRight},
                   {u"Field"},
                   {u"Question"},
                   {u"Labels"},
                   {u"Graded"},
                   {u"Marks"},
                   {u"Text", Kind::kWrapped}});
  for (const MergedQuestion& merged : MergedQuestions(oEngine)) {
    const clsLmfQuestion& oOutput = *merged.oOutput;
    table.Add({Decimal(merged.position), merged.oField->Name(), oOutput.Name(),
               LabelsOf(*merged.oQuestion->Labels()),
               oOutput.Subjective() ? u"by hand"
               : oOutput.Graded()   ? u"yes"
                                    : u"no",
               oOutput.Multiples() > 0 ? u"several" : u"one", oOutput.Text()});
  }
  PrintTable("Merged form", table);
}

void PrintAnswerKey(const clsTORVA& oEngine) {
  TextTable table({{u"Question", Kind::kRight},
                   {u"Key"},
                   {u"Number"},
                   {u"Points", Kind::kRight},
                   {u"Objectives", Kind::kWrapped}});
  for (const auto& oQuestion : *oEngine.MIVLMF()->Questions()) {
    if (!oQuestion->Graded()) continue;
    table.Add({oQuestion->Name(), oQuestion->CorrectLabels()->Item(1), oQuestion->CorrectValues()->Item(1),
               TextOf(oQuestion->CorrectPoints()), ObjectivesOf(*oQuestion, *oEngine.MIVLMF()->Objectives())});
  }
  PrintTable("Answer key", table);
}

void PrintVersions(const clsTORVA& oEngine) {
  const auto oVersions = oEngine.MIVLMF()->Versions();
  const auto oQuestions = oEngine.MIVLMF()->Questions();
  if (oVersions->VersionNames()->Count() == 0) return;
  std::vector<TextTable::Column> columns = {{u"Place", Kind::kRight}};
  for (const String& name : *oVersions->VersionNames()) columns.push_back({name, Kind::kRight});

  TextTable table(columns);
  for (Long place = 1; place <= oQuestions->Count(); ++place) {
    if (!oQuestions->Item(place)->Graded()) continue;
    std::vector<String> row = {oQuestions->Item(place)->Name()};
    for (const auto& oSequence : *oVersions->Sequences()) {
      row.push_back(oQuestions->Item(oSequence->Item(place))->Name());
    }
    table.Add(std::move(row));
  }
  PrintTable("Question order of the versions", table);
}

}  // namespace merge_exam
