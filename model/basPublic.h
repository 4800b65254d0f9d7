#pragma once

#include "base/Export.h"
#include "base/TaggedValue.h"
#include "base/Types.h"

/// Functions that belong to no object.
namespace TORVA35::basPublic {

/// The value as text; empty for Null, Empty and a missing argument. An object is reported (13); then empty.
TORVA35_API String CString(const TaggedValue& v);

}  // namespace TORVA35::basPublic
