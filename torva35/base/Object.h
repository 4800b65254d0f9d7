#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "torva35/base/CallSite.h"
#include "torva35/base/Error.h"
#include "torva35/base/Export.h"
#include "torva35/base/Types.h"

#ifndef __cpp_rtti
#error "TORVA35 asks the host's objects for their types: compile with run-time type information (no -fno-rtti)"
#endif

namespace TORVA35 {

/// Counted reference to an object, or nothing.
template <class T>
using Ref = std::shared_ptr<T>;

/// Base of every class that is shared through counted references, and of the error object that a host gives to
/// `SetError`. Objects are used on the thread that created them, and are not copied: `Copy`, where a class has it,
/// makes a new one that shares nothing with its source.
class TORVA35_API Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  /// Number of the library's objects alive in the process.
  static std::int64_t AliveCount();

 protected:
  /// For a class of the host: its objects do not count as alive. The library holds the error object until it is
  /// unloaded, and could never be if that kept it loaded.
  struct OfHost {};

  /// An object that counts as alive.
  Object();
  /// An object that does not.
  explicit Object(OfHost);

 private:
  const bool counted_;
};

/// Creates an object: `auto oTest = New<clsTORVATest>();`
template <class T, class... Arguments>
Ref<T> New(Arguments&&... arguments) {
  return std::make_shared<T>(std::forward<Arguments>(arguments)...);
}

/// What the reference refers to. A reference that holds nothing is a raised failure (91) at the caller's line.
template <class T>
T& Need(const Ref<T>& reference, CallSite at = CallSite::Current()) {
  if (!reference) Raise(kNothing, at);
  return *reference;
}

/// Likewise for a pointer.
template <class T>
T& Need(T* pointer, CallSite at = CallSite::Current()) {
  if (pointer == nullptr) Raise(kNothing, at);
  return *pointer;
}

/// A reference that does not own, for an object that need not be under a counted reference of its own.
template <class T>
Ref<T> NotOwned(T& object) {
  return Ref<T>(Ref<void>(), &object);
}

}  // namespace TORVA35
