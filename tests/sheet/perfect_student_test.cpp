// The promise of the whole: who knows everything gets full marks, whatever version is in front of him, and no
// wrong mark counts. The student reads the paper, not the library's mind.

#include <gmock/gmock.h>

#include <algorithm>
#include <deque>
#include <set>

#include "tests/TempFile.h"
#include "tests/sheet/Exam.h"
#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {
namespace {

using Marks = std::set<int>;  // bubbles of a row, from 1

double Score(const Answer& answer, const Marks& marks) {
  const Marks key(answer.marks.begin(), answer.marks.end());
  const bool right = answer.all ? marks == key : marks.size() == 1 && key.contains(*marks.begin());
  return right ? answer.points : marks.empty() ? answer.noResponsePoints : answer.incorrectPoints;
}

// Finds the row by the number on the paper, through the version's table on a renumbered sheet, and in it the
// bubble with the letter on the paper.
Marks Mark(const Result& result, const Version& version, const Exam& exam, std::size_t at) {
  auto number = static_cast<long>(at) + 1;
  for (std::size_t i = 0; result.renumbered && i < version.answers.size(); ++i) {
    if (version.answers[i].paper != static_cast<long>(at) + 1) continue;
    number = result.rows[i].number;
    EXPECT_EQ(number, static_cast<long>(i) + 1);
  }
  const auto row =
      std::find_if(result.rows.begin(), result.rows.end(), [&](const Row& each) { return each.number == number; });
  Marks marks;
  if (row == result.rows.end()) return marks;
  for (const int choice : exam.questions[at].correct) {
    const auto bubble = std::find(row->labels.begin(), row->labels.end(), exam.Letter(at, choice));
    if (bubble != row->labels.end()) marks.insert(static_cast<int>(bubble - row->labels.begin()) + 1);
  }
  return marks;
}

void ExpectGradesRight(const Result& result, const std::vector<Exam>& exams) {
  ASSERT_EQ(result.status, Status::kDone);
  for (const Finding& finding : result.findings) EXPECT_NE(finding.severity, Severity::kError) << finding.text;
  ASSERT_EQ(result.versions.size(), exams.size());
  for (std::size_t v = 0; v < exams.size(); ++v) {
    const Version& version = result.versions[v];
    EXPECT_EQ(version.name, exams.size() == 1 && version.name.empty() ? "" : exams[v].version);
    std::size_t row = 0;
    for (std::size_t at = 0; at < exams[v].questions.size(); ++at) {
      const ExamQuestion& question = exams[v].questions[at];
      if (!question.Graded()) continue;
      ASSERT_LT(row, version.answers.size());
      const Answer& answer = version.answers[row];
      const Marks right = Mark(result, version, exams[v], at);
      ASSERT_EQ(Score(answer, right), question.points) << version.name << " question " << at + 1;
      const int bubbles = static_cast<int>(result.rows[row].labels.size());
      for (int wrong = 0; wrong <= bubbles; ++wrong) {
        const Marks marks = wrong == 0 ? Marks{} : Marks{wrong};
        if (marks != right) {
          ASSERT_EQ(Score(answer, marks), 0) << version.name << " question " << at + 1;
        }
        Marks more = right;
        if (more.insert(wrong).second) {
          ASSERT_EQ(Score(answer, more), 0) << version.name << " question " << at + 1;
        }
      }
      ++row;
    }
    EXPECT_EQ(row, version.answers.size());
  }
}

TEST(PerfectStudent, GetsFullMarksForTheRightMarksOnly) {
  for (unsigned seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<Exam> exams = {RandomExam(random)};
    for (auto more = random() % 3; more > 0; --more) {
      exams.push_back(Shuffled(exams.front(), std::string(1, static_cast<char>('A' + exams.size())), random));
    }
    std::deque<TempFile> files;
    std::vector<Input> inputs;
    for (const Exam& exam : exams) inputs.push_back({ToUtf8(files.emplace_back(exam.Xml()).Path()), ""});
    Options renumber;
    renumber.renumber = true;
    ExpectGradesRight(MakeSheet(inputs, renumber), exams);
    const Result result = MakeSheet(inputs);
    EXPECT_FALSE(result.renumbered);
    ExpectGradesRight(result, exams);

    // What is saved carries on: its rows and keys are those of the first sheet.
    const TempFile saved("");
    ASSERT_TRUE(result.lmf->Save(saved.Path()));
    const Result again = MakeSheet({{ToUtf8(saved.Path()), ""}});
    ExpectGradesRight(again, exams);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace TORVA35::sheet
