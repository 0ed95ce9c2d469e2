// Numbers that are known to be positive.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/text.hpp"

#include <concepts>
#include <cstddef>
#include <stdexcept>

namespace nvf {

/// Thrown where a number that must be positive is not.
class TESSARIN_EXPORT NonPositiveValueFound : public StandardFailure<std::logic_error> {
public:
  NonPositiveValueFound() : StandardFailure("non-positive value found where a positive value was expected.") {}
};

/// A whole number from 1 on.
template <std::integral T>
class Positive {
public:
  /// What the constructor throws.
  using NonPositiveValueFound = nvf::NonPositiveValueFound;

  /// Throws `NonPositiveValueFound` where the value is not positive.
  explicit constexpr Positive(T value) : value_(value) {
    if (value <= 0) throw NonPositiveValueFound();
  }

  /// The number, which is above 0.
  /// @{
  [[nodiscard]] constexpr T value() const noexcept { return value_; }
  constexpr operator T() const noexcept { return value_; }
  /// @}

  friend constexpr bool operator==(const Positive&, const Positive&) noexcept = default;
  friend constexpr Ordering compare(const Positive& a, const Positive& b) noexcept { return order(a.value_, b.value_); }
  friend constexpr std::size_t hash_value(const Positive& p) noexcept { return static_cast<std::size_t>(p.value_); }
  /// Feeds the number, most significant byte first.
  friend void incorporate_data(DigestSink& sink, const Positive& p) {
    feed_bytes<sizeof(T)>(sink, static_cast<std::uint64_t>(p.value_));
  }
  friend ustring dump_text(const Positive& p) { return decimal(static_cast<std::size_t>(p.value_)); }

private:
  T value_;
};

template <class T>
inline constexpr bool hashesByValue<Positive<T>> = true;

} // namespace nvf
