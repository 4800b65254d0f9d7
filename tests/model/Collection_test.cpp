#include "torva35/model/Collection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <random>

#include "tests/Values.h"

namespace TORVA35 {
namespace {

String At(const Collection& list, const TaggedValue& index) {
  return *list.Item(index).As<String>();
}

Collection Letters() {
  Collection list;
  list.Add(u"A", u"2");
  list.Add(u"B");
  list.Add(u"C", u"");
  return list;
}

TEST(Collection, NumbersArePositionsAndStringsAreKeys) {
  const Collection list = Letters();
  const std::vector<std::pair<TaggedValue, String>> found = {{2, u"B"},    {Integer{3}, u"C"}, {2.5f, u"B"},
                                                             {1.5, u"B"},  {3.4999, u"C"},     {0.51, u"A"},
                                                             {u"2", u"A"}, {u"", u"C"},        {2.0, u"B"}};
  for (const auto& [index, item] : found) EXPECT_EQ(At(list, index), item) << ToUtf8(TextOf(index));

  const std::vector<std::pair<Long, std::vector<TaggedValue>>> failures = {
      {kSubscriptOutOfRange,
       {0, 4, Integer{-1}, 0.5, 3.5f, 4294967297.0, 1e300, -std::numeric_limits<Double>::infinity(),
        std::nan("")}},
      {kInvalidCall, {u"B", u" 2"}},
      {kTypeMismatch, {true, Empty, Null, Missing, nullptr, static_cast<const char16_t*>(nullptr)}}};
  for (const auto& [number, indexes] : failures) {
    for (const TaggedValue& index : indexes) {
      Collection changed = Letters();
      EXPECT_EQ(Raised([&] { changed.Item(index); }), number);
      EXPECT_EQ(Raised([&] { changed.Remove(index); }), number);
      const Long added = index.IsMissing() ? 0 : number;  // at the end
      EXPECT_EQ(Raised([&] { changed.Add(u"x", Missing, index); }), added);
      EXPECT_EQ(Raised([&] { changed.Add(u"x", Missing, Missing, index); }), added);
      EXPECT_EQ(changed.Find(index), nullptr);
    }
  }
  EXPECT_EQ(Raised([] { Collection().Item(1); }), kSubscriptOutOfRange);
  EXPECT_EQ(Raised([] { Collection().Remove(u"a"); }), kInvalidCall);
}

// Position 53 is not what a character asks for.
static_assert(!std::is_convertible_v<char16_t, TaggedValue> && !std::is_convertible_v<char, TaggedValue>);
static_assert(std::is_convertible_v<signed char, TaggedValue> && std::is_convertible_v<unsigned, TaggedValue> &&
              std::is_convertible_v<long, TaggedValue>);

// The key's kind first, then the places, and a key in use last.
TEST(Collection, AddRefusesBadKeysAndPlaces) {
  Collection list = Letters();
  for (const TaggedValue& key : {TaggedValue(5), TaggedValue(Empty), TaggedValue(Null), TaggedValue(true)}) {
    EXPECT_EQ(Raised([&] { list.Add(u"x", key, 1, 1); }), kTypeMismatch);
  }
  EXPECT_EQ(Raised([&] { list.Add(u"x", u"", 1, 1); }), kInvalidCall);
  EXPECT_EQ(Raised([&] { list.Add(u"x", u"", 9); }), kSubscriptOutOfRange);
  EXPECT_EQ(Raised([&] { list.Add(u"x", u""); }), kDuplicateKey);
  EXPECT_EQ(list.Count(), 3);
}

// What a list is meant to do, in the plainest form: a walk for every key.
struct Literal {
  static String SmallLetters(String text) {
    for (char16_t& unit : text) {
      if ((unit >= u'A' && unit <= u'Z') || unit == u'É') unit = static_cast<char16_t>(unit + 32);
    }
    return text;
  }
  // From 1, or 0 where there is none.
  Long Place(const TaggedValue& index) const {
    const Double place = index.Is<String>() ? 0 : std::nearbyint(NumberOf(index));
    if (!index.Is<String>()) return place >= 1 && place <= Count() ? static_cast<Long>(place) : 0;
    const auto same = [key = SmallLetters(*index.As<String>())](const auto& entry) { return entry.second == key; };
    const auto found = std::find_if(entries.begin(), entries.end(), same);
    return found == entries.end() ? 0 : static_cast<Long>(found - entries.begin()) + 1;
  }
  Long Count() const { return static_cast<Long>(entries.size()); }
  // What these two refuse, they say with false.
  bool Add(const String& item, const TaggedValue& key, const TaggedValue& before, const TaggedValue& after) {
    Long place = before.IsMissing() ? Count() + 1 : Place(before);
    if (!after.IsMissing()) place = Place(after) == 0 || !before.IsMissing() ? 0 : Place(after) + 1;
    if (place == 0 || (!key.IsMissing() && Place(key) != 0)) return false;
    std::optional<String> small;
    if (!key.IsMissing()) small = SmallLetters(*key.As<String>());
    entries.insert(entries.begin() + place - 1, {item, small});
    return true;
  }
  bool Remove(const TaggedValue& index) {
    const Long place = Place(index);
    if (place != 0) entries.erase(entries.begin() + place - 1);
    return place != 0;
  }
  std::vector<std::pair<String, std::optional<String>>> entries;  // items with their keys
};

// Lists of some size, with keys that are often met, which grow and shrink in turns.
TEST(Collection, BehavesAsALiteralList) {
  std::mt19937 random(35);
  const auto below = [&](Long limit) { return static_cast<Long>(random() % static_cast<unsigned>(limit)); };
  for (const Long size : {3, 5, 9, 20, 200}) {
    Collection list;
    Literal literal;
    const auto key = [&] {
      String text = u"ké" + Decimal(below(size * 2));
      for (char16_t& unit : text) unit = below(2) == 0 ? UpperUnit(unit) : unit;
      return below(50) == 0 ? u"" : text;
    };
    bool growing = true;
    for (int step = 0; step < 2'500; ++step) {
      growing = literal.Count() == 0 || (growing && literal.Count() <= size);
      const TaggedValue index = below(2) == 0 ? TaggedValue(key()) : (below(4 * literal.Count() + 8) - 2) / 4.0;
      if (below(3) == (growing ? 0 : 1)) {
        ASSERT_EQ(Raised([&] { list.Remove(index); }) == 0, literal.Remove(index)) << step;
      } else {
        // Short and long texts: the first stand in the item itself.
        const String item = (step % 3 == 0 ? u"a longer text " : u"") + Decimal(step);
        const TaggedValue filed = below(3) == 0 ? Missing : TaggedValue(key());
        const TaggedValue before = below(3) == 0 ? index : Missing, after = below(5) == 0 ? index : Missing;
        ASSERT_EQ(Raised([&] { list.Add(item, filed, before, after); }) == 0,
                  literal.Add(item, filed, before, after))
            << step;
      }
      ASSERT_EQ(list.Count(), literal.Count()) << step;
      if (step % (size / 2) != 0) continue;
      for (Long i = 1; const auto& entry : literal.entries) {
        ASSERT_EQ(At(list, i++), entry.first) << step;
        ASSERT_TRUE(!entry.second || *list.FindKey(*entry.second)->As<String>() == entry.first) << step;
      }
      ASSERT_EQ(list.FindKey(u"KÉ0") == nullptr, literal.Place(u"KÉ0") == 0) << step;
    }
  }
}

}  // namespace
}  // namespace TORVA35
