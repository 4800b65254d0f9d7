// The line that a failure is reported with is that of the statement in the member that failed.

#include <fstream>
#include <limits>
#include <stdexcept>

#include "model/basPublic.h"
#include "model/clsTORVATests.h"
#include "tests/RecordingHost.h"
#include "tests/TempFile.h"

namespace TORVA35 {
namespace {

struct Provoked {
  const char* file;
  const char* statement;  // what the line holds
  void (*fail)();
};

Ref<clsTORVATestQuestion> Broken(const String& id = u"") {
  auto question = New<clsTORVATestQuestion>();
  question->ID(id);
  question->LearningObjectives(nullptr);
  question->CorrectAnswers(nullptr);
  return question;
}

Ref<clsTORVATest> WithBroken() {
  auto test = New<clsTORVATest>();
  test->Questions()->Add(Broken());
  return test;
}

void LoadXML(const std::string& content, const Ref<clsTORVATest>& test = New<clsTORVATest>()) {
  const TempFile file("<examview>" + content + "</examview>");
  test->LoadXML(file.Path());
}

constexpr Long kLargest = std::numeric_limits<Long>::max();

const Provoked kProvoked[] = {
    {"model/basPublic.cpp", "TextOf", [] { basPublic::CString(nullptr); }},
    {"model/clsTORVATestStrings.cpp", "items_.Add", [] { New<clsTORVATestStrings>()->Add(u"", Null); }},
    {"model/clsTORVATestStrings.cpp", "UBound", [] { New<clsTORVATestStrings>()->AddArray({}); }},
    {"model/clsTORVATestStrings.cpp", "CheckedAdd",
     [] {
       const auto list = New<clsTORVATestStrings>();
       list->AddDelimitedString(u"a\tb");
       list->AsArray(kLargest);
     }},
    {"model/clsTORVATestCorrect.cpp", "items_.Add", [] { New<clsTORVATestCorrect>()->Add(1, 1); }},
    {"model/clsTORVATestCorrect.cpp", "Rounded",
     [] {
       const auto set = New<clsTORVATestCorrect>();
       set->Add(32);
       set->GetBitWiseRepresentation();
     }},
    {"model/clsTORVATestQuestion.cpp", "learningObjectives_", [] { Broken()->Copy(); }},
    {"model/clsTORVATestQuestions.cpp", "items_.Add", [] { New<clsTORVATestQuestions>()->Add(nullptr); }},
    {"model/clsTORVATestQuestions.cpp", "LearningObjectives", [] { WithBroken()->Questions()->Remove(1); }},
    {"model/clsTORVATestSequence.cpp", "order_",
     [] {
       const auto version = New<clsTORVATestSequence>();
       version->Order(nullptr);
       version->Copy(nullptr);
     }},
    {"model/clsTORVATestSequence.cpp", "Find",
     [] {
       const auto version = New<clsTORVATestSequence>();
       version->Order()->Add(u"a");
       version->Copy(New<clsTORVATestQuestions>());
     }},
    {"model/clsTORVATestSequenceOrder.cpp", "items_.Add",
     [] {
       const auto order = New<clsTORVATestSequenceOrder>();
       order->Add(u"");
       order->Add(u"");
     }},
    {"model/clsTORVATestSequences.cpp", "items_.Add", [] { New<clsTORVATestSequences>()->Add(nullptr); }},
    {"model/clsTORVATestSequences.cpp", "Count", [] { New<clsTORVATestSequences>()->AddDefault(nullptr); }},
    {"model/clsTORVATests.cpp", "SetError", [] { New<clsTORVATests>()->Add(nullptr); }},
    {"model/clsTORVATests.cpp", "items_.Remove", [] { New<clsTORVATests>()->Remove(u"none"); }},
    {"model/clsTORVATest.cpp", "LearningObjectives", [] { WithBroken()->NumObjectives(); }},
    {"model/scales.cpp", "BooleanOf",
     [] {
       const auto test = WithBroken();
       test->Questions()->Item(1)->QuestionType(TORVATestQuestionTypeMultipleChoice);
       test->QuestionScale(1, u"odd");
     }},
    {"model/scales.cpp", "Count", [] { WithBroken()->CorrectAnswersAsArray(1); }},
    {"import/examview_question.cpp", "LeadingNumber",
     [] { LoadXML("<question><info><points>1e39</points></info></question>"); }},
    {"import/examview_question.cpp", "NumberOf", [] { New<clsTORVATest>()->QuestionType(Null); }},
    {"import/examview_document.cpp", "multipleChoiceOddScale_",
     [] {
       const auto test = New<clsTORVATest>();
       test->MultipleChoiceOddScale(nullptr);
       LoadXML("<mc-choice-sequence value='ABCDE'/>", test);
     }},
    {"import/examview_document.cpp", "NumberOf",
     [] {
       static_cast<Recorder&>(*basError::goErr()).reply = Null;
       LoadXML("<question><info><points scoring-method='rightLessWrong'/></info></question>");
     }},
    // Not the line of the host, but the member's beginning.
    {"import/examview_document.cpp", "Reported(",
     [] {
       static_cast<Recorder&>(*basError::goErr()).onDialog = [] { throw std::runtime_error("broken"); };
       LoadXML("<question><info><points scoring-method='rightLessWrong'/></info></question>");
     }},
};

std::string SourceLine(const std::string& file, Long line) {
  // Not by the name of this file, which a compiler cache may have made relative.
  std::ifstream source(TEST_DATA "/../../" + file);
  std::string text;
  for (Long i = 0; i < line; ++i) std::getline(source, text);
  return text;
}

class FailingLines : public HostTest {};

TEST_F(FailingLines, AreThoseOfTheMembersStatements) {
  for (const Provoked& row : kProvoked) {
    row.fail();
    ASSERT_FALSE(host->lines.empty()) << row.file << " " << row.statement;
    const std::string line = SourceLine(row.file, host->lines.front());
    EXPECT_NE(line.find(row.statement), line.npos) << row.file << " " << row.statement << ": " << line;
    host->lines.clear();
  }
  TakeFailures();
  TakeDialogs();
}

}  // namespace
}  // namespace TORVA35
