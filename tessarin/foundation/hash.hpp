// Hashing, ordering and digesting: the three small vocabularies that every value class of the library speaks.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace nvf {

/// The result of a three-way comparison: how the first argument stands to the second.
enum class Ordering : int { Equal = 0, Less = 1, Greater = 2 };

/// The ordering of two values that have `<=>`, or `compare` as texts have; unordered values count as equal.
template <class T>
constexpr Ordering order(const T& a, const T& b) {
  const auto result = [&] {
    if constexpr (requires { a <=> b; }) {
      return a <=> b;
    } else {
      return a.compare(b); // libc++ 14 has no `<=>` of texts
    }
  }();
  if (result < 0) return Ordering::Less;
  if (result > 0) return Ordering::Greater;
  return Ordering::Equal;
}

/// The 64-bit mixing step from which every hash of the library is made. It is written out here, and not taken from
/// Boost, whose versions differ in it. What holds a name hashes differently in each process, see `BasicTableString`.
constexpr std::uint64_t hash_combine(std::uint64_t seed, std::uint64_t k) noexcept {
  constexpr std::uint64_t m = 0xc6a4a7935bd1e995U;
  k *= m;
  k ^= k >> 47U;
  k *= m;
  seed ^= k;
  seed *= m;
  return seed + 0xe6546b64U;
}

namespace detail {
/// Derives `<`, `>`, `<=` and `>=` of `T` from `compare`.
template <class T>
class OrderingOperators {
  friend std::weak_ordering operator<=>(const T& a, const T& b) {
    const Ordering result = compare(a, b);
    return result == Ordering::Equal  ? std::weak_ordering::equivalent
           : result == Ordering::Less ? std::weak_ordering::less
                                      : std::weak_ordering::greater;
  }
};
} // namespace detail

/// Whether `std::hash<T>` exists and is `hash_value`. Each class whose values can be hashed says so beside itself, so
/// that values are keys of `std::unordered_map` and members of `std::unordered_set`.
template <class T>
inline constexpr bool hashesByValue = false;

/// Receives the canonical bytes of a value, piece by piece, on their way into a digest. The stream does not depend on
/// the machine, on addresses or on hashes.
using DigestSink = std::function<void(const char*, unsigned long)>;

/// Feeds the lowest `N` bytes of `value`, most significant first, as one piece.
template <std::size_t N>
void feed_bytes(DigestSink& sink, std::uint64_t value) {
  char bytes[N];
  for (std::size_t i = 0; i < N; ++i) bytes[i] = static_cast<char>((value >> (8U * (N - 1 - i))) & 0xffU);
  sink(bytes, N);
}

} // namespace nvf

/// @cond
template <class T>
requires nvf::hashesByValue<T>
struct std::hash<T> {
  std::size_t operator()(const T& value) const { return hash_value(value); }
};
/// @endcond

namespace tessarin::compiler::core {
using nvf::DigestSink;
using nvf::Ordering;
} // namespace tessarin::compiler::core
