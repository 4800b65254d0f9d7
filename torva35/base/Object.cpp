#include "torva35/base/Object.h"

namespace TORVA35 {
namespace {

std::atomic<std::int64_t> alive{0};

}  // namespace

Object::Object() : counted_(true) {
  alive.fetch_add(1, std::memory_order_relaxed);
}

Object::Object(OfHost) : counted_(false) {}

Object::~Object() {
  if (counted_) alive.fetch_sub(1, std::memory_order_relaxed);
}

std::int64_t Object::AliveCount() {
  return alive.load(std::memory_order_relaxed);
}

}  // namespace TORVA35
