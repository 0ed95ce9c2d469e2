// The names of a setup function. It is known as the parse tree of the language of statements, which holds more than a
// setup function may: names are told for all of it, since faults in it are found elsewhere.
#include "tessarin/foundation/stack.hpp"
#include "tessarin/ide/NameCollector.hpp"

namespace tessarin::ide {

using namespace compiler::core;
using K = NonTerminal;

namespace {

class SetupWalk {
public:
  SetupWalk(NameCollector& collector, Index scope) noexcept : collector_(collector), scope_(scope) {}

  /// Walks a node, and returns the reference that ends the path that it is; `noIndex` where it is none.
  Index walk(const ParseTree& tree, Role role = Role::Value, bool leads = false) {
    if (tree.type() == 0) return terminal(tree, role, leads);
    return nvf::with_stack([&] { return node(tree, role); });
  }
  void walkPath(const ParseTree& tree, Role role) { collector_.endPath(walk(tree, role)); }
  void walkChildren(const ParseTree& tree, std::size_t first = 0) {
    for (std::size_t i = first; i < tree.count(); ++i) walkPath(tree.child(i), Role::Value);
  }

private:
  Index terminal(const ParseTree& tree, Role role, bool leads) {
    if (!tree.isTerminalType(TokenId::ID)) return noIndex;
    return collector_.refer(Ident(tree.token()), role, scope_, leads);
  }

  Index node(const ParseTree& tree, Role role) {
    switch (tree.code()) {
    case K::Subsref: {
      const Index callee = walk(tree.child(0), role == Role::Value ? Role::Call : role);
      walkChildren(tree, 1);
      return callee;
    }
    case K::CellIndex: {
      const Index container = walk(tree.child(0), role);
      walkChildren(tree, 1);
      return container;
    }
    case K::Dot: {
      const Index parent = walk(tree.child(0), role == Role::Call ? Role::Value : role, true);
      if (parent == noIndex) return noIndex;
      return collector_.member(Ident(tree.child(2).token()), role, scope_, parent);
    }
    case K::DotParen:
      walkPath(tree.child(0), role);
      walkChildren(tree, 1);
      return noIndex;
    case K::Assign:
      walkPath(tree.child(0), Role::Update);
      walkChildren(tree, 1);
      return noIndex;
    case K::MultiAssign:
      walkTargets(tree.child(0));
      walkChildren(tree, 1);
      return noIndex;
    case K::ForStmt: loop(tree); return noIndex;
    case K::AnonymousFunction: lambda(tree); return noIndex;
    default: walkChildren(tree); return noIndex;
    }
  }

  /// `[a, b]` on the left of an assignment: a matrix with one row.
  void walkTargets(const ParseTree& matrix) {
    for (std::size_t i = 0; i < matrix.count(); ++i) {
      const ParseTree& body = matrix.child(i);
      if (!body.isNonTerminalType(K::ArrayBody)) continue;
      for (std::size_t r = 0; r < body.count(); ++r) {
        const ParseTree& row = body.child(r);
        for (std::size_t c = 0; row.type() == 1 && c < row.count(); ++c) walkPath(row.child(c), Role::Update);
      }
    }
  }

  void loop(const ParseTree& tree) {
    const Index outer = scope_;
    scope_ = collector_.open(ScopeKind::Loop, outer);
    bool isDeclared = false;
    for (std::size_t i = 0; i < tree.count(); ++i) {
      const ParseTree& child = tree.child(i);
      if (!isDeclared && child.isTerminalType(TokenId::ID)) {
        collector_.declare(Ident(child.token()), DeclarationKind::LoopVariable, scope_);
        isDeclared = true;
      } else {
        walkPath(child, Role::Value);
      }
    }
    collector_.close(scope_);
    scope_ = outer;
  }

  void lambda(const ParseTree& tree) {
    const Index outer = scope_;
    scope_ = collector_.open(ScopeKind::Lambda, outer);
    for (std::size_t i = 0; i < tree.count(); ++i) {
      if (tree.child(i).isNonTerminalType(K::FcnInputs)) {
        declareInputs(tree.child(i));
      } else {
        walkPath(tree.child(i), Role::Value);
      }
    }
    collector_.close(scope_);
    scope_ = outer;
  }
  void declareInputs(const ParseTree& inputs) {
    for (std::size_t i = 0; i < inputs.count(); ++i) {
      const ParseTree& child = inputs.child(i);
      if (child.isTerminalType(TokenId::ID)) {
        collector_.declare(Ident(child.token()), DeclarationKind::FunctionInput, scope_);
      } else if (child.type() == 1) {
        declareInputs(child);
      }
    }
  }

  NameCollector& collector_;
  Index scope_;
};

} // namespace

void NameCollector::setupFunction(const ParseTree& tree, Index scope) {
  if (tree.type() != 1 || tree.count() == 0 || tree.child(0).type() != 1) return;
  const Index setup = open(ScopeKind::Setup, scope);
  // The keyword, the outputs, the name and the inputs of the function stand before its body.
  SetupWalk(*this, setup).walkChildren(tree.child(0), 4);
  close(setup);
}

} // namespace tessarin::ide
