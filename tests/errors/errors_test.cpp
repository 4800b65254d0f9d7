// How a failure becomes one report: of a member, of the error object itself, of a processor fault.

#include "torva35/errors/basError.h"

#include <gtest/gtest.h>

#include <fstream>
#include <new>
#include <stdexcept>
#include <vector>

#include "tests/Values.h"
#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"
#include "torva35/base/Text.h"
#include "torva35/errors/ErrorObject.h"
#include "torva35/errors/Reported.h"
#include "torva35/errors/modStartup.h"
#include "torva35/errors/modvbCodeShieldSupport.h"
#include "torva35/platform/Desktop.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {
namespace {

constexpr Location kHere(u"TORVA35 - clsThing.Do");

// One text of all arguments, then whatever the test asks for.
class Host : public ErrorObject {
 public:
  TaggedValue RaiseError(TaggedValue& vNumber, Long& lArgument2, String& sDescription, String& sLocation,
                         String& sArgument5, String& sArgument6, String& sArgument7, String& sArgument8,
                         Long& lArgument9, String& sArgument10, String& sArgument11, String& sArgument12,
                         bool& bArgument13) override {
    calls.push_back(TextOf(vNumber) + u"|" + Decimal(lArgument2) + u"|" + sDescription + u"|" + sLocation + u"|" +
                    sArgument5 + sArgument6 + sArgument7 + sArgument8 + sArgument10 + sArgument11 + sArgument12 +
                    u"|" + Decimal(lArgument9) + u"|" + TextOf(bArgument13));
    // None of this may show anywhere.
    vNumber = 1;
    sDescription = sLocation = u"changed";
    return reply();
  }
  TaggedValue MsgBoxEx(String, String, Long, TaggedValue, String, TaggedValue) override { return 6; }

  std::vector<String> calls;
  std::function<TaggedValue()> reply = [] { return 0; };
};

struct WithoutMethods : Object {};

class basErrorTest : public testing::Test {
 protected:
  basErrorTest() {
    SetMessageBoxHook([this](const String& sText, const String& sTitle, Long lStyle) {
      boxes.push_back(sTitle + u"|" + Decimal(lStyle) + u"|" + sText);
    });
  }
  ~basErrorTest() override {
    SetMessageBoxHook({});
    SetMousePointerHook({});
    basError::goErr() = nullptr;
  }

  static Integer Report(Long lLine, TaggedValue vNumber = 457) {
    return basError::ReportError(lLine, std::move(vNumber), 0, u"Duplicate", u"TORVA35 - x.Add", {}, {}, {}, {}, 1,
                                 {}, {}, {}, false);
  }
  // The second message box of that report, stopped by another failure.
  static String Stopped(const String& by, const String& line = u"; Line: 50") {
    return u"Application Error|48|Application error: " + by +
           u" occurred while trying to display:\r\n\r\nError# 457: Duplicate, Location: TORVA35 - x.Add" + line;
  }

  Ref<Host> host = New<Host>();
  std::vector<String> boxes;
};

TEST_F(basErrorTest, WithoutAnErrorObjectAMessageBoxShows) {
  EXPECT_EQ(Report(50), 0);
  EXPECT_EQ(Report(0, -7), 0);
  Report(-1);
  const String end = u": Duplicate, Location: TORVA35 - x.Add", begin = u"Application Error|48|Error# ";
  EXPECT_EQ(boxes, (std::vector<String>{begin + u"457" + end + u"; Line: 50", begin + u"-7" + end,
                                        begin + u"457" + end}));
  SetMessageBoxHook({});
  testing::internal::CaptureStderr();
  Report(0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Application Error\nError# 457" + ToUtf8(end) + "\n");
}

TEST_F(basErrorTest, ErrorObjectGetsThirteenArgumentsAndItsResultComesBack) {
  basError::goErr() = host;
  host->reply = [] { return u"-3.5"; };
  EXPECT_EQ(Report(50), -4);
  host->reply = [] { return true; };
  EXPECT_EQ(Report(0, -7), -1);
  EXPECT_EQ(host->calls, (std::vector<String>{u"457|0|Duplicate|TORVA35 - x.Add; Line: 50||1|False",
                                              u"-7|0|Duplicate|TORVA35 - x.Add||1|False"}));
  EXPECT_TRUE(boxes.empty());
}

TEST_F(basErrorTest, FailingErrorObjectLeadsToTheSecondMessageBox) {
  basError::goErr() = New<WithoutMethods>();
  EXPECT_EQ(Report(50), 0);
  basError::goErr() = host;
  const std::pair<std::function<TaggedValue()>, String> rows[] = {
      {[] { return Null; }, u"(#13) Type mismatch"},
      {[] { return 32768; }, u"(#6) Overflow"},
      {[]() -> TaggedValue { throw Error(1234, u"own words"); },
       u"(#1234) Application-defined or object-defined error"},
      {[]() -> TaggedValue { throw std::runtime_error("foreign"); }, u"(#51) Internal error"},
      {[]() -> TaggedValue { throw std::bad_alloc(); }, u"(#7) Out of memory"},
      {[]() -> TaggedValue { throw 5; }, u"(#51) Internal error"}};
  std::vector<String> stopped = {Stopped(u"(#438) Object does not support this method")};
  for (const auto& [reply, by] : rows) {
    host->reply = reply;
    EXPECT_EQ(Report(50), 0);
    stopped.push_back(Stopped(by));
  }
  EXPECT_EQ(boxes, stopped);
}

TEST_F(basErrorTest, ReportSurvivesAPointerAndAMessageBoxThatFail) {
  basError::goErr() = host;
  SetMousePointerHook([] { throw Error(5, u""); });  // comes before the line
  EXPECT_EQ(Report(50), 0);
  EXPECT_EQ(boxes, std::vector<String>{Stopped(u"(#5) Invalid procedure call or argument", u"")});
  EXPECT_TRUE(host->calls.empty());
  SetMessageBoxHook([](const String&, const String&, Long) { throw 1; });
  EXPECT_EQ(Report(50), 0);
}

// The error object takes itself out of the slot, which must not end it in the middle of its call.
TEST_F(basErrorTest, ErrorObjectLivesThroughItsCall) {
  const std::weak_ptr<Host> watched = host;
  host->reply = [&] {
    host.reset();
    basError::goErr() = nullptr;
    return watched.expired() ? 1 : 2;
  };
  basError::goErr() = host;
  EXPECT_EQ(Report(0), 2);
  EXPECT_TRUE(watched.expired());
}

TEST_F(basErrorTest, MsgBoxExNeedsAnObjectWithTheMethod) {
  const std::pair<Ref<Object>, Long> rows[] = {{nullptr, 91}, {New<WithoutMethods>(), 438}, {host, 0}};
  for (const auto& [object, number] : rows) {
    basError::goErr() = object;
    EXPECT_EQ(Raised([] { basError::MsgBoxEx(u"", u"", 152, Missing, u"&OK", Missing); }), number);
  }
}

// --- The boundary of the members ---

template <class Cause>
bool Member(Cause cause) {
  return Reported(
      kHere, false,
      [&](bool& result) {
        result = true;
        cause();
        result = false;
      },
      CallSite::Current(20));
}

TEST_F(basErrorTest, MemberReportsOnceAndGivesWhatItsResultHeld) {
  basError::goErr() = host;
  const auto raised = [](const String& text, const String& line = u"20") {
    return std::vector<String>{text + u"|TORVA35 - clsThing.Do; Line: " + line + u"||1|False"};
  };
  const std::pair<void (*)(), std::vector<String>> rows[] = {
      // A line of a host's says nothing about the member: its statement does, where it is known.
      {[] { throw Error(1234, u"own words", 33); }, raised(u"1234|0|own words")},
      {[] { Ask(basError::goErr(), CallSite::Current(25)), throw Error(1234, u"own words", 33); },
       raised(u"1234|0|own words", u"25")},
      {[] { throw Error(1234, u"own words"); }, raised(u"1234|0|own words")},
      {[] { Raise(kOverflow, CallSite::Current(0x80000000u | 44)); }, raised(u"6|0|Overflow", u"44")},
      {[] { throw std::runtime_error("fóreign"); }, raised(u"51|0|fóreign")},
      {[] { throw std::runtime_error(""); }, raised(u"51|0|Internal error")},
      {[] { throw 5; }, raised(u"51|0|Internal error")},
      {[] { throw std::bad_alloc(); }, raised(u"7|0|Out of memory")}};
  for (const auto& [raise, calls] : rows) {
    host->calls.clear();
    EXPECT_TRUE(Member(raise));
    EXPECT_EQ(host->calls, calls);
  }
  host->calls.clear();
  EXPECT_TRUE(Member([] { Member([] { throw 1; }), throw 2; }));
  EXPECT_EQ(host->calls.size(), 2u);
  EXPECT_TRUE(Silently(false, [](bool& result) {
    result = true;
    throw 1;
  }));
  EXPECT_EQ(host->calls.size(), 2u);
}

// --- Processor faults ---

String Filtered(ExceptionRecord& record) {
  ExceptionPointers pointers{&record};
  try {
    modvbCodeShieldSupport::vbcsExceptionFilter(pointers);
  } catch (const Error& error) {
    EXPECT_EQ(error.Source(), u"vbcsExceptionFilter");
    return Decimal(error.Number()) + u" " + error.Description();
  }
  return u"nothing";
}

// Those that the page on errors lists, and others.
TEST(FaultFilter, RaisesNumberAndNameOfEachCode) {
  std::vector<std::pair<std::uint32_t, String>> rows = {{0xE0000001, u"10001 Unknown (&HE0000001)"},
                                                        {0x000000FF, u"10239 Unknown (&H000000FF)"}};
  std::ifstream page(TEST_DATA "/../../docs/errors.md");
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| 10")) continue;
    const Array<String> cells = Split(FromUtf8(line), u" | ");
    rows.emplace_back(std::stoul(ToUtf8(cells[1]), nullptr, 16), cells[0].substr(2) + u" " + cells[2]);
  }
  ASSERT_EQ(rows.size(), 18u);
  for (const auto& [code, raised] : rows) {
    ExceptionRecord innermost{}, middle{}, outer{};
    innermost.Code = code;
    EXPECT_EQ(Filtered(innermost), raised);
    middle.Code = outer.Code = 0xC0000026;
    middle.Nested = &innermost;
    outer.Nested = &middle;
    EXPECT_EQ(Filtered(outer), raised);
  }
}

struct Thing : Object {
  Thing() {
    ReportedConstruction(kHere, [] {});
  }
};

class Faulty : public std::exception {
  const char* what() const noexcept override {
    faults::NullRead();
    return "";
  }
};

// The host's code runs within the member's boundary, too.
TEST_F(basErrorTest, FaultsWhileReportingAreContained) {
  EXPECT_EQ(
      InChild([&] {
        const Thing startsUp;
        auto faulting = New<Host>();
        const std::weak_ptr<Host> watched = faulting;
        faulting->reply = [] {
          faults::NullRead();
          return 0;
        };
        basError::goErr() = std::move(faulting);
        Member([] { throw Error(5, u"own words"); });
        basError::goErr() = nullptr;
        Member([] { throw Faulty(); });
        return ToUtf8(boxes.at(0) + u"\n" + boxes.at(1)) + (watched.expired() ? "" : "\nkept for ever");
      }),
      "Application Error|48|Application error: (#10005) Application-defined or object-defined error occurred "
      "while trying to display:\r\n\r\nError# 5: own words, Location: TORVA35 - clsThing.Do; Line: 20\n"
      "Application Error|48|Error# 10005: Access Violation, Location: TORVA35 - clsThing.Do; Line: 20");
}

}  // namespace
}  // namespace TORVA35
