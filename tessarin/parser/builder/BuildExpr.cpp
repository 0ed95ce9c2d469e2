// Expressions by the kind of their node; what is a reference is built in BuildReference.cpp.
#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/stack.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"
#include "tessarin/parser/builder/BuildReference.hpp"

#include <exception>
#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages
using K = NonTerminal;

namespace {

constexpr const char* buildExprSignature =
    "tessarin::compiler::core::Expr tessarin::compiler::core::ASTBuilder::buildExpr(const "
    "tessarin::compiler::core::ParseTree&) const";

/// The content of a string token as a unit. Quotes in it are not doubled: a unit text is never escaped, intended.
UnitLiteral unitLiteral(const Token& token) {
  const nvf::ustring_view quoted = token.text().view();
  const nvf::ustring content(quoted.size() < 2 ? nvf::ustring_view() : quoted.substr(1, quoted.size() - 2));
  try {
    return {nvf::detail::CheckExprString()(nvf::detail::AsciiStringCheck()(content)), token.range()};
  } catch (const std::exception&) { // the text is not ASCII, or no unit
    raiseAt<InvalidUnitLiteral>(token.location(), content);
  }
}

/// Whether the kind is that of an operator between two operands.
bool isBinary(const ParseTree& tree) {
  if (tree.type() == 0) return false;
  switch (tree.code()) {
  case K::Colon:
  case K::Add:
  case K::Sub:
  case K::Power:
  case K::DotPower:
  case K::Mul:
  case K::DotMul:
  case K::Div:
  case K::DotDiv:
  case K::RDiv:
  case K::DotRDiv:
  case K::Lt:
  case K::Le:
  case K::Gt:
  case K::Ge:
  case K::Eq:
  case K::Ne:
  case K::OrOr:
  case K::Or:
  case K::And:
  case K::AndAnd: return true;
  default: return false;
  }
}

Expr buildTerminal(const ASTBuilder& builder, const Token& token) {
  switch (token.code()) {
  case TokenId::NUMBER: return NumberLiteral(nvf::detail::NumberStringCheck()(token.text().view()), token.range());
  case TokenId::STRING:
  case TokenId::STRING_LITERAL: return builder.toCvLiteral(token);
  case TokenId::END: return EndIndex(token);
  case TokenId::TIME: return Time(token);
  default: return Expr();
  }
}

/// An operator with operands to both sides. Right operands are built before left ones, so that the fault that stands
/// last is the one that is reported. Chains to the left take a loop and no recursion.
Expr buildBinary(const ASTBuilder& builder, const ParseTree& tree) {
  struct Step {
    const ParseTree* tree;
    Expr right;
  };
  std::vector<Step> steps;
  const ParseTree* left = &tree;
  for (; isBinary(*left); left = &left->child(0)) {
    steps.push_back({left, builder.buildExpr(childOf(*left, 2))});
  }
  Expr result = builder.buildExpr(*left);
  for (; !steps.empty(); steps.pop_back()) {
    const Step& step = steps.back();
    result = OpExpr(OpExpr::operatorType(step.tree->code()), result, step.right, builder.computeRange(*step.tree));
  }
  return result;
}

Expr buildUnary(const ASTBuilder& builder, const ParseTree& tree, OpExprType type, std::size_t operand) {
  return OpExpr(type, builder.buildExpr(childOf(tree, operand)), builder.computeRange(tree));
}

Expr buildColon3(const ASTBuilder& builder, const ParseTree& tree) {
  const Expr third = builder.buildExpr(childOf(tree, 4));
  const Expr second = builder.buildExpr(childOf(tree, 2));
  const Expr first = builder.buildExpr(childOf(tree, 0));
  return OpExpr(OpExprType::Colon3, first, second, third, builder.computeRange(tree));
}

Expr buildValueExpr(const ASTBuilder& builder, const ParseTree& tree) {
  if (tree.count() != 3 && tree.count() != 4) fatal("Unexpected parse tree.", 452, buildExprSignature);
  const Expr value = builder.buildExpr(childOf(tree, 1));
  const UnitLiteral unit = unitLiteral(childOf(tree, 2).token());
  const nvf::Range range = builder.computeRange(tree);
  if (tree.count() == 3) return ValueExpr(value, unit, range);
  return ValueExpr(value, unit, builder.toCvLiteral(childOf(tree, 3).token()), range);
}

Expr buildUnitExpr(const ASTBuilder& builder, const ParseTree& tree) {
  const Expr value = builder.buildExpr(childOf(tree, 0));
  return UnitExpr(value, unitLiteral(childOf(tree, 1).token()), builder.computeRange(tree));
}

Expr buildNonTerminal(const ASTBuilder& builder, const ParseTree& tree) {
  if (isBinary(tree)) return buildBinary(builder, tree);
  switch (tree.code()) {
  case K::Colon3: return buildColon3(builder, tree);
  case K::PlusExponent: return buildUnary(builder, tree, OpExprType::UnaryPlus, 1);
  case K::MinusExponent: return buildUnary(builder, tree, OpExprType::UnaryMinus, 1);
  case K::NotExponent: return buildUnary(builder, tree, OpExprType::Not, 1);
  case K::UnaryPlus:
  case K::UnaryMinus:
  case K::Not:
  case K::Der: return buildUnary(builder, tree, OpExpr::operatorType(tree.code()), 1);
  case K::Transpose:
  case K::DotTranspose: return buildUnary(builder, tree, OpExpr::operatorType(tree.code()), 0);
  case K::ParenExpr: return builder.buildExpr(childOf(tree, 1)); // parentheses leave no trace, not even in the range
  case K::Matrix: return builder.buildMatrixExpr(tree);
  case K::FieldValueArray: return builder.buildFieldValueArrayExpr(tree);
  case K::EqnIfExpr: return builder.buildIfExpr(tree);
  case K::EqnLetExpr: return builder.buildLetExpr(tree);
  case K::ValueExpr: return buildValueExpr(builder, tree);
  case K::UnitExpression: return buildUnitExpr(builder, tree);
  case K::Subsref: return buildReference(builder, tree);
  default: fatal(notRecognized, 496, buildExprSignature);
  }
}

} // namespace

Expr ASTBuilder::buildExpr(const ParseTree& tree) const {
  if (tree.type() == 0) return buildTerminal(*this, tree.token());
  return nvf::with_stack([&] { return buildNonTerminal(*this, tree); });
}

MatrixExpr ASTBuilder::buildMatrixExpr(const ParseTree& tree) const {
  return {mapChildren(childOf(tree, 1), [this](const ParseTree& row) { return buildMatrixRow(row); }),
          computeRange(tree)};
}

MatrixExpr::Row ASTBuilder::buildMatrixRow(const ParseTree& tree) const {
  return mapChildren(tree, [this](const ParseTree& element) { return buildExpr(element); });
}

FieldValueArrayExpr ASTBuilder::buildFieldValueArrayExpr(const ParseTree& tree) const {
  return {buildIdentValuePairs(childOf(tree, 0)), computeRange(tree)};
}

} // namespace tessarin::compiler::core
