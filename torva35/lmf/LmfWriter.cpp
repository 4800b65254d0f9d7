#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstdio>
#include <optional>
#include <string>
#include <typeinfo>
#include <utility>

#include "torva35/base/Numbers.h"
#include "torva35/base/Text.h"
#include "torva35/lmf/LmfFile.h"
#include "torva35/platform/FileReplacement.h"

namespace TORVA35 {
namespace lmf_file {
namespace {

constexpr std::size_t kBufferBytes = 1 << 16;

bool IsLead(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsTrail(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendEscaped(std::string& out, char16_t unit) {
  char escaped[7];
  std::snprintf(escaped, sizeof(escaped), "\\u%04X", static_cast<unsigned>(unit));
  out += escaped;
}

// What stands for a character of ASCII that an attribute cannot hold as it is; nothing for all others.
constexpr std::string_view Replaced(char16_t unit) {
  switch (unit) {
    case u'&':
      return "&amp;";
    case u'<':
      return "&lt;";
    case u'"':
      return "&quot;";
    case u'\\':
      return "\\\\";
    default:
      return {};
  }
}

// Which units stand in an attribute as they are, by their number.
constexpr std::array<bool, 0x80> PlainUnits() {
  std::array<bool, 0x80> plain{};
  for (std::size_t unit = 0x20; unit < plain.size(); ++unit) {
    plain[unit] = Replaced(static_cast<char16_t>(unit)).empty();
  }
  return plain;
}

constexpr std::array<bool, 0x80> kIsPlain = PlainUnits();

/// Appends the text in the form in which an attribute holds it. inList: it is an entry of a list.
void AppendText(std::string& out, StringView text, bool inList) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    // Most texts are plain, and go over in one piece.
    const std::size_t begin = i;
    while (i < text.size() && text[i] < kIsPlain.size() && kIsPlain[text[i]] && (text[i] != u'|' || !inList)) ++i;
    out.resize(out.size() + i - begin);
    std::copy_backward(text.begin() + begin, text.begin() + i, out.end());
    if (i == text.size()) return;
    const char16_t unit = text[i];
    const bool pair = IsLead(unit) && i + 1 < text.size() && IsTrail(text[i + 1]);
    if (const std::string_view replaced = Replaced(unit); !replaced.empty()) {
      out += replaced;
    } else if (pair) {
      out += ToUtf8(text.substr(i++, 2));
    } else if (unit < 0x20 || unit == u'|' || IsLead(unit) || IsTrail(unit) || unit >= 0xFFFE) {
      AppendEscaped(out, unit);
    } else {
      out += ToUtf8(text.substr(i, 1));
    }
  }
}

class Writer {
 public:
  explicit Writer(const String& path) : file_(path) { buffer_.reserve(2 * kBufferBytes); }

  bool Write(const clsLmf& lmf) {
    buffer_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<lmf version=\"";
    buffer_ += kVersion;
    buffer_ += '"';
    Attribute("description", lmf.Description());
    Attribute("notes", lmf.Notes());
    Attribute("mode", lmf.Mode());
    Attribute("pageCount", lmf.PageCount());
    buffer_ += ">\n";
    WriteObjectives(*lmf.Objectives());
    WriteQuestions(*lmf.Questions());
    WriteVersions(*lmf.Versions());
    WriteCheck();
    return file_.Commit();
  }

 private:
  void WriteObjectives(const clsLmfObjectives& objectives) {
    buffer_ += "<objectives>\n";
    flagsBefore_ = HasBuiltIn(objectives) ? 0 : 1;
    if (flagsBefore_ > 0) {
      clsLmfObjectives builtIn;
      builtIn.AddBuiltIn();
      WriteObjective(builtIn, 1);
    }
    for (Long i = 1; i <= objectives.Count(); ++i) WriteObjective(objectives, i);
    buffer_ += "</objectives>\n";
  }

  void WriteObjective(const clsLmfObjectives& objectives, Long position) {
    buffer_ += "<objective";
    Attribute("text", objectives.Item(position)->Text());
    // An empty key is a key, too.
    if (const auto key = KeyOf(objectives, position)) {
      Begin("key");
      AppendText(buffer_, *key, false);
      buffer_ += '"';
    }
    buffer_ += "/>\n";
    FlushFull();
  }

  // A host's own list is asked for what it says of itself, and not for what ours would have noted.
  static bool IsHosts(const clsLmfObjectives& objectives) {
    return typeid(objectives) != typeid(clsLmfObjectives);
  }

  static bool HasBuiltIn(const clsLmfObjectives& objectives) {
    if (!IsHosts(objectives)) return objectives.HasBuiltIn();
    return objectives.Count() > 0 && !KeyOf(objectives, 1) && objectives.Item(1)->Text() == u"(All Questions)";
  }

  static std::optional<String> KeyOf(const clsLmfObjectives& objectives, Long position) {
    if (!IsHosts(objectives)) return objectives.KeyOf(position);
    // A merge gives each its text as key.
    String text = objectives.Item(position)->Text();
    return objectives.Exists(text) ? std::optional<String>(std::move(text)) : std::nullopt;
  }

  void WriteQuestions(const clsLmfQuestions& questions) {
    buffer_ += "<questions>\n";
    for (Long i = 1; i <= questions.Count(); ++i) {
      const Ref<clsLmfQuestion> question = questions.Item(i);
      buffer_ += "<question";
      for (const Column& column : kColumns) {
        std::visit([&](const auto& member) { Member(column.name, member, *question); }, column.member);
      }
      buffer_ += "/>\n";
      FlushFull();
    }
    buffer_ += "</questions>\n";
  }

  void WriteVersions(const clsLmfVersions& versions) {
    buffer_ += "<versions";
    Attribute("sequenceQuestion", versions.SequenceQuestion());
    Attribute("names", *versions.VersionNames());
    buffer_ += ">\n";
    const Ref<clsLmfSequences> sequences = versions.Sequences();
    for (Long i = 1; i <= sequences->Count(); ++i) {
      const Ref<clsLmfSequence> sequence = sequences->Item(i);
      buffer_ += "<sequence>";
      for (Long k = 1; k <= sequence->Count(); ++k) {
        if (k > 1) buffer_ += ' ';
        AppendNumber(sequence->Item(k));
        FlushFull();
      }
      buffer_ += "</sequence>\n";
    }
    buffer_ += "</versions>\n";
  }

  void WriteCheck() {
    Flush();
    char digits[kCheckDigits + 1];
    std::snprintf(digits, sizeof(digits), "%08x", static_cast<unsigned>(crc_));
    buffer_ += kCheckBegin;
    buffer_ += digits;
    buffer_ += kCheckEnd;
    Flush();
  }

  template <class T>
  void Member(std::string_view name, const Property<T>& property, const clsLmfQuestion& question) {
    Attribute(name, (question.*property.get)());
  }
  template <class T>
  void Member(std::string_view name, const List<T>& list, const clsLmfQuestion& question) {
    Attribute(name, *(question.*list.get)());
  }

  // What a fresh object has is left out: the empty text, False, 0 and the empty list.
  void Attribute(std::string_view name, const String& text) {
    if (text.empty()) return;
    Begin(name);
    AppendText(buffer_, text, false);
    buffer_ += '"';
  }
  template <class Number>
  requires std::is_arithmetic_v<Number>
  void Attribute(std::string_view name, Number value) {
    // The sign of a zero counts, too.
    if (value == 0 && !std::signbit(static_cast<Double>(value))) return;
    Begin(name);
    if constexpr (std::is_same_v<Number, bool>) {
      buffer_ += '1';
    } else {
      AppendNumber(value);
    }
    buffer_ += '"';
  }
  void Attribute(std::string_view name, const clsLmfStrings& strings) {
    const Long count = strings.Count();
    if (count == 0) return;
    Begin(name);
    const auto append = [&](const String& entry) {
      AppendText(buffer_, entry, true);
      buffer_ += '|';
    };
    // A host's own list is asked for each entry.
    if (typeid(strings) == typeid(clsLmfStrings)) {
      std::for_each(strings.begin(), strings.end(), append);
    } else {
      for (Long i = 1; i <= count; ++i) append(strings.Item(i));
    }
    buffer_ += '"';
  }
  void Attribute(std::string_view name, const clsLmfObjectiveFlags& flags) {
    if (flags.Count() == 0) return;
    const std::size_t count = static_cast<std::size_t>(flags.Count()) + flagsBefore_;
    Begin(name);
    AppendNumber(count);
    buffer_ += ':';
    std::string digits((count + 3) / 4, '\0');
    const bool hosts = typeid(flags) != typeid(clsLmfObjectiveFlags);
    for (Long i = hosts ? 1 : flags.NextTrue(0); hosts ? i <= flags.Count() : i != 0;
         i = hosts ? i + 1 : flags.NextTrue(i)) {
      if (hosts && !flags.Item(i)->Value()) continue;
      const std::size_t place = static_cast<std::size_t>(i) - 1 + flagsBefore_;
      digits[place / 4] = static_cast<char>(digits[place / 4] | 8 >> place % 4);
    }
    for (const char digit : digits) buffer_ += "0123456789abcdef"[static_cast<unsigned char>(digit)];
    buffer_ += '"';
  }

  void Begin(std::string_view name) {
    buffer_ += ' ';
    buffer_ += name;
    buffer_ += "=\"";
  }

  // A Double in the shortest form that reads back as the same value.
  void AppendNumber(Double value) { AppendShortest(buffer_, value); }
  template <std::integral Number>
  void AppendNumber(Number value) {
    char text[32];
    buffer_.append(text, std::to_chars(text, text + sizeof(text), value).ptr);
  }

  void FlushFull() {
    if (buffer_.size() >= kBufferBytes) Flush();
  }
  void Flush() {
    crc_ = Crc32(crc_, buffer_);
    file_.Write(buffer_);
    buffer_.clear();
  }

  FileReplacement file_;
  std::string buffer_;
  std::uint32_t crc_ = 0;
  std::size_t flagsBefore_ = 0;  // of each question, for a built-in objective that the model lacks
};

}  // namespace

std::uint32_t Crc32(std::uint32_t crc, std::string_view bytes) {
  return static_cast<std::uint32_t>(crc32_z(crc, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

}  // namespace lmf_file

bool WriteLmf(const clsLmf& oLmf, const String& sPath) {
  return lmf_file::Writer(sPath).Write(oLmf);
}

}  // namespace TORVA35
