#include "torva35/platform/Kept.h"

#include <deque>

#include "torva35/platform/FaultGuard.h"
#include "torva35/platform/ThreadOwned.h"

namespace TORVA35::kept {
namespace {

using Slots = std::deque<Slot>;

thread_local Slots* slots = nullptr;

Slots*& OwnSlots() {
  return slots;
}

}  // namespace

constinit thread_local std::uint_least32_t statement = 0;
constinit thread_local std::uint_least32_t lastStatement = 0;

Slot& Next() {
  return ThreadOwned<OwnSlots>().emplace_back();
}

void RemoveFree() noexcept {
  while (!slots->empty() && slots->back().release == nullptr) slots->pop_back();
}

std::size_t Count() noexcept {
  return slots == nullptr ? 0 : slots->size();
}

void ReleaseFrom(std::size_t slot) noexcept {
  while (Count() > slot) {
    Slot& last = slots->back();
    try {
      RunGuarded([&last] { last.release(last); });
    } catch (...) {
      // Its slot is free.
    }
    // Those above what has faulted.
    RemoveFree();
  }
}

}  // namespace TORVA35::kept
