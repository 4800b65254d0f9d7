#pragma once

#include <torva35/TORVA35.h>

namespace merge_exam {

/// The error object of this host: failures go to standard error in one line, and dialogs are asked in the
/// terminal, with the button captions as choices. When standard input is no terminal, the first button is taken.
class ConsoleErrorObject : public TORVA35::ErrorObject {
 public:
  /// How many failures the library has reported.
  int FailureCount() const { return failureCount_; }

  TORVA35::TaggedValue RaiseError(TORVA35::TaggedValue& vNumber, TORVA35::Long&, TORVA35::String& sDescription,
                                  TORVA35::String& sLocation, TORVA35::String&, TORVA35::String&, TORVA35::String&,
                                  TORVA35::String&, TORVA35::Long&, TORVA35::String&, TORVA35::String&,
                                  TORVA35::String&, bool&) override;

  TORVA35::TaggedValue MsgBoxEx(TORVA35::String sTitle, TORVA35::String sText, TORVA35::Long lStyle,
                                TORVA35::TaggedValue vOwner, TORVA35::String sButton1,
                                TORVA35::TaggedValue vButton2) override;

 private:
  int failureCount_ = 0;
};

}  // namespace merge_exam
