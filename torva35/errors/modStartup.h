#pragma once

#include "torva35/base/Export.h"

/// What the library does before anything else.
namespace TORVA35::modStartup {

/// The library's start-up on a thread: installs the exception filter. Runs by itself when the thread creates its
/// first object.
TORVA35_API void Main();

}  // namespace TORVA35::modStartup
