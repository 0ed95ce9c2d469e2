// What the scanner remembers between tokens.
//
// The language cannot be tokenized without context: a quote is a transpose behind an operand and opens a string behind
// an operator, a blank separates elements inside brackets, `end` is an index inside parentheses. All of that context is
// in this small value, so that a caller can tokenize line by line, keep a state with each line and start again
// anywhere.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <cstdint>

namespace tessarin::compiler::core {

/// Where in a file the scanner is.
enum class CState : std::uint8_t { AT_BEGINNING, IN_FILE, IN_MODEL, IN_METHOD };

/// Where in a statement the scanner is.
enum class LState : std::uint8_t {
  BEGIN_STMT, ///< before its first token
  DUAL_ARG,   ///< among the arguments of a command
  SAW_INDXNM, ///< behind what can be indexed: a name, a closing parenthesis or brace
  SAW_EXPR,   ///< behind another operand
  SAW_OPER,   ///< behind an operator: an operand is due
  SAW_AT,     ///< behind "@"
  SAW_EQUALS, ///< behind an equals sign
  NORES       ///< behind a dot: words are not reserved
};

/// What a command's argument list holds so far.
enum class ListState : std::uint8_t {
  NO_LS, ///< no list
  F_LS,  ///< flags
  V_LS   ///< variables
};

/// What the scanner knows at the start of a line, besides the text: with it a line is scanned as it is in its file.
struct TESSARIN_EXPORT State {
  /// What is true or false at a place: bits of `flags`.
  enum Flag : std::uint8_t {
    afterAtParen = 1U << 0U, ///< a parenthesis has been opened right behind "@"
    continued = 1U << 1U,    ///< the line follows a continuation, or the end of a row of an array
    inList = 1U << 2U,       ///< in a list that line ends and separators close
    sawEnds = 1U << 3U,      ///< functions of this file are closed with "end"
    atLineStart = 1U << 4U   ///< no code has been seen on the line
  };

  static constexpr unsigned maxParenDepth = 32;  ///< The brackets that can be open at once.
  static constexpr unsigned maxCommentDepth = 7; ///< The block comments that can be open at once.

  CState cState = CState::AT_BEGINNING;   ///< the place in the file
  LState lState = LState::BEGIN_STMT;     ///< the place in the statement
  std::uint8_t indent = 0;                ///< an estimate of the open blocks, modulo 256
  std::uint8_t inFunction = 0;            ///< the depth of function nesting, modulo 256
  std::uint8_t parenDepth = 0;            ///< open brackets of all three sorts
  std::uint8_t commentDepth = 0;          ///< open block comments
  ListState listState = ListState::NO_LS; ///< the arguments of a command, while there are any
  std::uint8_t flags = atLineStart;       ///< of `Flag`
  /// One bit a bracket, the innermost lowest: 1 where blanks and line ends separate elements, 0 where they do not.
  std::uint32_t bracketStack = 0;
  std::uint8_t spare = 0; ///< copied, without a meaning

  /// Reads, sets and clears one of the `flags`.
  /// @{
  [[nodiscard]] bool has(Flag flag) const noexcept { return (flags & flag) != 0; }
  void set(Flag flag) noexcept { flags = static_cast<std::uint8_t>(flags | flag); }
  void clear(Flag flag) noexcept { flags = static_cast<std::uint8_t>(flags & ~flag); }
  /// @}

  /// Whether blanks and line ends separate elements here.
  [[nodiscard]] bool inArray() const noexcept { return (bracketStack & 1U) != 0; }

  /// The name of an enumerator, such as "SAW_OPER", closed by a zero; for enumerators only.
  /// @{
  static ustring_view cStateName(CState state) noexcept;
  static ustring_view lStateName(LState state) noexcept;
  static ustring_view listStateName(ListState state) noexcept;
  /// @}

  /// The code units that `dump` writes at the most, the closing zero included.
  static constexpr std::size_t dumpCapacity = 128;
  /// Writes the state for people, closed by a zero, and returns where the zero stands.
  char16_t* dump(char16_t* buffer) const;

  /// WARNING: true where the states DIFFER and false where they agree, and `!=` accordingly true where they agree.
  /// Callers rely on it. Use `sameState` in new code.
  friend TESSARIN_EXPORT bool operator==(const State& a, const State& b) noexcept;
};

/// True where the two states agree in everything but the spare byte.
TESSARIN_EXPORT bool sameState(const State& a, const State& b) noexcept;

} // namespace tessarin::compiler::core
