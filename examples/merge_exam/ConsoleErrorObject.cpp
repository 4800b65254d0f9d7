#include "merge_exam/ConsoleErrorObject.h"

#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "merge_exam/TextTable.h"

namespace merge_exam {

using namespace TORVA35;

namespace {

constexpr Long kOk = 1;
constexpr Long kCancel = 2;  // one of the two replies that refuse the partial-credit question
constexpr std::size_t kDialogWidth = 76;

// A button: the letter behind the "&" of its caption chooses it.
struct Button {
  explicit Button(StringView caption) {
    const std::size_t mark = caption.find(u'&');
    const std::size_t at = mark == caption.npos ? 0 : mark + 1;
    if (mark != caption.npos) name = String(caption.substr(0, mark));
    letter = String(caption.substr(at, 1));
    shown = name + u"[" + letter + u"]" + String(caption.substr(std::min(at + 1, caption.size())));
    name += caption.substr(at);
  }

  String name;    // OK
  String letter;  // O
  String shown;   // [O]K
};

// The place of the chosen button.
std::size_t Ask(const std::vector<Button>& buttons) {
  if (isatty(STDIN_FILENO) == 0) {
    std::cerr << "(No terminal to ask: " << OneLine(buttons[0].name) << ")\n\n";
    return 0;
  }
  while (true) {
    for (const Button& button : buttons) std::cerr << OneLine(button.shown) << "  ";
    std::cerr << "> " << std::flush;
    std::string line;
    // The end of the input closes the dialog, which is what the last button does.
    if (!std::getline(std::cin, line)) return buttons.size() - 1;
    const String answer(Trim(FromUtf8(line)));
    if (answer.empty()) return 0;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
      if (EqualNoCase(answer, buttons[i].letter) || EqualNoCase(answer, buttons[i].name)) return i;
    }
  }
}

void ShowText(StringView text) {
  for (const String& line : Split(text, u"\r\n")) {
    const std::size_t indent = line.find_first_not_of(u'\t');
    for (const String& part : Wrapped(StringView(line).substr(indent == line.npos ? 0 : indent), kDialogWidth)) {
      std::cerr << (indent == 0 || indent == line.npos ? "" : "    ") << OneLine(part) << '\n';
    }
  }
}

}  // namespace

TaggedValue ConsoleErrorObject::RaiseError(TaggedValue& vNumber, Long&, String& sDescription, String& sLocation,
                                           String&, String&, String&, String&, Long&, String&, String&, String&,
                                           bool&) {
  ++failureCount_;
  std::cerr << "merge_exam: failure " << OneLine(basPublic::CString(vNumber)) << ": " << OneLine(sDescription)
            << " (" << OneLine(sLocation) << ")\n";
  return Integer{0};
}

TaggedValue ConsoleErrorObject::MsgBoxEx(String sTitle, String sText, Long, TaggedValue, String sButton1,
                                         TaggedValue vButton2) {
  std::vector<Button> buttons = {Button(sButton1)};
  if (const String* button = vButton2.As<String>()) buttons.emplace_back(*button);

  std::cerr << "\n*** " << OneLine(sTitle) << " ***\n";
  ShowText(sText);
  return Ask(buttons) == 0 ? kOk : kCancel;
}

}  // namespace merge_exam
