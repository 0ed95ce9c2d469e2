#include "tessarin/parser/ast/LetDeclNameStack.hpp"

#include <stdexcept>

namespace tessarin::compiler::core {

LetDeclNameStack::Names declared_names(const std::vector<IdListValuePair>& declarations) {
  LetDeclNameStack::Names names;
  for (std::size_t i = 0; i < declarations.size(); ++i) {
    for (const OptIdent& ident : declarations[i].ids()) {
      if (const Ident* name = ident.getIf<Ident>()) names.emplace(name->id(), i);
    }
  }
  return names;
}

void LetDeclNameStack::push(const LetExpr& let) {
  nameStack().push_back(declared_names(let.declarations()));
  try {
    declStack().push_back(let.declarations());
  } catch (...) {
    nameStack().pop_back();
    throw;
  }
}

void LetDeclNameStack::pop() {
  const LetDeclNameStack& self = *this;
  if (self.nameStack().empty() || self.declStack().empty()) throw std::out_of_range("no let is open");
  nameStack().pop_back();
  declStack().pop_back();
}

bool LetDeclNameStack::simpleLookup(const nvf::CxIdPath& path) const {
  return path.size() == 1 && lookup(path.front()).has_value();
}

bool LetDeclNameStack::simpleLookup(const Variable& variable) const {
  return lookup(variable.id().id()).has_value();
}

std::optional<LetDeclNameStack::Found> LetDeclNameStack::lookup(const nvf::CxId& id) const {
  const NameStack& scopes = nameStack();
  for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
    const auto found = scope->find(id);
    if (found != scope->end()) return Found(static_cast<std::size_t>(scope - scopes.rbegin()), found->second);
  }
  return std::nullopt;
}

} // namespace tessarin::compiler::core
