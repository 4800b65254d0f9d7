#pragma once

#include <memory>
#include <type_traits>

namespace TORVA35 {

/// Calls release(thing) at the end of the calling thread, or when the library is unloaded by it, whichever comes
/// first; the last one registered is released first. What other threads own at that time is left as it is.
/// It stands on the thread keys of <pthread.h>, which all our compilers have.
void AtThreadEnd(void (*release)(void* thing), void* thing);

/// The thread's own T, made at its first use and destroyed as `AtThreadEnd` says: `ThreadOwned<OwnHooks>()`.
/// slot: gives a `thread_local` pointer to T, null at first. It is asked anew when the thread ends, since on some
/// systems its thread-local variables are gone by then, and null again. A `thread_local` T with a destructor would
/// keep the shared library in memory until the last thread that has touched it ends, whatever the host closes.
template <auto slot>
auto& ThreadOwned() {
  using T = std::remove_pointer_t<std::remove_reference_t<decltype(slot())>>;
  if (slot() == nullptr) {
    auto fresh = std::make_unique<T>();
    AtThreadEnd(
        [](void* thing) {
          if (slot() == thing) slot() = nullptr;
          delete static_cast<T*>(thing);
        },
        fresh.get());
    slot() = fresh.release();
  }
  return *slot();
}

}  // namespace TORVA35
