#pragma once

#include <vector>

#include "tests/LmfText.h"
#include "tests/RecordingHost.h"
#include "torva35/merge/clsTORVA.h"

namespace TORVA35 {

const std::vector<String> kFive = {u"1", u"2", u"3", u"4", u"5"};

/// An engine with tests and forms made by hand.
class MergeTest : public HostTest {
 protected:
  static Ref<clsTORVATestQuestion> Question(const String& id, Long type, Long answers,
                                            const std::vector<Integer>& correct = {}) {
    auto question = New<clsTORVATestQuestion>();
    question->ID(id);
    question->QuestionType(type);
    question->QuestionText(u"Text of " + id);
    for (Long i = 1; i <= answers; ++i) question->Answers()->Add(u"answer " + Decimal(i));
    for (Integer number : correct) question->CorrectAnswers()->Add(number);
    return question;
  }
  static Ref<clsTORVATestQuestion> Choice(const String& id, Integer correct = 1, Long answers = 3) {
    return Question(id, TORVATestQuestionTypeMultipleChoice, answers, {correct});
  }
  static Ref<clsTORVATestQuestion> Subjective(const String& id) {
    return Question(id, TORVATestQuestionTypeSubjective, 0);
  }
  static Ref<clsTORVATest> Test(const std::vector<Ref<clsTORVATestQuestion>>& questions, String version = {}) {
    auto test = New<clsTORVATest>();
    test->Version(std::move(version));
    for (const auto& question : questions) test->Questions()->Add(question);
    return test;
  }

  /// A field of choice questions with these labels, whose values are "v1", "v2", ...
  template <class FieldClass = clsTemplateField, class QuestionClass = clsTemplateQuestion>
  static Ref<clsTemplateField> Field(Long count, bool graded, const std::vector<String>& labels,
                                     Integer group = 0) {
    const Ref<clsTemplateField> field = New<FieldClass>();
    field->FieldClass(1);
    field->FieldType(1);
    field->GroupID(group);
    while (count-- > 0) {
      const Ref<clsTemplateQuestion> question = New<QuestionClass>();
      question->Graded(graded);
      for (const String& label : labels) {
        question->Labels()->Add(label);
        question->Values()->Add(u"v" + Decimal(question->Labels()->Count()));
      }
      field->Questions()->Add(question);
    }
    return field;
  }
  /// A form with one page for each list of fields; its questions are named "Q1", "Q2", ...
  template <class FormClass = clsTemplate, class PageClass = clsTemplatePage>
  static Ref<clsTemplate> Form(const std::vector<std::vector<Ref<clsTemplateField>>>& pages) {
    const Ref<clsTemplate> form = New<FormClass>();
    Long number = 0;
    for (const auto& fields : pages) {
      const Ref<clsTemplatePage> page = New<PageClass>();
      for (const auto& field : fields) {
        for (const auto& question : *field->Questions()) question->Name(u"Q" + Decimal(++number));
        page->Fields()->Add(field);
      }
      form->Pages()->Add(page);
    }
    return form;
  }

  bool Merge(const std::vector<Ref<clsTORVATest>>& tests, const Ref<clsTemplate>& form) {
    engine->Tests()->RemoveAll();
    for (const auto& test : tests) engine->Tests()->Add(test);
    engine->TemplateIn(form);
    engine->TemplateOut(New<clsTemplate>());
    return engine->Merge();
  }
  static Ref<clsTemplateField> FieldOf(const Ref<clsTemplate>& form, Long page, Long field) {
    return form->Pages()->Item(page)->Fields()->Item(field);
  }
  /// A question of the form that came out, and of the model.
  Ref<clsTemplateQuestion> OutQuestion(Long page, Long field, Long question) {
    return FieldOf(engine->TemplateOut(), page, field)->Questions()->Item(question);
  }
  Ref<clsLmfQuestion> Output(Long position) { return engine->MIVLMF()->Questions()->Item(position); }
  /// The labels of an output question.
  String Labels(Long position) { return Joined(*Output(position)->Labels()); }

  static Dialog Told(String title, String text) { return {std::move(title), std::move(text)}; }

  Ref<clsTORVA> engine = New<clsTORVA>();
};

}  // namespace TORVA35
