// The scope chain of `let` declarations.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// The names that the `let` expressions around a place declare, from the outermost to the innermost. A shared value:
/// copies share the stacks until one of them is changed, also across threads.
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
  LetDeclNameStack(const NameStack& names, const DeclStack& declarations) : names_(names), decls_(declarations) {}

  /// The names of each scope.
  [[nodiscard]] const NameStack& nameStack() const noexcept { return names_.get(); }
  /// The declarations of each scope.
  [[nodiscard]] const DeclStack& declStack() const noexcept { return decls_.get(); }
  /// The same for changing them: they are copied first where other stacks share them.
  /// @{
  [[nodiscard]] NameStack& nameStack() { return names_.get(); }
  [[nodiscard]] DeclStack& declStack() { return decls_.get(); }
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
  nvf::Handle<NameStack> names_;
  nvf::Handle<DeclStack> decls_;
};

/// The names that declarations of one `let` declare, each with the index of its declaration. Placeholders are left out;
/// of two declarations of one name the first stands.
TESSARIN_EXPORT LetDeclNameStack::Names declared_names(const std::vector<IdListValuePair>& declarations);

} // namespace tessarin::compiler::core
