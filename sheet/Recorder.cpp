#include "Recorder.h"

#include <utility>

namespace TORVA35::sheet {
namespace {

constexpr Long kOk = 1;
constexpr Long kCancel = 2;

// Without the line breaks and indents, which only a dialog needs.
std::string InOneLine(StringView text) {
  String line;
  for (const char16_t unit : text) {
    const bool blank = unit == u'\r' || unit == u'\n' || unit == u'\t' || unit == u' ';
    if (!blank) {
      line += unit;
    } else if (!line.empty() && line.back() != u' ') {
      line += u' ';
    }
  }
  return ToUtf8(Trim(line));
}

}  // namespace

void Recorder::About(std::string file, Ref<clsTORVATest> oTest) {
  file_ = std::move(file);
  test_ = std::move(oTest);
}

std::vector<Failure> Recorder::TakeFailures() {
  return std::exchange(failures_, {});
}

std::string Recorder::TakeDialog() {
  return std::exchange(dialog_, {});
}

void Recorder::Rethrow() {
  if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
}

TaggedValue Recorder::RaiseError(TaggedValue&, Long&, String& sDescription, String& sLocation, String&, String&,
                                 String&, String&, Long&, String&, String&, String&, bool&) {
  failures_.push_back({ToUtf8(sDescription), ToUtf8(sLocation), test_ ? test_->Questions()->Count() : 0});
  return Integer{0};
}

TaggedValue Recorder::MsgBoxEx(String sTitle, String sText, Long, TaggedValue, String sButton1,
                               TaggedValue vButton2) {
  dialog_ = InOneLine(sText);
  if (!options_.ask) return kOk;
  Dialog dialog{ToUtf8(sTitle), ToUtf8(sText), {ToUtf8(sButton1)}, file_};
  if (const String* button = vButton2.As<String>()) dialog.buttons.push_back(ToUtf8(*button));
  try {
    return options_.ask(dialog) == 0 ? kOk : kCancel;
  } catch (...) {
    thrown_ = std::current_exception();
    return kCancel;
  }
}

}  // namespace TORVA35::sheet
