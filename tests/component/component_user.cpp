// What a plug-in of a host does with objects that the host has created by name: reports go to an error object of
// its own, which sets `*released` at its end. Returns what it has seen.

#include "torva35/base/Text.h"
#include "torva35/errors/ErrorObject.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/clsTORVATest.h"

using namespace TORVA35;

struct Host : ErrorObject {
  Host(std::string& text, bool& gone) : seen(text), released(gone) {}
  ~Host() override { released = true; }

  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String&, String& sLocation, String&, String&, String&,
                         String&, Long&, String&, String&, String&, bool&) override {
    seen += ToUtf8(TextOf(vNumber) + u" in " + sLocation.substr(0, sLocation.find(u';')));
    return 0;
  }
  TaggedValue MsgBoxEx(String, String, Long, TaggedValue, String, TaggedValue) override { return 6; }

  std::string& seen;
  bool& released;
};

extern "C" std::string* UseComponent(Object& engine, Object& test, bool* released) {
  auto& oEngine = dynamic_cast<clsTORVA&>(engine);
  auto& oTest = dynamic_cast<clsTORVATest&>(test);
  auto* const seen = new std::string;
  Ref<Object> host = New<Host>(*seen, *released);
  oEngine.SetError(host);
  oTest.Title(u"Final exam");
  oEngine.Tests()->Add(NotOwned(oTest));
  *seen = ToUtf8(Need(oEngine.Tests()->Item(1)).Title()) + ", ";
  oEngine.Tests()->Remove(1);
  oEngine.Tests()->Remove(1);
  return seen;
}
