#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "base/Text.h"
#include "errors/ErrorObject.h"
#include "errors/basError.h"
#include "platform/Desktop.h"

namespace TORVA35 {

/// One failure as it reached the error object, without the line.
struct Failure {
  Long number = 0;
  String location;

  friend bool operator==(const Failure&, const Failure&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Failure& failure) {
    return out << failure.number << " at " << ToUtf8(failure.location);
  }
};

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
    failures.push_back({*vNumber.As<Long>(), sLocation.substr(0, mark)});
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

  std::vector<Failure> failures;
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
    EXPECT_EQ(host->failures, std::vector<Failure>());
    EXPECT_EQ(host->dialogs, std::vector<Dialog>());
    basError::goErr() = nullptr;
  }

  std::vector<Failure> TakeFailures() { return std::exchange(host->failures, {}); }
  std::vector<Dialog> TakeDialogs() { return std::exchange(host->dialogs, {}); }

  const Ref<Recorder> host = New<Recorder>();
};

using Failures = std::vector<Failure>;
using Dialogs = std::vector<Dialog>;

}  // namespace TORVA35
