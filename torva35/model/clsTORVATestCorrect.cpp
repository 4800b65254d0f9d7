#include "torva35/model/clsTORVATestCorrect.h"

#include <cmath>
#include <utility>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATestCorrect.Class_Initialize");
constexpr Location kCount(u"TORVA35 - clsTORVATestCorrect.Count");
constexpr Location kAdd(u"clsTORVATestCorrect.Add");  // hosts know this one without the library's name
constexpr Location kRemove(u"TORVA35 - clsTORVATestCorrect.Remove");
constexpr Location kRemoveAll(u"TORVA35 - clsTORVATestCorrect.RemoveAll");
constexpr Location kItem(u"TORVA35 - clsTORVATestCorrect.Item");
constexpr Location kCopy(u"TORVA35 - clsTORVATestCorrect.Copy");
constexpr Location kGetBitWise(u"TORVA35 - clsTORVATestCorrect.GetBitWiseRepresentation");
constexpr Location kConvertBitWise(u"TORVA35 - clsTORVATestCorrect.ConvertBitWiseRepresentation");

}  // namespace

clsTORVATestCorrect::clsTORVATestCorrect() {
  ReportedConstruction(kInitialize, [] {});
}

Long clsTORVATestCorrect::Count() const {
  return Reported(kCount, Long{0}, [&](Long& result) { result = items_.Count(); });
}

bool clsTORVATestCorrect::Add(AnyWhole Item, const TaggedValue& Before, const TaggedValue& After) {
  return Reported(kAdd, false, [&](bool& result) {
    const auto number = Narrow<Integer>(Item.Value());
    const String key = Decimal(number);
    if (items_.FindKey(key) != nullptr) return;
    items_.Add(number, key, Before, After);
    result = true;
  });
}

bool clsTORVATestCorrect::Remove(const TaggedValue& Index) {
  return Reported(kRemove, false, [&](bool& result) {
    if (items_.Find(Index) == nullptr) return;
    items_.Remove(Index);
    result = true;
  });
}

bool clsTORVATestCorrect::RemoveAll() {
  return Reported(kRemoveAll, false, [&](bool& result) {
    for (Integer i = Narrow<Integer>(items_.Count()); i >= 1; --i) Remove(i);
    result = items_.Count() == 0;
  });
}

Integer clsTORVATestCorrect::Item(AnyWhole Index) const {
  return Reported(kItem, Integer{0}, [&](Integer& result) {
    const TaggedValue* item = items_.Find(Long{Narrow<Integer>(Index.Value())});
    result = item == nullptr ? Integer{-1} : *item->As<Integer>();
  });
}

bool clsTORVATestCorrect::Exists(const TaggedValue& Index) const {
  return Silently(false, [&](bool& result) { result = items_.Find(Index) != nullptr; });
}

Ref<clsTORVATestCorrect> clsTORVATestCorrect::Copy() const {
  return CopyTo(nullptr);
}

Ref<clsTORVATestCorrect> clsTORVATestCorrect::CopyTo(Ref<clsTORVATestCorrect> copy) const {
  return Reported(kCopy, Ref<clsTORVATestCorrect>(), [&](Ref<clsTORVATestCorrect>& result) {
    if (copy == nullptr) copy = New<clsTORVATestCorrect>();
    Narrow<Integer>(items_.Count());
    // Each number is its own key.
    copy->items_ = items_.Copy(true);
    result = std::move(copy);
  });
}

Long clsTORVATestCorrect::GetBitWiseRepresentation() const {
  return Reported(kGetBitWise, Long{0}, [&](Long& sum) {
    const Integer count = Narrow<Integer>(items_.Count());
    for (Long i = 1; i <= count; ++i) sum = Rounded<Long>(sum + std::exp2(At(i) - 1.0));
  });
}

void clsTORVATestCorrect::ConvertBitWiseRepresentation(Long BitWiseValue) {
  Reported(kConvertBitWise, [&] {
    RemoveAll();
    for (Integer i = 0; i <= 30; ++i) {
      if ((BitWiseValue >> i & 1) != 0) items_.Add(static_cast<Integer>(i + 1), Decimal(i + 1));
    }
  });
}

Integer clsTORVATestCorrect::At(Long position) const {
  return *items_.Item(position).As<Integer>();
}

}  // namespace TORVA35
