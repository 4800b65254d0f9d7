#pragma once

#include <exception>
#include <string>
#include <vector>

#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// A failure that the library reported.
struct Failure {
  std::string text;      ///< its description
  std::string location;  ///< the member that failed
  Long kept = 0;         ///< questions that the test being loaded held by then
};

/// The error object of one call of `MakeSheet`: keeps failures, and hands dialogs to the callback.
class Recorder : public ErrorObject {
 public:
  explicit Recorder(const Options& options) : options_(options) {}

  /// What the next dialogs and failures are about. oTest: the test that is being loaded, or nothing.
  void About(std::string file, Ref<clsTORVATest> oTest = nullptr);

  /// The failures since the last call.
  std::vector<Failure> TakeFailures();
  /// The text of the last dialog, in one line; empty when there was none since the last call.
  std::string TakeDialog();
  /// Throws on what the callback threw, which could not cross the library.
  void Rethrow();

  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String& sDescription, String& sLocation, String&, String&,
                         String&, String&, Long&, String&, String&, String&, bool&) override;
  TaggedValue MsgBoxEx(String sTitle, String sText, Long lStyle, TaggedValue vOwner, String sButton1,
                       TaggedValue vButton2) override;

 private:
  const Options& options_;
  std::string file_;
  Ref<clsTORVATest> test_;
  std::vector<Failure> failures_;
  std::string dialog_;
  std::exception_ptr thrown_;
};

/// Makes an object the thread's error object, and puts the one before back at its end.
class ErrorObjectInPlace {
 public:
  explicit ErrorObjectInPlace(const Ref<Object>& oErr) : before_(basError::goErr()) { basError::goErr() = oErr; }
  ~ErrorObjectInPlace() { basError::goErr() = std::move(before_); }
  ErrorObjectInPlace(const ErrorObjectInPlace&) = delete;
  ErrorObjectInPlace& operator=(const ErrorObjectInPlace&) = delete;

 private:
  Ref<Object> before_;
};

}  // namespace TORVA35::sheet
