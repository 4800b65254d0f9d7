// A form and a test with versions, made of the input, through everything that an engine does.

#include <algorithm>
#include <vector>

#include "fuzz/Fuzz.h"
#include "tests/LmfText.h"
#include "torva35/merge/clsTORVA.h"

using namespace TORVA35;
using fuzz::Decisions;
using fuzz::Require;

namespace {

// Few of them, so that they meet again: with another letter case, cut, empty, with what separates lists.
String SomeText(Decisions& decisions) {
  static const String texts[] = {u"A",           u"a",       u"B",     u"C",    u"D",   u"",
                                 u"1",           u"2",       u"(A,B)", u"x\ty", u" b ", String(300, u'\u00C9'),
                                 String{0xD800}, u"|\\u0041"};
  return texts[decisions.Below(std::size(texts))];
}

Ref<clsTemplateStrings> SomeLabels(Decisions& decisions) {
  if (decisions.OneIn(64)) return nullptr;
  auto labels = New<clsTemplateStrings>();
  for (Long count = decisions.Below(7); count > 0; --count) labels->Add(SomeText(decisions));
  return labels;
}

void SetUp(clsTemplateQuestion& question, Decisions& decisions) {
  question.Graded(!decisions.OneIn(4));
  question.Labels(SomeLabels(decisions));
  question.Values(decisions.OneIn(8)  ? SomeLabels(decisions)
                  : question.Labels() ? question.Labels()->Copy()
                                      : nullptr);
  const std::uint8_t rest = decisions.Byte();
  if (rest < 128) return;
  question.Name(SomeText(decisions));
  question.Multiples(static_cast<Integer>(decisions.Below(3) - 1));
  question.CorrectPoints(decisions.Byte() / 4.0);
  question.CarriedFlag1(static_cast<Integer>(decisions.Byte()));
  if (rest >= 192) question.Number(decisions.Below(20));
}

Ref<clsTemplateField> SomeField(Decisions& decisions, const Ref<clsTemplateField>& earlier) {
  if (earlier != nullptr && decisions.OneIn(64)) return earlier;
  auto field = New<clsTemplateField>();
  static constexpr Long kTypes[] = {1, 1, 4, 6, 0, 2, 3, -1};
  field->FieldClass(decisions.OneIn(8) ? 2 : 1);
  field->FieldType(kTypes[decisions.Below(8)]);
  field->FieldMode(decisions.Below(3));
  field->GroupID(static_cast<Integer>(std::max(0, decisions.Below(8) - 5)));
  for (Long count = decisions.Below(6); count > 0; --count) {
    field->Questions()->AddNew();
    SetUp(*field->Questions()->Item(field->Questions()->Count()), decisions);
  }
  return field;
}

Ref<clsTemplate> SomeForm(Decisions& decisions) {
  auto form = New<clsTemplate>();
  Ref<clsTemplateField> field;
  for (Long pages = decisions.Below(4); pages > 0; --pages) {
    auto page = New<clsTemplatePage>();
    for (Long fields = decisions.Below(5); fields > 0; --fields) {
      field = SomeField(decisions, field);
      page->Fields()->Add(field);
    }
    form->Pages()->Add(page);
  }
  return form;
}

Ref<clsTORVATestQuestion> SomeQuestion(Decisions& decisions, Long position) {
  auto question = New<clsTORVATestQuestion>();
  question->ID(decisions.OneIn(8) ? SomeText(decisions) : u"q" + Decimal(position));
  question->QuestionType(decisions.OneIn(4) ? decisions.Below(17) - 1 : Long{TORVATestQuestionTypeMultipleChoice});
  for (Long count = decisions.Below(6); count > 0; --count) question->Answers()->Add(SomeText(decisions));
  for (Long count = decisions.Below(4); count > 0; --count) {
    question->CorrectAnswers()->Add(static_cast<Integer>(decisions.Below(40) - 3));
  }
  for (Long count = decisions.Below(4); count > 0; --count)
    question->LearningObjectives()->Add(SomeText(decisions));
  question->CorrectAnd(!decisions.OneIn(4));
  const std::uint8_t lost = decisions.Byte();
  if (lost == 253) question->Answers(nullptr);
  if (lost == 254) question->CorrectAnswers(nullptr);
  if (lost == 255) question->LearningObjectives(nullptr);
  return question;
}

Ref<clsTORVATest> SomeTest(Decisions& decisions) {
  auto test = New<clsTORVATest>();
  test->Version(SomeText(decisions));
  for (Long i = 1, count = decisions.Below(8); i <= count; ++i) test->Questions()->Add(SomeQuestion(decisions, i));
  const std::uint8_t lost = decisions.Byte();
  if (lost == 253) test->Sequences(nullptr);
  if (lost == 254) test->MultipleChoiceOddScale(nullptr);
  if (lost == 255) test->Questions(nullptr);
  return test;
}

// The questions of another test in another order, perhaps with a difference.
Ref<clsTORVATest> SomeVersion(const clsTORVATest& master, Decisions& decisions) {
  if (master.Questions() == nullptr || decisions.OneIn(8)) return SomeTest(decisions);
  auto test = New<clsTORVATest>();
  test->Version(SomeText(decisions));
  std::vector<Ref<clsTORVATestQuestion>> questions;
  for (Long i = 1; i <= master.Questions()->Count(); ++i) questions.push_back(master.Questions()->Item(i));
  while (!questions.empty()) {
    const auto next = questions.begin() + decisions.Below(static_cast<Long>(questions.size()));
    // The question itself now and then: both tests then share it.
    test->Questions()->Add(decisions.OneIn(16) ? *next : (*next)->Copy());
    questions.erase(next);
  }
  return test;
}

String TextOf(const Ref<clsTemplateStrings>& strings) {
  if (strings == nullptr) return u"-";
  String all;
  for (const String& text : *strings) all += text + u"|";
  return all;
}

// All of a form as one text.
String TextOf(const clsTemplate& form) {
  String all;
  for (const auto& page : *form.Pages()) {
    all += u"page\n";
    for (const auto& field : *page->Fields()) {
      all += u"field " + field->Name();
      for (Long number : {field->FieldClass(), field->FieldType(), field->FieldMode(), Long{field->GroupID()}}) {
        all += u" " + Decimal(number);
      }
      for (const auto& question : *field->Questions()) {
        all += u"\n" + question->Name() + u"/" + question->Text() + u"/" + TextOf(question->Labels()) + u"/" +
               TextOf(question->Values());
        for (Long number : {Long{question->Graded()}, Long{question->Subjective()}, Long{question->Multiples()},
                            question->Number(true), static_cast<Long>(question->CorrectPoints() * 4)}) {
          all += u" " + Decimal(number);
        }
      }
    }
  }
  return all;
}

Long VisitedQuestions(const clsTemplate& form) {
  Long count = 0;
  Integer previous = 0;
  for (const auto& page : *form.Pages()) {
    for (const auto& field : *page->Fields()) {
      if (field->GroupID() == 0 || field->GroupID() != previous) count += field->Questions()->Count();
      previous = field->GroupID();
    }
  }
  return count;
}

void CheckVersions(const clsTORVA& engine) {
  const auto versions = engine.MIVLMF()->Versions();
  const Long tests = engine.Tests()->Count();
  Require(versions->Sequences()->Count() == tests, "a question order for each test");
  Require(versions->VersionNames()->Count() == (tests > 1 ? tests : 0), "a name for each of several");
  for (const auto& sequence : *versions->Sequences()) {
    std::vector<Long> order;
    for (Long i = 1; i <= sequence->Count(); ++i) order.push_back(sequence->Item(i));
    std::sort(order.begin(), order.end());
    Require(static_cast<Long>(order.size()) == engine.MIVLMF()->Questions()->Count(), "an order of all questions");
    for (std::size_t i = 0; i < order.size(); ++i) {
      Require(order[i] == static_cast<Long>(i) + 1, "an order with each question once");
    }
  }
}

void CheckMerged(const clsTORVA& engine) {
  const auto test = engine.Tests()->Item(1);
  const Long subjective = test->Questions()->TypeCount(TORVATestQuestionTypeSubjective);
  const Long graded = test->Questions()->Count() - subjective;
  const auto questions = engine.MIVLMF()->Questions();
  Require(questions->Count() == VisitedQuestions(*engine.TemplateIn()) + subjective,
          "an output question for each visited and each subjective question");
  Require(engine.TemplateOut()->GradedCount() == graded, "as many graded questions as in the test");
  Require(engine.TemplateOut()->QuestionCount() == engine.TemplateIn()->QuestionCount() + subjective,
          "no question of the form is lost");
  for (const auto& question : *questions) {
    Require(question->ObjectiveFlags()->Count() == engine.MIVLMF()->Objectives()->Count(),
            "a flag for each objective");
    Require(question->Labels()->Count() == question->Values()->Count() || !question->Graded(),
            "a value for each label");
  }
  CheckVersions(engine);
}

void CheckFile(const clsLmf& lmf) {
  const String path = fuzz::OutputPath();
  Require(lmf.Save(path), "what was merged can be saved");
  const auto opened = New<clsLmf>();
  Require(opened->Open(path) && LmfText(*opened) == LmfText(lmf), "and is read back as it was");
  New<clsTORVATest>()->LoadLMF(path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto host = fuzz::FreshHost();
  Decisions decisions({reinterpret_cast<const char*>(data), size});
  const auto engine = New<clsTORVA>();
  const std::uint8_t steps = decisions.Byte();
  engine->Verbose((steps & 1) != 0);
  const Long maxQuestions = (steps & 2) != 0 ? decisions.Below(8) : 0;
  const Long sequenceQuestion = decisions.Below(8) - 1;

  const auto form = SomeForm(decisions);
  const auto master = SomeTest(decisions);
  engine->Tests()->Add(master);
  for (Long versions = (steps & 4) != 0 ? decisions.Below(4) : 0; versions > 0; --versions) {
    engine->Tests()->Add(SomeVersion(*master, decisions));
  }
  if ((steps & 8) == 0) engine->RemoveInvalid(maxQuestions);
  engine->ValidTestVersions();
  if ((steps & 16) != 0) {
    const auto withSequences = master->Copy();
    for (Long i = 2; withSequences != nullptr && i <= engine->Tests()->Count(); ++i) {
      withSequences->AddSequence(engine->Tests()->Item(i));
    }
    if (withSequences != nullptr) withSequences->Copy();
  }

  engine->TemplateIn(form);
  engine->TemplateOut(New<clsTemplate>());
  engine->SequenceQuestion(sequenceQuestion);
  const String before = TextOf(*form);
  const bool merged = engine->Merge();
  Require(TextOf(*form) == before, "the form that goes in stays as it is");
  if (!merged) return 0;
  CheckMerged(*engine);
  if ((steps & 32) != 0) CheckFile(*engine->MIVLMF());
  if ((steps & 64) == 0) return 0;
  const String first = LmfText(*engine->MIVLMF());
  const String firstForm = TextOf(*engine->TemplateOut());
  engine->SequenceQuestion(sequenceQuestion);
  Require(engine->Merge() && LmfText(*engine->MIVLMF()) == first && TextOf(*engine->TemplateOut()) == firstForm,
          "the same again");
  return 0;
}
