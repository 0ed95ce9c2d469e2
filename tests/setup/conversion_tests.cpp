// What the statements of a setup function become, and what is refused of them.
#include "setup/converting.hpp"

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

struct Row {
  std::string source;
  std::string expected;
};

TEST(SetupConversion, Statements) {
  const Row rows[] = {
      {"", ""},
      {"\n;, ;\n\n", ""},
      {"x = 1;", "x = 1;\n"},
      {"a.b.c = x(2);", "a.b.c = x(2);\n"},
      {"[a] = 1;", "a = 1;\n"},
      {"[\n a.b,] = 1;", "a.b = 1;\n"},
      {"mode = 1; value = 2; x.initial = 3;", "mode = 1;\nvalue = 2;\nx.initial = 3;\n"},
      {"x = 1;, y = 2;;\n z = 3;", "x = 1;\ny = 2;\nz = 3;\n"},
      {"error('a:b', 'text')", "error('a:b', 'text');\n"},
      {"warning('a:b', 'it''s'), x = 1;", "warning('a:b', 'it's');\nx = 1;\n"},
      {"error('', '')", "error('', '');\n"},
      {"if c, end", "if c\nend\n"},
      {"if c, ;, else, end", "if c\nend\n"},
      {"if c, x = 1; else y = 2; end", "if c\n  x = 1;\nelse\n  y = 2;\nend\n"},
      {"if a, x = 1; elseif b, x = 2; y = 2; elseif c, else, x = 3; end",
       "if a\n  x = 1;\nelseif b\n  x = 2;\n  y = 2;\nelseif c\nelse\n  x = 3;\nend\n"},
      {"if a, if b, x = 1; end, end", "if a\n  if b\n    x = 1;\n  end\nend\n"},
      // An `if` that is all of an `else` is no other value than an `elseif`.
      {"if a, else, if b, x = 1; end, end", "if a\nelseif b\n  x = 1;\nend\n"},
      {"if a, else, if b, end, x = 1; end", "if a\nelse\n  if b\n  end\n  x = 1;\nend\n"},
  };
  for (const Row& row : rows) EXPECT_EQ(converted(row.source), row.expected) << row.source;
  EXPECT_EQ(to_simple_setup_stmt(ParseTree(), findDiagnostic), SimpleSetupStmt());
}

TEST(SetupConversion, ShapesOfTheResult) {
  EXPECT_EQ(convert("x = 1;").id(), 1U) << "a list of one statement is that statement";
  const SimpleSetupStmt chain = convert("if a, x = 1; elseif b, x = 2; y = 2; else, end");
  const SimpleSetupIfStmt& first = chain.get<SimpleSetupIfStmt>();
  EXPECT_EQ(first.branch(true).id(), 1U);
  const SimpleSetupIfStmt& second = first.branch(false).get<SimpleSetupIfStmt>();
  EXPECT_EQ(second.branch(true).get<nvf::Expressions<SimpleSetupStmt>>().size(), 2U);
  EXPECT_EQ(second.branch(false), SimpleSetupStmt());
  EXPECT_EQ(nvf::encode_utf8(to_string(second.predicate())), "b");
}

TEST(SetupConversion, DiagnosticsGetTheirArgumentsAndTheRangeOfTheCall) {
  const SimpleSetupStmt stmt = convert("\n  error('a:b', 'it''s ''''');");
  const SimpleSetupErrorStmt& error = stmt.get<SimpleSetupErrorStmt>();
  EXPECT_EQ(error.message(), u"it's ''");
  EXPECT_EQ(error.range().begin(), nvf::Location(nvf::FileName("c.tsn"), nvf::LineColumn(3, 2)));
  EXPECT_EQ(error.range().end(), nvf::Location(nvf::FileName("c.tsn"), nvf::LineColumn(3, 27)));
}

TEST(SetupConversion, RefusedStatementsAndTheirPlaces) {
  const std::string expression = "SimpleSetupUnsupportedExpression at c.tsn:";
  const std::string statement = "SimpleSetupUnsupportedStatement at c.tsn:";
  const std::string semicolon = "SimpleSetupMissingSemicolonInAssignment at c.tsn:";
  const std::string indexing = "SimpleSetupIllegalIndexingLhs at c.tsn:";
  const std::string argument = "SimpleSetupInvalidDiagnosticArgument at c.tsn:";
  const Row rows[] = {
      {"\nx = 1", semicolon + "2"},
      {"x = 1, y = 1;", semicolon + "1"},
      {"[a] = 1", semicolon + "1"},
      {"[a, b] = 1", semicolon + "1"},
      {"x(1) = 'a'", semicolon + "1"},

      {"[a, b] = f(1);", "SimpleSetupWithMultipleLhs at c.tsn:1"},
      {"\n\n[] = f(1);", "SimpleSetupWithZeroLhs at c.tsn:3"},

      {"x(1) = 2;", indexing + "1"},
      {"a(1).b = 2;", indexing + "1"},
      {"[a.b(1)] = 2;", indexing + "1"},
      {"a. ...\nb(1). ...\nc = 2;", indexing + "2"},
      {"a. ...\nb. ...\nc(1) = 2;", indexing + "3"},
      {"x(1) = 'a';", expression + "1"}, // both sides are converted first

      {"x = ...\n 'a';", expression + "2"},
      {"x{1} = 1;", expression + "1"},
      {"a.(b) = 1;", expression + "1"},
      {"if ...\n 'a', end", expression + "2"},
      {"if a\nelseif ...\n2i, x = 1\nend", expression + "3"}, // the first fault of a chain is told
      {"if a\nx = 1\nelseif 2i, end", semicolon + "2"},
      {"if a\nelse\n x = 2i;\nend", expression + "3"},

      {"x = 1;\n y", statement + "2"},
      {"1 + 1;", statement + "1"},
      {"f('a:b', 'c');", statement + "1"},
      {"a.error('a:b', 'c');", statement + "1"},
      {"error{1};", statement + "1"},
      {"error;", statement + "1"},
      {"value(1, 'm') = 2;", statement + "1"},
      {"[ ...\n1] = 2;", statement + "2"},
      {"for i = 1, x = i; end", statement + "1"},
      {"while a, end", statement + "1"},
      {"switch a, case 1, end", statement + "1"},
      {"if a\n return\n end", statement + "2"},
      {"break", statement + "1"},

      {"error('a:b', ...\n c);", argument + "2"},
      {"error(:);", argument + "1"},
      {"if a\nelse\nerror('a:b', 1);\nend", argument + "3"},

      // A place is added to what the host raises, unless it has given one.
      {"if a\nrefuse('x');\nend", "Refused at c.tsn:2"},
      {"if a\nrefuseElsewhere();\nend", "Refused at elsewhere:0f"},
  };
  for (const Row& row : rows) EXPECT_EQ(converted(row.source), row.expected) << row.source;
}

} // namespace
