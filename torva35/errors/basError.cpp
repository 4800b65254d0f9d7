#include "torva35/errors/basError.h"

#include <new>
#include <utility>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Error.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Caught.h"
#include "torva35/errors/ErrorObject.h"
#include "torva35/platform/Desktop.h"
#include "torva35/platform/FaultGuard.h"
#include "torva35/platform/Kept.h"
#include "torva35/platform/ThreadOwned.h"

namespace TORVA35::basError {
namespace {

constexpr Long kWarningStyle = 48;  // one OK button and a warning icon

const String& ApplicationError() {
  static const String title = u"Application Error";
  return title;
}

String FailureText(const TaggedValue& vNumber, const String& sDescription, const String& sLocation) {
  return u"Error# " + TextOf(vNumber) + u": " + sDescription + u", Location: " + sLocation;
}

// The method of the host's object that is about to be called.
template <class Method>
Method& Bind(const Ref<Object>& host, CallSite at) {
  auto* method = dynamic_cast<Method*>(&Need(host, at));
  if (method == nullptr) Raise(kNoSuchMethod, at);
  return *method;
}

Ref<Object>*& OwnSlot() {
  static thread_local Ref<Object>* slot = nullptr;
  return slot;
}

}  // namespace

Ref<Object>& goErr() {
  return ThreadOwned<OwnSlot>();
}

bool ReplaceErrorObject(Ref<Object> oErr) {
  goErr().swap(oErr);
  oErr.reset();
  return goErr() != nullptr;
}

Integer ReportError(Long lLine, TaggedValue vNumber, Long lArgument3, String sDescription, String sLocation,
                    String sArgument6, String sArgument7, String sArgument8, String sArgument9, Long lArgument10,
                    String sArgument11, String sArgument12, String sArgument13, bool bArgument14) noexcept {
  Integer result = 0;
  // Outside the guarded body, whose frame is abandoned when the error object faults. The object is held, since it
  // may replace itself in the slot. Copies, since what it does to its arguments must not reach the second message
  // box.
  Ref<Object> host;
  TaggedValue number;
  String description;
  String location;
  try {
    RunGuarded([&] {
      SetDefaultMousePointer();
      if (lLine > 0) sLocation += u"; Line: " + Decimal(lLine);
      host = goErr();
      if (host == nullptr) {
        ShowMessageBox(FailureText(vNumber, sDescription, sLocation), ApplicationError(), kWarningStyle);
        return;
      }
      number = vNumber;
      description = sDescription;
      location = sLocation;
      const TaggedValue reply =
          Bind<HasRaiseError>(host, CallSite::Current())
              .RaiseError(number, lArgument3, description, location, sArgument6, sArgument7, sArgument8,
                          sArgument9, lArgument10, sArgument11, sArgument12, sArgument13, bArgument14);
      result = Rounded<Integer>(NumberOf(reply));
    });
  } catch (...) {
    try {
      const Long stopper = CaughtNumber();
      RunGuarded([&] {
        ShowMessageBox(u"Application error: (#" + Decimal(stopper) + u") " + StandardText(stopper) +
                           u" occurred while trying to display:\r\n\r\n" +
                           FailureText(vNumber, sDescription, sLocation),
                       ApplicationError(), kWarningStyle);
      });
    } catch (...) {
      // Nothing is left to report through.
    }
  }
  return result;
}

TaggedValue MsgBoxEx(String sTitle, String sText, Long lStyle, TaggedValue vOwner, String sButton1,
                     TaggedValue vButton2, CallSite at) {
  // Held and guarded for the reasons above. The arguments are handed over by their address (see HandOver): they
  // stand in a frame that no fault abandons.
  using ByAddress = TaggedValue (HasMsgBoxEx::*)(String&, String&, Long, TaggedValue&, String&, TaggedValue&);
  const Ref<Object> host = goErr();
  TaggedValue reply;
  try {
    RunGuarded([&] {
      HasMsgBoxEx& box = Bind<HasMsgBoxEx>(host, at);
      reply =
          (box.*MethodAs<ByAddress>(&HasMsgBoxEx::MsgBoxEx))(sTitle, sText, lStyle, vOwner, sButton1, vButton2);
    });
  } catch (...) {
    // What a host raises there is of the statement that shows the dialog.
    kept::statement = at.Line();
    throw;
  }
  return reply;
}

}  // namespace TORVA35::basError
