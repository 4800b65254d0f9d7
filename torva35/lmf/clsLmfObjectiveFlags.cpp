#include "torva35/lmf/clsLmfObjectiveFlags.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <vector>

#include "torva35/base/Error.h"
#include "torva35/base/ListPosition.h"

namespace TORVA35 {

// Bits at places from 0. The files of most tests have fewer objectives than a word has bits.
struct clsLmfObjectiveFlag::Packed {
  std::uint64_t& Word(std::size_t i) { return i == 0 ? first : others[i - 1]; }
  bool Get(std::size_t place) { return (Word(place / 64) >> place % 64 & 1) != 0; }
  void Set(std::size_t place, bool value) {
    const std::uint64_t bit = std::uint64_t{1} << place % 64;
    std::uint64_t& word = Word(place / 64);
    word = value ? word | bit : word & ~bit;
  }

  std::uint64_t first = 0;
  std::vector<std::uint64_t> others;
  std::size_t count = 0;
};

bool clsLmfObjectiveFlag::Value() const {
  return flags_ != nullptr && flags_->Get(place_);
}

void clsLmfObjectiveFlag::Value(bool bValue) {
  if (flags_ != nullptr) flags_->Set(place_, bValue);
}

std::size_t clsLmfObjectiveFlags::Size() const {
  return flags_ ? flags_->count : 0;
}

void clsLmfObjectiveFlags::Add(const TaggedValue& vValue, CallSite at) {
  const auto* value = vValue.As<bool>();
  if (value == nullptr) Raise(kTypeMismatch, at);
  clsLmfObjectiveFlags::AddFalse(1, at);
  if (*value) flags_->Set(flags_->count - 1, true);
}

void clsLmfObjectiveFlags::AddFalse(Long lCount, CallSite at) {
  if (lCount < 0) Raise(kInvalidCall, at);
  if (!flags_) flags_ = New<clsLmfObjectiveFlag::Packed>();
  const std::size_t count = flags_->count + static_cast<std::size_t>(lCount);
  if (count > std::numeric_limits<Long>::max()) Raise(kOverflow, at);
  if (count > 64) flags_->others.resize((count - 1) / 64);
  flags_->count = count;
}

Ref<clsLmfObjectiveFlag> clsLmfObjectiveFlags::Item(Long lPosition, CallSite at) const {
  const std::size_t place = PlaceOf(lPosition, Size(), at);
  return Ref<clsLmfObjectiveFlag>(new clsLmfObjectiveFlag(flags_, place));
}

bool clsLmfObjectiveFlags::Value(Long lPosition, CallSite at) const {
  const std::size_t place = PlaceOf(lPosition, Size(), at);
  return flags_->Get(place);
}

void clsLmfObjectiveFlags::Value(Long lPosition, bool bValue, CallSite at) {
  const std::size_t place = PlaceOf(lPosition, Size(), at);
  flags_->Set(place, bValue);
}

Long clsLmfObjectiveFlags::NextTrue(Long lPosition) const {
  if (!flags_ || lPosition < 0) return 0;
  const auto place = static_cast<std::size_t>(lPosition);
  for (std::size_t i = place / 64; i <= flags_->others.size(); ++i) {
    std::uint64_t word = flags_->Word(i);
    if (i == place / 64) word = word >> place % 64 << place % 64;
    if (word != 0) return static_cast<Long>(i * 64) + std::countr_zero(word) + 1;
  }
  return 0;
}

}  // namespace TORVA35
