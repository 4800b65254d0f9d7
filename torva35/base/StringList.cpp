#include "torva35/base/StringList.h"

#include <algorithm>
#include <utility>

#include "torva35/base/ListPosition.h"

namespace TORVA35 {

String StringList::Item(const TaggedValue& Index, CallSite at) const {
  return items_[PlaceOf(Index, items_.size(), at)];
}

void StringList::Item(const TaggedValue& Index, String sText, CallSite at) {
  items_[PlaceOf(Index, items_.size(), at)] = std::move(sText);
}

bool StringList::Add(String sText) {
  // Most lists hold one answer key or five labels, and a form has thousands of them: doubling from 1 would keep
  // three places of each free.
  constexpr std::size_t kUsual = 5;
  if (items_.size() == items_.capacity()) {
    items_.reserve(items_.empty() ? 1 : std::max(kUsual, 2 * items_.size()));
  }
  items_.push_back(std::move(sText));
  return true;
}

bool StringList::AddArray(const Array<String>& sTexts) {
  items_.insert(items_.end(), sTexts.begin(), sTexts.end());
  return true;
}

Array<String> StringList::AsArray(Long lLowerBound) const {
  return Array<String>(lLowerBound, items_);
}

}  // namespace TORVA35
