#pragma once

#include <memory>
#include <utility>

#include "torva35/base/Array.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Text.h"
#include "torva35/base/Types.h"
#include "torva35/model/clsTORVATestQuestions.h"
#include "torva35/model/clsTORVATestSequences.h"
#include "torva35/model/clsTORVATestStrings.h"

namespace TORVA35 {

/// Where a test came from. A property of this type takes any Long.
enum TORVATestSourceType : Long {
  TORVATestSourceTypeUnknown = -1,  ///< the test was cleared
  TORVATestSourceTypeExamView = 0,  ///< a new test, or one that `LoadXML` filled
  TORVATestSourceTypeLMF = 1,       ///< `LoadLMF` or `BuildTestFromLMF` filled it
  TORVATestSourceTypeNGT = 2,       ///< for a host; the library never sets it
};

/// Which objectives of an ExamView file are read. Flags: add them together.
enum TORVATestImportObjectives : Long {
  TORVATestImportObjectivesNone = 0,      ///< no objective is read
  TORVATestImportObjectivesLearning = 1,  ///< elements `text-objective`
  TORVATestImportObjectivesLocal = 2,     ///< elements `local-standard`
  TORVATestImportObjectivesState = 4,     ///< elements `state-objective`, see `StateAbbreviation`
  TORVATestImportObjectivesNational = 8,  ///< elements `national-standard`
};

/// One printed test: its questions, versions and answer scales. It fills itself from a file, or is filled by hand.
///
/// Plain properties have no failure of their own. Every other member reports its failures to the error object and
/// returns False, nothing, an empty text or 0.
class TORVA35_API clsTORVATest : public Object, public std::enable_shared_from_this<clsTORVATest> {
 public:
  clsTORVATest();
  ~clsTORVATest() override;

  /// The questions, in order. The test's own list, as are the versions and the scales, and never a copy: changes
  /// are seen by every holder. Setting replaces the reference; a list that was set to nothing fails (91) where a
  /// member needs it.
  Ref<clsTORVATestQuestions> Questions() const { return questions_; }
  void Questions(Ref<clsTORVATestQuestions> oValue) { questions_ = std::move(oValue); }
  /// The versions. A test that was loaded from ExamView has none.
  Ref<clsTORVATestSequences> Sequences() const { return sequences_; }
  void Sequences(Ref<clsTORVATestSequences> oValue) { sequences_ = std::move(oValue); }

  /// Labels of multiple-choice questions at odd positions of the test; "A" to "D" in a new test. `Clear` leaves
  /// all scales as they are.
  Ref<clsTORVATestStrings> MultipleChoiceOddScale() const { return multipleChoiceOddScale_; }
  void MultipleChoiceOddScale(Ref<clsTORVATestStrings> oValue) { multipleChoiceOddScale_ = std::move(oValue); }
  /// Likewise at even positions.
  Ref<clsTORVATestStrings> MultipleChoiceEvenScale() const { return multipleChoiceEvenScale_; }
  void MultipleChoiceEvenScale(Ref<clsTORVATestStrings> oValue) { multipleChoiceEvenScale_ = std::move(oValue); }
  /// Labels of true/false questions; "T", "F" in a new test.
  Ref<clsTORVATestStrings> TrueFalseScale() const { return trueFalseScale_; }
  void TrueFalseScale(Ref<clsTORVATestStrings> oValue) { trueFalseScale_ = std::move(oValue); }
  /// Labels of yes/no questions; "Y", "N" in a new test.
  Ref<clsTORVATestStrings> YesNoScale() const { return yesNoScale_; }
  void YesNoScale(Ref<clsTORVATestStrings> oValue) { yesNoScale_ = std::move(oValue); }

  /// Kept to its first 255 units; the rest is dropped silently, here and wherever a text is kept to a number of
  /// units.
  String Title() const { return title_; }
  void Title(String sValue) { title_ = Cut(std::move(sValue), 255); }
  /// Names the version that this test is, on the form and as `Answer` of its default version. Kept to its first 50
  /// units.
  String Version() const { return version_; }
  void Version(String sValue) { version_ = Cut(std::move(sValue), 50); }
  /// From an LMF file. Of any length.
  String Notes() const { return notes_; }
  void Notes(String sValue) { notes_ = std::move(sValue); }
  /// For a host; no file sets it. Kept to its first 255 units.
  String CreatedBy() const { return createdBy_; }
  void CreatedBy(String sValue) { createdBy_ = Cut(std::move(sValue), 255); }
  /// For a host; no file sets it. Kept to its first 255 units.
  String TeacherID() const { return teacherID_; }
  void TeacherID(String sValue) { teacherID_ = Cut(std::move(sValue), 255); }
  /// ExamView (0) in a new test, Unknown (-1) after `Clear`. Takes any Long.
  TORVATestSourceType Source() const { return static_cast<TORVATestSourceType>(source_); }
  void Source(Long eValue) { source_ = eValue; }
  /// How many objectives the questions have together; one that two questions share counts twice.
  Long NumObjectives() const;
  /// For a host; no file sets it. Kept to its first 50 units.
  String ID() const { return id_; }
  void ID(String sValue) { id_ = Cut(std::move(sValue), 50); }
  /// Which objectives `LoadXML` reads; set before it. `Clear` leaves it as it is.
  TORVATestImportObjectives ImportObjectives() const {
    return static_cast<TORVATestImportObjectives>(importObjectives_);
  }
  void ImportObjectives(Long eValue) { importObjectives_ = eValue; }
  /// The state whose objectives `LoadXML` reads; set before it. Kept to its first 2 units. `Clear` leaves it as it
  /// is.
  String StateAbbreviation() const { return stateAbbreviation_; }
  void StateAbbreviation(String sValue) { stateAbbreviation_ = Cut(std::move(sValue), 2); }
  /// True for a test from an LMF file and for a copy.
  bool UserDefined() const { return userDefined_; }
  void UserDefined(bool bValue) { userDefined_ = bValue; }
  /// From an LMF file. Kept to its first 255 units.
  String Description() const { return description_; }
  void Description(String sValue) { description_ = Cut(std::move(sValue), 255); }

  /// The kind that an ExamView type word ("mc", in any case) or type number stands for; Unknown for any other word
  /// or number. A value that is neither is reported (13); then 0.
  TORVATestQuestionType QuestionType(const TaggedValue& vType) const;

  /// Removes versions and questions, empties the texts, and sets `UserDefined` to False and `Source` to Unknown.
  /// The scales, `ImportObjectives` and `StateAbbreviation` stay.
  void Clear();

  /// Makes oErr the error object of the calling thread, for every object of the library. Returns True when oErr is
  /// an object, and False when it is nothing: failures then show in a message box.
  bool SetError(const Ref<Object>& oErr);

  /// Fills the test from an LMF file. sLMFFile: its path. The title comes from a path with "\" only. Returns True
  /// when the test then holds a question. A file that cannot be opened leaves the test as it was, without a
  /// report.
  bool LoadLMF(const String& sLMFFile);

  /// Fills the test from an ExamView XML export; what it held before is gone in any case.
  /// sExamViewXMLFile: path of the file. bOddDistractorsOnly: questions at even positions use the letters of those
  /// at odd positions. bUserCancelled: set True when the user refuses the partial-credit warning, else left alone.
  /// bVerbose: whether that warning is shown.
  /// Returns True when the load ran to its end and the test holds a question. A file that is missing or is no
  /// ExamView file gives False without a report. A question that cannot be read, or whose ID is in use, is
  /// reported and left out. One that takes too much text (failure 14) ends the load: False, with the questions
  /// before it.
  bool LoadXML(const String& sExamViewXMLFile, bool bOddDistractorsOnly, bool& bUserCancelled,
               bool bVerbose = true);
  bool LoadXML(const String& sExamViewXMLFile, bool bOddDistractorsOnly = false);

  /// A new test with copies of questions, versions and scales. `UserDefined` is True; `ID`, `ImportObjectives` and
  /// `StateAbbreviation` are as in a new test. Nothing after a failure.
  Ref<clsTORVATest> Copy() const;

  /// The labels of a question, in a list of the caller's own. vQuestionIndex: position from 1, or ID.
  /// vIsOddOverride: "True" takes the odd scale and "False" the even one, whatever the position of the question.
  /// True/false and yes/no questions have their scales, a multiple-choice question has as many labels as answers,
  /// any other kind has an empty list. Nothing when there is no such question.
  Ref<clsTORVATestStrings> QuestionScale(const TaggedValue& vQuestionIndex,
                                         const TaggedValue& vIsOddOverride = Missing) const;

  /// Makes another test a version of this one. It must have the same questions with the same answer keys, which
  /// changed places among their own kind only, and a `Version` that no version of this test has. Each failed check
  /// shows a dialog; then False, and this test is unchanged. Keys are compared as by `ValidTestVersions` of the
  /// engine. A merge takes the versions from the other tests of the engine and not from here.
  bool AddSequence(const Ref<clsTORVATest>& oTestVersion);

  /// The answer key of a question as labels, or as numbers when bNumeric is True, in the order of its
  /// `CorrectAnswers`. More than one stand in parentheses unless bEnclosedByParens is False. A number that the
  /// scale does not have gives an empty place. Empty when there is no such question or it has no key.
  String CorrectAnswersAsString(const TaggedValue& vQuestionIndex, const String& sDelimiter = u",",
                                bool bEnclosedByParens = true, bool bNumeric = false) const;

  /// The same as an array with lower bound 0: numbers in decimal, or labels when bAsString is True.
  Array<String> CorrectAnswersAsArray(const TaggedValue& vQuestionIndex, bool bAsString = false) const;

 private:
  bool TrimScales();

  Ref<clsTORVATestQuestions> questions_;
  Ref<clsTORVATestSequences> sequences_;
  Ref<clsTORVATestStrings> multipleChoiceOddScale_;
  Ref<clsTORVATestStrings> multipleChoiceEvenScale_;
  Ref<clsTORVATestStrings> trueFalseScale_;
  Ref<clsTORVATestStrings> yesNoScale_;
  String title_;
  String version_;
  String notes_;
  String createdBy_;
  String teacherID_;
  Long source_ = TORVATestSourceTypeExamView;
  String id_;
  Long importObjectives_ = TORVATestImportObjectivesNone;
  String stateAbbreviation_;
  bool userDefined_ = false;
  String description_;
};

}  // namespace TORVA35
