// The lists that a host fills: texts, correct answers, questions, versions with their orders, and tests.

#include <limits>
#include <type_traits>

#include "tests/RecordingHost.h"
#include "torva35/model/Inside.h"
#include "torva35/model/clsTORVATests.h"

namespace TORVA35 {
namespace {

constexpr Long kLargest = std::numeric_limits<Long>::max();

template <class List>
class ListTest : public HostTest {
 protected:
  // Asks for what the list does not have.
  void ExpectMisses(const std::vector<TaggedValue>& indexes) {
    const Long count = list->Count();
    for (const TaggedValue& index : indexes) {
      EXPECT_FALSE(list->Exists(index));
      EXPECT_EQ(list->Item(index), decltype(list->Item(index))());
      if constexpr (std::is_same_v<decltype(list->Remove(index)), bool>) {
        EXPECT_FALSE(list->Remove(index));
      } else {
        list->Remove(index);
      }
    }
    EXPECT_EQ(list->Count(), count);
  }

  Ref<List> list = Inside::New<List>();
};

using Strings = ListTest<clsTORVATestStrings>;

TEST_F(Strings, CutAtFiftyAddedAndAt255Replaced) {
  EXPECT_TRUE(list->Add(String(60, u'a')));
  EXPECT_EQ(list->Item(1), String(50, u'a'));
  list->Item(1, String(300, u'b'));
  EXPECT_EQ(list->Item(1), String(255, u'b'));
  EXPECT_EQ(list->Copy()->Item(1), String(50, u'b'));
}

TEST_F(Strings, AddReportsAKeyInUseAndAMissingPlace) {
  EXPECT_TRUE(list->Add(u"one", u"Key"));
  EXPECT_TRUE(list->Add(u"one", Missing, u"KEY"));
  EXPECT_TRUE(list->Add(u"two", Missing, Missing, 1));
  EXPECT_FALSE(list->Add(u"x", u"kEY"));
  EXPECT_FALSE(list->Add(u"x", Missing, 4));
  EXPECT_FALSE(list->Add(u"x", Missing, Missing, u"none"));
  EXPECT_FALSE(list->Add(u"x", Missing, 1, 1));
  EXPECT_EQ(TakeFailures(),
            "457 clsTORVATestStrings.Add, 9 clsTORVATestStrings.Add, 5 clsTORVATestStrings.Add, 5 "
            "clsTORVATestStrings.Add");
  EXPECT_EQ(list->AsString(u"|"), u"one|two|one");
}

TEST_F(Strings, FromArraysAndDelimitedTexts) {
  EXPECT_FALSE(list->AddDelimitedString(u""));
  EXPECT_TRUE(list->AddDelimitedString(u"A\tB\t"));
  EXPECT_TRUE(list->AddDelimitedString(u"C\tD", u""));
  EXPECT_TRUE(list->AddDelimitedString(u"E, F", u", "));
  EXPECT_TRUE(list->AddArray(Array<String>(kLargest, {u"G"})));
  EXPECT_FALSE(list->AddArray({}));
  EXPECT_FALSE(list->AddArray(Array<String>(kLargest, {u"x", u"y"})));
  EXPECT_EQ(TakeFailures(), "9 clsTORVATestStrings.AddArray, 6 clsTORVATestStrings.AddArray");
  EXPECT_EQ(list->AsArray(), Array<String>(1, {u"A", u"B", u"", u"C\tD", u"E", u"F", u"G"}));
}

TEST_F(Strings, ReplacingKeepsThePlaceAndLosesTheKey) {
  list->Add(u"one", u"k1");
  list->Add(u"two", u"k2");
  list->Add(u"three", u"k3");
  list->Item(u"K2", u"TWO");
  list->Item(2.6, u"THREE");
  for (const TaggedValue& none : {TaggedValue(u"k2"), TaggedValue(4), TaggedValue(Null)}) list->Item(none, u"x");
  EXPECT_EQ(list->AsString(u","), u"one,TWO,THREE");
  EXPECT_EQ(list->Item(u"k1"), u"one");
  ExpectMisses({u"k2", u"k3", u"1", 0, 4, true, Empty, Missing, list});
  EXPECT_TRUE(list->Add(u"four", u"k2"));
  EXPECT_TRUE(list->Remove(1));
  EXPECT_EQ(list->Item(1), u"TWO");
  EXPECT_TRUE(list->RemoveAll());
  EXPECT_TRUE(list->RemoveAll());
  EXPECT_EQ(list->Count(), 0);
}

TEST_F(Strings, AsOneTextAndAsAnArray) {
  EXPECT_TRUE(list->AsArray(kLargest).IsEmpty());
  list->Add(u"");
  EXPECT_EQ(list->AsString(), u"");
  EXPECT_EQ(list->Copy()->Count(), 0);
  list->AddDelimitedString(u"a\tb");
  EXPECT_EQ(list->AsString(), u"\ta\tb");
  EXPECT_EQ(list->AsString(u""), u"ab");
  EXPECT_EQ(list->AsArray(-1), Array<String>(-1, {u"", u"a", u"b"}));
  EXPECT_EQ(list->AsArray(kLargest - 2).UBound(), kLargest);
  EXPECT_TRUE(list->AsArray(kLargest - 1).IsEmpty());
  EXPECT_EQ(TakeFailures(), "6 clsTORVATestStrings.AsArray");
}

TEST_F(Strings, CopyGoesThroughText) {
  list->Add(u"a\tb", u"key");
  list->Add(u"");
  const auto split = list->Copy();
  list->RemoveAll();
  EXPECT_EQ(split->AsString(u"|"), u"a|b|");
  list->Add(u"c", u"key");
  list->Add(u"");
  const auto whole = list->Copy();
  EXPECT_EQ(whole->AsString(u"|"), u"c|");
  EXPECT_FALSE(split->Exists(u"key") || whole->Exists(u"key"));
}

using Numbered = std::vector<Integer>;

class Correct : public ListTest<clsTORVATestCorrect> {
 protected:
  void Fill(const Numbered& numbers) {
    EXPECT_TRUE(list->RemoveAll());
    for (Integer number : numbers) EXPECT_TRUE(list->Add(number));
  }
  static Numbered Numbers(const clsTORVATestCorrect& list) {
    Numbered numbers;
    for (Integer i = 1; i <= list.Count(); ++i) numbers.push_back(list.Item(i));
    return numbers;
  }
};

TEST_F(Correct, RefusesANumberTwiceWithoutAReport) {
  Fill({3, 1});
  EXPECT_FALSE(list->Add(3, 9));  // found before the place is looked at
  EXPECT_TRUE(list->Add(-15, 1));
  EXPECT_TRUE(list->Add(0, Missing, u"-15"));
  EXPECT_FALSE(list->Add(7, 9));
  EXPECT_FALSE(list->Add(7, 1, 1));
  EXPECT_EQ(TakeFailures(), "9 !clsTORVATestCorrect.Add, 5 !clsTORVATestCorrect.Add");
  const auto copy = list->Copy();
  EXPECT_EQ(Numbers(*list), (Numbered{-15, 0, 3, 1}));
  list->RemoveAll();
  EXPECT_EQ(Numbers(*copy), (Numbered{-15, 0, 3, 1}));
  EXPECT_TRUE(copy->Exists(u"-15"));
}

TEST_F(Correct, AStringIsANumberAndANumberIsAPosition) {
  Fill({3, 1});
  EXPECT_TRUE(list->Exists(2));
  EXPECT_EQ(list->Item(2), 1);
  for (Integer position : Numbered{-1, 0, 3}) EXPECT_EQ(list->Item(position), -1);
  for (const TaggedValue& none : {TaggedValue(u"2"), TaggedValue(u"03"), TaggedValue(3), TaggedValue(Null)}) {
    EXPECT_FALSE(list->Exists(none) || list->Remove(none));
  }
  EXPECT_TRUE(list->Remove(u"3"));
  EXPECT_TRUE(list->Remove(1));
  EXPECT_EQ(list->Count(), 0);
}

TEST_F(Correct, ANumberOrPositionBeyondSixteenBitsIsAnOverflow) {
  for (const AnyWhole wide :
       {AnyWhole(65538), AnyWhole(-32769), AnyWhole(std::numeric_limits<std::uint64_t>::max())}) {
    EXPECT_FALSE(list->Add(wide));
    EXPECT_EQ((*list)[wide], 0);
    EXPECT_EQ(TakeFailures(), "6 !clsTORVATestCorrect.Add, 6 clsTORVATestCorrect.Item");
  }
  EXPECT_TRUE(list->Add(32767u) && list->Add(-32768L));
  EXPECT_EQ(Numbers(*list), (Numbered{32767, -32768}));
  static_assert(!std::is_convertible_v<char16_t, AnyWhole> && !std::is_convertible_v<Double, AnyWhole>);
}

TEST_F(Correct, AsTheBitsOfANumber) {
  struct Row {
    Numbered numbers;
    Long sum;
    bool overflows = false;
  };
  for (const Row& row :
       {Row{{}, 0}, Row{{3, 1}, 5}, Row{{31}, 1 << 30},
        // Fractions tip a tie or are gone.
        Row{{0}, 0}, Row{{1, 0}, 2}, Row{{2, 0}, 2}, Row{{1, 0, -1}, 2}, Row{{1, -1, 0}, 2}, Row{{-32768, 1}, 1},
        // The sum so far.
        Row{{5, 32, 1}, 16, true}, Row{{2, 32767}, 2, true}}) {
    Fill(row.numbers);
    EXPECT_EQ(list->GetBitWiseRepresentation(), row.sum);
    EXPECT_EQ(TakeFailures(), row.overflows ? "6 clsTORVATestCorrect.GetBitWiseRepresentation" : "");
  }
}

TEST_F(Correct, BitsReplaceTheNumbers) {
  Fill({7, 40});
  for (const Long bits : {5, kLargest, 0}) {
    list->ConvertBitWiseRepresentation(bits);
    EXPECT_EQ(list->GetBitWiseRepresentation(), bits);
  }
  list->ConvertBitWiseRepresentation(-3);
  EXPECT_EQ(list->Count(), 30);
  EXPECT_FALSE(list->Add(3));
  list->ConvertBitWiseRepresentation(std::numeric_limits<Long>::min());
  EXPECT_EQ(list->Count(), 0);
}

TEST_F(Correct, CountsWithSixteenBits) {
  Long next = -32768;
  while (list->Count() < 32767) list->Add(static_cast<Integer>(next++));
  EXPECT_EQ(list->GetBitWiseRepresentation(), 0);
  EXPECT_EQ(list->Copy()->Count(), 32767);
  list->Add(static_cast<Integer>(next));
  EXPECT_EQ(list->GetBitWiseRepresentation(), 0);
  EXPECT_EQ(list->Copy(), nullptr);
  EXPECT_FALSE(list->RemoveAll());
  EXPECT_EQ(list->Count(), 32768);
  EXPECT_EQ(TakeFailures(),
            "6 clsTORVATestCorrect.GetBitWiseRepresentation, 6 clsTORVATestCorrect.Copy, 6 "
            "clsTORVATestCorrect.RemoveAll");
}

Ref<clsTORVATestQuestion> Question(const String& id, Long type = TORVATestQuestionTypeMultipleChoice) {
  auto question = New<clsTORVATestQuestion>();
  question->ID(id);
  question->QuestionType(type);
  question->Answers()->Add(u"answer");
  question->LearningObjectives()->Add(u"objective");
  question->CorrectAnswers()->Add(1);
  return question;
}

class Questions : public ListTest<clsTORVATestQuestions> {
 protected:
  String IDs() const {
    String ids;
    for (Long i = 1; i <= list->Count(); ++i) ids += list->Item(i)->ID();
    return ids;
  }
};

TEST_F(Questions, AreFiledUnderTheIDTheyHadThen) {
  const auto question = Question(u"a");
  EXPECT_TRUE(list->Add(question));
  EXPECT_TRUE(list->Add(Question(u"b"), 1));
  EXPECT_TRUE(list->Add(Question(u""), Missing, u"B"));
  question->ID(u"z");
  EXPECT_EQ(list->Item(u"A"), question);
  EXPECT_EQ(list->Item(u"")->ID(), u"");
  ExpectMisses({4, u"1", u"z", question});
  EXPECT_FALSE(list->Add(Question(u"A")));
  EXPECT_FALSE(list->Add(Question(u"")));
  EXPECT_FALSE(list->Add(nullptr));
  EXPECT_FALSE(list->Add(Question(u"c"), 9));
  EXPECT_EQ(TakeFailures(),
            "457 clsTORVATestQuestions.Add, 457 clsTORVATestQuestions.Add, 91 clsTORVATestQuestions.Add, 9 "
            "clsTORVATestQuestions.Add");
  EXPECT_TRUE(list->Add(question));
  EXPECT_EQ(IDs(), u"bzz");
}

TEST_F(Questions, RemovalEmptiesTwoListsOfTheQuestion) {
  const auto removed = Question(u"a"), broken = Question(u"b");
  broken->Answers(nullptr);
  for (const auto& question : {removed, broken, Question(u"c")}) list->Add(question);
  EXPECT_TRUE(list->Remove(u"A"));
  EXPECT_EQ(removed->Answers()->Count() + removed->LearningObjectives()->Count(), 0);
  EXPECT_EQ(removed->CorrectAnswers()->Count(), 1);
  EXPECT_EQ(removed->ID(), u"a");

  EXPECT_FALSE(list->RemoveAll());
  EXPECT_EQ(IDs(), u"b");
  EXPECT_EQ(broken->LearningObjectives()->Count(), 0);  // the first of the two is empty already
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestions.Remove");
  broken->Answers(New<clsTORVATestStrings>());
  EXPECT_TRUE(list->RemoveAll());
}

TEST_F(Questions, TypeCount) {
  for (const Long type : {1, 3, 0, 3, 99}) list->Add(Question(Decimal(list->Count()), type));
  EXPECT_EQ(list->TypeCount(TORVATestQuestionTypeMultipleChoice), 2);
  EXPECT_EQ(list->TypeCount(0), 1);
  EXPECT_EQ(list->TypeCount(2), 0);
}

// IDs change without the list's doing, and in one that other lists hold, too.
TEST_F(Questions, PositionOfIDFollowsEveryChange) {
  auto other = Inside::New<clsTORVATestQuestions>();
  const auto PositionsIn = [](const clsTORVATestQuestions& questions) {
    std::vector<Long> positions;
    for (Long i = 1; i <= questions.Count(); ++i) positions.push_back(Inside::PositionOfID(questions, i));
    return positions;
  };
  const auto Expect = [&](const std::vector<Long>& here, const std::vector<Long>& there) {
    EXPECT_EQ(PositionsIn(*list), here);
    EXPECT_EQ(PositionsIn(*other), there);
  };
  const auto changed = Question(u"a");
  for (const auto& question : {Question(u"b"), changed, Question(u"c")}) list->Add(question);
  for (const auto& question : {changed, Question(u"C")}) other->Add(question);
  Expect({1, 2, 3}, {1, 2});
  EXPECT_EQ(Inside::PositionOfID(*list, u"C"), 3);
  changed->ID(u"C");
  Expect({1, 2, 3}, {1, 1});
  changed->ID(u"c");
  Expect({1, 2, 2}, {1, 2});
  EXPECT_EQ(Inside::PositionOfID(*list, u"c"), 2);
  EXPECT_EQ(Inside::PositionOfID(*list, u"none") + Inside::PositionOfID(*list, 4), 0);
  changed->ID(u"x");
  EXPECT_TRUE(other->Add(changed));  // twice in one list
  Expect({1, 2, 3}, {1, 2, 1});
  list->Remove(1);
  other->Remove(u"a");
  Expect({1, 2}, {1, 2});
  changed->ID(u"C");
  Expect({1, 2}, {1, 1});
  list->Add(Question(u"z"), 1);
  changed->ID(u"z");
  Expect({1, 1, 3}, {1, 2});
  other = Inside::New<clsTORVATestQuestions>();
  changed->ID(u"c");
  Expect({1, 2, 2}, {});
}

Ref<clsTORVATestQuestions> QuestionsOf(StringView ids) {
  auto questions = Inside::New<clsTORVATestQuestions>();
  for (char16_t id : ids) questions->Add(Question(String(1, id)));
  return questions;
}

Ref<clsTORVATestSequence> Version(const String& answer, StringView ids = u"") {
  auto version = New<clsTORVATestSequence>();
  version->Answer(answer);
  for (char16_t id : ids) version->Order()->Add(String(1, id));
  return version;
}

class SequenceOrder : public ListTest<clsTORVATestSequenceOrder> {
 protected:
  SequenceOrder() { list = version->Order(); }

  const Ref<clsTORVATestSequence> version = Version(u"A", u"ZXY");
};

TEST_F(SequenceOrder, CountsItsEntries) {
  EXPECT_EQ(list->Item(u"z"), 1);
  EXPECT_EQ((*version)[u"X"], 2);
  EXPECT_EQ(list->Item(2.5), 2);
  EXPECT_EQ(list->AsString(u","), u"1,2,3");
  list->Add(u"x");
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestSequenceOrder.Add");
  ExpectMisses({4, u"2", Null});
  list->Remove(u"Z");
  EXPECT_EQ(list->AsString(), u"2\t3");
  list->Add(u"W");
  EXPECT_EQ(list->AsArray(0), Array<Long>(0, {2, 3, 3}));
  EXPECT_TRUE(list->AsArray(kLargest).IsEmpty());
  EXPECT_EQ(TakeFailures(), "6 clsTORVATestSequenceOrder.AsArray");
  list->RemoveAll();
  EXPECT_EQ(list->AsString(u","), u"");
  EXPECT_TRUE(list->AsArray().IsEmpty());
}

TEST_F(SequenceOrder, CopyTakesTheIDsAtTheStoredPositions) {
  const auto copy = version->Copy(QuestionsOf(u"XYZ"));
  EXPECT_EQ(copy->Answer(), u"A");
  EXPECT_EQ(copy->Order()->Item(u"X"), 1);
  EXPECT_EQ(copy->Order()->Item(u"Z"), 3);
  list->Remove(1);
  const auto shorter = version->Copy(QuestionsOf(u"XYZ"));
  EXPECT_EQ(shorter->Order()->Count(), 2);
  EXPECT_EQ(shorter->Order()->Item(u"Y"), 1);

  for (const auto& questions : {QuestionsOf(u"XY"), Ref<clsTORVATestQuestions>(), QuestionsOf(u"XYZ")}) {
    if (questions != nullptr && questions->Count() == 3) version->Order(nullptr);
    EXPECT_EQ(version->Copy(questions), nullptr);
    EXPECT_EQ(TakeFailures(), "91 clsTORVATestSequence.Copy");
  }
  EXPECT_EQ(Version(u"B")->Copy(nullptr)->Order()->Count(), 0);
}

using Sequences = ListTest<clsTORVATestSequences>;

TEST_F(Sequences, AreFiledUnderTheAnswerTheyHadThen) {
  const auto version = Version(String(60, u'a'));
  EXPECT_TRUE(list->Add(version));
  version->Answer(u"B");
  EXPECT_EQ(list->Item(String(50, u'A')), version);
  EXPECT_FALSE(list->Exists(u"B"));
  EXPECT_TRUE(list->Add(Version(u"b")));
  EXPECT_FALSE(list->Add(version));
  EXPECT_FALSE(list->Add(nullptr));
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestSequences.Add, 91 clsTORVATestSequences.Add");
  ExpectMisses({3, u"", Null});
  EXPECT_TRUE(list->Remove(u"B"));
  EXPECT_EQ(list->Count(), 1);
  EXPECT_TRUE(list->RemoveAll());
}

TEST_F(Sequences, AddDefaultTakesTheOrderOfTheQuestions) {
  const auto questions = QuestionsOf(u"XYWZ");
  questions->Item(3)->ID(u"x");
  EXPECT_TRUE(list->AddDefault(questions));
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestSequenceOrder.Add");
  EXPECT_EQ(list->Item(u"A")->Answer(), u"A");
  EXPECT_EQ(list->Item(1)->Order()->Item(u"Y"), 2);
  EXPECT_EQ(list->Item(1)->Order()->Item(u"Z"), 3);  // behind the ID that occurs twice
  EXPECT_FALSE(list->AddDefault(nullptr, u"B"));     // the list is looked at first
  EXPECT_EQ(list->Count(), 1);
  list->RemoveAll();
  EXPECT_FALSE(list->AddDefault(nullptr));
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestSequences.AddDefault");
  EXPECT_TRUE(list->AddDefault(QuestionsOf(u""), u""));
  EXPECT_TRUE(list->Exists(u""));
}

using Tests = ListTest<clsTORVATests>;

TEST_F(Tests, ReportAMissOnlyOfARemoval) {
  const auto first = New<clsTORVATest>(), second = New<clsTORVATest>(), third = New<clsTORVATest>();
  list->Add(second, u"Two");
  list->Add(first, Missing, u"TWO");
  list->Add(third, u"", Missing, 2);
  EXPECT_EQ(list->Item(1), first);
  EXPECT_EQ(list->Item(u"two"), second);
  EXPECT_EQ((*list)[u""], third);
  EXPECT_EQ(basError::goErr(), host);
  list->Add(first, u"tWO");
  list->Add(first, Missing, 4);
  list->Add(nullptr);
  EXPECT_EQ(TakeFailures(), "457 clsTORVATests.Add, 9 clsTORVATests.Add, 91 clsTORVATests.Add");
  ExpectMisses({4, u"1", Empty});
  EXPECT_EQ(TakeFailures(), "9 clsTORVATests.Remove, 5 clsTORVATests.Remove, 13 clsTORVATests.Remove");
  list->RemoveAll();
  EXPECT_EQ(list->Count(), 0);
}

}  // namespace
}  // namespace TORVA35
