// An ExamView export as a test: the document, each question, and its rich text.

#include <random>

#include "tests/RecordingHost.h"
#include "tests/TempFile.h"
#include "tests/Values.h"
#include "torva35/model/clsTORVATest.h"

namespace TORVA35 {
namespace {

const std::string kDuplicate = "457 clsTORVATestQuestions.Add";
const std::string kOverflowed = "6 clsTORVATest.AddXMLQuestion";
const char kPartial[] = "<info><points scoring-method='rightlessWRONG'>-2e-1</points></info>";

const Dialog kPartialCredit = {
    u"Partial Credit",
    u"Warning: One or more test questions allow partial credit; however, partial credit is not supported. All "
    u"imported test questions will require that all correct answers be selected in order for the response to be "
    u"considered correct.",
    290,
    false,
    u"&OK",
    u"&Cancel"};

class ExamView : public HostTest {
 protected:
  bool LoadFile(std::string_view bytes, bool oddOnly = false, bool verbose = true) {
    const TempFile file(bytes);
    return test->LoadXML(file.Path(), oddOnly, cancelled, verbose);
  }
  bool Load(const std::string& content, bool oddOnly = false, bool verbose = true) {
    return LoadFile("<examview>" + content + "</examview>", oddOnly, verbose);
  }
  // Loads one question, given the content of its element and its attributes.
  const clsTORVATestQuestion& Read(const std::string& content, const std::string& attributes = "") {
    EXPECT_TRUE(Load("<question " + attributes + ">" + content + "</question>")) << content.substr(0, 200);
    return *test->Questions()->Item(1);
  }
  String Objectives(const std::string& info) {
    return Read("<info>" + info + "</info>").LearningObjectives()->AsString(u";");
  }
  String Scales() {
    return test->MultipleChoiceOddScale()->AsString(u"") + u" " + test->MultipleChoiceEvenScale()->AsString(u"");
  }
  static String Key(const clsTORVATestQuestion& question) { return Joined(*question.CorrectAnswers()); }

  Ref<clsTORVATest> test = New<clsTORVATest>();
  bool cancelled = false;
};

// --- The document ---

TEST_F(ExamView, HeaderAndQuestionsAreFoundAnywhere) {
  EXPECT_TRUE(
      Load("<x><header><Title>One</Title><VERSION>A</VERSION><title>T</title></header></x>"
           "<header><title>late</title></header><y><question question-id='1'/></y>"
           "<question question-id='2'><question question-id='3'/></question><Question/>"));
  EXPECT_EQ(test->Title() + test->Version(), u"TA");
  EXPECT_EQ(test->Source(), TORVATestSourceTypeExamView);
  ASSERT_EQ(test->Questions()->Count(), 3);
  EXPECT_EQ(test->Questions()->Item(3)->ID(), u"3");
  EXPECT_FALSE(test->UserDefined());
}

TEST_F(ExamView, RefusedFilesLeaveAClearedTestWithoutScales) {
  for (const char* bytes : {"", "no xml", "<Examview><question/></Examview>", "<examview/>", "<examview>"}) {
    test = New<clsTORVATest>();
    test->Title(u"before");
    test->ImportObjectives(5);
    EXPECT_FALSE(LoadFile(bytes)) << bytes;
    EXPECT_EQ(test->Title(), u"");
    EXPECT_EQ(test->Source(), TORVATestSourceTypeExamView);
    EXPECT_EQ(test->ImportObjectives(), 5);
    EXPECT_EQ(Scales(), u" ");
  }
  EXPECT_FALSE(Load("<header><title>kept</title></header>"));
  EXPECT_EQ(test->Title(), u"kept");
  EXPECT_FALSE(test->LoadXML(u"/no/such/file"));
}

TEST_F(ExamView, ScalesFromLetters) {
  struct Row {
    const char* letters;
    bool oddOnly;
    const char16_t* scales;
  };
  const std::string eight =
      "<question question-id='1' type='mc'><choices><a/><b/><c/><d/><e/><f/><g/><h/></choices></question>";
  for (const Row& row : {Row{"ABCDE_FGHIJ", false, u"ABCDE FGHIJ"}, Row{"abcde_fghij", true, u"ABCDEFGH ABCDEFGH"},
                         Row{"ABCDE", false, u"ABCDEFGH ABCDEFGH"}, Row{"ABCDEF_GHIJKL", false, u"ABCDEF GHIJKL"},
                         Row{"ABCDE_", false, u"ABCD ABCD"}, Row{"ABCDE_", true, u"ABCDEFGH ABCDEFGH"},
                         Row{"ABCDE_FGHI", false, u"ABCD ABCD"}, Row{"EFGH", false, u"ABCD ABCD"},
                         Row{"ABCDE_F_HIJ", false, u"ABCDE F_HIJ"}, Row{"ABCD_FGHI_", false, u"ABCD ABCD"},
                         Row{"ABCDEFGHIJ", false, u"ABCDEFGH ABCDEFGH"}}) {
    test = New<clsTORVATest>();
    const std::string sequence = std::string("<mc-choice-sequence any='") + row.letters + "' value='VWXYZ'/>";
    EXPECT_TRUE(Load(sequence + "<mc-choice-sequence value='QQQQQ'/>" + eight, row.oddOnly));
    EXPECT_EQ(Scales(), row.scales) << row.letters;
  }
  test = New<clsTORVATest>();
  EXPECT_TRUE(
      Load("<mc-choice-sequence value='ABCDE_FGHIJ'/>"
           "<question type='tf'><choices><choice-a>x</choice-a></choices></question>"));
  EXPECT_EQ(Scales(), u"ABC FGH");  // "True", "False" and one choice: the largest count may be any kind's
  EXPECT_TRUE(Load(eight));
  EXPECT_EQ(Scales(), u"ABC FGH") << "carried over";
  test->MultipleChoiceEvenScale(nullptr);
  EXPECT_FALSE(Load("<mc-choice-sequence value='ABCDE_FGHIJ'/>" + eight));
  EXPECT_EQ(TakeFailures(), "91 clsTORVATest.PopulateMultipleChoiceScales, 91 clsTORVATest.TrimScales");
  EXPECT_EQ(test->MultipleChoiceOddScale()->Count(), 0);  // the first one goes
}

TEST_F(ExamView, PartialCreditIsAskedOnce) {
  const std::string partial = std::string("<question question-id='p'>") + kPartial + "</question>";
  const std::string body = "<mc-choice-sequence value='ABCDE_FGHIJ'/>" + partial + partial + "<question/>";
  EXPECT_TRUE(Load(body, false, false));
  EXPECT_EQ(TakeFailures(), kDuplicate);
  EXPECT_EQ(test->Questions()->Count(), 2);

  cancelled = true;
  EXPECT_TRUE(Load(body));
  EXPECT_EQ(TakeDialogs(), Dialogs{kPartialCredit});
  EXPECT_TRUE(cancelled);  // only ever set
  for (const TaggedValue& reply : {TaggedValue(7), TaggedValue(2.0), TaggedValue(u"7")}) {
    cancelled = false;
    host->reply = reply;
    EXPECT_FALSE(Load(body));
    EXPECT_EQ(TakeDialogs(), Dialogs{kPartialCredit});
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(test->Questions()->Count(), 0);
    EXPECT_EQ(test->Source(), TORVATestSourceTypeUnknown);
    EXPECT_EQ(Scales(), u"ABCDE FGHIJ");  // untrimmed
  }
  EXPECT_EQ(TakeFailures(), kDuplicate + ", " + kDuplicate + ", " + kDuplicate + ", " + kDuplicate);

  // A failed dialog keeps what was read.
  cancelled = false;
  host->reply = u"no number";
  EXPECT_FALSE(Load(partial));
  EXPECT_EQ(TakeDialogs().size(), 1u);
  EXPECT_EQ(TakeFailures(), "13 clsTORVATest.LoadXML");
  EXPECT_EQ(test->Questions()->Count(), 1);
  EXPECT_FALSE(cancelled);
}

// --- A question ---

TEST_F(ExamView, TypeWordsAndNumbers) {
  // In the order of their numbers; the last two have none.
  const std::vector<std::pair<std::string, Long>> rows = {
      {"tf", 1}, {"mtf", 4}, {"mc", 3}, {"mr", 3},  {"bi", 14}, {"yn", 2},  {"nr", 5},  {"co", 6},
      {"ma", 7}, {"sa", 8},  {"pr", 9}, {"es", 10}, {"ca", 11}, {"ot", 13}, {"12", -1}, {" tf", -1}};
  for (Long number = 0; const auto& [word, type] : rows) {
    EXPECT_EQ(Read("", "type='" + word + "'").QuestionType(), type) << word;
    EXPECT_EQ(test->QuestionType(number++), type) << word;
  }
  EXPECT_EQ(Read("", "type='TF'").Answers()->AsString(u"|"), u"True|False");
  EXPECT_EQ(Read("", "type='yn'").Answers()->AsString(u"|"), u"Yes|No");
  EXPECT_EQ(Read("", "Type='tf'").QuestionType(), TORVATestQuestionTypeUnknown);

  EXPECT_EQ(test->QuestionType(2.0), TORVATestQuestionTypeMultipleChoice);
  EXPECT_EQ(test->QuestionType(2.4), TORVATestQuestionTypeUnknown);
  EXPECT_EQ(test->QuestionType(u"11"), TORVATestQuestionTypeUnknown);
  for (const TaggedValue& neither : {TaggedValue(Null), TaggedValue(Missing), TaggedValue(test)}) {
    EXPECT_EQ(test->QuestionType(neither), 0);
    EXPECT_EQ(TakeFailures(), "13 clsTORVATest.QuestionType");
  }
}

TEST_F(ExamView, AnswerIsCodedByKind) {
  struct Row {
    const char* type;
    const char* answer;
    const char16_t* key;
  };
  for (const Row& row :
       {Row{"mc", "B, D", u"2|4"},    Row{"mc", "b,d", u"2|4"}, Row{"mr", "D, B", u"4|2"},
        Row{"mc", "B,B", u"2"},       Row{"mc", "", u""},       Row{"mc", ",, ,", u""},
        Row{"mc", "H", u"8"},         Row{"mc", "1", u"-15"},   Row{"mc", " C \n", u"3"},
        Row{"mc", "A,\nB", u"1|-54"}, Row{"mc", "é", u"137"},   Row{"mc", "ÿ", u"95"},
        Row{"mc", "Ω,?", u"-1"},      Row{"mc", "€", u"64"},    Row{"mc", "\u0081", u"-1"},
        Row{"mc", "Ÿ", u"95"},        Row{"bi", "T", u"20"},    Row{"none", "Paris, France", u"16|6"},
        Row{"tf", "True", u"1"},      Row{"tf", "false", u"2"}, Row{"tf", "Yes", u""},
        Row{"tf", " T", u""},         Row{"tf", "T,F", u"1"},   Row{"yn", "yES", u"1"},
        Row{"yn", "n", u"2"},         Row{"yn", "T", u""},      Row{"mtf", "T", u"20"}}) {
    const std::string answer = "<answer>" + std::string(row.answer) + "</answer>";
    EXPECT_EQ(Key(Read(answer, "type='" + std::string(row.type) + "'")), row.key) << row.type << " " << row.answer;
  }
  EXPECT_EQ(Key(Read("<ANSWER><b>B</b>,<![CDATA[ A]]></ANSWER><answer>C,A</answer>")), u"2|1|3");
}

TEST_F(ExamView, DisplayModeReplacesTheKind) {
  const auto& bimodal = Read("<answer>T</answer><bi-display-mode value='tf'/><answer>T</answer>", "type='bi'");
  EXPECT_EQ(bimodal.QuestionType(), TORVATestQuestionTypeTrueFalse);
  EXPECT_EQ(Key(bimodal), u"20|1");
  EXPECT_EQ(bimodal.Answers()->Count(), 0);
  const auto& choice = Read("<bi-display-mode value='mc'/>", "type='tf'");
  EXPECT_EQ(choice.QuestionType(), TORVATestQuestionTypeMultipleChoice);
  EXPECT_EQ(choice.Answers()->Count(), 2);
  EXPECT_EQ(Read("<bi-display-mode value='?'/>", "type='tf'").QuestionType(), TORVATestQuestionTypeUnknown);
  EXPECT_EQ(Read("<bi-display-mode Value='mc'/>", "type='tf'").QuestionType(), TORVATestQuestionTypeTrueFalse);
}

TEST_F(ExamView, IDIsQuestionIDAndBankID) {
  EXPECT_EQ(Read("", "bank-id='B2' question-id='17'").ID(), u"17B2");
  EXPECT_EQ(Read("", "bank-id='B2'").ID(), u"B2");
  EXPECT_EQ(Read("", "Question-ID='17'").ID(), u"");
  // A later question with the same ID is missing: without regard to case, and cut.
  const std::string fifty(50, 'x');
  EXPECT_TRUE(
      Load("<question question-id='a' type='tf'/><question question-id='A'/><question/><question type='mc'/>"
           "<question question-id='" +
           fifty + "1'/><question question-id='" + fifty + "2'/><question question-id='z'/>"));
  EXPECT_EQ(TakeFailures(),
            "457 clsTORVATestQuestions.Add, 457 clsTORVATestQuestions.Add, 457 clsTORVATestQuestions.Add");
  ASSERT_EQ(test->Questions()->Count(), 4);
  EXPECT_EQ(test->Questions()->Item(u"a")->QuestionType(), TORVATestQuestionTypeTrueFalse);
  EXPECT_EQ(test->Questions()->Item(4)->ID(), u"z");
}

TEST_F(ExamView, TextsOfAQuestion) {
  const std::string longText(300, 'x');
  std::string info =
      "<info><difficulty>early</difficulty><Difficulty> D<b>1</b></Difficulty><other>x</other></info>";
  for (const std::string name : {"keywords", "Miscellaneous", "notes", "reference", "topic"}) {
    info += "<INFO><" + name + ">" + name + longText + "</" + name + "></INFO>";
  }
  const auto& question = Read(
      "<text>first</text><Text>  two\t</Text>"
      "<choices><choice-b> b </choice-b>text<choice-a>a</choice-a><picture>lost</picture><CHOICE-C/></choices>"
      "<choices><choice-a><font>" +
          longText + "</font></choice-a></choices><difficulty>x</difficulty>" + info,
      "type='tf'");
  EXPECT_EQ(Joined(*question.Answers()), u"True|False|b|text|a|||" + String(50, u'x'));
  EXPECT_EQ(question.QuestionText() + question.Difficulty(), u"two\t D1");
  EXPECT_EQ(question.Notes() + question.Reference(), FromUtf8("notes" + longText + "reference" + longText));
  EXPECT_EQ(question.Keywords() + question.Miscellaneous() + question.Topic(),
            u"keywords" + String(247, u'x') + u"Miscellaneous" + String(242, u'x') + u"topic" + String(250, u'x'));
}

TEST_F(ExamView, Points) {
  EXPECT_EQ(Read("").CorrectPoints(), 1);
  EXPECT_EQ(Read("<info><points> 1 2.5 pts</points></info>").CorrectPoints(), 12.5f);
  EXPECT_EQ(Read("<info><points>3</points><POINTS/></info>").CorrectPoints(), 0);
  for (const char* method :
       {"scoring-method='Other'", "Scoring-Method='RightLessWrong'", "other='RightLessWrong'"}) {
    Read("<info><points " + std::string(method) + ">1</points></info>");
    EXPECT_EQ(TakeDialogs(), Dialogs()) << method;
  }
  const auto& question = Read(kPartial);
  EXPECT_EQ(TakeDialogs(), Dialogs{kPartialCredit});
  EXPECT_EQ(question.CorrectPoints(), -0.2f);
  EXPECT_TRUE(question.CorrectAnd());
}

TEST_F(ExamView, AFailureCostsOneQuestion) {
  EXPECT_TRUE(
      Load("<question question-id='1'/><question question-id='2'><info>"
           "<points scoring-method='RightLessWrong'>1</points><points>1e39</points></info></question>"
           "<question question-id='2'/>"));
  EXPECT_EQ(TakeFailures(), kOverflowed);
  EXPECT_EQ(test->Questions()->Count(), 2);
  EXPECT_EQ(TakeDialogs().size(), 1);  // what was read before the failure counts
  // The number comes first.
  EXPECT_FALSE(Load("<question><info><points scoring-method='RightLessWrong'>1e39</points></info></question>"));
  EXPECT_EQ(TakeFailures(), kOverflowed);
}

TEST_F(ExamView, ObjectivesByFlag) {
  const std::pair<Long, String> rows[] = {{16, u""},        {17, u"learning"},
                                          {2, u"local"},    {4, u"state"},
                                          {8, u"national"}, {15, u"learning;local;state;national"}};
  for (const auto& [flags, read] : rows) {
    test->ImportObjectives(flags);
    EXPECT_EQ(
        Objectives("<text-objective>learning</text-objective><Local-Standard>local</Local-Standard>"
                   "<state-objective>state</state-objective><national-standard>national</national-standard>"),
        read);
  }
}

TEST_F(ExamView, ObjectivesAreSplitAndNotRepeated) {
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

TEST_F(ExamView, StateObjectives) {
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

// --- Rich text ---

TEST_F(ExamView, RichTextElements) {
  const std::vector<std::pair<std::string, String>> rows = {
      {"<para><font>What is 2+2?</font></para>", u"What is 2+2?"},
      {"<para>One</para><para>Two</para>", u"One Two"},
      {"<para>x<sup>2</sup>y</para>", u"x 2 y"},
      {"<font>x<sup>2</sup>y</font>", u"x2y"},
      {"<para>a<equation/>b</para>", u"a equation b"},
      {"<para>a<equation>lost</equation>b<picture>lost<b>lost</b></picture></para>", u"a b"},
      {"<para>two\nlines\r</para>", u"twolines"},
      {"<variable data='x'>kept</variable><variable data='text'/>", u"kept"},
      {"<PARA>a</PARA><n:Para>b</n:Para><b><![CDATA[ ]]>c<![CDATA[]]></b>", u"a b c"},
      {"a&#13;b", u"a\rb"}};
  for (const auto& [content, text] : rows) {
    EXPECT_EQ(Read("<text>" + content + "</text>").QuestionText(), text) << content;
  }
}

struct Rich {
  std::string xml;
  std::string text;  // by the rules to the letter
};

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t i = 0; (i = text.find(from, i)) != text.npos; i += to.size()) text.replace(i, from.size(), to);
}

// An element of this name with anything in it, or a text if the name is empty.
Rich RandomRich(std::mt19937& random, const std::string& name, int depth) {
  static const char* const kNames[] = {"", "", "", "para", "b", "font", "sup", "equation", "other"};
  Rich rich;
  if (name.empty()) {
    for (auto length = random() % 12; length > 0; --length) rich.text += "a    \n"[random() % 6];
    rich.xml = "<![CDATA[" + rich.text + "]]>";
  } else {
    const bool blank = name == "text" || name == "para" || name == "b";
    const auto count = random() % 5;
    for (auto i = count; i > 0; --i) {
      const Rich child = RandomRich(random, depth == 0 ? "" : kNames[random() % std::size(kNames)], depth - 1);
      rich.xml += child.xml;
      if (name != "equation" && name != "other") rich.text += child.text + (blank ? " " : "");
    }
    if (name == "equation" && count == 0) rich.text = "equation";
    rich.xml = "<" + name + ">" + rich.xml + "</" + name + ">";
  }
  for (const char* from : {"  ", "  ", "\n"}) ReplaceAll(rich.text, from, *from == ' ' ? " " : "");
  return rich;
}

TEST_F(ExamView, RichTextIsCleanedAtEveryLevel) {
  std::mt19937 random(35);
  for (int i = 0; i < 3000; ++i) {
    const Rich rich = RandomRich(random, "text", 6);
    EXPECT_EQ(Read(rich.xml).QuestionText(), Trim(FromUtf8(rich.text))) << rich.xml;
  }
}

// Each question's notes hold those of all within. The allowance is 8 MiB, or ten times the document's text.
TEST_F(ExamView, QuestionsWithinNotesDoNotMultiplyTheirText) {
  std::string body = std::string(100'000, 'x');
  for (int i = 0; i < 100; ++i) {
    body = "<question question-id='" + std::to_string(i) + "'><info><notes>" + body + "</notes></info></question>";
  }
  EXPECT_FALSE(Load(body));
  EXPECT_EQ(test->Questions()->Count(), 83);
  EXPECT_EQ(TakeFailures(), "14 clsTORVATest.AddXMLQuestion");
  EXPECT_TRUE(Load(body + "<filler>" + std::string(900'000, 'x') + "</filler>"));
  EXPECT_EQ(test->Questions()->Count(), 100);
}

TEST_F(ExamView, RichTextOfAnyDepth) {
  std::string open, close;
  for (int i = 0; i < 300'000; ++i) {
    open += "<b><i/>";
    close += "</b>";
  }
  EXPECT_EQ(Read("<text>" + open + std::string(100'000, 'x') + close + "</text>").QuestionText(),
            String(100'000, u'x'));
}

}  // namespace
}  // namespace TORVA35
