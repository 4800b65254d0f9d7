#include "torva35/platform/CharacterConverter.h"

#include <iconv.h>
#include <strings.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace TORVA35 {
namespace {

// NOLINTNEXTLINE(performance-no-int-to-ptr): that is how it fails.
const iconv_t kFailed = reinterpret_cast<iconv_t>(-1);
constexpr std::size_t kError = static_cast<std::size_t>(-1);

// Its vowels stand before the letter that they follow in Unicode.
constexpr const char* kOwnOrder = "TSCII";

}  // namespace

CharacterConverter::CharacterConverter(const std::string& encoding) {
  if (strcasecmp(encoding.c_str(), kOwnOrder) == 0) return;
  const iconv_t converter = iconv_open("UTF-32LE", encoding.c_str());
  if (converter == kFailed) return;
  converter_ = converter;
  // musl 1.2 takes characters of four bytes for others.
  std::u32string face;
  if (strcasecmp(encoding.c_str(), "GB18030") == 0 &&
      (Convert("\x94\x39\xFC\x36", face) != Outcome::kConverted || face != U"\U0001F600")) {
    iconv_close(converter);
    converter_ = nullptr;
  }
}

CharacterConverter::~CharacterConverter() {
  if (converter_ != nullptr) iconv_close(converter_);
}

CharacterConverter::Outcome CharacterConverter::Convert(std::string_view bytes, std::u32string& characters) {
  std::array<char, std::size_t{8} * 4> out;
  char* from = const_cast<char*>(bytes.data());
  char* to = out.data();
  std::size_t fromLeft = bytes.size();
  std::size_t toLeft = out.size();
  iconv(converter_, nullptr, nullptr, nullptr, nullptr);
  if (iconv(converter_, &from, &fromLeft, &to, &toLeft) == kError) {
    return errno == EINVAL ? Outcome::kIncomplete : Outcome::kInvalid;
  }
  // A letter that may join a following accent is held back until it is asked for.
  if (iconv(converter_, nullptr, nullptr, &to, &toLeft) == kError) return Outcome::kInvalid;
  characters.clear();
  for (const char* code = out.data(); code != to; code += 4) {
    const auto byte = [&](int i) { return static_cast<char32_t>(static_cast<unsigned char>(code[i])); };
    characters.push_back(byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24);
  }
  // What gives nothing has only changed how later bytes are read.
  return characters.empty() ? Outcome::kInvalid : Outcome::kConverted;
}

}  // namespace TORVA35
