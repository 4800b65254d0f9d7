#pragma once

#include <string>
#include <string_view>

#include "torva35/base/Array.h"
#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

/// Operations on texts. Letter case is Unicode's one-unit-to-one-unit mapping, whatever the locale of the process:
/// "é" and "É" are equal, "ß" stays "ß", surrogates have no case.
namespace TORVA35 {

/// The first `count` units, or the whole text when it is not longer.
inline StringView First(StringView text, std::size_t count) {
  return text.substr(0, count);
}

/// Cuts the text to its first `count` units, and lets go of the memory that held the others.
inline String Cut(String text, std::size_t count) {
  if (text.size() <= count) return text;
  return text.substr(0, count);
}

/// Without the spaces (unit 32) at both ends; no other character goes.
TORVA35_API StringView Trim(StringView text);

/// The parts between the delimiters, compared exactly, with empty parts kept; lower bound 0. An empty text has no
/// parts, and an empty delimiter leaves the text whole.
TORVA35_API Array<String> Split(StringView text, StringView delimiter);

/// The unit in the other case; itself where it has none.
///@{
TORVA35_API char16_t LowerUnit(char16_t unit);
TORVA35_API char16_t UpperUnit(char16_t unit);
///@}
/// The unit that stands for all units that differ only in case.
TORVA35_API char16_t FoldUnit(char16_t unit);
/// Every unit of the text in this case.
///@{
TORVA35_API String Lower(StringView text);
TORVA35_API String Upper(StringView text);
///@}
/// Two texts are equal without regard to case exactly when their folds are equal.
TORVA35_API String Fold(StringView text);
/// Whether the texts are equal without regard to case.
TORVA35_API bool EqualNoCase(StringView left, StringView right);
/// Hashes texts that are equal without regard to case alike, for a container of keys.
struct TORVA35_API HashNoCase {
  using is_transparent = void;  ///< a key is found by a view of it
  /// The hash; equal for equal folds.
  std::size_t operator()(StringView text) const noexcept;
};
/// `EqualNoCase` for a container of keys.
struct TORVA35_API SameNoCase {
  using is_transparent = void;  ///< a key is found by a view of it
  /// Whether the texts are equal without regard to case.
  bool operator()(StringView left, StringView right) const { return EqualNoCase(left, right); }
};

/// Code of the character in the ANSI code page, windows-1252; 63 ("?") for one that the code page lacks.
TORVA35_API Integer AnsiCode(char16_t unit);

/// The number at the start of a text: sign, digits, point, digits, exponent with "e" or "E". Blanks, tabs and line
/// feeds are skipped wherever they stand; the first unit that cannot continue the number ends it; no number is 0.
/// Raises Overflow (6) for a number beyond what rounds to the largest Single.
TORVA35_API Single LeadingNumber(StringView text, CallSite at = CallSite::Current());

/// Decimal text of a whole number.
TORVA35_API String Decimal(std::int64_t value);

/// The value as text: numbers as the shortest decimal that reads back, "True" and "False", a String as it is. The
/// kinds without a text (Empty, Null, Missing, objects) raise Type mismatch (13).
TORVA35_API String TextOf(const TaggedValue& value, CallSite at = CallSite::Current());

/// "True" and "False" in any case, or a number (0 is False, any other True), with blanks around it or none;
/// anything else raises Type mismatch (13). A blank is a space, a tab or a line feed.
TORVA35_API bool BooleanOf(StringView text, CallSite at = CallSite::Current());

/// The value as a number: a number, a Boolean (True is -1), Empty (0) or a text that is a number as a whole, with
/// blanks around it or none. Anything else, such as a number with a blank inside, raises Type mismatch (13).
TORVA35_API Double NumberOf(const TaggedValue& value, CallSite at = CallSite::Current());

/// Whether the bytes are UTF-8.
bool IsUtf8(std::string_view bytes);
/// UTF-8 of the text; a unit without its partner becomes U+FFFD.
TORVA35_API std::string ToUtf8(StringView text);
/// UTF-16 of the bytes; bytes that are no UTF-8 become U+FFFD.
TORVA35_API String FromUtf8(std::string_view bytes);
/// Appends to `text` the UTF-16 of bytes that are known to be UTF-8.
TORVA35_API void AppendUtf8(String& text, std::string_view bytes);
/// Writes the UTF-16 of bytes that are known to be UTF-8, and gives where it ends. `out` has room for a unit for
/// each byte.
char16_t* CopyUtf8(char16_t* out, std::string_view bytes);
/// Appends to `bytes` the UTF-8 of a character; code: of a Unicode character, and no surrogate.
TORVA35_API void AppendUtf8(std::string& bytes, char32_t code);

}  // namespace TORVA35
