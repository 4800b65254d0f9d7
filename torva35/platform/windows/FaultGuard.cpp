#include "torva35/platform/FaultGuard.h"

#include <cxxabi.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <utility>

#include "torva35/platform/Kept.h"
#include "torva35/platform/windows/Windows.h"

namespace TORVA35 {
namespace {

// Room that an overflowing stack leaves for finding the handler and running it.
constexpr ULONG kStackGuarantee = 64 * 1024;
constexpr std::size_t kPage = 4096;

// What the C++ run time keeps of a thread's exceptions, as its binary interface lays it down.
struct ExceptionGlobals {
  void* caught;
  unsigned int uncaught;
};

// One member that runs. It lives on the member's stack.
struct Frame {
  ExceptionGlobals* globals;
  ExceptionGlobals exceptions;
  std::size_t kept;                    // slots in use when it began
  std::uint_least32_t outerStatement;  // of the member around it
  ExceptionRecord record;
  ExceptionRecord innermost;  // of those that the record came from
};

std::atomic<ExceptionFilter> registered{nullptr};
static_assert(std::atomic<ExceptionFilter>::is_always_lock_free);

}  // namespace

extern "C" {

// Calls run(body) and gives 0, or 1 when a fault inside has come back here. The system finds the handler by the
// frame, innermost first and after handlers of the host's that stand further within. It sets the thread forth at
// Torva35GuardedReturn, where the frame's own registers are taken from the stack.
int Torva35Guarded(void (*run)(void* body), void* body, void* frame);
extern const char Torva35GuardedReturn[];
EXCEPTION_DISPOSITION Torva35OnFault(EXCEPTION_RECORD* fault, void* establisher, CONTEXT* context, void*);

asm(R"(
  .text
  .p2align 4
  .globl Torva35Guarded
  .def Torva35Guarded; .scl 2; .type 32; .endef
  .seh_proc Torva35Guarded
Torva35Guarded:
  pushq %rbx
  .seh_pushreg %rbx
  pushq %rbp
  .seh_pushreg %rbp
  pushq %rsi
  .seh_pushreg %rsi
  pushq %rdi
  .seh_pushreg %rdi
  pushq %r12
  .seh_pushreg %r12
  pushq %r13
  .seh_pushreg %r13
  pushq %r14
  .seh_pushreg %r14
  pushq %r15
  .seh_pushreg %r15
  subq $216, %rsp
  .seh_stackalloc 216
  movaps %xmm6, 48(%rsp)
  .seh_savexmm %xmm6, 48
  movaps %xmm7, 64(%rsp)
  .seh_savexmm %xmm7, 64
  movaps %xmm8, 80(%rsp)
  .seh_savexmm %xmm8, 80
  movaps %xmm9, 96(%rsp)
  .seh_savexmm %xmm9, 96
  movaps %xmm10, 112(%rsp)
  .seh_savexmm %xmm10, 112
  movaps %xmm11, 128(%rsp)
  .seh_savexmm %xmm11, 128
  movaps %xmm12, 144(%rsp)
  .seh_savexmm %xmm12, 144
  movaps %xmm13, 160(%rsp)
  .seh_savexmm %xmm13, 160
  movaps %xmm14, 176(%rsp)
  .seh_savexmm %xmm14, 176
  movaps %xmm15, 192(%rsp)
  .seh_savexmm %xmm15, 192
  .seh_endprologue
  movq %r8, 32(%rsp)
  movq %rcx, %rax
  movq %rdx, %rcx
  call *%rax
  xorl %eax, %eax
  .globl Torva35GuardedReturn
Torva35GuardedReturn:
  movaps 48(%rsp), %xmm6
  movaps 64(%rsp), %xmm7
  movaps 80(%rsp), %xmm8
  movaps 96(%rsp), %xmm9
  movaps 112(%rsp), %xmm10
  movaps 128(%rsp), %xmm11
  movaps 144(%rsp), %xmm12
  movaps 160(%rsp), %xmm13
  movaps 176(%rsp), %xmm14
  movaps 192(%rsp), %xmm15
  addq $216, %rsp
  popq %r15
  popq %r14
  popq %r13
  popq %r12
  popq %rdi
  popq %rsi
  popq %rbp
  popq %rbx
  ret
  .seh_handler Torva35OnFault, @except
  .seh_endproc
)");

}  // extern "C"

namespace {

// --- The handler. It may run at the end of a stack, so nothing here allocates, locks or throws. ---

// Of those that the system tells of: warnings and errors, and not what a run-time library throws under a number of
// its own.
bool IsFault(const EXCEPTION_RECORD& fault) {
  return (fault.ExceptionFlags & (EXCEPTION_NONCONTINUABLE | EXCEPTION_UNWIND)) == 0 &&
         (fault.ExceptionCode & 0x80000000) != 0;
}

void Describe(ExceptionRecord& record, const EXCEPTION_RECORD& fault) {
  const bool ofMemory =
      (fault.ExceptionCode == EXCEPTION_ACCESS_VIOLATION || fault.ExceptionCode == EXCEPTION_IN_PAGE_ERROR) &&
      fault.NumberParameters > 1;
  record.Code = fault.ExceptionCode;
  record.Flags = fault.ExceptionFlags;
  record.Nested = nullptr;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): so the system gives it.
  record.Address = ofMemory ? reinterpret_cast<void*>(fault.ExceptionInformation[1]) : fault.ExceptionAddress;
  record.ParameterCount = std::min<DWORD>(fault.NumberParameters, EXCEPTION_MAXIMUM_PARAMETERS);
  std::copy_n(fault.ExceptionInformation, record.ParameterCount, record.Parameters);
}

void DescribeAll(Frame& frame, const EXCEPTION_RECORD& fault) {
  Describe(frame.record, fault);
  const EXCEPTION_RECORD* innermost = &fault;
  while (innermost->ExceptionRecord != nullptr) innermost = innermost->ExceptionRecord;
  if (innermost == &fault) return;
  Describe(frame.innermost, *innermost);
  frame.record.Nested = &frame.innermost;
}

// The fault's floating-point control is kept, pending exceptions and what stood in the registers are not. The
// faulting code may have switched on single steps or alignment checks, or string instructions that run backwards.
void Clean(CONTEXT& context) {
  constexpr DWORD kSingleStep = 0x100, kBackwards = 0x400, kAlignmentCheck = 0x40000;
  constexpr DWORD kPending = 0x3F;
  context.EFlags &= ~(kSingleStep | kBackwards | kAlignmentCheck);
  context.FltSave.StatusWord = 0;
  context.FltSave.TagWord = 0;
  context.FltSave.MxCsr &= ~kPending;
  context.MxCsr &= ~kPending;
}

}  // namespace

EXCEPTION_DISPOSITION Torva35OnFault(EXCEPTION_RECORD* fault, void* establisher, CONTEXT* context, void*) {
  if (!IsFault(*fault) || registered.load(std::memory_order_relaxed) == nullptr) return ExceptionContinueSearch;
  DescribeAll(**reinterpret_cast<Frame**>(static_cast<char*>(establisher) + 32), *fault);
  Clean(*context);
  context->Rax = 1;
  context->Rsp = reinterpret_cast<DWORD64>(establisher);
  context->Rip = reinterpret_cast<DWORD64>(&Torva35GuardedReturn);
  return ExceptionContinueExecution;
}

namespace {

// --- What is set up once for each thread. ---

// The system moves the guard ahead of a stack that grows, and keeps the room below it for the handler. A stack
// that has all its memory from the beginning, as under Wine, has its guard at the very end instead: it gets
// another one.
void GuardWholeStack() {
  MEMORY_BASIC_INFORMATION area{};
  if (VirtualQuery(&area, &area, sizeof area) == 0) return;
  char* const page = static_cast<char*>(area.AllocationBase) + kStackGuarantee;
  if (VirtualQuery(page, &area, sizeof area) == 0 || area.State != MEM_COMMIT || area.Protect != PAGE_READWRITE ||
      page + kPage > reinterpret_cast<char*>(&area)) {
    return;
  }
  DWORD before = 0;
  VirtualProtect(page, kPage, PAGE_READWRITE | PAGE_GUARD, &before);
}

void LeaveRoomOnStack() {
  ULONG guarantee = 0;
  if (SetThreadStackGuarantee(&guarantee) == 0 || guarantee >= kStackGuarantee) return;
  guarantee = kStackGuarantee;
  if (SetThreadStackGuarantee(&guarantee) != 0) GuardWholeStack();
}

// --- The way through a member, and out of it after a fault. ---

class Running {
 public:
  explicit Running(Frame& frame) : frame_(frame) {
    frame_.globals = reinterpret_cast<ExceptionGlobals*>(abi::__cxa_get_globals());
    frame_.exceptions = *frame_.globals;
    frame_.kept = kept::Count();
    frame_.outerStatement = std::exchange(kept::statement, 0);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { kept::lastStatement = std::exchange(kept::statement, frame_.outerStatement); }

 private:
  Frame& frame_;
};

[[noreturn]] void RaiseFault(Frame& frame) {
  // Without its guard the next overflow would end the process.
  if (frame.record.Code == EXCEPTION_STACK_OVERFLOW) _resetstkoflw();
  // Handlers of exceptions among the abandoned frames never come to their end.
  *frame.globals = frame.exceptions;
  kept::ReleaseFrom(frame.kept);
  ExceptionPointers pointers{&frame.record};
  if (const ExceptionFilter filter = registered.load(std::memory_order_relaxed)) filter(pointers);
  ULONG_PTR parameters[EXCEPTION_MAXIMUM_PARAMETERS];
  std::copy_n(frame.record.Parameters, frame.record.ParameterCount, parameters);
  RaiseException(frame.record.Code, EXCEPTION_NONCONTINUABLE, frame.record.ParameterCount, parameters);
  std::abort();
}

}  // namespace

ExceptionFilter SetUnhandledExceptionFilter(ExceptionFilter filter) {
  const ExceptionFilter earlier = registered.exchange(filter, std::memory_order_relaxed);
  if (filter != nullptr) LeaveRoomOnStack();
  return earlier;
}

void RunGuardedBody(void (*run)(void* body), void* body) {
  Frame frame;
  const Running running(frame);
  if (Torva35Guarded(run, body, &frame) != 0) RaiseFault(frame);
}

}  // namespace TORVA35
