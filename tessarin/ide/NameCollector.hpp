// Gathers declarations and references while scopes open and close. Private to the library.
#pragma once

#include "tessarin/ide/Names.hpp"
#include "tessarin/parser/ast/Ident.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <unordered_map>
#include <vector>

namespace tessarin::ide {

/// A name is looked up among the bindings that are open, by one step however deep scopes nest: each name has a stack of
/// the declarations that hide each other.
class NameCollector {
public:
  explicit NameCollector(Names& names) noexcept : names_(names) {}

  Index open(ScopeKind kind, Index parent);
  /// Adds a declaration that no plain name leads to.
  Index declareUnbound(const compiler::core::Ident& ident, DeclarationKind kind, Index scope);
  /// Declares a name in a scope and binds it for as long as the scope is open.
  Index declare(const compiler::core::Ident& ident, DeclarationKind kind, Index scope);
  /// Ends the bindings of a scope.
  void close(Index scope);
  /// Binds names as what may be indices of elements, and ends that.
  /// @{
  void bindElementIndex(const nvf::CxId& name) { bindings_[name].push_back(elementIndex); }
  void unbind(const nvf::CxId& name) { bindings_.find(name)->second.pop_back(); }
  /// @}

  /// The innermost declaration of the name; `noIndex` where there is none, `elementIndex` for a possible index.
  [[nodiscard]] Index bound(const nvf::CxId& name) const;
  static constexpr Index elementIndex = noIndex - 1;

  /// Adds a reference and looks up what it means; `leads` tells that further steps of a path follow.
  Index refer(const compiler::core::Ident& ident, Role role, Index scope, bool leads = false);
  /// Adds a reference that means this declaration, or is open for this reason.
  /// @{
  Index referTo(const compiler::core::Ident& ident, Role role, Index scope, Index target);
  Index referUnknown(const compiler::core::Ident& ident, Role role, Index scope, Unknown reason,
                     Index parent = noIndex);
  /// @}
  /// Adds a step behind another one: what it means depends on other files.
  Index member(const compiler::core::Ident& ident, Role role, Index scope, Index parent) {
    return referUnknown(ident, role, scope, Unknown::MemberOfUnknown, parent);
  }
  /// Marks the reference with which a path ends.
  void endPath(Index reference) {
    if (reference != noIndex) names_.references[reference].isLastStep = true;
  }
  /// Takes back that the name is not declared, where such a name is a word of something else.
  void allowWord(Index reference);

  [[nodiscard]] Names& names() noexcept { return names_; }

  /// The names of a setup function, in its scope inside that of the model.
  void setupFunction(const compiler::core::ParseTree& tree, Index scope);

private:
  [[nodiscard]] Unknown whyUnbound(const nvf::CxId& name, Role role, Index scope, bool leads) const;
  Index add(const compiler::core::Ident& ident, const Reference& reference);

  Names& names_;
  std::unordered_map<nvf::CxId, std::vector<Index>> bindings_;
  std::vector<std::vector<Index>> declarationsOf_; // by scope, those that are bound
};

} // namespace tessarin::ide
