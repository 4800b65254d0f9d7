#pragma once

#include "fuzz/Fuzz.h"
#include "torva35/merge/clsTORVA.h"

namespace TORVA35::fuzz {

/// Reads all that a loaded question gives, and checks what holds whatever the file said.
inline void ReadQuestion(const clsTORVATest& test, Long position) {
  const auto question = test.Questions()->Item(position);
  Require(question != nullptr && test.Questions()->Item(question->ID()) == question,
          "found by position and by ID");
  Require(question->ID().size() <= 50 && question->Difficulty().size() <= 255 && question->Topic().size() <= 255 &&
              question->Keywords().size() <= 255 && question->Miscellaneous().size() <= 255,
          "texts are cut");
  const auto answers = question->Answers()->AsArray();
  for (const String& answer : answers) Require(answer.size() <= 50, "answers are cut");

  const Long count = question->CorrectAnswers()->Count();
  String numbers;
  for (const String& number : test.CorrectAnswersAsArray(position))
    numbers += (numbers.empty() ? u"" : u",") + number;
  Require(test.CorrectAnswersAsArray(position, true).Size() == count, "a label for each number of the key");
  Require(test.CorrectAnswersAsString(position, u",", false, true) == numbers, "the key as text and as array");
  test.CorrectAnswersAsString(question->ID());
  question->CorrectAnswers()->GetBitWiseRepresentation();

  const auto scale = test.QuestionScale(position);
  Require(scale != nullptr, "a scale for each question");
  if (question->QuestionType() == TORVATestQuestionTypeMultipleChoice) {
    Require(scale->Count() == answers.Size(), "a label for each answer");
    Require(test.QuestionScale(position, u"True")->Count() == answers.Size(), "a label for each answer, odd");
  }
}

/// Reads all that a loaded test gives, copies it, and takes out of it what no form can grade.
inline void ReadTest(const Ref<clsTORVATest>& test, Long maxQuestions) {
  Require(test->Title().size() <= 255 && test->Version().size() <= 50 && test->Description().size() <= 255,
          "texts are cut");
  const Long count = test->Questions()->Count();
  Long ofAllTypes = 0;
  for (Long type = TORVATestQuestionTypeUnknown; type <= TORVATestQuestionTypeBimodal; ++type) {
    ofAllTypes += test->Questions()->TypeCount(type);
  }
  Require(ofAllTypes == count, "every question has a type");
  for (Long i = 1; i <= count; ++i) ReadQuestion(*test, i);

  const auto copy = test->Copy();
  Require(copy != nullptr && copy->Questions()->Count() == count &&
              copy->Sequences()->Count() == test->Sequences()->Count(),
          "a copy of everything");
  Require(copy->NumObjectives() >= 0 && test->NumObjectives() >= 0, "objectives are counted");

  clsTORVA engine;
  engine.Verbose(false);
  engine.Tests()->Add(test);
  if (!engine.RemoveInvalid(maxQuestions)) return;
  Long supported = 0;
  for (Long type : {TORVATestQuestionTypeTrueFalse, TORVATestQuestionTypeYesNo,
                    TORVATestQuestionTypeMultipleChoice, TORVATestQuestionTypeSubjective}) {
    supported += test->Questions()->TypeCount(type);
  }
  Require(test->Questions()->Count() == supported, "only supported types stay");
  Require(maxQuestions == 0 || supported <= maxQuestions, "no more questions than wanted");
  Require(copy->Questions()->Count() == count, "a copy shares nothing");
}

}  // namespace TORVA35::fuzz
