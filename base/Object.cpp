#include "base/Object.h"

namespace TORVA35 {
namespace {

std::atomic<std::int64_t> alive{0};

}  // namespace

Object::Object() {
  alive.fetch_add(1, std::memory_order_relaxed);
}

Object::~Object() {
  alive.fetch_sub(1, std::memory_order_relaxed);
}

std::int64_t Object::AliveCount() {
  return alive.load(std::memory_order_relaxed);
}

}  // namespace TORVA35
