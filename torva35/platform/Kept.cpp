#include "torva35/platform/Kept.h"

#include <vector>

#include "torva35/platform/FaultGuard.h"
#include "torva35/platform/ThreadOwned.h"

namespace TORVA35::kept {
namespace {

using Slots = std::vector<Ref<const void>>;

thread_local Slots* slots = nullptr;

Slots*& OwnSlots() {
  return slots;
}

}  // namespace

constinit thread_local std::uint_least32_t statement = 0;
constinit thread_local std::uint_least32_t lastStatement = 0;

std::size_t Take(Ref<const void> object) {
  if (object == nullptr) return kNone;
  Slots& all = ThreadOwned<OwnSlots>();
  all.push_back(std::move(object));
  return all.size() - 1;
}

const Ref<const void>& In(std::size_t slot) noexcept {
  return (*slots)[slot];
}

void Release(std::size_t slot) noexcept {
  if (slot == kNone) return;
  // Gone from its slot first, since what it releases may keep something in turn.
  const Ref<const void> released = std::move((*slots)[slot]);
  while (!slots->empty() && slots->back() == nullptr) slots->pop_back();
}

std::size_t Count() noexcept {
  return slots == nullptr ? 0 : slots->size();
}

void ReleaseFrom(std::size_t slot) noexcept {
  while (Count() > slot) {
    const std::size_t last = slots->size() - 1;
    try {
      RunGuarded([last] { Release(last); });
    } catch (...) {
      // Its slot is empty.
    }
    // Those above what has faulted.
    while (!slots->empty() && slots->back() == nullptr) slots->pop_back();
  }
}

}  // namespace TORVA35::kept
