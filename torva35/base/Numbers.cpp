#include "torva35/base/Numbers.h"

#include <fast_float/fast_float.h>
#include <fmt/compile.h>

#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace TORVA35 {
namespace {

template <class Floating>
std::optional<Floating> NumberOf(std::string_view text) {
  Floating value = 0;
  const auto [end, error] = fast_float::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// A positive number as 0.DIGITS times ten to the power of `point`.
struct Decimal {
  char digits[32];
  int count = 0;
  int point = 0;
};

template <class Floating>
Decimal ShortestDecimal(Floating value) {
  char text[64];
  char* const end = fmt::format_to(text, FMT_COMPILE("{}"), value);
  Decimal decimal;
  int point = -1;
  const char* in = text;
  for (; in != end && *in != 'e'; ++in) {
    if (*in == '.') {
      point = decimal.count;
    } else if (decimal.count > 0 || *in != '0') {
      decimal.digits[decimal.count++] = *in;
    } else if (point >= 0) {
      --decimal.point;  // a zero right after the point
    }
  }
  decimal.point += point >= 0 ? point : decimal.count;
  if (in != end) {
    int exponent = 0;
    if (*++in == '+') ++in;
    std::from_chars(in, end, exponent);
    decimal.point += exponent;
  }
  while (decimal.count > 1 && decimal.digits[decimal.count - 1] == '0') --decimal.count;
  return decimal;
}

template <class Floating>
void AppendFixed(std::string& text, Floating value, const Decimal& decimal) {
  const auto count = static_cast<std::size_t>(decimal.count);
  if (decimal.point <= 0) {
    text.append("0.").append(static_cast<std::size_t>(-decimal.point), '0').append(decimal.digits, count);
  } else if (decimal.point < decimal.count) {
    const auto whole = static_cast<std::size_t>(decimal.point);
    text.append(decimal.digits, whole).append(".").append(decimal.digits + whole, count - whole);
  } else if (value < std::ldexp(Floating(1), std::numeric_limits<Floating>::digits)) {
    text.append(decimal.digits, count).append(static_cast<std::size_t>(decimal.point) - count, '0');
  } else {
    // Not all whole numbers of this size exist: that one is written which it is.
    fmt::format_to(std::back_inserter(text), FMT_COMPILE("{:.0f}"), value);
  }
}

void AppendScientific(std::string& text, const Decimal& decimal) {
  text += decimal.digits[0];
  if (decimal.count > 1) text.append(".").append(decimal.digits + 1, static_cast<std::size_t>(decimal.count) - 1);
  const int exponent = decimal.point - 1;
  text.append(exponent < 0 ? "e-" : "e+");
  if (std::abs(exponent) < 10) text += '0';
  fmt::format_to(std::back_inserter(text), FMT_COMPILE("{}"), std::abs(exponent));
}

bool IsFixedShorter(const Decimal& decimal) {
  const int fixed = decimal.point <= 0              ? 2 - decimal.point + decimal.count
                    : decimal.point < decimal.count ? decimal.count + 1
                                                    : decimal.point;
  const int exponent = std::abs(decimal.point - 1);
  const int scientific = decimal.count + (decimal.count > 1 ? 1 : 0) + (exponent < 100 ? 4 : 5);
  return fixed <= scientific;
}

template <class Floating>
void Append(std::string& text, Floating value, Layout layout) {
  if (std::signbit(value)) text += '-';
  value = std::abs(value);
  if (std::isnan(value)) {
    text += "nan";
  } else if (std::isinf(value)) {
    text += "inf";
  } else if (value == 0) {
    text += layout == Layout::kScientific ? "0e+00" : "0";
  } else {
    const Decimal decimal = ShortestDecimal(value);
    if (layout == Layout::kFixed || (layout == Layout::kShorter && IsFixedShorter(decimal))) {
      AppendFixed(text, value, decimal);
    } else {
      AppendScientific(text, decimal);
    }
  }
}

}  // namespace

std::optional<Double> DoubleOf(std::string_view text) {
  return NumberOf<Double>(text);
}
std::optional<Single> SingleOf(std::string_view text) {
  return NumberOf<Single>(text);
}

void AppendShortest(std::string& text, Double value, Layout layout) {
  Append(text, value, layout);
}
void AppendShortest(std::string& text, Single value, Layout layout) {
  Append(text, value, layout);
}

}  // namespace TORVA35
