// Setup functions of hostile size, on a stack of 1 MiB.
#include "setup/converting.hpp"
#include "support/large.hpp"
#include "support/small_stack.hpp"

#include <functional>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

std::string repeat(std::string_view text, std::size_t n) {
  std::string result;
  for (std::size_t i = 0; i < n; ++i) result += text;
  return result;
}

/// Takes statements through everything that walks them, and returns the length of their text.
std::size_t exercise(const std::string& statements) {
  std::size_t length = 0;
  onSmallStack([&] {
    const ParseTree tree = setupTree(statements);
    const SimpleSetupStmt stmt = to_simple_setup_stmt(tree, findDiagnostic);
    const SimpleSetupStmt other = to_simple_setup_stmt(tree, findDiagnostic);
    EXPECT_TRUE(stmt == other);
    EXPECT_TRUE(equal_ignore_annotation(stmt, strip(stmt)));
    EXPECT_EQ(hash_value(stmt), hash_value(other));
    std::size_t digested = 0;
    nvf::DigestSink sink = [&digested](const char*, unsigned long size) { digested += size; };
    incorporate_data(sink, stmt);
    EXPECT_GT(digested, 0U);
    length = printed(stmt).size();
  });
  return length;
}

LARGE_TEST(SetupSize, MillionStatements) {
  constexpr std::size_t many = 1'000'000;
  const std::string statements = repeat("x=1;", many);
  onSmallStack([&] {
    const SimpleSetupStmt stmt = convert(statements);
    ASSERT_EQ(stmt.get<nvf::Expressions<SimpleSetupStmt>>().size(), many);
    EXPECT_EQ(printed(stmt).size(), std::string_view("x = 1;\n").size() * many);
  });
}

LARGE_TEST(SetupSize, LongChainsAndDeepNests) {
  constexpr std::size_t links = 10'000;
  constexpr std::size_t depth = 1'000; // the indents of the text grow with its square
  EXPECT_EQ(exercise("if a, " + repeat("elseif b, x = 1;\n", links) + "else, y = 1; end"),
            std::string_view("if a\nelse\n  y = 1;\nend\n").size() +
                std::string_view("elseif b\n  x = 1;\n").size() * links);
  // An `else` that holds one `if` is an `elseif`.
  EXPECT_EQ(exercise(repeat("if a, else, ", links) + "x = 1;" + repeat("\nend", links)),
            std::string_view("if a\nelse\n  x = 1;\nend\n").size() +
                std::string_view("elseif a\n").size() * (links - 1));
  EXPECT_EQ(exercise(repeat("if a\n", depth) + "x = 1;" + repeat("\nend", depth)),
            std::string_view("if a\nend\n").size() * depth + 2 * depth * (depth - 1) +
                std::string_view("x = 1;\n").size() + 2 * depth);
}

LARGE_TEST(SetupSize, LongAndDeepExpressions) {
  constexpr std::size_t many = 100'000;
  constexpr std::size_t depth = 9'000;
  EXPECT_EQ(exercise("x = 1" + repeat(" + 1", many) + ";"), 7 + 4 * many);
  EXPECT_EQ(exercise("x" + repeat(".y", many) + " = x" + repeat(".y", many) + ";"), 7 + 4 * many);
  EXPECT_EQ(exercise("x = " + repeat("-", depth) + "1;"), 7 + depth);
}

LARGE_TEST(SetupSize, DeepFaultsAreRaisedOnASmallStack) {
  constexpr std::size_t depth = 9'000;
  std::string fault;
  onSmallStack([&] { fault = converted(repeat("if a\n", depth) + "x = 1" + repeat("\nend", depth)); });
  EXPECT_EQ(fault, "SimpleSetupMissingSemicolonInAssignment at c.tsn:" + std::to_string(depth + 1));
  onSmallStack([&] { fault = converted("x = " + repeat("~", depth) + "2i;"); });
  EXPECT_EQ(fault, "SimpleSetupUnsupportedExpression at c.tsn:1");
}

} // namespace
