#pragma once

#if defined(_WIN32)
#include <windows.h>
#endif

namespace TORVA35 {

/// Whether the tests for Windows run under Wine, which does not do all that Windows does.
#if defined(_WIN32)
inline const bool kWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
#else
inline constexpr bool kWine = false;
#endif

}  // namespace TORVA35
