#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "torva35/base/Types.h"

/// Numbers as text and back, the same bytes on every platform: not every standard library can do that for
/// floating-point numbers.
namespace TORVA35 {

/// The number that a text is as a whole: decimal, as `std::from_chars` reads it, "inf" and "nan" included; the
/// nearest one, infinite beyond the range and 0 where it is too small. Nothing for any other text.
///@{
std::optional<Double> DoubleOf(std::string_view text);
std::optional<Single> SingleOf(std::string_view text);
///@}

/// How a number is laid out, as `std::to_chars` does.
enum class Layout {
  kFixed,       // 1500
  kScientific,  // 1.5e+03
  kShorter,     // the shorter one of the two; fixed when they are alike
};

/// Appends the shortest text that reads back as the same number.
///@{
void AppendShortest(std::string& text, Double value, Layout layout = Layout::kShorter);
void AppendShortest(std::string& text, Single value, Layout layout = Layout::kShorter);
///@}

}  // namespace TORVA35
