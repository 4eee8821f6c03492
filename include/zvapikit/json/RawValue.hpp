#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>

namespace ZAK {

/// One case of an enumeration with its text in JSON.
///
/// Thread safety: as a standard container.
template <class E>
struct RawCase {
  /// All fields, in their order.
  constexpr RawCase(E value_, std::string_view rawValue_) noexcept : value(value_), rawValue(rawValue_) {}

  E value;                    ///< in C++
  std::string_view rawValue;  ///< in JSON
};

/// Specialised for each enumeration that travels as text: `name`, for error texts, and `cases`, an array of `RawCase`
/// in the order of the enumerators, which count from 0.
template <class E>
struct RawValues;

/// An enumeration that travels as text.
template <class E>
concept RawRepresentable = std::is_enum_v<E> && requires {
  RawValues<E>::cases;
};

/// True for enumerations that read an unknown text as their last case rather than fail.
template <class E>
inline constexpr bool CodableLastByDefault = false;

/// The text of a case.
template <RawRepresentable E>
[[nodiscard]] constexpr std::string_view rawValue(E value) noexcept {
  return RawValues<E>::cases[static_cast<std::size_t>(value)].rawValue;
}

/// The case of exactly this text; absent when there is none, also for a `CodableLastByDefault` enumeration.
template <RawRepresentable E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::string_view text) noexcept {
  for (const RawCase<E>& candidate : RawValues<E>::cases) {
    if (candidate.rawValue == text) return candidate.value;
  }
  return std::nullopt;
}

}  // namespace ZAK
