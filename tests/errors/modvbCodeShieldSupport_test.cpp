#include "errors/modvbCodeShieldSupport.h"

#include <gtest/gtest.h>

#include "base/Text.h"
#include "errors/ErrorObject.h"
#include "errors/Reported.h"
#include "errors/basError.h"
#include "errors/modStartup.h"
#include "platform/Desktop.h"
#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"

namespace TORVA35::modvbCodeShieldSupport {
namespace {

struct Row {
  std::uint32_t code;
  const char16_t* name;
  Long number;
};

const Row kRows[] = {{0x80000001, u"Guard Page Violation", 10001},
                     {0x80000002, u"Data Type Misalignment", 10002},
                     {0x80000003, u"Breakpoint", 10003},
                     {0x80000004, u"Single Step", 10004},
                     {0xC0000005, u"Access Violation", 10005},
                     {0xC0000006, u"In Page Error", 10006},
                     {0xC0000008, u"Invalid Handle", 10008},
                     {0xC000001D, u"Illegal Instruction", 10013},
                     {0xC0000025, u"Non Continuable Exception", 10037},
                     {0xC0000026, u"Invalid Disposition", 10038},
                     {0xC000008C, u"Array Bounds Exceeded", 10140},
                     {0xC000008D, u"Float Denormal Operand", 10141},
                     {0xC000008E, u"Divide By Zero", 10142},
                     {0xC000008F, u"Floating Point Inexact Result", 10143},
                     {0xC0000090, u"Invalid Operation", 10128},
                     {0xC0000091, u"Float Overflow", 10129},
                     {0xC0000092, u"Float Stack Check", 10130},
                     {0xC0000093, u"Float Underflow", 10131},
                     {0xC0000094, u"Integer Divide By Zero", 10132},
                     {0xC0000095, u"Integer Overflow", 10133},
                     {0xC0000096, u"Privileged Instruction", 10134},
                     {0xC00000FD, u"Stack Overflow", 10237},
                     {0xC000013A, u"Control-C Exit", 10042},
                     {0xE0000001, u"Unknown (&HE0000001)", 10001},
                     {0x000000FF, u"Unknown (&H000000FF)", 10239}};

Error Raised(ExceptionRecord& record) {
  ExceptionPointers pointers{&record};
  try {
    vbcsExceptionFilter(pointers);
  } catch (const Error& error) {
    return error;
  }
  return {0, u"nothing"};
}

TEST(modvbCodeShieldSupport, FilterRaisesNameAndNumberOfEachCode) {
  for (const Row& row : kRows) {
    ExceptionRecord record{};
    record.Code = row.code;
    const Error error = Raised(record);
    EXPECT_EQ(error.Description(), row.name);
    EXPECT_EQ(error.Number(), row.number) << ToUtf8(row.name);
    EXPECT_EQ(error.Source(), u"vbcsExceptionFilter");
  }
}

TEST(modvbCodeShieldSupport, InnermostRecordCounts) {
  ExceptionRecord innermost{};
  innermost.Code = 0xC0000094;
  ExceptionRecord middle{};
  middle.Code = 0xC0000005;
  middle.Nested = &innermost;
  ExceptionRecord outer{};
  outer.Code = 0xC0000026;
  outer.Nested = &middle;
  EXPECT_EQ(Raised(outer).Number(), 10132);
}

TEST(modvbCodeShieldSupport, InstallsOncePerThread) {
  EXPECT_EQ(InChild([] {
              std::string trace;
              modStartup::Main();
              trace +=
                  SetUnhandledExceptionFilter(nullptr) == vbcsExceptionFilter ? "installed " : "not installed ";
              modStartup::Main();
              trace += SetUnhandledExceptionFilter(nullptr) == nullptr ? "once" : "twice";
              return trace;
            }),
            "installed once");
}

// Shows each report as one line, and faults on demand.
class Host : public ErrorObject {
 public:
  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String& sDescription, String& sLocation, String&, String&,
                         String&, String&, Long&, String&, String&, String&, bool&) override {
    if (faults) faults::NullRead();
    reports += ToUtf8(TextOf(vNumber) + u" " + sDescription + u" in " + sLocation) + "\n";
    return 0;
  }
  TaggedValue MsgBoxEx(String, String, Long, TaggedValue, String, TaggedValue) override { return 0; }

  bool faults = false;
  std::string reports;
};

constexpr Location kHere(u"TORVA35 - clsThing.Do");

Long Faulting(void (*cause)()) {
  return Reported(
      kHere, Long{0},
      [&](Long& result) {
        result = 3;
        cause();
        result = 4;
      },
      CallSite::Current(20));
}

struct Thing : Object {
  Thing() {
    ReportedConstruction(kHere, [] {});
  }
};

TEST(modvbCodeShieldSupport, FaultsAreReportedLikeAnyFailure) {
  EXPECT_EQ(InChild([] {
              const Thing startsUp;
              const auto host = New<Host>();
              basError::goErr() = host;
              const Long results = Faulting(faults::NullRead) + Faulting(faults::EndlessRecursion) +
                                   Faulting([] {}) + Faulting(faults::NullRead);
              return host->reports + std::to_string(results);
            }),
            "10005 Access Violation in TORVA35 - clsThing.Do; Line: 20\n"
            "10237 Stack Overflow in TORVA35 - clsThing.Do; Line: 20\n"
            "10005 Access Violation in TORVA35 - clsThing.Do; Line: 20\n13");
}

class Faulty : public std::exception {
  const char* what() const noexcept override {
    faults::NullRead();
    return "";
  }
};

// The host's code runs behind the member's boundary, too.
TEST(modvbCodeShieldSupport, FaultsWhileReportingAreContained) {
  EXPECT_EQ(InChild([] {
              const Thing startsUp;
              std::string boxes;
              SetMessageBoxHook([&](const String& sText, const String&, Long) { boxes += ToUtf8(sText) + "\n"; });
              auto host = New<Host>();
              const std::weak_ptr<Host> watched = host;
              host->faults = true;
              basError::goErr() = std::move(host);
              Faulting([] { throw Error(5, u"own words"); });
              basError::goErr() = nullptr;
              Faulting([] { throw Faulty(); });
              return boxes + (watched.expired() ? "released" : "kept for ever");
            }),
            "Application error: (#10005) Application-defined or object-defined error occurred while trying to "
            "display:\r\n\r\nError# 5: own words, Location: TORVA35 - clsThing.Do; Line: 20\n"
            "Error# 10005: Access Violation, Location: TORVA35 - clsThing.Do; Line: 20\nreleased");
}

}  // namespace
}  // namespace TORVA35::modvbCodeShieldSupport
