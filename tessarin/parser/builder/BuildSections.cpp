// Branches, connections and modecharts.
#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/Branch.hpp"
#include "tessarin/parser/ast/Connection.hpp"
#include "tessarin/parser/ast/Modechart.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"
#include "tessarin/parser/builder/TreeBuilder.hpp"

#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages
using K = NonTerminal;

// ---- branches ----

BranchBlock TreeBuilder::buildBranchBlock(NodeView tree) const {
  return BranchBlock(mapChildren(childOf(tree, 1), [this](NodeView item) { return buildThrough(item); }),
                     childOf(tree, 0).token().location());
}

Through TreeBuilder::buildThrough(NodeView tree) const {
  const ThroughLeaf from = buildThroughLeaf(childOf(tree, 2));
  const ThroughLeaf to = buildThroughLeaf(childOf(tree, 4));
  const Variable variable = buildVariable(childOf(tree, 0));
  if (!variable.leadingPath().empty()) raiseAt<NoDotRefBranchVar>(variable.location());
  std::optional<ParenSubs> subs;
  if (const std::optional<Arguments>& tail = variable.tail()) {
    if (!tail->namedArgs().empty()) raiseAt<NoNamedArgBranchVar>(variable.location());
    subs.emplace(tail->posArgs(), tail->range());
  }
  // A branch has no place of its own, intended: messages take it from the block or from the ends.
  return Through(IdParenSubs(variable.id(), subs), from, to, nvf::Location());
}

ThroughLeaf TreeBuilder::buildThroughLeaf(NodeView tree) const {
  if (tree.type() == 0) return buildImplicitReference(tree);
  if (childOf(tree, 0).token().text() == ValueRef::ctor().text()) return buildValueRef(tree);
  return buildVariable(tree);
}

// ---- connections ----

ConnectionBlock TreeBuilder::buildConnectionBlock(NodeView tree) const {
  return ConnectionBlock(mapChildren(childOf(tree, 1), [this](NodeView item) { return buildConnection(item); }),
                         childOf(tree, 0).token().location());
}

Connection TreeBuilder::buildConnection(NodeView tree) const {
  const auto argument = [this](NodeView item) -> ConnectionArg {
    // A literal stands for the implicit reference too, intended.
    if (item.type() == 0) return buildImplicitReference(item);
    const Expr expr = buildExpr(item);
    if (const auto* ref = expr.getIf<ValueRef>()) return *ref;
    if (const auto* ref = expr.getIf<ObjectRef>()) return *ref;
    if (const auto* variable = expr.getIf<Variable>()) return *variable;
    raiseAt<InvalidConnectionArg>(expr_location(expr), to_user_string(expr));
  };
  const NodeView list = childOf(tree, 2);
  const NodeView head = childOf(list, 0);
  const ConnectionFirstArg first = head.isTerminalType(TokenId::MUL) ? ConnectionFirstArg(buildImplicitReference(head))
                                                                     : ConnectionFirstArg(buildExpr(head));
  return Connection(first, mapChildren(list, argument, 1), childOf(tree, 0).token().location());
}

// ---- modecharts ----

ModechartBlock TreeBuilder::buildModechartBlock(NodeView tree) const {
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(childOf(tree, 1));
  return ModechartBlock(attributes,
                        mapChildren(childOf(tree, 2), [this](NodeView t) { return buildModechartDeclaration(t); }),
                        childOf(tree, 0).token().location());
}

ModechartDeclaration TreeBuilder::buildModechartDeclaration(NodeView tree) const {
  const Modechart modechart = buildModechart(childOf(tree, 2));
  return ModechartDeclaration(buildIdent(childOf(tree, 0)), modechart);
}

Modechart TreeBuilder::buildModechart(NodeView tree) const {
  std::vector<ModesSection> modes;
  std::vector<TransitionsSection> transitions;
  std::vector<InitialSection> initials;
  for (const NodeView section : childrenOf(childOf(tree, 1))) {
    switch (section.code()) {
    case K::ModesSection: modes.push_back(buildModesSection(section)); break;
    case K::TransitionsSection: transitions.push_back(buildTransitionsSection(section)); break;
    case K::InitialSection: initials.push_back(buildInitialSection(section)); break;
    default:
      fatal("Parse tree node not recognized.", 867,
            "tessarin::compiler::core::Modechart tessarin::compiler::core::ASTBuilder::"
            "buildModechart(const tessarin::compiler::core::ParseTree&) const");
    }
  }
  return Modechart(std::move(modes), std::move(transitions), std::move(initials), rangeOf(tree));
}

ModesSection TreeBuilder::buildModesSection(NodeView tree) const {
  return ModesSection(mapChildren(childOf(tree, 1), [this](NodeView item) { return buildMode(item); }));
}

Mode TreeBuilder::buildMode(NodeView tree) const {
  const bool isSingle = childOf(tree, 1).isTerminalType(TokenId::ID);
  const nvf::Expressions<Ident> ids =
      isSingle ? nvf::Expressions<Ident>{buildIdent(childOf(tree, 1))} : buildIdentList1(childOf(tree, 2));
  std::vector<EquationBlock> equations;
  std::vector<EntryBlock> entries;
  for (const NodeView item : childrenOf(childOf(tree, isSingle ? 2 : 4))) {
    if (item.isNonTerminalType(K::EquationsBlock)) {
      equations.push_back(buildEquationBlock(item));
    } else {
      entries.emplace_back(buildIdentValuePairs(item), nvf::Range()); // the tree has no place for it
    }
  }
  return Mode(ids, std::move(equations), std::move(entries), rangeOf(tree));
}

TransitionsSection TreeBuilder::buildTransitionsSection(NodeView tree) const {
  return TransitionsSection(mapChildren(childOf(tree, 1), [this](NodeView item) { return buildTransition(item); }));
}

Transition TreeBuilder::buildTransition(NodeView tree) const {
  const Expr predicate = buildExpr(childOf(tree, 1));
  return Transition(buildIdentList1(childOf(tree, 0)), predicate);
}

InitialSection TreeBuilder::buildInitialSection(NodeView tree) const {
  return InitialSection(mapChildren(childOf(tree, 1), [this](NodeView item) { return buildInitialMode(item); }));
}

InitialMode TreeBuilder::buildInitialMode(NodeView tree) const {
  const Expr predicate = buildExpr(childOf(tree, 2));
  return InitialMode(buildIdent(childOf(tree, 0)), predicate);
}

} // namespace tessarin::compiler::core
