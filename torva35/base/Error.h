#pragma once

#include <exception>
#include <memory>
#include <string>

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// Numbers of the failures that the library raises itself. Their texts: `StandardText`.
enum ErrorNumber : Long {
  kInvalidCall = 5,          ///< an argument has no sense here, such as a key that is not in the list
  kOverflow = 6,             ///< a number leaves the range of its type
  kOutOfMemory = 7,          ///< memory is exhausted
  kSubscriptOutOfRange = 9,  ///< a position that does not exist
  kTypeMismatch = 13,        ///< a value of a kind that cannot be used here
  kTooMuchText = 14,         ///< the questions of a document repeat its text beyond the limit
  kInternalError = 51,       ///< a host's object threw something else; the description is its `what()`
  kNothing = 91,             ///< a reference that holds nothing was used
  kNoSuchMethod = 438,       ///< the error object lacks the method
  kDuplicateKey = 457,       ///< a key that is in use
};

/// Raises the failure with its standard text, at the line of the caller.
[[noreturn]] TORVA35_API void Raise(ErrorNumber number, CallSite at = CallSite::Current());

/// A failure on its way to the handler of the running member. Members of the engine and of the test model report
/// it and let none out, but for a few plain properties that say so. Forms, LMF models, the DOM and the basic types
/// have no handler: what they raise reaches a host that calls them. A host's own object may throw one to say
/// number and description.
class TORVA35_API Error : public std::exception {
 public:
  /// line: source line of the failing statement, 0 when none is known. source: what raised the failure, for a host
  /// that looks at it; reports do not carry it.
  Error(Long number, String description, Long line = 0, String source = {});
  /// Copies share what they say, which takes no memory.
  ///@{
  Error(const Error&) noexcept = default;
  Error& operator=(const Error&) noexcept = default;
  ///@}

  /// What the constructor was given.
  ///@{
  Long Number() const { return number_; }
  const String& Description() const { return texts_->description; }
  Long Line() const { return line_; }
  const String& Source() const { return texts_->source; }
  ///@}

  /// Whether the line is one of the library's own source, and not one that a host has given.
  bool IsLineOfLibrary() const { return isLineOfLibrary_; }

  /// Number and description in UTF-8.
  const char* what() const noexcept override { return texts_->what.c_str(); }

  /// Exhausted memory (7) with its standard text. It takes none.
  static Error OutOfMemory(Long line = 0) noexcept;

 private:
  friend TORVA35_API void Raise(ErrorNumber number, CallSite at);

  struct Texts {
    String description;
    String source;
    std::string what;
  };
  Error(Long number, Long line, std::shared_ptr<const Texts> texts) noexcept;

  Long number_;
  Long line_;
  bool isLineOfLibrary_ = false;
  std::shared_ptr<const Texts> texts_;
};

/// The text that belongs to a number: that of the table for the numbers above, one general text for all others.
TORVA35_API String StandardText(Long number);

}  // namespace TORVA35
