#include <limits>

#include "tests/RecordingHost.h"
#include "tests/TempFile.h"
#include "tests/Values.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/model/basPublic.h"
#include "torva35/model/clsTORVATest.h"

namespace TORVA35 {
namespace {

class LmfImport : public HostTest {
 protected:
  Ref<clsLmfQuestion> Add(const std::vector<String>& labels, const String& key = {}, bool graded = true,
                          bool subjective = false) {
    auto question = New<clsLmfQuestion>();
    for (const String& label : labels) question->Labels()->Add(label);
    if (!key.empty()) question->CorrectLabels()->Add(key);
    question->Graded(graded);
    question->Subjective(subjective);
    for (Long k = 1; k <= lmf->Objectives()->Count(); ++k) question->ObjectiveFlags()->Add(false);
    lmf->Questions()->Add(question);
    return question;
  }
  void AddObjective(const String& text) {
    auto objective = New<clsLmfObjective>();
    objective->Text(text);
    lmf->Objectives()->Add(objective);
  }
  bool Build() {
    test->Clear();
    return basPublic::BuildTestFromLMF(test, lmf);
  }
  Ref<clsTORVATestQuestion> Question(Long position) { return test->Questions()->Item(position); }
  String Key(Long position) { return test->CorrectAnswersAsString(position, u",", false, true); }
  String IDs() {
    String ids;
    for (Long i = 1; i <= test->Questions()->Count(); ++i) ids += Question(i)->ID() + u" ";
    return ids;
  }

  Ref<clsLmf> lmf = New<clsLmf>();
  Ref<clsTORVATest> test = New<clsTORVATest>();
};

TEST_F(LmfImport, KindsByAnswers) {
  const std::vector<std::pair<std::vector<String>, Long>> rows = {
      {{}, -1},          {{u"Yes", u"no"}, 2}, {{u"t", u"False"}, 1}, {{u"No", u"Yes"}, 3},
      {{u"T", u"N"}, 3}, {{u"", u"F"}, 3},     {{u"T"}, 3},           {{u"Y", u"N", u"?"}, 3}};
  for (const auto& [labels, kind] : rows) Add(labels);
  ASSERT_TRUE(Build());
  for (Long i = 0; const auto& [labels, kind] : rows) EXPECT_EQ(Question(++i)->QuestionType(), kind) << i;
}

TEST_F(LmfImport, KeysByText) {
  const std::vector<std::pair<String, String>> rows = {
      {u"(A,C)", u"1,3"}, {u"A,C", u"1,3"}, {u"(A, C)", u"1"}, {u"C,A,C", u"3,1"}, {u"()", u""},
      {u"(", u""},        {u"a", u""},      {u"D", u"4"},      {u"(A", u""},       {u"X,C", u"3"}};
  for (const auto& [key, numbers] : rows) Add({u"A", u"B", u"C", u"D", u"D"}, key)->CorrectLabels()->Add(u"B");
  Add({String(60, u'x'), u"B"}, String(60, u'x'));
  ASSERT_TRUE(Build());
  for (Long i = 0; const auto& [key, numbers] : rows) EXPECT_EQ(Key(++i), numbers) << ToUtf8(key);
  EXPECT_EQ(Key(11), u"");  // the answer was cut, the key was not
}

TEST_F(LmfImport, FieldsOfTestAndQuestion) {
  lmf->Description(u"description");
  lmf->Notes(u"notes");
  lmf->Prepare();
  for (const char16_t* objective : {u" Alpha ", u"alpha", u"Beta"}) AddObjective(objective);
  const auto from = Add({u"A", u"B", u"C"}, u"B");
  for (Long k : {1, 2, 3}) from->ObjectiveFlags()->Item(k)->Value(true);
#define SET_OWN_NAME(member) from->member(u"" #member);
  DESCRIPTIONS(SET_OWN_NAME);
  from->Text(u"text");
  from->CorrectAnd(false);
  from->CorrectPoints(2.5);
  from->IncorrectPoints(-std::numeric_limits<Double>::infinity());
  from->NoResponsePoints(0.25);
  from->SubjectivePoints(9);
  ASSERT_TRUE(Build());
  EXPECT_EQ(Values({test->UserDefined(), Long{test->Source()}, test->Description(), test->Notes(),
                    test->Sequences()->Item(1)->Answer()}),
            u"True 1 description notes A");
  const auto& to = *Question(1);
#define VALUE(member) to.member(),
  EXPECT_EQ(Values({DESCRIPTIONS(VALUE) to.QuestionText()}),
            u"Difficulty Reference Topic Keywords Miscellaneous Notes text");
  EXPECT_EQ(Values({to.CorrectAnd(), to.CorrectPoints(), to.IncorrectPoints(), to.NoResponsePoints(),
                    to.SubjectivePoints(), Joined(*to.LearningObjectives())}),
            u"False 2.5 -Infinity 0.25 0 Alpha");  // neither the built-in one nor twice
}

// What a list of objectives and copies of it answer after one change after the other, with the failures.
String AnswersOf(const Ref<clsTORVATestStrings>& list) {
  using List = clsTORVATestStrings;
  void (*const changes[])(List&) = {[](List&) {},
                                    [](List& of) { of.Add(u"new", u"Beta"); },
                                    [](List& of) { of.Remove(1); },
                                    [](List& of) { of.Item(1, u"other"); },
                                    [](List& of) { of.Item(u"ALPHA", u"again"); },
                                    [](List& of) { of.Add(u"first", u"k", 1); },
                                    [](List& of) { of.RemoveAll(); }};
  String answers;
  for (const bool all : {false, true}) {
    for (const auto& change : changes) {
      const auto of = all ? list : list->Copy();
      change(*of);
      answers += u"\n" + Decimal(of->Count()) + u": " + Joined(*of) + u" " + of->AsString();
      for (const TaggedValue& index : std::vector<TaggedValue>{2.6, 0, 9, u"ALPHA", u"", u"beta", Null}) {
        answers += (of->Exists(index) ? u" <" : u" no <") + of->Item(index) + u">";
      }
    }
  }
  return answers;
}

TEST_F(LmfImport, QuestionsThatShareObjectivesHaveListsOfTheirOwn) {
  struct HostLmf : clsLmf {};  // whose objects are asked each time
  const std::vector<String> distinct = {u"Alpha", u"beta", String(60, u'x'), u""};
  const std::vector<String> equal = {u" ALPHA ", u"Alpha", u"beta", u"a\tb", u"alpha", u"BETA"};
  for (const auto& texts : {distinct, equal}) {
    String answers[2];
    for (const bool hosts : {false, true}) {
      lmf = hosts ? New<HostLmf>() : New<clsLmf>();
      lmf->Prepare();
      for (const String& text : texts) AddObjective(text);
      for (Long i = 0; i < 3; ++i) {
        const auto flags = Add({u"A", u"B"})->ObjectiveFlags();
        for (Long k = 1; k <= flags->Count(); ++k) flags->Item(k)->Value(k % 3 != i);
      }
      ASSERT_TRUE(Build());
      answers[hosts] = Decimal(test->NumObjectives());
      for (const auto& of : {test, test->Copy()}) {
        for (Long i = 1; i <= 3; ++i) answers[hosts] += AnswersOf(of->Questions()->Item(i)->LearningObjectives());
      }
      answers[hosts] += FromUtf8(TakeFailures());
    }
    EXPECT_EQ(answers[false], answers[true]);
    EXPECT_NE(answers[false].find(u"457"), String::npos);
  }
}

TEST_F(LmfImport, ObjectivesBeyondTheLimitEndTheImport) {
  lmf->Prepare();
  for (Long k = 0; k < 5000; ++k) AddObjective(Decimal(k));
  const auto from = Add({u"A", u"B"});
  for (Long k = 2; k <= 5001; ++k) from->ObjectiveFlags()->Value(k, true);
  while (lmf->Questions()->Count() < 3356) lmf->Questions()->Add(from);
  EXPECT_FALSE(Build());
  EXPECT_EQ(TakeFailures(), "14 basPublic.BuildTestFromLMF");
  EXPECT_EQ(test->Questions()->Count(), 3355);
}

TEST_F(LmfImport, ObjectivesThatComeInWhileTheyAreRead) {
  const auto duplicate = New<clsTORVATestQuestion>();
  duplicate->ID(u"1");
  test->Questions()->Add(duplicate);
  lmf->Prepare();
  AddObjective(u"0");
  Add({u"A", u"B"});
  const auto flags = Add({u"A", u"B"})->ObjectiveFlags();
  host->onFailure = [&] {
    for (Long k = 1; k <= 1000; ++k) AddObjective(Decimal(k)), flags->Add(true);
  };
  EXPECT_TRUE(basPublic::BuildTestFromLMF(test, lmf));
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestQuestions.Add");
  EXPECT_EQ(Question(2)->LearningObjectives()->Count(), 1000);
}

TEST_F(LmfImport, PositionsScalesAndMisplacedSubjectiveQuestions) {
  Add({u"a", u"b"});
  Add({}, {}, true, true)->SubjectivePoints(4);  // misplaced
  Add({u"n"}, {}, false);                        // a plain field
  Add({u"Y", u"N"});
  Add({u"c", u"d", u"e"});
  Add({u"f", u"g"});
  Add({u"x"}, u"x", false, true)->SubjectivePoints(2.5);
  ASSERT_TRUE(Build());
  EXPECT_EQ(IDs(), u"1 4 5 6 7 ");
  EXPECT_EQ(Question(5)->QuestionType(), TORVATestQuestionTypeSubjective);
  EXPECT_EQ(Question(5)->SubjectivePoints(), 2.5f);
  EXPECT_EQ(Question(5)->CorrectAnswers()->Count(), 0);
  EXPECT_EQ(test->MultipleChoiceOddScale()->AsString() + test->MultipleChoiceEvenScale()->AsString(), u"a\tbf\tg");
}

TEST_F(LmfImport, VersionsOfTheFile) {
  for (const char16_t* label : {u"a", u"b", u"c", u"d"}) Add({label}, {}, label[0] != u'b');
  for (const char16_t* name : {u"A", u"B", u"a"}) lmf->Versions()->VersionNames()->Add(name);
  for (const std::vector<Long>& order : {std::vector<Long>{1, 2, 3, 4}, {4, 2, 1, 3}, {1, 2, 3, 4}}) {
    auto sequence = New<clsLmfSequence>();
    sequence->SetOrder(Array<Long>(1, order));
    lmf->Versions()->Sequences()->Add(sequence);
  }
  ASSERT_TRUE(Build());
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestSequences.Add");
  ASSERT_EQ(test->Sequences()->Count(), 2);
  EXPECT_EQ(test->Sequences()->Item(u"B")->Order()->Item(u"1"), 2);
  EXPECT_EQ(test->Sequences()->Item(u"B")->Order()->Item(u"3"), 3);
  EXPECT_FALSE(test->Sequences()->Item(u"B")->Order()->Exists(u"2"));
  EXPECT_EQ(test->MultipleChoiceOddScale()->AsString() + test->MultipleChoiceEvenScale()->AsString(), u"ac");

  lmf->Versions()->Sequences()->Add(New<clsLmfSequence>());  // without a name
  EXPECT_FALSE(Build());
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestSequences.Add, 9 basPublic.BuildTestFromLMF");
}

TEST_F(LmfImport, Failures) {
  EXPECT_FALSE(basPublic::BuildTestFromLMF(nullptr, lmf));
  EXPECT_FALSE(basPublic::BuildTestFromLMF(test, nullptr));
  Add({u"A"});
  Add({u"A"})->CorrectPoints(1e39);
  EXPECT_FALSE(Build());
  EXPECT_EQ(TakeFailures(), "6 basPublic.BuildTestFromLMF");
  EXPECT_EQ(test->Questions()->Count(), 1);
  lmf->Questions()->Item(2)->CorrectPoints(1);
  lmf->Prepare();
  AddObjective(u"no question has a flag for this one");
  EXPECT_FALSE(Build());
  EXPECT_EQ(TakeFailures(), "9 basPublic.BuildTestFromLMF");
}

TEST_F(LmfImport, FileAndTitle) {
  const Folder folder;
  const auto load = [&](const String& name) {
    // On Windows a "\\" stands after a folder.
    const std::filesystem::path path = std::filesystem::path(FromUtf8(folder.path)) / name;
    std::filesystem::create_directories(path.parent_path());
    return lmf->Save(path.u16string()) && test->LoadLMF(path.u16string());
  };
  Add({u"A", u"B", u"C"}, u"B");
  const bool hasBackslash = folder.path.find('\\') != std::string::npos;
  for (const auto& [name, title] : {std::pair(u"plain.lmf", hasBackslash ? u"plain" : u""),
                                    {u"dir\\one.two.lmf", u"one.two"},
                                    {u"d.ir\\noextension", u"noextension"},
                                    {u"a\\b\\.x", u""}}) {
    test->Title(u"before");
    EXPECT_TRUE(load(name));
    EXPECT_EQ(test->Title(), title);
    EXPECT_EQ(test->MultipleChoiceEvenScale()->Count(), 3);  // "A" to "D", trimmed
  }
  test->Title(u"kept");
  EXPECT_FALSE(test->LoadLMF(u"/no/such/file"));
  EXPECT_EQ(test->Title() + IDs(), u"kept1 ");
  lmf->Questions()->RemoveAll();
  EXPECT_FALSE(load(u"empty.lmf"));
  EXPECT_EQ(test->Sequences()->Count(), 1);
  EXPECT_TRUE(test->UserDefined());
}

}  // namespace
}  // namespace TORVA35
