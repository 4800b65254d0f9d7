#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "torva35/base/Text.h"
#include "torva35/errors/ErrorObject.h"
#include "torva35/errors/basError.h"
#include "torva35/platform/Desktop.h"

namespace TORVA35 {

/// One dialog as it reached the error object.
struct Dialog {
  String title;
  String text;
  Long style = 152;
  bool hasOwner = true;
  String button1 = u"&OK";
  std::optional<String> button2 = std::nullopt;

  friend bool operator==(const Dialog&, const Dialog&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Dialog& dialog) {
    return out << ToUtf8(dialog.title) << ": " << ToUtf8(dialog.text) << " (" << dialog.style << ", "
               << (dialog.hasOwner ? "owned" : "no owner") << ", " << ToUtf8(dialog.button1) << ", "
               << ToUtf8(dialog.button2.value_or(u"-")) << ")";
  }
};

/// An error object that keeps what it is told.
class Recorder : public ErrorObject {
 public:
  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String&, String& sLocation, String&, String&, String&,
                         String&, Long&, String&, String&, String&, bool&) override {
    const StringView label = u"; Line: ";
    const std::size_t mark = sLocation.rfind(label);
    const bool named = sLocation.starts_with(u"TORVA35 - ");
    failures.push_back(ToUtf8(Decimal(*vNumber.As<Long>()) + (named ? u" " : u" !") +
                              sLocation.substr(named ? 10 : 0, mark - (named ? 10 : 0))));
    lines.push_back(mark == String::npos ? 0 : std::stoi(ToUtf8(sLocation.substr(mark + label.size()))));
    if (onFailure) onFailure();
    return 0;
  }

  TaggedValue MsgBoxEx(String sTitle, String sText, Long lStyle, TaggedValue vOwner, String sButton1,
                       TaggedValue vButton2) override {
    const auto* button2 = vButton2.As<String>();
    dialogs.push_back({std::move(sTitle), std::move(sText), lStyle, vOwner.IsObject(), std::move(sButton1),
                       button2 == nullptr ? std::nullopt : std::optional(*button2)});
    if (onDialog) onDialog();
    return reply;
  }

  // Number and location. The library's name is left out before the location; where it is missing is a "!".
  std::vector<std::string> failures;
  std::vector<Long> lines;  // of the failures, 0 where none is known
  std::vector<Dialog> dialogs;
  TaggedValue reply = 6;
  std::function<void()> onDialog;
  std::function<void()> onFailure;
};

/// A test with a recorder as the library's error object. Every failure and dialog that a test provokes, it takes
/// out again with `TakeFailures` and `TakeDialogs`; what is left over at the end fails it.
class HostTest : public testing::Test {
 protected:
  HostTest() { basError::goErr() = host; }
  ~HostTest() override {
    EXPECT_EQ(TakeFailures(), "");
    EXPECT_EQ(host->dialogs, std::vector<Dialog>());
    basError::goErr() = nullptr;
  }

  std::string TakeFailures() {
    std::string text;
    for (const std::string& failure : std::exchange(host->failures, {}))
      text += (text.empty() ? "" : ", ") + failure;
    return text;
  }
  std::vector<Dialog> TakeDialogs() { return std::exchange(host->dialogs, {}); }

  const Ref<Recorder> host = New<Recorder>();
};

using Dialogs = std::vector<Dialog>;

}  // namespace TORVA35
