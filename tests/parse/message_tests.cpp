// Every message of the parse family: provoked by a source, or listed with the reason why none can.
#include "tessarin/parser/parse/ParserState.hpp"

#include "support/parsing.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>

namespace tessarin::test {
namespace {

using namespace compiler::core;

constexpr std::string_view catalog = "kelvane:tessarin:compiler:core:parse";

/// A source, and what its fault is; for a warning, what its first warning is.
struct Row {
  std::string source;
  std::string described;
};

std::string repeat(std::string_view text, std::size_t n) {
  std::string result;
  for (std::size_t i = 0; i < n; ++i) result += text;
  return result;
}

/// A model with an equations block of one item, in line 3.
std::string equation(const std::string& item) {
  return "component c\nequations\n" + item + "\nend\nend\n";
}

const std::vector<Row>& rows() {
  static const std::vector<Row> table{
      {equation("a < b < c"), "AmbiguousRelational at 3:1"},
      {equation("a ~= (b) <= c"), "AmbiguousRelational at 3:1"},
      {equation("a == ;"), "BisonSyntaxError(syntax error, unexpected ;) at 3:6"},
      {equation("x == {1, 2}"), "CellArrayInDeclarativeConstruct at 3:6"},
      {"[a; b] = f", "ColArrayOnLhs at 1:1"},
      {repeat("%{\n", 8), "DeepBlockComments at 8:1"},
      {repeat("- ", 60'000) + "x", "DeepStatements at 1:120002"},
      {"x.y() = 1", "EmptyIndices at 1:4"},
      {"component c\nevents\nwhen a\n[x] = 1\nend\nend\nend", "EventUpdateMultiReturnValue at 4:1"},
      {"component c\nfunction f\nx = function", "FunctionDef at 3:5"},
      {equation("if a, b end"), "IfWithNoElse at 3:9"},
      {"!ls", "IllegalBangStatement at 1:1"},
      {"component c\nbranches\ni : -a -> b;\nend\nend", "IllegalBranchExpression at 3:5"},
      {equation("x{1}"), "IllegalCellIndexInEquation at 3:1"},
      {"x = $", "IllegalCharacter at 1:5"},
      {equation("x.(y)"), "IllegalDotParenInEquation at 3:1"},
      {equation("for"), "IllegalEquationControlFlow(for) at 3:1"},
      {"x = equations", "IllegalEquationDefinition at 1:5"},
      {equation("x == & y"), "IllegalEquationOperator at 3:6"},
      {"x = function", "IllegalFunctionDefinition at 1:5"},
      {"global x", "IllegalGlobalStatement at 1:1"},
      {"x = component", "IllegalModelDefinition at 1:5"},
      {equation("x; equations"), "IllegalNestedEquation at 3:4"},
      {"component c\nfunction f\nfunction g\nend\nend\nend", "IllegalNestedFunction at 3:1"},
      {"persistent x", "IllegalPersistentStatement at 1:1"},
      {"x = when", "IllegalReservedKeywordUsage(when) at 1:5"},
      {"component c\nannotations\na(1) : x = 1\nend\nend", "IllegalSubscripts at 3:2"},
      {"try, end", "IllegalUseOfTry at 1:1"},
      {"x = )", "ImproperGrouping at 1:5"},
      {"x = ", "IncompleteStatement at 1:5"},
      {"function y = other\ndefinitions; end\nend", "InconsistentFunctionNameAndFileName(other) at 1:14"},
      {"component other\nend", "InconsistentModelNameAndFileName(other) at 1:11"},
      {"1 = 2", "InvalidLhsOfAssignment at 1:3"},
      {std::string(std::size_t{1} << 24U, ' ') + "x", "LineColumnTooLarge(c.tsn)"},
      {"function y = c\nend", "MissingDefinitionsKW at 2:1"},
      {"if a, for i = 1,", "MissingEnd at 1:7"},
      {"a b", "MissingOperator at 1:3"},
      {"component c\nfunction f\nend\nfunction g\n", "MixedClosedAndOpenFunctionDefs(f) at 5:1"},
      {"x = " + repeat("(", 33), "ParenthesisDepth at 1:37"},
      {"function c\ndefinitions; end\nend", "TsnFunctionMissingOutputs at 1:10"},
      {"x = (1\n", "UnbalancedParens at 1:7"},
      {"x = , 3", "UnexpectedSep at 1:5"},
      {"x = \"a\"", "UnsupportedStringLiteralInSetup at 1:5"},
      {"x = 1\n%{\n", "UnterminatedBlockComment at 3:1"},
      {"x = 'a", "UnterminatedString at 1:5"},
      {"x = \"a", "UnterminatedStringLiteral at 1:5"},
      {"component c\nthroughs\nend\nend", "UseOfThroughsDeprecated at 2:1"},
      {"component c\nequation\nend\nend", "UseOfEquationDeprecated at 2:1"},
  };
  return table;
}

/// Messages that no text leads to.
const std::map<std::string, std::string> unreachable{
    {"DeepNestFcns", "the scanner makes no such token"},
    {"IllegalUseOfCommandDuality", "the scanner makes words of commands only where a caller sets its state so"},
    {"StatementNotInAFunction", "a file with functions of the statement language has statements inside them only"},
};

TEST(ParseMessages, EachAtItsPlace) {
  for (const Row& row : rows()) {
    const Parsed parsed = parse(row.source);
    const std::string shown = row.source.substr(0, 200);
    ASSERT_TRUE(parsed.fault || !parsed.warnings.empty()) << shown;
    const nvf::Message& message = parsed.fault ? *parsed.fault : parsed.warnings.front();
    EXPECT_EQ(describe(message), row.described) << shown;
    EXPECT_EQ(message.id().catalog, catalog);
    EXPECT_EQ(message.severity(), parsed.fault ? nvf::Severity::Error : nvf::Severity::Warning) << row.described;
  }
}

TEST(ParseMessages, AllOfTheFamilyAreProvokedOrListed) {
  std::set<std::string> known;
  for (const Row& row : rows()) known.insert(row.described.substr(0, row.described.find_first_of(" (")));
  for (const nvf::MessageInfo& info : nvf::all_messages()) {
    if (info.catalog != catalog) continue;
    const std::string id(info.id);
    EXPECT_NE(known.contains(id), unreachable.contains(id)) << id;
  }
}

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
