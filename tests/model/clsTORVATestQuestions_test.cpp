#include "model/clsTORVATestQuestions.h"

#include <random>

#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kAdd = u"TORVA35 - clsTORVATestQuestions.Add";
constexpr const char16_t* kRemove = u"TORVA35 - clsTORVATestQuestions.Remove";

Ref<clsTORVATestQuestion> Question(const String& id, Long type = TORVATestQuestionTypeMultipleChoice) {
  auto question = New<clsTORVATestQuestion>();
  question->ID(id);
  question->QuestionType(type);
  question->Answers()->Add(u"answer");
  question->LearningObjectives()->Add(u"objective");
  question->CorrectAnswers()->Add(1);
  return question;
}

class Questions : public HostTest {
 protected:
  String IDs() const {
    String ids;
    for (Long i = 1; i <= list->Count(); ++i) ids += list->Item(i)->ID();
    return ids;
  }

  Ref<clsTORVATestQuestions> list = New<clsTORVATestQuestions>();
};

TEST_F(Questions, AreFiledUnderTheIDTheyHadThen) {
  const auto question = Question(u"a");
  EXPECT_TRUE(list->Add(question));
  EXPECT_TRUE(list->Add(Question(u"b"), 1));
  EXPECT_TRUE(list->Add(Question(u""), Missing, u"B"));
  EXPECT_EQ(IDs(), u"ba");
  question->ID(u"z");
  EXPECT_EQ(list->Item(u"A"), question);
  EXPECT_EQ(list->Item(u"z"), nullptr);
  EXPECT_EQ(list->Item(u"")->ID(), u"");
  EXPECT_FALSE(list->Add(Question(u"A")));
  EXPECT_FALSE(list->Add(Question(u"")));
  EXPECT_FALSE(list->Add(nullptr));
  EXPECT_FALSE(list->Add(Question(u"c"), 9));
  EXPECT_EQ(TakeFailures(), (Failures{{457, kAdd}, {457, kAdd}, {91, kAdd}, {9, kAdd}}));
  EXPECT_TRUE(list->Add(question));
  EXPECT_EQ(IDs(), u"bzz");
}

TEST_F(Questions, RemoveEmptiesTwoListsOfTheQuestion) {
  const auto question = Question(u"a");
  list->Add(question);
  for (const TaggedValue& index : {TaggedValue(2), TaggedValue(u"1"), TaggedValue(question)}) {
    EXPECT_FALSE(list->Remove(index));
    EXPECT_FALSE(list->Exists(index));
    EXPECT_EQ(list->Item(index), nullptr);
  }
  EXPECT_EQ(question->Answers()->Count(), 1);
  EXPECT_TRUE(list->Remove(u"A"));
  EXPECT_EQ(question->Answers()->Count() + question->LearningObjectives()->Count(), 0);
  EXPECT_EQ(question->CorrectAnswers()->Count(), 1);
  EXPECT_EQ(question->ID(), u"a");
  EXPECT_TRUE(list->RemoveAll());
}

TEST_F(Questions, AQuestionWithoutItsListsStays) {
  const auto broken = Question(u"b");
  broken->Answers(nullptr);
  for (const auto& question : {Question(u"a"), broken, Question(u"c")}) list->Add(question);
  EXPECT_FALSE(list->RemoveAll());
  EXPECT_EQ(IDs(), u"b");
  EXPECT_EQ(broken->LearningObjectives()->Count(), 0);  // the first of the two is empty already
  EXPECT_EQ(TakeFailures(), (Failures{{91, kRemove}}));
}

TEST_F(Questions, TypeCount) {
  EXPECT_EQ(list->TypeCount(TORVATestQuestionTypeUnknown), 0);
  for (const Long type : {1, 3, 0, 3, 99}) list->Add(Question(Decimal(list->Count()), type));
  EXPECT_EQ(list->TypeCount(TORVATestQuestionTypeMultipleChoice), 2);
  EXPECT_EQ(list->TypeCount(0), 1);
  EXPECT_EQ(list->TypeCount(2), 0);
}

Long LiteralPosition(const clsTORVATestQuestions& list, const String& id) {
  for (Long i = 1; i <= list.Count(); ++i) {
    if (list.Item(i)->ID() == id) return i;
  }
  return 0;
}

// IDs that change behind the back of the lists, equal IDs, and questions that stand in two lists.
TEST_F(Questions, PositionOfIDFollowsEveryChange) {
  std::mt19937 random(35);
  const auto id = [&] {
    return random() % 20 == 0 ? u"" : String(random() % 2 + 20, u'a') + Decimal(random() % 9);
  };
  std::vector<Ref<clsTORVATestQuestion>> questions;
  for (int i = 0; i < 12; ++i) questions.push_back(Question(id()));
  const auto other = New<clsTORVATestQuestions>();
  for (int step = 0; step < 5'000; ++step) {
    clsTORVATestQuestions& changed = random() % 2 == 0 ? *list : *other;
    const auto position = static_cast<Long>(random() % 8);
    switch (random() % 4) {
      case 0:
        changed.Add(questions[random() % questions.size()]);
        break;
      case 1:
        changed.Remove(position);
        break;
      case 2:
        questions[random() % questions.size()]->ID(id());
        break;
      default:
        questions[random() % questions.size()] = Question(id());
    }
    const String asked = id();
    ASSERT_EQ(list->PositionOfID(asked), LiteralPosition(*list, asked)) << step;
    ASSERT_EQ(other->PositionOfID(asked), LiteralPosition(*other, asked)) << step;
  }
  TakeFailures();  // of the IDs that met
}

}  // namespace
}  // namespace TORVA35
