#include "torva35/model/clsTORVATests.h"

#include "torva35/errors/Reported.h"
#include "torva35/errors/basError.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATests.Class_Initialize");
constexpr Location kTerminate(u"TORVA35 - clsTORVATests.Class_Terminate");
constexpr Location kAdd(u"TORVA35 - clsTORVATests.Add");
constexpr Location kRemove(u"TORVA35 - clsTORVATests.Remove");
constexpr Location kRemoveAll(u"TORVA35 - clsTORVATests.RemoveAll");

}  // namespace

clsTORVATests::clsTORVATests() {
  ReportedConstruction(kInitialize, [] {});
}

clsTORVATests::~clsTORVATests() {
  ReportedReleaseItems(kTerminate, CallSite::Current(), items_);
}

void clsTORVATests::Add(const Ref<clsTORVATest>& Item, const TaggedValue& Key, const TaggedValue& Before,
                        const TaggedValue& After) {
  Reported(kAdd, [&] {
    Need(Item).SetError(basError::goErr());
    items_.Add(Item, Key, Before, After);
  });
}

void clsTORVATests::Remove(const TaggedValue& Index) {
  Reported(kRemove, [&] { items_.Remove(Index); });
}

void clsTORVATests::RemoveAll() {
  Reported(kRemoveAll, [&] {
    for (Long i = items_.Count(); i >= 1; --i) Remove(i);
  });
}

Ref<clsTORVATest> clsTORVATests::Item(const TaggedValue& Index) const {
  return Silently(Ref<clsTORVATest>(), [&](Ref<clsTORVATest>& result) {
    const TaggedValue* item = items_.Find(Index);
    if (item != nullptr) result = std::static_pointer_cast<clsTORVATest>(*item->As<Ref<Object>>());
  });
}

bool clsTORVATests::Exists(const TaggedValue& Index) const {
  return Silently(false, [&](bool& result) { result = items_.Find(Index) != nullptr; });
}

}  // namespace TORVA35
