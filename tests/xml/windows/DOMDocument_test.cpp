// What the system's code pages and files do that others do not.

#include "torva35/xml/DOMDocument.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "tests/TempFile.h"
#include "tests/xml/Shape.h"
#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

TEST(DOMDocument, ACodePageGivesNoCharacterThatItDoesNotHave) {
  // Each of these becomes something when the system is asked.
  for (const char* bytes : {"windows-1252'?><a>\x81", "cp1253'?><a>\xAA", "ISO-8859-3'?><a>\xA5",
                            "ASCII'?><a>\x80", "EUC-JP'?><a>\x8F\xB0\xA1", "Shift_JIS'?><a>\xFD"}) {
    EXPECT_EQ(ShapeOf("<?xml version='1.0' encoding='" + std::string(bytes) + "</a>"), u"refused") << bytes;
  }
  EXPECT_EQ(ShapeOf("<?xml version='1.0' encoding='ISO-8859-1'?><a>\x85</a>"), u"a('\u0085')");
  EXPECT_EQ(ShapeOf("<?xml version='1.0' encoding='cp850'?><a>\x81</a>"), u"a('ü')");
  // Those that would need to know what came before.
  for (const char* name : {"utf-7", "cp65000", "ISO-2022-KR", "cp50220", "HZ-GB-2312", "cp52936", "cp1"}) {
    EXPECT_EQ(ShapeOf("<?xml version='1.0' encoding='" + std::string(name) + "'?><a/>"), u"refused") << name;
  }
}

TEST(DOMDocument, OnlyARegularFileIsRead) {
  const HANDLE pipe =
      CreateNamedPipeW(L"\\\\.\\pipe\\torva35-test", PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 0, 0, 0, nullptr);
  DOMDocument document;
  for (const char16_t* other : {u"NUL", u"\\\\.\\pipe\\torva35-test"}) {
    EXPECT_FALSE(document.load(String(other)));
    EXPECT_EQ(document.parseError().reason, u"not a file that can be read") << ToUtf8(other);
  }
  CloseHandle(pipe);
  EXPECT_FALSE(document.load(String(u"C:\\windows")));
  EXPECT_EQ(document.parseError().reason, u"Is a directory");
  EXPECT_FALSE(document.load(String(u"C:\\none\\a.xml")));
  EXPECT_EQ(document.parseError().reason, u"No such file or directory");

  const TempFile file("<a/>");
  const HANDLE other =
      CreateFileA(ToUtf8(file.Path()).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_FALSE(document.load(file.Path()));
  EXPECT_EQ(document.parseError().reason, u"another program keeps the file to itself");
  CloseHandle(other);
  EXPECT_TRUE(document.load(file.Path()));
}

}  // namespace
}  // namespace TORVA35
