#include "model/clsTORVATestCorrect.h"

#include <limits>

#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

class Correct : public HostTest {
 protected:
  void Fill(const std::vector<Integer>& numbers) {
    EXPECT_TRUE(set->RemoveAll());
    for (Integer number : numbers) EXPECT_TRUE(set->Add(number));
  }
  std::vector<Integer> Numbers() const {
    std::vector<Integer> numbers;
    for (Integer i = 1; i <= set->Count(); ++i) numbers.push_back(set->Item(i));
    return numbers;
  }

  Ref<clsTORVATestCorrect> set = New<clsTORVATestCorrect>();
};

using Numbered = std::vector<Integer>;

TEST_F(Correct, RefusesANumberTwiceWithoutAReport) {
  EXPECT_TRUE(set->Add(3));
  EXPECT_TRUE(set->Add(1));
  EXPECT_FALSE(set->Add(3));
  EXPECT_FALSE(set->Add(3, 9));  // found before the place is looked at
  EXPECT_TRUE(set->Add(-15, 1));
  EXPECT_TRUE(set->Add(0, Missing, u"-15"));
  EXPECT_EQ(Numbers(), (Numbered{-15, 0, 3, 1}));
  EXPECT_FALSE(set->Add(7, 9));
  EXPECT_FALSE(set->Add(7, 1, 1));
  EXPECT_EQ(TakeFailures(), (Failures{{9, u"clsTORVATestCorrect.Add"}, {5, u"clsTORVATestCorrect.Add"}}));
  EXPECT_EQ(set->Count(), 4);
}

TEST_F(Correct, AStringIsANumberAndANumberIsAPosition) {
  Fill({3, 1});
  EXPECT_TRUE(set->Exists(2));
  EXPECT_FALSE(set->Exists(u"2"));
  EXPECT_FALSE(set->Exists(u"03"));
  EXPECT_FALSE(set->Exists(Null));
  EXPECT_EQ(set->Item(2), 1);
  for (Integer position : Numbered{-1, 0, 3}) EXPECT_EQ(set->Item(position), -1);
  EXPECT_FALSE(set->Remove(u"2"));
  EXPECT_FALSE(set->Remove(3));
  EXPECT_TRUE(set->Remove(u"3"));
  EXPECT_TRUE(set->Remove(1));
  EXPECT_EQ(set->Count(), 0);
}

TEST_F(Correct, CopySharesNothing) {
  Fill({3, -2, 1});
  const auto copy = set->Copy();
  set->RemoveAll();
  set = copy;
  EXPECT_EQ(Numbers(), (Numbered{3, -2, 1}));
  EXPECT_TRUE(set->Exists(u"-2"));
  EXPECT_EQ(New<clsTORVATestCorrect>()->Copy()->Count(), 0);
}

TEST_F(Correct, BitWiseRepresentation) {
  struct Row {
    Numbered numbers;
    Long sum;
    bool overflows = false;
  };
  for (const Row& row :
       {Row{{}, 0}, Row{{1, 3}, 5}, Row{{3, 1}, 5}, Row{{31}, 1 << 30},
        // Fractions tip a tie or are gone.
        Row{{0}, 0}, Row{{1, 0}, 2}, Row{{2, 0}, 2}, Row{{1, 0, -1}, 2}, Row{{1, -1, 0}, 2}, Row{{-32768, 1}, 1},
        // The sum so far.
        Row{{5, 32, 1}, 16, true}, Row{{2, 32767}, 2, true}}) {
    Fill(row.numbers);
    EXPECT_EQ(set->GetBitWiseRepresentation(), row.sum);
    const Failure overflow = {6, u"TORVA35 - clsTORVATestCorrect.GetBitWiseRepresentation"};
    EXPECT_EQ(TakeFailures(), row.overflows ? Failures{overflow} : Failures());
  }
}

TEST_F(Correct, ConvertReplacesTheSet) {
  Fill({7, 40});
  set->ConvertBitWiseRepresentation(5);
  EXPECT_EQ(Numbers(), (Numbered{1, 3}));
  EXPECT_TRUE(set->Exists(u"3"));
  EXPECT_FALSE(set->Add(3));
  EXPECT_EQ(set->Copy()->GetBitWiseRepresentation(), 5);
  set->ConvertBitWiseRepresentation(-1);
  EXPECT_EQ(set->Count(), 31);
  EXPECT_EQ(set->Item(31), 31);
  EXPECT_EQ(set->GetBitWiseRepresentation(), std::numeric_limits<Long>::max());
  set->ConvertBitWiseRepresentation(std::numeric_limits<Long>::min());
  EXPECT_EQ(set->Count(), 0);
}

TEST_F(Correct, CountsWithSixteenBits) {
  Long next = -32768;
  while (set->Count() < 32767) set->Add(static_cast<Integer>(next++));
  EXPECT_EQ(set->GetBitWiseRepresentation(), 0);
  EXPECT_EQ(set->Copy()->Count(), 32767);

  set->Add(static_cast<Integer>(next));
  EXPECT_EQ(set->GetBitWiseRepresentation(), 0);
  EXPECT_EQ(set->Copy(), nullptr);
  EXPECT_FALSE(set->RemoveAll());
  EXPECT_EQ(set->Count(), 32768);
  EXPECT_EQ(TakeFailures(), (Failures{{6, u"TORVA35 - clsTORVATestCorrect.GetBitWiseRepresentation"},
                                      {6, u"TORVA35 - clsTORVATestCorrect.Copy"},
                                      {6, u"TORVA35 - clsTORVATestCorrect.RemoveAll"}}));
}

}  // namespace
}  // namespace TORVA35
