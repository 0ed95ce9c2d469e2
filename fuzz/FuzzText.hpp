// Source text from the fuzzer's bytes.
#pragma once

#include "tessarin/foundation/warning.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tessarin::fuzz {

/// UTF-16 of the bytes: one unit a byte, but where the first byte is odd, two bytes a unit.
inline std::u16string textOf(const std::uint8_t* data, std::size_t size) {
  std::u16string text;
  if (size == 0) return text;
  const bool isWide = (data[0] & 1U) != 0;
  for (std::size_t i = 1; i < size; ++i) {
    if (isWide && i + 1 < size) {
      text.push_back(static_cast<char16_t>(data[i] << 8U | data[i + 1]));
      ++i;
    } else {
      text.push_back(data[i]);
    }
  }
  return text;
}

} // namespace tessarin::fuzz
