#include "errors/basError.h"

#include <new>
#include <utility>

#include "base/Arithmetic.h"
#include "base/Error.h"
#include "base/Text.h"
#include "errors/Caught.h"
#include "errors/ErrorObject.h"
#include "platform/Desktop.h"
#include "platform/FaultGuard.h"

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

// The host's object, held for the length of a call, with the method that is about to be called.
template <class Method>
struct Bound {
  Ref<Object> object;
  Method& method;
};

template <class Method>
Bound<Method> Bind(CallSite at) {
  Ref<Object> object = goErr();
  auto* method = dynamic_cast<Method*>(&Need(object, at));
  if (method == nullptr) Raise(kNoSuchMethod, at);
  return {std::move(object), *method};
}

}  // namespace

Ref<Object>& goErr() {
  static thread_local Ref<Object> slot;
  return slot;
}

Integer ReportError(Long lLine, TaggedValue vNumber, Long lArgument3, String sDescription, String sLocation,
                    String sArgument6, String sArgument7, String sArgument8, String sArgument9, Long lArgument10,
                    String sArgument11, String sArgument12, String sArgument13, bool bArgument14) noexcept {
  Integer result = 0;
  try {
    RunGuarded([&] {
      SetDefaultMousePointer();
      if (lLine > 0) sLocation += u"; Line: " + Decimal(lLine);
      if (goErr() == nullptr) {
        ShowMessageBox(FailureText(vNumber, sDescription, sLocation), ApplicationError(), kWarningStyle);
        return;
      }
      // Copies: what the error object does to its arguments must not reach the text of the second message box.
      TaggedValue number = vNumber;
      String description = sDescription;
      String location = sLocation;
      const auto host = Bind<HasRaiseError>(CallSite::Current());
      const TaggedValue reply =
          host.method.RaiseError(number, lArgument3, description, location, sArgument6, sArgument7, sArgument8,
                                 sArgument9, lArgument10, sArgument11, sArgument12, sArgument13, bArgument14);
      result = Rounded<Integer>(NumberOf(reply));
    });
  } catch (...) {
    result = 0;
    try {
      const Long number = CaughtNumber();
      ShowMessageBox(u"Application error: (#" + Decimal(number) + u") " + StandardText(number) +
                         u" occurred while trying to display:\r\n\r\n" +
                         FailureText(vNumber, sDescription, sLocation),
                     ApplicationError(), kWarningStyle);
    } catch (...) {
      // Nothing is left to report through.
    }
  }
  return result;
}

TaggedValue MsgBoxEx(String sTitle, String sText, Long lStyle, TaggedValue vOwner, String sButton1,
                     TaggedValue vButton2, CallSite at) {
  const auto host = Bind<HasMsgBoxEx>(at);
  return host.method.MsgBoxEx(std::move(sTitle), std::move(sText), lStyle, std::move(vOwner), std::move(sButton1),
                              std::move(vButton2));
}

}  // namespace TORVA35::basError
