#include "torva35/platform/FaultGuard.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <exception>
#include <thread>

#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"

namespace TORVA35 {
namespace {

struct Fault {
  const char* code;
  void (*cause)();
};

const Fault kFaults[] = {
    {"C0000005", faults::NullRead},
    {"C00000FD", faults::EndlessRecursion},
    {"C000001D", faults::IllegalInstruction},
#if defined(__x86_64__)
    {"C0000094", faults::IntegerDivision},
    {"C000008E", faults::FloatDivision},
    {"80000003", faults::Breakpoint},
    {"80000004", faults::SingleStep},
#endif
#if defined(_WIN32)
    {"C0000096", faults::PrivilegedInstruction},
#else
    {"C0000006", faults::ReadBehindFileEnd},
#if defined(__x86_64__)
    {"C0000005", faults::PrivilegedInstruction},
    {"80000002", faults::MisalignedRead},  // which Windows mends
#endif
#endif
};

TEST(FaultGuard, EveryFaultComesBackEachTime) {
  for (const Fault& fault : kFaults) {
    // Its own handler, which runs first, does not end the alignment check.
    if (kThreadSanitizer && fault.code == std::string_view("80000002")) continue;
    const auto threeTimes = [&] { return Member(fault.cause) + Member(fault.cause) + Member(fault.cause); };
    const std::string expected = std::string(fault.code) + fault.code + fault.code;
    EXPECT_EQ(InGuardedChild(threeTimes), expected);
    EXPECT_EQ(InChild([&] {
                std::string codes;
                std::thread([&] {
                  SetUnhandledExceptionFilter(Throwing);
                  codes = threeTimes();
                }).join();
                return codes;
              }),
              expected)
        << "on a thread of its own";
  }
}

void NoThrow() noexcept {
  faults::NullRead();
}

TEST(FaultGuard, InnermostMemberGetsTheFault) {
  EXPECT_EQ(InGuardedChild([] {
              std::string trace;
              trace += "outer:" + Member([&] {
                         trace += "inner:" + Member(NoThrow) + ' ';
                         trace += "returned:" + Member([] {}) + ' ';
                         try {
                           RunGuarded([] { throw 1; });
                         } catch (int) {
                           trace += "thrown ";
                         }
                         NoThrow();
                       });
              return trace;
            }),
            "inner:C0000005 returned:- thrown outer:C0000005");
}

TEST(FaultGuard, TwoThreadsFaultSideBySide) {
  EXPECT_EQ(InChild([] {
              std::string codes[2];
              const auto run = [](std::string& result, void (*cause)()) {
                SetUnhandledExceptionFilter(Throwing);
                for (int i = 0; i < 100; ++i) result = Member(cause);
              };
              std::thread first(run, std::ref(codes[0]), faults::NullRead);
              std::thread second(run, std::ref(codes[1]), faults::EndlessRecursion);
              first.join();
              second.join();
              return codes[0] + ' ' + codes[1];
            }),
            "C0000005 C00000FD");
}

struct Thrower {
  ~Thrower() { faults::NullRead(); }
};

TEST(FaultGuard, ExceptionsOfAbandonedFramesAreForgotten) {
  EXPECT_EQ(InGuardedChild([] {
              std::string trace = Member([] {
                const Thrower faultsWhileUnwinding;
                throw 1;
              });
              trace += ' ' + Member([] {
                         try {
                           throw 2;
                         } catch (int) {
                           faults::NullRead();
                         }
                       });
              trace += ' ' + std::to_string(std::uncaught_exceptions());
              return trace + (std::current_exception() ? " stale" : " none");
            }),
            "C0000005 C0000005 0 none");
}

TEST(FaultGuard, FloatingPointControlIsKept) {
  EXPECT_EQ(InGuardedChild([] {
              fesetround(FE_UPWARD);
              Member(faults::NullRead);
              return fegetround() == FE_UPWARD ? "upward" : "lost";
            }),
            "upward");
}

}  // namespace
}  // namespace TORVA35
