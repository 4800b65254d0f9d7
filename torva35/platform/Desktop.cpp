#include "torva35/platform/Desktop.h"

#include <utility>

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
  } else {
    ShowSystemMessageBox(sText, sTitle, lStyle);
  }
}

void SetDefaultMousePointer() {
  if (const MousePointerHook hook = ThreadHooks().mousePointer) {
    hook();
  } else {
    SetSystemMousePointer();
  }
}

}  // namespace TORVA35
