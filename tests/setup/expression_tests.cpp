// The expressions of a setup function.
#include "setup/converting.hpp"

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

/// The right side of `x = source;`, or nothing.
std::optional<Expr> exprOf(std::string_view source) {
  const ParseTree function = setupTree("x = " + std::string(source) + ";");
  const ParseTree& assignment = function.child(0).child(5).child(0).child(0);
  return to_setup_expr(assignment.child(2));
}

/// Without its blanks: where the printed form has some does not matter here.
std::string packed(std::string text) {
  std::erase(text, ' ');
  return text;
}

/// The printed expression, "-" for one that has no place in a setup function.
std::string converted(std::string_view source) {
  const std::optional<Expr> expr = exprOf(source);
  return expr ? nvf::encode_utf8(to_string(*expr)) : "-";
}

TEST(SetupExpr, WhatPrintsAsItIsWritten) {
  for (const char* source :
       {// leaves
        "a", "mode", "value", "1.50", "1e3",
        // operators
        "a + b - c", "a*b.*c", "a/b./c", "a\\b.\\c", "(a^b)", "(a.^b)", "a:b", "a:b:c", "a < b", "a <= b", "a > b",
        "a >= b", "a == b", "a ~= b", "a & b", "a | b", "a && b", "a || b", "+a", "-a", "~a", "a'", "a.'", "(a + b)*c",
        "a - (b - c)",
        // compounds
        "[1, 2; 3, 4]", "[]", "[1; 2, 3]", "[[1, 2], 3]", "{a = 1, b = c(2)}", "{a + b, 'm/s'}", "{{1, 'm'}, 's'}",
        // references
        "a.b.c", "a(1)", "a(1).b(2, :).c", "a()", "a.b(:)", "a(end)", "a(b(end).c, [1, 2])", "a(1:2)",
        // values
        "value(a + b, 'm/s')", "value(1, 'm', 'it''s')", "value(1)", "value()", "value(1, 2, 3, 4)", "a.value(1, 2)"}) {
    EXPECT_EQ(packed(converted(source)), packed(source)) << source;
  }
}

TEST(SetupExpr, WhatLosesItsShape) {
  EXPECT_EQ(converted("((a))"), "a");
  EXPECT_EQ(converted("[1, 2\n\n 3, 4,]"), "[1, 2; 3, 4]");
  EXPECT_EQ(exprOf("[1;]")->get<MatrixExpr>().numOfRows(), 1U) << "rows without elements are left out";
  EXPECT_EQ(exprOf("[]")->get<MatrixExpr>().numOfRows(), 0U);
}

TEST(SetupExpr, Unrecognized) {
  for (const char* source : {"'a'",
                             "2i",
                             "1.5j",
                             "end",
                             "f('a')",
                             "[1, 'a']",
                             "{a = 'b'}",
                             "a(end - 1)",
                             "a([end])", // leaves out of place
                             "{1, 2}",
                             "{}",
                             "a{1}",
                             "a.(b)",
                             "a(1)(2)",
                             "a{1}.b",
                             "a{1}(2)",
                             "@sin",
                             "@(x) x", // forms of the statement language
                             "2^-1",
                             "2^+1",
                             "a.^~b", // exponents with a sign
                             "{1, 'm'' '}",
                             "{1, 'm*'}",
                             "{1, '\u00b5m'}",
                             "value(1, 'm*')",
                             "value(1, m)",
                             "value(1, '\u00b5m')",
                             "value('a', 'm')",
                             "value(:, 'm')",
                             "value(1, 'm', 2)",
                             "value(1, 'm', x)",
                             "value(1, :)"}) {
    EXPECT_EQ(converted(source), "-") << source;
  }
  EXPECT_EQ(to_setup_expr(ParseTree()), std::nullopt);
  // The parser makes a name of the "~" that stands for a result nobody wants.
  const ParseTree tilde(Token(TokenId::ID, nvf::Location(), u"~", 1));
  EXPECT_EQ(to_setup_expr(tilde), std::nullopt);
  EXPECT_EQ(to_setup_expr(ParseTree(NonTerminal::Dot, {tilde, tilde, tilde})), std::nullopt);
}

/// The columns of a range, relative to the right side: `begin-end`.
std::string columns(const nvf::Range& range) {
  const auto column = [](const nvf::Location& place) { return std::to_string(place.lineColumn().column() - 4); };
  return column(range.begin()) + "-" + column(range.end());
}

TEST(SetupExpr, RangesReachFromTheFirstToTheLastToken) {
  struct Case {
    const char* source;
    const char* range;
  };
  // A token without text of its own, such as a bracket, ends where it begins.
  const Case cases[] = {{"abc", "0-3"},    {"ab + cd", "0-7"}, {"a:b:cd", "0-6"},         {"(ab)", "1-3"},
                        {"[a, b]", "0-5"}, {"-ab", "0-3"},     {"value(1, 'm')", "0-12"}, {"a.b(1).cd", "0-9"},
                        {"ab'", "0-2"},    {"a(1)", "0-3"},    {"{1, 'm'}", "1-7"}};
  for (const Case& c : cases) {
    const std::optional<Expr> expr = exprOf(c.source);
    ASSERT_TRUE(expr) << c.source;
    EXPECT_EQ(columns(expr_range(*expr)), c.range) << c.source;
  }
  const std::optional<Expr> pairs = exprOf("{a = b, cd = e + f}");
  ASSERT_TRUE(pairs);
  const IdentValuePair pair = pairs->get<FieldValueArrayExpr>().pair(1);
  EXPECT_EQ(pair.rightLocation(), pair.location()) << "a pair carries its own place";
}

} // namespace
