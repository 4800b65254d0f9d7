#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

class RemoveInvalid : public MergeTest {
 protected:
  Ref<clsTORVATest> Add(const std::vector<Long>& types) {
    std::vector<Ref<clsTORVATestQuestion>> questions;
    for (Long type : types) questions.push_back(Question(u"q" + Decimal(Long(questions.size()) + 1), type, 2));
    const auto test = Test(questions, u"V");
    test->Sequences()->AddDefault(test->Questions(), u"X");
    engine->Tests()->Add(test);
    return test;
  }
  // The names of a test's versions, and how many questions it has.
  static String Kept(const Ref<clsTORVATest>& test) {
    String kept;
    for (Long i = 1; i <= test->Sequences()->Count(); ++i) kept += test->Sequences()->Item(i)->Answer();
    return kept + Decimal(test->Questions()->Count());
  }
};

const String kSupported =
    u"Supported Question Types: Multiple Choice, True/False, Yes/No\r\n\r\n"
    u"\tNote: Modified True/False questions are NOT supported.\r\n\r\n";

TEST_F(RemoveInvalid, EveryKindIsJudgedByItsNumber) {
  const auto test = Add({-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
  engine->Verbose(false);
  EXPECT_TRUE(engine->RemoveInvalid());
  EXPECT_EQ(Kept(test), u"V4");
  EXPECT_EQ(test->Questions()->Item(4)->QuestionType(), 12);
}

TEST_F(RemoveInvalid, TellsBothReductionsAndRebuildsTheVersions) {
  const auto test = Add({4, 3, 4, 3, 3, 3}), untouched = Add({3, 12}), cut = Add({3, 3, 3, 3});
  EXPECT_TRUE(engine->RemoveInvalid(3));
  const Dialog limit = Told(u"Maximum Number of Questions",
                            u"Warning: The file contains more questions than are supported. One or more questions "
                            u"were removed.\r\n\r\nNumber of Supported Questions: 3\r\n\r\nTotal Questions: 4\r\n"
                            u"Removed Questions: 1\r\nRemaining Questions: 3");
  EXPECT_EQ(TakeDialogs(),
            (Dialogs{Told(u"Invalid Question Type(s)",
                          u"Warning: The file contains one or more question types that are not supported. The "
                          u"unsupported question types were removed.\r\n\r\n" +
                              kSupported +
                              u"Unsupported Question Number(s): 1, 3\r\n\r\nTotal Questions: 6\r\nRemoved "
                              u"Questions: 2\r\nRemaining Questions: 4"),
                     limit, limit}));
  EXPECT_EQ(Kept(test) + Kept(untouched) + Kept(cut), u"V3X2V3");
  EXPECT_EQ(test->Sequences()->Item(1)->Order()->Item(u"q5"), 3);
  engine->Verbose(false);
  EXPECT_TRUE(engine->RemoveInvalid(-1));
  EXPECT_EQ(Kept(test), u"V3");
  EXPECT_TRUE(engine->RemoveInvalid(1));
  EXPECT_EQ(Kept(test), u"V1");
}

TEST_F(RemoveInvalid, ATestThatLosesAllEndsTheWalk) {
  EXPECT_TRUE(engine->RemoveInvalid());
  const auto empty = Add({}), first = Add({3}), second = Add({4, 5}), third = Add({3, 4});
  EXPECT_FALSE(engine->RemoveInvalid());
  EXPECT_EQ(
      TakeDialogs(),
      Dialogs{Told(u"No Supported Questions",
                   u"An error occurred importing the test. The file does not contain any supported "
                   u"questions.\r\n\r\n" +
                       kSupported + u"Total Questions: 2\r\nRemoved Questions: 2\r\nRemaining Questions: 0")});
  EXPECT_EQ(Kept(empty) + Kept(first) + Kept(second) + Kept(third), u"X0X1X0X2");
}

// A dialog's answer may take tests away while the walk is on.
TEST_F(RemoveInvalid, AnEmptySlotEndsTheWalk) {
  Add({3, 4});
  Add({3, 4});
  host->onDialog = [&] {
    if (engine->Tests()->Count() == 2) engine->Tests()->Remove(2);
  };
  EXPECT_FALSE(engine->RemoveInvalid());
  EXPECT_EQ(TakeDialogs().back(),
            Told(u"Invalid File",
                 u"An error occurred while removing invalid question types from the file. The "
                 u"file is invalid. Operation aborted."));
}

TEST_F(RemoveInvalid, FailuresAreReported) {
  const auto test = Add({4, 3});
  engine->Verbose(false);
  test->Questions()->Item(1)->LearningObjectives(nullptr);
  EXPECT_TRUE(engine->RemoveInvalid());
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestions.Remove");
  EXPECT_EQ(Kept(test), u"V2");
  EXPECT_FALSE(engine->RemoveInvalid(2'147'483'647));
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestions.Remove, 6 clsTORVA.RemoveInvalid");
}

}  // namespace
}  // namespace TORVA35
