#pragma once

#include "base/Types.h"

namespace host {
constexpr Number kOutOfRange = 9;
}
