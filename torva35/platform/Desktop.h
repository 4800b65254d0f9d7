#pragma once

#include <functional>

#include "torva35/base/Export.h"
#include "torva35/base/Types.h"

/// The two things that the library asks of the screen. Both are hooks, one of each per thread, like all that the
/// library keeps outside objects.
namespace TORVA35 {

/// Shows a modal message box. sText: lines are joined with CRLF. lStyle: 48 for one OK button and a warning icon.
using MessageBoxHook = std::function<void(const String& sText, const String& sTitle, Long lStyle)>;
/// Gives the mouse pointer its default shape.
using MousePointerHook = std::function<void()>;

/// Takes effect on the calling thread. An empty hook restores the default, which writes title and text to standard
/// error; on Windows, where a program without a console has none, it shows a message box instead.
TORVA35_API void SetMessageBoxHook(MessageBoxHook hook);
/// Takes effect on the calling thread. An empty hook restores the default, which does nothing but on Windows,
/// where a program without a console gets the arrow.
TORVA35_API void SetMousePointerHook(MousePointerHook hook);

/// For the library itself: calls the hook or does the default.
///@{
void ShowMessageBox(const String& sText, const String& sTitle, Long lStyle);
void SetDefaultMousePointer();
///@}

/// What a port owes: the defaults. Text and title come with what a message box of the system understands.
///@{
void ShowSystemMessageBox(const String& sText, const String& sTitle, Long lStyle);
void SetSystemMousePointer();
///@}

}  // namespace TORVA35
