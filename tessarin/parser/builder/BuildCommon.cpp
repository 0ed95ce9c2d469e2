// The small pieces that all parts of the builder are made of.
#include "tessarin/parser/builder/BuildCommon.hpp"

#include "tessarin/parser/builder/TreeBuilder.hpp"

namespace tessarin::compiler::core {

// ---- places and texts ----

StringLiteral TreeBuilder::toCvLiteral(const Token& token) const {
  return {contentOf(token), token.range()};
}

// ---- names and pairs ----

Ident TreeBuilder::buildIdent(NodeView tree) const {
  return Ident(tree.token());
}

OptIdent TreeBuilder::buildOptIdent(NodeView tree) const {
  return to_opt_ident(tree.token());
}

nvf::Expressions<OptIdent> TreeBuilder::buildIdentList(NodeView tree) const {
  return nvf::Expressions<OptIdent>(mapChildren(tree, [this](NodeView id) { return buildOptIdent(id); }));
}

nvf::Expressions<Ident> TreeBuilder::buildIdentList1(NodeView tree) const {
  return nvf::Expressions<Ident>(mapChildren(tree, [this](NodeView id) { return buildIdent(id); }));
}

IdentValuePair TreeBuilder::buildIdentValuePair(NodeView tree) const {
  const Expr value = buildExpr(childOf(tree, 2));
  const Token* last = tree.right();
  return {buildIdent(childOf(tree, 0)), value, last == nullptr ? nvf::Location() : last->location()};
}

nvf::Expressions<IdentValuePair> TreeBuilder::buildIdentValuePairs(NodeView tree) const {
  return nvf::Expressions<IdentValuePair>(
      mapChildren(tree, [this](NodeView pair) { return buildIdentValuePair(pair); }));
}

ImplicitReference TreeBuilder::buildImplicitReference(NodeView tree) const {
  return ImplicitReference(rangeOf(tree));
}

} // namespace tessarin::compiler::core
