#pragma once

#include <cstdint>

namespace TORVA35 {

/// The source line of a statement, taken by a primitive that can raise as its last, defaulted argument:
///
///     void Remove(TaggedValue Index, CallSite at = CallSite::Current());
///
/// A helper between the statement and the primitive passes its own `at` on, or its line would be reported instead.
class CallSite {
 public:
  /// The line of the statement whose defaulted argument this is.
  // constexpr and not consteval: g++ 12 would otherwise give the line of the declaration.
  static constexpr CallSite Current(std::uint_least32_t line = __builtin_LINE()) { return CallSite(line); }

  /// The line in its source file, from 1.
  constexpr std::uint_least32_t Line() const { return line_; }

 private:
  explicit constexpr CallSite(std::uint_least32_t line) : line_(line) {}

  std::uint_least32_t line_;
};

}  // namespace TORVA35
