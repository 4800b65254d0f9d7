#pragma once

#include <initializer_list>

#include "torva35/base/Error.h"
#include "torva35/base/Text.h"

namespace TORVA35 {

/// The values as one text, with a blank between two.
inline String Values(std::initializer_list<TaggedValue> values) {
  String text;
  for (const TaggedValue& value : values) text += (text.empty() ? u"" : u" ") + TextOf(value);
  return text;
}

/// The number of the failure that the call raises, or 0.
template <class Call>
Long Raised(Call&& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace TORVA35
