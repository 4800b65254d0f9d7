#include "errors/basError.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

#include "base/Text.h"
#include "errors/ErrorObject.h"
#include "errors/Reported.h"
#include "platform/Desktop.h"

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
    const String others =
        sArgument5 + sArgument6 + sArgument7 + sArgument8 + sArgument10 + sArgument11 + sArgument12;
    calls.push_back(TextOf(vNumber) + u"|" + Decimal(lArgument2) + u"|" + sDescription + u"|" + sLocation + u"|" +
                    others + u"|" + Decimal(lArgument9) + u"|" + TextOf(bArgument13));
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

  const Ref<Host> host = New<Host>();
  std::vector<String> boxes;
};

TEST_F(basErrorTest, WithoutAnErrorObjectAMessageBoxShows) {
  EXPECT_EQ(Report(50), 0);
  EXPECT_EQ(Report(0, -7), 0);
  Report(-1);
  EXPECT_EQ(boxes, (std::vector<String>{
                       u"Application Error|48|Error# 457: Duplicate, Location: TORVA35 - x.Add; Line: 50",
                       u"Application Error|48|Error# -7: Duplicate, Location: TORVA35 - x.Add",
                       u"Application Error|48|Error# 457: Duplicate, Location: TORVA35 - x.Add"}));
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
  const std::function<TaggedValue()> replies[] = {[] { return Null; },
                                                  [] { return 32768; },
                                                  []() -> TaggedValue { throw Error(1234, u"own words"); },
                                                  []() -> TaggedValue { throw std::runtime_error("foreign"); },
                                                  []() -> TaggedValue { throw std::bad_alloc(); },
                                                  []() -> TaggedValue { throw 5; }};
  for (const auto& reply : replies) {
    host->reply = reply;
    EXPECT_EQ(Report(50), 0);
  }
  EXPECT_EQ(boxes, (std::vector<String>{Stopped(u"(#438) Object does not support this method"),
                                        Stopped(u"(#13) Type mismatch"), Stopped(u"(#6) Overflow"),
                                        Stopped(u"(#1234) Application-defined or object-defined error"),
                                        Stopped(u"(#51) Internal error"), Stopped(u"(#7) Out of memory"),
                                        Stopped(u"(#51) Internal error")}));
}

TEST_F(basErrorTest, PointerComesBeforeTheLine) {
  basError::goErr() = host;
  SetMousePointerHook([] { throw Error(5, u""); });
  EXPECT_EQ(Report(50), 0);
  EXPECT_EQ(boxes, std::vector<String>{Stopped(u"(#5) Invalid procedure call or argument", u"")});
  EXPECT_TRUE(host->calls.empty());
}

TEST_F(basErrorTest, ReportSurvivesAMessageBoxThatFails) {
  SetMessageBoxHook([](const String&, const String&, Long) { throw 1; });
  EXPECT_EQ(Report(50), 0);
}

// The error object takes itself out of the slot, which must not end it in the middle of its call.
TEST_F(basErrorTest, ErrorObjectLivesThroughItsCall) {
  auto passing = New<Host>();
  const std::weak_ptr<Host> watched = passing;
  passing->reply = [&] {
    basError::goErr() = nullptr;
    return watched.expired() ? 1 : 2;
  };
  basError::goErr() = std::move(passing);
  EXPECT_EQ(Report(0), 2);
  EXPECT_TRUE(watched.expired());
}

TEST_F(basErrorTest, EachThreadHasASlotOfItsOwn) {
  basError::goErr() = host;
  const std::weak_ptr<Host> watched = [&] {
    std::weak_ptr<Host> other;
    std::thread([&] {
      EXPECT_EQ(basError::goErr(), nullptr);
      auto own = New<Host>();
      other = own;
      basError::goErr() = std::move(own);
      Report(0);
    }).join();
    return other;
  }();
  EXPECT_TRUE(watched.expired());
  EXPECT_TRUE(host->calls.empty());
  EXPECT_EQ(basError::goErr(), host);
}

TEST_F(basErrorTest, MsgBoxExNeedsAnObjectWithTheMethod) {
  const auto numberAndLine = [] {
    try {
      basError::MsgBoxEx(u"", u"", 152, Missing, u"&OK", Missing, CallSite::Current(77));
    } catch (const Error& error) {
      return std::pair(error.Number(), error.Line());
    }
    return std::pair(Long{0}, Long{0});
  };
  EXPECT_EQ(numberAndLine(), (std::pair<Long, Long>(91, 77)));
  basError::goErr() = New<WithoutMethods>();
  EXPECT_EQ(numberAndLine(), (std::pair<Long, Long>(438, 77)));
  basError::goErr() = host;
  EXPECT_EQ(numberAndLine(), (std::pair<Long, Long>(0, 0)));
}

// --- The boundary of the members ---

template <class Raise>
bool Member(Raise raise) {
  return Reported(
      kHere, false,
      [&](bool& result) {
        result = true;
        raise();
        result = false;
      },
      CallSite::Current(20));
}

TEST_F(basErrorTest, MemberReportsOnceAndGivesWhatItsResultHeld) {
  basError::goErr() = host;
  const std::pair<void (*)(), String> rows[] = {
      {[] { throw Error(1234, u"own words", 33); }, u"1234|0|own words|TORVA35 - clsThing.Do; Line: 33||1|False"},
      {[] { throw Error(1234, u"own words"); }, u"1234|0|own words|TORVA35 - clsThing.Do; Line: 20||1|False"},
      {[] { Raise(kOverflow, CallSite::Current(44)); }, u"6|0|Overflow|TORVA35 - clsThing.Do; Line: 44||1|False"},
      {[] { throw std::runtime_error("fóreign"); }, u"51|0|fóreign|TORVA35 - clsThing.Do; Line: 20||1|False"},
      {[] { throw std::runtime_error(""); }, u"51|0|Internal error|TORVA35 - clsThing.Do; Line: 20||1|False"},
      {[] { throw 5; }, u"51|0|Internal error|TORVA35 - clsThing.Do; Line: 20||1|False"},
      {[] { throw std::bad_alloc(); }, u"7|0|Out of memory|TORVA35 - clsThing.Do; Line: 20||1|False"}};
  for (const auto& [raise, call] : rows) {
    host->calls.clear();
    EXPECT_TRUE(Member(raise));
    EXPECT_EQ(host->calls, std::vector<String>{call});
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

}  // namespace
}  // namespace TORVA35
