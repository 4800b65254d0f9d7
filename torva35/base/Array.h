#pragma once

#include <initializer_list>
#include <utility>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/CallSite.h"
#include "torva35/base/Error.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// An array with an explicit lower bound. One without elements has no bounds, and asking for them raises (9), as
/// does a position outside them. An upper bound beyond a Long raises (6).
template <class T>
class Array {
 public:
  /// No elements.
  Array() = default;
  /// The items at positions lLowerBound, lLowerBound + 1, ...
  Array(Long lLowerBound, std::vector<T> items) : lower_(lLowerBound), items_(std::move(items)) {}
  /// The items at positions 0, 1, ...
  Array(std::initializer_list<T> items) : items_(items) {}

  /// Whether there are no elements, and so no bounds.
  bool IsEmpty() const { return items_.empty(); }
  /// Number of elements.
  Long Size() const { return static_cast<Long>(items_.size()); }

  /// Position of the first element.
  Long LBound(CallSite at = CallSite::Current()) const {
    if (items_.empty()) Raise(kSubscriptOutOfRange, at);
    return lower_;
  }
  /// Position of the last element.
  Long UBound(CallSite at = CallSite::Current()) const { return CheckedAdd(LBound(at), Size() - 1, at); }

  /// The element at the position.
  const T& At(Long position, CallSite at = CallSite::Current()) const { return items_[Offset(position, at)]; }
  T& At(Long position, CallSite at = CallSite::Current()) { return items_[Offset(position, at)]; }
  const T& operator[](Long position) const { return At(position); }
  T& operator[](Long position) { return At(position); }

  /// The elements in order.
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  /// Equal elements at equal positions. Two arrays without elements are equal.
  friend bool operator==(const Array& left, const Array& right) {
    return left.items_ == right.items_ && (left.items_.empty() || left.lower_ == right.lower_);
  }

 private:
  std::size_t Offset(Long position, CallSite at) const {
    const std::int64_t offset = std::int64_t{position} - lower_;
    if (offset < 0 || offset >= Size()) Raise(kSubscriptOutOfRange, at);
    return static_cast<std::size_t>(offset);
  }

  Long lower_ = 0;
  std::vector<T> items_;
};

}  // namespace TORVA35
