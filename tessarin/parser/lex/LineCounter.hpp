// Lines and columns of offsets in a text. Private to the lexical stage.
#pragma once

#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>

namespace tessarin::compiler::core {

/// Remembers where it has counted to, so that a pass forward over a text is linear.
///
/// CR LF is one line end where it is counted in one go. An offset between the two is behind a line end, the CR; whoever
/// asks for it and then for one further on sees the LF count as another one. So in CR CR LF x, where the scanner makes
/// one token of CR CR, the place of x is 3:0 once those of the tokens before it were asked for, and 2:0 otherwise. Odd,
/// and intended.
class LineCounter {
public:
  /// The line and column, from 0, of an offset that is not behind the end of `text`, which is the same text in all
  /// calls. Vertical tabs and form feeds, although they end lines for tokens, do not count. Throws
  /// `nvf::LineColumn::ValueTooLarge`.
  nvf::LineColumn at(ustring_view text, std::size_t offset) {
    if (offset < position_) *this = {};
    while (position_ < offset) {
      const char16_t unit = text[position_++];
      if (unit != u'\n' && unit != u'\r') continue;
      if (unit == u'\r' && position_ < offset && text[position_] == u'\n') ++position_;
      ++line_;
      lineStart_ = position_;
    }
    return {line_, offset - lineStart_};
  }

private:
  std::size_t position_ = 0;
  std::size_t line_ = 0;      // of position_
  std::size_t lineStart_ = 0; // where that line begins
};

} // namespace tessarin::compiler::core
