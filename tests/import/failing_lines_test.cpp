// The line that a failure is reported with is that of the statement in the member that failed.

#include <fstream>
#include <stdexcept>

#include "tests/RecordingHost.h"
#include "tests/TempFile.h"
#include "torva35/model/Inside.h"
#include "torva35/model/basPublic.h"
#include "torva35/model/clsTORVATests.h"

namespace TORVA35 {
namespace {

struct Provoked {
  const char* file;
  const char* statement;  // what the line holds
  void (*fail)();
};

void LoadPoints(const std::string& points) {
  const TempFile file("<examview><question><info><points " + points + "</points></info></question></examview>");
  New<clsTORVATest>()->LoadXML(file.Path());
}

Recorder& Host() {
  return static_cast<Recorder&>(*basError::goErr());
}

// One for each way to fail.
const Provoked kProvoked[] = {
    {"model/basPublic.cpp", "TextOf", [] { basPublic::CString(nullptr); }},
    {"model/clsTORVATestStrings.cpp", "Own().Add", [] { New<clsTORVATestStrings>()->Add(u"", Null); }},
    {"model/clsTORVATestStrings.cpp", "UBound", [] { New<clsTORVATestStrings>()->AddArray({}); }},
    {"model/clsTORVATestSequences.cpp", "Count", [] { New<clsTORVATest>()->Sequences()->AddDefault(nullptr); }},
    {"model/clsTORVATests.cpp", "items_.Remove", [] { Inside::New<clsTORVATests>()->Remove(u"none"); }},
    {"import/examview_question.cpp", "LeadingNumber", [] { LoadPoints(">1e39"); }},
    {"import/examview_question.cpp", "NumberOf", [] { New<clsTORVATest>()->QuestionType(Null); }},
    {"import/examview_document.cpp", "NumberOf",
     [] {
       Host().reply = Null;
       LoadPoints("scoring-method='rightLessWrong'>");
     }},
    // Not the line of the host, but the member's beginning.
    {"import/examview_document.cpp", "Reported(",
     [] {
       Host().onDialog = [] { throw std::runtime_error("broken"); };
       LoadPoints("scoring-method='rightLessWrong'>");
     }},
};

std::string SourceLine(const std::string& file, Long line) {
  std::ifstream source(TEST_DATA "/../../torva35/" + file);
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
