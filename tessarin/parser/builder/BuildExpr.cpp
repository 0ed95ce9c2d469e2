// Expressions by the kind of their node; what is a reference is built in BuildReference.cpp.
#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/stack.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"
#include "tessarin/parser/builder/BuildReference.hpp"
#include "tessarin/parser/builder/TreeBuilder.hpp"

#include <exception>
#include <new>
#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages
using K = NonTerminal;

namespace {

constexpr const char* buildExprSignature =
    "tessarin::compiler::core::Expr tessarin::compiler::core::ASTBuilder::buildExpr(const "
    "tessarin::compiler::core::ParseTree&) const";

UnitLiteral buildUnitLiteral(const Token& token) {
  try {
    return unitOf(token);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) { // the text is not ASCII, or no unit
    raiseAt<InvalidUnitLiteral>(token.location(), nvf::ustring(withoutQuotes(token)));
  }
}

Expr buildTerminal(const TreeBuilder& builder, const Token& token) {
  switch (token.code()) {
  case TokenId::NUMBER: return NumberLiteral(nvf::detail::NumberStringCheck()(token.text().view()), token.range());
  case TokenId::STRING:
  case TokenId::STRING_LITERAL: return builder.toCvLiteral(token);
  case TokenId::END: return EndIndex(token);
  case TokenId::TIME: return Time(token);
  default:
    if (builder.unreadTokenListener()) builder.unreadTokenListener()(token);
    return Expr();
  }
}

Expr buildBinary(const TreeBuilder& builder, NodeView tree) {
  return convertBinary(tree, [&](NodeView operand) { return builder.buildExpr(operand); });
}

Expr buildUnary(const TreeBuilder& builder, NodeView tree, OpExprType type, std::size_t operand) {
  return OpExpr(type, builder.buildExpr(childOf(tree, operand)), rangeOf(tree));
}

Expr buildColon3(const TreeBuilder& builder, NodeView tree) {
  const Expr third = builder.buildExpr(childOf(tree, 4));
  const Expr second = builder.buildExpr(childOf(tree, 2));
  const Expr first = builder.buildExpr(childOf(tree, 0));
  return OpExpr(OpExprType::Colon3, first, second, third, rangeOf(tree));
}

Expr buildValueExpr(const TreeBuilder& builder, NodeView tree) {
  if (tree.count() != 3 && tree.count() != 4) fatal("Unexpected parse tree.", 452, buildExprSignature);
  const Expr value = builder.buildExpr(childOf(tree, 1));
  const UnitLiteral unit = buildUnitLiteral(childOf(tree, 2).token());
  const nvf::Range range = rangeOf(tree);
  if (tree.count() == 3) return ValueExpr(value, unit, range);
  return ValueExpr(value, unit, builder.toCvLiteral(childOf(tree, 3).token()), range);
}

Expr buildUnitExpr(const TreeBuilder& builder, NodeView tree) {
  const Expr value = builder.buildExpr(childOf(tree, 0));
  return UnitExpr(value, buildUnitLiteral(childOf(tree, 1).token()), rangeOf(tree));
}

Expr buildNonTerminal(const TreeBuilder& builder, NodeView tree) {
  if (operandCount(tree) == 2) return buildBinary(builder, tree);
  switch (tree.code()) {
  case K::Colon3: return buildColon3(builder, tree);
  case K::PlusExponent: return buildUnary(builder, tree, OpExprType::UnaryPlus, 1);
  case K::MinusExponent: return buildUnary(builder, tree, OpExprType::UnaryMinus, 1);
  case K::NotExponent: return buildUnary(builder, tree, OpExprType::Not, 1);
  case K::UnaryPlus:
  case K::UnaryMinus:
  case K::Not:
  case K::Der: return buildUnary(builder, tree, operatorOf(tree), 1);
  case K::Transpose:
  case K::DotTranspose: return buildUnary(builder, tree, operatorOf(tree), 0);
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

Expr TreeBuilder::buildExpr(NodeView tree) const {
  if (tree.type() == 0) return buildTerminal(*this, tree.token());
  return nvf::with_stack([&] { return buildNonTerminal(*this, tree); });
}

MatrixExpr TreeBuilder::buildMatrixExpr(NodeView tree) const {
  return {mapChildren(childOf(tree, 1), [this](NodeView row) { return buildMatrixRow(row); }), rangeOf(tree)};
}

MatrixExpr::Row TreeBuilder::buildMatrixRow(NodeView tree) const {
  return mapChildren(tree, [this](NodeView element) { return buildExpr(element); });
}

FieldValueArrayExpr TreeBuilder::buildFieldValueArrayExpr(NodeView tree) const {
  return {buildIdentValuePairs(childOf(tree, 0)), rangeOf(tree)};
}

} // namespace tessarin::compiler::core
