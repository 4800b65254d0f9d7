#include "torva35/model/clsTORVATestSequenceOrder.h"

#include <utility>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATestSequenceOrder.Class_Initialize");
constexpr Location kCount(u"TORVA35 - clsTORVATestSequenceOrder.Count");
constexpr Location kAdd(u"TORVA35 - clsTORVATestSequenceOrder.Add");
constexpr Location kRemove(u"TORVA35 - clsTORVATestSequenceOrder.Remove");
constexpr Location kRemoveAll(u"TORVA35 - clsTORVATestSequenceOrder.RemoveAll");
constexpr Location kItem(u"TORVA35 - clsTORVATestSequenceOrder.Item");
constexpr Location kAsArray(u"TORVA35 - clsTORVATestSequenceOrder.AsArray");
constexpr Location kAsString(u"TORVA35 - clsTORVATestSequenceOrder.AsString");

}  // namespace

clsTORVATestSequenceOrder::clsTORVATestSequenceOrder() {
  ReportedConstruction(kInitialize, [] {});
}

Long clsTORVATestSequenceOrder::Count() const {
  return Reported(kCount, Long{0}, [&](Long& result) { result = items_.Count(); });
}

void clsTORVATestSequenceOrder::Add(const String& sQuestionID) {
  Reported(kAdd, [&] { items_.Add(CheckedAdd(items_.Count(), 1), sQuestionID); });
}

void clsTORVATestSequenceOrder::Remove(const TaggedValue& vKey) {
  Reported(kRemove, [&] {
    if (items_.Find(vKey) != nullptr) items_.Remove(vKey);
  });
}

void clsTORVATestSequenceOrder::RemoveAll() {
  Reported(kRemoveAll, [&] {
    for (Long i = items_.Count(); i >= 1; --i) items_.Remove(i);
  });
}

Long clsTORVATestSequenceOrder::Item(const TaggedValue& vKey) const {
  return Reported(kItem, Long{0}, [&](Long& result) {
    if (const TaggedValue* item = items_.Find(vKey)) result = *item->As<Long>();
  });
}

bool clsTORVATestSequenceOrder::Exists(const TaggedValue& vKey) const {
  return Silently(false, [&](bool& result) { result = items_.Find(vKey) != nullptr; });
}

Array<Long> clsTORVATestSequenceOrder::AsArray(Long lLowerBound) const {
  return Reported(kAsArray, Array<Long>(), [&](Array<Long>& result) {
    const Long count = items_.Count();
    if (count == 0) return;
    CheckedAdd(count - 1, lLowerBound);  // the upper bound must be a Long
    std::vector<Long> values;
    values.reserve(static_cast<std::size_t>(count));
    for (Long i = 1; i <= count; ++i) values.push_back(*items_.Item(i).As<Long>());
    result = Array<Long>(lLowerBound, std::move(values));
  });
}

String clsTORVATestSequenceOrder::AsString(const String& sDelimiter) const {
  return Reported(kAsString, String(), [&](String& result) {
    String text;
    const Long count = items_.Count();
    for (Long i = 1; i <= count; ++i) text.append(Decimal(*items_.Item(i).As<Long>())).append(sDelimiter);
    if (!text.empty()) text.resize(text.size() - sDelimiter.size());
    result = std::move(text);
  });
}

}  // namespace TORVA35
