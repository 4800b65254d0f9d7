#include "model/basPublic.h"

#include "base/Text.h"
#include "errors/Reported.h"

namespace TORVA35::basPublic {
namespace {

constexpr Location kCString(u"TORVA35 - basPublic.CString");

}  // namespace

String CString(const TaggedValue& v) {
  return Reported(kCString, String(), [&](String& result) {
    if (v.Is<NullValue>() || v.Is<EmptyValue>() || v.IsMissing()) return;
    result = TextOf(v);
  });
}

}  // namespace TORVA35::basPublic
