// A test from an LMF file: its scored questions, with kinds and keys worked out from texts.

#include <cmath>
#include <limits>
#include <memory>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/errors/basError.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/model/Inside.h"
#include "torva35/model/basPublic.h"
#include "torva35/model/clsTORVATest.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {
namespace {

constexpr Location kLoadLMF(u"TORVA35 - clsTORVATest.LoadLMF");
constexpr Location kBuildTestFromLMF(u"TORVA35 - basPublic.BuildTestFromLMF");

constexpr Long kStoresVersions = 2;

Single ToSingle(Double value, CallSite at = CallSite::Current()) {
  const auto narrowed = static_cast<Single>(value);
  if (std::isinf(narrowed) && !std::isinf(value)) Raise(kOverflow, at);
  return narrowed;
}

bool BeginsWith(const String& text, char16_t letter) {
  return !text.empty() && FoldUnit(text.front()) == FoldUnit(letter);
}

Long KindOf(const clsTORVATestStrings& answers) {
  const Long count = answers.Count();
  if (count == 0) return TORVATestQuestionTypeUnknown;
  if (count == 2) {
    const String first = answers.Item(1);
    const String second = answers.Item(2);
    if (BeginsWith(first, u'Y') && BeginsWith(second, u'N')) return TORVATestQuestionTypeYesNo;
    if (BeginsWith(first, u'T') && BeginsWith(second, u'F')) return TORVATestQuestionTypeTrueFalse;
  }
  return TORVATestQuestionTypeMultipleChoice;
}

// Finds answers by their text. The first one with exactly this text counts.
class AnswerPositions {
 public:
  explicit AnswerPositions(const clsTORVATestStrings& answers) : answers_(answers), count_(answers.Count()) {
    // A file may give a question as many as it can hold.
    for (Long i = 1; count_ > kWalked && i <= count_; ++i) positions_.emplace(Need(Inside::Find(answers, i)), i);
  }

  /// From 1, or 0 when no answer has it.
  Long Find(StringView text) const {
    if (count_ > kWalked) {
      const auto found = positions_.find(text);
      return found == positions_.end() ? 0 : found->second;
    }
    for (Long i = 1; i <= count_; ++i) {
      if (Need(Inside::Find(answers_, i)) == text) return i;
    }
    return 0;
  }

 private:
  static constexpr Long kWalked = 16;

  const clsTORVATestStrings& answers_;
  const Long count_;
  std::unordered_map<StringView, Long> positions_;
};

// The key is one text of answers, such as "(A,C)". One that is no answer of the question is dropped.
void ReadAnswerKey(const clsLmfQuestion& from, const clsTORVATestStrings& answers, clsTORVATestCorrect& correct) {
  const Kept key(from.CorrectLabels());
  if (Ask(key).Count() == 0) return;
  const String text = Ask(key).Item(1);
  StringView labels = text;
  if (labels.starts_with(u'(') && labels.ends_with(u')')) labels = labels.substr(1, labels.size() - 2);
  const AnswerPositions positions(answers);
  for (const String& label : Split(labels, u",")) {
    if (const Long position = positions.Find(label)) correct.Add(Narrow<Integer>(position));
  }
}

// Position of the next True flag after k, at most `count`, or 0. A flag that is missing up to there is raised.
Long NextTrue(const clsLmfObjectiveFlags& flags, Long k, Long count, CallSite at = CallSite::Current()) {
  // A host's own flags are asked one by one, ours as packed bits.
  if (typeid(flags) != typeid(clsLmfObjectiveFlags)) {
    while (++k <= count) {
      if (Ask(Kept(flags.Item(k, at)), at).Value()) return k;
    }
    return 0;
  }
  k = flags.NextTrue(k);
  if (k != 0 && k <= count) return k;
  if (flags.Count() < count) Raise(kSubscriptOutOfRange, at);
  return 0;
}

template <class Class, class T>
bool IsOurs(const Ref<T>& object) {
  if (object == nullptr) return false;
  const T& held = *object;
  return typeid(held) == typeid(Class);
}

// The objectives of a file's questions. The first objective of a file is the built-in one, which is never taken
// over.
class ObjectivesReader {
 public:
  explicit ObjectivesReader(const clsLmf& lmf) {
    if (!AreOurs(lmf)) return;
    const auto shared = std::make_shared<SharedTexts>();
    const clsLmfObjectives& all = *lmf.Objectives();
    for (Long k = 2; k <= all.Count(); ++k) shared->Add(String(Trim(all.Item(k)->Text())));
    lastTaker_.resize(static_cast<std::size_t>(all.Count()));
    shared_ = shared;
  }

  void Read(const clsLmfQuestion& from, const clsLmfObjectives& all, clsTORVATestStrings& objectives) {
    const Long count = all.Count();
    if (count < 2) return;
    const Kept flags(from.ObjectiveFlags());
    // A failure of an earlier question may have told a host, who then changed the list.
    const bool isShared = shared_ != nullptr && static_cast<std::size_t>(count) == lastTaker_.size();
    if (isShared) return Take(Ask(flags), count, objectives);
    for (Long k = NextTrue(Ask(flags), 1, count); k != 0; k = NextTrue(*flags, k, count)) {
      const String text(Trim(Ask(Kept(all.Item(k))).Text()));
      if (!objectives.Exists(text)) objectives.Add(text, text);
    }
  }

 private:
  // 64 MiB of places.
  static constexpr std::size_t kMostTaken = 16 << 20;

  // A host's own objects are asked each time.
  static bool AreOurs(const clsLmf& lmf) {
    if (typeid(lmf) != typeid(clsLmf) || !IsOurs<clsLmfObjectives>(lmf.Objectives())) return false;
    for (const auto& objective : *lmf.Objectives()) {
      if (!IsOurs<clsLmfObjective>(objective)) return false;
    }
    for (const auto& question : *lmf.Questions()) {
      if (!IsOurs<clsLmfQuestion>(question) || !IsOurs<clsLmfObjectiveFlags>(question->ObjectiveFlags()))
        return false;
    }
    return true;
  }

  void Take(const clsLmfObjectiveFlags& flags, Long count, clsTORVATestStrings& objectives) {
    auto selection = std::make_unique<SharedSelection>();
    selection->all = shared_;
    ++taker_;
    for (Long k = NextTrue(flags, 1, count); k != 0; k = NextTrue(flags, k, count)) {
      const auto place = static_cast<SharedTexts::Place>(k - 2);
      if (std::exchange(lastTaker_[shared_->First(place)], taker_) != taker_) selection->places.push_back(place);
    }
    taken_ += selection->places.size();
    if (taken_ > kMostTaken) Raise(kTooMuchText);
    selection->places.shrink_to_fit();
    Inside::Take(objectives, std::move(selection));
  }

  std::shared_ptr<const SharedTexts> shared_;  // null where objects of the file are a host's
  std::vector<Long> lastTaker_;  // by the first place of a text: the last question that has it, from 1
  Long taker_ = 0;
  std::size_t taken_ = 0;
};

Ref<clsTORVATestQuestion> ReadQuestion(const clsLmfQuestion& from, Long position, const clsLmfObjectives& all,
                                       ObjectivesReader& objectives) {
  // The lists are the question's, and nothing else holds a reference while the file's objects are asked.
  const Kept question(New<clsTORVATestQuestion>());
  clsTORVATestStrings& answers = Need(question->Answers());
  const Kept labels(from.Labels());
  if (Ask(labels).Count() > 0) answers.AddArray(Ask(labels).AsArray());
  question->CorrectAnd(from.CorrectAnd());
  question->CorrectPoints(ToSingle(from.CorrectPoints()));
  question->Difficulty(from.Difficulty());
  question->ID(Decimal(position));
  question->IncorrectPoints(ToSingle(from.IncorrectPoints()));
  question->Keywords(from.Keywords());
  question->Miscellaneous(from.Miscellaneous());
  question->NoResponsePoints(ToSingle(from.NoResponsePoints()));
  question->Notes(from.Notes());
  question->QuestionText(from.Text());
  if (from.Subjective()) {
    question->QuestionType(TORVATestQuestionTypeSubjective);
    question->SubjectivePoints(ToSingle(from.SubjectivePoints()));
  } else {
    clsTORVATestCorrect& correct = Need(question->CorrectAnswers());
    ReadAnswerKey(from, answers, correct);
    question->QuestionType(KindOf(answers));
  }
  question->Reference(from.Reference());
  clsTORVATestStrings& itsObjectives = Need(question->LearningObjectives());
  objectives.Read(from, all, itsObjectives);
  question->Topic(from.Topic());
  return question.Share();
}

// Subjective questions count only as a closed block at the end of the test.
void RemoveMisplacedSubjective(clsTORVATestQuestions& questions) {
  bool inLastBlock = true;
  for (Long i = questions.Count(); i >= 1; --i) {
    if (Need(Inside::Find(questions, i)).QuestionType() != TORVATestQuestionTypeSubjective) {
      inLastBlock = false;
    } else if (!inLastBlock) {
      questions.Remove(i);
    }
  }
}

void ReadVersions(const clsLmfVersions& from, clsTORVATest& test) {
  const Kept versions(test.Sequences());
  if (from.VersionMode() != kStoresVersions) {
    Ask(versions).AddDefault(test.Questions(), u"A");
    return;
  }
  const Long count = Ask(Kept(from.Sequences())).Count();
  for (Long n = 1; n <= count; ++n) {
    const Kept version(New<clsTORVATestSequence>());
    version->Answer(Ask(Kept(from.VersionNames())).Item(n));
    const Kept order(Ask(Kept(from.Sequences())).Item(n));
    const Long length = Ask(order).Count();
    for (Long i = 1; i <= length; ++i) {
      const String id = Decimal(Ask(order).Item(i));
      if (Inside::Find(Need(test.Questions()), id) != nullptr) Need(version->Order()).Add(id);
    }
    Ask(versions).Add(version.Share());
  }
}

// The answers of the first multiple-choice question at an odd or at an even position.
void ReadScale(const clsTORVATestQuestions& questions, bool odd, const Ref<clsTORVATestStrings>& scale) {
  const Long count = questions.Count();
  for (Long i = odd ? 1 : 2; i <= count; i += 2) {
    const Ref<clsTORVATestQuestion> question = Inside::Find(questions, i);
    if (Need(question).QuestionType() != TORVATestQuestionTypeMultipleChoice) continue;
    Need(scale).RemoveAll();
    scale->AddArray(Need(question->Answers()).AsArray(1));
    return;
  }
}

}  // namespace

bool clsTORVATest::LoadLMF(const String& sLMFFile) {
  return Reported(kLoadLMF, false, [&](bool& result) {
    const Kept lmf(New<clsLmf>());
    if (!lmf->Open(sLMFFile)) return;
    Clear();
    const Ref<clsTORVATest> self = weak_from_this().lock();
    if (!basPublic::BuildTestFromLMF(self == nullptr ? NotOwned(*this) : self, lmf.Share())) return;
    if (const std::size_t separator = sLMFFile.rfind(u'\\'); separator != String::npos) {
      const String name = sLMFFile.substr(separator + 1);
      Title(name.substr(0, name.rfind(u'.')));
    }
    if (TrimScales()) result = Need(questions_).Count() >= 1;
  });
}

bool basPublic::BuildTestFromLMF(const Ref<clsTORVATest>& oTest, const Ref<clsLmf>& oLmf) {
  return Reported(kBuildTestFromLMF, false, [&](bool& result) {
    if (oLmf == nullptr || oTest == nullptr) return;
    oTest->SetError(basError::goErr());
    oTest->UserDefined(true);
    oTest->Description(Ask(oLmf).Description());
    oTest->Notes(Ask(oLmf).Notes());
    oTest->Source(TORVATestSourceTypeLMF);
    ObjectivesReader objectives(*oLmf);
    bool hasSubjective = false;
    const Long count = Ask(Kept(Ask(oLmf).Questions())).Count();
    for (Long i = 1; i <= count; ++i) {
      const Kept from(Ask(Kept(Ask(oLmf).Questions())).Item(i));
      if (!Ask(from).Graded() && !Ask(from).Subjective()) continue;
      if (Ask(from).Subjective()) hasSubjective = true;
      Need(oTest->Questions());
      const Kept question(ReadQuestion(*from, i, Ask(Kept(Ask(oLmf).Objectives())), objectives));
      Need(oTest->Questions()).Add(question.Share());
    }
    if (hasSubjective) RemoveMisplacedSubjective(Need(oTest->Questions()));
    ReadVersions(Ask(Kept(Ask(oLmf).Versions())), *oTest);
    ReadScale(Need(oTest->Questions()), true, oTest->MultipleChoiceOddScale());
    ReadScale(Need(oTest->Questions()), false, oTest->MultipleChoiceEvenScale());
    result = true;
  });
}

}  // namespace TORVA35
