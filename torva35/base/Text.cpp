#include "torva35/base/Text.h"

#include <utf8.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>
#include <vector>

#include "torva35/base/Numbers.h"

namespace TORVA35 {
namespace {

struct CaseRange {
  char16_t first, last, step, distance;
};

#include "torva35/base/case_tables.inc"

template <std::size_t n>
char16_t Mapped(const CaseRange (&ranges)[n], char16_t unit) {
  const CaseRange* range = std::upper_bound(std::begin(ranges), std::end(ranges), unit,
                                            [](char16_t u, const CaseRange& r) { return u < r.first; });
  if (range == std::begin(ranges)) return unit;
  --range;
  if (unit > range->last || (unit - range->first) % range->step != 0) return unit;
  return static_cast<char16_t>(unit + range->distance);
}

template <char16_t (*map)(char16_t)>
String MappedText(StringView text) {
  String result(text);
  for (char16_t& unit : result) unit = map(unit);
  return result;
}

char16_t LowerAscii(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

// windows-1252 at 0x80 to 0x9F; 0 where the code page has no character.
constexpr char16_t kAnsiMiddle[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

bool IsDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}
bool IsSkipped(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\n';
}

// A text that is one value as a whole may have blanks around it.
StringView WithoutBlanksAround(StringView text) {
  while (!text.empty() && IsSkipped(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSkipped(text.back())) text.remove_suffix(1);
  return text;
}

// The number at the start of a text, copied out in the form that `DoubleOf` reads.
struct ScannedNumber {
  std::string text;
  bool negative = false;
  StringView rest;  // what stands after it
};

// skipsBlanks: they may stand anywhere in the number; else they end it.
ScannedNumber ScanNumber(StringView text, bool skipsBlanks) {
  ScannedNumber number;
  std::size_t i = 0;
  const auto skip = [&] {
    while (skipsBlanks && i < text.size() && IsSkipped(text[i])) ++i;
  };
  const auto digits = [&] {
    std::size_t count = 0;
    for (skip(); i < text.size() && IsDigit(text[i]); skip(), ++count) number.text += static_cast<char>(text[i++]);
    return count;
  };
  skip();
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) number.negative = text[i++] == u'-';
  std::size_t count = digits();
  if (i < text.size() && text[i] == u'.') {
    ++i;
    number.text += '.';
    count += digits();
  }
  number.rest = text.substr(i);
  if (count == 0) {
    number.text.clear();
    return number;
  }
  if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
    const std::size_t mantissa = number.text.size();
    ++i;
    number.text += 'e';
    skip();
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) number.text += static_cast<char>(text[i++]);
    if (digits() == 0) {
      number.text.resize(mantissa);
    } else {
      number.rest = text.substr(i);
    }
  }
  return number;
}

template <class Floating>
Floating Converted(const ScannedNumber& number, CallSite at) {
  if (number.text.empty()) return 0;
  Floating value;
  if constexpr (std::is_same_v<Floating, Single>) {
    value = SingleOf(number.text).value();
  } else {
    value = DoubleOf(number.text).value();
  }
  if (std::isinf(value)) Raise(kOverflow, at);
  return number.negative ? -value : value;
}

template <class Floating>
String ShortestText(Floating value) {
  if (!std::isfinite(value)) return std::isnan(value) ? u"NaN" : value > 0 ? u"Infinity" : u"-Infinity";
  if (value == 0) return u"0";
  // Plain digits where they stay readable, an exponent for the very large and the very small.
  const Floating size = std::abs(value);
  const bool plain = size >= Floating(1e-5) && size < Floating(1e15);
  std::string digits;
  AppendShortest(digits, value, plain ? Layout::kFixed : Layout::kScientific);
  std::replace(digits.begin(), digits.end(), 'e', 'E');
  return String(digits.begin(), digits.end());
}

bool AreAscii(const char* eight) {
  std::uint64_t bytes;
  std::memcpy(&bytes, eight, sizeof(bytes));
  return (bytes & 0x8080808080808080) == 0;
}

bool IsAscii(std::string_view bytes) {
  for (; bytes.size() >= 8; bytes.remove_prefix(8)) {
    if (!AreAscii(bytes.data())) return false;
  }
  return std::none_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte >= 0x80; });
}

// How many units the bytes, known to be UTF-8, become: one for each byte, but none for those that continue a
// character, and two for one of four bytes.
std::size_t UnitCount(std::string_view bytes) {
  std::size_t count = bytes.size();
  while (!bytes.empty()) {
    for (; bytes.size() >= 8 && AreAscii(bytes.data()); bytes.remove_prefix(8)) continue;
    if (bytes.empty()) break;
    const auto byte = static_cast<unsigned char>(bytes.front());
    count -= (byte & 0xC0) == 0x80 ? 1u : 0u;
    count += byte >= 0xF0 ? 1u : 0u;
    bytes.remove_prefix(1);
  }
  return count;
}

}  // namespace

StringView Trim(StringView text) {
  const std::size_t first = text.find_first_not_of(u' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

Array<String> Split(StringView text, StringView delimiter) {
  std::vector<String> parts;
  if (text.empty()) return {};
  std::size_t begin = 0;
  if (!delimiter.empty()) {
    for (std::size_t end; (end = text.find(delimiter, begin)) != text.npos; begin = end + delimiter.size()) {
      parts.emplace_back(text.substr(begin, end - begin));
    }
  }
  parts.emplace_back(text.substr(begin));
  return Array<String>(0, std::move(parts));
}

char16_t LowerUnit(char16_t unit) {
  return unit < 0x80 ? LowerAscii(unit) : Mapped(kToLower, unit);
}

char16_t UpperUnit(char16_t unit) {
  if (unit < 0x80) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
  return Mapped(kToUpper, unit);
}

// Through both mappings, so that units with one upper case (sigma and final sigma) and units with one lower case
// (K and the Kelvin sign) meet.
char16_t FoldUnit(char16_t unit) {
  return unit < 0x80 ? LowerAscii(unit) : LowerUnit(UpperUnit(unit));
}

String Lower(StringView text) {
  return MappedText<LowerUnit>(text);
}
String Upper(StringView text) {
  return MappedText<UpperUnit>(text);
}
String Fold(StringView text) {
  String result(text);
  for (char16_t& unit : result) unit = unit < 0x80 ? LowerAscii(unit) : FoldUnit(unit);
  return result;
}

std::size_t HashNoCase::operator()(StringView text) const noexcept {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (char16_t unit : text) hash = (hash ^ (unit < 0x80 ? LowerAscii(unit) : FoldUnit(unit))) * 0x100000001b3;
  return static_cast<std::size_t>(hash ^ hash >> 32);
}

bool EqualNoCase(StringView left, StringView right) {
  if (left.size() != right.size()) return false;
  // Most that are looked for are there as they stand.
  if (std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0) return true;
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char16_t l, char16_t r) { return l == r || FoldUnit(l) == FoldUnit(r); });
}

Integer AnsiCode(char16_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<Integer>(unit);
  const auto* place = std::find(std::begin(kAnsiMiddle), std::end(kAnsiMiddle), unit);
  return place == std::end(kAnsiMiddle) ? Integer{63} : static_cast<Integer>(0x80 + (place - kAnsiMiddle));
}

Single LeadingNumber(StringView text, CallSite at) {
  return Converted<Single>(ScanNumber(text, true), at);
}

String Decimal(std::int64_t value) {
  std::array<char, 24> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return String(buffer.data(), end.ptr);
}

String TextOf(const TaggedValue& value, CallSite at) {
  if (const auto* text = value.As<String>()) return *text;
  if (const auto* boolean = value.As<bool>()) return *boolean ? u"True" : u"False";
  if (const auto* number = value.As<Integer>()) return Decimal(*number);
  if (const auto* number = value.As<Long>()) return Decimal(*number);
  if (const auto* number = value.As<Single>()) return ShortestText(*number);
  if (const auto* number = value.As<Double>()) return ShortestText(*number);
  Raise(kTypeMismatch, at);
}

bool BooleanOf(StringView text, CallSite at) {
  text = WithoutBlanksAround(text);
  if (EqualNoCase(text, u"True")) return true;
  if (EqualNoCase(text, u"False")) return false;
  return NumberOf(text, at) != 0;
}

Double NumberOf(const TaggedValue& value, CallSite at) {
  if (value.Is<EmptyValue>()) return 0;
  if (const auto* boolean = value.As<bool>()) return *boolean ? -1 : 0;
  if (const auto* number = value.As<Integer>()) return *number;
  if (const auto* number = value.As<Long>()) return *number;
  if (const auto* number = value.As<Single>()) return static_cast<Double>(*number);
  if (const auto* number = value.As<Double>()) return *number;
  const auto* text = value.As<String>();
  if (text == nullptr) Raise(kTypeMismatch, at);
  const ScannedNumber number = ScanNumber(WithoutBlanksAround(*text), false);
  if (number.text.empty() || !number.rest.empty()) Raise(kTypeMismatch, at);
  return Converted<Double>(number, at);
}

void AppendUtf8(std::string& bytes, char32_t code) {
  utf8::unchecked::append(code, std::back_inserter(bytes));
}

std::string ToUtf8(StringView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    if (code < 0x80) {
      bytes += static_cast<char>(code);
      continue;
    }
    if (code >= 0xD800 && code < 0xE000) {
      const bool pair = code < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
      code = pair ? 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00u) : 0xFFFD;
    }
    AppendUtf8(bytes, code);
  }
  return bytes;
}

bool IsUtf8(std::string_view bytes) {
  return utf8::is_valid(bytes.begin(), bytes.end());
}

String FromUtf8(std::string_view bytes) {
  String text;
  for (;;) {
    const auto good = static_cast<std::size_t>(utf8::find_invalid(bytes.begin(), bytes.end()) - bytes.begin());
    AppendUtf8(text, bytes.substr(0, good));
    if (good == bytes.size()) return text;
    text += u'\uFFFD';
    bytes.remove_prefix(good + 1);
  }
}

void AppendUtf8(String& text, std::string_view bytes) {
  const std::size_t start = text.size();
  text.resize(start + (IsAscii(bytes) ? bytes.size() : UnitCount(bytes)));
  CopyUtf8(text.data() + start, bytes);
}

char16_t* CopyUtf8(char16_t* out, std::string_view bytes) {
  const char* in = bytes.data();
  const char* const end = in + bytes.size();
  for (;;) {
    // Most characters are ASCII, which widens eight at a time.
    for (; end - in >= 8 && AreAscii(in); in += 8, out += 8) std::copy(in, in + 8, out);
    if (in == end) return out;
    if (static_cast<unsigned char>(*in) < 0x80) {
      *out++ = static_cast<char16_t>(*in++);
      continue;
    }
    const char* next = in;  // a copy, which leaves `in` in its register
    const char32_t code = utf8::unchecked::next(next);
    in = next;
    if (code < 0x10000) {
      *out++ = static_cast<char16_t>(code);
    } else {
      *out++ = static_cast<char16_t>(0xD7C0 + (code >> 10));
      *out++ = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    }
  }
}

}  // namespace TORVA35
