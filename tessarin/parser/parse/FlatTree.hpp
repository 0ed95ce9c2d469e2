// The tree between the parser and what makes values of it: one array of tokens and one of nodes, which the automaton
// appends to. Private to the library; users see it as `ParseTree`, which is made of it when somebody looks inside.
//
// A node knows its children by their numbers, which lie side by side in a third array. The room of a list is the next
// power of two of its length, so that a list grows where it is, or moves when it doubles.
#pragma once

#include "tessarin/parser/lex/Token.hpp"
#include "tessarin/parser/parse/NonTerminal.hpp"

#include <boost/iterator/transform_iterator.hpp>
#include <boost/range/iterator_range_core.hpp>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace tessarin::compiler::core {

/// A node by its number: a token or an inner node. It is the value of a symbol in the automaton, and it counts nothing.
class NodeRef {
public:
  /// The default token, which stands where there is nothing.
  constexpr NodeRef() noexcept = default;

  static constexpr NodeRef ofToken(std::uint32_t index) noexcept { return NodeRef(index); }
  static constexpr NodeRef ofNode(std::uint32_t index) noexcept { return NodeRef(index | nodeBit); }
  [[nodiscard]] constexpr bool isToken() const noexcept { return (bits_ & nodeBit) == 0; }
  [[nodiscard]] constexpr std::uint32_t index() const noexcept { return bits_ & ~nodeBit; }
  /// Whether it is the default token.
  [[nodiscard]] constexpr bool isDefault() const noexcept { return bits_ == 0; }

  static constexpr std::size_t maxCount = 1U << 31U;

private:
  static constexpr std::uint32_t nodeBit = 1U << 31U;
  explicit constexpr NodeRef(std::uint32_t bits) noexcept : bits_(bits) {}

  std::uint32_t bits_ = 0;
};

/// The fatal diagnostics of asking a node for what its type does not have.
namespace misuse {
[[noreturn]] void codeOfTerminal();
[[noreturn]] void countOfTerminal();
[[noreturn]] void childOfTerminal();
[[noreturn]] void trimOfTerminal();
[[noreturn]] void tokenOfNonTerminal();
} // namespace misuse

/// How deep a node nests behind its child `below`, from what it had before: the one rule of what `depth()` counts.
std::uint16_t depthWith(std::uint16_t depth, std::uint32_t below, bool isFirst, NonTerminal::Value kind) noexcept;

/// Nodes are made and read by one thread at a time; once nobody adds any more, by any number of threads.
class FlatTree {
public:
  FlatTree() : tokens_(1) {}

  /// Gives back the memory that is not used.
  void shrink();
  /// Makes room for what a text of so many code units usually becomes.
  void reserveFor(std::size_t units);

  // ---- making ----

  NodeRef leaf(const Token& token) {
    const std::size_t index = tokens_.size();
    if (index >= NodeRef::maxCount) refuseSize();
    tokens_.push_back(token);
    return NodeRef::ofToken(static_cast<std::uint32_t>(index));
  }
  /// A node with these children, which may lie nowhere in this tree.
  NodeRef node(NonTerminal::Value kind, std::span<const NodeRef> children) {
    const NodeRef result = emptyNode(kind);
    const std::size_t room = roomFor(children.size());
    if (children_.size() + room >= NodeRef::maxCount) refuseSize();
    for (const NodeRef child : children) {
      children_.push_back(child);
      note(nodes_.back(), child);
    }
    children_.resize(nodes_.back().first + room);
    return result;
  }
  /// Adds a child behind the last one; the list moves where it has no more room.
  void append(NodeRef list, NodeRef item) {
    Node& node = nodes_[list.index()];
    if (node.count == roomFor(node.count)) grow(node);
    children_[node.first + node.count] = item;
    note(node, item);
  }
  /// As `append`, but an item of the list's own kind is replaced by what it holds.
  void extend(NodeRef list, NodeRef item) {
    if (item.isToken() || nodes_[item.index()].kind != nodes_[list.index()].kind) return append(list, item);
    extendByParts(list, item);
  }
  /// The node itself where it has no child of its own kind; otherwise a copy with such children replaced by what they
  /// hold.
  NodeRef roll(NodeRef list);
  /// A node of the same kind without its last `n` children.
  NodeRef trim(NodeRef node, std::size_t n);

  // ---- reading ----

  [[nodiscard]] const Token& token(NodeRef leaf) const noexcept { return tokens_[leaf.index()]; }
  [[nodiscard]] NonTerminal::Value kind(NodeRef node) const noexcept {
    return static_cast<NonTerminal::Value>(nodes_[node.index()].kind);
  }
  [[nodiscard]] std::span<const NodeRef> children(NodeRef node) const noexcept {
    const Node& n = nodes_[node.index()];
    return {children_.data() + n.first, n.count};
  }
  [[nodiscard]] std::uint16_t depth(NodeRef ref) const noexcept {
    return ref.isToken() ? std::uint16_t{0} : nodes_[ref.index()].depth;
  }
  /// The first and the last token below; null where there is none.
  /// @{
  [[nodiscard]] const Token* left(NodeRef ref) const noexcept { return tokenAt(leftIndex(ref)); }
  [[nodiscard]] const Token* right(NodeRef ref) const noexcept { return tokenAt(rightIndex(ref)); }
  /// @}

  /// What tells a node from the others of the tree.
  [[nodiscard]] const void* identity(NodeRef node) const noexcept { return &nodes_[node.index()]; }

  /// Whether a node may be the child of several others, as in a tree that a caller has put together. The parser makes
  /// no such tree.
  /// @{
  [[nodiscard]] bool sharesNodes() const noexcept { return sharesNodes_; }
  void sharesNodes(bool shares) noexcept { sharesNodes_ = shares; }
  /// @}

private:
  static constexpr std::uint32_t noToken = std::numeric_limits<std::uint32_t>::max();

  struct Node {
    std::uint16_t kind;
    std::uint16_t depth;
    std::uint32_t first; // of the children
    std::uint32_t count;
    std::uint32_t left; // the first and the last token below, or `noToken`
    std::uint32_t right;
  };
  static_assert(sizeof(Node) == 20);

  static constexpr std::size_t roomFor(std::size_t count) noexcept { return count == 0 ? 0 : std::bit_ceil(count); }
  [[noreturn]] static void refuseSize();

  NodeRef emptyNode(NonTerminal::Value kind) {
    const std::size_t index = nodes_.size();
    if (index >= NodeRef::maxCount) refuseSize();
    nodes_.push_back(
        {static_cast<std::uint16_t>(kind), 1, static_cast<std::uint32_t>(children_.size()), 0, noToken, noToken});
    return NodeRef::ofNode(static_cast<std::uint32_t>(index));
  }
  /// What a node knows of its children, when the next one comes.
  void note(Node& node, NodeRef child) noexcept {
    const std::uint16_t below = depth(child);
    if (below >= node.depth) {
      node.depth = depthWith(node.depth, below, node.count == 0, static_cast<NonTerminal::Value>(node.kind));
    }
    if (node.left == noToken) node.left = leftIndex(child);
    if (const std::uint32_t last = rightIndex(child); last != noToken) node.right = last;
    ++node.count;
  }
  void grow(Node& node);
  void extendByParts(NodeRef list, NodeRef item);

  [[nodiscard]] std::uint32_t leftIndex(NodeRef ref) const noexcept {
    return ref.isToken() ? ref.index() : nodes_[ref.index()].left;
  }
  [[nodiscard]] std::uint32_t rightIndex(NodeRef ref) const noexcept {
    return ref.isToken() ? ref.index() : nodes_[ref.index()].right;
  }
  [[nodiscard]] const Token* tokenAt(std::uint32_t index) const noexcept {
    return index == noToken ? nullptr : &tokens_[index];
  }

  std::vector<Token> tokens_; // the default one first
  std::vector<Node> nodes_;
  std::vector<NodeRef> children_;
  bool sharesNodes_ = false;
};

/// A node with its tree: what the builder reads. It has the members of a `ParseTree` and is as cheap as a pointer; the
/// tree must live on and stay as it is.
class NodeView {
public:
  NodeView(const FlatTree& tree, NodeRef ref) noexcept : tree_(&tree), ref_(ref) {}

  [[nodiscard]] const FlatTree& tree() const noexcept { return *tree_; }
  [[nodiscard]] NodeRef ref() const noexcept { return ref_; }

  /// As the members of `ParseTree` with these names, fatal diagnostics included.
  /// @{
  [[nodiscard]] std::int32_t type() const noexcept { return ref_.isToken() ? 0 : 1; }
  [[nodiscard]] const Token& token() const {
    if (!ref_.isToken()) misuse::tokenOfNonTerminal();
    return tree_->token(ref_);
  }
  [[nodiscard]] NonTerminal::Value code() const {
    if (ref_.isToken()) misuse::codeOfTerminal();
    return tree_->kind(ref_);
  }
  [[nodiscard]] std::size_t count() const {
    if (ref_.isToken()) misuse::countOfTerminal();
    return tree_->children(ref_).size();
  }
  [[nodiscard]] NodeView child(std::size_t i) const {
    if (ref_.isToken()) misuse::childOfTerminal();
    return {*tree_, tree_->children(ref_)[i]};
  }
  [[nodiscard]] bool isTerminalType(TokenId::Value code) const noexcept {
    return ref_.isToken() && tree_->token(ref_).code() == code;
  }
  [[nodiscard]] bool isNonTerminalType(NonTerminal::Value kind) const noexcept {
    return !ref_.isToken() && tree_->kind(ref_) == kind;
  }
  [[nodiscard]] const Token* left() const noexcept { return tree_->left(ref_); }
  [[nodiscard]] const Token* right() const noexcept { return tree_->right(ref_); }
  /// @}

  /// The children of a non-terminal from the one at `first` on, in order.
  [[nodiscard]] auto children(std::size_t first = 0) const {
    const std::size_t n = count();
    const std::span<const NodeRef> refs = tree_->children(ref_).subspan(first < n ? first : n);
    // Not by std::views::transform, which libc++ 14 has not.
    return boost::make_iterator_range(boost::make_transform_iterator(refs.data(), ViewOf{tree_}),
                                      boost::make_transform_iterator(refs.data() + refs.size(), ViewOf{tree_}));
  }

private:
  struct ViewOf {
    using result_type = NodeView;
    const FlatTree* tree;
    NodeView operator()(NodeRef child) const { return {*tree, child}; }
  };

  const FlatTree* tree_;
  NodeRef ref_;
};

} // namespace tessarin::compiler::core
