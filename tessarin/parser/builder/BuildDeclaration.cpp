// Declarations, of models and of functions; imports, base classes and annotations.
#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/Annotation.hpp"
#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"
#include "tessarin/parser/builder/TreeBuilder.hpp"

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

IdListValuePair TreeBuilder::buildEqnDeclaration(NodeView tree, std::size_t idIndex, std::size_t valueIndex) const {
  nvf::Expressions<OptIdent> ids = buildIdentList(childOf(tree, idIndex));
  return named(IdListValuePair(ids, buildExpr(childOf(tree, valueIndex)), false));
}

std::vector<IdListValuePair> TreeBuilder::buildEqDeclarationList(NodeView tree) const {
  return mapChildren(tree, [this](NodeView item) { return buildEqnDeclaration(item, 0, 1); });
}

Ident TreeBuilder::buildUntypedEqnDeclaration(NodeView tree, std::size_t idIndex) const {
  return buildIdent(childOf(tree, idIndex));
}

IdListValuePair TreeBuilder::buildModelItemDecl(NodeView tree) const {
  nvf::Expressions<OptIdent> ids = buildIdentList(childOf(tree, 0));
  const Expr value = buildExpr(childOf(tree, 2));
  return named(IdListValuePair(ids, value, childOf(tree, 1).isTerminalType(TokenId::COLONEQUALS)));
}

ObjectArrayElementDecl TreeBuilder::buildObjArrayDecl(NodeView tree) const {
  const Ident name = buildIdent(childOf(tree, 0));
  nvf::Expressions<Ident> indices(mapChildren(childOf(tree, 2), [this](NodeView item) {
    const Expr index = buildExpr(item);
    const auto* variable = index.getIf<Variable>();
    if (variable == nullptr || !variable->isID()) {
      raiseAt<ArrayDeclIndexExpr>(expr_location(index), to_user_string(index));
    }
    return variable->id();
  }));
  return ObjectArrayElementDecl(IdParenIds(name, indices), buildExpr(childOf(tree, 5)));
}

DeclarationBlock TreeBuilder::buildDeclarationBlock(NodeView tree) const {
  const Token& keyword = childOf(tree, 0).token();
  const MemberType::Value type = DeclarationBlock::declarationType(keyword.code());
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(childOf(tree, 1));
  nvf::Expressions<DeclarationItem> declarations(
      mapChildren(childOf(tree, 2), [this](NodeView item) -> DeclarationItem {
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

FunctionEqnItem TreeBuilder::buildFunctionEqnItem(NodeView tree) const {
  if (tree.isNonTerminalType(K::EqnAssert)) return buildEqnAssertion(tree);
  return buildEqnDeclaration(tree, 0, 1);
}

nvf::Expressions<FunctionEqnItem> TreeBuilder::buildFunctionEqnItems(NodeView tree) const {
  return nvf::Expressions<FunctionEqnItem>(
      mapChildren(tree, [this](NodeView item) { return buildFunctionEqnItem(item); }));
}

DefinitionsBlock TreeBuilder::buildDefinitionsBlock(NodeView tree) const {
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(childOf(tree, 1));
  const nvf::Expressions<FunctionEqnItem> items = buildFunctionEqnItems(childOf(tree, 2));
  return DefinitionsBlock(items, attributes, childOf(tree, 0).token().location());
}

// ---- names of other files ----

Name TreeBuilder::buildTypeSpecifier(NodeView tree) const {
  return Name(nvf::Expressions<Ident>(mapChildren(tree, [this](NodeView id) { return buildIdent(id); })));
}

std::vector<ImportStmt> TreeBuilder::buildImports(NodeView tree) const {
  return mapChildren(tree, [this](NodeView item) {
    const bool isUnqualified = item.count() == 3; // the last child is the ".*"
    return ImportStmt(buildTypeSpecifier(childOf(item, 1)), isUnqualified, placeOf(childOf(item, 0)));
  });
}

ClassInitializer TreeBuilder::buildClassInitializer(NodeView tree) const {
  const Name name = buildTypeSpecifier(childOf(tree, 0));
  std::vector<NamedArgument> arguments;
  if (tree.count() > 1) arguments = buildEqnNamedArgs(childOf(tree, 1), true);
  return ClassInitializer(name, std::move(arguments));
}

// ---- annotations ----

AnnotationsBlock TreeBuilder::buildAnnotationsBlock(NodeView tree) const {
  std::vector<IdentValuePair> classAnnotations;
  std::vector<MemberAnnotation> annotations;
  for (const NodeView item : childrenOf(childOf(tree, 1))) {
    if (item.isNonTerminalType(K::AvPairs)) {
      // The pairs of one line stand nested, each behind a node of those before it.
      for (const NodeView pair : rolled(item)) classAnnotations.push_back(buildIdentValuePair(pair));
    } else {
      annotations.push_back(buildMemberAnnotation(item));
    }
  }
  return AnnotationsBlock(std::move(classAnnotations), std::move(annotations), childOf(tree, 0).token().location());
}

MemberAnnotation TreeBuilder::buildMemberAnnotation(NodeView tree) const {
  if (childOf(tree, 0).isTerminalType(TokenId::ID)) {
    const nvf::Expressions<Ident> id{buildIdent(childOf(tree, 0))};
    return MemberAnnotation(id, buildIdentValuePairs(childOf(tree, 2)));
  }
  const nvf::Expressions<Ident> ids = buildIdentList1(childOf(tree, 1));
  return MemberAnnotation(ids, buildIdentValuePairs(childOf(tree, 4)));
}

} // namespace tessarin::compiler::core
