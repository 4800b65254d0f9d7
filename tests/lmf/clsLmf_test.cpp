#include "torva35/lmf/clsLmf.h"

#include <gtest/gtest.h>

#include "tests/LmfText.h"

namespace TORVA35 {
namespace {

Ref<clsLmfObjective> Objective(String text) {
  auto objective = New<clsLmfObjective>();
  objective->Text(std::move(text));
  return objective;
}

TEST(clsLmf, ObjectivesHaveOneBuiltInEntryAndKeysWithoutCase) {
  clsLmf lmf;
  const auto objectives = lmf.Objectives();
  objectives->Add(Objective(u"first"), u"first");
  EXPECT_EQ(lmf.Prepare(), 0);
  lmf.Prepare();
  ASSERT_EQ(objectives->Count(), 2);
  EXPECT_EQ(objectives->Item(1)->Text(), u"(All Questions)");
  EXPECT_EQ(objectives->KeyOf(2), u"first");  // moved after the built-in one
  EXPECT_FALSE(objectives->Exists(u"(All Questions)"));

  objectives->Add(Objective(u"Été"), u"Été");
  objectives->Add(Objective(u""), u"");
  for (int i = 0; i < 2; ++i) objectives->Add(Objective(u"no key"));
  EXPECT_TRUE(objectives->Exists(u"éTÉ") && objectives->Exists(u""));
  EXPECT_FALSE(objectives->Exists(u"no key"));
  EXPECT_EQ(Raised([&] { objectives->Add(Objective(u"x"), u"ÉTÉ"); }), kDuplicateKey);
  EXPECT_EQ(Raised([&] { objectives->Add(Objective(u"x"), 1); }), kTypeMismatch);
  EXPECT_EQ(Raised([&] { objectives->Add(nullptr, u"x"); }), kNothing);
  EXPECT_EQ(Raised([&] { objectives->Exists(1); }), kTypeMismatch);
  EXPECT_EQ(objectives->Count(), 6);
  EXPECT_FALSE(objectives->Exists(u"x"));
  lmf.Clear();
  EXPECT_EQ(objectives->Count(), 0);
  EXPECT_FALSE(objectives->Exists(u"été"));
}

TEST(clsLmf, ClearEmptiesTheListsThatWereHandedOut) {
  EXPECT_EQ(LmfText(clsLmfQuestion()), u"");  // nothing, 0 and False everywhere
  clsLmf lmf;
  const String fresh = LmfText(lmf);
  const auto questions = lmf.Questions();
  questions->Add(New<clsLmfQuestion>());
  lmf.Versions()->Sequences()->AddDefault(1);
  lmf.Versions()->VersionNames()->Add(u"A");
  lmf.Versions()->SequenceQuestion(1);
  lmf.Description(u"d");
  lmf.Notes(u"n");
  lmf.Mode(1);
  lmf.PageCount(2);
  EXPECT_EQ(LmfText(lmf), u"d¦n¦1 2 False\nVersions: 1 2 1 A\nSequence: 1\n\n");
  lmf.Clear();
  EXPECT_EQ(LmfText(lmf), fresh);
  EXPECT_EQ(questions->Count(), 0);
  EXPECT_EQ(lmf.Questions(), questions);
}

TEST(clsLmf, FlagHandlesShareOneStore) {
  auto question = New<clsLmfQuestion>();
  const auto labels = question->Labels();
  labels->Add(u"a label that does not fit into the string itself");
  const auto flags = question->ObjectiveFlags();
  flags->Add(true);
  flags->AddFalse(63);
  flags->Add(true);
  const auto handle = flags->Item(64);
  handle->Value(true);
  EXPECT_EQ(Flags(*flags), u"1" + String(62, u'0') + u"11");
  EXPECT_EQ(Values({flags->NextTrue(0), flags->NextTrue(1), flags->NextTrue(64), flags->NextTrue(65),
                    flags->NextTrue(500)}),
            u"1 64 65 0 0");
  flags->Value(64, false);
  EXPECT_FALSE(*handle);
  for (Long position : {0, 66, -1}) {
    EXPECT_EQ(Raised([&] { flags->Item(position); }), kSubscriptOutOfRange);
    EXPECT_EQ(Raised([&] { flags->Value(position, true); }), kSubscriptOutOfRange);
  }
  EXPECT_EQ(Raised([&] { flags->Add(-1); }), kTypeMismatch);
  EXPECT_EQ(Raised([&] { flags->AddFalse(-1); }), kInvalidCall);

  question.reset();  // the lists live on
  EXPECT_EQ(labels->Item(1), u"a label that does not fit into the string itself");
  flags->RemoveAll();
  EXPECT_FALSE(handle->Value());
  EXPECT_EQ(Raised([&] { flags->Item(1); }), kSubscriptOutOfRange);
}

TEST(clsLmf, ListsOfQuestionsAndSequences) {
  clsLmf lmf;
  lmf.Questions()->Add(New<clsLmfQuestion>());
  EXPECT_EQ(Raised([&] { lmf.Questions()->Item(2); }), kSubscriptOutOfRange);
  EXPECT_EQ(Raised([&] { lmf.Questions()->Add(nullptr); }), kNothing);
  const auto sequences = lmf.Versions()->Sequences();
  EXPECT_EQ(Raised([&] { sequences->Add(nullptr); }), kNothing);
  EXPECT_EQ(Raised([&] { sequences->AddDefault(-1); }), kInvalidCall);
  sequences->Add(New<clsLmfSequence>());
  sequences->Item(1)->SetOrder(Array<Long>(1, {3, 1, 2}));
  EXPECT_TRUE(sequences->AddDefault(2));  // before the others
  EXPECT_EQ(Joined(*sequences->Item(1)) + u" " + Joined(*sequences->Item(2)), u"1|2 3|1|2");
  EXPECT_EQ(Raised([&] { sequences->Item(1)->Item(3); }), kSubscriptOutOfRange);
}

}  // namespace
}  // namespace TORVA35
