// The scope chain of `let` declarations.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// The names that the `let` expressions around a place declare, from the outermost to the innermost. A shared value:
/// copies share what they have in common, also across threads. Copying, opening and closing a scope, and looking up a
/// name do not cost more the more scopes are open.
class TESSARIN_EXPORT LetDeclNameStack {
public:
  /// The declared names of one `let`, each with the index of its declaration.
  using Names = std::map<nvf::CxId, std::size_t>;
  /// The scopes from the outermost to the innermost.
  using NameStack = std::vector<Names>;
  /// The declarations of each scope, in the same order.
  using DeclStack = std::vector<std::vector<IdListValuePair>>;
  /// How many levels up from the innermost (0) a name was found, and the index of its declaration there.
  using Found = std::pair<std::size_t, std::size_t>;

  LetDeclNameStack() = default;
  /// With scopes that are open already; both stacks must have the same height.
  LetDeclNameStack(const NameStack& names, const DeclStack& declarations);

  /// The names and the declarations of each scope. The lists are made when they are first asked for, which costs a copy
  /// of all that is open; they stay valid until this stack and all its copies are changed.
  /// @{
  [[nodiscard]] const NameStack& nameStack() const { return stacks().names; }
  [[nodiscard]] const DeclStack& declStack() const { return stacks().declarations; }
  /// @}
  /// The same for changing them: copies that no other stack shares. From then on this stack is as its owner makes it,
  /// and looking up a name asks one scope after the other.
  /// @{
  [[nodiscard]] NameStack& nameStack() { return ownStacks().names; }
  [[nodiscard]] DeclStack& declStack() { return ownStacks().declarations; }
  /// @}

  /// Opens the scope of a `let`. A declaration's value sees all names of its own `let`, also those behind it; of two
  /// declarations of one name the first stands.
  void push(const LetExpr& let);
  /// Closes the innermost scope. Throws `std::out_of_range` where none is open.
  void pop();

  /// Whether some scope declares the name. A path of more than one name is never declared.
  [[nodiscard]] bool simpleLookup(const nvf::CxIdPath& path) const;
  /// Looks up the variable's own name, `id()`, whatever stands before it: with an open `let b`, `a.b` is found, and
  /// `b.a` is not. Intended.
  [[nodiscard]] bool simpleLookup(const Variable& variable) const;
  /// Where the name is declared, sought from the innermost scope outwards.
  [[nodiscard]] std::optional<Found> lookup(const nvf::CxId& id) const;

private:
  struct Scope;
  /// Both stacks as lists.
  struct Stacks final : nvf::SharedBlock {
    NameStack names;
    DeclStack declarations;
  };
  [[nodiscard]] const Stacks& stacks() const;
  [[nodiscard]] Stacks& ownStacks();

  nvf::SharedPtr<Scope> top_;     // the innermost scope; none where no scope is open, or where `edited_` is set
  nvf::SharedPtr<Stacks> edited_; // the lists, where the owner has them for changing
};

/// The names that declarations of one `let` declare, each with the index of its declaration. Placeholders are left out;
/// of two declarations of one name the first stands.
TESSARIN_EXPORT LetDeclNameStack::Names declared_names(const std::vector<IdListValuePair>& declarations);

} // namespace tessarin::compiler::core
