// How the scanner's state follows the tokens. Private to the lexical stage.
#pragma once

#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/lex/Kind.hpp"
#include "tessarin/parser/lex/State.hpp"

#include <cstdint>

namespace tessarin::compiler::core {

/// What has been seen on a line, for callers that ask whether ordinary code starts a statement on it.
enum class StatementCode : std::uint8_t {
  Nothing, ///< no token at the start of a statement
  Begun,   ///< such tokens, but none that is code
  Code,    ///< ordinary code
  Special  ///< a function, a model or a fault
};

/// Applies a token that is delivered to `state` and `statementCode`. `rest` is the text behind all the tokens of the
/// scanning step that made it.
void applyToken(State& state, StatementCode& statementCode, Kind kind, ustring_view rest) noexcept;

} // namespace tessarin::compiler::core
