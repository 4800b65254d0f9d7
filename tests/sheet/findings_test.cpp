// What a teacher must know is said, with how bad it is and which question it is about.

#include <gmock/gmock.h>

#include <deque>
#include <set>
#include <stdexcept>

#include "tests/TempFile.h"
#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {
namespace {

using testing::HasSubstr;

// "error no-key 2": the severity, the kind, and the number of the question on the paper if it is about one.
std::string Line(const Finding& finding) {
  static const char* const kWords[] = {"note ", "warning ", "error "};
  return kWords[static_cast<int>(finding.severity)] + finding.kind +
         (finding.number > 0 ? " " + std::to_string(finding.number) : "");
}

class Made {
 public:
  explicit Made(const std::vector<std::string>& documents, const Options& options = {}) {
    std::vector<Input> inputs;
    for (const std::string& document : documents) {
      inputs.push_back(
          {ToUtf8(files_.emplace_back(document).Path()), "file " + std::to_string(inputs.size() + 1)});
    }
    result = MakeSheet(inputs, options);
    for (const Finding& finding : result.findings) lines.push_back(Line(finding));
  }

  Result result;
  std::vector<std::string> lines;

 private:
  std::deque<TempFile> files_;
};

std::string Exam(const std::string& content, const std::string& version = "A") {
  return "<examview><header><version>" + version + "</version></header>" + content + "</examview>";
}

std::string Choice(const std::string& id, const std::string& answer, int choices = 4,
                   const std::string& more = "") {
  std::string xml = "<question type='mc' question-id='" + id + "'><text>Text " + id + "</text><choices>";
  for (char c = 'a'; c < 'a' + choices; ++c) xml += std::string("<choice-") + c + ">x</choice-" + c + ">";
  return xml + "</choices><answer>" + answer + "</answer>" + more + "</question>";
}

std::string TrueFalse(const std::string& id, const std::string& answer = "T") {
  return "<question type='tf' question-id='" + id + "'><text>Text</text><answer>" + answer +
         "</answer></question>";
}

std::string Lmf(const std::string& rows) {
  return "<lmf version='1' mode='1' pageCount='1'><objectives><objective text='(All Questions)'/></objectives><questions>" +
         rows + "</questions><versions/></lmf>";
}

std::string LmfRow(const std::string& name, const std::string& key, const std::string& more) {
  return "<question name='" + name + "' labels='A|B|C|' values='1|2|3|' correctLabels='" + key +
         "' correctCount='1' objectives='1:0' " + more + "/>";
}

const std::string kGraded = "graded='1' correctPoints='1'";
const std::string kEssay = "<question type='es' question-id='e'><text>Write.</text></question>";
const std::string kSequence = "<mc-choice-sequence value='abcde_fghij'/>";

struct Case {
  const char* name;
  std::vector<std::string> documents;
  std::vector<std::string> findings;
  Status status = Status::kDone;
  Options options = {};
};

std::vector<Case> Cases() {
  const auto info = [](const std::string& content) { return "<info>" + content + "</info>"; };
  const auto text = [](const std::string& content) {
    return "<question type='tf' question-id='1'><text>" + content + "</text><answer>T</answer></question>";
  };
  Options renumber;
  renumber.renumber = true;
  Options names;
  names.versionNames = {"red", "blue"};
  return {
      {"Fine", {Exam(Choice("1", "B"))}, {}},
      {"ShownAsTrueOrFalse",
       {Exam("<question type='bi'><bi-display-mode value='tf'/><answer>F</answer></question>")},
       {}},
      // Keys that nobody could meet.
      {"NoKey", {Exam(Choice("1", "") + TrueFalse("2", "maybe"))}, {"error no-key 1", "error no-key 2"}},
      {"BeyondChoices", {Exam(Choice("1", "A") + Choice("2", "D", 3))}, {"error beyond-choices 2"}},
      {"NumberAsKey", {Exam(Choice("1", "8"))}, {"error beyond-choices 1"}},
      {"KeyApartByBlanks",
       {Exam(Choice("1", "B D") + Choice("2", "b, d ,B.") + Choice("3", "All") + TrueFalse("4", "T, F"))},
       {"error key 1", "error key 3", "error key 4"}},
      {"ChoicesNotInPlace",
       {Exam("<question type='mc'><choices><choice-a>x</choice-a><choice-c>y</choice-c></choices>"
             "<answer>A</answer></question>")},
       {"error choices 1"}},
      {"NoBubble", {Exam(Choice("1", "E", 5))}, {"error no-bubble 1", "warning missing-bubbles 1"}},
      {"NoChoices", {Exam(Choice("1", "A", 0))}, {"error no-choices 1", "error beyond-choices 1"}},
      {"SameLabels", {Exam("<mc-choice-sequence value='abcab'/>" + Choice("1", "A", 4))}, {"error same-labels 1"}},
      // Letters and numbers that the paper has otherwise.
      {"LettersNotTaken",
       {Exam("<mc-choice-sequence value='abcd_efgh'/>" + Choice("1", "A") + Choice("2", "A"))},
       {"error letters 2"}},
      {"OtherLettersInVersion",
       {Exam(kSequence + Choice("1", "A") + Choice("2", "A")),
        Exam("<mc-choice-sequence value='abcde'/>" + Choice("1", "A") + Choice("2", "A"), "B")},
       {"error letters 2", "warning same-order"}},
      {"NumbersDiffer",
       {Exam(kEssay + TrueFalse("1") + TrueFalse("2")), Exam(TrueFalse("2") + kEssay + TrueFalse("1"), "B")},
       {"warning left-out 1", "error numbers 1", "warning left-out 2", "note paper-numbers"}},
      {"NumbersDifferRenumbered",
       {Exam(TrueFalse("1") + TrueFalse("2") + kEssay), Exam(TrueFalse("2") + kEssay + TrueFalse("1"), "B")},
       {"warning left-out 3", "warning numbers 3", "warning left-out 2", "note paper-numbers"},
       Status::kDone,
       renumber},
      {"NumberingBySection",
       {Exam("<preferences><question-numbering value='section'/></preferences>" + TrueFalse("1"))},
       {"error numbering"}},
      // Versions that nobody can tell apart, or that are none.
      {"BlankVersion", {Exam(TrueFalse("1")), Exam(TrueFalse("1"), " ")}, {"error version-name"}, Status::kFailed},
      {"SameVersion", {Exam(TrueFalse("1")), Exam(TrueFalse("1"), "a")}, {"error version-name"}, Status::kFailed},
      {"NamesGiven", {Exam(TrueFalse("1")), Exam(TrueFalse("1"))}, {}, Status::kDone, names},
      {"NamesForOthers", {Exam(TrueFalse("1"))}, {"error version-names"}, Status::kFailed, names},
      {"OtherQuestion",
       {Exam(TrueFalse("1")), Exam(TrueFalse("2"), "B")},
       {"error not-a-version 1"},
       Status::kFailed},
      {"OtherKey",
       {Exam(TrueFalse("1")), Exam(TrueFalse("1", "F"), "B")},
       {"error not-a-version 1"},
       Status::kFailed},
      {"KindsScrambled",
       {Exam(TrueFalse("1") + Choice("2", "A")), Exam(Choice("2", "A") + TrueFalse("1"), "B")},
       {"error not-a-version 1"},
       Status::kFailed},
      {"PointsDiffer",
       {Exam(Choice("1", "A", 4, info("<points>2</points>"))), Exam(Choice("1", "A"), "B")},
       {"warning points-differ 1"}},
      // Questions that are not there.
      {"DuplicateID",
       {Exam(TrueFalse("1") + TrueFalse("2") + TrueFalse("1") + TrueFalse("3"))},
       {"error duplicate-id 3"}},
      {"Unreadable",
       {Exam(TrueFalse("1") + Choice("2", "A", 4, info("<points>1e39</points>")) + TrueFalse("3"))},
       {"error unreadable 2"}},
      {"NothingLeft", {Exam(kEssay)}, {"warning left-out 1", "error nothing-left"}, Status::kFailed},
      // What the library does not take.
      {"Points",
       {Exam(Choice("1", "A", 4, info("<points scoring-method='RightLessWrong'>2,5</points>")))},
       {"warning partial-credit 1", "error points 1"}},
      {"NoPoints", {Exam(Choice("1", "A", 4, info("<points>0</points>")))}, {"warning points 1"}},
      {"PlainPoints",
       {Exam(Choice("1", "A", 4, info("<points> 2.30 </points>")) +
             Choice("2", "A", 4, info("<points>1e1</points>")))},
       {}},
      {"Scripts",
       {Exam(text("H<sub>2</sub>O in m<sup>2</sup>"))},
       {"warning subscript 1", "warning superscript 1"}},
      {"Pictures",
       {Exam(text("<para><picture src='x'/></para><table><row/></table><equation/><chart/>"))},
       {"warning picture 1", "warning table 1", "warning equation 1", "warning not-read 1"}},
      {"Beside",
       {Exam("<matching-group name='M'><text>x</text></matching-group><narrative/>" + text("x"))},
       {"note matching-group", "note narrative"}},
      {"Rationale",
       {Exam("<question type='tf'><text>x</text><rationale>y</rationale><answer>T</answer></question>")},
       {"note rationale 1"}},
      {"LineBreak", {Exam(text("two\nlines"))}, {"note line-break 1"}},
      {"Break", {Exam(text("<font>two<br/><tab/>lines</font>"))}, {"note line-break 1"}},
      {"HarmlessBreak", {Exam(text("two<br/>lines<font>two <br/>lines<b>x</b><br/></font>"))}, {}},
      {"Objectives", {Exam(Choice("1", "A", 4, info("<text-objective>x</text-objective>")))}, {"note objectives"}},
      {"Cut",
       {Exam("<question type='mc'><choices><choice-a>" + std::string(51, 'x') +
             "</choice-a><choice-b>y</choice-b></choices><answer>A</answer></question>")},
       {"note cut 1"}},
      {"LmfFile",
       {Lmf(LmfRow("1", "A|", kGraded) + LmfRow("name", "", "") + LmfRow("5", "(A,Q)|", kGraded) +
            LmfRow("2", "A|B|", kGraded) + LmfRow("7", "(A,B)|", kGraded) + LmfRow("8", "B|", "graded='1'"))},
       {"note left-out", "error no-bubble 5", "error numbering", "error key 6", "warning any-of-several 7",
        "warning points 8", "note no-version"}},
      {"LmfPoints",
       {Lmf(LmfRow("1", "A|", "graded='1' correctPoints='inf'"))},
       {"error refused"},
       Status::kRefused},
      // Not even a test.
      {"NoTest", {"<other/>"}, {"error refused"}, Status::kRefused},
      {"NoXml", {"x"}, {"error refused"}, Status::kRefused},
      {"BothAreSaid", {"x", "y"}, {"error refused", "error refused"}, Status::kRefused},
      {"NoFile", {}, {"error no-file"}, Status::kFailed},
  };
}

TEST(Findings, AreWhatTheTeacherMustKnow) {
  for (const Case& row : Cases()) {
    SCOPED_TRACE(row.name);
    const Made made(row.documents, row.options);
    EXPECT_THAT(made.lines, testing::UnorderedElementsAreArray(row.findings));
    EXPECT_EQ(made.result.status, row.status);
    EXPECT_EQ(made.result.rows.empty(), row.status != Status::kDone);
  }
}

TEST(Findings, NameBothPlacesOfADuplicate) {
  const Made made({Exam("\n" + TrueFalse("1") + "\n" + TrueFalse("2") + "\n  " + TrueFalse("1"))});
  ASSERT_EQ(made.result.findings.size(), 1u);
  const Finding& finding = made.result.findings.front();
  EXPECT_THAT(finding.text, HasSubstr("question 3 (ID 1)"));
  EXPECT_THAT(finding.text, HasSubstr("question 1 at line 2"));
  EXPECT_EQ(finding.line, 4);
  EXPECT_EQ(finding.column, 3);
  const auto& questions = made.result.files.front().questions;
  ASSERT_EQ(questions.size(), 3u);
  EXPECT_EQ(questions[2].fate, Fate::kDuplicate);
  EXPECT_EQ(made.result.rows.size(), 2u);
}

TEST(Findings, ComeWithDialogsThatNameTheFile) {
  Options options;
  std::vector<std::string> asked;
  options.ask = [&](const Dialog& dialog) {
    asked.push_back(dialog.title + ", " + dialog.file);
    return 1;
  };
  const std::string partial =
      Exam(Choice("1", "A", 4, "<info><points scoring-method='RightLessWrong'>2</points></info>"));
  const Made made({Exam(kEssay + TrueFalse("1")), partial}, options);
  EXPECT_THAT(asked, testing::ElementsAre("Partial Credit, file 2"));
  EXPECT_EQ(made.result.status, Status::kCancelled);

  options.ask = [](const Dialog&) -> int { throw std::runtime_error("closed"); };
  EXPECT_THROW(Made({partial}, options), std::runtime_error);
  EXPECT_EQ(basError::goErr(), nullptr);
}

}  // namespace
}  // namespace TORVA35::sheet
