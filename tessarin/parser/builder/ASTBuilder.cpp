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
  const Token* first = tree.left();
  return first == nullptr ? nvf::Range() : first->range() + tree.right()->range();
}

StringLiteral ASTBuilder::toCvLiteral(const Token& token) const {
  const nvf::ustring_view quoted = token.text().view();
  const char16_t quote = token.code() == TokenId::STRING ? u'\'' : u'"';
  nvf::ustring content;
  for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
    content += quoted[i];
    if (quoted[i] == quote && i + 2 < quoted.size() && quoted[i + 1] == quote) ++i;
  }
  return {content, token.range()};
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
