#pragma once

#include <cstddef>

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/TaggedValue.h"

namespace TORVA35 {

/// The place from 0 that a position from 1 names in a list of `count` entries. A number that is not whole counts
/// as the nearest whole one, ties as the even one. Raises 9 for a position that does not exist and 13 for an index
/// that is no number. Exported, since the lists that a host's own objects are made of call it inline.
TORVA35_API std::size_t PlaceOf(const TaggedValue& vIndex, std::size_t count, CallSite at);
TORVA35_API std::size_t PlaceOf(Long lPosition, std::size_t count, CallSite at);

}  // namespace TORVA35
