#pragma once

#include <utility>
#include <vector>

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/Text.h"
#include "torva35/base/Types.h"
#include "torva35/model/clsTORVATestCorrect.h"
#include "torva35/model/clsTORVATestStrings.h"

namespace TORVA35 {

/// Kind of a question. A property of this type takes any Long; 0 has no name. A form can take true/false, yes/no,
/// multiple choice and subjective questions; `RemoveInvalid` takes out all others.
enum TORVATestQuestionType : Long {
  TORVATestQuestionTypeUnknown = -1,  ///< a new question, or a kind that the file does not name
  TORVATestQuestionTypeTrueFalse = 1,
  TORVATestQuestionTypeYesNo = 2,
  TORVATestQuestionTypeMultipleChoice = 3,
  TORVATestQuestionTypeModifiedTrueFalse = 4,
  TORVATestQuestionTypeNumericResponse = 5,
  TORVATestQuestionTypeCompletion = 6,
  TORVATestQuestionTypeMatching = 7,
  TORVATestQuestionTypeShortAnswer = 8,
  TORVATestQuestionTypeProblem = 9,
  TORVATestQuestionTypeEssay = 10,
  TORVATestQuestionTypeCase = 11,
  TORVATestQuestionTypeSubjective = 12,  ///< scored by hand; from LMF files only
  TORVATestQuestionTypeOther = 13,
  TORVATestQuestionTypeBimodal = 14,
};

class clsTORVATestQuestions;

/// One question of a test. A plain record: its properties have no failure of their own.
class TORVA35_API clsTORVATestQuestion : public Object {
 public:
  clsTORVATestQuestion();
  ~clsTORVATestQuestion() override;

  /// The objectives that the question belongs to. The question's own list, as are the two below, and never a copy:
  /// changes are seen by every holder. Setting replaces the reference.
  Ref<clsTORVATestStrings> LearningObjectives() const { return learningObjectives_; }
  void LearningObjectives(Ref<clsTORVATestStrings> oValue) { learningObjectives_ = std::move(oValue); }
  /// Texts of the answer choices, in the order in which they are shown.
  Ref<clsTORVATestStrings> Answers() const { return answers_; }
  void Answers(Ref<clsTORVATestStrings> oValue) { answers_ = std::move(oValue); }
  /// 1-based positions in `Answers`; nothing keeps them inside it.
  Ref<clsTORVATestCorrect> CorrectAnswers() const { return correctAnswers_; }
  void CorrectAnswers(Ref<clsTORVATestCorrect> oValue) { correctAnswers_ = std::move(oValue); }

  /// Points for a correct answer; 1 in a new question. A merge takes the points of the form instead, except for
  /// `SubjectivePoints`.
  Single CorrectPoints() const { return correctPoints_; }
  void CorrectPoints(Single sngValue) { correctPoints_ = sngValue; }
  /// Points for an incorrect answer; 0 in a new question.
  Single IncorrectPoints() const { return incorrectPoints_; }
  void IncorrectPoints(Single sngValue) { incorrectPoints_ = sngValue; }
  /// Points for no answer; 0 in a new question.
  Single NoResponsePoints() const { return noResponsePoints_; }
  void NoResponsePoints(Single sngValue) { noResponsePoints_ = sngValue; }
  /// Points of a question that is scored by hand; 0 in a new question.
  Single SubjectivePoints() const { return subjectivePoints_; }
  void SubjectivePoints(Single sngValue) { subjectivePoints_ = sngValue; }

  /// True, as in a new question, when all correct answers must be selected.
  bool CorrectAnd() const { return correctAnd_; }
  void CorrectAnd(bool bValue) { correctAnd_ = bValue; }
  /// True when more than one answer must be selected: `CorrectAnswers` has several and `CorrectAnd` is True.
  /// Raises 91 to the caller, at the caller's line, when `CorrectAnswers` was set to nothing.
  bool MultiplesPermitted(CallSite at = CallSite::Current()) const;

  /// The wording as plain text. Of any length.
  String QuestionText() const { return questionText_; }
  void QuestionText(String sValue) { questionText_ = std::move(sValue); }
  /// Descriptive text. Kept to its first 255 units; the rest is dropped silently.
  String Difficulty() const { return difficulty_; }
  void Difficulty(String sValue) { difficulty_ = Cut(std::move(sValue), kTextUnits); }
  /// Descriptive text. Of any length.
  String Reference() const { return reference_; }
  void Reference(String sValue) { reference_ = std::move(sValue); }
  /// Descriptive text. Kept to its first 255 units; the rest is dropped silently.
  String Topic() const { return topic_; }
  void Topic(String sValue) { topic_ = Cut(std::move(sValue), kTextUnits); }
  /// Descriptive text. Kept to its first 255 units; the rest is dropped silently.
  String Keywords() const { return keywords_; }
  void Keywords(String sValue) { keywords_ = Cut(std::move(sValue), kTextUnits); }
  /// Descriptive text. Kept to its first 255 units; the rest is dropped silently.
  String Miscellaneous() const { return miscellaneous_; }
  void Miscellaneous(String sValue) { miscellaneous_ = Cut(std::move(sValue), kTextUnits); }
  /// Descriptive text. Of any length.
  String Notes() const { return notes_; }
  void Notes(String sValue) { notes_ = std::move(sValue); }

  /// Names the question across the versions of a test. Kept to its first 50 units. `clsTORVATestQuestions` files
  /// the question under the ID that it has when it is added; a later change does not move it.
  String ID() const { return id_; }
  void ID(String sValue);

  /// Unknown (-1) in a new question. Takes any Long.
  TORVATestQuestionType QuestionType() const { return static_cast<TORVATestQuestionType>(questionType_); }
  void QuestionType(Long eValue) { questionType_ = eValue; }

  /// A new question with equal fields and lists of its own, copied as `Copy` of `clsTORVATestStrings` and of
  /// `clsTORVATestCorrect` do. A list that was set to nothing is reported; then nothing.
  Ref<clsTORVATestQuestion> Copy() const;

 private:
  friend class Inside;
  friend class clsTORVATestQuestions;

  // A list that holds the question must know when its ID changes. One that holds it twice counts twice.
  void MakeRoomForHolder();
  void AddHolder(clsTORVATestQuestions& list) noexcept;
  void RemoveHolder(const clsTORVATestQuestions& list) noexcept;

  static constexpr std::size_t kTextUnits = 255;
  static constexpr std::size_t kIDUnits = 50;

  Ref<clsTORVATestStrings> learningObjectives_;
  Ref<clsTORVATestStrings> answers_;
  Ref<clsTORVATestCorrect> correctAnswers_;
  Single correctPoints_ = 1;
  Single incorrectPoints_ = 0;
  Single noResponsePoints_ = 0;
  Single subjectivePoints_ = 0;
  Long questionType_ = TORVATestQuestionTypeUnknown;
  bool correctAnd_ = true;
  String questionText_;
  String difficulty_;
  String reference_;
  String topic_;
  String keywords_;
  String miscellaneous_;
  String notes_;
  String id_;
  clsTORVATestQuestions* holder_ = nullptr;
  std::vector<clsTORVATestQuestions*> otherHolders_;  // most often none
};

}  // namespace TORVA35
