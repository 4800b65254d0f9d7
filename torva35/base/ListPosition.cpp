#include "torva35/base/ListPosition.h"

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Error.h"

namespace TORVA35 {

std::size_t PlaceOf(const TaggedValue& vIndex, std::size_t count, CallSite at) {
  if (const auto* position = vIndex.As<Long>()) return PlaceOf(*position, count, at);
  if (const auto* position = vIndex.As<Integer>()) return PlaceOf(Long{*position}, count, at);
  const auto* wide = vIndex.As<Double>();
  const auto* narrow = vIndex.As<Single>();
  if (wide == nullptr && narrow == nullptr) Raise(kTypeMismatch, at);
  const Double position = NearestWhole(wide != nullptr ? *wide : Double{*narrow});
  // A value that is no number fails the comparison.
  if (!(position >= 1 && position <= static_cast<Double>(count))) Raise(kSubscriptOutOfRange, at);
  return static_cast<std::size_t>(position) - 1;
}

std::size_t PlaceOf(Long lPosition, std::size_t count, CallSite at) {
  if (lPosition < 1 || static_cast<std::size_t>(lPosition) > count) Raise(kSubscriptOutOfRange, at);
  return static_cast<std::size_t>(lPosition) - 1;
}

}  // namespace TORVA35
