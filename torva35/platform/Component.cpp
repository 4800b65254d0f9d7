#include "torva35/platform/Component.h"

#include <atomic>

namespace TORVA35 {
namespace {

// The rows never change, so the table is full or empty.
std::atomic<bool> registered{false};

[[maybe_unused]] const Long registeredWhenLoaded = DllRegisterServer();

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
  for (const CreatableClass& row : CreatableClasses()) {
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
