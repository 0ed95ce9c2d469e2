#include "Printable.hpp"

#include <algorithm>
#include <iterator>
#include <span>

namespace tessarin::tool {

namespace {

struct CharacterRange {
  char32_t first;
  char32_t last;
};

constexpr CharacterRange notPrintable[] = {
    {0x0000, 0x001F}, {0x007F, 0x009F}, {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E},
    {0x2066, 0x2069}, {0xD800, 0xDFFF}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F},
};

constexpr CharacterRange noColumn[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},   {0x064B, 0x065F},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},   {0x200B, 0x200D},
    {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xE0100, 0xE01EF},
};

constexpr CharacterRange twoColumns[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

/// Whether a character is in one of the ranges, which are sorted.
bool isIn(std::span<const CharacterRange> ranges, char32_t character) noexcept {
  const auto range = std::lower_bound(ranges.begin(), ranges.end(), character,
                                      [](const CharacterRange& r, char32_t c) { return r.last < c; });
  return range != ranges.end() && range->first <= character;
}

void appendHexadecimal(std::string& out, char32_t value, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += "0123456789ABCDEF"[value >> shift & 0xF];
}

void appendEscape(std::string& out, char32_t character) {
  switch (character) {
  case U'\t': out += "\\t"; return;
  case U'\n': out += "\\n"; return;
  case U'\r': out += "\\r"; return;
  default: break;
  }
  const bool isShort = character <= 0xFFFF;
  out += isShort ? "\\u" : "\\U";
  appendHexadecimal(out, character, isShort ? 4 : 8);
}

/// Calls `each` with every character of the text and the code units that make it.
template <class Each>
void forEachCharacter(nvf::ustring_view text, Each each) {
  for (std::size_t i = 0; i < text.size();) {
    const Character character = characterAt(text, i);
    each(character.code, text.substr(i, character.length));
    i += character.length;
  }
}

} // namespace

Character characterAt(nvf::ustring_view text, std::size_t i) noexcept {
  const char32_t unit = text[i];
  const char32_t next = i + 1 < text.size() ? text[i + 1] : 0;
  const bool isPair = (unit & 0xFC00) == 0xD800 && (next & 0xFC00) == 0xDC00;
  if (!isPair) return {1, unit};
  return {2, 0x10000 + ((unit & 0x3FF) << 10 | (next & 0x3FF))};
}

bool isPrintable(char32_t character) noexcept {
  return !isIn(notPrintable, character);
}

int columnsOf(char32_t character) noexcept {
  if (character < 0x300) return 1;
  if (isIn(noColumn, character)) return 0;
  return isIn(twoColumns, character) ? 2 : 1;
}

std::string escaped(nvf::ustring_view text) {
  std::string out;
  out.reserve(text.size());
  forEachCharacter(text, [&out](char32_t character, nvf::ustring_view units) {
    if (!isPrintable(character)) {
      appendEscape(out, character);
    } else if (character < 0x80) {
      out += static_cast<char>(character);
    } else {
      out += nvf::encode_utf8(units);
    }
  });
  return out;
}

std::string escaped(const std::string& utf8) {
  return escaped(nvf::utf8_string_to_ustring(utf8));
}

std::string oneColumnEach(nvf::ustring_view text) {
  std::string out;
  out.reserve(text.size());
  forEachCharacter(text, [&out](char32_t character, nvf::ustring_view units) {
    if (isPrintable(character) || character == U'\t') {
      out += nvf::encode_utf8(units);
    } else if (character < 0x20) {
      out += nvf::encode_utf8(std::u16string(1, static_cast<char16_t>(0x2400 + character))); // its picture
    } else {
      out += "\uFFFD";
    }
  });
  return out;
}

} // namespace tessarin::tool
