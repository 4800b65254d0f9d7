#include "model/clsTORVATestSequences.h"

#include <limits>

#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

Ref<clsTORVATestQuestions> QuestionsOf(StringView ids) {
  auto questions = New<clsTORVATestQuestions>();
  for (char16_t id : ids) {
    const auto question = New<clsTORVATestQuestion>();
    question->ID(String(1, id));
    questions->Add(question);
  }
  return questions;
}

Ref<clsTORVATestSequence> Version(const String& answer, StringView ids = u"") {
  auto version = New<clsTORVATestSequence>();
  version->Answer(answer);
  for (char16_t id : ids) version->Order()->Add(String(1, id));
  return version;
}

class SequenceOrder : public HostTest {
 protected:
  const Ref<clsTORVATestSequence> version = Version(u"A", u"ZXY");
  clsTORVATestSequenceOrder& order = *version->Order();
};

TEST_F(SequenceOrder, CountsItsEntries) {
  EXPECT_EQ(order.Item(u"z"), 1);
  EXPECT_EQ((*version)[u"X"], 2);
  EXPECT_EQ(order.Item(2.5), 2);
  EXPECT_EQ(order.AsString(u","), u"1,2,3");
  EXPECT_EQ(order.AsArray(), Array<Long>(1, {1, 2, 3}));
  order.Add(u"x");
  EXPECT_EQ(TakeFailures(), (Failures{{457, u"TORVA35 - clsTORVATestSequenceOrder.Add"}}));
  EXPECT_EQ(order.Count(), 3);
  for (const TaggedValue& key : {TaggedValue(4), TaggedValue(u"2"), TaggedValue(Null)}) {
    EXPECT_FALSE(order.Exists(key));
    EXPECT_EQ(order.Item(key), 0);
    order.Remove(key);
  }
  order.Remove(u"Z");
  EXPECT_EQ(order.AsString(), u"2\t3");
  order.Add(u"W");
  EXPECT_EQ(order.AsArray(0), Array<Long>(0, {2, 3, 3}));
  EXPECT_TRUE(order.AsArray(std::numeric_limits<Long>::max()).IsEmpty());
  EXPECT_EQ(TakeFailures(), (Failures{{6, u"TORVA35 - clsTORVATestSequenceOrder.AsArray"}}));
  order.RemoveAll();
  EXPECT_EQ(order.AsString(u","), u"");
  EXPECT_TRUE(order.AsArray().IsEmpty());
}

TEST_F(SequenceOrder, CopyTakesTheIDsAtTheStoredPositions) {
  const auto copy = version->Copy(QuestionsOf(u"XYZ"));
  EXPECT_EQ(copy->Answer(), u"A");
  EXPECT_EQ(copy->Order()->Item(u"X"), 1);
  EXPECT_EQ(copy->Order()->Item(u"Z"), 3);
  order.Remove(1);
  const auto shorter = version->Copy(QuestionsOf(u"XYZ"));
  EXPECT_EQ(shorter->Order()->Count(), 2);
  EXPECT_EQ(shorter->Order()->Item(u"Y"), 1);
  EXPECT_FALSE(shorter->Order()->Exists(u"X"));

  const Failures notThere = {{91, u"TORVA35 - clsTORVATestSequence.Copy"}};
  EXPECT_EQ(version->Copy(QuestionsOf(u"XY")), nullptr);
  EXPECT_EQ(TakeFailures(), notThere);
  EXPECT_EQ(version->Copy(nullptr), nullptr);
  EXPECT_EQ(TakeFailures(), notThere);
  version->Order(nullptr);
  EXPECT_EQ(version->Copy(QuestionsOf(u"XYZ")), nullptr);
  EXPECT_EQ(TakeFailures(), notThere);
  EXPECT_EQ(Version(u"B")->Copy(nullptr)->Order()->Count(), 0);
}

class Sequences : public HostTest {
 protected:
  Ref<clsTORVATestSequences> list = New<clsTORVATestSequences>();
};

TEST_F(Sequences, AreFiledUnderTheAnswerTheyHadThen) {
  const auto version = Version(String(60, u'a'));
  EXPECT_TRUE(list->Add(version));
  version->Answer(u"B");
  EXPECT_EQ(list->Item(String(50, u'A')), version);
  EXPECT_FALSE(list->Exists(u"B"));
  EXPECT_TRUE(list->Add(Version(u"b")));
  EXPECT_TRUE(list->Add(Version(u"")));
  EXPECT_FALSE(list->Add(version));
  EXPECT_FALSE(list->Add(nullptr));
  EXPECT_EQ(TakeFailures(), (Failures{{457, u"TORVA35 - clsTORVATestSequences.Add"},
                                      {91, u"TORVA35 - clsTORVATestSequences.Add"}}));
  EXPECT_FALSE(list->Remove(4));
  EXPECT_EQ(list->Item(4), nullptr);
  EXPECT_TRUE(list->Remove(u"B"));
  EXPECT_EQ(list->Count(), 2);
  EXPECT_TRUE(list->RemoveAll());
}

TEST_F(Sequences, AddDefaultTakesTheOrderOfTheQuestions) {
  EXPECT_TRUE(list->AddDefault(QuestionsOf(u"XYZ")));
  EXPECT_EQ(list->Item(u"A")->Answer(), u"A");
  EXPECT_EQ(list->Item(1)->Order()->Item(u"Y"), 2);
  EXPECT_FALSE(list->AddDefault(QuestionsOf(u"X"), u"B"));
  EXPECT_EQ(list->Count(), 1);
  list->RemoveAll();
  EXPECT_TRUE(list->AddDefault(QuestionsOf(u""), u""));
  EXPECT_TRUE(list->Exists(u""));
  EXPECT_FALSE(list->AddDefault(nullptr));  // the list is looked at first
  list->RemoveAll();
  EXPECT_FALSE(list->AddDefault(nullptr));
  EXPECT_EQ(TakeFailures(), (Failures{{91, u"TORVA35 - clsTORVATestSequences.AddDefault"}}));
  EXPECT_EQ(list->Count(), 0);
}

TEST_F(Sequences, AddDefaultGoesOnBehindAnIDThatOccursTwice) {
  const auto questions = QuestionsOf(u"XYZ");
  questions->Item(2)->ID(u"x");
  EXPECT_TRUE(list->AddDefault(questions));
  EXPECT_EQ(TakeFailures(), (Failures{{457, u"TORVA35 - clsTORVATestSequenceOrder.Add"}}));
  EXPECT_EQ(list->Item(1)->Order()->Count(), 2);
  EXPECT_EQ(list->Item(1)->Order()->Item(u"Z"), 2);
}

}  // namespace
}  // namespace TORVA35
