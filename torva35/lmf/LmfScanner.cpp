#include <algorithm>
#include <string>

#include "torva35/base/Text.h"
#include "torva35/lmf/LmfFile.h"
#include "torva35/platform/InputFile.h"

namespace TORVA35::lmf_file {
namespace {

constexpr std::size_t kReadBytes = 1 << 16;
constexpr std::size_t kLongestLineBytes = 1 << 24;

/// Reads the lines that Save writes. Each holds one tag, or a text between two; what a line may hold is a part of
/// what XML allows there, and means the same. At anything else it gives up.
class Scanner {
 public:
  explicit Scanner(const TakeElement& take) : take_(take) {}

  bool Read(std::string_view line) {
    if (isFirst_) return isFirst_ = false, line == kDeclaration;
    if (line.size() < 2 || line[0] != '<' || !IsPrintable(line)) return false;
    if (line[1] == '/') return Close(line);
    rest_ = line.substr(1);
    hasTags_ = rest_.find('<') != rest_.npos;
    hasReferences_ = rest_.find('&') != rest_.npos;
    decoded_.clear();
    decoded_.reserve(line.size());  // the values that refer to it stay where they are
    element_.attributes.clear();
    element_.text.reset();
    element_.name = Next(rest_.find_first_of(" />"));
    while (rest_.starts_with(' ')) {
      if (!ReadAttribute()) return false;
    }
    if (rest_ == ">") {
      if (!Take()) return false;
      open_.emplace_back(element_.name);
      return true;
    }
    if (open_.empty()) return false;  // the root holds all others
    return (rest_ == "/>" || ReadText()) && Take();
  }

  /// Whether the root alone is still open, as it is before the checksum.
  bool IsAtCheck() const { return open_.size() == 1; }

 private:
  // Whether it has no control characters: XML reads a tab or a carriage return as something else.
  bool IsPrintable(std::string_view line) {
    // A loop that compilers turn into one over many bytes at a time.
    unsigned char least = 0xFF, greatest = 0;
    for (const char character : line) {
      const auto byte = static_cast<unsigned char>(character);
      least = std::min(least, byte);
      greatest = std::max(greatest, byte);
    }
    isAscii_ = greatest < 0x80;
    return least >= 0x20;
  }

  // XML has no U+FFFE and U+FFFF.
  static bool AreCharacters(std::string_view value) {
    return IsUtf8(value) && value.find("\xEF\xBF\xBE") == value.npos && value.find("\xEF\xBF\xBF") == value.npos;
  }

  // Takes this many bytes off what is left of the line.
  std::string_view Next(std::size_t size) {
    const std::string_view next = rest_.substr(0, size);
    rest_.remove_prefix(next.size());
    return next;
  }

  bool ReadAttribute() {
    rest_.remove_prefix(1);
    const std::string_view name = Next(rest_.find('='));
    if (!rest_.starts_with("=\"")) return false;
    rest_.remove_prefix(2);
    std::string_view value = Next(rest_.find('"'));
    if (rest_.empty() || (hasTags_ && value.find('<') != value.npos)) return false;
    rest_.remove_prefix(1);
    if (!isAscii_ && !AreCharacters(value)) return false;
    if (hasReferences_ && !Decode(value)) return false;
    const auto isSame = [&](const Attribute& other) { return other.name == name; };
    if (std::any_of(element_.attributes.begin(), element_.attributes.end(), isSame)) return false;
    element_.attributes.push_back({name, value});
    return true;
  }

  bool Decode(std::string_view& value) {
    const std::size_t begin = decoded_.size();
    for (std::string_view left = value; !left.empty();) {
      const std::size_t plain = std::min(left.find('&'), left.size());
      decoded_ += left.substr(0, plain);
      left.remove_prefix(plain);
      if (left.empty()) break;
      const auto* reference = std::find_if(std::begin(kReferences), std::end(kReferences),
                                           [&](const Reference& one) { return left.starts_with(one.text); });
      if (reference == std::end(kReferences)) return false;
      decoded_ += reference->character;
      left.remove_prefix(reference->text.size());
    }
    value = std::string_view(decoded_).substr(begin);
    return true;
  }

  bool ReadText() {
    if (!rest_.starts_with('>')) return false;
    rest_.remove_prefix(1);
    element_.text = Next(rest_.find('<'));
    const bool isClosed =
        rest_.starts_with("</") && rest_.ends_with('>') && rest_.substr(2, rest_.size() - 3) == element_.name;
    if (element_.text->empty()) element_.text.reset();
    return isClosed && !hasReferences_;
  }

  bool Close(std::string_view line) {
    // The root is closed after the checksum.
    if (open_.size() < 2 || !line.ends_with('>') || line.substr(2, line.size() - 3) != open_.back()) return false;
    open_.pop_back();
    return true;
  }

  bool Take() { return take_(element_, static_cast<int>(open_.size())); }

  static constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
  struct Reference {
    std::string_view text;
    char character;
  };
  static constexpr Reference kReferences[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&quot;", '"'}};

  const TakeElement& take_;
  bool isFirst_ = true;
  std::vector<std::string> open_;  // the names from the root down
  // Of one line:
  std::string_view rest_;
  bool isAscii_ = true;
  bool hasTags_ = false;
  bool hasReferences_ = false;
  std::string decoded_;
  Element element_;
};

}  // namespace

bool ScanLmf(InputFile& file, std::int64_t size, const ReadListener& listener, const TakeElement& take) {
  Scanner scanner(take);
  std::string buffer(kReadBytes, '\0');
  std::size_t kept = 0;
  for (std::int64_t offset = 0; offset < size;) {
    if (kept == buffer.size()) {
      if (kept >= kLongestLineBytes) return false;
      buffer.resize(2 * kept);
    }
    const auto wanted =
        static_cast<std::size_t>(std::min(static_cast<std::int64_t>(buffer.size() - kept), size - offset));
    if (file.ReadAt(offset, buffer.data() + kept, wanted) < wanted) return false;
    listener(std::string_view(buffer).substr(kept, wanted));
    offset += static_cast<std::int64_t>(wanted);
    std::string_view left = std::string_view(buffer).substr(0, kept + wanted);
    for (std::size_t end; (end = left.find('\n')) != left.npos; left.remove_prefix(end + 1)) {
      if (!scanner.Read(left.substr(0, end))) return false;
    }
    kept = left.size();
    std::char_traits<char>::move(buffer.data(), left.data(), kept);  // it may overlap its new place
  }
  return kept == 0 && scanner.IsAtCheck() && take({"check", {}, {}}, 1);
}

}  // namespace TORVA35::lmf_file
