#include "tessarin/parser/parse/FlatTree.hpp"

#include "tessarin/foundation/stack.hpp"

#include <algorithm>
#include <stdexcept>

namespace tessarin::compiler::core {

namespace {

/// Whether child 0 of such a node is the left operand of an operator, the path before a step, or the part of a list
/// before an item. Chains of them are as long as the source likes and do not count as nesting.
constexpr bool growsToTheLeft(NonTerminal::Value kind) noexcept {
  switch (kind) {
  case NonTerminal::OrOr:
  case NonTerminal::AndAnd:
  case NonTerminal::Or:
  case NonTerminal::And:
  case NonTerminal::Lt:
  case NonTerminal::Le:
  case NonTerminal::Gt:
  case NonTerminal::Ge:
  case NonTerminal::Eq:
  case NonTerminal::Ne:
  case NonTerminal::Colon:
  case NonTerminal::Colon3:
  case NonTerminal::Add:
  case NonTerminal::Sub:
  case NonTerminal::Mul:
  case NonTerminal::DotMul:
  case NonTerminal::Div:
  case NonTerminal::DotDiv:
  case NonTerminal::RDiv:
  case NonTerminal::DotRDiv:
  case NonTerminal::Power:
  case NonTerminal::DotPower:
  case NonTerminal::Transpose:
  case NonTerminal::DotTranspose:
  case NonTerminal::Dot:
  case NonTerminal::DotParen:
  case NonTerminal::Subsref:
  case NonTerminal::CellIndex:
  case NonTerminal::AvPairs: return true;
  default: return false;
  }
}

} // namespace

std::uint16_t depthWith(std::uint16_t depth, std::uint32_t below, bool isFirst, NonTerminal::Value kind) noexcept {
  if (below < depth) return depth;
  const std::uint32_t own = isFirst && growsToTheLeft(kind) ? 0 : 1;
  return static_cast<std::uint16_t>(std::min<std::uint32_t>(below + own, std::numeric_limits<std::uint16_t>::max()));
}

void FlatTree::refuseSize() {
  throw std::length_error("too many nodes in a parse tree");
}

void FlatTree::reserveFor(std::size_t units) {
  // A token takes some four code units of usual text, blanks included; memory that is not used is not touched.
  tokens_.reserve(units / 3 + 16);
  nodes_.reserve(units / 4 + 16);
  children_.reserve(units / 2 + 16);
}

void FlatTree::shrink() {
  // Not `shrink_to_fit`, which keeps it to itself where memory has ended.
  const auto fit = []<class T>(std::vector<T>& list) { std::vector<T>(list.begin(), list.end()).swap(list); };
  fit(tokens_);
  fit(nodes_);
  fit(children_);
}

void FlatTree::grow(Node& node) {
  const std::size_t room = roomFor(std::size_t{node.count} + 1);
  const bool isLast = node.first + node.count == children_.size();
  const std::size_t first = isLast ? node.first : children_.size();
  if (first + room >= NodeRef::maxCount) refuseSize();
  children_.resize(first + room);
  if (!isLast)
    std::copy_n(children_.begin() + node.first, node.count, children_.begin() + static_cast<std::ptrdiff_t>(first));
  node.first = static_cast<std::uint32_t>(first);
}

void FlatTree::extendByParts(NodeRef list, NodeRef item) {
  if (item.isToken() || kind(item) != kind(list)) return append(list, item);
  nvf::with_stack([&] {
    for (std::size_t i = 0; i < nodes_[item.index()].count; ++i) extendByParts(list, children(item)[i]);
  });
}

NodeRef FlatTree::roll(NodeRef list) {
  const NonTerminal::Value own = kind(list);
  const std::span<const NodeRef> parts = children(list);
  const bool isFlat = std::none_of(parts.data(), parts.data() + parts.size(),
                                   [&](NodeRef child) { return !child.isToken() && kind(child) == own; });
  if (isFlat) return list;
  const NodeRef result = emptyNode(own);
  extendByParts(result, list);
  return result;
}

NodeRef FlatTree::trim(NodeRef node, std::size_t n) {
  const std::size_t kept = children(node).size() - std::min(n, children(node).size());
  const NodeRef result = emptyNode(kind(node));
  for (std::size_t i = 0; i < kept; ++i) append(result, children(node)[i]);
  return result;
}

} // namespace tessarin::compiler::core
