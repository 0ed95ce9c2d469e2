// Small fractions, such as the exponents of units.
#pragma once

#include "tessarin/foundation/hash.hpp"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <optional>

namespace nvf {

/// A fraction in lowest terms with a positive denominator; both parts fit in 32 bits. Arithmetic that leaves that range
/// gives nothing.
class Rational {
public:
  /// Zero.
  constexpr Rational() noexcept = default;
  [[nodiscard]] static constexpr Rational one() noexcept {
    Rational result;
    result.numerator_ = 1;
    return result;
  }
  /// The fraction, or nothing where the denominator is 0 or a part does not fit.
  [[nodiscard]] static constexpr std::optional<Rational> make(std::int64_t numerator,
                                                              std::int64_t denominator = 1) noexcept {
    constexpr std::int64_t noOpposite = std::numeric_limits<std::int64_t>::min();
    if (denominator == 0 || denominator == noOpposite || numerator == noOpposite) return std::nullopt;
    const std::int64_t divisor = std::gcd(numerator, denominator) * (denominator < 0 ? -1 : 1);
    numerator /= divisor;
    denominator /= divisor;
    if (!fits(numerator) || !fits(denominator)) return std::nullopt;
    Rational result;
    result.numerator_ = static_cast<std::int32_t>(numerator);
    result.denominator_ = static_cast<std::int32_t>(denominator);
    return result;
  }

  /// In lowest terms; the denominator is above 0.
  /// @{
  [[nodiscard]] constexpr std::int32_t numerator() const noexcept { return numerator_; }
  [[nodiscard]] constexpr std::int32_t denominator() const noexcept { return denominator_; }
  [[nodiscard]] constexpr bool isWhole() const noexcept { return denominator_ == 1; }
  /// @}

  /// The sum, or nothing where it does not fit.
  [[nodiscard]] constexpr std::optional<Rational> plus(const Rational& other) const noexcept {
    return make(numerator64() * other.denominator_ + other.numerator64() * denominator_,
                denominator64() * other.denominator_);
  }
  /// The product, or nothing where it does not fit.
  [[nodiscard]] constexpr std::optional<Rational> times(const Rational& other) const noexcept {
    return make(numerator64() * other.numerator_, denominator64() * other.denominator_);
  }
  /// The number with the other sign.
  [[nodiscard]] constexpr Rational negated() const noexcept {
    Rational result = *this;
    result.numerator_ = -numerator_;
    return result;
  }

  friend constexpr bool operator==(const Rational&, const Rational&) noexcept = default;
  friend constexpr std::strong_ordering operator<=>(const Rational& a, const Rational& b) noexcept {
    return a.numerator64() * b.denominator_ <=> b.numerator64() * a.denominator_;
  }
  friend constexpr Ordering compare(const Rational& a, const Rational& b) noexcept { return order(a, b); }
  friend constexpr std::size_t hash_value(const Rational& r) noexcept {
    return hash_combine(hash_combine(0, static_cast<std::size_t>(r.numerator_)),
                        static_cast<std::size_t>(r.denominator_));
  }
  /// Feeds numerator and denominator with 4 bytes each.
  friend void incorporate_data(DigestSink& sink, const Rational& r) {
    feed_bytes<4>(sink, static_cast<std::uint64_t>(r.numerator_));
    feed_bytes<4>(sink, static_cast<std::uint64_t>(r.denominator_));
  }

private:
  // The least 32-bit number is left out, so that every fraction has its negative.
  static constexpr bool fits(std::int64_t number) noexcept {
    constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
    return number >= -largest && number <= largest;
  }
  [[nodiscard]] constexpr std::int64_t numerator64() const noexcept { return numerator_; }
  [[nodiscard]] constexpr std::int64_t denominator64() const noexcept { return denominator_; }

  std::int32_t numerator_ = 0;
  std::int32_t denominator_ = 1;
};

template <>
inline constexpr bool hashesByValue<Rational> = true;

} // namespace nvf
