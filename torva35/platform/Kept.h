#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "torva35/base/CallSite.h"
#include "torva35/base/Object.h"

namespace TORVA35 {

/// The references that the calling thread's members hold while a host's objects run. They live outside the stack:
/// when a processor fault abandons the frames of a member, what these held is released all the same.
namespace kept {

/// Removes the slots at the end that are free.
void RemoveFree() noexcept;

/// Holds one reference, or is free. It stays where it is as long as it holds one.
struct Slot {
  template <class T>
  void Take(Ref<T> reference) noexcept {
    new (bytes) Ref<T>(std::move(reference));
    release = [](Slot& slot) noexcept {
      // Gone from its slot first, since what it releases may keep something in turn.
      const Ref<T> released = std::move(slot.In<T>());
      std::destroy_at(&slot.In<T>());
      slot.release = nullptr;
      RemoveFree();
    };
  }
  template <class T>
  Ref<T>& In() noexcept {
    return *std::launder(reinterpret_cast<Ref<T>*>(bytes));
  }

  alignas(Ref<void>) std::byte bytes[sizeof(Ref<void>)];
  void (*release)(Slot& slot) noexcept = nullptr;  // null when it is free
};

/// A slot that is free, for the caller to fill at once.
Slot& Next();
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
  explicit Kept(Ref<T> object) : object_(object.get()), slot_(object == nullptr ? nullptr : &kept::Next()) {
    if (slot_ != nullptr) slot_->Take(std::move(object));
  }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;
  ~Kept() {
    if (slot_ != nullptr) slot_->release(*slot_);
  }

  T* get() const { return object_; }
  Ref<T> Share() const { return slot_ == nullptr ? nullptr : InPlace(); }
  /// The reference where it is kept. There must be one.
  Ref<T>& InPlace() const { return slot_->In<T>(); }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  T* object_;
  kept::Slot* slot_;
};

namespace kept {

template <class T>
Ref<T> Shared(const Ref<T>& reference) {
  return reference;
}
template <class T>
Ref<T> Shared(const Kept<T>& reference) {
  return reference.Share();
}

}  // namespace kept

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

/// The method under another type, which has to be one that the binary interface calls the same way. (Not every
/// standard library has `std::bit_cast`.)
template <class To, class From>
To MethodAs(From method) noexcept {
  static_assert(sizeof(To) == sizeof(From));
  To as;
  std::memcpy(&as, &method, sizeof as);
  return as;
}

/// Calls a method whose first argument is a reference by value, and releases the argument should the method fault.
///
/// Such an argument lives in the caller's frame, which a fault abandons. The C++ ABI of all systems with faults
/// passes it by its address, and the caller destroys it: so the method can be handed one that lives elsewhere.
/// item: a `Ref` or a `Kept`.
template <class Host, class Class, class Result, class Item, class... Rest, class Held, class... Values>
Result HandOver(Host& host, Result (Class::*method)(Ref<Item>, Rest...), const Held& item, Values&&... rest) {
#if defined(__wasm__)
  // No fault abandons a frame there, and the standard library's references are their callee's to destroy.
  return (host.*method)(kept::Shared(item), std::forward<Values>(rest)...);
#else
  using ByAddress = Result (Class::*)(Ref<Item>&, Rest...);
  const Kept<Item> argument(kept::Shared(item));
  Ref<Item> nothing;
  return (host.*MethodAs<ByAddress>(method))(argument ? argument.InPlace() : nothing,
                                             std::forward<Values>(rest)...);
#endif
}

}  // namespace TORVA35
