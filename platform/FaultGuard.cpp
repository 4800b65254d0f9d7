#include "platform/FaultGuard.h"

namespace TORVA35 {

void RunGuardedBody(void (*run)(void* body), void* body) { run(body); }

}  // namespace TORVA35
