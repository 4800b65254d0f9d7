#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

class Versions : public MergeTest {
 protected:
  // Into a version field with three labels before five graded questions.
  bool MergeAll(const std::vector<Ref<clsTORVATest>>& tests, Long sequenceQuestion) {
    engine->SequenceQuestion(sequenceQuestion);
    return Merge(tests, Form({{Field(1, false, {u"a", u"b", u"C"}), Field(5, true, kFive)}}));
  }
  static Ref<clsTORVATest> Ordered(const String& ids, const String& version) {
    std::vector<Ref<clsTORVATestQuestion>> questions;
    for (char16_t id : ids) questions.push_back(Choice(String(1, id), static_cast<Integer>(id % 3 + 1)));
    return Test(questions, version);
  }
  // The names that the model has, and for each of its versions the question at each place.
  String Written() {
    String written = Joined(*engine->MIVLMF()->Versions()->VersionNames());
    for (const auto& sequence : *engine->MIVLMF()->Versions()->Sequences()) written += u" " + Joined(*sequence);
    return written;
  }
};

TEST_F(Versions, AddSequenceChecksInOrder) {
  const auto TrueFalse = [](const String& id, Integer correct = 1) {
    return Question(id, TORVATestQuestionTypeTrueFalse, 2, {correct});
  };
  const auto test = Test({Choice(u"m1"), Choice(u"m2", 2), TrueFalse(u"t1")}, u"A");
  test->Sequences()->AddDefault(test->Questions(), u"A");
  EXPECT_FALSE(test->AddSequence(nullptr));
  const String cannot = u"Operation cannot be completed. ";
  const String scrambled = cannot + u"Scrambled answer choices are not supported.\r\n\r\nQuestion ";
  const std::pair<Ref<clsTORVATest>, Dialog> rows[] = {
      {Test({}, u"a"), Told(u"Version Exists", cannot + u"The new version already exists.\r\n\r\nVersion: a")},
      {Test({Choice(u"m1")}, u"B"),
       Told(u"Number of Questions",
            cannot + u"The new version of the test contains a different number of questions.\r\n\r\n"
                     u"Number of Questions in Test: 3\r\nNumber of Questions in New Test Version: 1")},
      {Test({Choice(u"m2", 2), Choice(u"new"), TrueFalse(u"t1")}, u"B"),
       Told(u"Invalid Question",
            cannot + u"The new version of the test contains a question that does not exist.\r\n\r\n"
                     u"Question Text: Text of new\r\nQuestion ID: new")},
      {Test({Choice(u"m2", 3), Choice(u"m1"), TrueFalse(u"t1")}, u"B"),
       Told(u"Invalid Question", scrambled + u"Text: Text of m2\r\nQuestion ID: m2")},
      // Another key and another section: the key comes first.
      {Test({Choice(u"m1"), TrueFalse(u"t1", 2), Choice(u"m2", 2)}, u"B"),
       Told(u"Invalid Question", scrambled + u"Text: Text of t1\r\nQuestion ID: t1")},
      {Test({Choice(u"m1"), TrueFalse(u"t1"), Choice(u"m2", 2)}, u"B"),
       Told(u"Scrambled Sections",
            cannot + u"Scrambling different types of questions together is not supported.")}};
  for (const auto& [version, dialog] : rows) {
    EXPECT_FALSE(test->AddSequence(version));
    EXPECT_EQ(TakeDialogs(), Dialogs{dialog});
  }
  EXPECT_EQ(test->Sequences()->Count(), 1);

  EXPECT_TRUE(test->AddSequence(Test({Choice(u"M2", 2), Choice(u"m1"), TrueFalse(u"t1")}, u"B")));
  ASSERT_EQ(test->Sequences()->Count(), 2);
  EXPECT_EQ(test->Sequences()->Item(u"b")->Order()->Item(u"m1"), 2);
}

TEST_F(Versions, ValidTestVersionsComparesWithTheFirst) {
  EXPECT_TRUE(engine->ValidTestVersions());
  engine->Verbose(false);  // silences nothing here
  const std::vector<std::pair<Ref<clsTORVATest>, String>> rows = {
      {Test({Choice(u"1")}), u"contains a different number of questions from the original."},
      {Test({Choice(u"1"), Choice(u"3", 2)}), u"does not contain the same set of questions."},
      {Test({Choice(u"1"), Choice(u"2", 2, 4)}),
       u"does not contain the same number of distractors as the original."},
      {Test({Choice(u"1"), Choice(u"2", 3)}),
       u"does not contain the same correct answer to one or more questions as the original."}};
  for (const auto& [other, reason] : rows) {
    engine->Tests()->RemoveAll();
    for (const auto& test : {Test({Choice(u"1"), Choice(u"2", 2)}), Test({Choice(u"2", 2), Choice(u"1")})}) {
      engine->Tests()->Add(test);
      EXPECT_TRUE(engine->ValidTestVersions());
    }
    engine->Tests()->Add(other);
    EXPECT_FALSE(engine->ValidTestVersions());
    EXPECT_EQ(TakeDialogs(), Dialogs{Told(u"Invalid Test Versions",
                                          u"An error occurred validating the additional test versions. An "
                                          u"additional test " +
                                              reason + u" Operation aborted.")});
  }
}

TEST_F(Versions, OrdersGoFromPlaceToQuestion) {
  // Cycles of three: a swap would hide a reversed direction.
  ASSERT_TRUE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"23145", u"B"), Ordered(u"31254", u"c")}, 1));
  EXPECT_EQ(engine->MIVLMF()->Versions()->SequenceQuestion(), 1);
  EXPECT_EQ(engine->MIVLMF()->Versions()->VersionMode(), 2);
  EXPECT_EQ(Written(), u"A|B|c 1|2|3|4|5|6 1|3|4|2|5|6 1|4|2|3|6|5");
}

TEST_F(Versions, IdentifierMustBeALabelOfAnUngradedQuestion) {
  const Dialog dialog = Told(u"Invalid Version Identifier",
                             u"An error occured creating multiple versions of the test. The selected field that "
                             u"contains the version identifier does not match the specified XML files. Operation "
                             u"aborted.");
  for (Long question : {0, 2, 7, -1}) {
    EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"12345", u"B")}, question));
    EXPECT_EQ(TakeDialogs(), Dialogs{dialog}) << question;
    EXPECT_EQ(Written(), u" 1|2|3|4|5|6");
  }
  EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"54321", u"B"), Ordered(u"12345", u"D")}, 1));
  EXPECT_EQ(TakeDialogs(), Dialogs{dialog});
  EXPECT_EQ(Written(), u"A|B 1|2|3|4|5|6 1|6|5|4|3|2");  // nothing is rolled back
  EXPECT_TRUE(MergeAll({Ordered(u"12345", u"D")}, 0));   // one test: never looked at
  EXPECT_EQ(engine->MIVLMF()->Versions()->VersionMode(), 0);
}

TEST_F(Versions, LaterTestsThatDoNotFit) {
  EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"1234", u"wrong")}, 1));  // silently: too short
  EXPECT_EQ(Written(), u"A 1|2|3|4|5|6");
  EXPECT_TRUE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"123456", u"B")}, 1));
  EXPECT_FALSE(MergeAll({Ordered(u"12345", u"A"), Ordered(u"12346", u"B")}, 1));
  EXPECT_EQ(TakeFailures(), "5 clsTORVA.BuildSequences");
}

}  // namespace
}  // namespace TORVA35
