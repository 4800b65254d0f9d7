#include <gtest/gtest.h>

#include "model/clsTORVATest.h"
#include "tests/RecordingHost.h"
#include "tests/TempFile.h"

namespace TORVA35 {
namespace {

class ExamViewDocument : public HostTest {
 protected:
  bool Load(std::string_view bytes, bool oddOnly = false, bool verbose = true) {
    const TempFile file(bytes);
    return test->LoadXML(file.Path(), oddOnly, cancelled, verbose);
  }
  bool LoadBody(const std::string& body, bool oddOnly = false, bool verbose = true) {
    return Load("<examview>" + body + "</examview>", oddOnly, verbose);
  }
  String Odd() { return test->MultipleChoiceOddScale()->AsString(u""); }
  String Even() { return test->MultipleChoiceEvenScale()->AsString(u""); }

  Ref<clsTORVATest> test = New<clsTORVATest>();
  bool cancelled = false;
};

const char kEight[] =
    "<question question-id='1' type='mc'><choices><a/><b/><c/><d/><e/><f/><g/><h/></choices></question>";
const char kPartial[] =
    "<question question-id='p'><info><points scoring-method='RIGHTLESSWRONG'>2</points></info></question>";

TEST_F(ExamViewDocument, HeaderAndQuestionsAreFoundAnywhere) {
  EXPECT_TRUE(
      LoadBody("<x><header><Title>One</Title><VERSION>A</VERSION><title>T</title></header></x>"
               "<header><title>late</title></header><y><question question-id='1'/></y>"
               "<question question-id='2'><question question-id='3'/></question><Question/>"));
  EXPECT_EQ(test->Title(), u"T");
  EXPECT_EQ(test->Version(), u"A");
  EXPECT_EQ(test->Source(), TORVATestSourceTypeExamView);
  ASSERT_EQ(test->Questions()->Count(), 3);
  EXPECT_EQ(test->Questions()->Item(3)->ID(), u"3");
  EXPECT_FALSE(test->UserDefined());
}

TEST_F(ExamViewDocument, RefusedFilesLeaveAClearedTestWithoutScales) {
  for (const char* bytes : {"", "no xml", "<Examview><question/></Examview>", "<examview/>", "<examview>"}) {
    test = New<clsTORVATest>();
    test->Title(u"before");
    test->ImportObjectives(5);
    EXPECT_FALSE(Load(bytes)) << bytes;
    EXPECT_EQ(test->Title(), u"");
    EXPECT_EQ(test->Source(), TORVATestSourceTypeExamView);
    EXPECT_EQ(test->ImportObjectives(), 5);
    EXPECT_EQ(Odd() + Even(), u"");
  }
  EXPECT_FALSE(LoadBody("<header><title>kept</title></header>"));
  EXPECT_EQ(test->Title(), u"kept");
  EXPECT_FALSE(test->LoadXML(u"/no/such/file"));
}

TEST_F(ExamViewDocument, ScalesFromLetters) {
  struct Row {
    const char* letters;
    bool oddOnly;
    const char16_t* odd;
    const char16_t* even;
  };
  for (const Row& row :
       {Row{"ABCDE_FGHIJ", false, u"ABCDE", u"FGHIJ"}, Row{"abcde_fghij", true, u"ABCDEFGH", u"ABCDEFGH"},
        Row{"ABCDE", false, u"ABCDEFGH", u"ABCDEFGH"}, Row{"ABCDEF_GHIJKL", false, u"ABCDEF", u"GHIJKL"},
        Row{"ABCDE_", false, u"ABCD", u"ABCD"}, Row{"ABCDE_", true, u"ABCDEFGH", u"ABCDEFGH"},
        Row{"ABCDE_FGHI", false, u"ABCD", u"ABCD"}, Row{"ABCD", false, u"ABCD", u"ABCD"},
        Row{"ABCDE_F_HIJ", false, u"ABCDE", u"F_HIJ"}, Row{"ABCD_FGHI_", false, u"ABCD", u"ABCD"},
        Row{"ABCDEFGHIJ", false, u"ABCDEFGH", u"ABCDEFGH"}}) {
    test = New<clsTORVATest>();
    const std::string sequence = std::string("<mc-choice-sequence any='") + row.letters + "' value='VWXYZ'/>";
    EXPECT_TRUE(LoadBody(sequence + "<mc-choice-sequence value='QQQQQ'/>" + kEight, row.oddOnly));
    EXPECT_EQ(Odd(), row.odd) << row.letters;
    EXPECT_EQ(Even(), String(row.even).substr(0, 8)) << row.letters;
  }
}

TEST_F(ExamViewDocument, ScalesAreTrimmedAndCarriedOver) {
  EXPECT_TRUE(
      LoadBody("<mc-choice-sequence value='ABCDE_FGHIJ'/>"
               "<question type='tf'><choices><choice-a>x</choice-a></choices></question>"));
  EXPECT_EQ(Odd() + Even(), u"ABCFGH");  // "True", "False" and one choice: the largest count may be any kind's
  EXPECT_TRUE(LoadBody(kEight));
  EXPECT_EQ(Odd() + Even(), u"ABCFGH");
}

TEST_F(ExamViewDocument, PartialCreditIsAskedOnce) {
  const std::string body = std::string("<mc-choice-sequence value='ABCDE_FGHIJ'/>") + kPartial + kEight + kEight;
  const Dialog question = {
      u"Partial Credit",
      u"Warning: One or more test questions allow partial credit; however, partial credit is not "
      u"supported. All imported test questions will require that all correct answers be selected "
      u"in order for the response to be considered correct.",
      290,
      false,
      u"&OK",
      u"&Cancel"};
  EXPECT_TRUE(LoadBody(body, false, false));
  const Failures duplicate = {{457, u"TORVA35 - clsTORVATestQuestions.Add"}};
  EXPECT_EQ(TakeFailures(), duplicate);
  EXPECT_EQ(test->Questions()->Count(), 2);

  cancelled = true;
  EXPECT_TRUE(LoadBody(body));
  EXPECT_EQ(TakeDialogs(), Dialogs{question});
  EXPECT_EQ(TakeFailures(), duplicate);
  EXPECT_TRUE(cancelled);  // only ever set

  for (const TaggedValue& reply : {TaggedValue(7), TaggedValue(2.0), TaggedValue(u"7")}) {
    cancelled = false;
    host->reply = reply;
    EXPECT_FALSE(LoadBody(body));
    EXPECT_EQ(TakeDialogs(), Dialogs{question});
    EXPECT_EQ(TakeFailures(), duplicate);
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(test->Questions()->Count(), 0);
    EXPECT_EQ(test->Source(), TORVATestSourceTypeUnknown);
    EXPECT_EQ(Odd(), u"ABCDE");  // untrimmed
  }
}

TEST_F(ExamViewDocument, AFailedDialogKeepsWhatWasRead) {
  host->reply = u"no number";
  EXPECT_FALSE(LoadBody(kPartial));
  TakeDialogs();
  EXPECT_EQ(TakeFailures(), (Failures{{13, u"TORVA35 - clsTORVATest.LoadXML"}}));
  EXPECT_EQ(test->Questions()->Count(), 1);
  EXPECT_EQ(Odd(), u"ABCD");
  EXPECT_FALSE(cancelled);
}

}  // namespace
}  // namespace TORVA35
