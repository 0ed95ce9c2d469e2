// The walk follows the fields of each class, so that no class has to be told here how it is made up.
#include "tessarin/parser/ast/Walk.hpp"

#include "tessarin/foundation/stack.hpp"

#include <iterator>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <tuple>
#include <variant>

namespace tessarin::compiler::core {

namespace {

constexpr std::string_view nodeNames[] = {
#define TESSARIN_NODE(name) #name,
#include "tessarin/parser/ast/nodes.def"
};

template <class T>
inline constexpr bool isHandle = false;
template <class T>
inline constexpr bool isHandle<nvf::Handle<T>> = true;

/// What a field may be that has no node in it.
template <class T>
concept Leaf = nvf::detail::Scalar<T> || nvf::detail::Text<T> || nvf::detail::Ignored<T> ||
    std::derived_from<T, nvf::CheckedText<T>> || std::same_as<T, nvf::CxIdPath> || std::same_as<T, nvf::Value> ||
    std::same_as<T, ParseTree> || std::same_as<T, nvf::Positive<std::size_t>>;

class Walker {
public:
  explicit Walker(NodeVisitor& visitor) noexcept : visitor_(visitor) {}

  /// False once the visitor has stopped the walk.
  template <IsNode T>
  bool node(const T& value) {
    const Walk next = visitor_.enter(value);
    if (next == Walk::Stop || (next == Walk::Into && !parts(value))) return false;
    visitor_.leave(value);
    return true;
  }

private:
  template <class T>
  bool parts(const T& value) {
    if constexpr (std::same_as<T, Subscript>) {
      return value.expr() == nullptr || node(*value.expr());
    } else if constexpr (nvf::IsTaggedUnion<T>) {
      return value.visit([&](const auto& alternative) { return field(alternative); });
    } else {
      return nvf::detail::walk<T>([&] { return field(value.tuple()); });
    }
  }

  template <class T>
  bool field(const T& value) {
    if constexpr (IsNode<T>) {
      return node(value);
    } else if constexpr (isHandle<T>) {
      return field(value.get());
    } else if constexpr (nvf::detail::Optional<T>) {
      return !value || field(*value);
    } else if constexpr (nvf::detail::Variant<T>) {
      return std::visit([&](const auto& alternative) { return field(alternative); }, value);
    } else if constexpr (nvf::detail::Tuple<T>) {
      return std::apply([&](const auto&... element) { return (field(element) && ...); }, value);
    } else if constexpr (nvf::detail::Sequence<T>) {
      for (const auto& element : value) {
        if (!field(element)) return false;
      }
      return true;
    } else {
      static_assert(Leaf<T>, "a class of the syntax tree that nodes.def does not have");
      return true;
    }
  }

  NodeVisitor& visitor_;
};

// ---- places ----

/// A class that has the range of all that is in it. That of a `TransitionExpr` is the range of its expression alone.
template <class T>
concept KnowsRange = !std::same_as<T, TransitionExpr> && requires(const T& value) {
  value.range();
};

/// The range that a class knows by itself; of one that knows its place only, nothing from there on.
template <class T>
nvf::Range ownRange(const T& value) {
  if constexpr (KnowsRange<T>) {
    return value.range();
  } else if constexpr (std::same_as<T, TransitionExpr>) {
    return {};
  } else if constexpr (std::same_as<T, Model>) {
    const nvf::Range keyword(value.location(), value.location());
    if (!value.hasSetupFunctionParseTree()) return keyword;
    const Token* last = value.setupFunctionParseTree().right();
    return last == nullptr ? keyword : keyword + last->range();
  } else if constexpr (requires { value.location(); }) {
    return {value.location(), value.location()};
  } else {
    return {};
  }
}
nvf::Range ownRange(AstNode node) {
  return node.visit([](const auto& value) { return ownRange(value); });
}

/// Whether a class has its range, so that what is in it need not be asked.
bool isComplete(AstNode node) {
  return node.visit([](const auto& value) {
    using T = std::decay_t<decltype(value)>;
    if constexpr (KnowsRange<T>) {
      return value.range() != nvf::Range();
    } else {
      return false;
    }
  });
}

bool encloses(const nvf::Range& range, const nvf::LineColumn& place) {
  return range.begin().lineColumn() <= place && place < range.end().lineColumn();
}

/// Sums up the ranges of the nodes, from the innermost ones outwards.
class Extents final : public NodeVisitor {
public:
  Walk enter(AstNode node) override {
    open_.push_back(ownRange(node));
    return isComplete(node) ? Walk::Skip : Walk::Into;
  }
  void leave(AstNode) override {
    last_ = open_.back();
    open_.pop_back();
    if (!open_.empty()) open_.back() = open_.back() + last_;
  }
  /// The range of the node that has ended last.
  [[nodiscard]] const nvf::Range& last() const noexcept { return last_; }

private:
  std::vector<nvf::Range> open_;
  nvf::Range last_;
};

/// Stops behind the first node that encloses the place when all nodes in it have been seen: no node in it does.
class Finder final : public NodeVisitor {
public:
  explicit Finder(const nvf::LineColumn& place) noexcept : place_(place) {}

  Walk enter(AstNode node) override {
    if (isFound_) return Walk::Stop;
    path_.push_back(node);
    ranges_.push_back(ownRange(node));
    // What is in a node of a known range lies in that range.
    return isComplete(node) && !encloses(ranges_.back(), place_) ? Walk::Skip : Walk::Into;
  }
  void leave(AstNode) override {
    if (isFound_) return;
    if (encloses(ranges_.back(), place_)) {
      isFound_ = true;
      return;
    }
    const nvf::Range range = ranges_.back();
    ranges_.pop_back();
    path_.pop_back();
    if (!ranges_.empty()) ranges_.back() = ranges_.back() + range;
  }
  [[nodiscard]] std::vector<AstNode> take() {
    if (!isFound_) path_.clear();
    return std::move(path_);
  }

private:
  nvf::LineColumn place_;
  std::vector<AstNode> path_; // the nodes that are open; once it is found, down to the innermost one
  std::vector<nvf::Range> ranges_;
  bool isFound_ = false;
};

} // namespace

std::string_view kindName(NodeKind kind) noexcept {
  const auto number = static_cast<std::size_t>(kind);
  return number < std::size(nodeNames) ? nodeNames[number] : std::string_view();
}
std::ostream& operator<<(std::ostream& stream, NodeKind kind) {
  return stream << kindName(kind);
}

NodeVisitor::~NodeVisitor() = default;
Walk NodeVisitor::enter(AstNode) {
  return Walk::Into;
}
void NodeVisitor::leave(AstNode) {}

bool walk(AstNode root, NodeVisitor& visitor) {
  return root.visit([&visitor](const auto& node) { return Walker(visitor).node(node); });
}

nvf::Range range(AstNode node) {
  if (const auto* transition = node.getIf<TransitionExpr>()) return transition->range();
  Extents extents;
  walk(node, extents);
  return extents.last();
}

std::vector<AstNode> find(AstNode root, const nvf::LineColumn& place) {
  Finder finder(place);
  walk(root, finder);
  return finder.take();
}

} // namespace tessarin::compiler::core
