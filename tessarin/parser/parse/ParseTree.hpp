// The parse tree: a value that holds either a token or a kind and an ordered list of children.
//
// A `ParseTree` is a cheap handle; copies share the node. Nodes hold no pointer into the source. A node takes one
// allocation, and knows its first and last token. All operations are linear and work on trees of any depth on a small
// stack. Of the tree that a parser gives only the root is made at first, and the rest when somebody asks for a child.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/shared_block.hpp"
#include "tessarin/parser/lex/Token.hpp"
#include "tessarin/parser/parse/NonTerminal.hpp"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

class NodePool;
class ParseTree;
struct FoldedTree;

/// Sees the tokens of a tree from left to right.
class TESSARIN_EXPORT ParseTreeVisitor {
public:
  virtual ~ParseTreeVisitor();
  /// Whether the visitor wants tokens of this code.
  virtual bool wantsToken(TokenId::Value code) = 0;
  /// Called for each token that it wants.
  virtual void visitToken(const Token& token) = 0;
};

/// A node of a parse tree. Asking a node for what its type does not have is a fatal diagnostic: ask for `type()` first.
class TESSARIN_EXPORT ParseTreeData : public nvf::SharedBlock {
public:
  ~ParseTreeData() override;
  /// 0 for a terminal, 1 for a non-terminal.
  [[nodiscard]] virtual std::int32_t type() const noexcept { return depth_ == 0 ? 0 : 1; }
  /// The token of a terminal.
  [[nodiscard]] virtual const Token& token() const = 0;
  /// The kind of a non-terminal.
  [[nodiscard]] virtual NonTerminal::Value code() const = 0;
  /// The number of children of a non-terminal.
  [[nodiscard]] virtual std::size_t count() const = 0;
  /// The `i`-th child of a non-terminal, from 0; `i` is not checked.
  [[nodiscard]] virtual const ParseTree& child(std::size_t i) const = 0;
  /// A non-terminal of the same kind without its last `n` children; without any where there are fewer.
  [[nodiscard]] virtual ParseTree trim(std::size_t n) const = 0;
  /// Shows the tokens below to the visitor, from left to right.
  virtual void visit(ParseTreeVisitor& visitor) const = 0;
  /// The first token below; null where there is none.
  [[nodiscard]] virtual const Token* left() const noexcept;
  /// The last token below; null where there is none.
  [[nodiscard]] virtual const Token* right() const noexcept;
  /// Whether kinds and tokens are the same; places do not count.
  [[nodiscard]] virtual bool equal(const ParseTreeData& other) const = 0;
  /// By type, then as the typed nodes compare.
  [[nodiscard]] virtual Ordering compare(const ParseTreeData& other) const = 0;
  /// A node of its own with the same content; the children are shared.
  [[nodiscard]] virtual std::unique_ptr<ParseTreeData> clone() const = 0;

  /// As for the handle, see `ParseTree` and the functions behind it.
  /// @{
  virtual void out(std::ostream& stream, std::size_t indent) const = 0;
  [[nodiscard]] virtual std::size_t hash_value() const = 0;
  virtual void incorporate_data(DigestSink& sink) const = 0;
  virtual void strip_annotation_inplace() = 0;
  /// @}

  /// How deep non-terminals nest here, this one counting as 1 and a terminal as 0; 65535 stands for more as well.
  [[nodiscard]] std::uint32_t depth() const noexcept { return depth_; }

  ParseTreeData(const ParseTreeData&) = delete;

protected:
  /// A node of this depth at that place of its memory.
  ParseTreeData(std::uint16_t depth, std::uint16_t slot) noexcept : depth_(depth), slot_(slot) {}

  std::uint16_t depth_; ///< What `depth()` tells.
  std::uint16_t slot_;  ///< Where the node lies in the memory that it came from; see `NodePool`.
};

/// Leads the operations with another node to those with one of the same class.
template <class Derived>
class ParseTreeDataShim : public ParseTreeData {
public:
  /// Whether the other node is of this class and equal.
  [[nodiscard]] bool equal(const ParseTreeData& other) const final {
    const auto* same = dynamic_cast<const Derived*>(&other);
    return same != nullptr && equal(*same);
  }
  /// By type; nodes of one type as their class compares them.
  [[nodiscard]] Ordering compare(const ParseTreeData& other) const final {
    if (type() != other.type()) return nvf::order(type(), other.type());
    return compare(static_cast<const Derived&>(other));
  }
  /// Whether a node of the same class is equal.
  [[nodiscard]] virtual bool equal(const Derived& other) const = 0;
  /// The order of two nodes of the class.
  [[nodiscard]] virtual Ordering compare(const Derived& other) const = 0;

protected:
  using ParseTreeData::ParseTreeData;
};

/// The handle.
class TESSARIN_EXPORT ParseTree {
public:
  /// What a default handle holds: a terminal with a default token.
  static const ParseTree DEFAULT_DATA;

  ParseTree() noexcept = default;
  /// A terminal.
  explicit ParseTree(const Token& token);
  /// A node with copies of `n` handles; `first` may be null where `n` is 0.
  ParseTree(NonTerminal::Value kind, const ParseTree* first, std::size_t n);
  /// A node with copies of these handles.
  ParseTree(NonTerminal::Value kind, const std::vector<ParseTree>& children);

  /// The node, never null; it lives as long as a handle holds it.
  [[nodiscard]] const ParseTreeData* data() const noexcept { return data_ ? &*data_ : defaultData(); }
  /// A node that only this handle owns: it is copied first where others share it.
  [[nodiscard]] ParseTreeData* data();

  // The qualified calls are the ones that building a tree makes for every node; they need no dispatch.
  /// What the node tells, see `ParseTreeData`; references live as long as the node.
  /// @{
  [[nodiscard]] std::int32_t type() const noexcept { return data()->ParseTreeData::type(); }
  [[nodiscard]] const Token& token() const { return data()->token(); }
  [[nodiscard]] NonTerminal::Value code() const { return data()->code(); }
  [[nodiscard]] std::size_t count() const { return data()->count(); }
  [[nodiscard]] const ParseTree& child(std::size_t i) const { return data()->child(i); }
  [[nodiscard]] ParseTree trim(std::size_t n) const { return data()->trim(n); }
  void visit(ParseTreeVisitor& visitor) const { data()->visit(visitor); }
  [[nodiscard]] const Token* left() const noexcept { return data()->ParseTreeData::left(); }
  [[nodiscard]] const Token* right() const noexcept { return data()->ParseTreeData::right(); }
  /// @}

  /// Whether it is a terminal with this token code.
  [[nodiscard]] bool isTerminalType(TokenId::Value code) const { return type() == 0 && token().code() == code; }
  /// Whether it is a non-terminal of this kind.
  [[nodiscard]] bool isNonTerminalType(NonTerminal::Value kind) const { return type() == 1 && code() == kind; }
  /// The location of `left()`; there must be one.
  [[nodiscard]] const nvf::Location& location() const noexcept { return left()->location(); }
  /// The line of the location, from 0.
  [[nodiscard]] std::size_t line() const noexcept { return location().lineColumn().line(); }
  /// A node of the same kind in which all nested nodes of that kind are replaced by what they hold.
  [[nodiscard]] ParseTree roll() const;
  /// Appends to `out`, in order, what this tree holds that is no node of `kind`: the step that `roll()` takes.
  void roll(NonTerminal::Value kind, std::vector<ParseTree>& out) const;
  /// Whether kinds and tokens are the same; places do not count.
  [[nodiscard]] bool equal(const ParseTree& other) const;
  /// Writes the tree as an indented listing, one node a line.
  void out(std::ostream& stream, std::size_t indent) const { data()->out(stream, indent); }
  /// What `operator<<` writes; the argument is ignored, intended.
  [[nodiscard]] std::string getText(std::size_t ignored) const;

  friend void swap(ParseTree& a, ParseTree& b) noexcept { std::swap(a.data_, b.data_); }

private:
  friend class NonTerminalData;
  friend class TreeSink;
  explicit ParseTree(ParseTreeData* data) noexcept : data_(data) {}
  static const ParseTreeData* defaultData() noexcept;

  // Empty stands for the default node, which thus needs no count that all threads would have to share.
  nvf::SharedPtr<ParseTreeData> data_;
};

/// A leaf. See `ParseTreeData` for what a node can do.
class TESSARIN_EXPORT TerminalData final : public ParseTreeDataShim<TerminalData> {
public:
  ~TerminalData() override;
  /// Gives the memory back to where it came from.
  static void operator delete(TerminalData* node, std::destroying_delete_t) noexcept;

  using ParseTreeDataShim::compare;
  using ParseTreeDataShim::equal;
  [[nodiscard]] const Token& token() const override { return token_; }
  [[nodiscard]] NonTerminal::Value code() const override;
  [[nodiscard]] std::size_t count() const override;
  [[nodiscard]] const ParseTree& child(std::size_t i) const override;
  [[nodiscard]] ParseTree trim(std::size_t n) const override;
  void visit(ParseTreeVisitor& visitor) const override;
  [[nodiscard]] std::unique_ptr<ParseTreeData> clone() const override;
  void out(std::ostream& stream, std::size_t indent) const override;
  [[nodiscard]] std::size_t hash_value() const override;
  void incorporate_data(DigestSink& sink) const override;
  void strip_annotation_inplace() override;
  [[nodiscard]] bool equal(const TerminalData& other) const override { return token_.equal(other.token_); }
  [[nodiscard]] Ordering compare(const TerminalData& other) const override;

private:
  friend class ParseTree;
  friend class TreeSink;
  friend class ParseTreeData;

  TerminalData(const Token& token, std::uint16_t slot) noexcept : ParseTreeDataShim(0, slot), token_(token) {}
  static TerminalData* make(const Token& token, NodePool* pool);

  Token token_;
};

/// An inner node. The children follow it in memory. See `ParseTreeData` for what a node can do.
class TESSARIN_EXPORT NonTerminalData final : public ParseTreeDataShim<NonTerminalData> {
public:
  ~NonTerminalData() override;
  /// Gives the memory back to where it came from.
  static void operator delete(NonTerminalData* node, std::destroying_delete_t) noexcept;

  using ParseTreeDataShim::compare;
  using ParseTreeDataShim::equal;
  [[nodiscard]] const Token& token() const override;
  [[nodiscard]] NonTerminal::Value code() const override { return kind_; }
  [[nodiscard]] std::size_t count() const override { return count_; }
  [[nodiscard]] const ParseTree& child(std::size_t i) const override { return children()[i]; }
  [[nodiscard]] ParseTree trim(std::size_t n) const override;
  void visit(ParseTreeVisitor& visitor) const override;
  [[nodiscard]] std::unique_ptr<ParseTreeData> clone() const override;
  void out(std::ostream& stream, std::size_t indent) const override;
  [[nodiscard]] std::size_t hash_value() const override;
  void incorporate_data(DigestSink& sink) const override;
  void strip_annotation_inplace() override;
  [[nodiscard]] bool equal(const NonTerminalData& other) const override;
  [[nodiscard]] Ordering compare(const NonTerminalData& other) const override;

  /// All children; they live as long as the node.
  [[nodiscard]] std::span<const ParseTree> children() const {
    if (folded_) unfold();
    return {reinterpret_cast<const ParseTree*>(this + 1), count_};
  }

private:
  friend class ParseTree;
  friend class TreeSink;
  friend class ParseTreeData;

  NonTerminalData(NonTerminal::Value kind, std::uint16_t slot) noexcept;
  /// An empty node with room for `capacity` children.
  static NonTerminalData* make(NonTerminal::Value kind, std::size_t capacity, NodePool* pool);
  [[nodiscard]] ParseTree* room() noexcept { return reinterpret_cast<ParseTree*>(this + 1); }
  void append(ParseTree&& child) noexcept;
  void findEnds() noexcept;
  /// Makes the children, once.
  void unfold() const;

  NonTerminal::Value kind_;
  std::uint32_t count_ = 0;
  const Token* left_ = nullptr;
  const Token* right_ = nullptr;
  std::unique_ptr<FoldedTree> folded_; // what the children are made of; null where they are there from the start
};

inline const Token* ParseTreeData::left() const noexcept {
  return depth_ == 0 ? &static_cast<const TerminalData*>(this)->token_
                     : static_cast<const NonTerminalData*>(this)->left_;
}
inline const Token* ParseTreeData::right() const noexcept {
  return depth_ == 0 ? &static_cast<const TerminalData*>(this)->token_
                     : static_cast<const NonTerminalData*>(this)->right_;
}

/// By type and kind, then by the tokens and children in order, places included.
TESSARIN_EXPORT Ordering compare(const ParseTree& a, const ParseTree& b);
/// Whether `compare` finds no difference: unlike in `equal`, places count.
inline bool operator==(const ParseTree& a, const ParseTree& b) {
  return compare(a, b) == Ordering::Equal;
}
/// Of a leaf, that of its token; of an inner node, of its kind and its children.
TESSARIN_EXPORT std::size_t hash_value(const ParseTree& tree);
/// Feeds a node's kind as 4 bytes and then its children, a leaf's token.
TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const ParseTree& tree);
/// Takes the places out of the tokens of this tree; trees that share nodes with it stay as they are.
TESSARIN_EXPORT void strip_annotation_inplace(ParseTree& tree);
/// Writes the listing of `ParseTree::out` from the left margin.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const ParseTree& tree);
/// The texts of the tokens, as the field of a node shows them: a listing would grow with the square of a long sum.
TESSARIN_EXPORT ustring dump_text(const ParseTree& tree);

/// The dotted name that a tree of the statement language spells: `a.b` of `a.b(1).c`, for a subscript ends it. Empty
/// where the tree begins with no name, and so no `CxIdPath`, which has one name at least.
TESSARIN_EXPORT nvf::BasicCxIdPath<0> dot_path(const ParseTree& tree);

} // namespace tessarin::compiler::core

template <>
inline constexpr bool nvf::hashesByValue<tessarin::compiler::core::ParseTree> = true;
