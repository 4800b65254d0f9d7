#pragma once

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

/// The one road on which failures reach the host, and the host's error object, which also shows all dialogs.
namespace TORVA35::basError {

/// The calling thread's reference to the host's error object; nothing at first. `SetError` of `clsTORVA` and of
/// `clsTORVATest` replaces it.
TORVA35_API Ref<Object>& goErr();

/// Puts an error object, or nothing, into `goErr`. The one before is let go of when the new one is in place, since
/// it may report while it goes. Whether `goErr` holds one now.
bool ReplaceErrorObject(Ref<Object> oErr);

/// Passes a failure on to `RaiseError` of `goErr`, with "; Line: " and the line after the location when the line
/// is above 0. Without an error object it shows a message box, and another one when the error object itself fails.
/// Never throws. Returns the error object's result as an Integer, or 0 after a message box.
TORVA35_API Integer ReportError(Long lLine, TaggedValue vNumber, Long lArgument3, String sDescription,
                                String sLocation, String sArgument6, String sArgument7, String sArgument8,
                                String sArgument9, Long lArgument10, String sArgument11, String sArgument12,
                                String sArgument13, bool bArgument14) noexcept;

/// Shows a dialog through `MsgBoxEx` of `goErr` and returns its reply. Raises 91 when there is no error object and
/// 438 when it has no such method.
TaggedValue MsgBoxEx(String sTitle, String sText, Long lStyle, TaggedValue vOwner, String sButton1,
                     TaggedValue vButton2 = Missing, CallSite at = CallSite::Current());

}  // namespace TORVA35::basError
