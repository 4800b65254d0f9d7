// The system's own ways of raising and handling: what is a member's fault, what is the host's, and what is left of
// it.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>
#include <utility>

#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"

namespace TORVA35 {
namespace {

class Handlers : public testing::Test {
 protected:
  Handlers() { SetUnhandledExceptionFilter(Throwing); }
};

// What no processor does on demand.
TEST_F(Handlers, WhateverTheSystemRaisesIsAFault) {
  for (const DWORD code : {0x80000001, 0x80000002, 0xC0000006, 0xC0000008, 0xC000001D, 0xC000008C, 0xC000008D,
                           0xC000008F, 0xC0000091, 0xC0000092, 0xC0000093, 0xC0000095, 0xC000013A, 0xE0000001}) {
    EXPECT_EQ(Member([=] { RaiseException(code, 0, 0, nullptr); }), Hex(static_cast<Long>(code)));
  }
}

TEST_F(Handlers, TheRecordIsTheSystems) {
  static ExceptionRecord seen;
  SetUnhandledExceptionFilter([](ExceptionPointers& pointers) -> Long {
    seen = *pointers.Record;
    throw 1;
  });
  EXPECT_THROW(RunGuarded([] { faults::NullRead(); }), int);
  EXPECT_EQ(seen.Address, nullptr);
  EXPECT_EQ(seen.ParameterCount, 2u);  // a read, of that address
  EXPECT_EQ(seen.Parameters[0], 0u);
  EXPECT_EQ(seen.Nested, nullptr);
}

LONG CALLBACK SkipRead(EXCEPTION_POINTERS* pointers) {
  // The host mends the fault: the address becomes one that can be read.
  static int good = 7;
  if (pointers->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION) return EXCEPTION_CONTINUE_SEARCH;
  CONTEXT& context = *pointers->ContextRecord;
  for (DWORD64* address : {&context.Rax, &context.Rcx, &context.Rdx, &context.R8}) {
    if (*address == 0) *address = reinterpret_cast<DWORD64>(&good);
  }
  return EXCEPTION_CONTINUE_EXECUTION;
}

TEST_F(Handlers, AHostThatMendsItsFaultsDoesSoWithinAMember) {
  void* const handler = AddVectoredExceptionHandler(0, SkipRead);
  EXPECT_EQ(Member(faults::NullRead), "-");
  RemoveVectoredExceptionHandler(handler);
  EXPECT_EQ(Member(faults::NullRead), "C0000005");
}

LONG WINAPI OfHost(EXCEPTION_POINTERS*) {
  ExitProcess(77);
}

TEST_F(Handlers, AFaultThatIsNobodysIsTheHosts) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto faultTwice = [](ExceptionFilter filter, bool outside) {
    Member(faults::NullRead);
    ::SetUnhandledExceptionFilter(OfHost);
    SetUnhandledExceptionFilter(filter);
    Member([] { Member(faults::NullRead); });
    if (outside) faults::NullRead();
  };
  EXPECT_EXIT(faultTwice(Throwing, true), testing::ExitedWithCode(77), "");
  EXPECT_EXIT(faultTwice(nullptr, false), testing::ExitedWithCode(77), "");
  EXPECT_EXIT(faultTwice([](ExceptionPointers&) -> Long { return 0; }, false), testing::ExitedWithCode(77), "");
}

// A thread that the library never started up on, and one that a host has made without the C++ library.
TEST_F(Handlers, EveryThreadThatRunsAMemberHasItsFaults) {
  std::string codes;
  std::thread([&] { codes = Member(faults::NullRead); }).join();
  EXPECT_EQ(codes, "C0000005");
  const HANDLE thread = CreateThread(
      nullptr, 0,
      [](void* result) -> DWORD {
        SetUnhandledExceptionFilter(Throwing);
        for (int i = 0; i < 3; ++i) {
          *static_cast<std::string*>(result) +=
              ' ' + Member(faults::EndlessRecursion) + ' ' + Member(faults::NullRead);
        }
        return 0;
      },
      &codes, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  EXPECT_EQ(codes, "C0000005 C00000FD C0000005 C00000FD C0000005 C00000FD C0000005");
}

}  // namespace
}  // namespace TORVA35
