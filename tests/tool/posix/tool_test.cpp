// Runs the program as its user does: the samples, files that it must refuse, and outputs that cannot be written.

#include <gmock/gmock.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include <torva35/TORVA35.h>
#include "tests/TempFile.h"

namespace TORVA35 {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kSample = SAMPLES "/sample-test.xml";
const std::string kVersions = kSample + " " SAMPLES "/sample-test-b.xml " SAMPLES "/sample-test-c.xml";

std::string Sample() {
  std::ifstream file(kSample, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

constexpr int kNoTerminal = -1;

struct Outcome {
  int exitCode;
  std::string output;  // both streams, with each run of blanks as one
};

std::string ReadAll(int file) {
  std::string all;
  std::array<char, 4096> part;
  for (ssize_t count; (count = read(file, part.data(), part.size())) > 0;)
    all.append(part.data(), static_cast<std::size_t>(count));
  return all;
}

std::string OneBlank(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ' || result.empty() || result.back() != ' ') result += c;
  }
  return result;
}

Outcome RunProgram(const std::string& arguments) {
  FILE* pipe = popen(("COLUMNS=0 " TOOL " 2>&1 </dev/null " + arguments).c_str(), "r");
  const std::string output = OneBlank(ReadAll(fileno(pipe)));
  return {WEXITSTATUS(pclose(pipe)), output};
}

// In a terminal in which the user types the given keys.
Outcome RunInTerminal(const std::string& file, const std::string& keys) {
  int terminal = 0;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child < 0) return {kNoTerminal, {}};
  if (child == 0) {
    execl(TOOL, TOOL, file.c_str(), nullptr);
    _exit(127);
  }
  EXPECT_EQ(write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  const std::string output = OneBlank(ReadAll(terminal));
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  return {WEXITSTATUS(status), output};
}

class Tool : public testing::Test {
 protected:
  Tool() { std::filesystem::create_directory(folder_); }
  ~Tool() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  std::string Write(const std::string& name, std::string_view bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
  }
  std::string Read(const std::string& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // All names in the folder, in order.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  const std::string folder_ = testing::TempDir() + "tool-" + std::to_string(getpid());
};

const std::string kWrongKey =
    "<examview><question type='mc' question-id='7'><choices><choice-a>x</choice-a><choice-b>y</choice-b></choices>"
    "<answer>D</answer></question></examview>";

TEST_F(Tool, PrintsAKeyForEachVersionAndTheFindings) {
  const Outcome run = RunProgram(kVersions);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.output,
              HasSubstr("*** Partial Credit *** (" + kSample + ")\nWarning: One or more test questions"));
  EXPECT_THAT(run.output, HasSubstr("(No terminal to ask: OK)"));
  EXPECT_THAT(run.output, HasSubstr("sample-test-c.xml)\nAs for " + kSample + ".\n"));
  EXPECT_THAT(run.output, HasSubstr("Key of version B\n\nRow Bubbles Key Points ID Text\n"));
  EXPECT_THAT(run.output, HasSubstr("\n 4 F G H J K F 2 50 What carries"));
  EXPECT_THAT(run.output, HasSubstr("\n 8 F G H J K G J 2 70 Which two"));
  EXPECT_THAT(run.output, HasSubstr(kSample + ":125:48: warning: question 8: an equation is read as the word"));
  EXPECT_EQ(RunProgram("--strict -q " + kVersions).exitCode, 4);
}

TEST_F(Tool, ListsWhatWasRead) {
  const Outcome run = RunProgram("-lq --objectives learning --objectives State --state oh " + kSample);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.output,
              HasSubstr("Title: Water and Weather, Unit 3\nVersion: A\nOdd scale: A B C D E\nEven scale: F G"));
  EXPECT_THAT(run.output, HasSubstr(" 7 70 mc 4 2 4 2 Clouds; The water cycle; SC.6.4 Which two of"));
  EXPECT_THAT(run.output, HasSubstr("12 120 es 0 1 5 kind Describe"));
  EXPECT_THAT(RunProgram("-l --quiet --odd-only " + kSample).output,
              AllOf(Not(HasSubstr("***")), HasSubstr("Even scale: A B C D E\n"), Not(HasSubstr("Rivers"))));
}

TEST_F(Tool, FitsTheTerminal) {
  FILE* pipe = popen(("COLUMNS=90 " TOOL " -lq " + kSample).c_str(), "r");
  std::istringstream lines(ReadAll(fileno(pipe)));
  pclose(pipe);
  std::size_t longest = 0;
  for (std::string line; std::getline(lines, line);) longest = std::max(longest, FromUtf8(line).size());
  EXPECT_LE(longest, 90U);
  EXPECT_GT(longest, 70U);
}

TEST_F(Tool, AsksInATerminal) {
  const Outcome cancelled = RunInTerminal(kSample, "what\nc\n");
  if (cancelled.exitCode == kNoTerminal) GTEST_SKIP() << "there is no pseudo-terminal to be had";
  EXPECT_EQ(cancelled.exitCode, 3);
  EXPECT_THAT(cancelled.output, AllOf(HasSubstr("[O]K [C]ancel >"), HasSubstr("not read, as you chose")));
  EXPECT_EQ(RunInTerminal(kSample, "ok\n").exitCode, 0);
}

TEST_F(Tool, SaysInOneLineWhyAFileIsRefused) {
  using namespace std::string_view_literals;
  const std::vector<std::pair<std::string, std::string>> refused = {
      {Write("word.xml", "PK\3\4\0\0"sv), "not XML but a ZIP archive or an Office document"},
      {Write("rich.xml", "{\\rtf1 text}"), "not XML but an RTF document"},
      {Write("doc.xml", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"),
       "not XML but an old Word document or another OLE file"},
      {Write("zipped.xml", "\x1F\x8B\x08"), "not XML but a gzip archive"},
      {Write("bank.bnk", "\1\2\3"), "not XML but an ExamView question bank: export the test as XML"},
      {Write("letter.xml", std::string(80, '-') + "\nThe ExamView test of Monday\n"),
       "not XML but a text without any markup"},
      {Write("renamed.xml", "ExamView Test Bank 6.0\r\n"),
       "not XML but an ExamView question bank: export the test as XML"},
      {Write("binary.xml", "\1\2\3"), "not XML but a binary file"},
      {Write("text.xml", "1. What?"), "not XML but a text without any markup"},
      {Write("empty.xml", ""), "not XML but an empty file"},
      {Write("root.xml", "<quiz/>"), "not an ExamView export: its root element is <quiz>, not <examview>"},
      {Write("none.xml", "<examview/>"), "an ExamView export without a question that could be read"},
      {Write("root.LMF", "<quiz/>"), "not an LMF file: its root element is <quiz>, not <lmf>"},
      {Write("old.lmf", "<lmf version='0'/>"), "an LMF file that is damaged or of an unknown version"},
      {TEST_DATA "/broken-test.xml", "not well-formed XML: mismatched tag at line 7, column 49"},
      {Path("."), "Is a directory"},
      {Path("missing.xml"), "No such file or directory"},
  };
  for (const auto& [file, reason] : refused) {
    const Outcome run = RunProgram(file);
    EXPECT_EQ(run.exitCode, 3) << file;
    EXPECT_EQ(run.output, file + ": error: " + reason + "\n");
  }
}

TEST_F(Tool, WritesAllThatIsAskedFor) {
  const std::string arguments = "-q --objectives learning --html '" + Path("s.html") + "' --answers '" +
                                Path("t.html") + "' --csv '" + Path("k.csv") + "' --json '" + Path("a.json") +
                                "' --save '" + Path("Unit 3.lmf") + "' --reader '" + Path("reader") + "' ";
  ASSERT_EQ(RunProgram(arguments + kVersions).exitCode, 0);
  EXPECT_THAT(Names(), testing::ElementsAre("Unit 3.lmf", "a.json", "k.csv", "reader", "s.html", "t.html"));
  EXPECT_THAT(Read("k.csv"), HasSubstr("\r\nC,8,8,70,mc,F G H J K,G J,2,Clouds; The water cycle\r\n"));
  EXPECT_TRUE(std::filesystem::exists(Path("reader/B/template.json")));
  // What was saved carries on.
  const Outcome again = RunProgram("-q --csv - '" + Path("Unit 3.lmf") + "'");
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_THAT(again.output, HasSubstr("\r\nC,8,8,8,mc,F G H J K,G J,2,Clouds; The water cycle\r\n"));
  // And standard input is a file like any other.
  const Outcome piped = RunProgram("-q --csv - - <" + kSample);
  EXPECT_THAT(piped.output, HasSubstr("\r\nA,7,7,70,mc,A B C D,B D,2,\r\n"));
}

TEST_F(Tool, PrintsTheSheetOfOneVersion) {
  const std::string sheet = "-q --html '" + Path("s.html") + "' --mark-version ";
  const Outcome wrong = RunProgram(sheet + "D " + kVersions);
  EXPECT_EQ(wrong.exitCode, 1);
  EXPECT_THAT(wrong.output, HasSubstr("no version has the name \"D\""));
  EXPECT_THAT(Names(), testing::IsEmpty());
  ASSERT_EQ(RunProgram(sheet + "B " + kVersions).exitCode, 0);
  EXPECT_THAT(Read("s.html"), HasSubstr("Version <bdi>B</bdi>"));
}

TEST_F(Tool, WritesNothingThatWouldGradeWrong) {
  const std::string wrong = Write("wrong.xml", kWrongKey);
  const std::string outputs =
      " -q --csv " + Path("k.csv") + " --html " + Path("s.html") + " --json " + Path("a.json");
  const Outcome run = RunProgram(wrong + outputs);
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.output, HasSubstr("error: the key of question 1 (ID 7) names answer 4, and there are 2"));
  EXPECT_THAT(run.output, HasSubstr("not written, since marks would be graded wrong"));
  EXPECT_THAT(Names(), testing::ElementsAre("a.json", "wrong.xml"));
  EXPECT_EQ(RunProgram(wrong + outputs + " --force").exitCode, 4);
  EXPECT_THAT(Names(), testing::ElementsAre("a.json", "k.csv", "s.html", "wrong.xml"));
  EXPECT_EQ(RunProgram("-q " + kVersions + " --version-names , --csv " + Path("v.csv")).exitCode, 4);
  // Without a sheet only a program that reads the output gets what there is.
  EXPECT_THAT(RunProgram("-q --json - " + Write("none.xml", "<examview/>")).output,
              HasSubstr("\"status\": \"refused\""));
}

TEST_F(Tool, LosesNothingWhereItCannotWrite) {
  const std::string input = Write("in.xml", Sample());
  std::filesystem::create_symlink(input, Path("link.xml"));
  std::filesystem::create_hard_link(input, Path("hard.xml"));
  std::filesystem::create_directories(Path("folder/C"));
  Write("folder/C/template.json", "{}");
  Write("old.csv", "old");
  const std::vector<std::string> before = Names();
  const std::vector<std::pair<std::string, std::string>> failed = {
      {"--html " + input, "in.xml: is a file to read, and is not overwritten"},
      {"--save " + Path("./folder/../in.xml"), "is a file to read"},
      {"--csv " + Path("link.xml"), "is a file to read"},
      {"--json " + Path("hard.xml"), "is a file to read"},
      {"--csv " + Path("x.csv") + " --json " + Path("./x.csv"), "x.csv: is to be written twice"},
      {"--csv no.name-5 --json ./no.name-5", "./no.name-5: is to be written twice"},
      {"--csv " + Path("folder"), "folder: is a folder"},
      {"--reader " + input, "in.xml: is no folder"},
      {"--reader " + Path("folder"), "folder/C/template.json: is of another sheet"},
      {"--csv " + Path("good.csv") + " --html /proc/none/x.html", "/proc/none/x.html: "},
      {"--csv " + Path("good.csv") + " --json /dev/full", "/dev/full: No space left on device"},
      {"--csv - >/dev/full", "standard output: cannot be written"},
      {"--html " + Path("good.html") + " >/dev/full", "standard output: cannot be written"},
      {"--html " + Path("good.html") + " >&-", "standard output: cannot be written"},
      // Found out only when the first file is in its place.
      {"--csv " + Path("old.csv") + " --json " + Path("x") + " --reader " + Path("x"), "x: is there by now"},
      {">>" + input, "in.xml: is standard output, too"},
      {"- <" + Path("folder"), "standard input: Is a directory"},
  };
  for (const auto& [arguments, reason] : failed) {
    const Outcome run = RunProgram("-q " + input + " " + arguments);
    EXPECT_EQ(run.exitCode, 1) << arguments;
    EXPECT_THAT(run.output, HasSubstr(reason)) << arguments;
    EXPECT_EQ(Names(), before) << arguments;
    EXPECT_EQ(Read("in.xml"), Sample()) << arguments;
    EXPECT_EQ(Read("old.csv"), "old") << arguments;
  }
  for (const char* wrong :
       {"", "--no-such-option x.xml", "--objectives all x.xml", "--objectives 1 x.xml", "--id-digits 0 x.xml",
        "--language xx x.xml", "- -", "--csv - --json - x.xml", "--save - x.xml", "--reader - x.xml",
        "--csv '' x.xml", "--list --csv x x.xml", "--state ohio x.xml"}) {
    EXPECT_EQ(RunProgram(wrong).exitCode, 2) << wrong;
  }
  EXPECT_EQ(RunProgram("--help").exitCode, 0);
  EXPECT_EQ(RunProgram("--help >/dev/full").exitCode, 1);
  EXPECT_THAT(RunProgram("--version").output, testing::StartsWith("torva35 "));
}

}  // namespace
}  // namespace TORVA35
