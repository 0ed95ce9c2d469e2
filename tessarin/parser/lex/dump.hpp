// Writing into a caller's buffer, for the dumps of tokens and states. Private to the lexical stage.
#pragma once

#include "tessarin/foundation/text.hpp"

#include <algorithm>
#include <cstdint>

namespace tessarin::compiler::core {

inline char16_t* putText(char16_t* out, ustring_view text) {
  return std::copy(text.begin(), text.end(), out);
}

/// Writes a number of two digits at the most, and a blank. Intended: a number above 99 gets a character behind "9" for
/// its tens, since dumps are for debugging and their columns are narrow.
inline char16_t* putNumber(char16_t* out, std::uint64_t number) {
  if (number >= 10) *out++ = static_cast<char16_t>(u'0' + number / 10);
  *out++ = static_cast<char16_t>(u'0' + number % 10);
  *out++ = u' ';
  return out;
}

/// Writes a number in capital hexadecimal digits without leading zeros, and a blank.
inline char16_t* putHex(char16_t* out, std::uint32_t number) {
  constexpr ustring_view digits = u"0123456789ABCDEF";
  int shift = 28;
  while (shift > 0 && number >> static_cast<unsigned>(shift) == 0) shift -= 4;
  for (; shift >= 0; shift -= 4) *out++ = digits[number >> static_cast<unsigned>(shift) & 0xFU];
  *out++ = u' ';
  return out;
}

} // namespace tessarin::compiler::core
