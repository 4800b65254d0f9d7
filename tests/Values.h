#pragma once

#include <initializer_list>

#include "torva35/base/Error.h"
#include "torva35/base/Text.h"

namespace TORVA35 {

/// The texts that describe a question, in a test and in an LMF model: X is given the name of each member.
#define DESCRIPTIONS(X) X(Difficulty) X(Reference) X(Topic) X(Keywords) X(Miscellaneous) X(Notes)

/// The values as one text, with a blank between two.
inline String Values(std::initializer_list<TaggedValue> values) {
  String text;
  for (const TaggedValue& value : values) text += (text.empty() ? u"" : u" ") + TextOf(value);
  return text;
}

/// The entries of a list of texts or numbers as one text.
template <class List>
String Joined(const List& list, StringView between = u"|") {
  String text;
  for (Long i = 1; i <= list.Count(); ++i) text += String(i > 1 ? between : u"") + TextOf(list.Item(i));
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
