#include "torva35/model/clsTORVATestSequences.h"

#include "torva35/errors/Reported.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATestSequences.Class_Initialize");
constexpr Location kTerminate(u"TORVA35 - clsTORVATestSequences.Class_Terminate");
constexpr Location kCount(u"TORVA35 - clsTORVATestSequences.Count");
constexpr Location kAdd(u"TORVA35 - clsTORVATestSequences.Add");
constexpr Location kAddDefault(u"TORVA35 - clsTORVATestSequences.AddDefault");
constexpr Location kRemove(u"TORVA35 - clsTORVATestSequences.Remove");
constexpr Location kRemoveAll(u"TORVA35 - clsTORVATestSequences.RemoveAll");
constexpr Location kItem(u"TORVA35 - clsTORVATestSequences.Item");

}  // namespace

clsTORVATestSequences::clsTORVATestSequences() {
  ReportedConstruction(kInitialize, [] {});
}

clsTORVATestSequences::~clsTORVATestSequences() {
  ReportedReleaseItems(kTerminate, CallSite::Current(), items_);
}

Long clsTORVATestSequences::Count() const {
  return Reported(kCount, Long{0}, [&](Long& result) { result = items_.Count(); });
}

bool clsTORVATestSequences::Add(const Ref<clsTORVATestSequence>& oSequence) {
  return Reported(kAdd, false, [&](bool& result) {
    items_.Add(oSequence, Need(oSequence).Answer());
    result = true;
  });
}

bool clsTORVATestSequences::AddDefault(const Ref<clsTORVATestQuestions>& oQuestions, const String& sAnswer) {
  return Reported(kAddDefault, false, [&](bool& result) {
    if (items_.Count() != 0) return;
    auto version = New<clsTORVATestSequence>();
    version->Answer(sAnswer);
    const Long count = Need(oQuestions).Count();
    for (Long i = 1; i <= count; ++i) Need(version->Order()).Add(Need(Inside::Find(Need(oQuestions), i)).ID());
    Add(version);
    result = items_.Count() == 1;
  });
}

bool clsTORVATestSequences::Remove(const TaggedValue& vKey) {
  return Reported(kRemove, false, [&](bool& result) {
    if (items_.Find(vKey) == nullptr) return;
    items_.Remove(vKey);
    result = true;
  });
}

bool clsTORVATestSequences::RemoveAll() {
  return Reported(kRemoveAll, false, [&](bool& result) {
    for (Long i = items_.Count(); i >= 1; --i) Remove(i);
    result = items_.Count() == 0;
  });
}

Ref<clsTORVATestSequence> clsTORVATestSequences::Item(const TaggedValue& vKey) const {
  return Reported(kItem, Ref<clsTORVATestSequence>(), [&](Ref<clsTORVATestSequence>& result) {
    const TaggedValue* item = items_.Find(vKey);
    if (item != nullptr) result = std::static_pointer_cast<clsTORVATestSequence>(*item->As<Ref<Object>>());
  });
}

bool clsTORVATestSequences::Exists(const TaggedValue& vKey) const {
  return Silently(false, [&](bool& result) { result = items_.Find(vKey) != nullptr; });
}

}  // namespace TORVA35
