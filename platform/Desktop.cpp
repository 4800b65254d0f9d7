#include "platform/Desktop.h"

#include <cstdio>
#include <string>
#include <utility>

#include "base/Text.h"

namespace TORVA35 {
namespace {

thread_local MessageBoxHook messageBox;
thread_local MousePointerHook mousePointer;

}  // namespace

void SetMessageBoxHook(MessageBoxHook hook) { messageBox = std::move(hook); }
void SetMousePointerHook(MousePointerHook hook) { mousePointer = std::move(hook); }

void ShowMessageBox(const String& sText, const String& sTitle, Long lStyle) {
  if (const MessageBoxHook hook = messageBox) {
    hook(sText, sTitle, lStyle);
    return;
  }
  const std::string line = ToUtf8(sTitle) + "\n" + ToUtf8(sText) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void SetDefaultMousePointer() {
  if (const MousePointerHook hook = mousePointer) hook();
}

}  // namespace TORVA35
