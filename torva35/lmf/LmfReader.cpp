#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "torva35/base/Numbers.h"
#include "torva35/base/Text.h"
#include "torva35/lmf/LmfFile.h"
#include "torva35/platform/InputFile.h"
#include "torva35/xml/DOMDocument.h"
#include "torva35/xml/XmlReader.h"

namespace TORVA35 {
namespace lmf_file {
namespace {

// Each Parse gives False for a value that does not have the form of its type, or is out of its range.

bool Parse(std::string_view text, Double& number) {
  const auto value = DoubleOf(text);
  if (!value) return false;
  number = *value;
  // Digits that come to nothing or to infinity are out of range.
  const std::string_view mantissa = text.substr(0, text.find_first_of("eE"));
  return mantissa.find_first_of("123456789") == mantissa.npos || (number != 0 && !std::isinf(number));
}

template <std::integral Number>
bool Parse(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

bool Parse(std::string_view text, bool& value) {
  value = text == "1";
  return value || text == "0";
}

bool Parse(std::string_view text, String& value) {
  for (;;) {
    const std::size_t plain = std::min(text.find('\\'), text.size());
    AppendUtf8(value, text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) return true;
    if (text.starts_with("\\\\")) {
      value += u'\\';
      text.remove_prefix(2);
      continue;
    }
    std::uint16_t unit = 0;
    if (!text.starts_with("\\u") || text.size() < 6) return false;
    const auto [end, error] = std::from_chars(text.data() + 2, text.data() + 6, unit, 16);
    if (error != std::errc() || end != text.data() + 6) return false;
    value += static_cast<char16_t>(unit);
    text.remove_prefix(6);
  }
}

bool Parse(std::string_view text, clsLmfStrings& strings) {
  while (!text.empty()) {
    const std::size_t end = text.find('|');
    String entry;
    if (end == text.npos || !Parse(text.substr(0, end), entry)) return false;
    strings.Add(std::move(entry));
    text.remove_prefix(end + 1);
  }
  return true;
}

bool Parse(std::string_view text, clsLmfObjectiveFlags& flags) {
  Long count = 0;
  const std::size_t colon = text.find(':');
  if (colon == text.npos || !Parse(text.substr(0, colon), count) || count < 0) return false;
  const std::string_view digits = text.substr(colon + 1);
  // Checked before the flags are made: a wrong count makes none.
  if (digits.size() != (static_cast<std::size_t>(count) + 3) / 4) return false;
  flags.AddFalse(count);
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (digits[i] == '0') continue;
    unsigned four = 0;
    const auto [end, error] = std::from_chars(&digits[i], &digits[i] + 1, four, 16);
    if (error != std::errc()) return false;
    for (std::size_t k = 0; k < 4; ++k) {
      if ((four & 8U >> k) == 0) continue;
      const std::size_t position = 4 * i + k + 1;
      if (position > static_cast<std::size_t>(count)) return false;
      flags.Value(static_cast<Long>(position), true);
    }
  }
  return true;
}

bool Parse(std::string_view text, clsLmfSequence& sequence) {
  constexpr std::string_view kWhite = " \t\r\n";
  std::vector<Long> order;
  while ((text.remove_prefix(std::min(text.find_first_not_of(kWhite), text.size())), !text.empty())) {
    const std::size_t end = std::min(text.find_first_of(kWhite), text.size());
    if (!Parse(text.substr(0, end), order.emplace_back())) return false;
    text.remove_prefix(end);
  }
  sequence.SetOrder(Array<Long>(1, std::move(order)));
  return true;
}

/// Takes the tree of a file apart, strictly: a file with anything that the format does not know is refused.
class Reader {
 public:
  explicit Reader(clsLmf& lmf) : lmf_(lmf) {}

  /// hasCheck: the checksum at the end of the file was found to be right.
  bool Read(const IXMLDOMNode& root, bool hasCheck) {
    names_.resize(root.NameCount() + 1);
    if (!ReadRoot(root)) return false;
    IXMLDOMNode part = root.FirstChild();
    for (const auto& [name, read] :
         {Part{"objectives", &Reader::ReadObjectives}, Part{"questions", &Reader::ReadQuestions},
          Part{"versions", &Reader::ReadVersions}}) {
      if (!part || NameOf(part) != name || !(this->*read)(part)) return false;
      part = part.NextSibling();
    }
    if (!hasCheck) return !part;
    return part && NameOf(part) == "check" && !part.NextSibling();
  }

 private:
  struct Part {
    std::string_view name;
    bool (Reader::*read)(const IXMLDOMNode&);
  };
  struct Name {
    std::string text;
    const Column* column = nullptr;  // nothing for a name that is no attribute of a question
  };

  // Each name of the document is looked up once.
  const Name& Known(const IXMLDOMNode& node) {
    Name& name = names_[node.NameId()];
    if (name.text.empty()) {
      name.text = ToUtf8(node.get_nodeName());
      const auto* column = std::find_if(std::begin(kColumns), std::end(kColumns),
                                        [&](const Column& row) { return row.name == name.text; });
      if (column != std::end(kColumns)) name.column = column;
    }
    return name;
  }
  std::string_view NameOf(const IXMLDOMNode& node) { return Known(node).text; }

  static bool HasNoAttributes(const IXMLDOMNode& node) { return node.get_attributes().get_length() == 0; }
  static bool HasTextOnly(const IXMLDOMNode& node) {
    const IXMLDOMNode text = node.FirstChild();
    return !text || (text.NameId() == 0 && !text.NextSibling());
  }
  /// Calls read(name, value) for each attribute, until one gives False.
  template <class Read>
  bool EachAttribute(const IXMLDOMNode& node, Read read) {
    const IXMLDOMNamedNodeMap attributes = node.get_attributes();
    for (Long i = 0; i < attributes.get_length(); ++i) {
      const IXMLDOMNode attribute = attributes.get_item(i);
      if (!read(Known(attribute), attribute.Utf8())) return false;
    }
    return true;
  }
  /// Calls read(child) for each child, until one gives False or has another name.
  template <class Read>
  bool EachChild(const IXMLDOMNode& node, std::string_view name, Read read) {
    for (IXMLDOMNode child = node.FirstChild(); child; child = child.NextSibling()) {
      if (NameOf(child) != name || !read(child)) return false;
    }
    return true;
  }

  bool ReadRoot(const IXMLDOMNode& root) {
    String description, notes;
    Long mode = 0, pageCount = 0;
    bool knownVersion = false;
    const bool good = EachAttribute(root, [&](const Name& name, std::string_view value) {
      if (name.text == "version") return knownVersion = value == kVersion;
      if (name.text == "description") return Parse(value, description);
      if (name.text == "notes") return Parse(value, notes);
      if (name.text == "mode") return Parse(value, mode);
      if (name.text == "pageCount") return Parse(value, pageCount);
      return false;
    });
    lmf_.Description(std::move(description));
    lmf_.Notes(std::move(notes));
    lmf_.Mode(mode);
    lmf_.PageCount(pageCount);
    return good && knownVersion;
  }

  bool ReadObjectives(const IXMLDOMNode& node) {
    const Ref<clsLmfObjectives> objectives = lmf_.Objectives();
    return HasNoAttributes(node) &&
           EachChild(node, "objective",
                     [&](const IXMLDOMNode& child) { return ReadObjective(child, *objectives); }) &&
           objectives->HasBuiltIn();
  }

  bool ReadObjective(const IXMLDOMNode& node, clsLmfObjectives& objectives) {
    String text;
    TaggedValue key = Missing;
    const bool good = EachAttribute(node, [&](const Name& name, std::string_view value) {
      if (name.text == "text") return Parse(value, text);
      String keyText;
      if (name.text != "key" || !Parse(value, keyText)) return false;
      key = std::move(keyText);
      return true;
    });
    if (!good || node.FirstChild()) return false;
    if (!objectives.HasBuiltIn()) {
      objectives.AddBuiltIn();
      objectives.Item(1)->Text(std::move(text));
      return key.IsMissing();
    }
    if (!key.IsMissing() && objectives.Exists(key)) return false;
    auto objective = New<clsLmfObjective>();
    objective->Text(std::move(text));
    objectives.Add(std::move(objective), key);
    return true;
  }

  bool ReadQuestions(const IXMLDOMNode& node) {
    const Ref<clsLmfQuestions> questions = lmf_.Questions();
    return HasNoAttributes(node) && EachChild(node, "question", [&](const IXMLDOMNode& child) {
             auto question = New<clsLmfQuestion>();
             questions->Add(question);
             return ReadQuestion(child, *question);
           });
  }

  bool ReadQuestion(const IXMLDOMNode& node, clsLmfQuestion& question) {
    return !node.FirstChild() && EachAttribute(node, [&](const Name& name, std::string_view value) {
      if (name.column == nullptr) return false;
      return std::visit([&](const auto& member) { return Set(question, member, value); }, name.column->member);
    });
  }

  template <class T>
  static bool Set(clsLmfQuestion& question, const Property<T>& property, std::string_view text) {
    T value{};
    if (!Parse(text, value)) return false;
    (question.*property.let)(std::move(value));
    return true;
  }
  template <class T>
  static bool Set(clsLmfQuestion& question, const List<T>& list, std::string_view text) {
    return Parse(text, *(question.*list.get)());
  }

  bool ReadVersions(const IXMLDOMNode& node) {
    const Ref<clsLmfVersions> versions = lmf_.Versions();
    const bool good = EachAttribute(node, [&](const Name& name, std::string_view value) {
      if (name.text == "names") return Parse(value, *versions->VersionNames());
      Long question = 0;
      if (name.text != "sequenceQuestion" || !Parse(value, question)) return false;
      versions->SequenceQuestion(question);
      return true;
    });
    return good && EachChild(node, "sequence", [&](const IXMLDOMNode& child) {
             auto sequence = New<clsLmfSequence>();
             versions->Sequences()->Add(sequence);
             return HasNoAttributes(child) && HasTextOnly(child) && Parse(child.Utf8(), *sequence);
           });
  }

  clsLmf& lmf_;
  std::vector<Name> names_;  // by their number in the document
};

// The checksum that a file ends with, and of how many bytes before it.
struct Checksum {
  std::uint32_t crc;
  std::int64_t size;
};

enum class Tail { kWithout, kChecksum, kDamaged };

// Looks at the end of the file alone. A file without a checksum was not written by this library, or has lost its
// end.
Tail ReadTail(InputFile& file, Checksum& checksum) {
  std::array<char, kCheckBegin.size() + kCheckDigits + kCheckEnd.size()> bytes;
  checksum.size = file.Size() - static_cast<std::int64_t>(bytes.size());
  if (checksum.size < 0 || file.ReadAt(checksum.size, bytes.data(), bytes.size()) < bytes.size())
    return Tail::kWithout;
  const std::string_view tail(bytes.data(), bytes.size());
  if (!tail.starts_with(kCheckBegin) || !tail.ends_with(kCheckEnd)) return Tail::kWithout;
  const char* const digits = bytes.data() + kCheckBegin.size();
  const auto [end, error] = std::from_chars(digits, digits + kCheckDigits, checksum.crc, 16);
  return error == std::errc() && end == digits + kCheckDigits ? Tail::kChecksum : Tail::kDamaged;
}

// The CRC of the first bytes of a file.
class CrcOfFirst {
 public:
  explicit CrcOfFirst(std::int64_t size) : left_(size) {}

  void Pass(std::string_view bytes) {
    const std::string_view part =
        bytes.substr(0, static_cast<std::size_t>(std::min<std::int64_t>(left_, 1 << 30)));
    crc_ = Crc32(crc_, part);
    left_ -= static_cast<std::int64_t>(part.size());
  }
  bool Is(std::uint32_t crc) const { return left_ == 0 && crc_ == crc; }

 private:
  std::int64_t left_;
  std::uint32_t crc_ = 0;
};

}  // namespace
}  // namespace lmf_file

// The checksum is compared with the very bytes that are parsed, whatever happens to the file in the meantime.
bool ReadLmf(const String& sPath, clsLmf& oLmf) {
  using namespace lmf_file;
  InputFile file(sPath);
  Checksum checksum{};
  const Tail tail = ReadTail(file, checksum);
  if (tail == Tail::kDamaged) return false;
  const bool hasCheck = tail == Tail::kChecksum;
  CrcOfFirst crc(hasCheck ? checksum.size : 0);

  DOMDocument document;
  if (!XmlReader::Load(document, std::move(file), [&](std::string_view bytes) { crc.Pass(bytes); })) return false;
  if (hasCheck && !crc.Is(checksum.crc)) return false;
  const IXMLDOMNode root = document.selectSingleNode(u"lmf");
  return root && Reader(oLmf).Read(root, hasCheck);
}

}  // namespace TORVA35
