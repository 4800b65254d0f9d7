#include "torva35/errors/Reported.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/clsTORVATest.h"
#include "torva35/model/clsTORVATestCorrect.h"
#include "torva35/model/clsTORVATestQuestion.h"
#include "torva35/model/clsTORVATestSequence.h"
#include "torva35/model/clsTORVATestStrings.h"
#include "torva35/platform/Component.h"

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
