// What everything that makes values of a parse tree reads off it in the same way.
#pragma once

#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/ast/Expr.hpp"
#include "tessarin/parser/parse/FlatTree.hpp"

#include <cstddef>
#include <type_traits>
#include <vector>

namespace tessarin::compiler::core {

// ---- the tree ----

/// From the first to the last token; empty where there is none.
nvf::Range rangeOf(NodeView tree);

/// The place of the first token below; a default one where a tree that no text gives has none.
nvf::Location placeOf(NodeView tree);

/// Where fatal diagnostics about trees that the grammar does not yield say that they come from, and what they say.
inline constexpr const char* fromTreeSource = "parser/ast/ASTBuilder";
inline constexpr const char* notRecognized = "Parse tree node not recognized.";

/// The child at `i`. Where there is none, the tree is one that the grammar does not yield: a fatal diagnostic.
NodeView childOf(NodeView tree, std::size_t i);

/// The children of a non-terminal from the one at `first` on. Any other tree is a fatal diagnostic.
inline auto childrenOf(NodeView tree, std::size_t first = 0) {
  return tree.children(first);
}

/// What a node holds, where nodes of its own kind in it stand for what they hold.
std::vector<NodeView> rolled(NodeView tree);

/// What `convert` makes of each child from the one at `first` on.
template <class Convert>
auto mapChildren(NodeView tree, Convert convert, std::size_t first = 0) {
  std::vector<std::invoke_result_t<Convert&, NodeView>> result;
  const auto children = childrenOf(tree, first);
  result.reserve(children.size());
  for (const NodeView child : children) result.push_back(convert(child));
  return result;
}

// ---- strings ----

/// The text of a string token as it stands between its quotes.
nvf::ustring_view withoutQuotes(const Token& token);

/// The text that a string token of either sort stands for: of two of its quotes inside it one.
nvf::ustring contentOf(const Token& token);

/// The unit that a string token names. Quotes in it are not doubled: a unit text is never escaped, intended. Throws
/// `nvf::NotAscii` or `nvf::InvalidUnitExpression` where it is none.
UnitLiteral unitOf(const Token& token);

// ---- operators ----

/// The operator of a node, which must be one.
inline OpExprType operatorOf(NodeView tree) {
  return OpExpr::operatorType(tree.code());
}

/// The number of operands where the kind of the node is that of an operator; otherwise 0.
std::size_t operandCount(NodeView tree);

/// An operator between two operands, which `convert` makes expressions of. Right operands are converted before left
/// ones, so that of several faults the one that stands last is reported. Chains to the left, which may be of any
/// length, take a loop and no recursion.
template <class Convert>
Expr convertBinary(NodeView tree, Convert convert) {
  struct Step {
    NodeView tree;
    Expr right;
  };
  std::vector<Step> steps;
  NodeView left = tree;
  for (; operandCount(left) == 2; left = childOf(left, 0)) steps.push_back({left, convert(childOf(left, 2))});
  Expr result = convert(left);
  for (; !steps.empty(); steps.pop_back()) {
    const Step& step = steps.back();
    result = OpExpr(operatorOf(step.tree), result, step.right, rangeOf(step.tree));
  }
  return result;
}

} // namespace tessarin::compiler::core
