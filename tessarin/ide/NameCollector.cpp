#include "tessarin/ide/NameCollector.hpp"

#include <algorithm>

namespace tessarin::ide {

using namespace compiler::core;

namespace {

/// Whether later stages know the name as a constant.
bool isBuiltInConstant(nvf::ustring_view name) noexcept {
  static constexpr nvf::ustring_view names[] = {u"true", u"false", u"pi", u"inf", u"Inf", u"nan", u"NaN", u"eps", u"e"};
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

} // namespace

Index NameCollector::open(ScopeKind kind, Index parent) {
  Scope scope;
  scope.parent = parent;
  scope.kind = kind;
  scope.isInModel = kind == ScopeKind::Model || (parent != noIndex && names_.scopes[parent].isInModel);
  names_.scopes.push_back(scope);
  declarationsOf_.emplace_back();
  return static_cast<Index>(names_.scopes.size() - 1);
}

Index NameCollector::declareUnbound(const Ident& ident, DeclarationKind kind, Index scope) {
  const auto index = static_cast<Index>(names_.declarations.size());
  Declaration declaration;
  declaration.name = ident.id();
  declaration.begin = ident.location().lineColumn();
  declaration.scope = scope;
  declaration.first = index;
  declaration.kind = kind;
  names_.declarations.push_back(declaration);
  return index;
}

Index NameCollector::declare(const Ident& ident, DeclarationKind kind, Index scope) {
  const Index index = declareUnbound(ident, kind, scope);
  const Index outer = bound(ident.id());
  if (outer < elementIndex && names_.declarations[outer].scope == scope) {
    names_.declarations[index].first = outer;
  } else {
    bindings_[ident.id()].push_back(index);
    declarationsOf_[scope].push_back(index);
    names_.byName.push_back(index);
  }
  return index;
}

void NameCollector::close(Index scope) {
  for (const Index declaration : declarationsOf_[scope]) unbind(names_.declarations[declaration].name);
  declarationsOf_[scope] = {};
}

Index NameCollector::bound(const nvf::CxId& name) const {
  const auto found = bindings_.find(name);
  return found == bindings_.end() || found->second.empty() ? noIndex : found->second.back();
}

Index NameCollector::refer(const Ident& ident, Role role, Index scope, bool leads) {
  const Index target = bound(ident.id());
  if (target < elementIndex) return referTo(ident, role, scope, target);
  const Unknown reason = target == elementIndex ? Unknown::ElementIndex : whyUnbound(ident.id(), role, scope, leads);
  return referUnknown(ident, role, scope, reason);
}

Unknown NameCollector::whyUnbound(const nvf::CxId& name, Role role, Index scope, bool leads) const {
  if (role == Role::Value && !leads && isBuiltInConstant(name.view())) return Unknown::BuiltIn;
  if (names_.scopes[scope].isInModel && names_.base != noIndex) return Unknown::MaybeInherited;
  if (!names_.openImports.empty()) return Unknown::MaybeImported;
  return leads ? Unknown::Outside : Unknown::NotDeclared;
}

Index NameCollector::referTo(const Ident& ident, Role role, Index scope, Index target) {
  Reference reference;
  reference.scope = scope;
  reference.target = target;
  reference.role = role;
  return add(ident, reference);
}

Index NameCollector::referUnknown(const Ident& ident, Role role, Index scope, Unknown reason, Index parent) {
  Reference reference;
  reference.scope = scope;
  reference.parent = parent;
  reference.role = role;
  reference.reason = reason;
  return add(ident, reference);
}

Index NameCollector::add(const Ident& ident, const Reference& reference) {
  names_.references.push_back(reference);
  names_.references.back().name = ident.id();
  names_.references.back().begin = ident.location().lineColumn();
  return static_cast<Index>(names_.references.size() - 1);
}

void NameCollector::allowWord(Index index) {
  if (index == noIndex) return;
  Reference& reference = names_.references[index];
  if (reference.target == noIndex && reference.parent == noIndex) reference.reason = Unknown::Word;
}

} // namespace tessarin::ide
