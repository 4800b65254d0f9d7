#pragma once

#include <memory>
#include <utility>

#include "torva35/base/ObjectList.h"
#include "torva35/lmf/clsLmfObjectiveFlags.h"
#include "torva35/lmf/clsLmfStrings.h"

namespace TORVA35 {

/// One question of the form in an LMF file. A new one has all its lists, empty, and 0, False or the empty text
/// everywhere. The lists stand inside the question: each reference to one keeps the question alive.
class TORVA35_API clsLmfQuestion : public Object, public std::enable_shared_from_this<clsLmfQuestion> {
 public:
  clsLmfQuestion() = default;

  /// The answer texts that the question offers.
  virtual Ref<clsLmfStrings> Labels() const { return Part(labels_); }
  /// The values that stand for them, parallel to `Labels`.
  virtual Ref<clsLmfStrings> Values() const { return Part(values_); }
  /// One flag for each objective of the file.
  virtual Ref<clsLmfObjectiveFlags> ObjectiveFlags() const { return Part(objectiveFlags_); }
  /// The answer key. Only the first entry matters: the whole key as one text, by labels, as "(A,C)".
  virtual Ref<clsLmfStrings> CorrectLabels() const { return Part(correctLabels_); }
  /// Likewise by values, as "(1,3)".
  virtual Ref<clsLmfStrings> CorrectValues() const { return Part(correctValues_); }

  /// Name of the question on the form.
  virtual String Name() const { return name_; }
  virtual void Name(String sName) { name_ = std::move(sName); }
  /// Wording of the question.
  virtual String Text() const { return text_; }
  virtual void Text(String sText) { text_ = std::move(sText); }

  /// True: the question is scored.
  virtual bool Graded() const { return graded_; }
  virtual void Graded(bool bGraded) { graded_ = bGraded; }
  /// True: the question is scored by hand.
  virtual bool Subjective() const { return subjective_; }
  virtual void Subjective(bool bSubjective) { subjective_ = bSubjective; }

  /// Settings taken over from the form question.
  ///@{
  virtual Integer CarriedFlag1() const { return carriedFlag1_; }
  virtual void CarriedFlag1(Integer iFlag) { carriedFlag1_ = iFlag; }
  virtual Integer CarriedFlag2() const { return carriedFlag2_; }
  virtual void CarriedFlag2(Integer iFlag) { carriedFlag2_ = iFlag; }
  ///@}
  /// A merge sets 1 for a question of a field with `FieldMode` 1, else 2.
  virtual Long QuestionMode() const { return questionMode_; }
  virtual void QuestionMode(Long lMode) { questionMode_ = lMode; }
  /// Above 0: more than one mark is accepted.
  virtual Integer Multiples() const { return multiples_; }
  virtual void Multiples(Integer iMultiples) { multiples_ = iMultiples; }
  /// Stored, without further effect; a merge sets what a new question has.
  ///@{
  virtual String DefaultText() const { return defaultText_; }
  virtual void DefaultText(String sText) { defaultText_ = std::move(sText); }
  virtual Double DefaultValue() const { return defaultValue_; }
  virtual void DefaultValue(Double dValue) { defaultValue_ = dValue; }
  ///@}

  /// Number of correct answers.
  virtual Long CorrectCount() const { return correctCount_; }
  virtual void CorrectCount(Long lCount) { correctCount_ = lCount; }
  /// True: all correct answers are needed.
  virtual bool CorrectAnd() const { return correctAnd_; }
  virtual void CorrectAnd(bool bAnd) { correctAnd_ = bAnd; }
  /// Points for a correct answer, for an incorrect one and for none, and those of a question scored by hand.
  ///@{
  virtual Double CorrectPoints() const { return correctPoints_; }
  virtual void CorrectPoints(Double dPoints) { correctPoints_ = dPoints; }
  virtual Double IncorrectPoints() const { return incorrectPoints_; }
  virtual void IncorrectPoints(Double dPoints) { incorrectPoints_ = dPoints; }
  virtual Double NoResponsePoints() const { return noResponsePoints_; }
  virtual void NoResponsePoints(Double dPoints) { noResponsePoints_ = dPoints; }
  virtual Double SubjectivePoints() const { return subjectivePoints_; }
  virtual void SubjectivePoints(Double dPoints) { subjectivePoints_ = dPoints; }
  ///@}

  /// Descriptive texts, as on a question of a test, but stored whole.
  ///@{
  virtual String Difficulty() const { return difficulty_; }
  virtual void Difficulty(String sDifficulty) { difficulty_ = std::move(sDifficulty); }
  virtual String Reference() const { return reference_; }
  virtual void Reference(String sReference) { reference_ = std::move(sReference); }
  virtual String Topic() const { return topic_; }
  virtual void Topic(String sTopic) { topic_ = std::move(sTopic); }
  virtual String Keywords() const { return keywords_; }
  virtual void Keywords(String sKeywords) { keywords_ = std::move(sKeywords); }
  virtual String Miscellaneous() const { return miscellaneous_; }
  virtual void Miscellaneous(String sMiscellaneous) { miscellaneous_ = std::move(sMiscellaneous); }
  virtual String Notes() const { return notes_; }
  virtual void Notes(String sNotes) { notes_ = std::move(sNotes); }
  ///@}

 private:
  // A file has thousands of questions: the lists take no allocation of their own, and share the question's count.
  template <class T>
  Ref<T> Part(T& part) const {
    return Ref<T>(weak_from_this().lock(), &part);
  }

  mutable clsLmfStrings labels_;
  mutable clsLmfStrings values_;
  mutable clsLmfStrings correctLabels_;
  mutable clsLmfStrings correctValues_;
  mutable clsLmfObjectiveFlags objectiveFlags_;
  String name_;
  String text_;
  String defaultText_;
  String difficulty_;
  String reference_;
  String topic_;
  String keywords_;
  String miscellaneous_;
  String notes_;
  Double defaultValue_ = 0;
  Double correctPoints_ = 0;
  Double incorrectPoints_ = 0;
  Double noResponsePoints_ = 0;
  Double subjectivePoints_ = 0;
  Long questionMode_ = 0;
  Long correctCount_ = 0;
  Integer carriedFlag1_ = 0;
  Integer carriedFlag2_ = 0;
  Integer multiples_ = 0;
  bool graded_ = false;
  bool subjective_ = false;
  bool correctAnd_ = false;
};

/// The questions of an LMF file, in form order. A question is known everywhere by its position in this list.
class TORVA35_API clsLmfQuestions : public ObjectList<clsLmfQuestion> {
 public:
  /// Appends the question itself, not a copy. Raises 91 when there is none.
  virtual void Add(Ref<clsLmfQuestion> oQuestion, CallSite at = CallSite::Current());
  /// Empties the list.
  void RemoveAll() { items_.clear(); }
};

}  // namespace TORVA35
