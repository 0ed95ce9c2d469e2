// What a syntax error says: instead of recovering, the parser looks for the message that fits best.
#pragma once

#include "tessarin/parser/parse/ParserState.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tessarin::compiler::core {

/// How a symbol of the grammar shows in a message: a name in double quotes loses them, unless it holds a single quote,
/// a comma or a single backslash; a doubled backslash is one.
std::string displayForm(std::string_view name);

/// The name of a symbol of the grammar by its number: terminals are the codes of the tokens less 255.
std::string_view symbolName(int symbol);

/// The generic text: the unexpected symbol, or nothing where no token had been read, and up to four expected ones.
std::string syntaxErrorMessage(std::optional<int> unexpected, std::span<const int> expected);

/// Raises the message for a syntax error at the current token. `openConstruct` is the token of the innermost construct
/// of the statement language that is still open, or null; `text` is the generic text.
[[noreturn]] void raiseSyntaxError(const ParserState& state, const Token* openConstruct, const std::string& text);

/// Whether the token opens a construct whose `end` a file can lack.
bool opensConstruct(TokenId::Value code) noexcept;

} // namespace tessarin::compiler::core
