// The lists that a host fills: texts, correct answers, questions, versions with their orders, and tests.

#include <limits>
#include <type_traits>

#include "tests/RecordingHost.h"
#include "tests/Values.h"
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

using clsTORVATestStringsTest = ListTest<clsTORVATestStrings>;

TEST_F(clsTORVATestStringsTest, AddCutsAndReportsAKeyInUseAndAMissingPlace) {
  EXPECT_TRUE(list->Add(String(60, u'a'), u"Key"));
  EXPECT_TRUE(list->Add(u"one", Missing, u"KEY"));
  EXPECT_TRUE(list->Add(u"two", Missing, Missing, 1));
  EXPECT_FALSE(list->Add(u"x", u"kEY") || list->Add(u"x", Missing, 4) || list->Add(u"x", Missing, 1, 1) ||
               list->Add(u"x", Missing, Missing, u"none"));
  EXPECT_EQ(TakeFailures(),
            "457 clsTORVATestStrings.Add, 9 clsTORVATestStrings.Add, 5 clsTORVATestStrings.Add, 5 "
            "clsTORVATestStrings.Add");
  EXPECT_EQ(list->AsString(u"|"), u"one|two|" + String(50, u'a'));
  list->Item(1, String(300, u'b'));
  EXPECT_EQ(list->Item(1), String(255, u'b'));
  EXPECT_EQ(list->Copy()->Item(1), String(50, u'b'));
}

TEST_F(clsTORVATestStringsTest, FromAndToArraysAndDelimitedTexts) {
  EXPECT_TRUE(list->AsArray(kLargest).IsEmpty());
  EXPECT_FALSE(list->AddDelimitedString(u""));
  EXPECT_TRUE(list->AddDelimitedString(u"A\tB\t"));
  EXPECT_TRUE(list->AddDelimitedString(u"C\tD", u""));
  EXPECT_TRUE(list->AddDelimitedString(u"E, F", u", "));
  EXPECT_TRUE(list->AddArray(Array<String>(kLargest, {u"G"})));
  EXPECT_FALSE(list->AddArray({}) || list->AddArray(Array<String>(kLargest, {u"x", u"y"})));
  EXPECT_EQ(TakeFailures(), "9 clsTORVATestStrings.AddArray, 6 clsTORVATestStrings.AddArray");
  EXPECT_EQ(list->AsArray(-1), Array<String>(-1, {u"A", u"B", u"", u"C\tD", u"E", u"F", u"G"}));
  EXPECT_EQ(list->AsArray(kLargest - 6).UBound(), kLargest);
  EXPECT_TRUE(list->AsArray(kLargest - 5).IsEmpty());
  EXPECT_EQ(TakeFailures(), "6 clsTORVATestStrings.AsArray");
  EXPECT_EQ(list->AsString(), u"A\tB\t\tC\tD\tE\tF\tG");
  EXPECT_EQ(list->AsString(u""), u"ABC\tDEFG");
}

TEST_F(clsTORVATestStringsTest, ReplacingKeepsThePlaceAndLosesTheKey) {
  for (const char16_t* key : {u"k1", u"k2", u"k3"}) list->Add(key, key);
  list->Item(u"K2", u"TWO");
  list->Item(2.6, u"THREE");
  for (const TaggedValue& none : {TaggedValue(u"k2"), TaggedValue(4), TaggedValue(Null)}) list->Item(none, u"x");
  EXPECT_EQ(list->AsString(u","), u"k1,TWO,THREE");
  EXPECT_EQ(list->Item(u"K1"), u"k1");
  ExpectMisses({u"k2", u"k3", u"1", 0, 4, true, Empty, Missing, list});
  EXPECT_TRUE(list->Add(u"four", u"k2"));
  EXPECT_TRUE(list->Remove(1));
  EXPECT_EQ(list->Item(1), u"TWO");
  EXPECT_TRUE(list->RemoveAll() && list->RemoveAll());
  EXPECT_EQ(list->Count(), 0);
}

// One of an empty text has none.
TEST_F(clsTORVATestStringsTest, CopyGoesThroughText) {
  const std::pair<std::vector<String>, String> rows[] = {
      {{u"a\tb", u""}, u"a|b|"}, {{u"c", u""}, u"c|"}, {{u""}, u""}, {{u"", u"d"}, u"|d"}};
  for (const auto& [texts, copied] : rows) {
    for (const String& text : texts) list->Add(text, u"key" + text);
    const auto copy = list->Copy();
    list->RemoveAll();
    EXPECT_EQ(copy->AsString(u"|"), copied);
    EXPECT_EQ(copy->Count() == 0, copied.empty());
    EXPECT_FALSE(copy->Exists(u"key"));
  }
}

using Numbered = std::vector<Integer>;

class clsTORVATestCorrectTest : public ListTest<clsTORVATestCorrect> {
 protected:
  void Fill(const Numbered& numbers) {
    EXPECT_TRUE(list->RemoveAll());
    for (Integer number : numbers) EXPECT_TRUE(list->Add(number));
  }
};

TEST_F(clsTORVATestCorrectTest, RefusesANumberTwiceWithoutAReport) {
  Fill({3, 1});
  EXPECT_FALSE(list->Add(3, 9));  // found before the place is looked at
  EXPECT_TRUE(list->Add(-15, 1));
  EXPECT_TRUE(list->Add(0, Missing, u"-15"));
  EXPECT_FALSE(list->Add(7, 9) || list->Add(7, 1, 1));
  EXPECT_EQ(TakeFailures(), "9 !clsTORVATestCorrect.Add, 5 !clsTORVATestCorrect.Add");
  const auto copy = list->Copy();
  EXPECT_EQ(Joined(*list), u"-15|0|3|1");
  list->RemoveAll();
  EXPECT_EQ(Joined(*copy), u"-15|0|3|1");
  EXPECT_TRUE(copy->Exists(u"-15"));
}

TEST_F(clsTORVATestCorrectTest, AStringIsANumberAndANumberIsAPosition) {
  Fill({3, 1});
  EXPECT_TRUE(list->Exists(2));
  EXPECT_EQ(list->Item(2), 1);
  for (Integer position : Numbered{-1, 0, 3}) EXPECT_EQ(list->Item(position), -1);
  for (const TaggedValue& none : {TaggedValue(u"2"), TaggedValue(u"03"), TaggedValue(3), TaggedValue(Null)}) {
    EXPECT_FALSE(list->Exists(none) || list->Remove(none));
  }
  EXPECT_TRUE(list->Remove(u"3") && list->Remove(1));
  EXPECT_EQ(list->Count(), 0);
}

TEST_F(clsTORVATestCorrectTest, ANumberOrPositionBeyondSixteenBitsIsAnOverflow) {
  for (const AnyWhole wide :
       {AnyWhole(65538), AnyWhole(-32769), AnyWhole(std::numeric_limits<std::uint64_t>::max())}) {
    EXPECT_FALSE(list->Add(wide));
    EXPECT_EQ((*list)[wide], 0);
    EXPECT_EQ(TakeFailures(), "6 !clsTORVATestCorrect.Add, 6 clsTORVATestCorrect.Item");
  }
  EXPECT_TRUE(list->Add(32767u) && list->Add(-32768L));
  EXPECT_EQ(Joined(*list), u"32767|-32768");
  static_assert(!std::is_convertible_v<char16_t, AnyWhole> && !std::is_convertible_v<Double, AnyWhole>);
}

TEST_F(clsTORVATestCorrectTest, AsTheBitsOfANumber) {
  const std::tuple<Numbered, Long, std::string> rows[] = {
      {{}, 0, ""},
      {{3, 1}, 5, ""},
      {{31}, 1 << 30, ""},
      // Fractions tip a tie or are gone.
      {{0}, 0, ""},
      {{1, 0}, 2, ""},
      {{2, 0}, 2, ""},
      {{1, 0, -1}, 2, ""},
      {{1, -1, 0}, 2, ""},
      {{-32768, 1}, 1, ""},
      // The sum so far.
      {{5, 32, 1}, 16, "6 clsTORVATestCorrect.GetBitWiseRepresentation"},
      {{2, 32767}, 2, "6 clsTORVATestCorrect.GetBitWiseRepresentation"}};
  for (const auto& [numbers, sum, failures] : rows) {
    Fill(numbers);
    EXPECT_EQ(list->GetBitWiseRepresentation(), sum);
    EXPECT_EQ(TakeFailures(), failures);
  }
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

Ref<clsTORVATestQuestion> Question(const String& id, Long type = TORVATestQuestionTypeMultipleChoice) {
  auto question = New<clsTORVATestQuestion>();
  question->ID(id);
  question->QuestionType(type);
  question->Answers()->Add(u"answer");
  question->LearningObjectives()->Add(u"objective");
  question->CorrectAnswers()->Add(1);
  return question;
}

Ref<clsTORVATestQuestions> QuestionsOf(StringView ids) {
  auto questions = Inside::New<clsTORVATestQuestions>();
  for (char16_t id : ids) questions->Add(Question(String(1, id)));
  return questions;
}

class clsTORVATestQuestionsTest : public ListTest<clsTORVATestQuestions> {
 protected:
  // The IDs, and for each where the first question with it stands.
  static String Positions(const Ref<clsTORVATestQuestions>& of) {
    String positions;
    for (Long i = 1; i <= of->Count(); ++i) positions += of->Item(i)->ID() + Decimal(Inside::PositionOfID(*of, i));
    return positions;
  }
};

TEST_F(clsTORVATestQuestionsTest, AreFiledUnderTheIDTheyHadThen) {
  const auto question = Question(u"a");
  EXPECT_TRUE(list->Add(question));
  EXPECT_TRUE(list->Add(Question(u"b"), 1));
  EXPECT_TRUE(list->Add(Question(u""), Missing, u"B"));
  question->ID(u"z");
  EXPECT_EQ(list->Item(u"A"), question);
  EXPECT_EQ(list->Item(u"")->ID(), u"");
  ExpectMisses({4, u"1", u"z", question});
  EXPECT_FALSE(list->Add(Question(u"A")) || list->Add(Question(u"")) || list->Add(nullptr) ||
               list->Add(Question(u"c"), 9));
  EXPECT_EQ(TakeFailures(),
            "457 clsTORVATestQuestions.Add, 457 clsTORVATestQuestions.Add, 91 clsTORVATestQuestions.Add, 9 "
            "clsTORVATestQuestions.Add");
  EXPECT_TRUE(list->Add(question));
  EXPECT_EQ(Positions(list), u"b12z3z3");
}

TEST_F(clsTORVATestQuestionsTest, RemovalEmptiesTwoListsOfTheQuestion) {
  const auto removed = Question(u"a"), broken = Question(u"b");
  broken->Answers(nullptr);
  for (const auto& question : {removed, broken, Question(u"c")}) list->Add(question);
  EXPECT_TRUE(list->Remove(u"A"));
  EXPECT_EQ(removed->Answers()->Count() + removed->LearningObjectives()->Count(), 0);
  EXPECT_EQ(removed->CorrectAnswers()->Count(), 1);
  EXPECT_EQ(removed->ID(), u"a");

  EXPECT_FALSE(list->RemoveAll());
  EXPECT_EQ(Positions(list), u"b1");
  EXPECT_EQ(broken->LearningObjectives()->Count(), 0);  // the first of the two is empty already
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestQuestions.Remove");
  broken->Answers(New<clsTORVATestStrings>());
  EXPECT_TRUE(list->RemoveAll());
}

TEST_F(clsTORVATestQuestionsTest, TypeCount) {
  for (const Long type : {1, 3, 0, 3, 99}) list->Add(Question(Decimal(list->Count()), type));
  EXPECT_EQ(list->TypeCount(TORVATestQuestionTypeMultipleChoice), 2);
  EXPECT_EQ(list->TypeCount(0), 1);
  EXPECT_EQ(list->TypeCount(2), 0);
}

// IDs change without the list's doing, and in one that other lists hold, too.
TEST_F(clsTORVATestQuestionsTest, PositionOfIDFollowsEveryChange) {
  EXPECT_EQ(Inside::PositionOfID(*list, u"a"), 0);
  list = QuestionsOf(u"bac");
  auto other = QuestionsOf(u"C");
  const auto changed = list->Item(2);
  other->Add(changed, 1);
  // The ID, and what it comes to here and there.
  const auto ExpectAfter = [&](const String& id, const String& here, const String& there) {
    changed->ID(id);
    EXPECT_EQ(Positions(list) + u" " + Positions(other), here + u" " + there);
  };
  ExpectAfter(u"a", u"b1a2c3", u"a1C2");
  EXPECT_EQ(Inside::PositionOfID(*list, u"C"), 3);
  ExpectAfter(u"C", u"b1C2c3", u"C1C1");
  ExpectAfter(u"c", u"b1c2c2", u"c1C2");
  EXPECT_EQ(Inside::PositionOfID(*list, u"c"), 2);
  EXPECT_EQ(
      Inside::PositionOfID(*list, u"none") + Inside::PositionOfID(*list, 4) + Inside::PositionOfID(*list, Null),
      0);
  changed->ID(u"x");
  EXPECT_TRUE(other->Add(changed));  // twice in one list
  ExpectAfter(u"x", u"b1x2c3", u"x1C2x1");
  list->Remove(1);
  other->Remove(u"a");
  ExpectAfter(u"C", u"C1c2", u"C1C1");
  list->Add(Question(u"z"), 1);
  ExpectAfter(u"z", u"z1z1c3", u"C1z2");
  other = Inside::New<clsTORVATestQuestions>();
  ExpectAfter(u"c", u"z1c2c2", u"");
  list = Inside::New<clsTORVATestQuestions>();
  ExpectAfter(u"d", u"", u"");
}

Ref<clsTORVATestSequence> Version(const String& answer, StringView ids = u"") {
  auto version = New<clsTORVATestSequence>();
  version->Answer(answer);
  for (char16_t id : ids) version->Order()->Add(String(1, id));
  return version;
}

class clsTORVATestSequenceOrderTest : public ListTest<clsTORVATestSequenceOrder> {
 protected:
  clsTORVATestSequenceOrderTest() { list = version->Order(); }

  const Ref<clsTORVATestSequence> version = Version(u"A", u"ZXY");
};

TEST_F(clsTORVATestSequenceOrderTest, CountsItsEntries) {
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
  EXPECT_TRUE(list->AsArray(kLargest - 1).IsEmpty());
  EXPECT_EQ(TakeFailures(), "6 clsTORVATestSequenceOrder.AsArray");
  list->RemoveAll();
  EXPECT_EQ(list->AsString(u","), u"");
  EXPECT_TRUE(list->AsArray().IsEmpty());
}

TEST_F(clsTORVATestSequenceOrderTest, CopyTakesTheIDsAtTheStoredPositions) {
  for (const Long left : {3, 2}) {
    const auto copy = version->Copy(QuestionsOf(u"XYZ"));
    EXPECT_EQ(copy->Answer(), u"A");
    EXPECT_EQ(Joined(*copy->Order()), left == 3 ? u"1|2|3" : u"1|2");
    EXPECT_EQ(copy->Order()->Item(left == 3 ? u"X" : u"Y"), 1);
    list->Remove(1);
  }
  const auto broken = Version(u"B", u"ZXY");
  for (const auto& questions : {QuestionsOf(u"XY"), Ref<clsTORVATestQuestions>(), QuestionsOf(u"XYZ")}) {
    if (questions != nullptr && questions->Count() == 3) broken->Order(nullptr);
    EXPECT_EQ(broken->Copy(questions), nullptr);
    EXPECT_EQ(TakeFailures(), "91 clsTORVATestSequence.Copy");
  }
  EXPECT_EQ(Version(u"B")->Copy(nullptr)->Order()->Count(), 0);
}

using clsTORVATestSequencesTest = ListTest<clsTORVATestSequences>;

TEST_F(clsTORVATestSequencesTest, AreFiledUnderTheAnswerTheyHadThen) {
  const auto version = Version(String(60, u'a'));
  EXPECT_TRUE(list->Add(version));
  version->Answer(u"B");
  EXPECT_EQ(list->Item(String(50, u'A')), version);
  EXPECT_FALSE(list->Exists(u"B"));
  EXPECT_TRUE(list->Add(Version(u"b")));
  EXPECT_FALSE(list->Add(version) || list->Add(nullptr));
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestSequences.Add, 91 clsTORVATestSequences.Add");
  ExpectMisses({3, u"", Null});
  EXPECT_TRUE(list->Remove(u"B"));
  EXPECT_EQ(list->Count(), 1);
  EXPECT_TRUE(list->RemoveAll());
}

TEST_F(clsTORVATestSequencesTest, AddDefaultTakesTheOrderOfTheQuestions) {
  const auto questions = QuestionsOf(u"XYWZ");
  questions->Item(3)->ID(u"x");
  EXPECT_TRUE(list->AddDefault(questions));
  EXPECT_EQ(TakeFailures(), "457 clsTORVATestSequenceOrder.Add");
  const auto order = list->Item(u"A")->Order();
  EXPECT_EQ(list->Item(1)->Answer(), u"A");
  EXPECT_EQ(Values({order->Item(u"X"), order->Item(u"Y"), order->Item(u"Z")}), u"1 2 3");
  EXPECT_FALSE(list->AddDefault(nullptr, u"B"));  // the list is looked at first
  EXPECT_EQ(list->Count(), 1);
  list->RemoveAll();
  EXPECT_FALSE(list->AddDefault(nullptr));
  EXPECT_EQ(TakeFailures(), "91 clsTORVATestSequences.AddDefault");
  EXPECT_TRUE(list->AddDefault(QuestionsOf(u""), u""));
  EXPECT_TRUE(list->Exists(u""));
}

using clsTORVATestsTest = ListTest<clsTORVATests>;

TEST_F(clsTORVATestsTest, ReportAMissOnlyOfARemoval) {
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
