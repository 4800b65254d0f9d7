#include "torva35/merge/Component.h"

#include <atomic>

#include "torva35/errors/Reported.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/clsTORVATest.h"
#include "torva35/model/clsTORVATestCorrect.h"
#include "torva35/model/clsTORVATestQuestion.h"
#include "torva35/model/clsTORVATestSequence.h"
#include "torva35/model/clsTORVATestStrings.h"

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

struct CreatableClass {
  StringView name;
  const ClassFactory* factory;
};

// All other classes are made inside the library and reached through their owners.
constexpr CreatableClass kClasses[] = {
    {u"clsTORVA", &kFactoryOf<clsTORVA>},
    {u"clsTORVATest", &kFactoryOf<clsTORVATest>},
    {u"clsTORVATestQuestion", &kFactoryOf<clsTORVATestQuestion>},
    {u"clsTORVATestStrings", &kFactoryOf<clsTORVATestStrings>},
    {u"clsTORVATestCorrect", &kFactoryOf<clsTORVATestCorrect>},
    {u"clsTORVATestSequence", &kFactoryOf<clsTORVATestSequence>},
};

// The rows never change, so the table is full or empty.
std::atomic<bool> registered{true};

}  // namespace

Long DllRegisterServer() noexcept {
  registered = true;
  return kComponentOk;
}

Long DllUnregisterServer() noexcept {
  registered = false;
  return kComponentOk;
}

Long DllGetClassObject(const char16_t* sClass, const ClassFactory** factory) noexcept {
  if (factory == nullptr) return kClassNotAvailable;
  *factory = nullptr;
  if (sClass == nullptr || !registered) return kClassNotAvailable;
  for (const CreatableClass& row : kClasses) {
    if (row.name == sClass) {
      *factory = row.factory;
      return kComponentOk;
    }
  }
  return kClassNotAvailable;
}

Long DllCanUnloadNow() noexcept {
  return Object::AliveCount() == 0 ? kComponentOk : kComponentFalse;
}

}  // namespace TORVA35
