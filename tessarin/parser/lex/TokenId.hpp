// The parser's vocabulary, and how the scanner's maps onto it. The table is token_ids.def.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/parser/lex/Kind.hpp"
#include "tessarin/parser/lex/MemberType.hpp"
#include "tessarin/parser/lex/ModelType.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The front end of the language: text becomes tokens, a parse tree, a syntax tree, and text again.
namespace tessarin::compiler::core {

/// The codes of the parser's tokens. The functions take enumerators only, and may be called from any thread.
struct TESSARIN_EXPORT TokenId {
  /// The codes, which are the parser's own numbers and never change. The table is token_ids.def.
  enum Value : std::int32_t {
#define TESSARIN_TOKEN(code, name) name = (code),
#define TESSARIN_QUOTED_TOKEN(code, name, text) name = (code),
#include "tessarin/parser/lex/token_ids.def"
  };

  /// The codes run without a gap from the first to the last.
  /// @{
  static constexpr std::int32_t first = FILE_LINE_COLUMN;
  static constexpr std::int32_t last = VALUE;
  static constexpr std::size_t count = last - first + 1;
  /// @}

  /// The name of the enumerator, such as "ID". Closed by a zero.
  static std::string_view toString(Value code) noexcept;
  /// The symbol's name in the grammar's table: such as `ID`, or `"+"` with its double quotes, a backslash doubled.
  static std::string_view displayString(Value code) noexcept;

  /// The type of model that the token opens, or `ModelType::NONE`.
  static ModelType::Value modelType(Value code) noexcept;
  /// The type of the members in a block that the token opens, or `MemberType::NONE`.
  static MemberType::Value memberType(Value code) noexcept;

  /// The token for a kind. A kind for which the parser has no token gives `INTERNAL_ERROR`, which the lexer drops.
  static Value convert(Kind kind) noexcept;
  /// True for a token that a reserved word gives.
  static bool isReservedKeyword(Value code) noexcept;
};

} // namespace tessarin::compiler::core
