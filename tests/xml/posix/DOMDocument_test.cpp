// Files that are no regular ones, and every page of the system's converter.

#include "torva35/xml/DOMDocument.h"

#include <gtest/gtest.h>
#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "tests/TempFile.h"
#include "tests/xml/Shape.h"
#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

TEST(DOMDocument, CharactersOfMoreThanTwoBytes) {
  SKIP_WITHOUT_ENCODINGS();
  EXPECT_EQ(ShapeOf("<?xml version='1.0' encoding='EUC-JP'?><a>\xC6\xFC\x8F\xB0\xA1</a>"), u"a('日丂')");
  EXPECT_EQ(ShapeOf("<?xml version='1.0' encoding='GB18030'?><a>\xBA\xBA\x81\x30\x84\x36\x94\x39\xFC\x36</a>"),
            u"a('汉¥\U0001F600')");
}

TEST(DOMDocument, OnlyARegularFileIsRead) {
  const TempFile name;
  const std::string path = ToUtf8(name.Path());
  std::remove(path.c_str());
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  DOMDocument document;
  // The pipe would keep its reader for ever.
  for (const String& other : {name.Path(), String(u"/dev/null")}) {
    EXPECT_FALSE(document.load(other));
    EXPECT_EQ(document.parseError().reason, u"not a file that can be read") << ToUtf8(other);
  }
  std::remove(path.c_str());
  ASSERT_TRUE(std::ofstream(path) && truncate(path.c_str(), 20LL << 30) == 0);
  EXPECT_FALSE(document.load(name.Path()));
  EXPECT_EQ(document.parseError().reason, u"file too large");
}

// The system's converter, asked for one text at a time.
class Converter {
 public:
  Converter(const char* to, const std::string& from) : converter_(iconv_open(to, from.c_str())) {}
  ~Converter() { iconv_close(converter_); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  /// Nothing, and errno, for bytes that it refuses.
  std::optional<std::string> operator()(std::string bytes) const {
    std::string out(8 * bytes.size(), '\0');
    char *in = bytes.data(), *to = out.data();
    std::size_t inLeft = bytes.size(), outLeft = out.size();
    iconv(converter_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter_, &in, &inLeft, &to, &outLeft) == static_cast<std::size_t>(-1)) return std::nullopt;
    iconv(converter_, nullptr, nullptr, &to, &outLeft);
    out.resize(out.size() - outLeft);
    return out;
  }

 private:
  const iconv_t converter_;
};

// A page of the system's converter, by its name: whether every byte of it is read as the converter says.
bool CheckPage(const std::string& name) {
  const Converter there("UTF-8", name), back(name.c_str(), "UTF-8");
  const auto begin = back("<?xml version='1.0' encoding='" + name + "'?><a>"), end = back("</a>");
  // Its documents must be able to declare it, in ASCII or in EBCDIC.
  if (!begin || !end || !(begin->starts_with("<?xm") || begin->starts_with("\x4C\x6F\xA7\x94"))) return false;
  std::string bytes, text, others;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    const auto utf8 = there(one);
    if (!utf8 && errno == EINVAL) return false;  // the first byte of several
    const bool isText = utf8 && !utf8->empty() && static_cast<unsigned char>(utf8->front()) >= 0x20;
    if (!isText || *utf8 == "<" || *utf8 == "&") {
      if (!utf8) others += one;
    } else {
      bytes += one;
      text += *utf8;
    }
  }
  EXPECT_EQ(ToUtf8(ShapeOf(*begin + bytes + *end)), "a('" + text + "')") << name;
  // Those that are no character: the first and the last, since each one takes a document of its own.
  for (const std::string& other : {others.substr(0, 1), others.substr(others.empty() ? 0 : others.size() - 1)}) {
    EXPECT_TRUE(other.empty() || ShapeOf(*begin + other + *end) == u"refused") << name << " " << other;
  }
  return true;
}

TEST(DOMDocument, EveryByteOfEverySingleBytePageIsWhatTheConverterSays) {
  SKIP_WITHOUT_ENCODINGS();
  const std::unique_ptr<FILE, int (*)(FILE*)> list(popen("iconv -l", "r"), pclose);
  int pages = 0;
  for (char line[4096]; fgets(line, sizeof(line), list.get()) != nullptr;) {
    std::istringstream names(line);
    for (std::string name; names >> name;) {
      name.resize(std::min(name.find("//"), name.size()));
      // One whose vowels change places, and names that a declaration cannot hold.
      if (name == "TSCII" || name.find_first_of(":/()+,") != name.npos || name.front() < 'A') continue;
      pages += CheckPage(name) ? 1 : 0;
      break;
    }
  }
  EXPECT_GT(pages, 100);
}

}  // namespace
}  // namespace TORVA35
