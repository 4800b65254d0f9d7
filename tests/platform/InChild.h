#pragma once

#include <signal.h>

#include <cstdio>
#include <functional>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "torva35/base/Error.h"
#include "torva35/platform/FaultGuard.h"

#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif

namespace TORVA35 {

#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = kThreadSanitizer;
#endif

#if defined(_WIN32)

/// Whether the tests for Windows run under Wine, which does not do all that Windows does.
inline const bool kWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;

/// Runs `body` and gives the text that it returns. No child is needed: no handler is put up for the process, and
/// what ends it is tested in another way.
template <class Body>
std::string InChild(Body body) {
  return body();
}

#else

constexpr bool kWine = false;

inline std::string NameOf(int signal) {
  switch (signal) {
    case SIGSEGV:
      return "SIGSEGV";
    case SIGBUS:
      return "SIGBUS";
    case SIGFPE:
      return "SIGFPE";
    case SIGILL:
      return "SIGILL";
    case SIGTRAP:
      return "SIGTRAP";
    case SIGKILL:
      return "SIGKILL";
    default:
      return "signal " + std::to_string(signal);
  }
}

/// How a process ends that nobody saves from a signal. A sanitizer's handler, which is the one that was there
/// before the library's, reports the fault and leaves.
inline std::string Ended(int signal) {
  if (kSanitized && signal != SIGTRAP && signal != SIGILL) return "ended by the sanitizer";
  return "ended by " + NameOf(signal);
}

/// Runs `body` in a child process and gives the text that it returns, or else how the child ended.
template <class Body>
std::string InChild(Body body) {
  int pipeEnds[2];
  if (pipe(pipeEnds) != 0) return "no pipe";
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);  // a fault that comes back for ever
    const std::string text = body();
    _exit(write(pipeEnds[1], text.data(), text.size()) < 0 ? 2 : 0);
  }
  close(pipeEnds[1]);
  std::string text;
  char buffer[512];
  for (ssize_t count; (count = read(pipeEnds[0], buffer, sizeof buffer)) > 0;) {
    text.append(buffer, static_cast<std::size_t>(count));
  }
  close(pipeEnds[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) return "ended by " + NameOf(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0) return kSanitized ? "ended by the sanitizer" : "ended early";
  return text;
}

#endif

[[noreturn]] inline Long Throwing(ExceptionPointers& pointers) {
  throw Error(static_cast<Long>(pointers.Record->Code), u"");
}

inline std::string Hex(Long code) {
  char text[16];
  snprintf(text, sizeof text, "%08X", static_cast<unsigned>(code));
  return text;
}

/// What comes out of a member that runs the body: the code of the fault, or "-" when it comes to its end.
template <class Body>
std::string Member(Body body) {
  try {
    RunGuarded(body);
    return "-";
  } catch (const Error& error) {
    return Hex(error.Number());
  }
}

/// What the body gives in a child process whose main thread is started up, after what `before` does.
template <class Body>
std::string InGuardedChild(
    Body body, const std::function<void()>& before = [] {}) {
  return InChild([&] {
    before();
    SetUnhandledExceptionFilter(Throwing);
    return std::string(body());
  });
}

}  // namespace TORVA35
