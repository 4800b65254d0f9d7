#include "torva35/platform/FaultGuard.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <exception>
#include <ostream>
#include <thread>

#include "Faults.h"
#include "Member.h"

namespace TORVA35 {
namespace {

struct Fault {
  const char* name;
  void (*cause)();
  const char* code;
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.name;
}

class RealFault : public testing::TestWithParam<Fault> {};

TEST_P(RealFault, ComesBackEachTime) {
  if (kThreadSanitizer && std::string("MisalignedRead") == GetParam().name) {
    GTEST_SKIP() << "its own handler, which runs first, does not end the alignment check";
  }
  const auto threeTimes = [] {
    std::string codes;
    for (int i = 0; i < 3; ++i) codes += Member(GetParam().cause) + ' ';
    return codes;
  };
  const std::string code = GetParam().code;
  const std::string expected = code + ' ' + code + ' ' + code + ' ';
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

const Fault kFaults[] = {
    {"NullRead", faults::NullRead, "C0000005"},
    {"EndlessRecursion", faults::EndlessRecursion, "C00000FD"},
#if !defined(_WIN32)
    {"ReadBehindFileEnd", faults::ReadBehindFileEnd, "C0000006"},
#endif
    {"IllegalInstruction", faults::IllegalInstruction, "C000001D"},
#if defined(__x86_64__)
    {"IntegerDivision", faults::IntegerDivision, "C0000094"},
    {"FloatDivision", faults::FloatDivision, "C000008E"},
    {"Breakpoint", faults::Breakpoint, "80000003"},
    {"SingleStep", faults::SingleStep, "80000004"},
#if defined(_WIN32)
    {"PrivilegedInstruction", faults::PrivilegedInstruction, "C0000096"},
#else
    {"PrivilegedInstruction", faults::PrivilegedInstruction, "C0000005"},
    {"MisalignedRead", faults::MisalignedRead, "80000002"},  // which Windows mends
#endif
#endif
};

INSTANTIATE_TEST_SUITE_P(FaultGuard, RealFault, testing::ValuesIn(kFaults),
                         [](const auto& row) { return row.param.name; });

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
