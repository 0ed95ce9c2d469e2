#include "tessarin/parser/ast/LetDeclNameStack.hpp"

#include "tessarin/parser/ast/BoundNames.hpp"

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>

namespace tessarin::compiler::core {

namespace {

/// Calls `function` with each name that is declared and the index of its declaration, in order.
template <class Function>
void eachName(const std::vector<IdListValuePair>& declarations, Function function) {
  for (std::size_t i = 0; i < declarations.size(); ++i) {
    for (const OptIdent& ident : declarations[i].ids()) {
      if (const Ident* name = ident.getIf<Ident>()) function(name->id(), i);
    }
  }
}

} // namespace

LetDeclNameStack::Names declared_names(const std::vector<IdListValuePair>& declarations) {
  LetDeclNameStack::Names names;
  eachName(declarations, [&names](const nvf::CxId& name, std::size_t i) { names.emplace(name, i); });
  return names;
}

/// An open `let` inside those around it.
struct LetDeclNameStack::Scope final : nvf::SharedBlock {
  LetExpr let;
  nvf::SharedPtr<Scope> outer;
  std::size_t height;                                  // how many scopes are open, this one included
  BoundNames names;                                    // those of all open scopes
  mutable std::atomic<const Stacks*> stacks = nullptr; // owned; null where nobody has asked

  Scope(const LetExpr& opened, const nvf::SharedPtr<Scope>& around)
      : let(opened), outer(around), height(around ? around->height + 1 : 1) {
    if (around) names = around->names;
    eachName(let.declarations(), [this](const nvf::CxId& name, std::size_t i) {
      const BoundNames::Place* bound = names.find(name);
      if (bound == nullptr || bound->scope != height) names.bind(name, {height, i});
    });
  }
  ~Scope() override { delete stacks.load(); }
};

LetDeclNameStack::LetDeclNameStack(const NameStack& names, const DeclStack& declarations) {
  Stacks& own = ownStacks();
  own.names = names;
  own.declarations = declarations;
}

const LetDeclNameStack::Stacks& LetDeclNameStack::stacks() const {
  if (edited_) return *edited_;
  if (!top_) {
    static const Stacks none;
    return none;
  }
  if (const Stacks* known = top_->stacks.load()) return *known;
  auto made = std::make_unique<Stacks>();
  made->names.reserve(top_->height);
  made->declarations.reserve(top_->height);
  for (const nvf::SharedPtr<Scope>* scope = &top_; *scope; scope = &(*scope)->outer) {
    made->names.push_back(declared_names((*scope)->let.declarations()));
    made->declarations.push_back((*scope)->let.declarations());
  }
  std::reverse(made->names.begin(), made->names.end());
  std::reverse(made->declarations.begin(), made->declarations.end());
  const Stacks* first = nullptr;
  if (top_->stacks.compare_exchange_strong(first, made.get())) first = made.release();
  return *first;
}

LetDeclNameStack::Stacks& LetDeclNameStack::ownStacks() {
  if (!edited_) {
    edited_ = nvf::SharedPtr<Stacks>(new Stacks(stacks()));
    top_ = {};
  }
  return edited_.unshared();
}

void LetDeclNameStack::push(const LetExpr& let) {
  if (!edited_) {
    top_ = nvf::SharedPtr<Scope>(new Scope(let, top_));
    return;
  }
  Stacks& own = ownStacks();
  own.names.push_back(declared_names(let.declarations()));
  try {
    own.declarations.push_back(let.declarations());
  } catch (...) {
    own.names.pop_back();
    throw;
  }
}

void LetDeclNameStack::pop() {
  if (!edited_) {
    if (!top_) throw std::out_of_range("no let is open");
    const nvf::SharedPtr<Scope> outer = top_->outer;
    top_ = outer;
    return;
  }
  if (edited_->names.empty() || edited_->declarations.empty()) throw std::out_of_range("no let is open");
  Stacks& own = ownStacks();
  own.names.pop_back();
  own.declarations.pop_back();
}

bool LetDeclNameStack::simpleLookup(const nvf::CxIdPath& path) const {
  return path.size() == 1 && lookup(path.front()).has_value();
}

bool LetDeclNameStack::simpleLookup(const Variable& variable) const {
  return lookup(variable.id().id()).has_value();
}

std::optional<LetDeclNameStack::Found> LetDeclNameStack::lookup(const nvf::CxId& id) const {
  if (!edited_) {
    const BoundNames::Place* place = top_ ? top_->names.find(id) : nullptr;
    if (place == nullptr) return std::nullopt;
    return Found(top_->height - place->scope, place->declaration);
  }
  const NameStack& scopes = edited_->names;
  for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope) {
    const auto found = scope->find(id);
    if (found != scope->end()) return Found(static_cast<std::size_t>(scope - scopes.rbegin()), found->second);
  }
  return std::nullopt;
}

} // namespace tessarin::compiler::core
