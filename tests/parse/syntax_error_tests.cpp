// The map from the token at fault to the message, and the generic text.
#include "tessarin/parser/parse/SyntaxError.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tessarin::compiler::core {
namespace {

/// The id and the arguments of the message for a token, without the place.
std::string messageFor(ParserState& state, TokenId::Value code, const Token* openConstruct = nullptr) {
  constexpr nvf::ustring_view text = u"word";
  state.current = Token(code, nvf::Location(), text.data(), text.size());
  try {
    raiseSyntaxError(state, openConstruct, "the generic text");
  } catch (const nvf::LocationException& e) {
    std::string described = e.id().id;
    for (std::size_t i = 1; i < e.id().arguments.size(); ++i) {
      described += ":" + nvf::encode_utf8(std::get<nvf::ustring>(e.id().arguments[i]));
    }
    return described;
  }
}

nvf::SourceBuffer emptyBuffer() {
  return {nvf::FileName(), nvf::ustring_view()};
}

using Map = std::map<TokenId::Value, std::string>;

/// Checks the message for each token above the end of the text: that of `special`, or else `otherwise`.
void checkMap(ParserState& state, const Map& special, const std::function<std::string(TokenId::Value)>& otherwise) {
  for (std::int32_t code = TokenId::EOI + 1; code <= TokenId::last; ++code) {
    const auto token = static_cast<TokenId::Value>(code);
    const auto row = special.find(token);
    EXPECT_EQ(messageFor(state, token), row == special.end() ? otherwise(token) : row->second)
        << TokenId::displayString(token);
  }
}

const std::string generic = "BisonSyntaxError:the generic text";

TEST(SyntaxErrorMap, InEquations) {
  ParserState state(emptyBuffer());
  state.inEquations = true;
  Map special{
      {TokenId::FOR, "IllegalEquationControlFlow:word"},
      {TokenId::SWITCH, "IllegalEquationControlFlow:word"},
      {TokenId::TRY, "IllegalEquationControlFlow:word"},
      {TokenId::WHILE, "IllegalEquationControlFlow:word"},
      {TokenId::EQUATIONS, "IllegalNestedEquation"},
      {TokenId::EQUATION, "IllegalNestedEquation"},
      {TokenId::LB, "ImproperGrouping"},
      {TokenId::RB, "ImproperGrouping"},
      {TokenId::LP, "ImproperGrouping"},
      {TokenId::RP, "ImproperGrouping"},
      {TokenId::LC, "ImproperGrouping"},
      {TokenId::RC, "ImproperGrouping"},
  };
  for (const auto code : {TokenId::LT, TokenId::LE, TokenId::GT, TokenId::GE, TokenId::EQ, TokenId::NE, TokenId::CNE,
                          TokenId::AND, TokenId::ANDAND, TokenId::OR, TokenId::OROR, TokenId::NOT}) {
    special[code] = "IllegalEquationOperator";
  }
  checkMap(state, special, [](TokenId::Value) { return generic; });
}

TEST(SyntaxErrorMap, Elsewhere) {
  ParserState state(emptyBuffer());
  const Map special{
      {TokenId::FUNCTION_TOKEN, "IllegalFunctionDefinition"},
      {TokenId::DDOMAIN, "IllegalModelDefinition"},
      {TokenId::COMPONENT, "IllegalModelDefinition"},
      {TokenId::EQUATIONS, "IllegalEquationDefinition"},
      {TokenId::EQUATION, "IllegalEquationDefinition"},
      {TokenId::LB, "ImproperGrouping"},
      {TokenId::RB, "ImproperGrouping"},
      {TokenId::LP, "ImproperGrouping"},
      {TokenId::RP, "ImproperGrouping"},
      {TokenId::LC, "ImproperGrouping"},
      {TokenId::RC, "ImproperGrouping"},
      {TokenId::SEMERR, "ImproperGrouping"},
      {TokenId::EQUALS, "InvalidLhsOfAssignment"},
      {TokenId::COMMA, "UnexpectedSep"},
      {TokenId::SEMI, "UnexpectedSep"},
      {TokenId::EOL, "UnexpectedSep"},
      {TokenId::ID, "MissingOperator"},
      {TokenId::NUMBER, "MissingOperator"},
      {TokenId::STRING, "MissingOperator"},
      {TokenId::STRING_LITERAL, "MissingOperator"},
      {TokenId::UNTERM, "UnterminatedString"},
      {TokenId::UNTERM_STRING_LITERAL, "UnterminatedStringLiteral"},
      {TokenId::INCOMPLETE_COMMENT, "UnterminatedBlockComment"},
      {TokenId::BAD_CHAR, "IllegalCharacter"},
      {TokenId::DEEP_PAREN, "ParenthesisDepth"},
      {TokenId::EOLERR, "UnbalancedParens"},
      {TokenId::DEEP_NEST, "DeepNestFcns"},
      {TokenId::DEEP_STMT, "DeepStatements"},
      {TokenId::DEEP_COM, "DeepBlockComments"},
  };
  checkMap(state, special, [](TokenId::Value code) {
    return TokenId::isReservedKeyword(code) ? "IllegalReservedKeywordUsage:word" : generic;
  });
}

TEST(SyntaxErrorMap, Context) {
  ParserState state(emptyBuffer());
  state.functionDepth = 1;
  EXPECT_EQ(messageFor(state, TokenId::FUNCTION_TOKEN), "FunctionDef");

  // A keyword without a text.
  state.current = Token(TokenId::WHEN, nvf::Location(), nullptr, 0);
  try {
    raiseSyntaxError(state, nullptr, "");
    FAIL();
  } catch (const nvf::LocationException& e) {
    EXPECT_EQ(std::get<nvf::ustring>(e.id().arguments.at(1)), u"????");
  }
}

TEST(SyntaxErrorMap, EndOfTheText) {
  ParserState state(emptyBuffer());
  state.inEquations = true; // does not count here
  const nvf::Location place(nvf::FileName(), nvf::LineColumn(3, 4));
  const Token open(TokenId::FOR, place, nullptr, 0);
  EXPECT_EQ(messageFor(state, TokenId::EOI), "IncompleteStatement");
  EXPECT_EQ(messageFor(state, TokenId::EOI, &open), "MissingEnd");
  state.lastClosedFunction = nvf::BasicTableString<char16_t>(u"f");
  EXPECT_EQ(messageFor(state, TokenId::EOI, &open), "MissingEnd") << "no function is open";
  state.functionDepth = 1;
  EXPECT_EQ(messageFor(state, TokenId::EOI, &open), "MixedClosedAndOpenFunctionDefs:f");
}

TEST(SyntaxErrorText, DisplayForm) {
  const std::map<std::string, std::string> rows{
      {"ID", "ID"},
      {"$end", "$end"},
      {"\"number\"", "number"},
      {"\",\"", "\",\""},
      {"\"'\"", "\"'\""},
      {"\".'\"", "\".'\""},
      {"\"\\\\\"", "\\"},
      {"\".\\\\\"", ".\\"},
      {"\"end of line \"", "end of line "},
      {"\"a\\b\"", "\"a\\b\""},
      {"", ""},
  };
  for (const auto& [name, shown] : rows) EXPECT_EQ(displayForm(name), shown);
}

TEST(SyntaxErrorText, UpToFourExpectedTokens) {
  constexpr auto symbol = [](TokenId::Value code) { return static_cast<int>(code) - 255; };
  const std::vector<int> all{symbol(TokenId::COMMA), symbol(TokenId::ID), symbol(TokenId::NUMBER),
                             symbol(TokenId::EOL)};
  const int unexpected = symbol(TokenId::EOI);
  const std::span<const int> expected(all);
  EXPECT_EQ(syntaxErrorMessage(std::nullopt, expected), "syntax error");
  EXPECT_EQ(syntaxErrorMessage(0, {}), "syntax error, unexpected $end");
  EXPECT_EQ(syntaxErrorMessage(2, {}), "syntax error, unexpected $undefined");
  EXPECT_EQ(syntaxErrorMessage(unexpected, expected.first(1)), "syntax error, unexpected EOI, expecting \",\"");
  EXPECT_EQ(syntaxErrorMessage(unexpected, expected),
            "syntax error, unexpected EOI, expecting \",\" or ID or number or end of line");
}

} // namespace
} // namespace tessarin::compiler::core
