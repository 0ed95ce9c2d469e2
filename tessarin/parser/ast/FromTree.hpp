// What everything that makes values of a parse tree reads off it in the same way.
#pragma once

#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/ast/Expr.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <cstddef>
#include <span>
#include <type_traits>
#include <vector>

namespace tessarin::compiler::core {

// ---- the tree ----

/// From the first to the last token; empty where there is none.
nvf::Range rangeOf(const ParseTree& tree);

/// The place of the first token below; a default one where a tree that no text gives has none.
nvf::Location placeOf(const ParseTree& tree);

/// Where fatal diagnostics about trees that the grammar does not yield say that they come from, and what they say.
inline constexpr const char* fromTreeSource = "parser/ast/ASTBuilder";
inline constexpr const char* notRecognized = "Parse tree node not recognized.";

/// The child at `i`. Where there is none, the tree is one that the grammar does not yield: a fatal diagnostic.
const ParseTree& childOf(const ParseTree& tree, std::size_t i);

/// The children of a non-terminal from the one at `first` on. Any other tree is a fatal diagnostic.
std::span<const ParseTree> childrenOf(const ParseTree& tree, std::size_t first = 0);

/// What `convert` makes of each child from the one at `first` on.
template <class Convert>
auto mapChildren(const ParseTree& tree, Convert convert, std::size_t first = 0) {
  std::vector<std::invoke_result_t<Convert&, const ParseTree&>> result;
  const std::span<const ParseTree> children = childrenOf(tree, first);
  result.reserve(children.size());
  for (const ParseTree& child : children) result.push_back(convert(child));
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
inline OpExprType operatorOf(const ParseTree& tree) {
  return OpExpr::operatorType(tree.code());
}

/// The number of operands where the kind of the node is that of an operator; otherwise 0.
std::size_t operandCount(const ParseTree& tree);

/// An operator between two operands, which `convert` makes expressions of. Right operands are converted before left
/// ones, so that of several faults the one that stands last is reported. Chains to the left, which may be of any
/// length, take a loop and no recursion.
template <class Convert>
Expr convertBinary(const ParseTree& tree, Convert convert) {
  struct Step {
    const ParseTree* tree;
    Expr right;
  };
  std::vector<Step> steps;
  const ParseTree* left = &tree;
  for (; operandCount(*left) == 2; left = &childOf(*left, 0)) steps.push_back({left, convert(childOf(*left, 2))});
  Expr result = convert(*left);
  for (; !steps.empty(); steps.pop_back()) {
    const Step& step = steps.back();
    result = OpExpr(operatorOf(*step.tree), result, step.right, rangeOf(*step.tree));
  }
  return result;
}

} // namespace tessarin::compiler::core
