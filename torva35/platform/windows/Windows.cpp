#include "torva35/platform/windows/Windows.h"

#include <utility>

namespace TORVA35::windows {

std::wstring SystemPath(const String& path) {
  // Beyond this many characters a path needs a form in which it stands as a whole, and with no other "/" or "..".
  constexpr std::size_t kPlain = 240;
  std::wstring name(path.begin(), path.end());
  if (name.size() < kPlain || name.starts_with(L"\\\\?\\")) return name;
  std::wstring whole(32768, L'\0');
  const DWORD size = GetFullPathNameW(name.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr);
  if (size == 0 || size >= whole.size()) return name;
  whole.resize(size);
  return whole.starts_with(L"\\\\") ? L"\\\\?\\UNC" + whole.substr(1) : L"\\\\?\\" + whole;
}

String Words(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_NOT_READY:
      return u"No such file or directory";
    case ERROR_ACCESS_DENIED:
      return u"Permission denied";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return u"another program keeps the file to itself";
    default:
      break;
  }
  wchar_t text[512];
  DWORD size = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                              sizeof text / sizeof *text, nullptr);
  while (size > 0 && (text[size - 1] <= L' ' || text[size - 1] == L'.')) --size;
  return size > 0 ? String(text, text + size) : String(u"input/output error");
}

bool Handle::Close() {
  const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
  return handle == INVALID_HANDLE_VALUE || CloseHandle(handle) != 0;
}

}  // namespace TORVA35::windows
