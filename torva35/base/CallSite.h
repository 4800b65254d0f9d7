#pragma once

#include <cstdint>

// Set where the library itself is compiled: its lines are told apart from a host's.
#if defined(TORVA35_LIBRARY)
#define TORVA35_LINE (__builtin_LINE() | 0x80000000u)
#else
#define TORVA35_LINE __builtin_LINE()
#endif

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
  static constexpr CallSite Current(std::uint_least32_t line = TORVA35_LINE) { return CallSite(line); }

  /// The line in its source file, from 1.
  constexpr std::uint_least32_t Line() const { return line_ & 0x7FFFFFFFu; }
  /// Whether it is a line of the library, and not of a host.
  constexpr bool IsLibrarys() const { return line_ != Line(); }

 private:
  explicit constexpr CallSite(std::uint_least32_t line) : line_(line) {}

  std::uint_least32_t line_;
};

}  // namespace TORVA35
