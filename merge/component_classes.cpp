#include "errors/Reported.h"
#include "merge/clsTORVA.h"
#include "model/clsTORVATest.h"
#include "model/clsTORVATestCorrect.h"
#include "model/clsTORVATestQuestion.h"
#include "model/clsTORVATestSequence.h"
#include "model/clsTORVATestStrings.h"
#include "platform/Component.h"

namespace TORVA35 {
namespace {

template <class T>
class FactoryOf final : public ClassFactory {
 public:
  Ref<Object> CreateInstance() const noexcept override {
    return Silently(Ref<Object>(), [](Ref<Object>& result) { result = New<T>(); });
  }
};

template <class T>
constexpr FactoryOf<T> kFactoryOf;

// All other classes are made inside the library and reached through their owners.
constexpr CreatableClass kClasses[] = {
    {u"clsTORVA", &kFactoryOf<clsTORVA>},
    {u"clsTORVATest", &kFactoryOf<clsTORVATest>},
    {u"clsTORVATestQuestion", &kFactoryOf<clsTORVATestQuestion>},
    {u"clsTORVATestStrings", &kFactoryOf<clsTORVATestStrings>},
    {u"clsTORVATestCorrect", &kFactoryOf<clsTORVATestCorrect>},
    {u"clsTORVATestSequence", &kFactoryOf<clsTORVATestSequence>},
};

}  // namespace

std::span<const CreatableClass> CreatableClasses() {
  return kClasses;
}

}  // namespace TORVA35
