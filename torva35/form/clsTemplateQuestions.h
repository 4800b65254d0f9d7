#pragma once

#include <concepts>
#include <optional>
#include <utility>

#include "torva35/form/TemplatePart.h"
#include "torva35/form/clsTemplateStrings.h"

namespace TORVA35 {

/// One line of marks on a form: the unit that can be graded. A new one is blank: no text, no points, not graded,
/// and two empty lists of its own.
class TORVA35_API clsTemplateQuestion : public TemplatePart {
 public:
  clsTemplateQuestion();
  /// A blank question with these two lists.
  clsTemplateQuestion(Ref<clsTemplateStrings> oLabels, Ref<clsTemplateStrings> oValues);

  /// Name of the question on the form, see `clsTemplate::QuestionNames`.
  virtual String Name() const { return settings_.name; }
  virtual void Name(String sName) { settings_.name = std::move(sName); }

  /// Wording of the question.
  virtual String Text() const { return settings_.text; }
  virtual void Text(String sText) { settings_.text = std::move(sText); }

  /// True: the question is scored against an answer key.
  virtual bool Graded() const { return settings_.graded; }
  virtual void Graded(bool bGraded) { settings_.graded = bGraded; }

  /// True: the question is scored by hand.
  virtual bool Subjective() const { return settings_.subjective; }
  virtual void Subjective(bool bSubjective) { settings_.subjective = bSubjective; }

  /// Above 0: more than one mark is accepted.
  virtual Integer Multiples() const { return settings_.multiples; }
  virtual void Multiples(Integer iMultiples) { settings_.multiples = iMultiples; }

  /// Points for a correct answer.
  virtual Double CorrectPoints() const { return settings_.correctPoints; }
  virtual void CorrectPoints(Double dPoints) { settings_.correctPoints = dPoints; }
  /// Points for an incorrect answer.
  virtual Double IncorrectPoints() const { return settings_.incorrectPoints; }
  virtual void IncorrectPoints(Double dPoints) { settings_.incorrectPoints = dPoints; }
  /// Points for no answer.
  virtual Double NoResponsePoints() const { return settings_.noResponsePoints; }
  virtual void NoResponsePoints(Double dPoints) { settings_.noResponsePoints = dPoints; }

  /// Settings of the host's own, which a merge hands on to the output question.
  ///@{
  virtual Integer CarriedFlag1() const { return settings_.carriedFlag1; }
  virtual void CarriedFlag1(Integer iFlag) { settings_.carriedFlag1 = iFlag; }
  virtual Integer CarriedFlag2() const { return settings_.carriedFlag2; }
  virtual void CarriedFlag2(Integer iFlag) { settings_.carriedFlag2 = iFlag; }
  ///@}

  /// The question's own list of answer labels, one for each answer position. Setting it takes the list by
  /// reference; nothing is allowed and is what a reader then gets.
  virtual Ref<clsTemplateStrings> Labels() const { return labels_; }
  virtual void Labels(Ref<clsTemplateStrings> oLabels) { labels_ = std::move(oLabels); }
  /// Likewise the answer values, in step with the labels.
  virtual Ref<clsTemplateStrings> Values() const { return values_; }
  virtual void Values(Ref<clsTemplateStrings> oValues) { values_ = std::move(oValues); }

  /// The number that was set, or else the position among the output questions that a merge of this form makes: a
  /// field that the merge skips has the number of the question before it. 0 for a question without a number
  /// of its own that belongs to no form, or whose form is gone. The argument has no effect. Constant time as long
  /// as no page, field or question is added and no `GroupID` changes.
  virtual Long Number(bool, CallSite at = CallSite::Current()) const;
  /// Sets the number. A template, so that the argument of the getter cannot be taken for one.
  template <std::signed_integral Whole>
  void Number(Whole lNumber) {
    settings_.number = Long{lNumber};
  }

  /// A new question, equal in everything and with lists of its own, that belongs to no form.
  virtual Ref<clsTemplateQuestion> Copy() const;

 private:
  friend class clsTemplate;

  struct Settings {
    String name;
    String text;
    Double correctPoints = 0;
    Double incorrectPoints = 0;
    Double noResponsePoints = 0;
    std::optional<Long> number;
    Integer carriedFlag1 = 0;
    Integer carriedFlag2 = 0;
    Integer multiples = 0;
    bool graded = false;
    bool subjective = false;
  };

  Settings settings_;
  Ref<clsTemplateStrings> labels_;
  Ref<clsTemplateStrings> values_;
  Long position_ = 0;  // among the output questions; kept by the form
};

/// The questions of a field, in their order.
class TORVA35_API clsTemplateQuestions : public TemplateList<clsTemplateQuestion> {
 public:
  /// Appends a blank question.
  virtual void AddNew();
};

}  // namespace TORVA35
