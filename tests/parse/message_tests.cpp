// How the messages of the parse family say where they are, and those that only a state of the parser leads to.
// Each of the others has a text that leads to it in tests/data/messages.txt.
#include "tessarin/parser/parse/ParserState.hpp"

#include "support/parsing.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace tessarin::test {
namespace {

using namespace compiler::core;

/// Where a message is placed is its first argument: errors show the column, warnings do not.
TEST(ParseMessages, TheFirstArgumentSaysWhere) {
  const auto where = [](const nvf::Message& message) {
    return nvf::encode_utf8(std::get<nvf::ustring>(message.id().arguments.at(0)));
  };
  const std::string source = "component c\nequation\na b";
  const Parsed parsed = parse(source, "dir/c.tsn");
  ASSERT_TRUE(parsed.fault);
  EXPECT_EQ(where(*parsed.fault), "dir/c.tsn:3:3");
  ASSERT_EQ(parsed.warnings.size(), 1U);
  EXPECT_EQ(where(parsed.warnings[0]), "dir/c.tsn:2");
}

/// Parses from a state that no text leads to.
Parsed parseFrom(const std::string& source, const std::function<void(ParserState&)>& prepare) {
  Parser parser(bufferOf(source));
  prepare(parser.impl());
  return parse(std::move(parser));
}

TEST(ParseMessages, StatementBehindAClosedFunction) {
  const auto behindFunction = [](ParserState& state) {
    state.lastClosedFunction = nvf::BasicTableString<char16_t>(u"f");
  };
  const Parsed refused = parseFrom(";\nx = 1\ny", behindFunction);
  ASSERT_TRUE(refused.fault);
  EXPECT_EQ(describe(*refused.fault), "StatementNotInAFunction(f) at 2:6");
  EXPECT_FALSE(parseFrom(";,\n", behindFunction).fault) << "separators pass";
  EXPECT_FALSE(parseFrom("x = 1",
                         [](ParserState& state) {
                           state.lastClosedFunction = nvf::BasicTableString<char16_t>(u"f");
                           state.functionDepth = 1;
                         })
                   .fault)
      << "as do statements in a function";
}

TEST(ParseMessages, NestedEquationsByTheAction) {
  for (const std::string keyword : {"equations", "equation"}) {
    const Parsed refused =
        parseFrom("component c\n  " + keyword + "\n", [](ParserState& state) { state.inEquations = true; });
    ASSERT_TRUE(refused.fault);
    EXPECT_EQ(describe(*refused.fault), "IllegalNestedEquation at 2:3");
    EXPECT_EQ(refused.warnings.size(), keyword == "equation" ? 1U : 0U) << "the warning comes first";
  }
}

TEST(ParseMessages, CommandWithUnquotedArguments) {
  Parser parser(bufferOf("hold on off\n"));
  ParserState& state = parser.impl();
  parser.tokenListener([&state](const Token& token) {
    if (token.code() != TokenId::ID) return;
    State scanner = state.lexer.tokenizer().state();
    scanner.lState = LState::DUAL_ARG;
    state.lexer.tokenizer().setState(scanner);
  });
  const Parsed refused = parse(std::move(parser));
  ASSERT_TRUE(refused.fault);
  EXPECT_EQ(describe(*refused.fault), "IllegalUseOfCommandDuality at 1:1");
}

} // namespace
} // namespace tessarin::test
