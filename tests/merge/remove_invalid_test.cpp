#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

class RemoveInvalid : public MergeTest {
 protected:
  Ref<clsTORVATest> Add(const std::vector<Long>& types) {
    std::vector<Ref<clsTORVATestQuestion>> questions;
    for (Long type : types) questions.push_back(Question(u"q" + Decimal(Long(questions.size()) + 1), type, 2));
    auto test = Test(questions, u"V");
    engine->Tests()->Add(test);
    return test;
  }
};

const String kSupported =
    u"Supported Question Types: Multiple Choice, True/False, Yes/No\r\n\r\n"
    u"\tNote: Modified True/False questions are NOT supported.\r\n\r\n";

TEST_F(RemoveInvalid, EveryKindIsJudgedByItsNumber) {
  const auto test = Add({-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
  engine->Verbose(false);
  EXPECT_TRUE(engine->RemoveInvalid());
  ASSERT_EQ(test->Questions()->Count(), 4);
  EXPECT_EQ(test->Questions()->Item(4)->QuestionType(), 12);
}

TEST_F(RemoveInvalid, TellsBothReductionsAndRebuildsTheVersions) {
  const auto test = Add({4, 3, 4, 3, 3, 3});
  const auto untouched = Add({3, 12});
  for (const auto& either : {test, untouched}) either->Sequences()->AddDefault(either->Questions(), u"X");
  EXPECT_TRUE(engine->RemoveInvalid(3));
  EXPECT_EQ(
      TakeDialogs(),
      (Dialogs{Told(u"Invalid Question Type(s)",
                    u"Warning: The file contains one or more question types that are not supported. The "
                    u"unsupported question types were removed.\r\n\r\n" +
                        kSupported +
                        u"Unsupported Question Number(s): 1, 3\r\n\r\nTotal Questions: 6\r\nRemoved Questions: "
                        u"2\r\nRemaining Questions: 4"),
               Told(u"Maximum Number of Questions",
                    u"Warning: The file contains more questions than are supported. One or more questions were "
                    u"removed.\r\n\r\nNumber of Supported Questions: 3\r\n\r\nTotal Questions: 4\r\nRemoved "
                    u"Questions: 1\r\nRemaining Questions: 3")}));
  ASSERT_EQ(test->Sequences()->Count(), 1);
  EXPECT_EQ(test->Sequences()->Item(1)->Answer(), u"V");
  EXPECT_EQ(test->Sequences()->Item(1)->Order()->Item(u"q5"), 3);
  EXPECT_EQ(untouched->Sequences()->Item(1)->Answer(), u"X");
  engine->Verbose(false);
  EXPECT_TRUE(engine->RemoveInvalid(-1));
  EXPECT_EQ(test->Questions()->Count(), 3);
  EXPECT_TRUE(engine->RemoveInvalid(1));
  EXPECT_EQ(test->Questions()->Count(), 1);
}

TEST_F(RemoveInvalid, ATestThatLosesAllEndsTheWalk) {
  EXPECT_TRUE(engine->RemoveInvalid());
  Add({});
  const auto first = Add({3}), second = Add({4, 5}), third = Add({3, 4});
  second->Sequences()->AddDefault(second->Questions(), u"kept");
  EXPECT_FALSE(engine->RemoveInvalid());
  EXPECT_EQ(
      TakeDialogs(),
      Dialogs{Told(u"No Supported Questions",
                   u"An error occurred importing the test. The file does not contain any supported questions."
                   u"\r\n\r\n" +
                       kSupported + u"Total Questions: 2\r\nRemoved Questions: 2\r\nRemaining Questions: 0")});
  EXPECT_EQ(first->Questions()->Count(), 1);
  EXPECT_EQ(first->Sequences()->Count(), 0);
  EXPECT_EQ(second->Questions()->Count(), 0);
  EXPECT_EQ(second->Sequences()->Item(1)->Answer(), u"kept");
  EXPECT_EQ(third->Questions()->Count(), 2);
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
  EXPECT_EQ(test->Questions()->Count(), 2);
  EXPECT_FALSE(engine->RemoveInvalid(2'147'483'647));
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestions.Remove, 6 clsTORVA.RemoveInvalid");
  test->Questions(nullptr);
  EXPECT_FALSE(engine->RemoveInvalid());
  EXPECT_EQ(TakeFailures(), "91 clsTORVA.RemoveInvalid");
}

}  // namespace
}  // namespace TORVA35
