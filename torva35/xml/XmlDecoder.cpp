#include "torva35/xml/XmlDecoder.h"

#include <algorithm>

#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kNoCharacter = "\xFF";
// In the encodings of the system's converter no character takes more bytes.
constexpr std::size_t kLongestBytes = 4;

// A NUL, which no document may have, would make the parser take what follows for another encoding.
void Append(std::string& utf8, char32_t code) {
  if (code > 0 && code < 0x80) {
    utf8 += static_cast<char>(code);
  } else if (code == 0 || code >= 0x110000 || (code >= 0xD800 && code < 0xE000)) {
    utf8 += kNoCharacter;
  } else {
    AppendUtf8(utf8, code);
  }
}

bool IsWhite(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Takes leading white space off the text, and gives whether there was any.
bool SkipWhite(std::string_view& text) {
  const std::size_t size = text.size();
  text.remove_prefix(static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsWhite) - text.begin()));
  return text.size() < size;
}

// The value of `encoding` in a declaration; nothing where it has none or is not well-formed, of which the parser
// knows more.
std::string_view EncodingIn(std::string_view declaration) {
  declaration.remove_prefix("<?xml"sv.size());
  while (SkipWhite(declaration)) {
    const std::size_t nameEnd = std::min(declaration.find_first_of(" \t\r\n="), declaration.size());
    const std::string_view name = declaration.substr(0, nameEnd);
    declaration.remove_prefix(nameEnd);
    SkipWhite(declaration);
    if (!declaration.starts_with('=')) return {};
    declaration.remove_prefix(1);
    SkipWhite(declaration);
    if (!declaration.starts_with('"') && !declaration.starts_with('\'')) return {};
    const std::size_t valueEnd = declaration.find(declaration.front(), 1);
    if (valueEnd == declaration.npos) return {};
    const std::string_view value = declaration.substr(1, valueEnd - 1);
    declaration.remove_prefix(valueEnd + 1);
    if (name != "encoding") continue;
    const bool isName = std::all_of(value.begin(), value.end(), [](char c) {
      return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
             c == '-';
    });
    return isName ? value : std::string_view();
  }
  return {};
}

XmlParseError Fault(const char16_t* reason, std::string_view before, std::size_t width) {
  XmlParseError error;
  error.reason = reason;
  error.line = 1;
  std::size_t lineBegin = 0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] != '\n' && (before[i] != '\r' || before.substr(i).starts_with("\r\n"))) continue;
    ++error.line;
    lineBegin = i + 1;
  }
  error.column = static_cast<std::int64_t>(before.size() - lineBegin) + 1;
  error.byteOffset = static_cast<std::int64_t>(before.size() * width);
  return error;
}

}  // namespace

XmlParseError XmlDecoder::Begin(std::string_view head, bool isWhole) {
  struct Signature {
    std::string_view bytes;
    Form form;
  };
  // The longer ones first.
  static constexpr Signature kMarks[] = {{"\xFF\xFE\0\0"sv, Form::kUtf32Little},
                                         {"\0\0\xFE\xFF"sv, Form::kUtf32Big},
                                         {"\xEF\xBB\xBF"sv, Form::kUtf8},
                                         {"\xFF\xFE"sv, Form::kUtf16Little},
                                         {"\xFE\xFF"sv, Form::kUtf16Big}};
  for (const Signature& mark : kMarks) {
    if (!head.starts_with(mark.bytes)) continue;
    form_ = mark.form;
    hasMark_ = true;
    return {};
  }

  // Without a mark the first character, which is never outside ASCII, shows the size of the units.
  const auto has = [&](std::initializer_list<bool> bytes) {
    return head.size() >= bytes.size() && std::equal(bytes.begin(), bytes.end(), head.begin(),
                                                     [](bool set, char byte) { return set == (byte != 0); });
  };
  constexpr std::string_view kEbcdic = "\x4C\x6F\xA7\x94";  // "<?xm", the same in all of this family
  form_ = has({true, false, false, false})   ? Form::kUtf32Little
          : has({false, false, false, true}) ? Form::kUtf32Big
          : has({true, false})               ? Form::kUtf16Little
          : has({false, true})               ? Form::kUtf16Big
                                             : Form::kUtf8;
  if (head.starts_with(kEbcdic) && !UseConverter("IBM037")) return {};

  std::string converted;
  if (form_ != Form::kUtf8) Convert(head, false, converted);
  const std::string_view text = form_ == Form::kUtf8 ? head : std::string_view(converted);
  if (!text.starts_with("<?xml") || text.size() < 6 || !IsWhite(text[5])) return {};
  const std::size_t end = text.find("?>");
  if (end == text.npos) return isWhole ? XmlParseError() : Fault(u"XML declaration without an end", {}, 1);
  const std::string_view declaration = text.substr(0, end);
  const std::string_view name = EncodingIn(declaration);
  if (name.empty()) {
    if (form_ == Form::kOther) form_ = Form::kUtf8;
    return {};
  }

  const std::size_t width = Width();
  const std::string_view before = declaration.substr(0, static_cast<std::size_t>(name.data() - text.data()));
  if (!Use(name)) return Fault(u"unknown encoding", before, width);
  // The declaration is written in what it declares, or it is wrong.
  std::string again;
  Convert(head, false, again, declaration.size());
  if (again != declaration) return Fault(u"encoding specified in XML declaration is incorrect", before, width);
  return {};
}

// Goes over to an encoding of this name.
bool XmlDecoder::Use(std::string_view name) {
  struct Name {
    std::string_view name;
    std::size_t width;  // of the units
    Form form;          // kOther: the order of the bytes is that of the document
  };
  static constexpr Name kNames[] = {
      {"UTF8", 1, Form::kUtf8},           {"UTF16LE", 2, Form::kUtf16Little}, {"UTF16BE", 2, Form::kUtf16Big},
      {"UTF32LE", 4, Form::kUtf32Little}, {"UTF32BE", 4, Form::kUtf32Big},    {"UTF16", 2, Form::kOther},
      {"UCS2", 2, Form::kOther},          {"ISO10646UCS2", 2, Form::kOther},  {"UTF32", 4, Form::kOther},
      {"UCS4", 4, Form::kOther},          {"ISO10646UCS4", 4, Form::kOther}};
  std::string plain;
  for (const char c : name) {
    if (c != '-') plain += c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  }
  for (const Name& row : kNames) {
    if (row.name != plain) continue;
    if (row.form != Form::kOther) {
      form_ = row.form;
    } else if (row.width != Width()) {
      form_ = row.width == 2 ? Form::kUtf16Little : Form::kUtf32Little;
    }
    return true;
  }
  return UseConverter(std::string(name));
}

bool XmlDecoder::UseConverter(const std::string& name) {
  converter_ = std::make_unique<CharacterConverter>(name);
  if (!converter_->IsKnown()) return false;
  form_ = Form::kOther;
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    std::string& utf8 = single_[static_cast<std::size_t>(byte)];
    utf8.clear();
    if (ConvertOther({&c, 1}, utf8) == 0) utf8.clear();
  }
  return true;
}

std::size_t XmlDecoder::Convert(std::string_view bytes, bool areLast, std::string& utf8, std::size_t most) {
  std::size_t used = 0;
  if (form_ == Form::kUtf8) {
    used = std::min(bytes.size(), most - std::min(most, utf8.size()));
    utf8.append(bytes, 0, used);
  }
  while (used < bytes.size() && utf8.size() < most) {
    const std::size_t taken = ConvertOne(bytes.substr(used), utf8);
    if (taken == 0 && !areLast) break;
    if (taken == 0) utf8 += kNoCharacter;
    used = taken == 0 ? bytes.size() : used + taken;
  }
  return used;
}

// Each of these two takes the first character off the bytes, and gives how many it has, or 0 where it is not
// whole.

std::size_t XmlDecoder::ConvertOne(std::string_view bytes, std::string& utf8) {
  if (form_ == Form::kOther) {
    const std::string& single = single_[static_cast<unsigned char>(bytes.front())];
    utf8 += single;
    return single.empty() ? ConvertOther(bytes, utf8) : 1;
  }
  const std::size_t width = Width();
  if (bytes.size() < width) return 0;
  const char32_t unit = UnitAt(bytes, 0);
  if (width == 2 && unit >= 0xD800 && unit < 0xDC00) {
    if (bytes.size() < 2 * width) return 0;
    const char32_t second = UnitAt(bytes, 1);
    if (second >= 0xDC00 && second < 0xE000) {
      Append(utf8, 0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00));
      return 2 * width;
    }
  }
  Append(utf8, unit);
  return width;
}

std::size_t XmlDecoder::ConvertOther(std::string_view bytes, std::string& utf8) {
  for (std::size_t size = 1; size <= std::min(kLongestBytes, bytes.size()); ++size) {
    switch (converter_->Convert(bytes.substr(0, size), characters_)) {
      case CharacterConverter::Outcome::kConverted:
        for (const char32_t code : characters_) Append(utf8, code);
        return size;
      case CharacterConverter::Outcome::kInvalid:
        utf8 += kNoCharacter;
        return size;
      case CharacterConverter::Outcome::kIncomplete:
        break;
    }
  }
  if (bytes.size() < kLongestBytes) return 0;
  utf8 += kNoCharacter;
  return kLongestBytes;
}

std::size_t XmlDecoder::Width() const {
  switch (form_) {
    case Form::kUtf16Little:
    case Form::kUtf16Big:
      return 2;
    case Form::kUtf32Little:
    case Form::kUtf32Big:
      return 4;
    default:
      return 1;
  }
}

char32_t XmlDecoder::UnitAt(std::string_view bytes, std::size_t index) const {
  const auto at = [&](std::size_t i) { return static_cast<char32_t>(static_cast<unsigned char>(bytes[i])); };
  switch (form_) {
    case Form::kUtf16Little:
      return at(2 * index) | at(2 * index + 1) << 8;
    case Form::kUtf16Big:
      return at(2 * index) << 8 | at(2 * index + 1);
    case Form::kUtf32Little:
      return at(4 * index) | at(4 * index + 1) << 8 | at(4 * index + 2) << 16 | at(4 * index + 3) << 24;
    default:
      return at(4 * index) << 24 | at(4 * index + 1) << 16 | at(4 * index + 2) << 8 | at(4 * index + 3);
  }
}

}  // namespace TORVA35
