// Each allocation of an operation fails alone, and then once more together with all later ones.

#include "tests/LmfText.h"
#include "tests/TempFile.h"
#include "tests/memory/FailingAllocator.h"
#include "tests/merge/MergeFixture.h"
#include "torva35/base/Error.h"
#include "torva35/xml/DOMDocument.h"

namespace TORVA35 {
namespace {

std::string Export(const std::string& version, const std::string& ids) {
  std::string xml =
      "<!DOCTYPE examview [<!ENTITY % p SYSTEM 'p'>%p;<!ENTITY e 'an entity of some length'>]><examview>"
      "<header><version>" +
      version + "</version></header><mc-choice-sequence a='ABCDE_FGHJK'/>";
  for (const char id : ids) {
    xml += std::string("<question type='mc' bank-id=' with a long name' question-id='") + id +
           "'><text><para>What is &e; in <b>bold  </b><sup>2</sup> and <equation/>?</para></text><choices>"
           "<choice-a>the first of all choices</choice-a><choice-b>b</choice-b><choice-c>c</choice-c></choices>"
           "<answer>C, A</answer><info><notes>Notes <![CDATA[of a length]]></notes><text-objective>Objective of "
           "all|Objective of " +
           id + "</text-objective></info></question>";
  }
  return xml + "<question type='es' question-id='e'/><question type='tf' question-id='t'/></examview>";
}

const TempFile kExport(Export("A", "12")), kOtherExport(Export("B", "21")), kLmf, kSaved;

String TestText(const Ref<clsTORVATest>& test) {
  if (test == nullptr) return {};
  String text = test->Version() + test->MultipleChoiceOddScale()->AsString();
  for (Long i = 1; i <= test->Questions()->Count(); ++i) {
    const auto question = test->Questions()->Item(i);
    text += u"\n" + question->ID() + question->QuestionText() + question->Notes() +
            question->Answers()->AsString() + question->LearningObjectives()->AsString() +
            test->CorrectAnswersAsString(i);
    for (Long s = 1; s <= test->Sequences()->Count(); ++s) {
      text += Decimal(test->Sequences()->Item(s)->Order()->Item(question->ID()));
    }
  }
  return text;
}

bool Load(const Ref<clsTORVATest>& test, const TempFile& file) {
  test->ImportObjectives(TORVATestImportObjectivesLearning);
  return test->LoadXML(file.Path());
}

// All that an operation works on, with an error object of its own.
struct World : MergeTest {
  World() {
    Load(first, kExport);
    Load(second, kOtherExport);
    for (const auto& test : {first, second}) engine->Tests()->Add(test);
    first->AddSequence(second);
    engine->TemplateIn(Form({{Field(1, false, {u"A", u"B"}), Field(4, true, kFive)}}));
    engine->TemplateOut(New<clsTemplate>());
    engine->SequenceQuestion(1);
    lmf->Open(kLmf.Path());
  }
  void TestBody() override {}

  String Text() {
    clsLmf saved;
    saved.Open(kSaved.Path());
    return TestText(first) + TestText(copy) + LmfText(*engine->MIVLMF()) + LmfText(saved);
  }
  std::string Told() {
    TakeDialogs();
    return TakeFailures();
  }

  using MergeTest::engine;
  const Ref<clsTORVATest> first = New<clsTORVATest>(), second = New<clsTORVATest>();
  const Ref<clsLmf> lmf = New<clsLmf>();
  Ref<clsTORVATest> copy;
  DOMDocument document;
  const TaggedValue exportPath = kExport.Path();
  String lmfPaths[2] = {kLmf.Path(), kLmf.Path()};
  String* lmfPath = lmfPaths;
};

struct Operation {
  const char* name;
  bool (*run)(World& world);  // can be run again after a failure
  bool hasArgument = false;   // takes it ready from the world

  friend void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }
};

const Operation kOperations[] = {
    {"LoadXML", [](World& world) { return Load(world.first, kOtherExport); }},
    {"RemoveInvalid", [](World& world) { return Load(world.first, kExport) && world.engine->RemoveInvalid(2); }},
    {"ValidTestVersions", [](World& world) { return world.engine->ValidTestVersions(); }},
    {"AddSequence",
     [](World& world) { return world.first->Sequences()->RemoveAll() && world.first->AddSequence(world.second); }},
    {"Merge", [](World& world) { return world.engine->Merge(); }},
    {"Copy", [](World& world) { return (world.copy = world.first->Copy()) != nullptr; }},
    {"Save", [](World& world) { return world.lmf->Save(kSaved.Path()); }},
    {"Open", [](World& world) { return world.engine->MIVLMF()->Open(std::move(*world.lmfPath++)); }, true},
    {"load", [](World& world) { return world.document.load(world.exportPath); }, true},
    {"LoadLMF", [](World& world) { return world.first->LoadLMF(kLmf.Path()); }},
};

class Exhausted : public testing::TestWithParam<Operation> {
 protected:
  // Returns whether an allocation has failed; there may be fewer.
  bool RunFailing(std::int64_t nth, bool all) {
    World world;
    bool result = false;
    Long number = 0;
    FailingAllocator::all = all;
    FailingAllocator::failed = false;
    FailingAllocator::left = nth;
    try {
      result = GetParam().run(world);
    } catch (const Error& error) {
      number = error.Number();
    } catch (const std::bad_alloc&) {
      // Made on the way into the member, except where the argument is ready.
      number = GetParam().hasArgument ? -1 : 7;
    }
    FailingAllocator::left = 0;
    const bool failed = FailingAllocator::failed;
    const std::string told = world.Told();
    if (!told.empty()) number = std::stoi(told);
    if (number == 0 && !all) {
      // Nothing told, so nothing is lost; only a save that fails tells no more than that.
      EXPECT_TRUE(result ? world.Text() == right : GetParam().name == std::string("Save"));
    } else if (number != 0) {
      EXPECT_EQ(number, 7);
    }
    EXPECT_TRUE(!failed || GetParam().run(world));
    EXPECT_EQ(ToUtf8(world.Text()), ToUtf8(right));
    EXPECT_EQ(world.Told(), "");
    return failed;
  }

  String right;  // the outcome when nothing fails
};

TEST_P(Exhausted, AtEveryAllocation) {
  // First of all, what is made once for the process or the thread, so that nothing of it seems to leak.
  SetMousePointerHook({});
  for (int i = 0; i < 2; ++i) {
    World world;
    ASSERT_TRUE(world.engine->Merge() && world.engine->MIVLMF()->Save(kLmf.Path()) && GetParam().run(world));
    world.Told();
  }
  {
    World world;
    ASSERT_TRUE(GetParam().run(world));
    right = world.Text();
    world.Told();
  }
  for (const bool all : {false, true}) {
    bool failed = true;
    for (std::int64_t nth = 1; failed && !HasFailure(); ++nth) {
      SCOPED_TRACE(std::to_string(nth) + (all ? " and all later ones" : ""));
      const std::int64_t objects = Object::AliveCount();
      const std::int64_t blocks = FailingAllocator::alive;
      failed = RunFailing(nth, all);
      EXPECT_EQ(Object::AliveCount(), objects);
      EXPECT_EQ(FailingAllocator::alive, blocks);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Exhausted, testing::ValuesIn(kOperations),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace TORVA35
