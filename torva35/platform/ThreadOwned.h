#pragma once

#include <memory>
#include <utility>

namespace TORVA35 {

/// Calls release(thing) at the end of the calling thread, or when the library is unloaded by it, whichever comes
/// first; the last one registered is released first. What other threads own at that time is left as it is.
void AtThreadEnd(void (*release)(void* thing), void* thing);

/// The thread's own T, made at its first use and destroyed as `AtThreadEnd` says.
/// slot: a `thread_local` pointer, null at first. A `thread_local` T with a destructor would keep the shared
/// library in memory until the last thread that has touched it ends, whatever the host closes.
template <class T>
T& ThreadOwned(T*& slot) {
  if (slot == nullptr) {
    auto fresh = std::make_unique<T>();
    AtThreadEnd([](void* owner) { delete std::exchange(*static_cast<T**>(owner), nullptr); }, &slot);
    slot = fresh.release();
  }
  return *slot;
}

}  // namespace TORVA35
