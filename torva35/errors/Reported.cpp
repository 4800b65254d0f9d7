#include "torva35/errors/Reported.h"

#include "torva35/errors/Caught.h"
#include "torva35/errors/basError.h"
#include "torva35/errors/modStartup.h"
#include "torva35/errors/modvbCodeShieldSupport.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {

namespace {

// Guarded: what a foreign exception says of itself comes from the host's code.
// A line that a host has given is none of the member's: then it is that of the statement that called the host's
// object.
void ReportInFlight(Location where, CallSite member, std::uint_least32_t statement) {
  RunGuarded([&] {
    const Error error = CaughtError();
    Long line = error.Line();
    if (line > 0 && !error.IsLineOfLibrary()) line = static_cast<Long>(statement);
    if (line <= 0) line = static_cast<Long>(member.Line());
    basError::ReportError(line, error.Number(), 0, error.Description(), String(where.Text()), {}, {}, {}, {}, 1,
                          {}, {}, {}, false);
  });
}

}  // namespace

void ReportCaught(Location where, CallSite member) noexcept {
  const std::uint_least32_t statement = kept::lastStatement;
  try {
    ReportInFlight(where, member, statement);
  } catch (...) {
    // There is no telling what has failed, so that is what gets reported.
    try {
      ReportInFlight(where, member, statement);
    } catch (...) {
      // Memory is exhausted to the last: there is nothing to build a report from.
    }
  }
}

void StartUp() {
  // Asked for the outcome, so that a start-up for which memory was short is made up for.
  if (!modvbCodeShieldSupport::IsExceptionFilterInstalled()) modStartup::Main();
}

}  // namespace TORVA35
