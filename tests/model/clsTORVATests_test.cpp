#include "model/clsTORVATests.h"

#include "tests/RecordingHost.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kAdd = u"TORVA35 - clsTORVATests.Add";
constexpr const char16_t* kRemove = u"TORVA35 - clsTORVATests.Remove";

class Tests : public HostTest {
 protected:
  Ref<clsTORVATests> list = New<clsTORVATests>();
};

TEST_F(Tests, KeysAndPlaces) {
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
  EXPECT_EQ(TakeFailures(), (Failures{{457, kAdd}, {9, kAdd}, {91, kAdd}}));
  EXPECT_EQ(list->Count(), 3);
}

TEST_F(Tests, OnlyARemovalReportsAMiss) {
  list->Add(New<clsTORVATest>());
  for (const TaggedValue& index : {TaggedValue(2), TaggedValue(u"1"), TaggedValue(Empty)}) {
    EXPECT_EQ(list->Item(index), nullptr);
    EXPECT_FALSE(list->Exists(index));
    list->Remove(index);
  }
  EXPECT_EQ(TakeFailures(), (Failures{{9, kRemove}, {5, kRemove}, {13, kRemove}}));
  list->RemoveAll();
  list->RemoveAll();
  EXPECT_EQ(list->Count(), 0);
}

}  // namespace
}  // namespace TORVA35
