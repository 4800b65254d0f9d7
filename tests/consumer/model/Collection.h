#pragma once

#include <vector>

namespace host {
using Labels = std::vector<const char16_t*>;
}
