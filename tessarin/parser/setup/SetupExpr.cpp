// The expressions of a setup function by the kind of their node.
#include "tessarin/parser/setup/SetupExpr.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/ast/FromTree.hpp"
#include "tessarin/parser/parse/ParseTreeBuilder.hpp"
#include "tessarin/parser/setup/SetupConversion.hpp"

#include <algorithm>
#include <utility>

namespace tessarin::compiler::core {

using K = NonTerminal;

namespace {

/// Thrown for a form that has no place in a setup function; it does not leave this file.
struct Unrecognized {};

Expr convert(NodeView tree);

// ---- leaves ----

/// The name that a leaf is.
Ident identOf(NodeView leaf) {
  // The parser reads "~" as a name, too, where a result is not wanted.
  if (!leaf.isTerminalType(TokenId::ID) || !nvf::is_identifier(leaf.token().text().view())) throw Unrecognized();
  return Ident(leaf.token());
}

Expr convertTerminal(NodeView leaf) {
  const Token& token = leaf.token();
  if (token.code() == TokenId::ID) return Variable(identOf(leaf), {}, std::nullopt, token.range());
  if (token.code() == TokenId::NUMBER) {
    const nvf::NumberString number = nvf::detail::NumberStringCheck()(token.text().view());
    if (!number.isImaginary()) return NumberLiteral(number, token.range());
  }
  throw Unrecognized();
}

const Token& stringToken(NodeView tree) {
  if (!tree.isTerminalType(TokenId::STRING)) throw Unrecognized();
  return tree.token();
}

UnitLiteral convertUnit(NodeView tree) {
  try {
    return unitOf(stringToken(tree));
  } catch (const nvf::NotAscii&) {
    throw Unrecognized();
  } catch (const nvf::InvalidUnitExpression&) {
    throw Unrecognized();
  }
}

// ---- references ----

Subscript convertSubscript(NodeView tree) {
  if (tree.isTerminalType(TokenId::COLON)) return {Subscript::Type::Colon, tree.token().location()};
  // An `end` that is not the whole subscript, as in `a(end - 1)`, is unrecognized: intended.
  if (tree.isTerminalType(TokenId::END)) return Expr(EndIndex(tree.token()));
  return convert(tree);
}

bool isSubsref(NodeView tree) {
  return tree.isNonTerminalType(K::Subsref) && tree.count() == 4;
}

/// The subscripts of a `Subsref`: `name ( list )`.
ParenSubs convertSubscripts(NodeView subsref) {
  return {mapChildren(childOf(subsref, 2), convertSubscript),
          rangeOf(childOf(subsref, 1)) + rangeOf(childOf(subsref, 3))};
}

/// A dotted name, with or without subscripts behind its parts. The node of a long path is a chain to the left, which is
/// walked from its end.
Variable convertPath(NodeView path) {
  std::vector<IdParenSubs> steps; // the last one first
  NodeView rest = path;
  for (;;) {
    std::optional<ParenSubs> subs;
    if (isSubsref(rest)) {
      subs = convertSubscripts(rest);
      rest = childOf(rest, 0);
    }
    const bool isDot = rest.isNonTerminalType(K::Dot);
    const NodeView name = isDot ? childOf(rest, 2) : rest;
    steps.emplace_back(identOf(name), subs);
    if (!isDot) break;
    rest = childOf(rest, 0);
  }
  std::reverse(steps.begin(), steps.end());
  return idsubspath_to_variable(IdSubsPath(std::move(steps)), rangeOf(path));
}

/// Whether it is `value(x, 'unit')` or `value(x, 'unit', 'conversion')`, or would be with strings in these places.
bool isValue(NodeView subsref) {
  if (!isSubsref(subsref)) return false;
  const NodeView name = childOf(subsref, 0);
  const NodeView list = childOf(subsref, 2);
  return name.type() == 0 && name.token().text().view() == u"value" && list.isNonTerminalType(K::ExprList) &&
         (list.count() == 2 || list.count() == 3);
}

Expr convertValue(NodeView subsref) {
  const NodeView list = childOf(subsref, 2);
  const Expr value = convert(childOf(list, 0));
  const UnitLiteral unit = convertUnit(childOf(list, 1));
  if (list.count() == 2) return ValueExpr(value, unit, rangeOf(subsref));
  const Token& conversion = stringToken(childOf(list, 2));
  return ValueExpr(value, unit, StringLiteral(contentOf(conversion), conversion.range()), rangeOf(subsref));
}

// ---- compounds ----

Expr convertUnary(NodeView tree) {
  switch (tree.code()) {
  case K::Transpose:
  case K::DotTranspose: return OpExpr(operatorOf(tree), convert(childOf(tree, 0)), rangeOf(tree));
  case K::Der: throw Unrecognized(); // an operator of equations only
  default: return OpExpr(operatorOf(tree), convert(childOf(tree, 1)), rangeOf(tree));
  }
}

Expr convertColon3(NodeView tree) {
  const Expr first = convert(childOf(tree, 0));
  const Expr second = convert(childOf(tree, 2));
  const Expr third = convert(childOf(tree, 4));
  return OpExpr(OpExprType::Colon3, first, second, third, rangeOf(tree));
}

/// Rows without elements are left out.
Expr convertMatrix(NodeView tree) {
  std::vector<MatrixExpr::Row> rows;
  for (const NodeView row : childrenOf(childOf(tree, 1))) {
    if (row.count() != 0) rows.push_back(mapChildren(row, convert));
  }
  return MatrixExpr(rows, rangeOf(tree));
}

Expr convertFieldValueArray(NodeView tree) {
  // The place that a pair carries is here its own and not that of its last token: intended.
  const auto convertPair = [](NodeView pair) {
    return IdentValuePair(identOf(childOf(pair, 0)), convert(childOf(pair, 2)), placeOf(pair));
  };
  return FieldValueArrayExpr(nvf::Expressions<IdentValuePair>(mapChildren(childOf(tree, 0), convertPair)),
                             rangeOf(tree));
}

Expr convertNonTerminal(NodeView tree) {
  switch (operandCount(tree)) {
  case 1: return convertUnary(tree);
  case 2: return convertBinary(tree, convert);
  case 3: return convertColon3(tree);
  default: break;
  }
  switch (tree.code()) {
  case K::ParenExpr: return convert(childOf(tree, 1));
  case K::Matrix: return convertMatrix(tree);
  case K::FieldValueArray: return convertFieldValueArray(tree);
  case K::UnitExpression: return UnitExpr(convert(childOf(tree, 0)), convertUnit(childOf(tree, 1)), rangeOf(tree));
  case K::Dot: return convertPath(tree);
  case K::Subsref: return isValue(tree) ? convertValue(tree) : Expr(convertPath(tree));
  default: throw Unrecognized();
  }
}

Expr convert(NodeView tree) {
  if (tree.type() == 0) return convertTerminal(tree);
  return nvf::with_stack([&] { return convertNonTerminal(tree); });
}

} // namespace

std::optional<Expr> convertSetupExpr(NodeView tree) {
  try {
    return convert(tree);
  } catch (const Unrecognized&) {
    return std::nullopt;
  }
}

std::optional<Expr> to_setup_expr(const ParseTree& tree) {
  return convertSetupExpr(Flattened(tree).root());
}

} // namespace tessarin::compiler::core
