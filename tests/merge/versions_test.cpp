#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

class Versions : public MergeTest {
 protected:
  // Into a version field with three labels in front of five graded questions.
  bool MergeAll(const std::vector<Ref<clsTORVATest>>& tests, Long sequenceQuestion) {
    engine->Tests()->RemoveAll();
    for (const auto& test : tests) engine->Tests()->Add(test);
    engine->TemplateIn(Form({{Field(1, false, {u"a", u"b", u"C"}), Field(5, true, {u"A", u"B", u"C"})}}));
    engine->TemplateOut(New<clsTemplate>());
    engine->SequenceQuestion(sequenceQuestion);
    return engine->Merge();
  }
  Ref<clsTORVATest> Ordered(const String& ids, const String& version) {
    std::vector<Ref<clsTORVATestQuestion>> questions;
    for (char16_t id : ids) questions.push_back(Choice(String(1, id), static_cast<Integer>(id % 3 + 1)));
    return Test(questions, version);
  }
};

TEST_F(Versions, AddSequenceChecksInOrder) {
  const auto test =
      Test({Choice(u"m1"), Choice(u"m2", 2), Question(u"t1", TORVATestQuestionTypeTrueFalse, 2, {1})}, u"A");
  test->Sequences()->AddDefault(test->Questions(), u"A");
  EXPECT_FALSE(test->AddSequence(nullptr));

  EXPECT_FALSE(test->AddSequence(Test({}, u"a")));
  EXPECT_FALSE(test->AddSequence(Test({Choice(u"m1")}, u"B")));
  EXPECT_FALSE(test->AddSequence(Test({Choice(u"m2", 2), Choice(u"new"), Choice(u"t1")}, u"B")));
  EXPECT_FALSE(test->AddSequence(Test({Choice(u"m2", 3), Choice(u"m1"), Choice(u"t1")}, u"B")));
  EXPECT_FALSE(test->AddSequence(Test({Choice(u"m1"), Choice(u"t1"), Choice(u"m2", 2)}, u"B")));
  EXPECT_EQ(
      TakeDialogs(),
      (Dialogs{Told(u"Version Exists",
                    u"Operation cannot be completed. The new version already exists.\r\n\r\nVersion: a"),
               Told(u"Number of Questions",
                    u"Operation cannot be completed. The new version of the test contains a different number of "
                    u"questions.\r\n\r\nNumber of Questions in Test: 3\r\nNumber of Questions in New Test "
                    u"Version: 1"),
               Told(u"Invalid Question",
                    u"Operation cannot be completed. The new version of the test contains a question that does "
                    u"not exist.\r\n\r\nQuestion Text: Text of new\r\nQuestion ID: new"),
               Told(u"Invalid Question",
                    u"Operation cannot be completed. Scrambled answer choices are not supported.\r\n\r\nQuestion "
                    u"Text: Text of m2\r\nQuestion ID: m2"),
               Told(u"Scrambled Sections",
                    u"Operation cannot be completed. Scrambling different types of questions together is not "
                    u"supported.")}));
  EXPECT_EQ(test->Sequences()->Count(), 1);

  engine->Verbose(false);
  EXPECT_TRUE(test->AddSequence(Test({Choice(u"M2", 2), Choice(u"m1"), Choice(u"t1")}, u"B")));
  ASSERT_EQ(test->Sequences()->Count(), 2);
  EXPECT_EQ(test->Sequences()->Item(u"b")->Order()->Item(u"m1"), 2);
}

TEST_F(Versions, ValidTestVersionsComparesWithTheFirst) {
  EXPECT_TRUE(engine->ValidTestVersions());
  engine->Verbose(false);  // silences nothing here
  const std::vector<std::pair<Ref<clsTORVATest>, String>> rows = {
      {Test({Choice(u"1")}), u"An additional test contains a different number of questions from the original."},
      {Test({Choice(u"1"), Choice(u"3", 2)}), u"An additional test does not contain the same set of questions."},
      {Test({Choice(u"1"), Choice(u"2", 2, 4)}),
       u"An additional test does not contain the same number of distractors as the original."},
      {Test({Choice(u"1"), Choice(u"2", 3)}),
       u"An additional test does not contain the same correct answer to one or more questions as the original."}};
  for (const auto& [other, reason] : rows) {
    engine->Tests()->RemoveAll();
    engine->Tests()->Add(Test({Choice(u"1"), Choice(u"2", 2)}));
    EXPECT_TRUE(engine->ValidTestVersions());
    engine->Tests()->Add(Test({Choice(u"2", 2), Choice(u"1")}));
    EXPECT_TRUE(engine->ValidTestVersions());
    engine->Tests()->Add(other);
    EXPECT_FALSE(engine->ValidTestVersions());
    EXPECT_EQ(TakeDialogs(), Dialogs{Told(u"Invalid Test Versions",
                                          u"An error occurred validating the additional test versions. " + reason +
                                              u" Operation aborted.")});
  }
}

TEST_F(Versions, OrdersGoFromPlaceToQuestion) {
  // Cycles of three: a swap would hide a reversed direction.
  ASSERT_TRUE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"23145", u"B"), Ordered(u"31254", u"c")}, 1));
  const auto versions = engine->MIVLMF()->Versions();
  EXPECT_EQ(versions->SequenceQuestion(), 1);
  EXPECT_EQ(versions->VersionMode(), 2);
  EXPECT_EQ(Joined(versions->VersionNames()), u"A|B|c");
  std::vector<std::vector<Long>> orders;
  for (const auto& sequence : *versions->Sequences()) orders.push_back(Order(sequence));
  EXPECT_EQ(orders, (std::vector<std::vector<Long>>{{1, 2, 3, 4, 5, 6}, {1, 3, 4, 2, 5, 6}, {1, 4, 2, 3, 6, 5}}));
}

TEST_F(Versions, IdentifierMustBeALabelOfAnUngradedQuestion) {
  const Dialog dialog = Told(u"Invalid Version Identifier",
                             u"An error occured creating multiple versions of the test. The selected field that "
                             u"contains the version identifier does not match the specified XML files. Operation "
                             u"aborted.");
  for (Long question : {0, 2, 7, -1}) {
    EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"12345", u"B")}, question));
    EXPECT_EQ(TakeDialogs(), Dialogs{dialog}) << question;
    EXPECT_EQ(engine->MIVLMF()->Versions()->VersionNames()->Count(), 0);
  }
  EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"54321", u"B"), Ordered(u"12345", u"D")}, 1));
  EXPECT_EQ(TakeDialogs(), Dialogs{dialog});
  EXPECT_EQ(Joined(engine->MIVLMF()->Versions()->VersionNames()), u"A|B");  // nothing is rolled back
  EXPECT_EQ(engine->MIVLMF()->Versions()->Sequences()->Count(), 2);
  EXPECT_TRUE(MergeAll({Ordered(u"12345", u"D")}, 0));  // one test: never looked at
  EXPECT_EQ(engine->MIVLMF()->Versions()->VersionMode(), 0);
}

TEST_F(Versions, LaterTestsThatDoNotFit) {
  EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"1234", u"wrong")}, 1));  // silently: too short
  EXPECT_EQ(Joined(engine->MIVLMF()->Versions()->VersionNames()), u"A");
  EXPECT_TRUE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"123456", u"B")}, 1));
  EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"12346", u"B")}, 1));
  EXPECT_EQ(TakeFailures(), "5 clsTORVA.BuildSequences");
}

}  // namespace
}  // namespace TORVA35
