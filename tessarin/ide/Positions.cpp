#include "tessarin/ide/Positions.hpp"

#include <algorithm>

namespace tessarin::ide {

namespace {

constexpr bool isHighSurrogate(char16_t unit) noexcept {
  return unit >= 0xd800 && unit < 0xdc00;
}

constexpr bool isLowSurrogate(char16_t unit) noexcept {
  return unit >= 0xdc00 && unit < 0xe000;
}

struct Character {
  std::size_t units;
  std::size_t bytes;
};

/// What stands at the begin of a text that is not empty; a lone surrogate is encoded as U+FFFD, in three bytes.
Character firstCharacter(nvf::ustring_view text) noexcept {
  const char16_t unit = text[0];
  if (unit < 0x80) return {1, 1};
  if (unit < 0x800) return {1, 2};
  const bool isPair = isHighSurrogate(unit) && text.size() > 1 && isLowSurrogate(text[1]);
  return isPair ? Character{2, 4} : Character{1, 3};
}

} // namespace

LineTable::LineTable(nvf::ustring_view text) : text_(text), starts_{0} {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit != u'\n' && unit != u'\r') continue;
    if (unit == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    starts_.push_back(i + 1);
  }
}

OffsetRange LineTable::line(std::size_t number) const noexcept {
  if (number >= starts_.size()) return {text_.size(), text_.size()};
  return {starts_[number], number + 1 < starts_.size() ? starts_[number + 1] : text_.size()};
}

OffsetRange LineTable::lineContent(std::size_t number) const noexcept {
  OffsetRange range = line(number);
  while (range.end > range.begin && (text_[range.end - 1] == u'\n' || text_[range.end - 1] == u'\r')) --range.end;
  return range;
}

Position LineTable::utf16(std::size_t offset) const noexcept {
  offset = std::min(offset, text_.size());
  const auto behind = std::upper_bound(starts_.begin(), starts_.end(), offset);
  const auto line = static_cast<std::size_t>(behind - starts_.begin()) - 1;
  return {line, offset - starts_[line]};
}

Position LineTable::utf8(std::size_t offset) const noexcept {
  const Position position = utf16(offset);
  nvf::ustring_view rest = text_.substr(starts_[position.line]);
  std::size_t bytes = 0;
  for (std::size_t units = 0; units < position.column;) {
    const Character character = firstCharacter(rest);
    units += character.units;
    if (units > position.column) break;
    bytes += character.bytes;
    rest.remove_prefix(character.units);
  }
  return {position.line, bytes};
}

std::size_t LineTable::offsetOfUtf16(const Position& position) const noexcept {
  const OffsetRange content = lineContent(position.line);
  return content.begin + std::min(position.column, content.end - content.begin);
}

std::size_t LineTable::offsetOfUtf8(const Position& position) const noexcept {
  const OffsetRange content = lineContent(position.line);
  nvf::ustring_view rest = text_.substr(content.begin, content.end - content.begin);
  for (std::size_t bytes = 0; !rest.empty();) {
    const Character character = firstCharacter(rest);
    bytes += character.bytes;
    if (bytes > position.column) break;
    rest.remove_prefix(character.units);
  }
  return content.end - rest.size();
}

} // namespace tessarin::ide
