#include "Console.h"

#include <iostream>
#include <vector>

#include "System.h"
#include "TextTable.h"

namespace tool {

using namespace TORVA35;

namespace {

constexpr std::size_t kDialogWidth = 76;

// A button: the letter after the "&" of its caption chooses it.
struct Button {
  explicit Button(const std::string& utf8) {
    const String caption = FromUtf8(utf8);
    const std::size_t mark = caption.find(u'&');
    const std::size_t at = mark == caption.npos ? 0 : mark + 1;
    if (mark != caption.npos) name = caption.substr(0, mark);
    letter = caption.substr(at, 1);
    shown = name + u"[" + letter + u"]" + caption.substr(std::min(at + 1, caption.size()));
    name += caption.substr(at);
  }

  String name;    // OK
  String letter;  // O
  String shown;   // [O]K
};

void ShowText(StringView text) {
  for (const String& line : Split(text, u"\r\n")) {
    const std::size_t indent = line.find_first_not_of(u'\t');
    for (const String& part : Wrapped(StringView(line).substr(indent == line.npos ? 0 : indent), kDialogWidth)) {
      std::cerr << (indent == 0 || indent == line.npos ? "" : "    ") << OneLine(part) << '\n';
    }
  }
}

int Choose(const std::vector<Button>& buttons) {
  while (true) {
    for (const Button& button : buttons) std::cerr << OneLine(button.shown) << "  ";
    std::cerr << "> " << std::flush;
    std::string line;
    // The end of the input closes the dialog, which is what the last button does.
    if (!std::getline(std::cin, line)) return static_cast<int>(buttons.size()) - 1;
    const String answer(Trim(FromUtf8(line)));
    if (answer.empty()) return 0;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
      if (EqualNoCase(answer, buttons[i].letter) || EqualNoCase(answer, buttons[i].name))
        return static_cast<int>(i);
    }
  }
}

const char* Word(sheet::Severity severity) {
  switch (severity) {
    case sheet::Severity::kNote:
      return "note";
    case sheet::Severity::kWarning:
      return "warning";
    default:
      return "error";
  }
}

}  // namespace

int Console::Ask(const sheet::Dialog& dialog) {
  if (quiet_) return 0;
  EndProgress();
  const std::string about = OneLine(FromUtf8(dialog.file));
  const auto [seen, fresh] = seen_.emplace(dialog.title + dialog.text, about);
  std::cerr << "\n*** " << OneLine(FromUtf8(dialog.title)) << " ***" << (about.empty() ? "" : " (" + about + ")")
            << '\n';
  if (fresh) {
    ShowText(FromUtf8(dialog.text));
  } else {
    std::cerr << "As for " << seen->second << ".\n";
  }
  std::vector<Button> buttons(dialog.buttons.begin(), dialog.buttons.end());
  if (buttons.size() < 2) return 0;
  if (!IsTerminal(Stream::kInput) || !IsTerminal(Stream::kError)) {
    std::cerr << "(No terminal to ask: " << OneLine(buttons.front().name) << ")\n";
    return 0;
  }
  return Choose(buttons);
}

void Console::Show(const sheet::Progress& progress) {
  if (quiet_ || !IsTerminal(Stream::kError)) return;
  const std::string file = progress.file.empty() ? "" : " " + OneLine(FromUtf8(progress.file));
  std::cerr << "\r\x1b[K" << progress.step << file << " (" << progress.done + 1 << " of " << progress.total << ")"
            << std::flush;
  shown_ = true;
}

void Console::EndProgress() {
  if (shown_) std::cerr << "\r\x1b[K" << std::flush;
  shown_ = false;
}

void Console::Print(const sheet::Result& result) const {
  const sheet::Severity least = !quiet_   ? sheet::Severity::kNote
                                : strict_ ? sheet::Severity::kWarning
                                          : sheet::Severity::kError;
  for (const sheet::Finding& finding : result.findings) {
    if (finding.severity < least) continue;
    std::string place = "torva35";
    if (finding.file >= 0) place = OneLine(FromUtf8(result.files[static_cast<std::size_t>(finding.file)].name));
    if (finding.line > 0) place += ":" + std::to_string(finding.line);
    if (finding.column > 0) place += ":" + std::to_string(finding.column);
    const std::string number = finding.number > 0 ? "question " + std::to_string(finding.number) : "";
    const bool said = number.empty() || finding.text.find(number) != finding.text.npos;
    std::cerr << place << ": " << Word(finding.severity) << ": " << (said ? "" : number + ": ")
              << OneLine(FromUtf8(finding.text)) << '\n';
  }
}

void Console::Say(const std::string& text) {
  std::cerr << "torva35: " << OneLine(FromUtf8(text)) << '\n';
}

}  // namespace tool
