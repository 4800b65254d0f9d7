#pragma once

#include "torva35/base/StringList.h"

namespace TORVA35 {

/// A list of strings in an LMF file: labels, values, answer keys, version names.
class TORVA35_API clsLmfStrings : public StringList {};

}  // namespace TORVA35
