#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <iterator>
#include <string>
#include <typeinfo>
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
  strings.Reserve(static_cast<Long>(std::min<std::ptrdiff_t>(std::count(text.begin(), text.end(), '|'), 1000)));
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

/// Takes the elements of a file, strictly: a file with anything that the format does not know is refused.
class Reader {
 public:
  Reader(clsLmf& lmf, bool hasCheck) : lmf_(lmf), hasCheck_(hasCheck) {}

  /// The next element in the order of the file, and inside how many others it stands. False when it is refused.
  bool Take(const Element& element, int depth) {
    if (depth == 0) return ReadRoot(element);
    if (depth == 1) return BeginPart(element);
    return depth == 2 && element.name == part_->row && (this->*part_->read)(element);
  }
  /// Whether nothing is missing.
  bool IsWhole() const { return part_ == &kParts[hasCheck_ ? 3 : 2]; }

 private:
  // What the root holds, and each of these in turn; they follow each other in this order.
  struct Part {
    std::string_view name;
    bool (Reader::*begin)(const Element&);
    std::string_view row;
    bool (Reader::*read)(const Element&);
  };
  static const Part kParts[4];

  /// Calls read(name, value) for each attribute, until one gives False.
  template <class Read>
  static bool EachAttribute(const Element& element, Read read) {
    return std::all_of(element.attributes.begin(), element.attributes.end(),
                       [&](const Attribute& attribute) { return read(attribute.name, attribute.value); });
  }

  bool ReadRoot(const Element& root) {
    String description, notes;
    Long mode = 0, pageCount = 0;
    bool knownVersion = false;
    const bool good = EachAttribute(root, [&](std::string_view name, std::string_view value) {
      if (name == "version") return knownVersion = value == kVersion;
      if (name == "description") return Parse(value, description);
      if (name == "notes") return Parse(value, notes);
      if (name == "mode") return Parse(value, mode);
      if (name == "pageCount") return Parse(value, pageCount);
      return false;
    });
    lmf_.Description(std::move(description));
    lmf_.Notes(std::move(notes));
    lmf_.Mode(mode);
    lmf_.PageCount(pageCount);
    return good && knownVersion && root.name == "lmf" && !root.text;
  }

  bool BeginPart(const Element& element) {
    part_ = part_ == nullptr ? kParts : part_ + 1;
    return part_ != std::end(kParts) && element.name == part_->name && !element.text &&
           (this->*part_->begin)(element);
  }

  bool BeginObjectives(const Element& element) {
    objectives_ = lmf_.Objectives();
    return element.attributes.empty();
  }

  bool ReadObjective(const Element& element) {
    String text;
    TaggedValue key = Missing;
    const bool good = EachAttribute(element, [&](std::string_view name, std::string_view value) {
      if (name == "text") return Parse(value, text);
      String keyText;
      if (name != "key" || !Parse(value, keyText)) return false;
      key = std::move(keyText);
      return true;
    });
    if (!good || element.text) return false;
    if (!objectives_->HasBuiltIn()) {
      objectives_->AddBuiltIn();
      objectives_->Item(1)->Text(std::move(text));
      return key.IsMissing();
    }
    if (!key.IsMissing() && objectives_->Exists(key)) return false;
    auto objective = New<clsLmfObjective>();
    objective->Text(std::move(text));
    objectives_->Add(std::move(objective), key);
    return true;
  }

  bool BeginQuestions(const Element& element) {
    if (!objectives_->HasBuiltIn()) return false;
    questions_ = lmf_.Questions();
    return element.attributes.empty();
  }

  bool ReadQuestion(const Element& element) {
    const auto question = New<clsLmfQuestion>();
    questions_->Add(question);
    // Save writes them in the order of the columns.
    const Column* column = std::begin(kColumns);
    return !element.text && EachAttribute(element, [&](std::string_view name, std::string_view value) {
      const auto named = [&](const Column& one) { return one.name == name; };
      column = std::find_if(column, std::end(kColumns), named);
      if (column == std::end(kColumns)) column = std::find_if(std::begin(kColumns), column, named);
      if (column == std::end(kColumns)) return false;
      return std::visit([&](const auto& member) { return Set(*question, member, value); }, column->member);
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

  bool BeginVersions(const Element& element) {
    versions_ = lmf_.Versions();
    return EachAttribute(element, [&](std::string_view name, std::string_view value) {
      if (name == "names") return Parse(value, *versions_->VersionNames());
      Long question = 0;
      if (name != "sequenceQuestion" || !Parse(value, question)) return false;
      versions_->SequenceQuestion(question);
      return true;
    });
  }

  bool ReadSequence(const Element& element) {
    const auto sequence = New<clsLmfSequence>();
    versions_->Sequences()->Add(sequence);
    return element.attributes.empty() && Parse(element.text.value_or(""), *sequence);
  }

  // That it is right was seen when the file was read.
  bool BeginCheck(const Element&) { return hasCheck_; }
  bool RefuseRow(const Element&) { return false; }

  clsLmf& lmf_;
  const bool hasCheck_;  // the checksum at the end of the file was found to be right
  const Part* part_ = nullptr;
  Ref<clsLmfObjectives> objectives_;
  Ref<clsLmfQuestions> questions_;
  Ref<clsLmfVersions> versions_;
};

constexpr Reader::Part Reader::kParts[] = {
    {"objectives", &Reader::BeginObjectives, "objective", &Reader::ReadObjective},
    {"questions", &Reader::BeginQuestions, "question", &Reader::ReadQuestion},
    {"versions", &Reader::BeginVersions, "sequence", &Reader::ReadSequence},
    {"check", &Reader::BeginCheck, "", &Reader::RefuseRow},
};

/// Shows a reader the elements of a tree.
class Walk {
 public:
  Walk(Reader& reader, const IXMLDOMNode& root) : reader_(reader), names_(root.NameCount() + 1) {}

  bool Take(const IXMLDOMNode& node, int depth = 0) {
    const IXMLDOMNode first = node.FirstChild();
    const bool hasText = first && first.NameId() == 0 && !first.NextSibling();
    Element element{NameOf(node), {}, {}};
    const IXMLDOMNamedNodeMap attributes = node.get_attributes();
    for (Long i = 0; i < attributes.get_length(); ++i) {
      const IXMLDOMNode attribute = attributes.get_item(i);
      element.attributes.push_back({NameOf(attribute), attribute.Utf8()});
    }
    if (hasText) element.text = first.Utf8();
    if (!reader_.Take(element, depth)) return false;
    if (hasText) return true;
    for (IXMLDOMNode child = first; child; child = child.NextSibling()) {
      // No element of the format holds texts beside elements, and none is deeper.
      if (child.NameId() == 0 || depth == 2 || !Take(child, depth + 1)) return false;
    }
    return true;
  }

 private:
  // Each name of the document is converted once.
  std::string_view NameOf(const IXMLDOMNode& node) {
    std::string& name = names_[node.NameId()];
    if (name.empty()) name = ToUtf8(node.get_nodeName());
    return name;
  }

  Reader& reader_;
  std::vector<std::string> names_;  // by their number in the document
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

// The checksum is compared with the very bytes that are read, whatever happens to the file in the meantime.
bool ReadLmf(const String& sPath, clsLmf& oLmf) {
  using namespace lmf_file;
  InputFile file(sPath);
  Checksum checksum{};
  const Tail tail = ReadTail(file, checksum);
  if (tail == Tail::kDamaged) return false;
  const bool hasCheck = tail == Tail::kChecksum;
  // A host's own parts see each element once.
  if (hasCheck && typeid(oLmf) == typeid(clsLmf) && file.Size() <= XmlReader::kLargestFileBytes) {
    CrcOfFirst crc(checksum.size);
    Reader reader(oLmf, hasCheck);
    const auto pass = [&](std::string_view bytes) { crc.Pass(bytes); };
    const auto take = [&](const Element& element, int depth) { return reader.Take(element, depth); };
    if (ScanLmf(file, checksum.size, pass, take) && reader.IsWhole() && crc.Is(checksum.crc)) return true;
    oLmf.Clear();
  }

  CrcOfFirst crc(hasCheck ? checksum.size : 0);
  DOMDocument document;
  if (!XmlReader::Load(document, std::move(file), [&](std::string_view bytes) { crc.Pass(bytes); })) return false;
  if (hasCheck && !crc.Is(checksum.crc)) return false;
  Reader reader(oLmf, hasCheck);
  return Walk(reader, document.Root()).Take(document.Root()) && reader.IsWhole();
}

}  // namespace TORVA35
