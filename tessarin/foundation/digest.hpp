// What identifies a value, as bytes or as text, in one call.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/hash.hpp"

#include <concepts>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace nvf {

/// A class whose values can be digested.
template <class T>
concept Digestible = requires(DigestSink& sink, const T& value) {
  incorporate_data(sink, value);
};

/// Calls `function` with each piece that the value feeds, as a `std::string_view` that lives for the call; throws what
/// it throws.
template <Digestible T, std::invocable<std::string_view> Function>
void feed_digest(const T& value, Function&& function) {
  DigestSink sink = [&function](const char* bytes, unsigned long count) {
    std::invoke(function, std::string_view(bytes, count));
  };
  incorporate_data(sink, value);
}

/// All bytes that the value feeds. Equal values feed the same ones, on every machine; unequal values may do so too,
/// since no lengths are fed. Their number grows with the value: they are what a cryptographic hash is taken of.
template <Digestible T>
[[nodiscard]] std::string digest_bytes(const T& value) {
  std::string bytes;
  feed_digest(value, [&bytes](std::string_view piece) { bytes += piece; });
  return bytes;
}

/// The same in hexadecimal: two lower-case digits a byte.
template <Digestible T>
[[nodiscard]] std::string digest_hex(const T& value) {
  std::string hex;
  feed_digest(value, [&hex](std::string_view piece) {
    for (const char c : piece) {
      constexpr std::string_view digits = "0123456789abcdef";
      const auto byte = static_cast<unsigned char>(c);
      hex += digits[byte >> 4U];
      hex += digits[byte & 0xfU];
    }
  });
  return hex;
}

} // namespace nvf
