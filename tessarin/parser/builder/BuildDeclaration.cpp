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
  nvf::Expressions<OptIdent> ids = buildIdentList(tree.child(idIndex));
  return named(IdListValuePair(ids, buildExpr(tree.child(valueIndex)), false));
}

std::vector<IdListValuePair> ASTBuilder::buildEqDeclarationList(const ParseTree& tree) const {
  return mapChildren(tree, [this](const ParseTree& item) { return buildEqnDeclaration(item, 0, 1); });
}

Ident ASTBuilder::buildUntypedEqnDeclaration(const ParseTree& tree, std::size_t idIndex) const {
  return buildIdent(tree.child(idIndex));
}

IdListValuePair ASTBuilder::buildModelItemDecl(const ParseTree& tree) const {
  nvf::Expressions<OptIdent> ids = buildIdentList(tree.child(0));
  const Expr value = buildExpr(tree.child(2));
  return named(IdListValuePair(ids, value, tree.child(1).isTerminalType(TokenId::COLONEQUALS)));
}

ObjectArrayElementDecl ASTBuilder::buildObjArrayDecl(const ParseTree& tree) const {
  const Ident name = buildIdent(tree.child(0));
  nvf::Expressions<Ident> indices(mapChildren(tree.child(2), [this](const ParseTree& item) {
    const Expr index = buildExpr(item);
    const auto* variable = index.getIf<Variable>();
    if (variable == nullptr || !variable->isID()) {
      raiseAt<ArrayDeclIndexExpr>(expr_location(index), to_user_string(index));
    }
    return variable->id();
  }));
  return ObjectArrayElementDecl(IdParenIds(name, indices), buildExpr(tree.child(5)));
}

DeclarationBlock ASTBuilder::buildDeclarationBlock(const ParseTree& tree) const {
  const Token& keyword = tree.child(0).token();
  const MemberType::Value type = DeclarationBlock::declarationType(keyword.code());
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(tree.child(1));
  nvf::Expressions<DeclarationItem> declarations(
      mapChildren(tree.child(2), [this](const ParseTree& item) -> DeclarationItem {
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
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(tree.child(1));
  const nvf::Expressions<FunctionEqnItem> items = buildFunctionEqnItems(tree.child(2));
  return DefinitionsBlock(items, attributes, tree.child(0).token().location());
}

// ---- names of other files ----

Name ASTBuilder::buildTypeSpecifier(const ParseTree& tree) const {
  return Name(nvf::Expressions<Ident>(mapChildren(tree, [this](const ParseTree& id) { return buildIdent(id); })));
}

std::vector<ImportStmt> ASTBuilder::buildImports(const ParseTree& tree) const {
  return mapChildren(tree, [this](const ParseTree& item) {
    const bool isUnqualified = item.count() == 3; // the last child is the ".*"
    return ImportStmt(buildTypeSpecifier(item.child(1)), isUnqualified, item.child(0).location());
  });
}

ClassInitializer ASTBuilder::buildClassInitializer(const ParseTree& tree) const {
  const Name name = buildTypeSpecifier(tree.child(0));
  std::vector<NamedArgument> arguments;
  if (tree.count() > 1) arguments = buildEqnNamedArgs(tree.child(1), true);
  return ClassInitializer(name, std::move(arguments));
}

// ---- annotations ----

AnnotationsBlock ASTBuilder::buildAnnotationsBlock(const ParseTree& tree) const {
  std::vector<IdentValuePair> classAnnotations;
  std::vector<MemberAnnotation> annotations;
  for (const ParseTree& item : childrenOf(tree.child(1))) {
    if (item.isNonTerminalType(K::AvPairs)) {
      // The pairs of one line stand nested, each behind a node of those before it.
      const ParseTree pairs = item.roll();
      for (const ParseTree& pair : childrenOf(pairs)) classAnnotations.push_back(buildIdentValuePair(pair));
    } else {
      annotations.push_back(buildMemberAnnotation(item));
    }
  }
  return AnnotationsBlock(std::move(classAnnotations), std::move(annotations), tree.child(0).token().location());
}

MemberAnnotation ASTBuilder::buildMemberAnnotation(const ParseTree& tree) const {
  if (tree.child(0).isTerminalType(TokenId::ID)) {
    const nvf::Expressions<Ident> id{buildIdent(tree.child(0))};
    return MemberAnnotation(id, buildIdentValuePairs(tree.child(2)));
  }
  const nvf::Expressions<Ident> ids = buildIdentList1(tree.child(1));
  return MemberAnnotation(ids, buildIdentValuePairs(tree.child(4)));
}

} // namespace tessarin::compiler::core
