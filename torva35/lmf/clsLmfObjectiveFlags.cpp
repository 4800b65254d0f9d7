#include "torva35/lmf/clsLmfObjectiveFlags.h"

#include <bit>
#include <limits>

#include "torva35/base/Error.h"
#include "torva35/base/ListPosition.h"

namespace TORVA35 {

void clsLmfObjectiveFlags::Add(const TaggedValue& vValue, CallSite at) {
  const auto* value = vValue.As<bool>();
  if (value == nullptr) Raise(kTypeMismatch, at);
  clsLmfObjectiveFlags::AddFalse(1, at);
  if (*value) flags_->Set(flags_->count - 1, true);
}

void clsLmfObjectiveFlags::AddFalse(Long lCount, CallSite at) {
  if (lCount < 0) Raise(kInvalidCall, at);
  if (!flags_) flags_ = std::make_shared<PackedFlags>();
  const std::size_t count = flags_->count + static_cast<std::size_t>(lCount);
  if (count > std::numeric_limits<Long>::max()) Raise(kOverflow, at);
  flags_->words.resize((count + 63) / 64);
  flags_->count = count;
}

Ref<clsLmfObjectiveFlag> clsLmfObjectiveFlags::Item(Long lPosition, CallSite at) const {
  const std::size_t place = PlaceOf(lPosition, flags_ ? flags_->count : 0, at);
  return New<clsLmfObjectiveFlag>(flags_, place);
}

bool clsLmfObjectiveFlags::Value(Long lPosition, CallSite at) const {
  const std::size_t place = PlaceOf(lPosition, flags_ ? flags_->count : 0, at);
  return flags_->Get(place);
}

void clsLmfObjectiveFlags::Value(Long lPosition, bool bValue, CallSite at) {
  const std::size_t place = PlaceOf(lPosition, flags_ ? flags_->count : 0, at);
  flags_->Set(place, bValue);
}

Long clsLmfObjectiveFlags::NextTrue(Long lPosition) const {
  if (!flags_ || lPosition < 0) return 0;
  const auto place = static_cast<std::size_t>(lPosition);
  for (std::size_t i = place / 64; i < flags_->words.size(); ++i) {
    std::uint64_t word = flags_->words[i];
    if (i == place / 64) word = word >> place % 64 << place % 64;
    if (word != 0) return static_cast<Long>(i * 64) + std::countr_zero(word) + 1;
  }
  return 0;
}

}  // namespace TORVA35
