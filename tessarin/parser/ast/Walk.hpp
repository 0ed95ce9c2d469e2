// Looking at trees without changing them: every node below a value, the expressions right below one, and the nodes
// around a place.
//
//   walk(file, [](const Variable& variable) { … });                       each variable
//   walk(file, nvf::overloaded{[](const DeclarationBlock& block) { … return Walk::Skip; },
//                              [](const Expr& expr) { … }});              each expression that is in no declaration
//   for (const AstNode& node : find(file, place)) …                       from the model down to the name
//
// A node is a value of any class of the syntax tree. A class that is one of several alternatives, such as `Expr`, is a
// node, and the alternative that it holds is the node in it. The nodes in a node are what its fields hold, in the order
// of the fields, which is not always that of the source. What is carried and never counts, such as the variable from
// which a resolved reference came, is no node.
//
// A walk takes time linear in the tree, and trees may be of any depth on a stack of any size. All functions may be
// called from any thread.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/overloaded.hpp"
#include "tessarin/parser/ast/Kinds.hpp"
#include "tessarin/parser/ast/Model.hpp"
#include "tessarin/parser/ast/TSNFunction.hpp"

#include <concepts>
#include <iosfwd>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow" // the enumerators are named as the classes, which GCC minds for aliases
/// The classes of the syntax tree. The numbers are of no meaning and change when a class is added; the table is
/// nodes.def.
enum class NodeKind : unsigned char {
#define TESSARIN_NODE(name) name,
#include "tessarin/parser/ast/nodes.def"
};
#pragma GCC diagnostic pop

/// The name of the class, such as "DeclarationBlock". It lives as long as the process.
TESSARIN_EXPORT std::string_view kindName(NodeKind kind) noexcept;
/// Writes the name of the class.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, NodeKind kind);

namespace detail {
template <class T>
struct NodeKindOf;
#define TESSARIN_NODE(name)                                                                                            \
  template <>                                                                                                          \
  struct NodeKindOf<name> {                                                                                            \
    static constexpr NodeKind value = NodeKind::name;                                                                  \
  };
#include "tessarin/parser/ast/nodes.def"

/// Becomes a `T` and nothing that is made of one: what can be called with it takes a `T` itself.
template <class T>
struct Exactly {
  operator const T&() const noexcept;
};
} // namespace detail

/// A class of the syntax tree.
template <class T>
concept IsNode = requires {
  detail::NodeKindOf<T>::value;
};

/// Refers to a node of any class. It does not own the node, and must not outlive the value that it was made of.
class TESSARIN_EXPORT AstNode {
public:
  /// Refers to the value.
  template <IsNode T>
  AstNode(const T& value) noexcept // NOLINT(google-explicit-constructor): any node is what is asked for
      : value_(&value), kind_(detail::NodeKindOf<T>::value) {}
  template <IsNode T>
  AstNode(const T&& value) = delete;

  /// The class of the node.
  [[nodiscard]] NodeKind kind() const noexcept { return kind_; }
  /// Whether the node is a `T`. Of an expression, the `Expr` and the alternative in it are two nodes.
  template <IsNode T>
  [[nodiscard]] bool is() const noexcept {
    return kind_ == detail::NodeKindOf<T>::value;
  }
  /// The node, or null where it is no `T`.
  template <IsNode T>
  [[nodiscard]] const T* getIf() const noexcept {
    return is<T>() ? static_cast<const T*>(value_) : nullptr;
  }
  /// The node; throws `nvf::BadGet` where it is no `T`.
  template <IsNode T>
  [[nodiscard]] const T& get() const {
    if (const T* node = getIf<T>()) return *node;
    throw nvf::BadGet(std::string(kindName(detail::NodeKindOf<T>::value)));
  }
  /// Calls `function` with the node as what it is; all calls must give the same type.
  template <class Function>
  decltype(auto) visit(Function&& function) const {
    switch (kind_) {
      // clang-format off
#define TESSARIN_NODE(name) case NodeKind::name: return function(*static_cast<const name*>(value_));
#include "tessarin/parser/ast/nodes.def"
      // clang-format on
    }
    throw std::logic_error("invalid visit");
  }

  /// Whether both are one object; equal nodes at two places are not.
  friend bool operator==(const AstNode&, const AstNode&) noexcept = default;

private:
  const void* value_;
  NodeKind kind_;
};

/// Where a node is written. A class that knows its range has it; of any other one it goes from its first place, such as
/// the keyword of a block, to the end of the last node in it, which takes time linear in what it holds. Nodes that were
/// made and not read have the default range.
TESSARIN_EXPORT nvf::Range range(AstNode node);

/// How a walk goes on: into the node, past what is in it, or not at all.
enum class Walk : unsigned char { Into, Skip, Stop };

/// Sees the nodes of a walk.
class TESSARIN_EXPORT NodeVisitor {
public:
  NodeVisitor() = default;
  NodeVisitor(const NodeVisitor&) = default;
  NodeVisitor& operator=(const NodeVisitor&) = default;
  virtual ~NodeVisitor();
  /// A node begins. The default goes into it.
  virtual Walk enter(AstNode node);
  /// A node ends that was entered, whether or not it was gone into; after `Stop` none does. The default does nothing.
  virtual void leave(AstNode node);
};

/// Shows a node and all nodes in it to the visitor, each before what is in it. Tells whether it came to the end: false
/// after `Stop`. Passes on what the visitor throws.
TESSARIN_EXPORT bool walk(AstNode root, NodeVisitor& visitor);

/// A function that takes a node of some class, a `AstNode`, or by overloads several classes.
template <class Function>
concept NodeFunction =
    !std::derived_from<std::remove_cvref_t<Function>, NodeVisitor> && (std::invocable<Function&, AstNode>
#define TESSARIN_NODE(name) || std::invocable<Function&, detail::Exactly<name>>
#include "tessarin/parser/ast/nodes.def"
                                                                      );

namespace detail {
/// Calls a function with the nodes that it takes.
template <class Function>
class FunctionVisitor final : public NodeVisitor {
public:
  explicit FunctionVisitor(Function& function) noexcept : function_(function) {}
  Walk enter(AstNode node) override {
    if constexpr (std::invocable<Function&, AstNode>) {
      return call(node);
    } else {
      switch (node.kind()) {
#define TESSARIN_NODE(name)                                                                                            \
  case NodeKind::name:                                                                                                 \
    if constexpr (std::invocable<Function&, Exactly<name>>) return call(*node.getIf<name>());                          \
    break;
#include "tessarin/parser/ast/nodes.def"
      }
      return Walk::Into;
    }
  }

private:
  template <class Argument>
  Walk call(const Argument& argument) {
    if constexpr (std::is_same_v<std::invoke_result_t<Function&, const Argument&>, Walk>) {
      return std::invoke(function_, argument);
    } else {
      std::invoke(function_, argument);
      return Walk::Into;
    }
  }

  Function& function_;
};
} // namespace detail

/// Calls the function with each node of the classes that it takes; it may return a `Walk`.
template <NodeFunction Function>
bool walk(AstNode root, Function&& function) {
  detail::FunctionVisitor<std::remove_reference_t<Function>> visitor(function);
  return walk(root, static_cast<NodeVisitor&>(visitor));
}

/// Calls `function` with the expressions right below a node, such as the operands of an operator or the equations of a
/// block: those in the node with no other expression around them, the node itself left out.
template <std::invocable<const Expr&> Function>
void forEachChild(AstNode parent, Function&& function) {
  bool isParent = true;
  walk(parent, [&](const AstNode& node) {
    if (std::exchange(isParent, false)) return Walk::Into;
    const Expr* expr = node.getIf<Expr>();
    if (expr == nullptr) return Walk::Into;
    std::invoke(function, *expr);
    return Walk::Skip;
  });
}

/// The nodes that enclose a place, both counted from 0, from `root` down to the innermost one; none where nothing does.
/// A node encloses the places from the begin of its `range` to before the end of it. Takes time linear in the tree at
/// the most.
TESSARIN_EXPORT std::vector<AstNode> find(AstNode root, const nvf::LineColumn& place);

} // namespace tessarin::compiler::core
