#include "torva35/base/Error.h"

#include <utility>

#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

struct NumberedText {
  Long number;
  const char16_t* text;
};

constexpr NumberedText kTexts[] = {
    {kInvalidCall, u"Invalid procedure call or argument"},
    {kOverflow, u"Overflow"},
    {kOutOfMemory, u"Out of memory"},
    {kSubscriptOutOfRange, u"Subscript out of range"},
    {kTypeMismatch, u"Type mismatch"},
    {kInternalError, u"Internal error"},
    {kNothing, u"Object reference not set"},
    {kNoSuchMethod, u"Object does not support this method"},
    {kDuplicateKey, u"This key is already associated with an element of this collection"},
};

}  // namespace

Error::Error(Long number, String description, Long line, String source)
    : number_(number),
      line_(line),
      description_(std::move(description)),
      source_(std::move(source)),
      what_(std::to_string(number) + ": " + ToUtf8(description_)) {}

String StandardText(Long number) {
  for (const NumberedText& row : kTexts) {
    if (row.number == number) return row.text;
  }
  return u"Application-defined or object-defined error";
}

void Raise(ErrorNumber number, CallSite at) {
  throw Error(number, StandardText(number), static_cast<Long>(at.Line()));
}

}  // namespace TORVA35
