#pragma once

#include <cstdio>
#include <functional>
#include <string>

#include "InChild.h"
#include "torva35/platform/FaultGuard.h"

namespace TORVA35 {

[[noreturn]] inline Long Throwing(ExceptionPointers& pointers) {
  throw Error(static_cast<Long>(pointers.Record->Code), u"");
}

inline std::string Hex(Long code) {
  char text[16];
  snprintf(text, sizeof text, "%08X", static_cast<unsigned>(code));
  return text;
}

// What comes out of a member that runs the body: the code of the fault, or "-" when it comes to its end.
template <class Body>
std::string Member(Body body) {
  try {
    RunGuarded(body);
    return "-";
  } catch (const Error& error) {
    return Hex(error.Number());
  }
}

// What the body gives in a child process whose main thread is started up, after what `before` does.
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
