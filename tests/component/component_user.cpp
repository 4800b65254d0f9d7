#include "component_user.h"

#include "torva35/base/Text.h"
#include "torva35/errors/ErrorObject.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/clsTORVATest.h"

namespace TORVA35 {
namespace {

class Host : public ErrorObject {
 public:
  Host(std::string& seen, bool& released) : seen_(seen), released_(released) {}
  ~Host() override { released_ = true; }

  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String&, String& sLocation, String&, String&, String&,
                         String&, Long&, String&, String&, String&, bool&) override {
    seen_ += ToUtf8(TextOf(vNumber) + u" in " + sLocation.substr(0, sLocation.find(u';')));
    return 0;
  }
  TaggedValue MsgBoxEx(String, String, Long, TaggedValue, String, TaggedValue) override { return 6; }

 private:
  std::string& seen_;
  bool& released_;
};

}  // namespace
}  // namespace TORVA35

std::string* UseComponent(TORVA35::Object& engine, TORVA35::Object& test, bool* released) {
  using namespace TORVA35;
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
