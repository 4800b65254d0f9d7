#include "torva35/errors/Reported.h"

#include "torva35/errors/Caught.h"
#include "torva35/errors/basError.h"
#include "torva35/errors/modStartup.h"
#include "torva35/errors/modvbCodeShieldSupport.h"

namespace TORVA35 {

namespace {

// Guarded: what a foreign exception says of itself comes from the host's code.
void ReportInFlight(Location where, CallSite member) {
  RunGuarded([&] {
    const Error error = CaughtError();
    const Long line = error.Line() > 0 ? error.Line() : static_cast<Long>(member.Line());
    basError::ReportError(line, error.Number(), 0, error.Description(), String(where.Text()), {}, {}, {}, {}, 1,
                          {}, {}, {}, false);
  });
}

}  // namespace

void ReportCaught(Location where, CallSite member) noexcept {
  try {
    ReportInFlight(where, member);
  } catch (...) {
    // There is no telling what has failed, so that is what gets reported.
    try {
      ReportInFlight(where, member);
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
