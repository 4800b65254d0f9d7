#pragma once

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/Types.h"

/// The library as a component: a host that opens the shared library at run time gets its classes by name.
///
///     const auto getClass = reinterpret_cast<decltype(&DllGetClassObject)>(dlsym(library, "DllGetClassObject"));
///     const ClassFactory* factory = nullptr;
///     if (getClass(u"clsTORVA", &factory) == kComponentOk) engine = factory->CreateInstance();
///
/// The calls may be made on any thread, and never throw.
namespace TORVA35 {

/// Makes objects of one class. It belongs to the library and is good until the library is unloaded.
class TORVA35_API ClassFactory {
 public:
  /// A fresh object, as if the host had written `New`; nothing when memory is exhausted.
  virtual Ref<Object> CreateInstance() const noexcept = 0;

 protected:
  ~ClassFactory() = default;
};

// Results of the calls below.
inline constexpr Long kComponentOk = 0;                                    ///< yes, or done
inline constexpr Long kComponentFalse = 1;                                 ///< no
inline constexpr Long kClassNotAvailable = static_cast<Long>(0x80040111);  ///< the table has no such class

extern "C" {

/// Fills the process-wide class table; done already when the library is loaded. Returns 0.
TORVA35_API Long DllRegisterServer() noexcept;

/// Empties the class table. Factories that were handed out stay good. Returns 0.
TORVA35_API Long DllUnregisterServer() noexcept;

/// Hands out the factory of a class. sClass: the class's name, compared exactly, such as u"clsTORVATest".
/// Returns 0, or 0x80040111 for a class that the table does not have; the factory is then null.
TORVA35_API Long DllGetClassObject(const char16_t* sClass, const ClassFactory** factory) noexcept;

/// Whether the library can be unloaded: 0 for yes, when none of its objects is alive, else 1. An object that the
/// host derives from `ErrorObject` does not count: the reference that the unloading thread has given to `SetError`
/// is released by the unloading. Those of other threads are not, so they end first, or set an empty error object.
TORVA35_API Long DllCanUnloadNow() noexcept;
}

}  // namespace TORVA35
