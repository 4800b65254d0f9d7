#include "torva35/model/SharedTexts.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"

namespace TORVA35 {

void SharedTexts::Add(const String& text) {
  const auto place = static_cast<Place>(texts_.size());
  const Place first = first_.emplace(text, place).first->second;
  texts_.push_back({Cut(text, kAddedUnits), text, first});
  areCopyable_ = areCopyable_ && IsCopyable(texts_.back().text);
}

SharedTexts::Place SharedTexts::First(StringView key) const {
  const auto found = first_.find(key);
  return found == first_.end() ? std::numeric_limits<Place>::max() : found->second;
}

const String* SharedSelection::Find(const TaggedValue& index) const {
  if (const auto* key = index.As<String>()) {
    if (!isKeyed) return nullptr;
    const SharedTexts::Place first = all->First(*key);
    const auto isSame = [&](SharedTexts::Place place) { return all->First(place) == first; };
    const auto found = all->AreDistinct() ? std::lower_bound(places.begin(), places.end(), first)
                                          : std::find_if(places.begin(), places.end(), isSame);
    return found == places.end() || !isSame(*found) ? nullptr : &all->Text(*found);
  }
  if (!index.IsNumber()) return nullptr;
  const Double position = NearestWhole(NumberOf(index));
  if (!(position >= 1 && position <= static_cast<Double>(places.size()))) return nullptr;
  return &all->Text(places[static_cast<std::size_t>(position) - 1]);
}

Collection SharedSelection::ToCollection() const {
  Collection own;
  for (const SharedTexts::Place place : places) {
    own.Add(all->Text(place), isKeyed ? TaggedValue(all->Key(place)) : Missing);
  }
  return own;
}

}  // namespace TORVA35
