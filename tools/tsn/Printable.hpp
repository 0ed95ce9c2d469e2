// Text of strangers on a terminal: nothing in a source, a path or a message may steer the terminal or hide text.
#pragma once

#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <string>

namespace tessarin::tool {

/// A character at the begin of some text.
struct Character {
  std::size_t length; ///< in UTF-16 code units: 2 for a surrogate pair
  char32_t code;      ///< a lone surrogate stands for itself
};

/// The character at `text[i]`.
Character characterAt(nvf::ustring_view text, std::size_t i) noexcept;

/// False for control characters, lone surrogates, line separators, and the marks that reverse the order of text.
bool isPrintable(char32_t character) noexcept;

/// The columns that a printable character takes on a terminal: 0 for combining marks, 2 for ideographs and the like,
/// 1 for all others.
int columnsOf(char32_t character) noexcept;

/// The text in UTF-8 with escapes, such as `\n` and `\u001B`, for what is not printable.
std::string escaped(nvf::ustring_view text);
/// The same of text in UTF-8; each byte of an invalid sequence becomes U+FFFD.
std::string escaped(const std::string& utf8);

/// The text in UTF-8 with one sign of one column for each character that is not printable; tabs stay.
std::string oneColumnEach(nvf::ustring_view text);

} // namespace tessarin::tool
