#include "tessarin/parser/parse/SyntaxError.hpp"

#include "tessarin/foundation/messages.hpp"

#include <algorithm>
#include <array>

namespace tessarin::compiler::core {

namespace messages = kelvane::tessarin::compiler::core::parse;

// ---- the generic text ----

std::string displayForm(std::string_view name) {
  if (name.empty() || name.front() != '"') return std::string(name);
  std::string shown;
  for (std::size_t i = 1; i < name.size() && name[i] != '"'; ++i) {
    if (name[i] == '\'' || name[i] == ',') return std::string(name);
    if (name[i] == '\\' && (++i == name.size() || name[i] != '\\')) return std::string(name);
    shown.push_back(name[i]);
  }
  return shown;
}

std::string_view symbolName(int symbol) {
  constexpr std::array<std::string_view, 3> special{"$end", "error", "$undefined"};
  if (symbol < static_cast<int>(special.size())) return special[static_cast<std::size_t>(symbol)];
  return TokenId::displayString(
      static_cast<TokenId::Value>(symbol + TokenId::first - static_cast<int>(special.size())));
}

std::string syntaxErrorMessage(std::optional<int> unexpected, std::span<const int> expected) {
  std::string text = "syntax error";
  if (!unexpected) return text;
  text += ", unexpected " + displayForm(symbolName(*unexpected));
  const char* separator = ", expecting ";
  for (const int symbol : expected) {
    text += separator + displayForm(symbolName(symbol));
    separator = " or ";
  }
  return text;
}

// ---- the message that fits ----

namespace {

/// Raises a message at the current token.
using Raise = void (*)(const ParserState& state, const std::string& text);

template <class Msg>
void plain(const ParserState& state, const std::string&) {
  raise<Msg>(state.current.location());
}

/// With the token's text.
template <class Msg>
void withText(const ParserState& state, const std::string&) {
  raise<Msg>(state.current.location(), state.current.text().view());
}

/// With the token's text, "????" where it has none.
template <class Msg>
void withToken(const ParserState& state, const std::string&) {
  const auto token = state.current.text().view();
  raise<Msg>(state.current.location(), token.empty() ? nvf::ustring_view(u"????") : token);
}

void generic(const ParserState& state, const std::string& text) {
  raise<messages::BisonSyntaxError>(state.current.location(), text);
}

void unbalancedOrSeparator(const ParserState& state, const std::string& text) {
  if (state.lexer.areParensUnbalanced()) plain<messages::UnbalancedParens>(state, text);
  plain<messages::UnexpectedSep>(state, text);
}

void functionDefinition(const ParserState& state, const std::string& text) {
  if (state.functionDepth != 0) plain<messages::FunctionDef>(state, text);
  plain<messages::IllegalFunctionDefinition>(state, text);
}

/// What tokens from `first` to `last` say.
struct Row {
  TokenId::Value first;
  TokenId::Value last;
  Raise raise;
};

/// Inside an equations block.
constexpr auto inEquations = std::to_array<Row>({
    {TokenId::LT, TokenId::NOT, plain<messages::IllegalEquationOperator>},
    {TokenId::LB, TokenId::RC, plain<messages::ImproperGrouping>},
    {TokenId::FOR, TokenId::FOR, withText<messages::IllegalEquationControlFlow>},
    {TokenId::SWITCH, TokenId::SWITCH, withText<messages::IllegalEquationControlFlow>},
    {TokenId::TRY, TokenId::TRY, withText<messages::IllegalEquationControlFlow>},
    {TokenId::WHILE, TokenId::WHILE, withText<messages::IllegalEquationControlFlow>},
    {TokenId::EQUATIONS, TokenId::EQUATION, plain<messages::IllegalNestedEquation>},
});

/// Reserved words elsewhere.
constexpr auto keywords = std::to_array<Row>({
    {TokenId::FUNCTION_TOKEN, TokenId::FUNCTION_TOKEN, functionDefinition},
    {TokenId::DDOMAIN, TokenId::COMPONENT, plain<messages::IllegalModelDefinition>},
    {TokenId::EQUATIONS, TokenId::EQUATION, plain<messages::IllegalEquationDefinition>},
});

/// Other tokens elsewhere.
constexpr auto elsewhere = std::to_array<Row>({
    {TokenId::LB, TokenId::RC, plain<messages::ImproperGrouping>},
    {TokenId::SEMERR, TokenId::SEMERR, plain<messages::ImproperGrouping>},
    {TokenId::EQUALS, TokenId::EQUALS, plain<messages::InvalidLhsOfAssignment>},
    {TokenId::COMMA, TokenId::SEMI, unbalancedOrSeparator},
    {TokenId::EOL, TokenId::EOL, unbalancedOrSeparator},
    {TokenId::ID, TokenId::STRING_LITERAL, plain<messages::MissingOperator>},
    {TokenId::UNTERM, TokenId::UNTERM, plain<messages::UnterminatedString>},
    {TokenId::UNTERM_STRING_LITERAL, TokenId::UNTERM_STRING_LITERAL, plain<messages::UnterminatedStringLiteral>},
    {TokenId::INCOMPLETE_COMMENT, TokenId::INCOMPLETE_COMMENT, plain<messages::UnterminatedBlockComment>},
    {TokenId::BAD_CHAR, TokenId::BAD_CHAR, plain<messages::IllegalCharacter>},
    {TokenId::DEEP_PAREN, TokenId::DEEP_PAREN, plain<messages::ParenthesisDepth>},
    {TokenId::EOLERR, TokenId::EOLERR, plain<messages::UnbalancedParens>},
    {TokenId::DEEP_NEST, TokenId::DEEP_NEST, plain<messages::DeepNestFcns>},
    {TokenId::DEEP_STMT, TokenId::DEEP_STMT, plain<messages::DeepStatements>},
    {TokenId::DEEP_COM, TokenId::DEEP_COM, plain<messages::DeepBlockComments>},
});

/// The first row that fits, or `otherwise`.
Raise find(std::span<const Row> rows, TokenId::Value code, Raise otherwise) {
  const auto row =
      std::find_if(rows.begin(), rows.end(), [code](const Row& r) { return code >= r.first && code <= r.last; });
  return row == rows.end() ? otherwise : row->raise;
}

Raise messageFor(const ParserState& state) {
  const TokenId::Value code = state.current.code();
  if (state.inEquations) return find(inEquations, code, generic);
  if (TokenId::isReservedKeyword(code)) {
    return find(keywords, code, withToken<messages::IllegalReservedKeywordUsage>);
  }
  return find(elsewhere, code, generic);
}

[[noreturn]] void raiseAtEnd(const ParserState& state, const Token* openConstruct) {
  if (!state.lastClosedFunction.empty() && state.functionDepth != 0) {
    raise<messages::MixedClosedAndOpenFunctionDefs>(state.current.location(), state.lastClosedFunction.view());
  }
  if (openConstruct != nullptr) raise<messages::MissingEnd>(openConstruct->location());
  raise<messages::IncompleteStatement>(state.current.location());
}

} // namespace

bool opensConstruct(TokenId::Value code) noexcept {
  switch (code) {
  case TokenId::FOR:
  case TokenId::IF:
  case TokenId::SWITCH:
  case TokenId::TRY:
  case TokenId::WHILE: return true;
  default: return false;
  }
}

void raiseSyntaxError(const ParserState& state, const Token* openConstruct, const std::string& text) {
  if (state.current.code() <= TokenId::EOI) raiseAtEnd(state, openConstruct);
  messageFor(state)(state, text);
  throw std::logic_error("a syntax error was not raised"); // every row raises
}

} // namespace tessarin::compiler::core
