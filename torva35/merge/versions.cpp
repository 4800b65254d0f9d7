// Versions of a test: the same questions with the same keys, in another order.

#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/merge/Dialogs.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/Inside.h"
#include "torva35/model/clsTORVATest.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {
namespace {

constexpr Location kAddSequence(u"TORVA35 - clsTORVATest.AddSequence");
constexpr Location kValidTestVersions(u"TORVA35 - clsTORVA.ValidTestVersions");
constexpr Location kBuildSequences(u"TORVA35 - clsTORVA.BuildSequences");

// In the order in which AddSequence can show them.
constexpr const char16_t* kVersionExists = u"Operation cannot be completed. The new version already exists.";
constexpr const char16_t* kNumberDiffers =
    u"Operation cannot be completed. The new version of the test contains a different number of questions.";
constexpr const char16_t* kQuestionUnknown =
    u"Operation cannot be completed. The new version of the test contains a question that does not exist.";
constexpr const char16_t* kChoicesScrambled =
    u"Operation cannot be completed. Scrambled answer choices are not supported.";
constexpr const char16_t* kTypesScrambled =
    u"Operation cannot be completed. Scrambling different types of questions together is not supported.";

// Likewise for ValidTestVersions.
constexpr const char16_t* kInvalidTestVersions = u"Invalid Test Versions";
constexpr const char16_t* kCountDiffers =
    u"An error occurred validating the additional test versions. "
    u"An additional test contains a different number of questions from the original. Operation aborted.";
constexpr const char16_t* kQuestionMissing =
    u"An error occurred validating the additional test versions. "
    u"An additional test does not contain the same set of questions. Operation aborted.";
constexpr const char16_t* kAnswersDiffer =
    u"An error occurred validating the additional test versions. "
    u"An additional test does not contain the same number of distractors as the original. Operation aborted.";
constexpr const char16_t* kKeyDiffers =
    u"An error occurred validating the additional test versions. "
    u"An additional test does not contain the same correct answer to one or more questions as the original. "
    u"Operation aborted.";

constexpr const char16_t* kIdentifierUnknown =
    u"An error occured creating multiple versions of the test. "
    u"The selected field that contains the version identifier does not match the specified XML files. "
    u"Operation aborted.";

Long AnswerKey(const clsTORVATestQuestion& question) {
  return Need(question.CorrectAnswers()).GetBitWiseRepresentation();
}

String QuestionFigures(const clsTORVATestQuestion& question) {
  return u"Question Text: " + question.QuestionText() + kLine + u"Question ID: " + question.ID();
}

// What keeps a test from being a version of another one; null when nothing does.
const char16_t* Difference(clsTORVATestQuestions& questions, clsTORVATestQuestions& others) {
  if (others.Count() != questions.Count()) return kCountDiffers;
  const Long count = questions.Count();
  for (Long i = 1; i <= count; ++i) {
    // Held, as a key may report, and a host may then take the questions out.
    const Ref<clsTORVATestQuestion> question = Inside::Find(questions, i);
    if (!others.Exists(Need(question).ID())) return kQuestionMissing;
    const Ref<clsTORVATestQuestion> other = Inside::Find(others, question->ID());
    if (Need(Need(other).Answers()).Count() != Need(question->Answers()).Count()) return kAnswersDiffer;
    if (AnswerKey(*other) != AnswerKey(*question)) return kKeyDiffers;
  }
  return nullptr;
}

}  // namespace

bool clsTORVATest::AddSequence(const Ref<clsTORVATest>& oTestVersion) {
  return Reported(kAddSequence, false, [&](bool& result) {
    if (oTestVersion == nullptr) return;
    const String name = oTestVersion->Version();
    if (Need(sequences_).Exists(name)) {
      ShowDialog(u"Version Exists", kVersionExists + String(kBlankLine) + u"Version: " + name, *this);
      return;
    }
    const Ref<clsTORVATestQuestions> others = oTestVersion->Questions();
    const Long count = Need(others).Count();
    if (Need(questions_).Count() != count) {
      ShowDialog(u"Number of Questions",
                 kNumberDiffers + String(kBlankLine) + u"Number of Questions in Test: " +
                     Decimal(Need(questions_).Count()) + kLine + u"Number of Questions in New Test Version: " +
                     Decimal(count),
                 *this);
      return;
    }
    const auto version = New<clsTORVATestSequence>();
    version->Answer(name);
    for (Long i = 1; i <= count; ++i) {
      const Ref<clsTORVATestQuestion> other = Inside::Find(*others, i);
      if (!Need(questions_).Exists(Need(other).ID())) {
        ShowDialog(u"Invalid Question", kQuestionUnknown + String(kBlankLine) + QuestionFigures(*other), *this);
        return;
      }
      const Ref<clsTORVATestQuestion> own = Inside::Find(Need(questions_), other->ID());
      if (AnswerKey(Need(own)) != AnswerKey(*other)) {
        ShowDialog(u"Invalid Question", kChoicesScrambled + String(kBlankLine) + QuestionFigures(*other), *this);
        return;
      }
      // Both are questions of this test: the one that moved here, and the one that stood here.
      if (own->QuestionType() != Need(Inside::Find(Need(questions_), i)).QuestionType()) {
        ShowDialog(u"Scrambled Sections", kTypesScrambled, *this);
        return;
      }
      Need(version->Order()).Add(other->ID());
    }
    result = Need(sequences_).Add(version);
  });
}

bool clsTORVA::ValidTestVersions() {
  return Reported(kValidTestVersions, false, [&](bool& result) {
    const Long tests = Need(tests_).Count();
    for (Long t = 2; t <= tests; ++t) {
      const Ref<clsTORVATestQuestions> questions = Need(Need(tests_).Item(1)).Questions();
      const Ref<clsTORVATestQuestions> others = Need(Need(tests_).Item(t)).Questions();
      if (const char16_t* difference = Difference(Need(questions), Need(others))) {
        ShowDialog(kInvalidTestVersions, difference, *this);
        return;
      }
    }
    result = true;
  });
}

bool clsTORVA::BuildSequences(const Collection& oQuestionPositions) {
  return Reported(kBuildSequences, false, [&](bool& result) {
    const Kept questions(Ask(lmf_).Questions());
    const Kept versions(Ask(lmf_).Versions());
    const Long count = Ask(questions).Count();
    Ask(Kept(Ask(versions).Sequences())).AddDefault(count);
    const Long tests = Need(tests_).Count();
    if (tests <= 1) {
      result = true;
      return;
    }
    Ask(versions).SequenceQuestion(sequenceQuestion_);
    for (Long t = 1; t <= tests; ++t) {
      const Kept test(Need(tests_).Item(t));
      const Kept order(std::make_shared<std::vector<Long>>());
      if (t > 1) {
        const Kept testQuestions(Ask(test).Questions());
        order->reserve(static_cast<std::size_t>(count));
        Long graded = 0;
        for (Long k = 1; k <= count; ++k) {
          if (!Ask(Kept(Ask(questions).Item(k))).Graded()) {
            order->push_back(k);
            continue;
          }
          graded = CheckedAdd(graded, 1);
          if (graded > Ask(testQuestions).Count()) return;
          const TaggedValue& position = oQuestionPositions.Item(Need(Inside::Find(*testQuestions, graded)).ID());
          order->push_back(*position.As<Long>());
        }
      }
      if (!ValidVersionIdentifier(Ask(test).Version())) {
        Tell(u"Invalid Version Identifier", kIdentifierUnknown);
        return;
      }
      Ask(Kept(Ask(versions).VersionNames())).Add(test->Version());
      // The first test has the natural order, which is in place already.
      if (t == 1) continue;
      const Kept sequence(New<clsLmfSequence>());
      sequence->SetOrder(Array<Long>(1, std::move(*order)));
      HandOver(Ask(Kept(Ask(versions).Sequences())), &clsLmfSequences::Add, sequence, CallSite::Current());
    }
    result = true;
  });
}

bool clsTORVA::ValidVersionIdentifier(const String& sVersion) const {
  return Silently(false, [&](bool& result) {
    const Kept questions(Ask(lmf_).Questions());
    if (sequenceQuestion_ < 1 || sequenceQuestion_ > Ask(questions).Count()) return;
    const Kept question(Ask(questions).Item(sequenceQuestion_));
    // A scored question cannot carry the version.
    if (Ask(question).Graded()) return;
    const Kept labels(Ask(question).Labels());
    const Long count = Ask(labels).Count();
    for (Long i = 1; i <= count && !result; ++i) result = EqualNoCase(Ask(labels).Item(i), sVersion);
  });
}

}  // namespace TORVA35
