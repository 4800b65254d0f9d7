#pragma once

#include <concepts>
#include <type_traits>
#include <utility>
#include <variant>

#include "torva35/base/Object.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

struct EmptyValue {};    ///< the type of `Empty`
struct NullValue {};     ///< the type of `Null`
struct MissingValue {};  ///< the type of `Missing`

inline constexpr EmptyValue Empty{};      ///< no value was ever given
inline constexpr NullValue Null{};        ///< no valid value
inline constexpr MissingValue Missing{};  ///< the caller left the optional argument out

/// The whole numbers that C++ has beside Integer and Long.
template <class T>
concept OtherWhole = std::same_as<T, unsigned short> || std::same_as<T, unsigned> || std::same_as<T, long> ||
    std::same_as<T, unsigned long> || std::same_as<T, long long> || std::same_as<T, unsigned long long>;

/// A value that carries its own type. Every type that it can hold converts to it, so that a host writes `Item(5)`
/// for the position 5 and `Item(u"5")` for the key "5". A fresh one is Empty.
class TaggedValue {
 public:
  /// Empty.
  TaggedValue() = default;
  /// A copy or what another value held, as usual.
  ///@{
  // By assignment: where memory runs out in the variant's copy constructor, g++ 12's library destroys what was not
  // made.
  // cppcheck-suppress useInitializationList
  TaggedValue(const TaggedValue& other) { value_ = other.value_; }
  TaggedValue(TaggedValue&&) = default;
  TaggedValue& operator=(const TaggedValue&) = default;
  TaggedValue& operator=(TaggedValue&&) = default;
  ~TaggedValue() = default;
  ///@}
  /// The value under its own type; a text in any form is a String, and a null pointer a reference that holds
  /// nothing. A single character is no value: write it as a text.
  ///@{
  TaggedValue(EmptyValue) {}
  TaggedValue(NullValue value) : value_(value) {}
  TaggedValue(MissingValue value) : value_(value) {}
  // A template, so that no pointer turns into a Boolean.
  template <std::same_as<bool> Boolean>
  TaggedValue(Boolean value) : value_(value) {}
  TaggedValue(Integer value) : value_(value) {}
  TaggedValue(Long value) : value_(value) {}
  /// A Long, or a Double when it does not fit.
  template <OtherWhole Whole>
  TaggedValue(Whole value) {
    if (std::in_range<Long>(value)) {
      value_ = static_cast<Long>(value);
    } else {
      value_ = static_cast<Double>(value);
    }
  }
  template <Character Unit>
  TaggedValue(Unit) = delete;
  TaggedValue(Single value) : value_(value) {}
  TaggedValue(Double value) : value_(value) {}
  TaggedValue(String value) : value_(std::move(value)) {}
  TaggedValue(StringView value) : value_(String(value)) {}
  TaggedValue(const char16_t* value) : TaggedValue(nullptr) {
    if (value != nullptr) value_ = String(value);
  }
  TaggedValue(std::nullptr_t) : value_(Ref<Object>()) {}
  template <std::derived_from<Object> T>
  TaggedValue(Ref<T> value) : value_(std::in_place_type<Ref<Object>>, std::move(value)) {}
  ///@}

  /// Whether the value is of this kind.
  ///@{
  bool IsMissing() const { return Is<MissingValue>(); }
  bool IsObject() const { return Is<Ref<Object>>(); }
  bool IsNumber() const { return Is<Integer>() || Is<Long>() || Is<Single>() || Is<Double>(); }
  ///@}

  /// Whether the value is of the type T: bool, Integer, Long, Single, Double, String, Ref<Object>, or the type of
  /// `Empty`, `Null` or `Missing`.
  template <class T>
  bool Is() const {
    return std::holds_alternative<T>(value_);
  }
  /// The held value, or null when the value is of another type.
  template <class T>
  const T* As() const {
    return std::get_if<T>(&value_);
  }

 private:
  std::variant<EmptyValue, NullValue, MissingValue, bool, Integer, Long, Single, Double, String, Ref<Object>>
      value_;
};

}  // namespace TORVA35
