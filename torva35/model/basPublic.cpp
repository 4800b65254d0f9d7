#include "torva35/model/basPublic.h"

#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"

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
