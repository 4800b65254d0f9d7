#include "torva35/model/Collection.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <utility>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Error.h"
#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

// A key and the slot of its item.
struct Keyed {
  bool Is(StringView other, std::size_t otherHash) const { return hash == otherHash && EqualNoCase(key, other); }

  String key;
  std::size_t hash;
  std::size_t slot;
};

// Finds the keyed items of a longer list: a table of twice to four times as many places, in which an item stands
// at the first one free from that of its hash on.
class KeyIndex {
 public:
  explicit KeyIndex(std::size_t count) : places_(std::bit_ceil(2 * count + 2)) {}

  Keyed* Find(StringView key, std::size_t hash) const {
    std::size_t place = First(hash);
    while (places_[place] != nullptr && !places_[place]->Is(key, hash)) place = Next(place);
    return places_[place];
  }

  // Makes room for one more.
  void Reserve() {
    if (2 * count_ + 2 <= places_.size()) return;
    KeyIndex larger(2 * count_);
    for (Keyed* keyed : places_) {
      if (keyed != nullptr) larger.Add(keyed);
    }
    *this = std::move(larger);
  }

  // There must be room.
  void Add(Keyed* keyed) noexcept {
    std::size_t place = First(keyed->hash);
    while (places_[place] != nullptr) place = Next(place);
    places_[place] = keyed;
    ++count_;
  }

  void Remove(const Keyed* keyed) noexcept {
    std::size_t free = First(keyed->hash);
    while (places_[free] != keyed) free = Next(free);
    // Those that stand further on because this place was taken move up.
    for (std::size_t place = Next(free); places_[place] != nullptr; place = Next(place)) {
      const std::size_t mask = places_.size() - 1;
      const std::size_t way = (place - First(places_[place]->hash)) & mask;
      if (way < ((place - free) & mask)) continue;
      places_[free] = places_[place];
      free = place;
    }
    places_[free] = nullptr;
    --count_;
  }

 private:
  std::size_t First(std::size_t hash) const { return hash & (places_.size() - 1); }
  std::size_t Next(std::size_t place) const { return (place + 1) & (places_.size() - 1); }

  std::vector<Keyed*> places_;  // a power of two
  std::size_t count_ = 0;
};

struct Slot {
  TaggedValue item;
  std::unique_ptr<Keyed> keyed;
};

bool IsIndex(const TaggedValue& value) {
  return value.Is<String>() || value.IsNumber();
}

// Up to this many items a key is looked for by walking them.
constexpr std::size_t kWalked = 8;

}  // namespace

// A gap buffer: the slots from gapBegin_ to gapEnd_ are free, and the gap moves to the place of each change. So a
// walk from the end that removes here and there moves each item once, and a key knows the slot of its item.
struct Collection::Items {
  std::size_t Count() const { return slots_.size() - (gapEnd_ - gapBegin_); }
  std::size_t SlotOf(std::size_t place) const { return place < gapBegin_ ? place : place + (gapEnd_ - gapBegin_); }
  std::size_t PlaceOf(std::size_t slot) const { return slot < gapBegin_ ? slot : slot - (gapEnd_ - gapBegin_); }

  const TaggedValue& At(std::size_t place) const { return slots_[SlotOf(place)].item; }

  const Keyed* FindKey(StringView key) const {
    return keyedCount_ == 0 ? nullptr : FindKey(key, HashNoCase()(key));
  }
  const Keyed* FindKey(StringView key, std::size_t hash) const {
    if (index_ != nullptr) return index_->Find(key, hash);
    for (std::size_t place = 0; keyedCount_ > 0 && place < Count(); ++place) {
      const Keyed* keyed = slots_[SlotOf(place)].keyed.get();
      if (keyed != nullptr && keyed->Is(key, hash)) return keyed;
    }
    return nullptr;
  }

  // The place from 0 of an index, or nothing when the list does not have it.
  std::optional<std::size_t> Find(const TaggedValue& index) const {
    if (const auto* key = index.As<String>()) {
      const Keyed* keyed = FindKey(*key);
      if (keyed == nullptr) return std::nullopt;
      return PlaceOf(keyed->slot);
    }
    if (const auto* whole = index.As<Long>()) {
      const std::size_t place = static_cast<std::size_t>(*whole) - 1;  // of 0 and below, far beyond the end
      return place < Count() ? std::optional(place) : std::nullopt;
    }
    const Double position = NearestWhole(NumberOf(index));
    if (!(position >= 1 && position <= static_cast<Double>(Count()))) return std::nullopt;
    return static_cast<std::size_t>(position) - 1;
  }

  // All that can fail comes before the first change.
  void Insert(std::size_t place, TaggedValue&& item, std::unique_ptr<Keyed> keyed) {
    if (gapBegin_ == gapEnd_) {
      const std::size_t size = slots_.size();
      Grow(size == 0 ? 2 : size + std::max<std::size_t>(3, size / 2));
    }
    if (index_ == nullptr && Count() >= kWalked && (keyed != nullptr || keyedCount_ > 0)) BuildIndex();
    if (keyed != nullptr) {
      if (index_ != nullptr) {
        index_->Reserve();
        index_->Add(keyed.get());
      }
      ++keyedCount_;
    }
    MoveGap(place);
    if (keyed != nullptr) keyed->slot = gapBegin_;
    Slot& slot = slots_[gapBegin_++];
    slot.item = std::move(item);
    slot.keyed = std::move(keyed);
  }

  void Reserve(std::size_t added) {
    if (gapEnd_ - gapBegin_ < added) Grow(Count() + added);
  }

  // Into an empty list, which is full then.
  void CopyItems(const Items& from, bool keyed) {
    const std::size_t count = from.Count();
    slots_.reserve(count);
    for (std::size_t place = 0; place < count; ++place) {
      const Slot& slot = from.slots_[from.SlotOf(place)];
      Slot& copy = slots_.emplace_back();
      copy.item = slot.item;
      if (!keyed || slot.keyed == nullptr) continue;
      copy.keyed.reset(new Keyed{slot.keyed->key, slot.keyed->hash, place});
      ++keyedCount_;
    }
    gapBegin_ = gapEnd_ = count;
    if (count > kWalked && keyedCount_ > 0) BuildIndex();
  }

  // What is taken out is handed over, so that it is destroyed when the list is whole again.
  Slot Remove(std::size_t place) {
    Slot* slot;
    if (place < gapBegin_) {
      MoveGap(place + 1);
      slot = &slots_[--gapBegin_];
    } else {
      MoveGap(place);
      slot = &slots_[gapEnd_++];
    }
    if (slot->keyed != nullptr) {
      if (index_ != nullptr) index_->Remove(slot->keyed.get());
      --keyedCount_;
    }
    return std::exchange(*slot, Slot());
  }

 private:
  void Grow(std::size_t newSize) {
    const std::size_t size = slots_.size();
    std::vector<Slot> grown(newSize);
    std::move(slots_.begin(), slots_.begin() + static_cast<std::ptrdiff_t>(gapBegin_), grown.begin());
    const std::size_t gapEnd = grown.size() - (size - gapEnd_);
    for (std::size_t from = gapEnd_, to = gapEnd; from < size; ++from, ++to) Move(slots_[from], grown[to], to);
    slots_ = std::move(grown);
    gapEnd_ = gapEnd;
  }

  void BuildIndex() {
    auto index = std::make_unique<KeyIndex>(keyedCount_ + 1);
    for (const Slot& slot : slots_) {
      if (slot.keyed != nullptr) index->Add(slot.keyed.get());
    }
    index_ = std::move(index);
  }

  void MoveGap(std::size_t place) noexcept {
    // No slot is free: nothing to move, and a slot moved onto itself would lose its text.
    if (gapBegin_ == gapEnd_) gapBegin_ = gapEnd_ = place;
    for (; gapBegin_ > place; --gapBegin_, --gapEnd_)
      Move(slots_[gapBegin_ - 1], slots_[gapEnd_ - 1], gapEnd_ - 1);
    for (; gapBegin_ < place; ++gapBegin_, ++gapEnd_) Move(slots_[gapEnd_], slots_[gapBegin_], gapBegin_);
  }

  static void Move(Slot& from, Slot& to, std::size_t slot) noexcept {
    to = std::move(from);
    if (to.keyed != nullptr) to.keyed->slot = slot;
  }

  std::vector<Slot> slots_;
  std::size_t gapBegin_ = 0;
  std::size_t gapEnd_ = 0;
  std::size_t keyedCount_ = 0;
  std::unique_ptr<KeyIndex> index_;  // null while walking does
};

Collection::Collection() noexcept = default;
Collection::~Collection() = default;
Collection::Collection(Collection&&) noexcept = default;
Collection& Collection::operator=(Collection&&) noexcept = default;

Long Collection::Count() const {
  return items_ == nullptr ? 0 : static_cast<Long>(items_->Count());
}

void Collection::Add(TaggedValue Item, const TaggedValue& Key, const TaggedValue& Before, const TaggedValue& After,
                     CallSite at) {
  const auto* key = Key.As<String>();
  if (key == nullptr && !Key.IsMissing()) Raise(kTypeMismatch, at);
  if (!Before.IsMissing() && !After.IsMissing()) Raise(kInvalidCall, at);
  if (items_ == nullptr) items_ = std::make_unique<Items>();
  std::size_t place = items_->Count();
  if (!Before.IsMissing()) place = NeedPlace(Before, at);
  if (!After.IsMissing()) place = NeedPlace(After, at) + 1;
  std::unique_ptr<Keyed> keyed;
  if (key != nullptr) {
    keyed.reset(new Keyed{*key, HashNoCase()(*key), 0});
    if (items_->FindKey(*key, keyed->hash) != nullptr) Raise(kDuplicateKey, at);
  }
  items_->Insert(place, std::move(Item), std::move(keyed));
}

void Collection::Append(TaggedValue Item) {
  if (items_ == nullptr) items_ = std::make_unique<Items>();
  items_->Insert(items_->Count(), std::move(Item), nullptr);
}

void Collection::Reserve(std::int64_t added) {
  if (added <= 0) return;
  if (items_ == nullptr) items_ = std::make_unique<Items>();
  items_->Reserve(static_cast<std::size_t>(added));
}

const TaggedValue& Collection::Item(const TaggedValue& Index, CallSite at) const {
  const std::size_t place = NeedPlace(Index, at);
  return items_->At(place);
}

void Collection::Remove(const TaggedValue& Index, CallSite at) {
  const std::size_t place = NeedPlace(Index, at);
  const auto removed = items_->Remove(place);
}

const TaggedValue* Collection::Find(const TaggedValue& Index) const {
  if (items_ == nullptr || !IsIndex(Index)) return nullptr;
  const auto place = items_->Find(Index);
  return place ? &items_->At(*place) : nullptr;
}

Long Collection::PositionOf(const TaggedValue& Index) const {
  if (items_ == nullptr || !IsIndex(Index)) return 0;
  const auto place = items_->Find(Index);
  return place ? static_cast<Long>(*place) + 1 : 0;
}

const TaggedValue* Collection::FindKey(StringView key) const {
  if (items_ == nullptr) return nullptr;
  const Keyed* keyed = items_->FindKey(key);
  return keyed == nullptr ? nullptr : &items_->At(items_->PlaceOf(keyed->slot));
}

Collection Collection::Copy(bool keyed) const {
  Collection copy;
  if (items_ == nullptr) return copy;
  copy.items_ = std::make_unique<Items>();
  copy.items_->CopyItems(*items_, keyed);
  return copy;
}

std::size_t Collection::NeedPlace(const TaggedValue& index, CallSite at) const {
  if (!IsIndex(index)) Raise(kTypeMismatch, at);
  const auto place = items_ == nullptr ? std::nullopt : items_->Find(index);
  if (!place) Raise(index.Is<String>() ? kInvalidCall : kSubscriptOutOfRange, at);
  return *place;
}

}  // namespace TORVA35
