#include "torva35/model/Collection.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Error.h"
#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

// A key and the slot of its item.
struct Keyed {
  String key;
  std::size_t hash;
  std::size_t slot;
};

struct KeyHash {
  using is_transparent = void;
  std::size_t operator()(const Keyed* keyed) const noexcept { return keyed->hash; }
  std::size_t operator()(StringView key) const noexcept { return HashNoCase()(key); }
};

struct KeyEqual {
  using is_transparent = void;
  bool operator()(const Keyed* left, const Keyed* right) const { return left == right; }
  bool operator()(StringView left, const Keyed* right) const { return EqualNoCase(left, right->key); }
  bool operator()(const Keyed* left, StringView right) const { return EqualNoCase(left->key, right); }
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
    if (keyedCount_ == 0) return nullptr;
    if (index_ != nullptr) {
      const auto found = index_->find(key);
      return found == index_->end() ? nullptr : *found;
    }
    for (std::size_t place = 0; place < Count(); ++place) {
      const Keyed* keyed = slots_[SlotOf(place)].keyed.get();
      if (keyed != nullptr && EqualNoCase(keyed->key, key)) return keyed;
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
  void Insert(std::size_t place, TaggedValue item, const String* key) {
    std::unique_ptr<Keyed> keyed;
    if (key != nullptr) keyed.reset(new Keyed{*key, HashNoCase()(*key), 0});
    if (gapBegin_ == gapEnd_) Grow();
    if (index_ == nullptr && Count() >= kWalked && (keyed != nullptr || keyedCount_ > 0)) BuildIndex();
    if (keyed != nullptr) {
      if (index_ != nullptr) index_->insert(keyed.get());
      ++keyedCount_;
    }
    MoveGap(place);
    if (keyed != nullptr) keyed->slot = gapBegin_;
    slots_[gapBegin_++] = {std::move(item), std::move(keyed)};
  }

  // Into an empty list, which is full then.
  void CopyItems(const Items& from) {
    const std::size_t count = from.Count();
    slots_.reserve(count);
    for (std::size_t place = 0; place < count; ++place) slots_.emplace_back().item = from.At(place);
    gapBegin_ = gapEnd_ = count;
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
      if (index_ != nullptr) index_->erase(slot->keyed.get());
      --keyedCount_;
    }
    return std::exchange(*slot, Slot());
  }

 private:
  void Grow() {
    const std::size_t size = slots_.size();
    std::vector<Slot> grown(size == 0 ? 2 : size + std::max<std::size_t>(3, size / 2));
    std::move(slots_.begin(), slots_.begin() + static_cast<std::ptrdiff_t>(gapBegin_), grown.begin());
    const std::size_t gapEnd = grown.size() - (size - gapEnd_);
    for (std::size_t from = gapEnd_, to = gapEnd; from < size; ++from, ++to) Move(slots_[from], grown[to], to);
    slots_ = std::move(grown);
    gapEnd_ = gapEnd;
  }

  void BuildIndex() {
    auto index = std::make_unique<std::unordered_set<Keyed*, KeyHash, KeyEqual>>();
    for (const Slot& slot : slots_) {
      if (slot.keyed != nullptr) index->insert(slot.keyed.get());
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
  std::unique_ptr<std::unordered_set<Keyed*, KeyHash, KeyEqual>> index_;  // null while walking does
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
  if (key != nullptr && items_->FindKey(*key) != nullptr) Raise(kDuplicateKey, at);
  items_->Insert(place, std::move(Item), key);
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

Collection Collection::CopyUnkeyed() const {
  Collection copy;
  if (items_ == nullptr) return copy;
  copy.items_ = std::make_unique<Items>();
  copy.items_->CopyItems(*items_);
  return copy;
}

std::size_t Collection::NeedPlace(const TaggedValue& index, CallSite at) const {
  if (!IsIndex(index)) Raise(kTypeMismatch, at);
  const auto place = items_ == nullptr ? std::nullopt : items_->Find(index);
  if (!place) Raise(index.Is<String>() ? kInvalidCall : kSubscriptOutOfRange, at);
  return *place;
}

}  // namespace TORVA35
