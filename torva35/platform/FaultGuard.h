#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>

#include "torva35/base/Export.h"
#include "torva35/base/Types.h"

/// Processor faults (an access to memory that is not there, an overflowing stack, a division by zero) as raised
/// failures of the member in which they happen.
///
/// The fault comes back to the innermost member of the library that runs on the thread, and is raised there. The
/// frames between it and the fault, those of a host's object among them, are abandoned, which sets the limits:
///  - No destructor of an abandoned frame runs. What its locals own is leaked.
///  - A lock that the faulting code holds stays held, that of the memory allocator included: whoever
///    wants it next waits forever.
///  - What the faulting code was changing stays half changed.
///  - A signal that the faulting code had blocked stays blocked; a fault whose own signal is blocked ends the
///    process.
///  - A host leaves the members around it by return or by exception; it does not jump over them.
///  - Code that faults on purpose and mends it in a handler of its own, as some run-time systems do, cannot be
///    called from within a member.
///
/// Floating-point control (rounding, traps) is kept, pending floating-point exceptions are cleared.
///
/// A fault with no member of the library on its thread, and a signal that is sent (`kill`, `raise`), go to
/// the signal action that stood before the library's, as if the library were not there; only that a handler which
/// did not ask for the alternate stack may run on it. The actions are put back when the library is unloaded, each
/// one where the library's own still stands.
namespace TORVA35 {

/// What is known of a fault.
struct ExceptionRecord {
  std::uint32_t Code;             ///< such as 0xC0000005, an access violation
  std::uint32_t Flags;            ///< 0 for a fault of the processor
  ExceptionRecord* Nested;        ///< the fault that this one came from, or null
  void* Address;                  ///< the data address of a memory fault, the instruction's address of any other
  std::uint32_t ParameterCount;   ///< how many of the parameters are set: 2 for a fault of the processor
  std::uintptr_t Parameters[15];  ///< number and code (`si_code`) of the signal
};

/// What a filter gets.
struct ExceptionPointers {
  ExceptionRecord* Record;  ///< never null
};

/// Turns a fault into a raised failure. It runs on the faulting thread, in place of the abandoned frames and not
/// in a signal handler, so it may throw; what it throws is raised in the member. When it returns, the
/// fault is not handled: the process gets the signal again, and ends by it if it outlives that.
using ExceptionFilter = Long (*)(ExceptionPointers& pointers);

/// Registers the filter for the whole process, and gives the one that was registered before, or null. Without a
/// filter all faults go to the earlier signal actions.
/// The first filter puts up the signal handlers (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP). Each call prepares the
/// calling thread: it gets an alternate signal stack until its end, unless it has one that is large enough. On a
/// thread without an alternate stack an overflowing stack ends the process.
TORVA35_API ExceptionFilter SetUnhandledExceptionFilter(ExceptionFilter filter);

/// Calls run(body) as a member: a processor fault inside leaves this call as what the filter raises.
void RunGuardedBody(void (*run)(void* body), void* body);

/// Calls body() under the guard.
template <class Body>
void RunGuarded(Body&& body) {
  RunGuardedBody([](void* erased) { (*static_cast<std::remove_reference_t<Body>*>(erased))(); },
                 const_cast<void*>(static_cast<const void*>(std::addressof(body))));
}

}  // namespace TORVA35
