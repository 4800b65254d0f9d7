#include "bench/MergeSetup.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/ExamViewExport.h"

namespace TORVA35::bench {
namespace {

constexpr int kFieldQuestions = 25;
constexpr int kPageFields = 4;

Ref<clsTemplateField> MakeField(int questions, bool graded) {
  auto field = New<clsTemplateField>();
  field->FieldClass(1);
  field->FieldType(1);
  for (Long q = 1; q <= questions; ++q) {
    field->Questions()->AddNew();
    const auto question = field->Questions()->Item(q);
    question->Graded(graded);
    question->CorrectPoints(1);
    for (char16_t label = u'A'; label <= u'E'; ++label) {
      question->Labels()->Add(String(1, label));
      question->Values()->Add(String(1, label));
    }
  }
  return field;
}

Ref<clsTemplate> MakeForm(int questions, bool versions) {
  auto form = New<clsTemplate>();
  Ref<clsTemplatePage> page;
  Long number = 0;
  const auto add = [&](const Ref<clsTemplateField>& field) {
    for (Long q = 1; q <= field->Questions()->Count(); ++q) {
      field->Questions()->Item(q)->Name(u"Question " + Decimal(++number));
    }
    if (page == nullptr || page->Fields()->Count() == kPageFields) {
      page = New<clsTemplatePage>();
      form->Pages()->Add(page);
    }
    page->Fields()->Add(field);
  };
  if (versions) add(MakeField(1, false));
  while (number < questions) add(MakeField(std::min(kFieldQuestions, questions - number), true));
  return form;
}

}  // namespace

Ref<clsTORVATest> MakeTest(int questions, int rotation) {
  const std::string path =
      std::filesystem::temp_directory_path() / ("torva35-bench-" + std::to_string(getpid()) + ".xml");
  ExportShape shape;
  shape.questions = questions;
  shape.rotation = rotation;
  WriteExport(path, shape);
  auto test = New<clsTORVATest>();
  test->ImportObjectives(TORVATestImportObjectivesLearning);
  const bool loaded = test->LoadXML(FromUtf8(path));
  std::filesystem::remove(path);
  if (!loaded) std::abort();
  return test;
}

Ref<clsTORVA> MakeEngine(int formQuestions, int tests) {
  auto engine = New<clsTORVA>();
  engine->Verbose(false);
  const int questions = tests > 1 ? formQuestions - 1 : formQuestions;
  for (int t = 0; t < tests; ++t) {
    const auto test = MakeTest(questions, t * 7 % questions);
    test->Version(String(1, static_cast<char16_t>(u'A' + t)));
    engine->Tests()->Add(test);
  }
  engine->TemplateIn(MakeForm(formQuestions, tests > 1));
  Rewind(*engine);
  return engine;
}

void Rewind(clsTORVA& engine) {
  engine.TemplateOut(New<clsTemplate>());
  engine.MIVLMF(New<clsLmf>());
  engine.SequenceQuestion(engine.Tests()->Count() > 1 ? 1 : 0);
}

}  // namespace TORVA35::bench
