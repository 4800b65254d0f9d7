#include "torva35/platform/CharacterConverter.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "torva35/platform/windows/Windows.h"

namespace TORVA35 {
namespace {

constexpr UINT kAscii = 20127;

struct Name {
  std::string_view name;  // in capitals, without "-" and "_"
  UINT page;
};

// Those that are no "windows-", "cp", "IBM" or "ISO-8859-" with a number. None has shifts or escapes.
constexpr Name kNames[] = {
    {"USASCII", 20127},   {"ASCII", 20127}, {"LATIN1", 28591}, {"LATIN2", 28592},    {"LATIN9", 28605},
    {"KOI8R", 20866},     {"KOI8U", 21866}, {"SHIFTJIS", 932}, {"SJIS", 932},        {"WINDOWS31J", 932},
    {"EUCJP", 20932},     {"GB2312", 936},  {"GBK", 936},      {"EUCCN", 936},       {"GB18030", 54936},
    {"BIG5", 950},        {"EUCKR", 949},   {"UHC", 949},      {"KSC56011987", 949}, {"TIS620", 874},
    {"MACINTOSH", 10000}, {"JOHAB", 1361},
};

// The number behind the beginning of a name, or 0.
UINT NumberAfter(std::string_view name, std::string_view beginning) {
  if (!name.starts_with(beginning)) return 0;
  UINT number = 0;
  const auto [end, error] = std::from_chars(name.data() + beginning.size(), name.data() + name.size(), number);
  return error == std::errc() && end == name.data() + name.size() ? number : 0;
}

UINT PageOf(const std::string& encoding) {
  std::string name;
  for (const char c : encoding) {
    if (c != '-' && c != '_') name += c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  }
  const auto* const row =
      std::find_if(std::begin(kNames), std::end(kNames), [&](const Name& each) { return each.name == name; });
  if (row != std::end(kNames)) return row->page;
  if (const UINT part = NumberAfter(name, "ISO8859"); part > 0 && part <= 16) return 28590 + part;
  for (const char* const beginning : {"WINDOWS", "CP", "IBM"}) {
    if (const UINT number = NumberAfter(name, beginning); number > 0) return number;
  }
  return 0;
}

// Pages in which a byte, or a row of them, means something else after certain others; those of Unicode; and
// numbers that stand for a page of the user's choice.
bool IsNotPlain(UINT page) {
  return page < 37 || page == 42 || (page >= 50000 && page < 51000) || page == 52936 || page == 20261 ||
         page == 20269 || (page >= 57000 && page <= 57011) || page >= 65000 || page == 1200 || page == 1201 ||
         page == 12000 || page == 12001;
}

// Where a page has no character, the system gives the control character of the same number, or one of its own.
bool IsNone(UINT page, std::string_view bytes, wchar_t unit) {
  const auto byte = static_cast<unsigned char>(bytes.front());
  const bool hasControls = page > 28590 && page <= 28606;  // ISO-8859
  if (bytes.size() == 1 && page == kAscii) return byte >= 0x80;
  if (bytes.size() == 1 && unit == byte && unit >= 0x80 && unit < 0xA0) return !hasControls;
  return bytes.size() == 1 && unit >= 0xE000 && unit < 0xF900;
}

}  // namespace

// The page's number stands in the place of a pointer.
CharacterConverter::CharacterConverter(const std::string& encoding) {
  const UINT page = PageOf(encoding);
  CPINFO information;
  if (page == 0 || IsNotPlain(page) || GetCPInfo(page, &information) == 0) return;
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  converter_ = reinterpret_cast<void*>(static_cast<std::uintptr_t>(page));
}

// NOLINTNEXTLINE(performance-trivially-destructible): another port has something to destroy.
CharacterConverter::~CharacterConverter() = default;

CharacterConverter::Outcome CharacterConverter::Convert(std::string_view bytes, std::u32string& characters) {
  const auto page = static_cast<UINT>(reinterpret_cast<std::uintptr_t>(converter_));
  CPINFO information{};
  GetCPInfo(page, &information);
  std::array<wchar_t, 8> units;
  const int count = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
                                        units.data(), static_cast<int>(units.size()));
  if (count <= 0) {
    // The system tells first bytes only where no character has more than two.
    const bool begins =
        information.MaxCharSize > 2 || IsDBCSLeadByteEx(page, static_cast<BYTE>(bytes.front())) != 0;
    return begins && bytes.size() < information.MaxCharSize ? Outcome::kIncomplete : Outcome::kInvalid;
  }
  if (IsNone(page, bytes, units[0])) return Outcome::kInvalid;
  characters.clear();
  for (int i = 0; i < count; ++i) {
    const auto unit = static_cast<char32_t>(units[static_cast<std::size_t>(i)]);
    if (unit >= 0xDC00 && unit < 0xE000 && !characters.empty()) {
      characters.back() = 0x10000 + ((characters.back() - 0xD800) << 10) + (unit - 0xDC00);
    } else {
      characters.push_back(unit);
    }
  }
  return Outcome::kConverted;
}

}  // namespace TORVA35
