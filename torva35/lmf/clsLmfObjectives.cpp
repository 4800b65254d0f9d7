#include "torva35/lmf/clsLmfObjectives.h"

#include <algorithm>

#include "torva35/base/Error.h"
#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

const String& NeedKey(const TaggedValue& key, CallSite at) {
  const auto* text = key.As<String>();
  if (text == nullptr) Raise(kTypeMismatch, at);
  return *text;
}

// So that the entry itself cannot fail, which must come to all lists or to none.
template <class T>
void MakeRoomForOne(std::vector<T>& list) {
  constexpr std::size_t kFirst = 8;
  if (list.size() == list.capacity()) list.reserve(std::max(kFirst, 2 * list.size()));
}

}  // namespace

void clsLmfObjectives::Add(Ref<clsLmfObjective> oObjective, const TaggedValue& Key, CallSite at) {
  Need(oObjective, at);
  std::optional<String> key;
  if (!Key.IsMissing()) key = NeedKey(Key, at);
  MakeRoomForOne(keys_);
  MakeRoomForOne(items_);
  if (key && !distinctKeys_.insert(*key).second) Raise(kDuplicateKey, at);
  keys_.push_back(std::move(key));
  items_.push_back(std::move(oObjective));
}

bool clsLmfObjectives::Exists(const TaggedValue& Key, CallSite at) const {
  return distinctKeys_.contains(NeedKey(Key, at));
}

void clsLmfObjectives::AddBuiltIn() {
  if (hasBuiltIn_) return;
  auto objective = New<clsLmfObjective>();
  objective->Text(u"(All Questions)");
  MakeRoomForOne(keys_);
  MakeRoomForOne(items_);
  items_.insert(items_.begin(), std::move(objective));
  keys_.emplace(keys_.begin());
  hasBuiltIn_ = true;
}

std::optional<String> clsLmfObjectives::KeyOf(Long lPosition, CallSite at) const {
  return keys_[PlaceOf(lPosition, keys_.size(), at)];
}

void clsLmfObjectives::RemoveAll() {
  items_.clear();
  keys_.clear();
  distinctKeys_.clear();
  hasBuiltIn_ = false;
}

}  // namespace TORVA35
