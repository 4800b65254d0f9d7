#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

/// The types that every room speaks.
namespace TORVA35 {

/// Counted text of 16-bit units (UTF-16, but nothing requires the units to pair up). A limit of n characters
/// counts these units. An unset String is the empty one.
using String = std::u16string;
/// A String, or a part of one, that is held elsewhere.
using StringView = std::u16string_view;

using Integer = std::int16_t;  ///< 16-bit signed
using Long = std::int32_t;     ///< 32-bit signed
using Single = float;          ///< 32-bit floating point
using Double = double;         ///< 64-bit floating point

/// The types of one character. C++ takes them for whole numbers; here they are none, so that `Item(u'5')` does not
/// ask for position 53.
template <class T>
concept Character = std::same_as<T, char> || std::same_as<T, wchar_t> || std::same_as<T, char8_t> ||
    std::same_as<T, char16_t> || std::same_as<T, char32_t>;

}  // namespace TORVA35
