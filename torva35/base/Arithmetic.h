#pragma once

#include <cmath>
#include <concepts>
#include <limits>
#include <type_traits>
#include <utility>

#include "torva35/base/CallSite.h"
#include "torva35/base/Error.h"
#include "torva35/base/Types.h"

/// Whole-number arithmetic that raises Overflow (6) where the result leaves the range of its type.
namespace TORVA35 {

/// A whole number of any type, on its way to a member that has fewer bits for it and tells an overflow itself.
class AnyWhole {
 public:
  /// Implicit, so that a host passes the number. One beyond 64 bits signed counts as the largest of them.
  template <std::integral T>
  requires(!Character<T> && !std::same_as<T, bool>) constexpr AnyWhole(T value)
      : value_(std::in_range<std::int64_t>(value) ? static_cast<std::int64_t>(value)
                                                  : std::numeric_limits<std::int64_t>::max()) {}

  /// The number.
  constexpr std::int64_t Value() const { return value_; }

 private:
  std::int64_t value_;
};

/// left + right.
template <std::signed_integral T>
T CheckedAdd(T left, std::type_identity_t<T> right, CallSite at = CallSite::Current()) {
  T result;
  if (__builtin_add_overflow(left, right, &result)) Raise(kOverflow, at);
  return result;
}

/// left - right.
template <std::signed_integral T>
T CheckedSubtract(T left, std::type_identity_t<T> right, CallSite at = CallSite::Current()) {
  T result;
  if (__builtin_sub_overflow(left, right, &result)) Raise(kOverflow, at);
  return result;
}

/// The same whole number in a narrower type.
template <std::signed_integral To, std::integral From>
To Narrow(From value, CallSite at = CallSite::Current()) {
  To result;
  if (__builtin_add_overflow(value, From{0}, &result)) Raise(kOverflow, at);
  return result;
}

/// The nearest whole number, ties to the even one, whatever rounding mode the host has set.
inline Double NearestWhole(Double value) {
  constexpr Double kAllWhole = 1LL << 52;  // from here on
  if (!(std::abs(value) < kAllWhole)) return value;
  const Double below = std::floor(value);
  const Double above = value - below;  // exact
  const bool up = above > 0.5 || (above == 0.5 && std::fmod(below, 2) != 0);
  return up ? below + 1 : below;
}

/// The same in a type of whole numbers.
template <std::signed_integral To>
To Rounded(Double value, CallSite at = CallSite::Current()) {
  const Double whole = NearestWhole(value);
  // Both bounds are exact in a Double; a value that is no number fails the comparison.
  if (!(whole >= std::numeric_limits<To>::min() && whole <= std::numeric_limits<To>::max())) Raise(kOverflow, at);
  return static_cast<To>(whole);
}

}  // namespace TORVA35
