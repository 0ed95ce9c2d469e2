// What the classes that hold equation items tell of them, and where items stand.
#include "ast/builders.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

const EqnItem a = name("a", onLine(4));
const EqnItem b = name("b");
const EqnItem p = assertion(name("p"));

TEST(Items, ExpressionsAndAssertionsAreToldApart) {
  const IfExpr expr = ifThen(name("c"), {a, p, b}, {p, p, b}, {ElseifBranch(name("d"), {p, a})});
  EXPECT_EQ(expr.numOfIfEqnItems(), 3);
  EXPECT_EQ(expr.ifEqnItem(1), p);
  EXPECT_EQ(expr.numOfIfEqnExprs(), 2);
  EXPECT_EQ(expr.numOfIfEqnAssertions(), 1);
  EXPECT_EQ(expr.ifEqnExprs(), (std::vector<Expr>{name("a"), name("b")}));
  EXPECT_EQ(expr.ifEqnAssertions().size(), 1);
  EXPECT_EQ(expr.numOfElseEqnItems(), 3);
  EXPECT_EQ(expr.elseEqnItem(2), b);
  EXPECT_EQ(expr.numOfElseEqnExprs(), 1);
  EXPECT_EQ(expr.numOfElseEqnAssertions(), 2);
  EXPECT_EQ(expr.elseEqnExprs(), (std::vector<Expr>{name("b")}));
  EXPECT_EQ(expr.elseEqnAssertions().size(), 2);
  EXPECT_THROW((void)expr.ifEqnItem(3), std::out_of_range);
  EXPECT_THROW((void)expr.elseEqnItem(3), std::out_of_range);

  ASSERT_EQ(expr.numOfElseifBranches(), 1);
  const ElseifBranch& branch = expr.elseifBranch(0);
  EXPECT_EQ(branch.numOfEqnItems(), 2);
  EXPECT_EQ(branch.eqnItem(0), p);
  EXPECT_EQ(branch.numOfEqnExprs(), 1);
  EXPECT_EQ(branch.numOfEqnAssertions(), 1);
  EXPECT_EQ(branch.eqnExprs(), (std::vector<Expr>{name("a")}));
  EXPECT_EQ(branch.eqnAssertions().front(), p.get<EqnAssertion>());

  const LetExpr bound = let({declaration("x", name("y"))}, {p, a});
  EXPECT_EQ(bound.numOfDeclarations(), 1);
  EXPECT_EQ(bound.declarationAt(0).value(), name("y"));
  EXPECT_EQ(bound.numOfEqnItems(), 2);
  EXPECT_EQ(bound.eqnItem(1), a);
  EXPECT_EQ(bound.numOfEqnExprs(), 1);
  EXPECT_EQ(bound.numOfAssertions(), 1);
  EXPECT_EQ(bound.eqnExprs(), (std::vector<Expr>{name("a")}));
  EXPECT_EQ(bound.eqnAssertions().size(), 1);

  // A block tells of its own items, and not of those inside them.
  const EquationBlock block({EqnItem(Expr(expr)), p, a}, {}, nvf::Location());
  EXPECT_EQ(block.eqnExprs(), (std::vector<Expr>{expr, name("a")}));
  EXPECT_EQ(block.eqnAssertions().size(), 1);
}

TEST(Items, Places) {
  EXPECT_EQ(eqnitem_line(a), 4);
  EXPECT_EQ(eqnitem_location(a), onLine(4).begin());
  EXPECT_EQ(expr_line(name("a", onLine(7))), 7);
  const WhenClause clause(WhenBranch(name("w", onLine(2)), {}), {ElseWhenBranch(name("e", onLine(3)), {})});
  EXPECT_EQ(clause.location(), onLine(2).begin());
  EXPECT_EQ(clause.elseWhens().front().location(), onLine(3).begin());
}

TEST(Items, DefaultsAreEmpty) {
  EXPECT_EQ(IfExpr(), ifThen(Expr(), {}));
  EXPECT_EQ(ElseifBranch(), ElseifBranch(Expr(), {}));
  EXPECT_EQ(IdListValuePair().ids().size(), 0);
  EXPECT_EQ(IdentValuePair().ident().string(), u"x") << "intended";
}

TEST(Items, RowsOfAMatrix) {
  const MatrixExpr rows({{number("1"), number("2")}, {number("3")}}, nvf::Range());
  EXPECT_EQ(rows.element(0, 1), number("2"));
  EXPECT_EQ(rows.row(1).size(), 1);
  EXPECT_THROW((void)rows.element(1, 1), std::out_of_range);
  EXPECT_THROW((void)rows.row(2), std::out_of_range);
}

} // namespace
