#include "tessarin/parser/parse/ParseTreeBuilder.hpp"

#include "tessarin/parser/parse/FoldedTree.hpp"
#include "tessarin/parser/parse/NodePool.hpp"

#include <memory>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

namespace {

// ---- copying, without recursion, from one sort of tree to the other ----

/// A public tree, for reading.
class HandleView {
public:
  explicit HandleView(const ParseTree& tree) noexcept : data_(tree.data()) {}

  [[nodiscard]] bool isTerminal() const noexcept { return data_->type() == 0; }
  [[nodiscard]] bool isDefault() const noexcept { return data_ == ParseTree::DEFAULT_DATA.data(); }
  [[nodiscard]] const Token& token() const { return data_->token(); }
  [[nodiscard]] NonTerminal::Value code() const { return data_->code(); }
  [[nodiscard]] std::size_t count() const { return data_->count(); }
  [[nodiscard]] HandleView child(std::size_t i) const { return HandleView(data_->child(i)); }
  /// What tells the node from others; null where it is the child of one node at the most.
  [[nodiscard]] const void* identity() const noexcept { return data_->isUnique() ? nullptr : data_; }

private:
  const ParseTreeData* data_;
};

/// A flat tree, for reading.
class FlatView : public NodeView {
public:
  explicit FlatView(NodeView node) noexcept : NodeView(node) {}

  [[nodiscard]] bool isTerminal() const noexcept { return ref().isToken(); }
  [[nodiscard]] bool isDefault() const noexcept { return ref().isDefault(); }
  [[nodiscard]] FlatView child(std::size_t i) const { return FlatView(NodeView::child(i)); }
  [[nodiscard]] const void* identity() const noexcept {
    return tree().sharesNodes() ? tree().identity(ref()) : nullptr;
  }
};

/// Makes the nodes of a flat tree.
class FlatSink {
public:
  using Ref = NodeRef;
  explicit FlatSink(FlatTree& tree) noexcept : tree_(tree) {}

  NodeRef leaf(const Token& token) { return tree_.leaf(token); }
  NodeRef node(NonTerminal::Value kind, std::span<NodeRef> children) { return tree_.node(kind, children); }
  void share() noexcept { tree_.sharesNodes(true); }

private:
  FlatTree& tree_;
};

} // namespace

/// Makes the nodes of a public tree.
class TreeSink {
public:
  using Ref = ParseTree;

  ParseTree leaf(const Token& token) { return ParseTree(TerminalData::make(token, &pool_)); }
  ParseTree node(NonTerminal::Value kind, std::span<ParseTree> children) {
    NonTerminalData* node = NonTerminalData::make(kind, children.size(), &pool_);
    for (ParseTree& child : children) node->append(std::move(child));
    return ParseTree(node);
  }
  void share() noexcept {}

  static ParseTree fold(std::shared_ptr<const FlatTree> tree, NodeRef root) {
    if (root.isDefault()) return {};
    if (root.isToken()) return ParseTree(tree->token(root));
    const std::size_t count = tree->children(root).size();
    NonTerminalData* node = NonTerminalData::make(tree->kind(root), count, nullptr);
    ParseTree result(node);
    for (std::size_t i = 0; i < count; ++i) std::construct_at(node->room() + i);
    node->count_ = static_cast<std::uint32_t>(count);
    node->depth_ = tree->depth(root);
    node->left_ = tree->left(root);
    node->right_ = tree->right(root);
    node->folded_ = std::make_unique<FoldedTree>(std::move(tree), root);
    return result;
  }
  static const FoldedTree* folded(const ParseTree& tree) noexcept {
    return tree.type() == 0 ? nullptr : static_cast<const NonTerminalData*>(tree.data())->folded_.get();
  }

private:
  NodePool pool_;
};

namespace {

/// A copy of `root` out of the nodes that `sink` makes. What several nodes share they share in the copy.
template <class Source, class Sink>
typename Sink::Ref copyTree(Source root, Sink& sink) {
  using Ref = typename Sink::Ref;
  struct Open {
    Source source;
    std::size_t count;
    std::size_t next;
  };
  std::vector<Open> open;
  std::vector<Ref> done;
  std::unordered_map<const void*, Ref> shared;
  const auto enter = [&](Source source) {
    if (source.isDefault()) {
      done.emplace_back();
    } else if (source.isTerminal()) {
      done.push_back(sink.leaf(source.token()));
    } else {
      const void* identity = source.identity();
      const auto known = identity == nullptr ? shared.end() : shared.find(identity);
      if (known == shared.end()) {
        open.push_back({source, source.count(), 0});
      } else {
        done.push_back(known->second);
        sink.share();
      }
    }
  };
  for (enter(root); !open.empty();) {
    Open& top = open.back();
    if (top.next < top.count) {
      const Source& source = top.source;
      enter(source.child(top.next++));
      continue;
    }
    const Source source = top.source;
    const std::size_t first = done.size() - top.count;
    Ref node = sink.node(source.code(), std::span(done).subspan(first));
    done.resize(first);
    if (const void* identity = source.identity()) shared.emplace(identity, node);
    done.push_back(std::move(node));
    open.pop_back();
  }
  return std::move(done.back());
}

} // namespace

// ---- folding and unfolding ----

ParseTree fold(std::shared_ptr<const FlatTree> tree, NodeRef root) {
  return TreeSink::fold(std::move(tree), root);
}

ParseTree detach(NodeView subtree) {
  auto copy = std::make_shared<FlatTree>();
  FlatSink sink(*copy);
  const NodeRef root = copyTree(FlatView(subtree), sink);
  copy->shrink();
  return fold(std::move(copy), root);
}

void NonTerminalData::unfold() const {
  std::call_once(folded_->isUnfolded, [this] {
    const NodeView root(*folded_->tree, folded_->root);
    TreeSink sink;
    std::vector<ParseTree> made;
    made.reserve(count_);
    for (std::uint32_t i = 0; i < count_; ++i) made.push_back(copyTree(FlatView(root.child(i)), sink));
    // Whoever reads the children has passed the flag.
    auto* children = const_cast<NonTerminalData*>(this)->room();
    for (std::uint32_t i = 0; i < count_; ++i) children[i] = std::move(made[i]);
  });
}

// ---- flattening ----

Flattened::Flattened(const ParseTree& tree) {
  if (const FoldedTree* folded = TreeSink::folded(tree)) {
    tree_ = folded->tree;
    root_ = folded->root;
    return;
  }
  auto copy = std::make_shared<FlatTree>();
  FlatSink sink(*copy);
  root_ = copyTree(HandleView(tree), sink);
  tree_ = std::move(copy);
}

} // namespace tessarin::compiler::core
