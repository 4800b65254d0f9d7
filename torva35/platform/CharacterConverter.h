#pragma once

#include <string>
#include <string_view>

namespace TORVA35 {

/// Turns the bytes of one encoding into Unicode, one character at a time and each one for itself.
///
/// What a port owes:
///  - It knows an encoding by the name that an XML declaration gives it (letters, digits, ".", "_", "-"; case does
///  not
///    matter), and at least ISO-8859-1, US-ASCII and windows-1252. UTF-8, UTF-16 and UTF-32 are not asked for.
///  - An encoding in which a character means something else after certain others (shifts, escapes, an order of its
///    own) is not known, or its shifts and escapes are invalid. Nothing is guessed: invalid bytes are called so,
///    and a character that may join a following accent is given without it.
///
/// On POSIX systems the encodings are those of `iconv` (musl's, which is WebAssembly's too, has no EBCDIC, no
/// characters of three bytes in EUC-JP, and a faulty GB18030, which is not taken), on Windows the code pages of
/// the system, by their usual names and by number ("cp850", "windows-1252", "ISO-8859-15"). There EUC-JP has no
/// characters of three bytes, and some machines lack GB18030.
class CharacterConverter {
 public:
  enum class Outcome {
    kConverted,
    kIncomplete,  ///< the beginning of a character that takes more bytes
    kInvalid
  };

  /// Looks the encoding up.
  explicit CharacterConverter(const std::string& encoding);
  ~CharacterConverter();
  CharacterConverter(const CharacterConverter&) = delete;
  CharacterConverter& operator=(const CharacterConverter&) = delete;

  /// Whether there is such an encoding; without one, nothing else may be called.
  bool IsKnown() const { return converter_ != nullptr; }

  /// Converts bytes that are one character as a whole. characters: receives its code, or the codes of several
  /// Unicode characters that it stands for; no more than 8.
  Outcome Convert(std::string_view bytes, std::u32string& characters);

 private:
  void* converter_ = nullptr;
};

}  // namespace TORVA35
