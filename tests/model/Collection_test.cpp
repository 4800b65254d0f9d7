#include "model/Collection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "base/Error.h"
#include "base/Text.h"

namespace TORVA35 {
namespace {

/// The number of the failure that the call raises, or 0.
template <class Call>
Long NumberRaised(Call&& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

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

  constexpr Double kInfinity = std::numeric_limits<Double>::infinity();
  const std::vector<std::pair<TaggedValue, Long>> failures = {{0, kSubscriptOutOfRange},
                                                              {4, kSubscriptOutOfRange},
                                                              {Integer{-1}, kSubscriptOutOfRange},
                                                              {0.5, kSubscriptOutOfRange},
                                                              {3.5f, kSubscriptOutOfRange},
                                                              {4294967297.0, kSubscriptOutOfRange},
                                                              {1e300, kSubscriptOutOfRange},
                                                              {-kInfinity, kSubscriptOutOfRange},
                                                              {std::nan(""), kSubscriptOutOfRange},
                                                              {u"B", kInvalidCall},
                                                              {u" 2", kInvalidCall},
                                                              {true, kTypeMismatch},
                                                              {Empty, kTypeMismatch},
                                                              {Null, kTypeMismatch},
                                                              {Missing, kTypeMismatch},
                                                              {nullptr, kTypeMismatch}};
  for (const auto& [index, number] : failures) {
    Collection changed = Letters();
    EXPECT_EQ(NumberRaised([&] { changed.Item(index); }), number);
    EXPECT_EQ(NumberRaised([&] { changed.Remove(index); }), number);
    if (!index.IsMissing()) {
      EXPECT_EQ(NumberRaised([&] { changed.Add(u"x", Missing, index); }), number);
      EXPECT_EQ(NumberRaised([&] { changed.Add(u"x", Missing, Missing, index); }), number);
    }
    EXPECT_EQ(changed.Find(index), nullptr);
    EXPECT_EQ(changed.Count(), 3);
  }
  EXPECT_EQ(NumberRaised([] { Collection().Item(1); }), kSubscriptOutOfRange);
  EXPECT_EQ(NumberRaised([] { Collection().Remove(u"a"); }), kInvalidCall);
}

TEST(Collection, AddRefusesBadKeysAndPlaces) {
  Collection list = Letters();
  for (const TaggedValue& key : {TaggedValue(5), TaggedValue(Empty), TaggedValue(Null), TaggedValue(true)}) {
    EXPECT_EQ(NumberRaised([&] { list.Add(u"x", key); }), kTypeMismatch);
  }
  EXPECT_EQ(NumberRaised([&] { list.Add(u"x", Missing, 1, 1); }), kInvalidCall);
  EXPECT_EQ(NumberRaised([&] { list.Add(u"x", u""); }), kDuplicateKey);
  EXPECT_EQ(list.Count(), 3);
}

TEST(Collection, HoldsAReferenceUntilItsItemGoes) {
  class Held : public Object {};
  Collection list;
  std::weak_ptr<Held> held;
  {
    const auto object = New<Held>();
    held = object;
    list.Add(object);
  }
  EXPECT_FALSE(held.expired());
  list.Remove(1);
  EXPECT_TRUE(held.expired());
}

/// What a list is meant to do, in the plainest form: a walk for every key.
class Literal {
 public:
  Long Count() const { return static_cast<Long>(items_.size()); }

  void Add(const String& item, const TaggedValue& key, const TaggedValue& before, const TaggedValue& after) {
    if (!key.IsMissing() && !key.Is<String>()) Raise(kTypeMismatch);
    if (!before.IsMissing() && !after.IsMissing()) Raise(kInvalidCall);
    Long place = Count();
    if (!before.IsMissing()) place = Place(before);
    if (!after.IsMissing()) place = Place(after) + 1;
    const auto* text = key.As<String>();
    if (text != nullptr && PlaceOfKey(*text) >= 0) Raise(kDuplicateKey);
    items_.insert(items_.begin() + place,
                  {item, text == nullptr ? std::nullopt : std::optional(SmallLetters(*text))});
  }
  String Item(const TaggedValue& index) const { return items_[static_cast<std::size_t>(Place(index))].text; }
  void Remove(const TaggedValue& index) { items_.erase(items_.begin() + Place(index)); }
  String OfKey(const String& key) const {
    const Long place = PlaceOfKey(key);
    return place < 0 ? u"" : items_[static_cast<std::size_t>(place)].text;
  }

 private:
  struct Entry {
    String text;
    std::optional<String> key;  // in small letters
  };

  static String SmallLetters(String text) {
    for (char16_t& unit : text) {
      if ((unit >= u'A' && unit <= u'Z') || unit == u'É') unit = static_cast<char16_t>(unit + 32);
    }
    return text;
  }
  Long PlaceOfKey(const String& key) const {
    const String small = SmallLetters(key);
    for (std::size_t i = 0; i < items_.size(); ++i) {
      if (items_[i].key == small) return static_cast<Long>(i);
    }
    return -1;
  }
  Long Place(const TaggedValue& index) const {
    if (const auto* key = index.As<String>()) {
      const Long place = PlaceOfKey(*key);
      if (place < 0) Raise(kInvalidCall);
      return place;
    }
    if (!index.IsNumber()) Raise(kTypeMismatch);
    const Double number = NumberOf(index);
    Double whole = std::floor(number);
    const Double rest = number - whole;
    if (rest > 0.5 || (rest == 0.5 && std::fmod(whole, 2) != 0)) ++whole;
    if (!(whole >= 1 && whole <= Count())) Raise(kSubscriptOutOfRange);
    return static_cast<Long>(whole) - 1;
  }

  std::vector<Entry> items_;
};

class Dice {
 public:
  Long Below(Long limit) { return static_cast<Long>(random_() % static_cast<unsigned>(limit)); }

  String Key(Long kinds) {
    String key = u"ké" + Decimal(Below(kinds));
    for (char16_t& unit : key) unit = Below(2) == 0 ? UpperUnit(unit) : unit;
    return Below(50) == 0 ? u"" : key;
  }
  TaggedValue Index(Long count, Long kinds) {
    switch (Below(8)) {
      case 0:
      case 1:
      case 2:
        return Key(kinds);
      case 3:
        return static_cast<Integer>(Below(count + 2));
      case 4:
        return (Below(4 * count + 8) - 2) / 4.0;
      case 5:
        return static_cast<Single>(Below(2 * count + 4)) / 2;
      case 6:
        if (Below(20) == 0) return Null;
        [[fallthrough]];
      default:
        return Below(count) + 1;
    }
  }

 private:
  std::mt19937 random_{35};
};

// Lists of some size, with keys that are often met, which grow and shrink in turns.
TEST(Collection, BehavesAsALiteralList) {
  Dice dice;
  for (const Long size : {3, 5, 9, 20, 200}) {
    Collection list;
    Literal literal;
    const Long kinds = size * 2;
    bool growing = true;
    for (int step = 0; step < 2'500; ++step) {
      if (literal.Count() > size) growing = false;
      if (literal.Count() == 0) growing = true;
      const TaggedValue index = dice.Index(std::max(literal.Count(), 1), kinds);
      const auto bothRaise = [&](const auto& call) {
        return NumberRaised([&] { call(list); }) == NumberRaised([&] { call(literal); });
      };
      if (dice.Below(3) == (growing ? 0 : 1)) {
        ASSERT_TRUE(bothRaise([&](auto& either) { either.Remove(index); })) << step;
      } else {
        // Short and long texts: the first stand in the item itself.
        const String item = (step % 3 == 0 ? u"a longer text " : u"") + Decimal(step);
        const TaggedValue key = dice.Below(3) == 0 ? TaggedValue(Missing) : TaggedValue(dice.Key(kinds));
        const TaggedValue before = dice.Below(3) == 0 ? index : TaggedValue(Missing);
        const TaggedValue after = dice.Below(5) == 0 ? index : TaggedValue(Missing);
        ASSERT_TRUE(bothRaise([&](auto& either) { either.Add(item, key, before, after); })) << step;
      }
      ASSERT_EQ(list.Count(), literal.Count()) << step;
      if (step % (size / 2) != 0) continue;
      for (Long i = 1; i <= list.Count(); ++i) ASSERT_EQ(At(list, i), literal.Item(i)) << step;
      for (Long kind = 0; kind < kinds; ++kind) {
        const String key = u"KÉ" + Decimal(kind);
        const TaggedValue* found = list.FindKey(key);
        ASSERT_EQ(found == nullptr ? u"" : *found->As<String>(), literal.OfKey(key)) << step;
      }
    }
  }
}

}  // namespace
}  // namespace TORVA35
