#include "torva35/platform/InputFile.h"

#include <algorithm>
#include <utility>

#include "torva35/platform/windows/Windows.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kNotAFile = u"not a file that can be read";

HANDLE Handle(std::intptr_t file) {
  return reinterpret_cast<HANDLE>(file);  // NOLINT(performance-no-int-to-ptr): such is a handle
}

bool IsFolder(const std::wstring& name) {
  const DWORD attributes = GetFileAttributesW(name.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

InputFile::InputFile(const String& path) {
  // A path cannot hold a NUL; cut off there it would name another file.
  if (path.find(u'\0') != path.npos) {
    problem_ = windows::Words(ERROR_FILE_NOT_FOUND);
    return;
  }
  const std::wstring name = windows::SystemPath(path);
  // Shared with whoever reads, writes, renames or replaces it. A pipe's other end may not act in our name.
  file_ = reinterpret_cast<std::intptr_t>(CreateFileW(
      name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
      FILE_ATTRIBUTE_NORMAL | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
  const DWORD error = GetLastError();
  LARGE_INTEGER size{};
  if (file_ == -1) {
    problem_ = IsFolder(name)             ? String(u"Is a directory")
               : error == ERROR_PIPE_BUSY ? String(kNotAFile)
                                          : windows::Words(error);
  } else if (GetFileType(Handle(file_)) != FILE_TYPE_DISK) {
    problem_ = kNotAFile;
  } else if (GetFileSizeEx(Handle(file_), &size) == 0) {
    problem_ = windows::Words(GetLastError());
  } else {
    size_ = size.QuadPart;
  }
}

InputFile::~InputFile() {
  if (file_ != -1) CloseHandle(Handle(file_));
}

InputFile::InputFile(InputFile&& other) noexcept
    : file_(std::exchange(other.file_, -1)), size_(other.size_), problem_(std::move(other.problem_)) {}

std::size_t InputFile::ReadAt(std::int64_t offset, char* bytes, std::size_t size) {
  constexpr std::size_t kMost = std::size_t{1} << 30;  // for one call
  std::size_t done = 0;
  while (done < size && problem_.empty()) {
    const std::int64_t at = offset + static_cast<std::int64_t>(done);
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(at & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(at >> 32);
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(size - done, kMost));
    if (ReadFile(Handle(file_), bytes + done, wanted, &count, &place) == 0) {
      if (GetLastError() != ERROR_HANDLE_EOF) problem_ = windows::Words(GetLastError());
      break;
    }
    if (count == 0) break;
    done += count;
  }
  return done;
}

}  // namespace TORVA35
