// Lines and columns of offsets in a text. Private to the lexical stage.
#pragma once

#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>

namespace tessarin::compiler::core {

/// Remembers where it has counted to, so that a pass forward over a text is linear. The answers do not depend on what
/// was asked before.
class LineCounter {
public:
  /// The line and column, from 0, of an offset that is not behind the end of `text`, which is the same text in all
  /// calls. Vertical tabs and form feeds, although they end lines for tokens, do not count. Throws
  /// `nvf::LineColumn::ValueTooLarge`.
  nvf::LineColumn at(ustring_view text, std::size_t offset) {
    if (offset < position_) *this = {};
    for (; position_ < offset; ++position_) {
      const char16_t unit = text[position_];
      if (unit != u'\n' && unit != u'\r') continue;
      const bool isSecondOfPair = unit == u'\n' && position_ > 0 && text[position_ - 1] == u'\r';
      if (!isSecondOfPair) ++line_;
      lineStart_ = position_ + 1;
    }
    return {line_, offset - lineStart_};
  }

private:
  std::size_t position_ = 0;
  std::size_t line_ = 0;      // of position_
  std::size_t lineStart_ = 0; // where that line begins
};

} // namespace tessarin::compiler::core
