// Declarations, of models and of functions; imports, base classes and annotations.
#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/Annotation.hpp"
#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"

#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages
using K = NonTerminal;

// ---- declarations ----

namespace {

/// Refuses a declaration that has placeholders only.
IdListValuePair named(IdListValuePair pair) {
  if (number_of_effective_ids(pair) == 0) raiseAt<NoIdInDeclaration>(pair.location());
  return pair;
}

} // namespace

IdListValuePair ASTBuilder::buildEqnDeclaration(const ParseTree& tree, std::size_t idIndex,
                                                std::size_t valueIndex) const {
  nvf::Expressions<OptIdent> ids = buildIdentList(childOf(tree, idIndex));
  return named(IdListValuePair(ids, buildExpr(childOf(tree, valueIndex)), false));
}

std::vector<IdListValuePair> ASTBuilder::buildEqDeclarationList(const ParseTree& tree) const {
  return mapChildren(tree, [this](const ParseTree& item) { return buildEqnDeclaration(item, 0, 1); });
}

Ident ASTBuilder::buildUntypedEqnDeclaration(const ParseTree& tree, std::size_t idIndex) const {
  return buildIdent(childOf(tree, idIndex));
}

IdListValuePair ASTBuilder::buildModelItemDecl(const ParseTree& tree) const {
  nvf::Expressions<OptIdent> ids = buildIdentList(childOf(tree, 0));
  const Expr value = buildExpr(childOf(tree, 2));
  return named(IdListValuePair(ids, value, childOf(tree, 1).isTerminalType(TokenId::COLONEQUALS)));
}

ObjectArrayElementDecl ASTBuilder::buildObjArrayDecl(const ParseTree& tree) const {
  const Ident name = buildIdent(childOf(tree, 0));
  nvf::Expressions<Ident> indices(mapChildren(childOf(tree, 2), [this](const ParseTree& item) {
    const Expr index = buildExpr(item);
    const auto* variable = index.getIf<Variable>();
    if (variable == nullptr || !variable->isID()) {
      raiseAt<ArrayDeclIndexExpr>(expr_location(index), to_user_string(index));
    }
    return variable->id();
  }));
  return ObjectArrayElementDecl(IdParenIds(name, indices), buildExpr(childOf(tree, 5)));
}

DeclarationBlock ASTBuilder::buildDeclarationBlock(const ParseTree& tree) const {
  const Token& keyword = childOf(tree, 0).token();
  const MemberType::Value type = DeclarationBlock::declarationType(keyword.code());
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(childOf(tree, 1));
  nvf::Expressions<DeclarationItem> declarations(
      mapChildren(childOf(tree, 2), [this](const ParseTree& item) -> DeclarationItem {
        switch (item.code()) {
        case K::ModelItemDeclaration: return buildModelItemDecl(item);
        case K::ObjectArrayItemDeclaration: return buildObjArrayDecl(item);
        case K::ModelItemUntypedDeclaration: return buildUntypedEqnDeclaration(item, 0);
        default:
          fatal("invalid non terminal item", 764,
                "tessarin::compiler::core::DeclarationBlock tessarin::compiler::core::ASTBuilder::"
                "buildDeclarationBlock(const tessarin::compiler::core::ParseTree&) const");
        }
      }));
  return DeclarationBlock(type, attributes, declarations, keyword.location());
}

FunctionEqnItem ASTBuilder::buildFunctionEqnItem(const ParseTree& tree) const {
  if (tree.isNonTerminalType(K::EqnAssert)) return buildEqnAssertion(tree);
  return buildEqnDeclaration(tree, 0, 1);
}

nvf::Expressions<FunctionEqnItem> ASTBuilder::buildFunctionEqnItems(const ParseTree& tree) const {
  return nvf::Expressions<FunctionEqnItem>(
      mapChildren(tree, [this](const ParseTree& item) { return buildFunctionEqnItem(item); }));
}

DefinitionsBlock ASTBuilder::buildDefinitionsBlock(const ParseTree& tree) const {
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(childOf(tree, 1));
  const nvf::Expressions<FunctionEqnItem> items = buildFunctionEqnItems(childOf(tree, 2));
  return DefinitionsBlock(items, attributes, childOf(tree, 0).token().location());
}

// ---- names of other files ----

Name ASTBuilder::buildTypeSpecifier(const ParseTree& tree) const {
  return Name(nvf::Expressions<Ident>(mapChildren(tree, [this](const ParseTree& id) { return buildIdent(id); })));
}

std::vector<ImportStmt> ASTBuilder::buildImports(const ParseTree& tree) const {
  return mapChildren(tree, [this](const ParseTree& item) {
    const bool isUnqualified = item.count() == 3; // the last child is the ".*"
    return ImportStmt(buildTypeSpecifier(childOf(item, 1)), isUnqualified, placeOf(childOf(item, 0)));
  });
}

ClassInitializer ASTBuilder::buildClassInitializer(const ParseTree& tree) const {
  const Name name = buildTypeSpecifier(childOf(tree, 0));
  std::vector<NamedArgument> arguments;
  if (tree.count() > 1) arguments = buildEqnNamedArgs(childOf(tree, 1), true);
  return ClassInitializer(name, std::move(arguments));
}

// ---- annotations ----

AnnotationsBlock ASTBuilder::buildAnnotationsBlock(const ParseTree& tree) const {
  std::vector<IdentValuePair> classAnnotations;
  std::vector<MemberAnnotation> annotations;
  for (const ParseTree& item : childrenOf(childOf(tree, 1))) {
    if (item.isNonTerminalType(K::AvPairs)) {
      // The pairs of one line stand nested, each behind a node of those before it.
      const ParseTree pairs = item.roll();
      for (const ParseTree& pair : childrenOf(pairs)) classAnnotations.push_back(buildIdentValuePair(pair));
    } else {
      annotations.push_back(buildMemberAnnotation(item));
    }
  }
  return AnnotationsBlock(std::move(classAnnotations), std::move(annotations), childOf(tree, 0).token().location());
}

MemberAnnotation ASTBuilder::buildMemberAnnotation(const ParseTree& tree) const {
  if (childOf(tree, 0).isTerminalType(TokenId::ID)) {
    const nvf::Expressions<Ident> id{buildIdent(childOf(tree, 0))};
    return MemberAnnotation(id, buildIdentValuePairs(childOf(tree, 2)));
  }
  const nvf::Expressions<Ident> ids = buildIdentList1(childOf(tree, 1));
  return MemberAnnotation(ids, buildIdentValuePairs(childOf(tree, 4)));
}

} // namespace tessarin::compiler::core
