// Which tokens of a line stand apart. Private to this stage.
#pragma once

#include "tessarin/parser/lex/Kind.hpp"

#include <cstdint>

namespace tessarin::ide {

/// What a token does in its line.
enum class Role : std::uint8_t {
  Operand,   ///< a name, a number, a string, `*` and `:` where they stand alone
  Callable,  ///< an operand that parentheses right behind it are arguments of
  Word,      ///< a keyword
  Prefix,    ///< an operator before its operand, "@"
  Infix,     ///< an operator between two
  Postfix,   ///< a transpose; the star of an import
  Tight,     ///< a dot; an arrow between modes
  Open,      ///< an opening bracket
  Close,     ///< a closing one
  EndOfList, ///< the parenthesis that closes the parameters of an anonymous function: an operand follows
  Separator, ///< a comma, a semicolon
  Odd        ///< what the language does not know: it stays as it is
};

/// What is known of a token and of what stands before it.
struct SpacedToken {
  compiler::core::Kind kind = compiler::core::Kind::EMPTY; ///< what it is
  Role role = Role::Word;                                  ///< what it does
  bool isApart = false;                                    ///< whether there is something before it in the text
  bool isElement = false;                                  ///< whether a blank before it stands for a comma
};

/// The role of a token by its kind, where an operand stands before it or not.
Role roleOf(compiler::core::Kind kind, bool behindOperand) noexcept;

/// Whether an operand ends with a token of this role and kind.
bool endsOperand(const SpacedToken& token) noexcept;

/// Whether an operand, or another statement, can begin with it.
bool beginsOperand(const SpacedToken& token) noexcept;

/// Whether a blank stands between the two on a line.
bool isBlankBetween(const SpacedToken& left, const SpacedToken& right) noexcept;

} // namespace tessarin::ide
