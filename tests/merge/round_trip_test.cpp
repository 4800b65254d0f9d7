#include <map>

#include "tests/LmfText.h"
#include "tests/TempFile.h"
#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

// From ExamView files over a merge into an LMF file and back: what a host does from beginning to end.
class RoundTrip : public MergeTest {
 protected:
  static std::string QuestionXml(char id) {
    const std::string letter(1, id);
    const std::string choices =
        "<choices><choice-a>x</choice-a><choice-b>y</choice-b><choice-c>z</choice-c></choices>";
    return "<question type='" + std::string(id == '5' ? "tf" : "mc") + "' question-id='" + letter +
           "'><text><para>What is <b>" + letter + "</b>?</para></text>" + (id == '5' ? "" : choices) + "<answer>" +
           (id == '5'   ? "F"
            : id == '3' ? "C,A"
                        : "B") +
           "</answer><info><text-objective>Common,Own " + letter + "</text-objective><topic>t" + letter +
           "</topic></info></question>";
  }

  static Ref<clsTORVATest> Loaded(const std::string& version, const std::string& ids) {
    std::string xml = "<examview><header><version>" + version + "</version></header>";
    for (char id : ids) xml += QuestionXml(id);
    const TempFile file(
        xml + "<question type='es' question-id='e'/><mc-choice-sequence value='ABCDE_FGHIJ'/></examview>");
    auto test = New<clsTORVATest>();
    test->ImportObjectives(TORVATestImportObjectivesLearning);
    EXPECT_TRUE(test->LoadXML(file.Path()));
    return test;
  }

  // What the file keeps of a question.
  static String Kept(const clsTORVATest& test, Long position) {
    const auto question = test.Questions()->Item(position);
    return question->QuestionText() + u" " + Decimal(question->QuestionType()) + u" " + question->Topic() + u" " +
           Decimal(question->Answers()->Count()) + u" " + question->LearningObjectives()->AsString(u"|") + u" " +
           test.CorrectAnswersAsString(position, u",", true, true);
  }
};

TEST_F(RoundTrip, ThreeVersionsThroughAFileAndBack) {
  // Cycles of three and more: a swap would hide a reversed direction.
  const std::vector<Ref<clsTORVATest>> tests = {Loaded("A", "12345"), Loaded("B", "23145"), Loaded("C", "23415")};
  for (const auto& test : tests) engine->Tests()->Add(test);
  engine->Verbose(false);
  ASSERT_TRUE(engine->RemoveInvalid());
  ASSERT_TRUE(engine->ValidTestVersions());
  engine->TemplateIn(Form({{Field(1, false, {u"A", u"B", u"C"}), Field(2, true, {u"1", u"2", u"3"})},
                           {Field(6, true, {u"1", u"2", u"3"})}}));
  engine->TemplateOut(New<clsTemplate>());
  engine->SequenceQuestion(1);
  ASSERT_TRUE(engine->Merge());

  const TempFile file;
  ASSERT_TRUE(engine->MIVLMF()->Save(file.Path()));
  const auto opened = New<clsLmf>();
  ASSERT_TRUE(opened->Open(file.Path()));
  EXPECT_EQ(LmfText(*opened), LmfText(*engine->MIVLMF()));
  EXPECT_EQ(opened->Versions()->VersionMode(), 2);

  const auto read = New<clsTORVATest>();
  ASSERT_TRUE(read->LoadLMF(file.Path()));
  ASSERT_EQ(read->Questions()->Count(), 5);
  std::map<String, String> idInFile;
  for (Long i = 1; i <= 5; ++i) {
    EXPECT_EQ(Kept(*read, i), Kept(*tests.front(), i));
    idInFile[tests.front()->Questions()->Item(i)->ID()] = read->Questions()->Item(i)->ID();
  }
  EXPECT_EQ(Kept(*read, 3), u"What is 3 ? 3 t3 3 Common|Own 3 (3,1)");
  EXPECT_EQ(idInFile[u"1"], u"2");  // behind the version field
  ASSERT_EQ(read->Sequences()->Count(), 3);
  for (std::size_t version = 0; version < tests.size(); ++version) {
    const auto sequence = read->Sequences()->Item(static_cast<Long>(version) + 1);
    EXPECT_EQ(sequence->Answer(), tests[version]->Version());
    for (Long place = 1; place <= 5; ++place) {
      const String id = tests[version]->Questions()->Item(place)->ID();
      EXPECT_EQ(sequence->Order()->Item(idInFile[id]), place) << ToUtf8(sequence->Answer() + u" " + id);
    }
  }
  EXPECT_EQ(read->MultipleChoiceOddScale()->AsString(u""), u"ABC");
  EXPECT_EQ(read->MultipleChoiceEvenScale()->AsString(u""), u"FGH");
}

}  // namespace
}  // namespace TORVA35
