#include "tests/LmfText.h"
#include "tests/Values.h"
#include "tests/merge/MergeFixture.h"

namespace TORVA35 {
namespace {

class MergeForm : public MergeTest {};

const std::vector<String> kFive = {u"1", u"2", u"3", u"4", u"5"};

TEST_F(MergeForm, ChecksChangeNothing) {
  const auto form = Form({{Field(2, true, kFive)}});
  const auto out = Form({{Field(1, true, kFive)}});
  const auto test = Test({Choice(u"1"), Choice(u"2"), Choice(u"3")});
  engine->MIVLMF()->Notes(u"kept");
  engine->TemplateOut(out);

  EXPECT_FALSE(engine->Merge());
  engine->Tests()->Add(New<clsTORVATest>());
  EXPECT_FALSE(engine->Merge());
  engine->TemplateIn(New<clsTemplate>());
  EXPECT_FALSE(engine->Merge());
  engine->TemplateIn(form);
  EXPECT_FALSE(engine->Merge());
  engine->Tests()->Item(1)->Questions(test->Questions());
  EXPECT_FALSE(engine->Merge());
  const String both = u"An error occurred merging the specified template and test. ";
  EXPECT_EQ(
      TakeDialogs(),
      (Dialogs{
          Told(u"Invalid test", both + u"The test is invalid. Operation aborted."),
          Told(u"Invalid Template", both + u"The template is invalid. Operation aborted."),
          Told(u"Invalid Template", both + u"The template does not contain any questions. Operation aborted."),
          Told(u"Invalid test", both + u"The test does not contain any questions. Operation aborted."),
          Told(u"Invalid Merge",
               u"An error occurred merging the test with the specified template. The test contains more "
               u"graded questions than the specified template. Operation aborted.")}));
  EXPECT_EQ(engine->TemplateOut(), out);
  EXPECT_EQ(out->QuestionCount(), 1);
  EXPECT_EQ(engine->MIVLMF()->Notes(), u"kept");
  engine->Verbose(false);
  EXPECT_FALSE(engine->Merge());
}

TEST_F(MergeForm, AnEmptyTemplateOutIsAFailure) {
  engine->Tests()->Add(Test({Choice(u"1")}));
  engine->TemplateIn(Form({{Field(1, true, kFive)}}));
  EXPECT_FALSE(engine->Merge());
  EXPECT_EQ(TakeFailures(), "91 clsTORVA.Merge");
}

TEST_F(MergeForm, TakesTestQuestionsByPosition) {
  auto second = Choice(u"2", 3, 3);
  second->CorrectAnswers()->Add(1);
  second->CorrectPoints(9);
  second->Difficulty(u"d");
  second->Keywords(u"k");
  second->Miscellaneous(u"m");
  second->Notes(u"n");
  second->Reference(u"r");
  second->Topic(u"t");
  const auto form = Form({{Field(1, false, {u"x", u"y"}), Field(1, true, kFive)}, {Field(1, true, kFive)}});
  const auto graded = form->Pages()->Item(2)->Fields()->Item(1)->Questions()->Item(1);
  graded->CorrectPoints(2.5);
  graded->IncorrectPoints(-1);
  graded->NoResponsePoints(0.5);
  graded->CarriedFlag1(11);
  graded->CarriedFlag2(12);
  form->Pages()->Item(2)->Fields()->Item(1)->FieldMode(1);
  const auto plain = form->Pages()->Item(1)->Fields()->Item(1)->Questions()->Item(1);
  plain->Multiples(4);
  plain->Text(u"Name");
  const auto old = engine->TemplateOut();
  ASSERT_TRUE(Merge(Test({Choice(u"1"), second}), form));

  EXPECT_NE(engine->TemplateOut(), old);
  EXPECT_EQ(graded->Labels()->Item(1), u"1");  // the input is never changed
  const auto merged = OutQuestion(2, 1, 1);
  EXPECT_EQ(Joined(merged->Labels()) + u" " + Joined(merged->Values()), u"A|B|C|| 1|2|3|v4|v5");
  EXPECT_EQ(merged->Text(), u"Text of 2");
  EXPECT_EQ(merged->Multiples(), 1);

  const String all = u"\n" + LmfText(*engine->MIVLMF());
  const auto begin = [&](Long position) { return all.find(u"\nName: Q" + Decimal(position) + u"\n"); };
  EXPECT_EQ(engine->MIVLMF()->Mode(), 1);
  EXPECT_EQ(engine->MIVLMF()->PageCount(), 2);
  EXPECT_EQ(all.substr(begin(1), begin(2) - begin(1)),
            u"\nName: Q1\nText: Name\nLabels 1: x\nLabels 2: y\nValues 1: v1\nValues 2: v2\nObjectiveFlags: 0"
            u"\nGraded: False\nSubjective: False\nCarriedFlag1: 0\nCarriedFlag2: 0\nQuestionMode: 2\nMultiples: 4"
            u"\nDefaultText: \nDefaultValue: 0\nCorrectCount: 0\nCorrectAnd: False\nCorrectPoints: 0"
            u"\nIncorrectPoints: 0\nNoResponsePoints: 0\nSubjectivePoints: 0\nDifficulty: \nReference: \nTopic: "
            u"\nKeywords: \nMiscellaneous: \nNotes: ");
  EXPECT_EQ(all.substr(begin(3)),
            u"\nName: Q3\nText: Text of 2\nLabels 1: A\nLabels 2: B\nLabels 3: C\nValues 1: 1\nValues 2: 2"
            u"\nValues 3: 3\nCorrectLabels 1: (C,A)\nCorrectValues 1: (3,1)\nObjectiveFlags: 0\nGraded: True"
            u"\nSubjective: False\nCarriedFlag1: 11\nCarriedFlag2: 12\nQuestionMode: 1\nMultiples: 1"
            u"\nDefaultText: \nDefaultValue: 0\nCorrectCount: 2\nCorrectAnd: False\nCorrectPoints: 2.5"
            u"\nIncorrectPoints: -1\nNoResponsePoints: 0.5\nSubjectivePoints: 0\nDifficulty: d\nReference: r"
            u"\nTopic: t\nKeywords: k\nMiscellaneous: m\nNotes: n\n");
}

TEST_F(MergeForm, AFieldThatIsNoChoiceFieldKeepsItsLabels) {
  const auto form = Form({{Field(1, true, kFive)}});
  const auto field = form->Pages()->Item(1)->Fields()->Item(1);
  field->Questions()->Item(1)->Multiples(7);
  for (const auto& [fieldClass, type, rewritten] :
       {std::tuple(1, 1, true), {1, 2, false}, {1, 4, true}, {1, 6, true}, {2, 1, false}}) {
    field->FieldClass(fieldClass);
    field->FieldType(type);
    ASSERT_TRUE(Merge(Test({Choice(u"1", 2)}), form));
    EXPECT_EQ(Joined(OutQuestion(1, 1, 1)->Labels()), rewritten ? u"A|B|C||" : u"1|2|3|4|5");
    EXPECT_EQ(Joined(Output(1)->Labels()), rewritten ? u"A|B|C" : u"");
    EXPECT_EQ(Output(1)->Multiples(), rewritten ? 0 : 7);
    EXPECT_EQ(Joined(Output(1)->CorrectLabels()) + Output(1)->Text(), u"BText of 1");
  }
}

TEST_F(MergeForm, ScaleByPositionOnceThereAreVersions) {
  const auto test =
      Test({Choice(u"1", 1, 2), Choice(u"2", 1, 2), Question(u"3", TORVATestQuestionTypeTrueFalse, 2)});
  test->MultipleChoiceEvenScale()->Item(1, u"F");
  ASSERT_TRUE(Merge(test, Form({{Field(3, true, kFive)}})));
  EXPECT_EQ(Joined(Output(2)->Labels()), u"F|B");  // fitted to the answers
  for (const char16_t* answer : {u"A", u"B"}) {
    auto version = New<clsTORVATestSequence>();
    version->Answer(answer);
    test->Sequences()->Add(version);
  }
  ASSERT_TRUE(Merge(test, Form({{Field(3, true, kFive)}})));
  EXPECT_EQ(Joined(Output(1)->Labels()), u"A|B|C|D");  // the whole scale
  EXPECT_EQ(Joined(Output(2)->Labels()), u"F|B|C|D");
  EXPECT_EQ(Joined(Output(3)->Labels()), u"T|F");
  // A scale longer than the form's labels reaches a position that these do not have.
  EXPECT_FALSE(Merge(test, Form({{Field(3, true, {u"1", u"2"})}})));
  EXPECT_EQ(TakeFailures(), "9 clsTORVA.Merge");
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 0);
  EXPECT_EQ(Joined(OutQuestion(1, 1, 1)->Labels()), u"A|B");
}

TEST_F(MergeForm, ObjectivesAreEnteredOnceAndFlagged) {
  const auto first = Choice(u"1"), second = Choice(u"2"), third = Subjective(u"3");
  first->LearningObjectives()->AddDelimitedString(u"Alpha\tALPHA");
  second->LearningObjectives()->AddDelimitedString(u"beta\talpha");
  third->LearningObjectives()->AddDelimitedString(u"Gamma\t(All Questions)");
  ASSERT_TRUE(Merge(Test({first, second, third}), Form({{Field(1, false, {}), Field(2, true, kFive)}})));
  String texts;
  const auto objectives = engine->MIVLMF()->Objectives();
  for (const auto& objective : *objectives) texts += objective->Text() + u"|";
  EXPECT_EQ(texts, u"(All Questions)|Alpha|beta|Gamma|(All Questions)|");
  EXPECT_EQ(Flags(Output(1)) + u" " + Flags(Output(2)) + u" " + Flags(Output(3)), u"00000 01000 01100");
  EXPECT_EQ(Flags(Output(4)), u"00011");  // never the built-in one, whose text is the same
}

TEST_F(MergeForm, SurplusGradedQuestionsAreSwitchedOffFromTheEnd) {
  const auto form =
      Form({{Field(3, true, kFive, 7), Field(1, true, kFive)}, {Field(2, true, kFive), Field(1, false, {})}});
  engine->SequenceQuestion(7);
  ASSERT_TRUE(Merge(Test({Choice(u"1"), Choice(u"2"), Choice(u"3"), Choice(u"4")}), form));
  EXPECT_FALSE(OutQuestion(2, 1, 1)->Graded());
  EXPECT_FALSE(OutQuestion(2, 1, 2)->Graded());
  EXPECT_TRUE(OutQuestion(1, 2, 1)->Graded());
  EXPECT_EQ(engine->SequenceQuestion(), 5);
  EXPECT_EQ(form->GradedCount(), 6);
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 7);

  // The questions' own numbers decide, as they are met: 9 first, then 4.
  const auto numbered = Form({{Field(3, true, kFive)}});
  numbered->Pages()->Item(1)->Fields()->Item(1)->Questions()->Item(3)->Number(9);
  numbered->Pages()->Item(1)->Fields()->Item(1)->Questions()->Item(2)->Number(4);
  engine->SequenceQuestion(4);
  ASSERT_TRUE(Merge(Test({Choice(u"1")}), numbered));
  EXPECT_EQ(engine->SequenceQuestion(), 3);
}

TEST_F(MergeForm, OfAGroupOnlyTheFirstFieldIsMerged) {
  const auto form =
      Form({{Field(1, true, kFive, 7), Field(1, false, kFive, 7), Field(1, true, kFive), Field(1, false, {}, 7)},
            {Field(1, false, {}, 7), Field(1, true, kFive, 8)}});
  ASSERT_TRUE(Merge(Test({Choice(u"1"), Choice(u"2"), Choice(u"3")}), form));
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 4);
  EXPECT_EQ(Output(2)->Name(), u"Q2");  // names go by output position
  EXPECT_EQ(Joined(OutQuestion(2, 2, 1)->Labels()), u"A|B|C||");

  // A graded question that the walk passes by still counts: the last test question finds no place.
  const auto hidden = Form({{Field(1, true, kFive, 7), Field(1, true, kFive, 7)}});
  ASSERT_TRUE(Merge(Test({Choice(u"1"), Choice(u"2")}), hidden));
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 1);
}

TEST_F(MergeForm, TooManyAnswersEndTheMerge) {
  const auto form = Form({{Field(2, true, {u"1", u"2", u"3"})}});
  form->Pages()->Item(1)->Fields()->Item(1)->Name(u"Block");
  EXPECT_FALSE(Merge(Test({Choice(u"1"), Choice(u"2", 1, 4)}), form));
  EXPECT_EQ(
      TakeDialogs(),
      Dialogs{Told(u"Invalid Merge",
                   u"An error occurred merging the test with the specified template. One or more questions from "
                   u"the test contains more possible answers than are present in the specified template. "
                   u"Operation aborted.\r\n\r\n\tTemplate Field: Block\r\n\tTest Question ID: 2")});
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 1);
}

TEST_F(MergeForm, AnIDThatWasChangedToAnother) {
  const auto test = Test({Choice(u"1"), Choice(u"2", 2)});
  test->Questions()->Item(2)->ID(u"1");
  EXPECT_FALSE(Merge(test, Form({{Field(2, true, kFive)}})));
  EXPECT_EQ(TakeFailures(), "457 clsTORVA.Merge");
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 1);
}

TEST_F(MergeForm, SubjectiveQuestionsBecomeFieldsOfTheLastPage) {
  auto essay = Subjective(u"3");
  essay->SubjectivePoints(2.5f);
  essay->Topic(u"t");
  const auto form = Form({{Field(1, true, kFive)}, {Field(1, true, kFive)}});
  ASSERT_TRUE(Merge(Test({Choice(u"1"), Choice(u"2"), essay, Subjective(u"3b")}), form));
  const auto fields = engine->TemplateOut()->Pages()->Item(2)->Fields();
  ASSERT_EQ(fields->Count(), 3);
  const auto field = fields->Item(2);
  const auto question = field->Questions()->Item(1);
  EXPECT_EQ(Values({field->Name(), field->FieldClass(), field->FieldType(), field->FieldMode(),
                    field->Subjective(), question->Subjective(), question->CorrectPoints()}),
            u"Subjective1 2 3 1 True True 2.5");
  EXPECT_EQ(form->Pages()->Item(2)->Fields()->Count(), 1);
  ASSERT_EQ(engine->MIVLMF()->Questions()->Count(), 4);
  EXPECT_EQ(Output(4)->Name(), u"Subjective2");
  EXPECT_TRUE(Output(3)->Subjective() && !Output(3)->Graded());
  EXPECT_EQ(Output(3)->Text() + Output(3)->Topic(), u"Text of 3t");

  // Only subjective ones: every graded question is switched off.
  ASSERT_TRUE(Merge(Test({Subjective(u"1")}), form));
  EXPECT_EQ(engine->MIVLMF()->Questions()->Count(), 3);
  EXPECT_FALSE(Output(1)->Graded());
}

}  // namespace
}  // namespace TORVA35
