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
    {kTooMuchText, u"The questions of the document take far more text than it holds"},
    {kInternalError, u"Internal error"},
    {kNothing, u"Object reference not set"},
    {kNoSuchMethod, u"Object does not support this method"},
    {kDuplicateKey, u"This key is already associated with an element of this collection"},
};

}  // namespace

Error::Error(Long number, String description, Long line, String source) : number_(number), line_(line) {
  std::string what = std::to_string(number) + ": " + ToUtf8(description);
  texts_ = std::make_shared<const Texts>(Texts{std::move(description), std::move(source), std::move(what)});
}

Error::Error(Long number, Long line, std::shared_ptr<const Texts> texts) noexcept
    : number_(number), line_(line), texts_(std::move(texts)) {}

Error Error::OutOfMemory(Long line) noexcept {
  // Made when the library is loaded: there is no making it when it is needed.
  static const Error made(kOutOfMemory, StandardText(kOutOfMemory));
  return Error(kOutOfMemory, line, made.texts_);
}

namespace {
[[maybe_unused]] const Error kMadeInTime = Error::OutOfMemory();
}

String StandardText(Long number) {
  for (const NumberedText& row : kTexts) {
    if (row.number == number) return row.text;
  }
  return u"Application-defined or object-defined error";
}

void Raise(ErrorNumber number, CallSite at) {
  const auto line = static_cast<Long>(at.Line());
  Error error = number == kOutOfMemory ? Error::OutOfMemory(line) : Error(number, StandardText(number), line);
  error.isLineOfLibrary_ = at.IsLibrarys();
  throw error;
}

}  // namespace TORVA35
