// The classes of code units by which the scanner decides what begins at a position. Private to the lexical stage.
#pragma once

#include "tessarin/foundation/text.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tessarin::compiler::core {

enum class CharClass : std::uint8_t {
  Control, // starts at 0: the classes index tables
  Letter,
  Digit,
  Underscore,
  LeftParen,
  RightParen,
  LeftBrace,
  RightBrace,
  LeftBracket,
  RightBracket,
  At,
  Plus,
  Minus,
  Star,
  Slash,
  Backslash,
  Caret,
  Colon,
  Dot,
  Ampersand,
  Bar,
  Less,
  Greater,
  Tilde,
  Quote,
  Semicolon,
  Comma,
  LineEnd,
  Equals,
  Percent,
  Hash,
  Blank,
  Bang,
  Question,
  Dollar,
  Backquote,
  DoubleQuote,
  Substitute,
  None ///< code units above 127
};

inline constexpr std::size_t charClassCount = static_cast<std::size_t>(CharClass::None) + 1;

namespace detail {

struct ClassMembers {
  CharClass charClass;
  ustring_view members;
};

using namespace std::string_view_literals;

/// The classes with several members or with a member that has no glyph; "\0" is one of them.
inline constexpr ClassMembers classMembers[] = {
    {CharClass::Control, u"\x01\x02\x03\x04\x05\x06\x07\x08\x0e\x0f\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19"
                         u"\x1b\x1c\x1d\x1e\x1f\x7f"sv},
    {CharClass::Letter, u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"sv},
    {CharClass::Digit, u"0123456789"sv},
    {CharClass::Underscore, u"_"sv},
    {CharClass::LeftParen, u"("sv},
    {CharClass::RightParen, u")"sv},
    {CharClass::LeftBrace, u"{"sv},
    {CharClass::RightBrace, u"}"sv},
    {CharClass::LeftBracket, u"["sv},
    {CharClass::RightBracket, u"]"sv},
    {CharClass::At, u"@"sv},
    {CharClass::Plus, u"+"sv},
    {CharClass::Minus, u"-"sv},
    {CharClass::Star, u"*"sv},
    {CharClass::Slash, u"/"sv},
    {CharClass::Backslash, u"\\"sv},
    {CharClass::Caret, u"^"sv},
    {CharClass::Colon, u":"sv},
    {CharClass::Dot, u"."sv},
    {CharClass::Ampersand, u"&"sv},
    {CharClass::Bar, u"|"sv},
    {CharClass::Less, u"<"sv},
    {CharClass::Greater, u">"sv},
    {CharClass::Tilde, u"~"sv},
    {CharClass::Quote, u"'"sv},
    {CharClass::Semicolon, u";"sv},
    {CharClass::Comma, u","sv},
    {CharClass::LineEnd, u"\n\v\f\r"sv},
    {CharClass::Equals, u"="sv},
    {CharClass::Percent, u"%\0"sv}, // a code unit 0 begins a comment, too
    {CharClass::Hash, u"#"sv},
    {CharClass::Blank, u" \t"sv},
    {CharClass::Bang, u"!"sv},
    {CharClass::Question, u"?"sv},
    {CharClass::Dollar, u"$"sv},
    {CharClass::Backquote, u"`"sv},
    {CharClass::DoubleQuote, u"\""sv},
    {CharClass::Substitute, u"\x1a"sv},
};

inline constexpr auto charClasses = [] {
  std::array<CharClass, 128> table{};
  table.fill(CharClass::None);
  for (const ClassMembers& row : classMembers) {
    for (const char16_t unit : row.members) table[unit] = row.charClass;
  }
  return table;
}();

static_assert(
    [] {
      std::size_t members = 0;
      for (const ClassMembers& row : classMembers) members += row.members.size();
      for (const CharClass charClass : charClasses) {
        if (charClass == CharClass::None) return false;
      }
      return members == charClasses.size();
    }(),
    "every code unit below 128 is in one class");

} // namespace detail

constexpr CharClass classOf(char16_t unit) noexcept {
  return unit < detail::charClasses.size() ? detail::charClasses[unit] : CharClass::None;
}

constexpr bool isLetter(char16_t unit) noexcept {
  return classOf(unit) == CharClass::Letter;
}

constexpr bool isDigit(char16_t unit) noexcept {
  return classOf(unit) == CharClass::Digit;
}

/// Letters, digits and "_": what a name goes on with.
constexpr bool isNamePart(char16_t unit) noexcept {
  const CharClass charClass = classOf(unit);
  return charClass >= CharClass::Letter && charClass <= CharClass::Underscore;
}

/// Blanks and tabs.
constexpr bool isBlank(char16_t unit) noexcept {
  return classOf(unit) == CharClass::Blank;
}

/// Line feed, vertical tab, form feed and carriage return.
constexpr bool isLineEnd(char16_t unit) noexcept {
  return classOf(unit) == CharClass::LineEnd;
}

} // namespace tessarin::compiler::core
