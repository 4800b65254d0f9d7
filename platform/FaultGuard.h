#pragma once

#include <memory>
#include <type_traits>

namespace TORVA35 {

/// Calls run(body). A processor fault inside leaves this call as a raised `Error`.
void RunGuardedBody(void (*run)(void* body), void* body);

/// Calls body() under the guard.
template <class Body>
void RunGuarded(Body&& body) {
  RunGuardedBody([](void* erased) { (*static_cast<std::remove_reference_t<Body>*>(erased))(); },
                 const_cast<void*>(static_cast<const void*>(std::addressof(body))));
}

}  // namespace TORVA35
