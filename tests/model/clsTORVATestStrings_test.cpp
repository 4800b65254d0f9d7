#include "model/clsTORVATestStrings.h"

#include <limits>

#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kAdd = u"TORVA35 - clsTORVATestStrings.Add";
constexpr const char16_t* kAddArray = u"TORVA35 - clsTORVATestStrings.AddArray";
constexpr const char16_t* kAsArray = u"TORVA35 - clsTORVATestStrings.AsArray";
constexpr Long kLargest = std::numeric_limits<Long>::max();

class Strings : public HostTest {
 protected:
  Ref<clsTORVATestStrings> list = New<clsTORVATestStrings>();
};

TEST_F(Strings, AddCutsAtFiftyAndLetAt255) {
  EXPECT_TRUE(list->Add(String(60, u'a')));
  EXPECT_EQ(list->Item(1), String(50, u'a'));
  list->Item(1, String(300, u'b'));
  EXPECT_EQ(list->Item(1), String(255, u'b'));
  EXPECT_EQ(list->Copy()->Item(1), String(50, u'b'));
}

TEST_F(Strings, AddReportsAKeyInUseAndAMissingPlace) {
  EXPECT_TRUE(list->Add(u"one", u"Key"));
  EXPECT_TRUE(list->Add(u"one", Missing, u"KEY"));
  EXPECT_TRUE(list->Add(u"two", Missing, Missing, 1));
  EXPECT_FALSE(list->Add(u"x", u"kEY"));
  EXPECT_FALSE(list->Add(u"x", Missing, 4));
  EXPECT_FALSE(list->Add(u"x", Missing, Missing, u"none"));
  EXPECT_FALSE(list->Add(u"x", Missing, 1, 1));
  EXPECT_EQ(TakeFailures(), (Failures{{457, kAdd}, {9, kAdd}, {5, kAdd}, {5, kAdd}}));
  EXPECT_EQ(list->AsString(u"|"), u"one|two|one");
}

TEST_F(Strings, AddArrayTakesAnyBounds) {
  EXPECT_TRUE(list->AddArray({u"a", u"", u"c"}));
  EXPECT_TRUE(list->AddArray(Array<String>(kLargest, {u"d"})));
  EXPECT_EQ(list->AsString(u","), u"a,,c,d");
  EXPECT_FALSE(list->AddArray({}));
  EXPECT_FALSE(list->AddArray(Array<String>(kLargest, {u"x", u"y"})));
  EXPECT_EQ(TakeFailures(), (Failures{{9, kAddArray}, {6, kAddArray}}));
  EXPECT_EQ(list->Count(), 4);
}

TEST_F(Strings, AddDelimitedString) {
  EXPECT_FALSE(list->AddDelimitedString(u""));
  EXPECT_FALSE(list->AddDelimitedString(u"", u","));
  EXPECT_EQ(list->Count(), 0);
  EXPECT_TRUE(list->AddDelimitedString(u"A\tB\t"));
  EXPECT_TRUE(list->AddDelimitedString(u"C\tD", u""));
  EXPECT_TRUE(list->AddDelimitedString(u"E, F", u", "));
  EXPECT_EQ(list->AsArray(), Array<String>(1, {u"A", u"B", u"", u"C\tD", u"E", u"F"}));
}

TEST_F(Strings, LetItemKeepsThePlaceAndLosesTheKey) {
  list->Add(u"one", u"k1");
  list->Add(u"two", u"k2");
  list->Add(u"three", u"k3");
  list->Item(u"K2", u"TWO");
  EXPECT_FALSE(list->Exists(u"k2"));
  list->Item(2.6, u"THREE");
  EXPECT_FALSE(list->Exists(u"k3"));
  EXPECT_EQ(list->AsString(u","), u"one,TWO,THREE");
  EXPECT_EQ(list->Item(u"k1"), u"one");
  list->Item(u"k2", u"x");
  list->Item(4, u"x");
  list->Item(Null, u"x");
  EXPECT_EQ(list->AsString(u","), u"one,TWO,THREE");
  EXPECT_TRUE(list->Add(u"four", u"k2"));
}

TEST_F(Strings, MissesAreSilent) {
  list->AddDelimitedString(u"a\tb");
  for (const TaggedValue& index : {TaggedValue(0), TaggedValue(3), TaggedValue(u"1"), TaggedValue(true),
                                   TaggedValue(Empty), TaggedValue(Missing), TaggedValue(list)}) {
    EXPECT_FALSE(list->Exists(index));
    EXPECT_EQ(list->Item(index), u"");
    EXPECT_FALSE(list->Remove(index));
  }
  EXPECT_TRUE(list->Remove(1));
  EXPECT_EQ(list->Item(1), u"b");
  EXPECT_TRUE(list->RemoveAll());
  EXPECT_TRUE(list->RemoveAll());
  EXPECT_EQ(list->Count(), 0);
}

TEST_F(Strings, AsStringAndAsArray) {
  EXPECT_EQ(list->AsString(), u"");
  EXPECT_TRUE(list->AsArray(kLargest).IsEmpty());
  list->Add(u"");
  EXPECT_EQ(list->AsString(), u"");
  list->AddDelimitedString(u"a\tb");
  EXPECT_EQ(list->AsString(), u"\ta\tb");
  EXPECT_EQ(list->AsString(u""), u"ab");
  EXPECT_EQ(list->AsArray(0).UBound(), 2);
  EXPECT_EQ(list->AsArray(-1), Array<String>(-1, {u"", u"a", u"b"}));
  EXPECT_EQ(list->AsArray(kLargest - 2).UBound(), kLargest);
  EXPECT_TRUE(list->AsArray(kLargest - 1).IsEmpty());
  EXPECT_EQ(TakeFailures(), (Failures{{6, kAsArray}}));
}

TEST_F(Strings, CopyGoesThroughText) {
  list->Add(u"a\tb", u"key");
  list->Add(u"");
  const auto copy = list->Copy();
  EXPECT_EQ(copy->AsString(u"|"), u"a|b|");
  EXPECT_FALSE(copy->Exists(u"key"));
  list->RemoveAll();
  EXPECT_EQ(copy->Count(), 3);
  list->Add(u"");
  EXPECT_EQ(list->Copy()->Count(), 0);
  list->Add(u"");
  EXPECT_EQ(list->Copy()->Count(), 2);
}

}  // namespace
}  // namespace TORVA35
