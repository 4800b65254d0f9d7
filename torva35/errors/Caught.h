#pragma once

#include "torva35/base/Error.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// The exception in flight as the failure that is reported for it: an `Error` as it is, exhausted memory as 7, any
/// other exception as 51 with its `what()` as description, where it has one. The line is 0 where none is known.
/// Called inside a catch block only; raises when memory is exhausted for the description, too.
Error CaughtError();

/// The number of the same failure.
Long CaughtNumber() noexcept;

}  // namespace TORVA35
