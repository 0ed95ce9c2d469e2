// The scanner's output: a kind and a length. Where the token stands follows from the lengths before it.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/parser/lex/Kind.hpp"

#include <cstdint>
#include <iosfwd>

namespace tessarin::compiler::core {

/// What one step of scanning gives: a kind and a length. The text is that of the buffer behind the token before.
struct TESSARIN_EXPORT LexToken {
  std::uint64_t length = 0; ///< in UTF-16 code units; markers have none
  Kind kind = Kind::EMPTY;  ///< what it is

  /// What the scanner gives where there are no more tokens: length 0, kind `EMPTY`.
  static const LexToken INVALID_TOKEN;

  /// The code units that `dump` writes at the most, the closing zero included.
  static constexpr std::size_t dumpCapacity = 32;
  /// Writes the name of the kind and the length, closed by a zero, and returns where the zero stands. Of a length above
  /// 99 the first digit is a character behind "9".
  char16_t* dump(char16_t* buffer) const;

  friend bool operator==(const LexToken&, const LexToken&) = default;
  /// Writes the dump and ends the line with a flush.
  friend TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const LexToken& token);
};

inline constexpr LexToken LexToken::INVALID_TOKEN{};

} // namespace tessarin::compiler::core
