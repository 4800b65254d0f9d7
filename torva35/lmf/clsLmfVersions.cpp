#include "torva35/lmf/clsLmfVersions.h"

#include <numeric>

#include "torva35/base/Error.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {

Long clsLmfSequence::Item(Long lPosition, CallSite at) const {
  return order_[PlaceOf(lPosition, order_.size(), at)];
}

void clsLmfSequence::SetOrder(const Array<Long>& lOrder) {
  order_.assign(lOrder.begin(), lOrder.end());
}

void clsLmfSequences::Add(Ref<clsLmfSequence> oSequence, CallSite at) {
  Need(oSequence, at);
  items_.push_back(std::move(oSequence));
}

bool clsLmfSequences::AddDefault(Long lCount, CallSite at) {
  if (lCount < 0) Raise(kInvalidCall, at);
  std::vector<Long> natural(static_cast<std::size_t>(lCount));
  std::iota(natural.begin(), natural.end(), 1);
  auto sequence = New<clsLmfSequence>();
  sequence->SetOrder(Array<Long>(1, std::move(natural)));
  items_.insert(items_.begin(), std::move(sequence));
  return true;
}

clsLmfVersions::clsLmfVersions() : sequences_(New<clsLmfSequences>()), versionNames_(New<clsLmfStrings>()) {}

Long clsLmfVersions::VersionMode() const {
  return Kept(VersionNames())->Count() > 0 ? 2 : 0;
}

void clsLmfVersions::Clear() {
  Kept(Sequences())->RemoveAll();
  Kept(VersionNames())->RemoveAll();
  SequenceQuestion(0);
}

}  // namespace TORVA35
