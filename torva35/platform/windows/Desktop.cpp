#include "torva35/platform/Desktop.h"

#include <cstdio>
#include <string>

#include "torva35/base/Text.h"
#include "torva35/platform/windows/Windows.h"

namespace TORVA35 {
namespace {

// A program with windows, and somebody before them: it has no standard error, and a box can be seen and closed.
bool HasWindowsOnly() {
  const HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
  if (error != nullptr && error != INVALID_HANDLE_VALUE) return false;
  USEROBJECTFLAGS flags{};
  return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, nullptr) != 0 &&
         (flags.dwFlags & WSF_VISIBLE) != 0;
}

}  // namespace

void ShowSystemMessageBox(const String& sText, const String& sTitle, Long lStyle) {
  if (HasWindowsOnly()) {
    const std::wstring text(sText.begin(), sText.end());
    const std::wstring title(sTitle.begin(), sTitle.end());
    if (MessageBoxW(nullptr, text.c_str(), title.c_str(), static_cast<UINT>(lStyle) | MB_TASKMODAL) != 0) return;
  }
  const std::string line = ToUtf8(sTitle) + "\n" + ToUtf8(sText) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void SetSystemMousePointer() {
  if (HasWindowsOnly()) SetCursor(LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW)));
}

}  // namespace TORVA35
