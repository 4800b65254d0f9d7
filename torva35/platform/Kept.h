#pragma once

#include <bit>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "torva35/base/CallSite.h"
#include "torva35/base/Object.h"

namespace TORVA35 {

/// The references that the calling thread's members hold while a host's objects run. They live outside the stack:
/// when a processor fault abandons the frames of a member, what these held is released all the same.
namespace kept {

inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

/// Takes a reference over and gives its slot; kNone for one that holds nothing.
std::size_t Take(Ref<const void> object);
/// What is in a slot.
const Ref<const void>& In(std::size_t slot) noexcept;
/// Releases what is in a slot.
void Release(std::size_t slot) noexcept;
/// How many slots are in use, or were below one that is.
std::size_t Count() noexcept;
/// Releases all slots from this one on, after a fault. What faults in turn while it goes is left as it is.
void ReleaseFrom(std::size_t slot) noexcept;

/// The line of the statement that last asked for a host's object, in the member that runs; 0 for none.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local std::uint_least32_t statement;
/// The same in the guarded call that has just ended.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local std::uint_least32_t lastStatement;

}  // namespace kept

/// A reference held by a frame that a fault may abandon. It is for everything that a member holds, other than
/// through its own object, while it calls what may be a host's object.
template <class T>
class Kept {
 public:
  explicit Kept(Ref<T> object) : object_(object.get()), slot_(kept::Take(std::move(object))) {}
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;
  ~Kept() { kept::Release(slot_); }

  T* get() const { return object_; }
  Ref<T> Share() const { return object_ == nullptr ? nullptr : Ref<T>(kept::In(slot_), object_); }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  T* object_;
  std::size_t slot_;
};

/// What may be a host's object, to call one of its members: `Ask(field).Name()`. A reference that holds nothing is
/// a raised failure (91) at the caller's line. The line is also that of an `Error` that the host's object throws.
///@{
template <class T>
T& Ask(const Ref<T>& reference, CallSite at = CallSite::Current()) {
  kept::statement = at.Line();
  return Need(reference, at);
}
template <class T>
T& Ask(const Kept<T>& reference, CallSite at = CallSite::Current()) {
  kept::statement = at.Line();
  return Need(reference.get(), at);
}
///@}

/// Calls a method whose first argument is a reference by value, and releases the argument should the method fault.
///
/// Such an argument lives in the caller's frame, which a fault abandons. The C++ ABI of all our compilers passes
/// it by its address, and the caller destroys it: so the method can be handed one that lives elsewhere.
template <class Host, class Class, class Result, class Item, class... Rest, class... Values>
Result HandOver(Host& host, Result (Class::*method)(Ref<Item>, Rest...),
                const std::type_identity_t<Ref<Item>>& item, Values&&... rest) {
  using ByAddress = Result (Class::*)(Ref<Item>&, Rest...);
  const Kept argument(std::make_shared<Ref<Item>>(item));
  return (host.*std::bit_cast<ByAddress>(method))(*argument, std::forward<Values>(rest)...);
}
template <class Host, class Class, class Result, class Item, class... Rest, class... Values>
Result HandOver(Host& host, Result (Class::*method)(Ref<Item>, Rest...),
                const std::type_identity_t<Kept<Item>>& item, Values&&... rest) {
  const Kept shared(std::make_shared<Ref<Item>>(item.Share()));
  return HandOver(host, method, *shared, std::forward<Values>(rest)...);
}

}  // namespace TORVA35
