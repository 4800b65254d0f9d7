#pragma once

#include <utility>
#include <vector>

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/ListPosition.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// What the lists of a form and of an LMF file have in common: an ordered list of shared objects, with positions
/// from 1 to `Count`. Base: what the list is besides, an `Object` at least.
template <class T, class Base = Object>
class TORVA35_API ObjectList : public Base {
 public:
  /// Number of objects.
  virtual Long Count() const { return static_cast<Long>(items_.size()); }

  /// The shared object at a position, a number: the nearest whole one, ties to the even one. Raises 9 for a
  /// position that does not exist and 13 for an index that is no number.
  virtual Ref<T> Item(const TaggedValue& Index, CallSite at = CallSite::Current()) const {
    return items_[PlaceOf(Index, items_.size(), at)];
  }

  /// The objects in order.
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 protected:
  /// The objects; none of them is nothing.
  std::vector<Ref<T>> items_;
};

}  // namespace TORVA35
