// What becomes of a fault that is no member's, and of the host's own signal handlers and stacks.

#include <gtest/gtest.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>

#include <cstring>
#include <thread>
#include <utility>
#include <vector>

#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"

namespace TORVA35 {
namespace {

// A thread that never started up has no stack for the handler of an overflow, which must not loop.
TEST(FaultGuard, UnpreparedThreadSurvivesAllButAnOverflow) {
  const auto onUnprepared = [](void (*cause)()) {
    return InGuardedChild([=] {
      std::string code;
      std::thread([&] {
        stack_t none{};
        none.ss_flags = SS_DISABLE;  // a sanitizer gives one to each thread
        sigaltstack(&none, nullptr);
        code = Member(cause);
      }).join();
      return code;
    });
  };
  EXPECT_EQ(onUnprepared(faults::NullRead), "C0000005");
  EXPECT_EQ(onUnprepared(faults::EndlessRecursion), "ended by SIGSEGV");
}

sigjmp_buf hostPoint;
char seen[256];

void NoteAndLeave(int, siginfo_t* info, void*) {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  strcat(seen, info->si_code > 0 ? "fault" : "message");
  if (sigismember(&mask, SIGSEGV) == 1) strcat(seen, " blocked");
  if (sigismember(&mask, SIGUSR1) == 1) strcat(seen, " +USR1");
  strcat(seen, ", ");
  if (info->si_code > 0) siglongjmp(hostPoint, 1);
}

void FaultInHandler(int, siginfo_t* info, void* context) {
  if (info->si_code <= 0) faults::NullRead();
  NoteAndLeave(0, info, context);
}

void PutUpHandler(void (*handler)(int, siginfo_t*, void*), int flags) {
  struct sigaction action {};
  action.sa_sigaction = handler;
  action.sa_flags = SA_SIGINFO | flags;
  sigaddset(&action.sa_mask, SIGUSR1);
  sigaction(SIGSEGV, &action, nullptr);
}

// Faults as host code does that expects to.
void FaultOutside() {
  if (sigsetjmp(hostPoint, 1) == 0) faults::NullRead();
}

TEST(FaultGuard, FaultOutsideAMemberEndsTheProcess) {
  const std::pair<int, void (*)()> rows[] = {
    {SIGSEGV, faults::NullRead},
    {SIGSEGV, faults::EndlessRecursion},
    {SIGSEGV, [] { kill(getpid(), SIGSEGV); }},
    {SIGBUS, faults::ReadBehindFileEnd},
#if defined(__x86_64__)
    {SIGFPE, faults::IntegerDivision},
    {SIGTRAP, faults::Breakpoint},
#endif
    {SIGILL, faults::IllegalInstruction}
  };
  for (const auto& row : rows) {
    EXPECT_EQ(InGuardedChild([&] {
                Member(faults::NullRead);
                row.second();
                return "lived on";
              }),
              Ended(row.first));
  }
}

TEST(FaultGuard, HostHandlerRunsAsItWouldHave) {
  const auto withFlags = [](int flags) {
    return InGuardedChild(
        [] {
          FaultOutside();
          strcat(seen, Member(faults::NullRead).c_str());
          strcat(seen, ", ");
          FaultOutside();
          return seen;
        },
        [=] { PutUpHandler(NoteAndLeave, flags); });
  };
  EXPECT_EQ(withFlags(0), "fault blocked +USR1, C0000005, fault blocked +USR1, ");
  // ThreadSanitizer runs each handler with all signals blocked.
  if (!kThreadSanitizer) {
    EXPECT_EQ(withFlags(SA_NODEFER), "fault +USR1, C0000005, fault +USR1, ");
  }
  EXPECT_EQ(withFlags(static_cast<int>(SA_RESETHAND)), "ended by SIGSEGV");
}

TEST(FaultGuard, MessagesGoToTheHost) {
  const auto killedMember = [](void (*putUp)()) {
    return InGuardedChild(
        [] {
          const std::string result = Member([] { kill(getpid(), SIGSEGV); });
          return seen + result;
        },
        putUp);
  };
  EXPECT_EQ(killedMember([] {}), Ended(SIGSEGV));
  EXPECT_EQ(killedMember([] { PutUpHandler(NoteAndLeave, 0); }), "message blocked +USR1, -");
  EXPECT_EQ(killedMember([] { ::signal(SIGSEGV, [](int) { strcat(seen, "plain, "); }); }), "plain, -");
  EXPECT_EQ(killedMember([] { ::signal(SIGSEGV, SIG_IGN); }), "-");
}

// The handler jumps over a member. Its frame is gone with it, and must not be found by the next fault.
TEST(FaultGuard, FaultInAHostHandlerStaysWithTheHost) {
  if (kThreadSanitizer) GTEST_SKIP() << "runs each handler with all signals blocked";
  EXPECT_EQ(InGuardedChild(
                [] {
                  if (sigsetjmp(hostPoint, 1) == 0) Member([] { kill(getpid(), SIGSEGV); });
                  FaultOutside();
                  return seen + Member(faults::NullRead);
                },
                [] { PutUpHandler(FaultInHandler, SA_NODEFER); }),
            "fault +USR1, fault +USR1, C0000005");
}

TEST(FaultGuard, WithoutAWillingFilterTheHostGetsTheFault) {
  const auto withFilter = [](ExceptionFilter filter) {
    return InGuardedChild(
        [=] {
          const bool gaveEarlier = SetUnhandledExceptionFilter(filter) == Throwing;
          if (sigsetjmp(hostPoint, 1) == 0) Member(faults::NullRead);
          return std::string(gaveEarlier ? "" : "other filter, ") + seen;
        },
        [] { PutUpHandler(NoteAndLeave, 0); });
  };
  EXPECT_EQ(withFilter(nullptr), "fault blocked +USR1, ");
  EXPECT_EQ(withFilter([](ExceptionPointers&) -> Long { return 0; }), "ended by SIGSEGV");
}

// Of a thread to which the host gave an alternate stack.
struct AlternateStack {
  stack_t system{}, host{}, started{}, end{};
  bool secondRound = false;
};

pthread_key_t threadEnd;

void NoteAtThreadEnd(void* value) {
  auto& stack = *static_cast<AlternateStack*>(value);
  if (std::exchange(stack.secondRound, true)) {
    sigaltstack(&stack.system, &stack.end);
  } else {
    pthread_setspecific(threadEnd, value);  // again when the library has had its turn
  }
}

TEST(FaultGuard, LargeAlternateStackIsKeptAndASmallOnePutBack) {
  pthread_key_create(&threadEnd, NoteAtThreadEnd);
  for (const std::size_t size : {std::size_t{1} << 20, std::size_t{16384}}) {
    std::vector<char> memory(size);
    AlternateStack stack;
    std::thread([&] {
      stack.host.ss_sp = memory.data();
      stack.host.ss_size = size;
      sigaltstack(&stack.host, &stack.system);
      SetUnhandledExceptionFilter(Throwing);
      sigaltstack(nullptr, &stack.started);
      pthread_setspecific(threadEnd, &stack);
    }).join();
    EXPECT_GE(stack.started.ss_size, std::size_t{64 * 1024});
    EXPECT_EQ(stack.started.ss_sp == memory.data(), size != 16384);
    EXPECT_EQ(stack.end.ss_sp, memory.data());
  }
  pthread_key_delete(threadEnd);
}

}  // namespace
}  // namespace TORVA35
