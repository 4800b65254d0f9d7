// Runs the program as a user of Windows does: names in any language, files that others use, and what is written.

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <torva35/TORVA35.h>

namespace TORVA35 {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct Outcome {
  DWORD exitCode;
  std::string output;  // both streams
};

std::wstring Wide(const String& text) {
  return {text.begin(), text.end()};
}

std::string ReadAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

const std::string kSample = ReadAll(SAMPLES "/sample-test.xml");

// A pipe of which the child gets one end.
struct Pipe {
  explicit Pipe(bool childReads) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    EXPECT_NE(CreatePipe(&read, &write, &inherited, 1 << 20), 0);
    SetHandleInformation(childReads ? write : read, HANDLE_FLAG_INHERIT, 0);
  }
  HANDLE read;
  HANDLE write;
};

Outcome RunProgram(const String& arguments, const std::string& input = {}) {
  const Pipe in(true), out(false);
  DWORD count = 0;
  WriteFile(in.write, input.data(), static_cast<DWORD>(input.size()), &count, nullptr);
  CloseHandle(in.write);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = in.read;
  start.hStdOutput = start.hStdError = out.write;
  std::wstring line = L"\"" + fs::path(TOOL).wstring() + L"\" " + Wide(arguments);
  PROCESS_INFORMATION process{};
  const bool started =
      CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process) != 0;
  CloseHandle(in.read);
  CloseHandle(out.write);
  EXPECT_TRUE(started);
  Outcome outcome{1000, {}};
  std::array<char, 4096> part;
  while (started && ReadFile(out.read, part.data(), part.size(), &count, nullptr) != 0 && count > 0)
    outcome.output.append(part.data(), count);
  CloseHandle(out.read);
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &outcome.exitCode);
  CloseHandle(process.hProcess);
  CloseHandle(process.hThread);
  return outcome;
}

class Tool : public testing::Test {
 protected:
  Tool() { fs::create_directory(folder_); }
  ~Tool() override { fs::remove_all(folder_); }

  String Path(const String& name) const { return folder_.u16string() + u"\\" + name; }
  String Write(const String& name, std::string_view bytes) const {
    std::ofstream(fs::path(Path(name)), std::ios::binary) << bytes;
    return Path(name);
  }
  std::vector<String> Names() const {
    std::vector<String> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename().u16string());
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  const fs::path folder_ = fs::temp_directory_path() / ("tool-" + std::to_string(GetCurrentProcessId()));
};

String Quoted(const String& path) {
  return u"\"" + path + u"\"";
}

TEST_F(Tool, TakesNamesOfAnyLanguageAndWritesUtf8) {
  const String input = Write(u"Prüfung 试验 🎓.xml", kSample);
  const Outcome run = RunProgram(u"-q " + Quoted(input) + u" --title тест --csv " + Quoted(Path(u"ключ.csv")) +
                                 u" --save " + Quoted(Path(u"Ünit 3.lmf")) + u" --html " +
                                 Quoted(Path(u"s.html")) + u" --reader " + Quoted(Path(u"бланк")));
  EXPECT_EQ(run.exitCode, 0u) << run.output;
  EXPECT_EQ(Names(),
            (std::vector<String>{u"Prüfung 试验 🎓.xml", u"s.html", u"Ünit 3.lmf", u"бланк", u"ключ.csv"}));
  EXPECT_THAT(ReadAll(Path(u"s.html")), HasSubstr("тест"));
  EXPECT_THAT(ReadAll(Path(u"ключ.csv")), HasSubstr("\r\nA,8,8,80,mc,F G H J,F,2,"));
  EXPECT_TRUE(fs::is_directory(Path(u"бланк")));
  // What was saved carries on, and its title is the name of the file.
  const Outcome again = RunProgram(u"-q -l " + Quoted(Path(u"Ünit 3.lmf")));
  EXPECT_EQ(again.exitCode, 0u);
  EXPECT_THAT(again.output, HasSubstr("Title:"));
  const Outcome all = RunProgram(Quoted(input));
  EXPECT_THAT(all.output, HasSubstr(ToUtf8(input) + ":125:48: warning: question 8"));
  EXPECT_THAT(all.output, HasSubstr("The sign 河 on a map"));
  const Outcome piped = RunProgram(u"-q --csv - -", kSample);
  EXPECT_EQ(piped.exitCode, 0u) << piped.output;
  EXPECT_THAT(piped.output, HasSubstr("\r\nA,7,7,70,mc,A B C D,B D,2,"));
}

TEST_F(Tool, LosesNothingWhereItCannotWrite) {
  const String input = Write(u"in.xml", kSample);
  const String kept = Write(u"kept.csv", "old"), readOnly = Write(u"locked.csv", "old");
  SetFileAttributesW(Wide(readOnly).c_str(), FILE_ATTRIBUTE_READONLY);
  const HANDLE other =
      CreateFileW(Wide(kept).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  const std::vector<String> before = Names();
  const std::vector<std::pair<String, std::string>> failed = {
      {u"--csv " + readOnly, "locked.csv: may not be written"},
      {u"--json " + Path(u"new.json") + u" --csv " + kept, "kept.csv: "},
      {u"--save " + Path(u"new.lmf") + u" --csv " + kept, "kept.csv: "},
      {u"--html " + Path(u"IN.xml"), "IN.xml: is a file to read, and is not overwritten"},
      {u"--csv " + Path(u"x.csv") + u" --json " + Path(u".\\X.csv"), "X.csv: is"},
  };
  for (const auto& [arguments, reason] : failed) {
    const Outcome run = RunProgram(u"-q " + input + u" " + arguments);
    EXPECT_EQ(run.exitCode, 1u) << ToUtf8(arguments) << run.output;
    EXPECT_THAT(run.output, HasSubstr(reason)) << ToUtf8(arguments);
    EXPECT_EQ(Names(), before) << ToUtf8(arguments);
    EXPECT_EQ(ReadAll(kept), "old");
    EXPECT_EQ(ReadAll(input), kSample);
  }
  CloseHandle(other);
  SetFileAttributesW(Wide(readOnly).c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(RunProgram(u"-q " + input + u" --csv " + kept).exitCode, 0u);
  EXPECT_NE(ReadAll(kept), "old");
}

TEST_F(Tool, SaysInOneLineWhyAFileIsRefused) {
  const std::vector<std::pair<String, std::string>> refused = {
      {Write(u"doc.xml", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"),
       "not XML but an old Word document or another OLE file"},
      {Write(u"ключ.bnk", "\1\2\3"), "not XML but an ExamView question bank: export the test as XML"},
      {Write(u"old.LMF", "<lmf version='0'/>"), "an LMF file that is damaged or of an unknown version"},
      {Path(u"."), "Is a directory"},
      {Path(u"missing.xml"), "No such file or directory"},
      {u"NUL", "not a file that can be read"},
  };
  for (const auto& [file, reason] : refused) {
    const Outcome run = RunProgram(file);
    EXPECT_EQ(run.exitCode, 3u);
    EXPECT_EQ(run.output, ToUtf8(file) + ": error: " + reason + "\n");
  }
  EXPECT_EQ(RunProgram(u"--no-such-option x.xml").exitCode, 2u);
  EXPECT_EQ(RunProgram(u"--help").exitCode, 0u);
}

}  // namespace
}  // namespace TORVA35
