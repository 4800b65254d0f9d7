// Runs the host program as its user does: the files that it ships, files that it must refuse, and steps that fail.

#include <gmock/gmock.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include <torva35/TORVA35.h>
#include "tests/TempFile.h"

namespace TORVA35 {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kSample = MERGE_EXAM_SAMPLES "/sample-test.xml";
const std::string kVersions =
    kSample + " " MERGE_EXAM_SAMPLES "/sample-test-b.xml " MERGE_EXAM_SAMPLES "/sample-test-c.xml";

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
  FILE* pipe = popen(("COLUMNS=0 " MERGE_EXAM " 2>&1 </dev/null " + arguments).c_str(), "r");
  const std::string output = OneBlank(ReadAll(fileno(pipe)));
  return {WEXITSTATUS(pclose(pipe)), output};
}

// In a terminal in which the user types the given keys.
Outcome RunInTerminal(const std::string& file, const std::string& keys) {
  int terminal = 0;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    execl(MERGE_EXAM, MERGE_EXAM, "--list", file.c_str(), nullptr);
    _exit(127);
  }
  EXPECT_EQ(write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  const std::string output = OneBlank(ReadAll(terminal));
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  return {WEXITSTATUS(status), output};
}

class MergeExam : public testing::Test {
 protected:
  MergeExam() { std::filesystem::create_directory(folder_); }
  ~MergeExam() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  std::string Write(const std::string& name, std::string_view bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
  }

 private:
  const std::string folder_ = testing::TempDir() + "merge-exam-" + std::to_string(getpid());
};

TEST_F(MergeExam, ListsATest) {
  const Outcome run = RunProgram("--list --objectives learning --objectives State --state oh " + kSample);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.output, HasSubstr("*** Partial Credit ***\nWarning: One or more test questions"));
  EXPECT_THAT(run.output, HasSubstr("(No terminal to ask: OK)"));
  EXPECT_THAT(run.output,
              HasSubstr("Title: Water and Weather, Unit 3\nVersion: A\nOdd scale: A B C D E\nEven scale: F G"));
  EXPECT_THAT(run.output, HasSubstr(" 4 40 choice 5 H 3 1 Rivers The sign 河 on a map of Japan names a\n"));
  EXPECT_THAT(run.output, HasSubstr(" 7 70 choice 4 (B,D) (2,4) 2 Clouds; The water cycle; SC.6.4 Which two of"));
  EXPECT_THAT(run.output, HasSubstr("12 120 essay 0 "));
  EXPECT_THAT(run.output, Not(HasSubstr("Merged form")));
  EXPECT_THAT(RunProgram("-l --quiet --odd-only " + kSample).output,
              AllOf(Not(HasSubstr("***")), HasSubstr("Even scale: A B C D E\n"), Not(HasSubstr("Rivers"))));
}

TEST_F(MergeExam, FitsTheTerminal) {
  FILE* pipe = popen(("COLUMNS=90 " MERGE_EXAM " -lq " + kSample).c_str(), "r");
  std::istringstream lines(ReadAll(fileno(pipe)));
  pclose(pipe);
  std::size_t longest = 0;
  for (std::string line; std::getline(lines, line);) longest = std::max(longest, FromUtf8(line).size());
  EXPECT_LE(longest, 90U);
  EXPECT_GT(longest, 70U);
}

TEST_F(MergeExam, AsksInATerminal) {
  const Outcome cancelled = RunInTerminal(kSample, "what\nc\n");
  EXPECT_EQ(cancelled.exitCode, 3);
  EXPECT_THAT(cancelled.output, AllOf(HasSubstr("[O]K [C]ancel >"), HasSubstr("not loaded, as you chose")));
  EXPECT_EQ(RunInTerminal(kSample, "ok\n").exitCode, 0);
}

TEST_F(MergeExam, SaysInOneLineWhyAFileIsRefused) {
  using namespace std::string_view_literals;
  const std::vector<std::pair<std::string, std::string>> refused = {
      {Write("word.xml", "PK\3\4\0\0"sv), "not XML but a ZIP archive or an Office document"},
      {Write("rich.xml", "{\\rtf1 text}"), "not XML but an RTF document"},
      {Write("doc.xml", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"),
       "not XML but an old Word document or another OLE file"},
      {Write("zipped.xml", "\x1F\x8B\x08"), "not XML but a gzip archive"},
      {Write("bank.bnk", "\1\2\3"),
       "not XML but an ExamView bank or test in its binary format, which ExamView can export as XML"},
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
    EXPECT_EQ(run.output, "merge_exam: " + file + ": " + reason + "\n");
  }
}

TEST_F(MergeExam, MergesVersions) {
  // More questions than the test has, and the version field behind them: its position stays right all the same.
  for (const char* place : {"front", "back"}) {
    const Outcome run =
        RunProgram("-q --name-grid 3 --questions 12 --columns 2 --version-field " + (place + (" " + kVersions)));
    EXPECT_EQ(run.exitCode, 0) << run.output;
    EXPECT_THAT(run.output, HasSubstr(" Questions 1 to 6 6 F G H - - yes one A square pond"));
    EXPECT_THAT(run.output, HasSubstr(" Questions 7 to 12 7 A B C D - yes several Which two"));
    EXPECT_THAT(run.output, HasSubstr(" Questions 7 to 12 11 A B C D E no one"));
    EXPECT_THAT(run.output, HasSubstr("\n 6 G 2 2.5\n"));
    EXPECT_THAT(run.output, HasSubstr("Place A B C\n"));
    EXPECT_THAT(run.output, HasSubstr("\n 5 5 7 4\n 6 6 4 5\n 7 7 9 9\n"));
  }
}

TEST_F(MergeExam, EndsWithAFailedStep) {
  const std::vector<std::pair<std::string, std::string>> failed = {
      {"--version-labels X,Y " + kVersions, "*** Invalid Version Identifier ***"},
      {"--questions 9 " + kSample, "contains more graded questions than"},
      {"--max-questions 8 " + kVersions, "*** Invalid Test Versions ***"},
      {"--version-field none -q " + kVersions, "the merge failed; without --quiet"},
      {"--save /no/such/folder/x.lmf " + kSample, "writing /no/such/folder/x.lmf failed"},
      {"--html /no/such/folder/x.html " + kSample, "writing /no/such/folder/x.html failed"},
      {"-q " + kSample + " >/dev/full", "writing to standard output failed"},
      {Write("twins.xml", "<examview><question type='tf' question-id='1'/><question question-id='1'/></examview>"),
       "merge_exam: failure 457: "},
  };
  for (const auto& [arguments, reason] : failed) {
    const Outcome run = RunProgram(arguments);
    EXPECT_EQ(run.exitCode, 1) << arguments;
    EXPECT_THAT(run.output, HasSubstr(reason)) << arguments;
  }
  for (const char* wrong : {"", "--no-such-option x.xml", "--objectives all x.xml", "--columns 0 x.xml"}) {
    EXPECT_EQ(RunProgram(wrong).exitCode, 2) << wrong;
  }
  EXPECT_EQ(RunProgram("--help").exitCode, 0);
}

TEST_F(MergeExam, SavesAndReadsBack) {
  const std::string saved = Path("Unit 3.lmf");
  EXPECT_EQ(RunProgram("-q --objectives learning --save '" + saved + "' " + kVersions).exitCode, 0);
  const Outcome run = RunProgram("--quiet '" + saved + "'");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.output, HasSubstr("Title: Unit 3\nVersion: \nVersions: A B C\n"));
  EXPECT_THAT(run.output, HasSubstr(" choice 4 (B,D) (2,4) 2 Clouds; The water cycle Which two of"));
}

// Counts the elements below the node by their class.
void Count(const IXMLDOMNode& node, std::map<String, int>& classes) {
  for (IXMLDOMNode child = node.FirstChild(); child; child = child.NextSibling()) {
    const auto attributes = child.get_attributes();
    if (const auto name = attributes ? attributes.getNamedItem(u"class") : IXMLDOMNode()) ++classes[name.Text()];
    Count(child, classes);
  }
}

TEST_F(MergeExam, WritesAPage) {
  const std::string page = Path("page.html");
  EXPECT_EQ(RunProgram("-q --name-grid 2 --questions 11 --html " + page + " --html-key " + kVersions).exitCode, 0);
  DOMDocument document;
  ASSERT_TRUE(document.load(FromUtf8(page))) << ToUtf8(document.parseError().reason);
  ASSERT_TRUE(document.selectSingleNode(u"html"));
  std::map<String, int> classes;
  Count(document.Root(), classes);
  EXPECT_EQ(classes[u"question"], 2 + 1 + 10);
  EXPECT_EQ(classes[u"question off"], 1);
  EXPECT_EQ(classes[u"bubble key"], 11);  // one question has two correct answers
  EXPECT_EQ(classes[u"bubble none"], 4 * 3 + 0 + 1 + 2 + 1 + 1 + 1);
  EXPECT_EQ(classes[u"bubble"], 2 * 26 + 3 + 5 + (50 - 11 - 18));

  const auto svg = document.getElementsByTagName(u"svg");
  ASSERT_EQ(svg.get_length(), 1);
  EXPECT_EQ(svg.get_item(0).FirstChild().get_nodeName(), u"title");
  EXPECT_TRUE(document.getElementsByTagName(u"input").get_item(0).get_attributes().getNamedItem(u"checked"));
  const auto tables = document.getElementsByTagName(u"tbody");
  ASSERT_EQ(tables.get_length(), 2);
  EXPECT_EQ(tables.get_item(0).get_childNodes().get_item(6).FirstChild().NextSibling().Text(), u"(B,D)");
  EXPECT_EQ(tables.get_item(1).get_childNodes().get_item(5).Text(), u"6645");  // place 6 of A, B and C
}

TEST_F(MergeExam, EscapesTheTextsOfAPage) {
  const std::string page = Path("page.html");
  const std::string test = Write("odd.xml",
                                 "<examview><header><title>&lt;b> &amp;amp; \"x\"</title></header>"
                                 "<question type='tf'><text>]]&gt;&lt;/svg&gt;</text></question></examview>");
  EXPECT_EQ(RunProgram("--html " + page + " " + test).exitCode, 0);
  DOMDocument document;
  ASSERT_TRUE(document.load(FromUtf8(page))) << ToUtf8(document.parseError().reason);
  EXPECT_EQ(document.getElementsByTagName(u"h1").get_item(0).Text(), u"<b> &amp; \"x\"");
  EXPECT_FALSE(document.getElementsByTagName(u"input").get_item(0).get_attributes().getNamedItem(u"checked"));
  EXPECT_EQ(document.getElementsByTagName(u"tbody").get_length(), 1);
}

}  // namespace
}  // namespace TORVA35
