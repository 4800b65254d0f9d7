#include "../Stop.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>

namespace tool {
namespace {

std::atomic<bool> stopped{false};
std::atomic<bool> ended{false};

// Runs on a thread of its own. For all but Ctrl+C and Ctrl+Break the system ends the process when it returns.
BOOL WINAPI Remember(DWORD event) {
  stopped = true;
  constexpr int kMostSteps = 40;
  for (int i = 0; event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && !ended && i < kMostSteps; ++i) Sleep(100);
  return TRUE;
}

}  // namespace

void CatchStops() {
  SetConsoleCtrlHandler(Remember, TRUE);
}

void CheckStop() {
  if (stopped) throw std::runtime_error("stopped");
}

void PassStop() {
  ended = true;
  // The console gets back what it was.
  if (stopped) std::exit(static_cast<int>(STATUS_CONTROL_C_EXIT));
}

}  // namespace tool
