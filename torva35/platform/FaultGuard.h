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
///  - A lock that the faulting code holds stays held, that of the memory allocator included: the next one who
///    wants it waits for ever.
///  - What the faulting code was changing stays half changed.
///  - A host leaves the members around it by return or by exception; it does not jump over them.
///
/// Floating-point control (rounding, traps) is kept, pending floating-point exceptions are cleared. A fault with
/// no member of the library on its thread is the host's, as if the library were not there.
///
/// On POSIX systems faults are signals (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP):
///  - A signal that the faulting code had blocked stays blocked; a fault whose own signal is blocked ends the
///    process.
///  - Code that faults on purpose and mends it in a handler of its own, as some run-time systems do, cannot be
///    called from within a member.
///  - A fault that is no member's, and a signal that somebody sends (`kill`, `raise`), go to the signal action
///  that
///    stood before the library's; only that a handler which did not ask for the alternate stack may run on it. The
///    actions are put back when the library is unloaded, each one where the library's own still stands.
///  - On a thread that never started the library up an overflowing stack ends the process, since it has no other
///    stack for the handler.
///
/// On Windows the system finds the handler by the member's frame, and nothing is put up for the process:
///  - All warnings and errors that the system raises count (codes from 0x80000000 on), except those that it says
///    cannot be continued from. What a run-time library throws under a number of its own is not touched.
///  - Handlers of the host's that stand within the member, and vectored ones, come first, so that code which mends
///    its own faults does so. A debugger sees each fault before anybody else.
///  - The faulting code's frames are walked to find the member: where they cannot be, since the stack is
///  overwritten
///    or belongs to code without unwind tables, the fault ends the process.
///  - An overflowing stack needs 64 KiB to find its handler. A thread keeps them from its start-up of the library
///  on;
///    on any other one the overflow may end the process. The guard is put back, so that it is found again.
///  - A misaligned access is mended by the system, and an error of the disk behind a mapped file is the only way
///  to
///    an in-page error.
///
/// In WebAssembly there is nothing to come back from, and nothing is raised: a null pointer reads and writes what
/// lies at address 0, and a division by zero, an access beyond the memory, an overflowing stack and an instruction
/// that is not allowed end all that runs in the module, past every handler of C++. A host makes a new module then,
/// since the old one stays in the middle of its work. A filter is kept and never called.
///
/// What a port owes: all of the above that is no system's own; the codes of the table in `modvbCodeShieldSupport`;
/// two faults in a row, and on two threads, like the first.
namespace TORVA35 {

/// What is known of a fault.
struct ExceptionRecord {
  std::uint32_t Code;             ///< such as 0xC0000005, an access violation
  std::uint32_t Flags;            ///< 0 for a fault of the processor
  ExceptionRecord* Nested;        ///< the fault that this one came from, or null
  void* Address;                  ///< the data address of a memory fault, the instruction's address of any other
  std::uint32_t ParameterCount;   ///< how many of the parameters are set
  std::uintptr_t Parameters[15];  ///< number and code (`si_code`) of the signal; on Windows those of the system
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
/// filter all faults are the host's.
/// Each call prepares the calling thread for a stack that overflows: it gets an alternate signal stack until its
/// end, unless it has one that is large enough, or room that its stack keeps on Windows. The first filter puts up
/// the signal handlers.
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
