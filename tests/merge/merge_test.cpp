#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

class clsTORVAMergeTest : public MergeTest {};

const String kInvalidMerge = u"An error occurred merging the test with the specified template. ";

// Gives each descriptive text its own name.
void Describe(clsTORVATestQuestion& question) {
#define DESCRIBE(member) question.member(u"" #member);
  DESCRIPTIONS(DESCRIBE);
}
const String kDescribed =
    u"Difficulty: Difficulty\nReference: Reference\nTopic: Topic\nKeywords: Keywords\nMiscellaneous: "
    u"Miscellaneous\nNotes: Notes\n";

TEST_F(clsTORVAMergeTest, ChecksChangeNothing) {
  const auto form = Form({{Field(2, true, kFive)}}), out = Form({{Field(1, true, kFive)}});
  engine->MIVLMF()->Notes(u"kept");
  engine->TemplateOut(out);

  EXPECT_FALSE(engine->Merge());
  engine->Tests()->Add(New<clsTORVATest>());
  for (const auto& in : {Ref<clsTemplate>(), New<clsTemplate>(), form}) {
    engine->TemplateIn(in);
    EXPECT_FALSE(engine->Merge());
  }
  engine->Tests()->Item(1)->Questions(Test({Choice(u"1"), Choice(u"2"), Choice(u"3")})->Questions());
  EXPECT_FALSE(engine->Merge());
  const String both = u"An error occurred merging the specified template and test. The ";
  EXPECT_EQ(
      TakeDialogs(),
      (Dialogs{
          Told(u"Invalid test", both + u"test is invalid. Operation aborted."),
          Told(u"Invalid Template", both + u"template is invalid. Operation aborted."),
          Told(u"Invalid Template", both + u"template does not contain any questions. Operation aborted."),
          Told(u"Invalid test", both + u"test does not contain any questions. Operation aborted."),
          Told(u"Invalid Merge", kInvalidMerge + u"The test contains more graded questions than the specified "
                                                 u"template. Operation aborted.")}));
  EXPECT_EQ(engine->TemplateOut(), out);
  EXPECT_EQ(out->QuestionCount(), 1);
  EXPECT_EQ(engine->MIVLMF()->Notes(), u"kept");
  engine->Verbose(false);
  EXPECT_FALSE(engine->Merge());

  engine->Tests()->Item(1)->Questions()->Remove(3);
  engine->TemplateOut(nullptr);
  EXPECT_FALSE(engine->Merge());
  EXPECT_EQ(TakeFailures(), "91 clsTORVA.Merge");
}

TEST_F(clsTORVAMergeTest, TakesTestQuestionsByPosition) {
  const auto second = Question(u"2", TORVATestQuestionTypeMultipleChoice, 3, {3, 1});
  second->CorrectPoints(9);
  Describe(*second);
  const auto form = Form({{Field(1, false, {u"x", u"y"}), Field(1, true, kFive)}, {Field(1, true, kFive)}});
  const auto graded = FieldOf(form, 2, 1)->Questions()->Item(1);
  graded->CorrectPoints(2.5);
  graded->IncorrectPoints(-1);
  graded->NoResponsePoints(0.5);
  graded->CarriedFlag1(11);
  graded->CarriedFlag2(12);
  FieldOf(form, 2, 1)->FieldMode(1);
  const auto plain = FieldOf(form, 1, 1)->Questions()->Item(1);
  plain->Multiples(4);
  plain->Text(u"Name");
  ASSERT_TRUE(Merge({Test({Choice(u"1"), second})}, form));

  EXPECT_EQ(graded->Labels()->Item(1), u"1");  // the input is never changed
  const auto merged = OutQuestion(2, 1, 1);
  EXPECT_EQ(Joined(*merged->Labels()) + u" " + Joined(*merged->Values()), u"A|B|C|| 1|2|3|v4|v5");
  EXPECT_EQ(merged->Text(), u"Text of 2");
  EXPECT_EQ(merged->Multiples(), 1);
  EXPECT_EQ(engine->MIVLMF()->Mode(), 1);
  EXPECT_EQ(engine->MIVLMF()->PageCount(), 2);
  EXPECT_EQ(LmfText(*Output(1)),
            u"Name: Q1\nText: Name\nQuestionMode: 2\nMultiples: 4\nLabels: 2 x¦y\nValues: 2 v1¦v2\nFlags: 0\n");
  EXPECT_EQ(
      LmfText(*Output(3)),
      u"Name: Q3\nText: Text of 2\n" + kDescribed +
          u"Graded: True\nCarriedFlag1: 11\nCarriedFlag2: 12\nQuestionMode: 1\nMultiples: 1\nCorrectCount: 2\nCorrectPoints: 2.5\nIncorrectPoints: -1\n"
          u"NoResponsePoints: 0.5\nLabels: 3 A¦B¦C\nValues: 3 1¦2¦3\nCorrectLabels: 1 (C,A)\n"
          u"CorrectValues: 1 (3,1)\nFlags: 0\n");
}

TEST_F(clsTORVAMergeTest, AFieldThatIsNoChoiceFieldKeepsItsLabels) {
  const auto form = Form({{Field(1, true, kFive), Field(1, false, kFive)}});
  FieldOf(form, 1, 1)->Questions()->Item(1)->Multiples(7);
  for (const auto& [fieldClass, type, rewritten] :
       {std::tuple(1, 1, true), {1, 2, false}, {1, 4, true}, {1, 6, true}, {2, 1, false}}) {
    for (Long f : {1, 2}) {
      FieldOf(form, 1, f)->FieldClass(fieldClass);
      FieldOf(form, 1, f)->FieldType(type);
    }
    ASSERT_TRUE(Merge({Test({Choice(u"1", 2)})}, form));
    EXPECT_EQ(Joined(*OutQuestion(1, 1, 1)->Labels()), rewritten ? u"A|B|C||" : u"1|2|3|4|5");
    EXPECT_EQ(Labels(1) + Labels(2), rewritten ? u"A|B|C1|2|3|4|5" : u"");
    EXPECT_EQ(Output(1)->Multiples(), rewritten ? 0 : 7);
    EXPECT_EQ(Joined(*Output(1)->CorrectLabels()) + Output(1)->Text(), u"BText of 1");
  }
}

TEST_F(clsTORVAMergeTest, ScaleByPositionOnceThereAreVersions) {
  const auto test =
      Test({Choice(u"1", 1, 2), Choice(u"2", 1, 2), Question(u"3", TORVATestQuestionTypeTrueFalse, 2)});
  test->MultipleChoiceEvenScale()->Item(1, u"F");
  const auto form = Form({{Field(3, true, kFive)}});
  // The whole scale with two versions, and before that fitted to the answers.
  for (const char16_t* labels : {u"A|B F|B T|F", u"A|B F|B T|F", u"A|B|C|D F|B|C|D T|F"}) {
    ASSERT_TRUE(Merge({test}, form));
    EXPECT_EQ(Labels(1) + u" " + Labels(2) + u" " + Labels(3), labels);
    const auto version = New<clsTORVATestSequence>();
    version->Answer(Decimal(test->Sequences()->Count()));
    test->Sequences()->Add(version);
  }
  // A scale longer than the form's labels reaches a position that these do not have.
  EXPECT_FALSE(Merge({test}, Form({{Field(3, true, {u"1", u"2"})}})));
  EXPECT_EQ(TakeFailures(), "9 clsTORVA.Merge");
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 0);
  EXPECT_EQ(Joined(*OutQuestion(1, 1, 1)->Labels()), u"A|B");
}

TEST_F(clsTORVAMergeTest, ObjectivesAreEnteredOnceAndFlagged) {
  const auto test = Test({Choice(u"1"), Choice(u"2"), Subjective(u"3")});
  for (Long i = 1; const char16_t* texts : {u"Alpha\tALPHA", u"beta\talpha", u"Gamma\t(All Questions)"}) {
    test->Questions()->Item(i++)->LearningObjectives()->AddDelimitedString(texts);
  }
  ASSERT_TRUE(Merge({test}, Form({{Field(1, false, {}), Field(2, true, kFive)}})));
  String found;
  for (const auto& objective : *engine->MIVLMF()->Objectives()) found += objective->Text() + u"|";
  for (const auto& question : *engine->MIVLMF()->Questions()) found += u" " + Flags(*question->ObjectiveFlags());
  // The built-in one is nobody's, though its text is the same.
  EXPECT_EQ(found, u"(All Questions)|Alpha|beta|Gamma|(All Questions)| 00000 01000 01100 00011");
}

TEST_F(clsTORVAMergeTest, SurplusGradedQuestionsAreSwitchedOffFromTheEnd) {
  const auto form =
      Form({{Field(3, true, kFive, 7), Field(1, true, kFive)}, {Field(2, true, kFive), Field(1, false, {})}});
  engine->SequenceQuestion(7);
  ASSERT_TRUE(Merge({Test({Choice(u"1"), Choice(u"2"), Choice(u"3"), Choice(u"4")})}, form));
  EXPECT_FALSE(OutQuestion(2, 1, 1)->Graded() || OutQuestion(2, 1, 2)->Graded());
  EXPECT_TRUE(OutQuestion(1, 2, 1)->Graded());
  EXPECT_EQ(engine->SequenceQuestion(), 5);
  EXPECT_EQ(form->GradedCount(), 6);
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 7);

  // The questions' own numbers decide, as they are met: 9 first, then 4.
  const auto numbered = Form({{Field(3, true, kFive)}});
  for (Long q : {2, 3}) FieldOf(numbered, 1, 1)->Questions()->Item(q)->Number(q == 2 ? 4 : 9);
  engine->SequenceQuestion(4);
  ASSERT_TRUE(Merge({Test({Choice(u"1")})}, numbered));
  EXPECT_EQ(engine->SequenceQuestion(), 3);
}

TEST_F(clsTORVAMergeTest, OfAGroupOnlyTheFirstFieldIsMerged) {
  const auto form =
      Form({{Field(1, true, kFive, 1), Field(1, false, kFive, 1), Field(1, true, kFive), Field(1, false, {}, 1)},
            {Field(1, false, {}, 1), Field(1, true, kFive, 8)}});
  ASSERT_TRUE(Merge({Test({Choice(u"1"), Choice(u"2"), Choice(u"3")})}, form));
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 4);
  EXPECT_EQ(Output(2)->Name(), u"Q2");  // names go by output position
  EXPECT_EQ(Joined(*OutQuestion(2, 2, 1)->Labels()), u"A|B|C||");

  // A graded question that the walk passes by still counts: the last test question finds no place.
  ASSERT_TRUE(
      Merge({Test({Choice(u"1"), Choice(u"2")})}, Form({{Field(1, true, kFive, 7), Field(1, true, kFive, 7)}})));
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 1);
}

TEST_F(clsTORVAMergeTest, EndsAtAQuestionThatDoesNotFit) {
  const auto form = Form({{Field(2, true, {u"1", u"2", u"3"})}});
  FieldOf(form, 1, 1)->Name(u"Block");
  EXPECT_FALSE(Merge({Test({Choice(u"1"), Choice(u"2", 1, 4)})}, form));
  EXPECT_EQ(TakeDialogs(),
            Dialogs{Told(u"Invalid Merge",
                         kInvalidMerge + u"One or more questions from the test contains more possible answers "
                                         u"than are present in the specified template. Operation aborted."
                                         u"\r\n\r\n\tTemplate Field: Block\r\n\tTest Question ID: 2")});
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 1);

  const auto test = Test({Choice(u"1"), Choice(u"2", 2)});
  test->Questions()->Item(2)->ID(u"1");
  EXPECT_FALSE(Merge({test}, form));
  EXPECT_EQ(TakeFailures(), "457 clsTORVA.Merge");
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 1);
}

TEST_F(clsTORVAMergeTest, SubjectiveQuestionsBecomeFieldsOfTheLastPage) {
  const auto essay = Subjective(u"3");
  essay->SubjectivePoints(2.5f);
  Describe(*essay);
  const auto form = Form({{Field(1, true, kFive)}, {Field(1, true, kFive)}});
  ASSERT_TRUE(Merge({Test({Choice(u"1"), Choice(u"2"), essay, Subjective(u"3b")})}, form));
  ASSERT_EQ(engine->TemplateOut()->Pages()->Item(2)->Fields()->Count(), 3);
  const auto field = FieldOf(engine->TemplateOut(), 2, 2);
  const auto question = field->Questions()->Item(1);
  EXPECT_EQ(Values({field->Name(), field->FieldClass(), field->FieldType(), field->FieldMode(),
                    field->Subjective(), question->Subjective(), question->CorrectPoints()}),
            u"Subjective1 2 3 1 True True 2.5");
  EXPECT_EQ(form->Pages()->Item(2)->Fields()->Count(), 1);
  ASSERT_EQ(engine->MIVLMF()->Questions()->Count(), 4);
  EXPECT_EQ(Output(4)->Name(), u"Subjective2");
  EXPECT_EQ(LmfText(*Output(3)),
            u"Name: Subjective1\nText: Text of 3\n" + kDescribed + u"Subjective: True\nFlags: 0\n");

  // Only subjective ones: every graded question is switched off.
  ASSERT_TRUE(Merge({Test({Subjective(u"1")})}, form));
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 3);
  EXPECT_FALSE(Output(1)->Graded());
}

}  // namespace
}  // namespace TORVA35
