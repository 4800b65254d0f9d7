#include "torva35/platform/Desktop.h"

#include <cstdio>
#include <string>
#include <utility>

#include "torva35/base/Text.h"
#include "torva35/platform/ThreadOwned.h"

namespace TORVA35 {
namespace {

struct Hooks {
  MessageBoxHook messageBox;
  MousePointerHook mousePointer;
};

Hooks*& OwnHooks() {
  static thread_local Hooks* hooks = nullptr;
  return hooks;
}

Hooks& ThreadHooks() {
  return ThreadOwned<OwnHooks>();
}

}  // namespace

void SetMessageBoxHook(MessageBoxHook hook) {
  ThreadHooks().messageBox = std::move(hook);
}
void SetMousePointerHook(MousePointerHook hook) {
  ThreadHooks().mousePointer = std::move(hook);
}

void ShowMessageBox(const String& sText, const String& sTitle, Long lStyle) {
  if (const MessageBoxHook hook = ThreadHooks().messageBox) {
    hook(sText, sTitle, lStyle);
    return;
  }
  const std::string line = ToUtf8(sTitle) + "\n" + ToUtf8(sText) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void SetDefaultMousePointer() {
  if (const MousePointerHook hook = ThreadHooks().mousePointer) hook();
}

}  // namespace TORVA35
