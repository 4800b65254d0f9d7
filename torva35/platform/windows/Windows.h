#pragma once

// The one place that includes the system's header, without its macros `min` and `max` and what nobody here needs.
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <string>

#include "torva35/base/Types.h"

namespace TORVA35::windows {

/// The path as the system takes it, whatever its length.
std::wstring SystemPath(const String& path);

/// Why a call has failed, by the number that it has left.
String Words(DWORD error);

/// An open file, or none; closed at the end.
class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { Close(); }

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle_; }
  void Take(HANDLE handle) {
    Close();
    handle_ = handle;
  }
  bool Close();

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace TORVA35::windows
