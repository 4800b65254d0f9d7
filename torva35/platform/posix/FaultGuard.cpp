#include "torva35/platform/FaultGuard.h"

#include <cxxabi.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cfenv>
#include <cstdlib>
#include <iterator>

#if defined(__x86_64__)
#include <x86intrin.h>
#endif

#include "torva35/platform/Kept.h"
#include "torva35/platform/ThreadOwned.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TORVA35_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TORVA35_SANITIZED 1
#endif
#endif

#if defined(_LIBCPP_VERSION)
// Its header leaves this part of the binary interface out.
namespace __cxxabiv1 {
struct __cxa_eh_globals;
extern "C" __cxa_eh_globals* __cxa_get_globals();
}  // namespace __cxxabiv1
#endif
#if !defined(_SC_SIGSTKSZ)
#define _SC_SIGSTKSZ -1  // not known, says sysconf
#endif

namespace TORVA35 {
namespace {

#if defined(TORVA35_SANITIZED)
// Instrumented frames are that much larger.
constexpr std::size_t kAlternateStackBytes = std::size_t{5} * 64 * 1024;
#else
constexpr std::size_t kAlternateStackBytes = std::size_t{64} * 1024;
#endif

// How far below the guard of a stack an access still counts as its overflow: a frame may begin below the guard.
constexpr std::uintptr_t kBelowGuard = std::uintptr_t{64} * 1024;
// Size of the guard below an alternate stack, where handlers run that may have counted on more room.
constexpr std::size_t kAlternateGuardBytes = std::size_t{64} * 1024;

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP};

// What the C++ run time keeps of a thread's exceptions, as its binary interface lays it down.
struct ExceptionGlobals {
  void* caught;
  unsigned int uncaught;
};

// One member that runs. It lives on the member's stack, the innermost one first in the thread's chain.
struct Frame {
  sigjmp_buf jump;
  Frame* outer;
  ExceptionGlobals exceptions;
  std::size_t kept;                    // slots in use when it began
  std::uint_least32_t outerStatement;  // of the member around it
  ExceptionRecord record;
};

// Of the kind that needs no call and no memory at its first use on a thread: the signal handler reads it.
struct ThreadState {
  Frame* innermost;
  ExceptionGlobals* exceptions;
  volatile sig_atomic_t handling;  // the signal handler is at work
  bool prepared;
  std::uintptr_t belowStack;  // accesses from here to stackBegin hit the guard
  std::uintptr_t stackBegin;  // lowest address of the stack, or the lowest one to which it may grow
  std::uintptr_t stackEnd;
  std::uintptr_t alternateGuard;  // begin of the guard below the alternate stack, or 0
};
[[gnu::tls_model("initial-exec")]] constinit thread_local ThreadState state{};

std::atomic<ExceptionFilter> registered{nullptr};
static_assert(std::atomic<ExceptionFilter>::is_always_lock_free);

// --- The signal handler. All down to `OnSignal` is called in it, so nothing here allocates, locks or throws. ---

struct sigaction earlierActions[std::size(kSignals)];

struct sigaction& EarlierAction(int signal) {
  return earlierActions[std::find(std::begin(kSignals), std::end(kSignals), signal) - std::begin(kSignals)];
}

// A fault of this thread, not a signal that was sent.
bool IsFault(int signal, const siginfo_t& info) {
  return info.si_code > 0 && !(signal == SIGBUS && info.si_code == BUS_MCEERR_AO);
}

bool IsStackOverflow(const siginfo_t& info) {
  const auto address = reinterpret_cast<std::uintptr_t>(info.si_addr);
  if (address >= state.belowStack && address < state.stackBegin) return true;
  // The stack of the first thread grows until the system refuses: at its limit, or a gap above the next mapping.
  return info.si_code == SEGV_MAPERR && address >= state.stackBegin && address < state.stackEnd;
}

// The system would begin anew at the alternate stack's top, and a handler that keeps faulting would never end.
bool IsAlternateStackOverflow(const siginfo_t& info) {
  const auto address = reinterpret_cast<std::uintptr_t>(info.si_addr);
  return state.alternateGuard != 0 && address - state.alternateGuard < kAlternateGuardBytes;
}

std::uint32_t FloatingPointCode(int code) {
  switch (code) {
    case FPE_INTDIV:
      return 0xC0000094;
    case FPE_INTOVF:
      return 0xC0000095;
    case FPE_FLTDIV:
      return 0xC000008E;
    case FPE_FLTOVF:
      return 0xC0000091;
    case FPE_FLTUND:
      return 0xC0000093;
    case FPE_FLTRES:
      return 0xC000008F;
    case FPE_FLTSUB:
      return 0xC000008C;
    default:
      return 0xC0000090;
  }
}

std::uint32_t ExceptionCode(int signal, const siginfo_t& info) {
  switch (signal) {
    case SIGBUS:
      return info.si_code == BUS_ADRALN ? 0x80000002 : 0xC0000006;
    case SIGFPE:
      return FloatingPointCode(info.si_code);
    case SIGILL:
      return info.si_code == ILL_PRVOPC || info.si_code == ILL_PRVREG ? 0xC0000096 : 0xC000001D;
    case SIGTRAP:
      return info.si_code == TRAP_TRACE ? 0x80000004 : 0x80000003;
    default:
      return IsStackOverflow(info) ? 0xC00000FD : 0xC0000005;
  }
}

void Describe(ExceptionRecord& record, int signal, const siginfo_t& info) {
  record.Code = ExceptionCode(signal, info);
  record.Flags = 0;
  record.Nested = nullptr;
  record.Address = info.si_addr;
  record.ParameterCount = 2;
  record.Parameters[0] = static_cast<std::uintptr_t>(signal);
  record.Parameters[1] = static_cast<std::uintptr_t>(info.si_code);
}

// The system starts a signal handler with a fresh floating-point unit, which a jump out of it would leave in place
// of the thread's own.
void KeepFloatingPointControl(const ucontext_t& context) {
#if defined(__x86_64__)
  const auto* const faulting = context.uc_mcontext.fpregs;
  if (faulting == nullptr) return;
  std::fenv_t control;
  std::fegetenv(&control);
  control.__control_word = faulting->cwd;
  control.__status_word = 0;
  control.__mxcsr = faulting->mxcsr & ~static_cast<unsigned int>(FE_ALL_EXCEPT);
  std::fesetenv(&control);
#else
  static_cast<void>(context);
  std::feclearexcept(FE_ALL_EXCEPT);
#endif
}

// An alignment check that the faulting code has switched on holds in the handler, too, and would stop it.
void EndAlignmentCheck() {
#if defined(__x86_64__)
  constexpr unsigned long long kAlignmentCheck = 1u << 18;
  __writeeflags(__readeflags() & ~kAlignmentCheck);
#endif
}

void SetDefaultAction(int signal) {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  sigaction(signal, &action, nullptr);
}

void CallEarlierHandler(const struct sigaction& action, int signal, siginfo_t* info, void* context) {
  sigset_t blocked = action.sa_mask;
  if ((action.sa_flags & SA_NODEFER) == 0) sigaddset(&blocked, signal);
  sigset_t before;
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  // A fault of that handler is its own affair and no member's. Should it jump to a place of its own, the members
  // that it leaves are forgotten with it.
  Frame* const members = std::exchange(state.innermost, nullptr);
  if ((action.sa_flags & SA_SIGINFO) != 0) {
    action.sa_sigaction(signal, info, context);
  } else {
    action.sa_handler(signal);
  }
  state.innermost = members;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

// Does with the signal what the action would have done that stood before ours.
void PassOn(int signal, siginfo_t* info, void* context) {
  struct sigaction& earlier = EarlierAction(signal);
  const struct sigaction action = earlier;
  const bool fault = IsFault(signal, *info);
  if ((action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN && !fault) return;
  if ((action.sa_flags & SA_SIGINFO) == 0 && (action.sa_handler == SIG_DFL || action.sa_handler == SIG_IGN)) {
    // The faulting instruction runs again and ends the process; a trap would go on after it, and a message is
    // gone.
    SetDefaultAction(signal);
    if (!fault || signal == SIGTRAP) raise(signal);
    return;
  }
  if ((action.sa_flags & static_cast<int>(SA_RESETHAND)) != 0) {
    earlier.sa_flags = 0;
    earlier.sa_handler = SIG_DFL;
  }
  CallEarlierHandler(action, signal, info, context);
}

[[noreturn]] void ReturnToMember(Frame& frame, int signal, const siginfo_t& info, const ucontext_t& context) {
  // Gone from the chain before anything else can fault, so that no fault comes back twice to one member.
  state.innermost = frame.outer;
  Describe(frame.record, signal, info);
  KeepFloatingPointControl(context);
  // A handler between the system's and ours may have blocked more than we asked for.
  pthread_sigmask(SIG_SETMASK, &context.uc_sigmask, nullptr);
  state.handling = 0;
  siglongjmp(frame.jump, 1);
}

void OnSignal(int signal, siginfo_t* info, void* context) {
  if (signal == SIGBUS) EndAlignmentCheck();
  const int callersErrno = errno;
  if (IsFault(signal, *info)) {
    if (state.handling != 0 || IsAlternateStackOverflow(*info)) {
      // A handler itself has faulted: once more, without it.
      SetDefaultAction(signal);
      return;
    }
    state.handling = 1;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    if (state.innermost != nullptr && registered.load(std::memory_order_relaxed) != nullptr) {
      ReturnToMember(*state.innermost, signal, *info, *static_cast<const ucontext_t*>(context));
    }
    state.handling = 0;
  }
  PassOn(signal, info, context);
  errno = callersErrno;
}

// --- What is set up once for the process, and once for each thread. ---

bool IsOurs(const struct sigaction& action) {
  return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == OnSignal;
}

// The handlers, from their first use to the unloading of the library.
class SignalHandlers {
 public:
  SignalHandlers() {
    struct sigaction ours {};
    ours.sa_sigaction = OnSignal;
    // Without SA_NODEFER the second fault would find its signal blocked, since no return from the handler unblocks
    // it, and end the process.
    ours.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    for (const int signal : kSignals) {
      // Read before ours is put up: it may be called at once.
      sigaction(signal, nullptr, &EarlierAction(signal));
      sigaction(signal, &ours, nullptr);
    }
  }
  ~SignalHandlers() {
    for (const int signal : kSignals) {
      struct sigaction current {};
      sigaction(signal, nullptr, &current);
      if (IsOurs(current)) sigaction(signal, &EarlierAction(signal), nullptr);
    }
  }
};

// The thread's alternate signal stack, where the handler of an overflowing stack has room. Nothing is changed
// where there is one that is large enough; a smaller one is put back at the end.
class AlternateStack {
 public:
  AlternateStack() {
    const std::size_t needed =
        std::max(kAlternateStackBytes, static_cast<std::size_t>(std::max(sysconf(_SC_SIGSTKSZ), 0L)));
    if (sigaltstack(nullptr, &earlier_) != 0) return;
    if ((earlier_.ss_flags & SS_DISABLE) == 0 && earlier_.ss_size >= needed) return;
    size_ = kAlternateGuardBytes + needed;
    void* const memory = mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED) return;
    memory_ = static_cast<char*>(memory);
    stack_t ours{};
    ours.ss_sp = memory_ + kAlternateGuardBytes;
    ours.ss_size = needed;
    if (mprotect(ours.ss_sp, needed, PROT_READ | PROT_WRITE) != 0 || sigaltstack(&ours, nullptr) != 0) {
      Release();
      return;
    }
    state.alternateGuard = reinterpret_cast<std::uintptr_t>(memory_);
  }
  AlternateStack(const AlternateStack&) = delete;
  AlternateStack& operator=(const AlternateStack&) = delete;
  ~AlternateStack() {
    if (memory_ == nullptr) return;
    stack_t current{};
    // A stack that is in use, or that is no longer ours, stays.
    if (sigaltstack(nullptr, &current) == 0 && current.ss_sp == memory_ + kAlternateGuardBytes &&
        sigaltstack(&earlier_, nullptr) != 0) {
      return;
    }
    state.alternateGuard = 0;
    Release();
  }

 private:
  void Release() {
    munmap(memory_, size_);
    memory_ = nullptr;
  }

  stack_t earlier_{};
  char* memory_ = nullptr;
  std::size_t size_ = 0;
};

AlternateStack*& OwnAlternateStack() {
  static thread_local AlternateStack* alternateStack = nullptr;
  return alternateStack;
}

void FindStack() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
  void* begin = nullptr;
  std::size_t size = 0;
  std::size_t guard = 0;
  if (pthread_attr_getstack(&attributes, &begin, &size) == 0 &&
      pthread_attr_getguardsize(&attributes, &guard) == 0) {
    state.stackEnd = reinterpret_cast<std::uintptr_t>(begin) + size;
    // Not every C library says of the first thread's stack how far it may grow.
    rlimit limit;
    if (getpid() == gettid() && getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
      size = std::max(size, static_cast<std::size_t>(limit.rlim_cur));
    }
    state.stackBegin = state.stackEnd - size;
    state.belowStack = state.stackBegin - std::min(state.stackBegin, guard + kBelowGuard);
  }
  pthread_attr_destroy(&attributes);
}

void PrepareThread() {
  if (state.prepared) return;
  ThreadOwned<OwnAlternateStack>();
  FindStack();
  state.prepared = true;
}

// --- The way through a member, and out of it after a fault. ---

class Running {
 public:
  explicit Running(Frame& frame) : frame_(frame) {
    if (state.exceptions == nullptr) {
      state.exceptions = reinterpret_cast<ExceptionGlobals*>(abi::__cxa_get_globals());
    }
    frame_.outer = state.innermost;
    frame_.exceptions = *state.exceptions;
    frame_.kept = kept::Count();
    frame_.outerStatement = std::exchange(kept::statement, 0);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    state.innermost = frame_.outer;
    kept::lastStatement = std::exchange(kept::statement, frame_.outerStatement);
  }

 private:
  Frame& frame_;
};

[[noreturn]] void RaiseFault(Frame& frame) {
  // Handlers of exceptions among the abandoned frames never come to their end.
  *state.exceptions = frame.exceptions;
  kept::ReleaseFrom(frame.kept);
  ExceptionPointers pointers{&frame.record};
  if (const ExceptionFilter filter = registered.load(std::memory_order_relaxed)) filter(pointers);
  const auto signal = static_cast<int>(frame.record.Parameters[0]);
  raise(signal);
  SetDefaultAction(signal);
  raise(signal);
  std::abort();
}

}  // namespace

ExceptionFilter SetUnhandledExceptionFilter(ExceptionFilter filter) {
  const ExceptionFilter earlier = registered.exchange(filter, std::memory_order_relaxed);
  if (filter != nullptr) {
    static const SignalHandlers handlers;
    PrepareThread();
  }
  return earlier;
}

void RunGuardedBody(void (*run)(void* body), void* body) {
  Frame frame;
  const Running running(frame);
  // The mask is not saved, which would cost a system call: the handler knows that of the fault.
  if (sigsetjmp(frame.jump, 0) != 0) RaiseFault(frame);
  // Not before the jump is set: the call that sets it may itself find the stack at its end.
  state.innermost = &frame;
  run(body);
}

}  // namespace TORVA35
