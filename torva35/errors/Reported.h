#pragma once

#include <cstddef>
#include <utility>

#include "torva35/base/CallSite.h"
#include "torva35/base/Object.h"
#include "torva35/base/Types.h"
#include "torva35/platform/FaultGuard.h"

/// The one boundary of the library's members. A member runs its body through one of these calls; nothing that the
/// body raises leaves the member, and the caller gets what the result held at that moment.
namespace TORVA35 {

/// The name under which a member reports: "TORVA35 - " + class or module + "." + member.
class Location {
 public:
  // consteval: the length is counted once, when the library is compiled.
  template <std::size_t size>
  consteval Location(const char16_t (&text)[size]) : text_(text, size - 1) {}

  StringView Text() const { return text_; }

 private:
  StringView text_;
};

/// Reports the exception in flight. member: where the member begins, for a failure that knows no line of its own.
void ReportCaught(Location where, CallSite member) noexcept;

/// Runs the library's start-up on the first call on each thread.
void StartUp();

/// Runs `body(result)` and returns the result. A failure is reported under `where`.
template <class Result, class Body>
Result Reported(Location where, Result result, Body&& body, CallSite member = CallSite::Current()) noexcept {
  try {
    RunGuarded([&] { body(result); });
  } catch (...) {
    ReportCaught(where, member);
  }
  return result;
}

/// The same for a member without a result.
template <class Body>
void Reported(Location where, Body&& body, CallSite member = CallSite::Current()) noexcept {
  try {
    RunGuarded(body);
  } catch (...) {
    ReportCaught(where, member);
  }
}

/// The same for a constructor: what may fail is set up in the body, since a member initialiser runs before the
/// boundary stands.
template <class Body>
void ReportedConstruction(Location where, Body&& body, CallSite member = CallSite::Current()) noexcept {
  Reported(
      where,
      [&] {
        StartUp();
        body();
      },
      member);
}

/// Releases the references of an object that goes, one by one. What one of them raises, or faults with, while it
/// goes is reported, and the others go all the same.
template <class... T>
void ReportedRelease(Location where, CallSite member, Ref<T>&... references) noexcept {
  (Reported(
       where, [&] { references.reset(); }, member),
   ...);
}
/// Likewise those of a list, from the last.
template <class List>
void ReportedReleaseItems(Location where, CallSite member, List& items) noexcept {
  for (Long i = items.Count(); i >= 1; --i)
    Reported(
        where, [&] { items.Remove(i); }, member);
}

/// Runs `body(result)` and returns the result; a failure is not reported.
template <class Result, class Body>
Result Silently(Result result, Body&& body) noexcept {
  try {
    RunGuarded([&] { body(result); });
  } catch (...) {
    // The result stands as it was.
  }
  return result;
}

}  // namespace TORVA35
