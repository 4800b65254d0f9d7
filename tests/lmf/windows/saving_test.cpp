// Saves under long names, beside others who use the file, and by processes that are ended.

#include <gtest/gtest.h>
#include <windows.h>

// After the system's header, on which it relies.
#include <sddl.h>

#include <cstdlib>
#include <optional>

#include "tests/TempFile.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/platform/FileReplacement.h"

namespace TORVA35 {
namespace {

class Saving : public testing::Test {
 protected:
  Saving() {
    EXPECT_TRUE(Save(path));
    old = BytesOf(path);
    lmf.Notes(String(200'000, u'x'));
  }
  bool Save(const std::string& to) const { return lmf.Save(FromUtf8(to)); }
  void ExpectRefused(const char* why) {
    EXPECT_FALSE(Save(path)) << why;
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.lmf"}) << why;
  }
  // As another program has the file open that allows others this.
  HANDLE Open(DWORD shared) const {
    return CreateFileA(path.c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0, nullptr);
  }

  const Folder folder;
  const std::string path = folder.File("a.lmf");
  clsLmf lmf;
  std::string old;
};

// Relative to a drive, and longer than programs of old take.
TEST_F(Saving, TakesNamesOfEveryKind) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path);
  EXPECT_TRUE(Save(folder.path.substr(0, 2) + "ofdrive.lmf"));
  std::filesystem::current_path(before);
  EXPECT_EQ(folder.Names().size(), 2u);

  std::wstring deep = L"\\\\?\\" + std::filesystem::path(folder.path).wstring();
  std::vector<std::wstring> folders;
  for (int i = 0; i < 5; ++i) {
    deep += L"\\" + std::wstring(60, L'd');
    folders.push_back(deep);
    ASSERT_NE(CreateDirectoryW(deep.c_str(), nullptr), 0);
  }
  const String plain = String(deep.begin() + 4, deep.end()) + u"\\Prüfung 试验 🎓.lmf";
  EXPECT_TRUE(lmf.Save(plain) && lmf.Save(plain) && clsLmf().Open(plain));
  EXPECT_NE(DeleteFileW((deep + L"\\Prüfung 试验 🎓.lmf").c_str()), 0);
  for (; !folders.empty(); folders.pop_back()) EXPECT_NE(RemoveDirectoryW(folders.back().c_str()), 0);
}

TEST_F(Saving, IsRefusedWhereOthersKeepTheFile) {
  for (const DWORD shared : {DWORD{0}, DWORD{FILE_SHARE_READ}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}}) {
    const HANDLE other = Open(shared);
    ExpectRefused("open elsewhere");
    CloseHandle(other);
    EXPECT_EQ(BytesOf(path), old);
  }
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
  ExpectRefused("read-only");
  EXPECT_EQ(BytesOf(path), old);
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_FALSE(Save("NUL") || Save(folder.File("a*b")));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.lmf"});
}

// Another reader goes on with what it has open.
TEST_F(Saving, DoesNotDisturbAReader) {
  const HANDLE reader = Open(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
  EXPECT_TRUE(Save(path));
  std::string seen(old.size() + 100, '\0');
  DWORD count = 0;
  EXPECT_NE(ReadFile(reader, seen.data(), static_cast<DWORD>(seen.size()), &count, nullptr), 0);
  EXPECT_EQ(seen.substr(0, count), old);
  CloseHandle(reader);
  EXPECT_GT(BytesOf(path).size(), 200'000u);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.lmf"});
}

// What the file lets whom do, as text.
std::string Rights(const std::string& path) {
  char descriptor[4096];
  DWORD size = 0;
  char* text = nullptr;
  if (GetFileSecurityA(path.c_str(), DACL_SECURITY_INFORMATION, descriptor, sizeof descriptor, &size) == 0 ||
      ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION,
                                                           &text, nullptr) == 0) {
    return "unknown";
  }
  const std::string rights = text;
  LocalFree(text);
  return rights;
}

TEST_F(Saving, KeepsAttributesAndAccessRights) {
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN);
  PSECURITY_DESCRIPTOR narrow = nullptr;
  ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorA("D:P(A;;FA;;;CO)(A;;FA;;;BA)(A;;FA;;;SY)",
                                                                 SDDL_REVISION_1, &narrow, nullptr),
            0);
  SetFileSecurityA(path.c_str(), DACL_SECURITY_INFORMATION, narrow);
  LocalFree(narrow);
  const std::string before = Rights(path);
  EXPECT_NE(before, "unknown");
  ASSERT_TRUE(Save(path));
  EXPECT_EQ(Rights(path), before);
  EXPECT_NE(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

// The child runs the test from its beginning, and is told the file.
TEST(KilledSave, IsClearedAwayByTheNextOne) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  constexpr const char* kFile = "TORVA35_TEST_FILE";
  const char* const ofParent = std::getenv(kFile);
  std::optional<Folder> folder;
  if (ofParent == nullptr) folder.emplace();
  const String path = FromUtf8(ofParent != nullptr ? ofParent : folder->File("a.lmf"));
  const clsLmf lmf;
  EXPECT_TRUE(ofParent != nullptr || lmf.Save(path));
  SetEnvironmentVariableA(kFile, ToUtf8(path).c_str());
  EXPECT_EXIT(
      {
        FileReplacement half(path);
        half.Write("half");
        TerminateProcess(GetCurrentProcess(), 9);
      },
      testing::ExitedWithCode(9), "");
  SetEnvironmentVariableA(kFile, nullptr);
  EXPECT_EQ(folder->Names().size(), 2u);
  EXPECT_TRUE(clsLmf().Open(path));
  EXPECT_TRUE(lmf.Save(FromUtf8(folder->File("b.lmf"))));
  EXPECT_EQ(folder->Names().size(), 3u);  // that of another file is not touched
  EXPECT_TRUE(lmf.Save(path));
  EXPECT_EQ(folder->Names().size(), 2u);
}

}  // namespace
}  // namespace TORVA35
