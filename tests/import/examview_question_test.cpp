#include <gtest/gtest.h>

#include <limits>

#include "model/clsTORVATest.h"
#include "tests/RecordingHost.h"
#include "tests/TempFile.h"

namespace TORVA35 {
namespace {

const Failure kDuplicate = {457, u"TORVA35 - clsTORVATestQuestions.Add"};
const Failure kOverflowed = {6, u"TORVA35 - clsTORVATest.AddXMLQuestion"};

class ExamViewQuestion : public HostTest {
 protected:
  bool Load(const std::string& questions) {
    const TempFile file("<examview>" + questions + "</examview>");
    return test->LoadXML(file.Path());
  }
  // Loads one question, given the content of its element and its attributes.
  const clsTORVATestQuestion& Read(const std::string& content, const std::string& attributes = "") {
    EXPECT_TRUE(Load("<question " + attributes + ">" + content + "</question>")) << content;
    return *test->Questions()->Item(1);
  }
  static String Key(const clsTORVATestQuestion& question) {
    String key;
    for (Integer i = 1; i <= question.CorrectAnswers()->Count(); ++i) {
      key += (i > 1 ? u" " : u"") + Decimal(question.CorrectAnswers()->Item(i));
    }
    return key;
  }
  String Objectives(const std::string& info) {
    return Read("<info>" + info + "</info>").LearningObjectives()->AsString(u";");
  }

  Ref<clsTORVATest> test = New<clsTORVATest>();
};

TEST_F(ExamViewQuestion, TypeWordsAndNumbers) {
  struct Row {
    const char* word;
    Long number;
    TORVATestQuestionType type;
    const char16_t* answers = u"";
  };
  constexpr Long kNone = 14;
  const Row rows[] = {{"tf", 0, TORVATestQuestionTypeTrueFalse, u"True|False"},
                      {"mtf", 1, TORVATestQuestionTypeModifiedTrueFalse},
                      {"mc", 2, TORVATestQuestionTypeMultipleChoice},
                      {"mr", 3, TORVATestQuestionTypeMultipleChoice},
                      {"bi", 4, TORVATestQuestionTypeBimodal},
                      {"yn", 5, TORVATestQuestionTypeYesNo, u"Yes|No"},
                      {"nr", 6, TORVATestQuestionTypeNumericResponse},
                      {"co", 7, TORVATestQuestionTypeCompletion},
                      {"ma", 8, TORVATestQuestionTypeMatching},
                      {"sa", 9, TORVATestQuestionTypeShortAnswer},
                      {"pr", 10, TORVATestQuestionTypeProblem},
                      {"es", 11, TORVATestQuestionTypeEssay},
                      {"ca", 12, TORVATestQuestionTypeCase},
                      {"ot", 13, TORVATestQuestionTypeOther},
                      {"TF", 0, TORVATestQuestionTypeTrueFalse, u"True|False"},
                      {" tf", -1, TORVATestQuestionTypeUnknown},
                      {"12", kNone, TORVATestQuestionTypeUnknown},
                      {"", 1000, TORVATestQuestionTypeUnknown}};
  for (const Row& row : rows) {
    const auto& question = Read("", "type='" + std::string(row.word) + "'");
    EXPECT_EQ(question.QuestionType(), row.type) << row.word;
    EXPECT_EQ(question.Answers()->AsString(u"|"), row.answers) << row.word;
    EXPECT_EQ(test->QuestionType(row.number), row.type) << row.number;
  }
  EXPECT_EQ(Read("").QuestionType(), TORVATestQuestionTypeUnknown);
  EXPECT_EQ(Read("", "Type='tf'").QuestionType(), TORVATestQuestionTypeUnknown);

  EXPECT_EQ(test->QuestionType(2.0), TORVATestQuestionTypeMultipleChoice);
  EXPECT_EQ(test->QuestionType(2.4), TORVATestQuestionTypeUnknown);
  EXPECT_EQ(test->QuestionType(Integer{11}), TORVATestQuestionTypeEssay);
  EXPECT_EQ(test->QuestionType(u"11"), TORVATestQuestionTypeUnknown);
  for (const TaggedValue& neither : {TaggedValue(Null), TaggedValue(Missing), TaggedValue(test)}) {
    EXPECT_EQ(test->QuestionType(neither), 0);
    EXPECT_EQ(TakeFailures(), (Failures{{13, u"TORVA35 - clsTORVATest.QuestionType"}}));
  }
}

TEST_F(ExamViewQuestion, AnswerIsCodedByKind) {
  struct Row {
    const char* type;
    const char* answer;
    const char16_t* key;
  };
  for (const Row& row : {Row{"mc", "B, D", u"2 4"},
                         Row{"mc", "b,d", u"2 4"},
                         Row{"mr", "D, B", u"4 2"},
                         Row{"mc", "B,B", u"2"},
                         Row{"mc", "", u""},
                         Row{"mc", ",, ,", u""},
                         Row{"mc", "H", u"8"},
                         Row{"mc", "1", u"-15"},
                         Row{"mc", " C \n", u"3"},
                         Row{"mc", "A,\nB", u"1 -54"},
                         Row{"mc", "\xC3\xA9", u"137"},
                         Row{"mc", "\xC3\xBF", u"95"},
                         Row{"mc", "\xCE\xA9,?", u"-1"},
                         Row{"bi", "T", u"20"},
                         Row{"none", "Paris, France", u"16 6"},
                         Row{"tf", "True", u"1"},
                         Row{"tf", "false", u"2"},
                         Row{"tf", "Yes", u""},
                         Row{"tf", " T", u""},
                         Row{"tf", "T,F", u"1"},
                         Row{"yn", "yES", u"1"},
                         Row{"yn", "n", u"2"},
                         Row{"yn", "T", u""},
                         Row{"mtf", "T", u"20"}}) {
    const std::string answer = "<answer>" + std::string(row.answer) + "</answer>";
    EXPECT_EQ(Key(Read(answer, "type='" + std::string(row.type) + "'")), row.key) << row.type << " " << row.answer;
  }
  EXPECT_EQ(Key(Read("<ANSWER><b>B</b>,<![CDATA[ A]]></ANSWER><answer>C,A</answer>")), u"2 1 3");
}

TEST_F(ExamViewQuestion, DisplayModeReplacesTheKind) {
  const auto* question = &Read("<answer>T</answer><bi-display-mode value='tf'/><answer>T</answer>", "type='bi'");
  EXPECT_EQ(question->QuestionType(), TORVATestQuestionTypeTrueFalse);
  EXPECT_EQ(Key(*question), u"20 1");
  EXPECT_EQ(question->Answers()->Count(), 0);
  question = &Read("<bi-display-mode value='mc'/>", "type='tf'");
  EXPECT_EQ(question->QuestionType(), TORVATestQuestionTypeMultipleChoice);
  EXPECT_EQ(question->Answers()->Count(), 2);
  EXPECT_EQ(Read("<bi-display-mode value='?'/>", "type='tf'").QuestionType(), TORVATestQuestionTypeUnknown);
  EXPECT_EQ(Read("<bi-display-mode Value='mc'/>", "type='tf'").QuestionType(), TORVATestQuestionTypeTrueFalse);
}

TEST_F(ExamViewQuestion, IDIsQuestionIDAndBankID) {
  EXPECT_EQ(Read("", "bank-id='B2' question-id='17'").ID(), u"17B2");
  EXPECT_EQ(Read("", "bank-id='B2'").ID(), u"B2");
  EXPECT_EQ(Read("", "bank-id='B2' question-id='" + std::string(60, '1') + "'").ID(), String(50, u'1'));
  EXPECT_EQ(Read("", "Question-ID='17'").ID(), u"");
}

TEST_F(ExamViewQuestion, ALaterQuestionWithTheSameIDIsMissing) {
  const std::string fifty(50, 'x');
  EXPECT_TRUE(
      Load("<question question-id='a' type='tf'/><question question-id='A'/><question/><question type='mc'/>"
           "<question question-id='" +
           fifty + "1'/><question question-id='" + fifty + "2'/><question question-id='z'/>"));
  EXPECT_EQ(TakeFailures(), (Failures{kDuplicate, kDuplicate, kDuplicate}));
  ASSERT_EQ(test->Questions()->Count(), 4);
  EXPECT_EQ(test->Questions()->Item(u"a")->QuestionType(), TORVATestQuestionTypeTrueFalse);
  EXPECT_EQ(test->Questions()->Item(4)->ID(), u"z");
}

TEST_F(ExamViewQuestion, TextAndChoices) {
  const auto& question = Read(
      "<text>first</text><Text>  two\t</Text>"
      "<choices><choice-b> b </choice-b>text<choice-a>a</choice-a><picture>lost</picture><CHOICE-C/></choices>"
      "<choices><choice-a><font>" +
          std::string(60, 'x') + "</font></choice-a></choices>",
      "type='tf'");
  EXPECT_EQ(question.QuestionText(), u"two\t");
  EXPECT_EQ(question.Answers()->AsString(u"|"), u"True|False|b|text|a|||" + String(50, u'x'));
}

TEST_F(ExamViewQuestion, InfoFields) {
  const std::string longText(300, 'x');
  const auto& question =
      Read("<info><difficulty>early</difficulty><Difficulty> D<b>1</b></Difficulty><keywords>K" + longText +
           "</keywords><other>x</other></info><INFO><miscellaneous>M" + longText + "</miscellaneous><notes>N" +
           longText + "</notes><reference>R" + longText + "</reference><topic>T" + longText +
           "</topic></INFO><difficulty>x</difficulty>");
  const String cut(254, u'x');
  EXPECT_EQ(question.Difficulty(), u" D1");
  EXPECT_EQ(question.Keywords(), u"K" + cut);
  EXPECT_EQ(question.Miscellaneous(), u"M" + cut);
  EXPECT_EQ(question.Topic(), u"T" + cut);
  EXPECT_EQ(question.Notes(), u"N" + cut + String(46, u'x'));
  EXPECT_EQ(question.Reference(), u"R" + cut + String(46, u'x'));
}

TEST_F(ExamViewQuestion, Points) {
  EXPECT_EQ(Read("").CorrectPoints(), 1);
  EXPECT_EQ(Read("<info><points> 1 2.5 pts</points></info>").CorrectPoints(), 12.5f);
  EXPECT_EQ(Read("<info><points>pts</points></info>").CorrectPoints(), 0);
  EXPECT_EQ(Read("<info><points>3</points><POINTS/></info>").CorrectPoints(), 0);
  for (const char* method :
       {"scoring-method='Other'", "Scoring-Method='RightLessWrong'", "other='RightLessWrong'"}) {
    Read("<info><points " + std::string(method) + ">1</points></info>");
    EXPECT_EQ(TakeDialogs(), Dialogs()) << method;
  }
  const auto& question = Read("<info><points scoring-method='rightlessWRONG'>-2e-1</points></info>");
  EXPECT_EQ(TakeDialogs().size(), 1);
  EXPECT_EQ(question.CorrectPoints(), -0.2f);
  EXPECT_TRUE(question.CorrectAnd());
}

TEST_F(ExamViewQuestion, AFailureCostsOneQuestion) {
  EXPECT_TRUE(
      Load("<question question-id='1'/><question question-id='2'><info>"
           "<points scoring-method='RightLessWrong'>1</points><points>1e39</points></info></question>"
           "<question question-id='2'/>"));
  EXPECT_EQ(TakeFailures(), Failures{kOverflowed});
  EXPECT_EQ(test->Questions()->Count(), 2);
  EXPECT_EQ(TakeDialogs().size(), 1);  // what was read before the failure counts

  // The number comes first.
  EXPECT_FALSE(Load("<question><info><points scoring-method='RightLessWrong'>1e39</points></info></question>"));
  EXPECT_EQ(TakeFailures(), Failures{kOverflowed});
  EXPECT_EQ(TakeDialogs(), Dialogs());
}

TEST_F(ExamViewQuestion, ObjectivesByFlag) {
  const std::string info =
      "<text-objective>learning</text-objective><Local-Standard>local</Local-Standard>"
      "<state-objective>state</state-objective><national-standard>national</national-standard>";
  const std::vector<String> kinds = {u"learning", u"local", u"state", u"national"};
  for (Long flags = 0; flags < 16; ++flags) {
    String expected;
    for (std::size_t i = 0; i < 4; ++i) {
      if ((flags >> i & 1) != 0) expected += (expected.empty() ? u"" : u";") + kinds[i];
    }
    test->ImportObjectives(flags + 16);
    EXPECT_EQ(Objectives(info), expected);
  }
}

TEST_F(ExamViewQuestion, ObjectivesAreSplitAndNotRepeated) {
  test->ImportObjectives(TORVATestImportObjectivesLearning + TORVATestImportObjectivesLocal);
  const std::string fifty(50, 'x');
  const std::vector<std::pair<std::string, String>> rows = {
      {"A.1|B,2", u"A.1;B,2"},
      {" A.1 ,  B 2 ", u"A.1;B 2"},
      {"ABC,Abc,x,abc", u"ABC;x"},
      {"a,", u"a;"},
      {"a,,b, ,", u"a;;b"},
      {"|", u""},
      {"", u""},
      {fifty + "1," + fifty + "2," + fifty, FromUtf8(fifty + ";" + fifty + ";" + fifty)}};
  for (const auto& [text, objectives] : rows) {
    EXPECT_EQ(Objectives("<text-objective>" + text + "</text-objective>"), objectives) << text;
  }
  EXPECT_EQ(Objectives("<text-objective>a,b</text-objective><local-standard>B,c</local-standard>"), u"a;b;c");
  EXPECT_TRUE(test->Questions()->Item(1)->LearningObjectives()->Exists(u"C"));
  EXPECT_EQ(Read("<info><text-objective>|</text-objective></info>").LearningObjectives()->Count(), 1);
}

TEST_F(ExamViewQuestion, StateObjectives) {
  struct Row {
    const char16_t* state;
    const char* attributes;
    bool read;
  };
  test->ImportObjectives(TORVATestImportObjectivesState);
  for (const Row& row :
       {Row{u"OH", "state='oh'", true}, Row{u"oh", "STATE='OH'", true}, Row{u"OH", "state='KY'", false},
        Row{u"OH", "", true}, Row{u"", "", true}, Row{u"", "state=''", true}, Row{u"", "state='OH'", false},
        Row{u"OH", "state=''", false}, Row{u"OHIO", "state='OHIO'", false}, Row{u"OHIO", "state='OH'", true},
        Row{u"OH", "other='OH'", false}, Row{u"OH", "state='KY' State='OH'", true}}) {
    test->StateAbbreviation(row.state);
    EXPECT_EQ(Objectives("<state-objective " + std::string(row.attributes) + ">a</state-objective>"),
              row.read ? u"a" : u"")
        << ToUtf8(row.state) << " " << row.attributes;
  }
}

// Each question's notes hold those of all within. The allowance is 8 MiB, or ten times the document's text.
TEST_F(ExamViewQuestion, QuestionsWithinNotesDoNotMultiplyTheirText) {
  std::string body = std::string(100'000, 'x');
  for (int i = 0; i < 100; ++i) {
    body = "<question question-id='" + std::to_string(i) + "'><info><notes>" + body + "</notes></info></question>";
  }
  EXPECT_TRUE(Load(body));
  EXPECT_EQ(TakeFailures(), Failures(100 - 83, {7, u"TORVA35 - clsTORVATest.AddXMLQuestion"}));
  EXPECT_EQ(test->Questions()->Count(), 83);
  EXPECT_TRUE(Load(body + "<filler>" + std::string(900'000, 'x') + "</filler>"));
  EXPECT_EQ(test->Questions()->Count(), 100);
  EXPECT_EQ(test->Questions()->Item(1)->Notes().size(), 100'000u);
}

// The host takes the list away while a question is being reported.
TEST_F(ExamViewQuestion, AHostThatChangesTheTestMeanwhile) {
  host->onFailure = [&] {
    host->onFailure = nullptr;
    test->Questions(nullptr);
  };
  EXPECT_FALSE(Load("<question/><question/><question question-id='3'/>"));
  EXPECT_EQ(TakeFailures(), (Failures{kDuplicate,
                                      {91, u"TORVA35 - clsTORVATest.AddXMLQuestion"},
                                      {91, u"TORVA35 - clsTORVATest.TrimScales"}}));
  EXPECT_EQ(test->Source(), TORVATestSourceTypeExamView);
}

}  // namespace
}  // namespace TORVA35
