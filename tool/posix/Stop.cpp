#include "../Stop.h"

#include <csignal>
#include <initializer_list>
#include <stdexcept>

namespace tool {
namespace {

volatile std::sig_atomic_t stopSignal = 0;

void Remember(int signal) {
  stopSignal = signal;
}

}  // namespace

void CatchStops() {
  struct sigaction action = {};
  action.sa_handler = Remember;  // without SA_RESTART, so that nothing goes on waiting
  sigemptyset(&action.sa_mask);
  for (const int signal : {SIGINT, SIGHUP, SIGTERM}) {
    struct sigaction before = {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);  // as under nohup
  }
}

void CheckStop() {
  if (stopSignal != 0) throw std::runtime_error("stopped");
}

void PassStop() {
  if (stopSignal == 0) return;
  std::signal(stopSignal, SIG_DFL);
  std::raise(stopSignal);
}

}  // namespace tool
