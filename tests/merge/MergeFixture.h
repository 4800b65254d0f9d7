#pragma once

#include <string>
#include <vector>

#include "tests/RecordingHost.h"
#include "torva35/merge/clsTORVA.h"

namespace TORVA35 {

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

  /// A field of questions with these labels, whose values are "v1", "v2", ...
  static Ref<clsTemplateField> Field(Long count, bool graded, const std::vector<String>& labels,
                                     Integer group = 0) {
    auto field = New<clsTemplateField>();
    field->FieldClass(1);
    field->FieldType(1);
    field->GroupID(group);
    for (Long q = 1; q <= count; ++q) {
      field->Questions()->AddNew();
      const auto question = field->Questions()->Item(q);
      question->Graded(graded);
      for (const String& label : labels) {
        question->Labels()->Add(label);
        question->Values()->Add(u"v" + Decimal(question->Labels()->Count()));
      }
    }
    return field;
  }

  /// A form with one page for each list of fields; its questions are named "Q1", "Q2", ...
  static Ref<clsTemplate> Form(const std::vector<std::vector<Ref<clsTemplateField>>>& pages) {
    auto form = New<clsTemplate>();
    Long number = 0;
    for (const auto& fields : pages) {
      auto page = New<clsTemplatePage>();
      for (const auto& field : fields) {
        for (Long q = 1; q <= field->Questions()->Count(); ++q) {
          field->Questions()->Item(q)->Name(u"Q" + Decimal(++number));
        }
        page->Fields()->Add(field);
      }
      form->Pages()->Add(page);
    }
    return form;
  }

  bool Merge(const Ref<clsTORVATest>& test, const Ref<clsTemplate>& form) {
    engine->Tests()->RemoveAll();
    engine->Tests()->Add(test);
    engine->TemplateIn(form);
    engine->TemplateOut(New<clsTemplate>());
    return engine->Merge();
  }

  Ref<clsTemplateQuestion> OutQuestion(Long page, Long field, Long question) {
    return engine->TemplateOut()->Pages()->Item(page)->Fields()->Item(field)->Questions()->Item(question);
  }
  Ref<clsLmfQuestion> Output(Long position) { return engine->MIVLMF()->Questions()->Item(position); }

  template <class List>
  static String Joined(const List& list) {
    String text;
    for (Long i = 1; i <= list->Count(); ++i) text += (i > 1 ? u"|" : u"") + list->Item(i);
    return text;
  }

  static String Flags(const Ref<clsLmfQuestion>& question) {
    String text;
    for (Long k = 1; k <= question->ObjectiveFlags()->Count(); ++k) {
      text += *question->ObjectiveFlags()->Item(k) ? u'1' : u'0';
    }
    return text;
  }

  static std::vector<Long> Order(const Ref<clsLmfSequence>& sequence) {
    std::vector<Long> order;
    for (Long i = 1; i <= sequence->Count(); ++i) order.push_back(sequence->Item(i));
    return order;
  }

  static Dialog Told(String title, String text) { return {std::move(title), std::move(text)}; }

  Ref<clsTORVA> engine = New<clsTORVA>();
};

}  // namespace TORVA35
