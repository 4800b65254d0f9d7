#include "torva35/platform/FaultGuard.h"

#include <atomic>
#include <utility>

#include "torva35/platform/Kept.h"

namespace TORVA35 {
namespace {

std::atomic<ExceptionFilter> registered{nullptr};

// What a member keeps of the one around it.
class Running {
 public:
  Running() : outerStatement_(std::exchange(kept::statement, 0)) {}
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { kept::lastStatement = std::exchange(kept::statement, outerStatement_); }

 private:
  std::uint_least32_t outerStatement_;
};

}  // namespace

ExceptionFilter SetUnhandledExceptionFilter(ExceptionFilter filter) {
  return registered.exchange(filter, std::memory_order_relaxed);
}

void RunGuardedBody(void (*run)(void* body), void* body) {
  const Running running;
  run(body);
}

}  // namespace TORVA35
