#pragma once

#include <functional>
#include <string>
#include <vector>

#include <torva35/TORVA35.h>

/// From the files of a test and its versions to a bubble sheet that grades right: what was read, what was lost,
/// the rows of the sheet, and for each version what a perfect student marks. One call makes a plain result;
/// writers turn it into pages and files. Nothing here prints, asks or ends the process.
///
/// All texts are UTF-8. Numbers of questions and rows count from 1, positions in the lists of a result from 0.
namespace TORVA35::sheet {

/// How much a finding matters.
enum class Severity {
  kNote,     ///< for the record: nothing to do
  kWarning,  ///< something of the file is not on the sheet, or looks wrong; grades are right all the same
  kError,    ///< with this, marks would be graded wrong, or there is no sheet
};

/// Something that the teacher should know.
struct Finding {
  Severity severity = Severity::kWarning;
  std::string kind;  ///< a word that stays the same, such as "duplicate-id"; docs/findings.md lists all of them
  int file = -1;     ///< position in `Result::files`; -1: it is about no single file
  long number = 0;   ///< of the question on the paper; 0: it is about no single question
  std::string id;    ///< of the question
  long line = 0;     ///< in the file, from 1; 0: not known
  long column = 0;   ///< in the line, in characters from 1
  std::string text;  ///< one sentence in English, without a full stop at its end
};

/// The kinds of questions, with the values that `TORVATestQuestionType` gives them.
using Kind = TORVATestQuestionType;

/// The word for a kind in files for other programs: "tf", "yn", "mc", "mtf", "nr", "co", "ma", "sa", "pr", "es",
/// "ca", "subjective", "ot", "bi", "unknown".
std::string KindWord(Kind kind);

/// What became of a question of a file.
enum class Fate {
  kKept,         ///< it is on the sheet
  kUnsupported,  ///< of a kind that a bubble sheet cannot grade
  kDuplicate,    ///< an earlier question of the file has the same ID
  kUnreadable,   ///< the file holds something for it that cannot be read; a finding says what
  kOverLimit,    ///< beyond `Options::maxQuestions`
};

/// A question as it was read.
struct Question {
  long number = 0;  ///< on the paper of its file
  std::string id;
  Kind kind = TORVATestQuestionTypeUnknown;
  Fate fate = Fate::kKept;
  std::string text;
  std::vector<std::string> answers;
  std::vector<int> correct;  ///< answers that are right, from 1, in the order of the file
  bool all = true;           ///< all of them have to be marked; else any one of them counts
  double points = 1;
  double incorrectPoints = 0;   ///< for a wrong answer
  double noResponsePoints = 0;  ///< for none
  std::vector<std::string> objectives;
  std::string difficulty, topic, keywords, miscellaneous, reference, notes;
  long line = 0, column = 0;  ///< where it begins in its file; 0: not known
};

enum class Format { kExamView, kLmf };

/// One of the files that were given.
struct File {
  std::string name;  ///< as the input gave it
  Format format = Format::kExamView;
  std::string title;
  std::string version;
  std::vector<Question> questions;  ///< all, in the order of the paper
  std::vector<std::string> oddScale,
      evenScale;  ///< letters of multiple-choice questions with odd and even numbers
};

/// A row of bubbles. The same row serves all versions.
struct Row {
  long number = 0;  ///< as printed beside it: `paper`, or a number without gaps with `Options::renumber`
  long paper = 0;   ///< number on the papers
  Kind kind = TORVATestQuestionTypeMultipleChoice;
  std::vector<std::string> labels;  ///< one for each bubble; none is empty
  bool several = false;             ///< in some version more than one bubble has to be marked
};

/// What one version asks at one row.
struct Answer {
  int question = 0;  ///< position in `questions` of the version's file
  long paper = 0;    ///< number on this version's paper; another one than the row's is an error finding
  std::vector<int>
      marks;  ///< bubbles of the right answer, from 1, ascending; empty: there is no key, or no bubble for it
  bool all = true;    ///< a perfect student marks all of them; else exactly one of them, whichever
  double points = 1;  ///< for the right marks
  double incorrectPoints = 0;
  double noResponsePoints = 0;
};

/// One version of the test.
struct Version {
  std::string name;             ///< as its bubble says; empty when there is only one, without a name
  int file = 0;                 ///< position in `Result::files`
  std::vector<Answer> answers;  ///< one for each row
};

/// A question that the teacher grades by hand; it has a box for points on the sheet.
struct HandGraded {
  std::string name;
  std::string text;
  double points = 0;
};

enum class Status {
  kDone,       ///< there is a sheet; findings may still be errors
  kRefused,    ///< a file is not a test that can be read; an error finding says why
  kCancelled,  ///< a dialog was answered with "Cancel"
  kFailed,     ///< the files do not go together, or the library reported a failure; error findings say why
};

struct Result {
  Status status = Status::kFailed;
  std::string title;
  std::vector<File> files;        ///< those that were given, in their order; what could be read of them
  std::vector<Row> rows;          ///< without `kDone` empty, as are the versions
  std::vector<Version> versions;  ///< the first is the test as the first file has it
  std::vector<HandGraded> handGraded;
  std::vector<Finding> findings;  ///< in the order of files and questions
  bool renumbered = false;        ///< some row has another number than a version's paper
  Ref<clsLmf> lmf;                ///< the filled model, to be saved; nothing without `kDone`

  /// Whether a finding is at least as severe.
  bool Has(Severity severity) const;
};

/// What a version asks at a row, as its file has it.
const Question& QuestionOf(const Result& result, const Version& version, const Answer& answer);

/// The marks of a key, apart by one blank: "B D". Where any one of several counts, they are apart by a stroke:
/// "B|D".
std::string KeyText(const Row& row, const Answer& answer);

/// Points in the shortest decimal: "2.5".
std::string PointsText(double points);

/// A question to the user. The library words it.
struct Dialog {
  std::string title;
  std::string text;                  ///< lines end with CR LF, indented ones begin with a tab
  std::vector<std::string> buttons;  ///< captions; "&" stands before the letter that chooses the button
  std::string file;                  ///< name of the file that it is about; empty for the test as a whole
};

/// How far the work is.
struct Progress {
  std::string step;  ///< "reading", "checking", "merging"
  std::string file;  ///< that is being read
  long done = 0;     ///< of `total` steps
  long total = 0;
};

struct Options {
  std::string title;                      ///< empty: that of the first file
  std::vector<std::string> versionNames;  ///< one for each version; empty: those of the files
  bool oddOnly = false;                   ///< even-numbered questions have the letters of odd-numbered ones
  Long objectives = 0;                    ///< flags of `TORVATestImportObjectives`
  std::string state;                      ///< two letters; the state whose objectives are read
  long maxQuestions = 0;                  ///< no more than the first ones; 0: all
  bool renumber = false;                  ///< rows have numbers without gaps

  /// Answers a dialog with the position of a button, from 0. Without it the first button is chosen.
  std::function<int(const Dialog&)> ask;
  /// Told at each step. It may throw: the exception leaves `MakeSheet`, which so can be cancelled.
  std::function<void(const Progress&)> progress;
};

/// A file to read.
struct Input {
  std::string path;  ///< of a regular file, in UTF-8
  std::string name;  ///< for people, in findings and dialogs; empty: the path
};

/// Reads the files, of which the first is the test and the others are its versions; checks that they go together;
/// and lays them over a sheet. An LMF file, which is told by its content, brings its own versions along.
///
/// Sets the library's error object of the calling thread for the time of the call, and afterwards the one that was
/// there. Trouble with the files is in the result and is never thrown. `std::bad_alloc`, and what a callback
/// throws, leave it.
Result MakeSheet(const std::vector<Input>& files, const Options& options = {});

}  // namespace TORVA35::sheet
