#pragma once

#include <cmath>
#include <concepts>
#include <limits>
#include <type_traits>

#include "torva35/base/CallSite.h"
#include "torva35/base/Error.h"
#include "torva35/base/Types.h"

/// Whole-number arithmetic that raises Overflow (6) where the result leaves the range of its type.
namespace TORVA35 {

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

/// The nearest whole number, ties to the even one.
template <std::signed_integral To>
To Rounded(Double value, CallSite at = CallSite::Current()) {
  const Double whole = std::nearbyint(value);
  // Both bounds are exact in a Double; a value that is no number fails the comparison.
  if (!(whole >= std::numeric_limits<To>::min() && whole <= std::numeric_limits<To>::max())) Raise(kOverflow, at);
  return static_cast<To>(whole);
}

}  // namespace TORVA35
