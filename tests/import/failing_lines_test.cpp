// The line that a failure is reported with is that of the statement in the member that failed.

#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>

#include "tests/RecordingHost.h"
#include "tests/TempFile.h"
#include "torva35/model/basPublic.h"
#include "torva35/model/clsTORVATest.h"

namespace TORVA35 {
namespace {

class FailingLines : public HostTest {
 protected:
  // The text of the line that the failure of the call is reported with.
  std::string LineOf(const std::string& file, const std::function<void()>& fail) {
    fail();
    std::ifstream source(TEST_DATA "/../../torva35/" + file);
    std::string text;
    for (Long i = 0; !host->lines.empty() && i < host->lines.front(); ++i) std::getline(source, text);
    host->lines.clear();
    TakeFailures();
    TakeDialogs();
    return text;
  }
  static void Load(const std::string& points) {
    const TempFile file("<examview><question><info><points " + points + "</points></info></question></examview>");
    New<clsTORVATest>()->LoadXML(file.Path());
  }
};

// One for each way to fail.
TEST_F(FailingLines, AreThoseOfTheMembersStatements) {
  using testing::HasSubstr;
  EXPECT_THAT(LineOf("model/basPublic.cpp", [] { basPublic::CString(nullptr); }), HasSubstr("TextOf"));
  EXPECT_THAT(LineOf("model/clsTORVATestStrings.cpp", [] { New<clsTORVATestStrings>()->Add(u"", Null); }),
              HasSubstr("Own().Add"));
  EXPECT_THAT(LineOf("model/clsTORVATestStrings.cpp", [] { New<clsTORVATestStrings>()->AddArray({}); }),
              HasSubstr("UBound"));
  EXPECT_THAT(
      LineOf("model/clsTORVATestSequences.cpp", [] { New<clsTORVATest>()->Sequences()->AddDefault(nullptr); }),
      HasSubstr("Count"));
  EXPECT_THAT(LineOf("import/examview_question.cpp", [] { Load(">1e39"); }), HasSubstr("LeadingNumber"));
  host->reply = Null;
  EXPECT_THAT(LineOf("import/examview_document.cpp", [] { Load("scoring-method='rightLessWrong'>"); }),
              HasSubstr("NumberOf"));
  // Not the line of the host, but the member's beginning.
  host->onDialog = [] { throw std::runtime_error("broken"); };
  EXPECT_THAT(LineOf("import/examview_document.cpp", [] { Load("scoring-method='rightLessWrong'>"); }),
              HasSubstr("Reported("));
}

}  // namespace
}  // namespace TORVA35
