// The builder itself, and the small pieces that all of its parts are made of.
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include "tessarin/parser/builder/BuildCommon.hpp"

#include <utility>

namespace tessarin::compiler::core {

// ---- the builder ----

ASTBuilder::ASTBuilder() noexcept = default;
ASTBuilder::ASTBuilder(std::unique_ptr<nvf::ValueTokensToValue> toValue) noexcept : toValue_(std::move(toValue)) {}
ASTBuilder::ASTBuilder(nvf::ValueTokensToValue&& toValue) : toValue_(toValue.clone()) {}
ASTBuilder::ASTBuilder(const ASTBuilder& other) : toValue_(other.toValue_ ? other.toValue_->clone() : nullptr) {}
ASTBuilder::~ASTBuilder() = default;

// ---- places and texts ----

nvf::Range ASTBuilder::computeRange(const ParseTree& tree) const {
  return rangeOf(tree);
}

StringLiteral ASTBuilder::toCvLiteral(const Token& token) const {
  return {contentOf(token), token.range()};
}

// ---- names and pairs ----

Ident ASTBuilder::buildIdent(const ParseTree& tree) const {
  return Ident(tree.token());
}

OptIdent ASTBuilder::buildOptIdent(const ParseTree& tree) const {
  return to_opt_ident(tree.token());
}

nvf::Expressions<OptIdent> ASTBuilder::buildIdentList(const ParseTree& tree) const {
  return nvf::Expressions<OptIdent>(mapChildren(tree, [this](const ParseTree& id) { return buildOptIdent(id); }));
}

nvf::Expressions<Ident> ASTBuilder::buildIdentList1(const ParseTree& tree) const {
  return nvf::Expressions<Ident>(mapChildren(tree, [this](const ParseTree& id) { return buildIdent(id); }));
}

IdentValuePair ASTBuilder::buildIdentValuePair(const ParseTree& tree) const {
  const Expr value = buildExpr(childOf(tree, 2));
  const Token* last = tree.right();
  return {buildIdent(childOf(tree, 0)), value, last == nullptr ? nvf::Location() : last->location()};
}

nvf::Expressions<IdentValuePair> ASTBuilder::buildIdentValuePairs(const ParseTree& tree) const {
  return nvf::Expressions<IdentValuePair>(
      mapChildren(tree, [this](const ParseTree& pair) { return buildIdentValuePair(pair); }));
}

ImplicitReference ASTBuilder::buildImplicitReference(const ParseTree& tree) const {
  return ImplicitReference(computeRange(tree));
}

} // namespace tessarin::compiler::core
