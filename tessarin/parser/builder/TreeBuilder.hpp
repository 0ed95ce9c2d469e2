// The builder itself, over the flat tree. Private to the builder; `ASTBuilder` leads here.
#pragma once

#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/FlatTree.hpp"

#include <cstddef>
#include <optional>
#include <vector>

namespace tessarin::compiler::core {

/// Builds what its members are named for, as those of `ASTBuilder` do.
class TreeBuilder {
public:
  /// The converter may be null; it and the listener must outlive the builder.
  TreeBuilder(const nvf::ValueTokensToValue* toValue, const ASTBuilder::TokenListener& unreadTokenListener) noexcept
      : toValue_(toValue), unreadTokenListener_(unreadTokenListener) {}

  [[nodiscard]] const ASTBuilder::TokenListener& unreadTokenListener() const noexcept { return unreadTokenListener_; }

  [[nodiscard]] Expr buildExpr(NodeView tree) const;
  [[nodiscard]] MatrixExpr buildMatrixExpr(NodeView tree) const;
  [[nodiscard]] MatrixExpr::Row buildMatrixRow(NodeView tree) const;
  [[nodiscard]] FieldValueArrayExpr buildFieldValueArrayExpr(NodeView tree) const;
  [[nodiscard]] IfExpr buildIfExpr(NodeView tree) const;
  [[nodiscard]] LetExpr buildLetExpr(NodeView tree) const;
  [[nodiscard]] StringLiteral toCvLiteral(const Token& token) const;
  [[nodiscard]] Ident buildIdent(NodeView tree) const;
  [[nodiscard]] OptIdent buildOptIdent(NodeView tree) const;
  [[nodiscard]] nvf::Expressions<OptIdent> buildIdentList(NodeView tree) const;
  [[nodiscard]] nvf::Expressions<Ident> buildIdentList1(NodeView tree) const;
  [[nodiscard]] IdentValuePair buildIdentValuePair(NodeView tree) const;
  [[nodiscard]] nvf::Expressions<IdentValuePair> buildIdentValuePairs(NodeView tree) const;
  [[nodiscard]] Name buildTypeSpecifier(NodeView tree) const;
  [[nodiscard]] Variable buildVariable(NodeView tree) const;
  [[nodiscard]] FullPathVariable buildFullPathVariable(NodeView tree) const;
  [[nodiscard]] RelativePathVariable buildRelativePathVariable(NodeView tree) const;
  [[nodiscard]] ValueRef buildValueRef(NodeView tree) const;
  [[nodiscard]] std::optional<ValueRefTail> buildValueRefTail(NodeView tree) const;
  [[nodiscard]] ObjectRef buildObjectRef(NodeView tree) const;
  [[nodiscard]] ImplicitReference buildImplicitReference(NodeView tree) const;
  [[nodiscard]] NativeFunctionCall buildNativeFunctionCall(NodeView tree) const;
  [[nodiscard]] CalvexFunctionCall buildCalvexFunctionCall(NodeView tree) const;
  [[nodiscard]] TessarinFunctionCall buildTessarinFunctionCall(NodeView tree) const;
  [[nodiscard]] TessarinLocalFunctionCall buildTessarinLocalFunctionCall(NodeView tree) const;
  [[nodiscard]] Expr buildConcreteValueExpr(NodeView tree) const;
  [[nodiscard]] Expr buildMRVIndex(NodeView tree) const;
  [[nodiscard]] Expr buildTransitionExpr(NodeView tree) const;
  [[nodiscard]] Expr buildModechartEqnExpr(NodeView tree) const;
  [[nodiscard]] std::vector<Subscript> buildSubscripts(NodeView tree) const;
  [[nodiscard]] nvf::Expressions<IdParenSubs> buildIdSubsPath(NodeView tree,
                                                              const std::vector<std::size_t>& positions) const;
  [[nodiscard]] std::vector<NamedArgument> buildEqnNamedArgs(NodeView tree, bool allowColonEquals) const;
  [[nodiscard]] EqnItem buildEqnItem(NodeView tree) const;
  [[nodiscard]] std::vector<EqnItem> buildEqnItemList(NodeView tree) const;
  [[nodiscard]] EqnAssertion buildEqnAssertion(NodeView tree) const;
  [[nodiscard]] EquationBlock buildEquationBlock(NodeView tree) const;
  [[nodiscard]] WhenClause buildWhenClause(NodeView tree) const;
  [[nodiscard]] EventBlock buildEventBlock(NodeView tree) const;
  [[nodiscard]] FunctionEqnItem buildFunctionEqnItem(NodeView tree) const;
  [[nodiscard]] nvf::Expressions<FunctionEqnItem> buildFunctionEqnItems(NodeView tree) const;
  [[nodiscard]] IdListValuePair buildEqnDeclaration(NodeView tree, std::size_t idIndex, std::size_t valueIndex) const;
  [[nodiscard]] std::vector<IdListValuePair> buildEqDeclarationList(NodeView tree) const;
  [[nodiscard]] Ident buildUntypedEqnDeclaration(NodeView tree, std::size_t idIndex) const;
  [[nodiscard]] IdListValuePair buildModelItemDecl(NodeView tree) const;
  [[nodiscard]] ObjectArrayElementDecl buildObjArrayDecl(NodeView tree) const;
  [[nodiscard]] DeclarationBlock buildDeclarationBlock(NodeView tree) const;
  [[nodiscard]] DefinitionsBlock buildDefinitionsBlock(NodeView tree) const;
  [[nodiscard]] std::vector<ImportStmt> buildImports(NodeView tree) const;
  [[nodiscard]] ClassInitializer buildClassInitializer(NodeView tree) const;
  [[nodiscard]] AnnotationsBlock buildAnnotationsBlock(NodeView tree) const;
  [[nodiscard]] MemberAnnotation buildMemberAnnotation(NodeView tree) const;
  [[nodiscard]] BranchBlock buildBranchBlock(NodeView tree) const;
  [[nodiscard]] Through buildThrough(NodeView tree) const;
  [[nodiscard]] ThroughLeaf buildThroughLeaf(NodeView tree) const;
  [[nodiscard]] ConnectionBlock buildConnectionBlock(NodeView tree) const;
  [[nodiscard]] Connection buildConnection(NodeView tree) const;
  [[nodiscard]] ModechartBlock buildModechartBlock(NodeView tree) const;
  [[nodiscard]] ModechartDeclaration buildModechartDeclaration(NodeView tree) const;
  [[nodiscard]] Modechart buildModechart(NodeView tree) const;
  [[nodiscard]] ModesSection buildModesSection(NodeView tree) const;
  [[nodiscard]] Mode buildMode(NodeView tree) const;
  [[nodiscard]] TransitionsSection buildTransitionsSection(NodeView tree) const;
  [[nodiscard]] Transition buildTransition(NodeView tree) const;
  [[nodiscard]] InitialSection buildInitialSection(NodeView tree) const;
  [[nodiscard]] InitialMode buildInitialMode(NodeView tree) const;
  [[nodiscard]] DeclarativeSections buildDeclarative(NodeView tree) const;
  [[nodiscard]] ConditionalSection buildConditionalSection(NodeView tree) const;
  [[nodiscard]] std::vector<ElseifSection> buildElseifSections(NodeView tree) const;
  [[nodiscard]] ElseifSection buildElseifSection(NodeView tree) const;
  [[nodiscard]] ElseSection buildElseSection(NodeView tree) const;
  [[nodiscard]] ForLoop buildForLoop(NodeView tree) const;
  [[nodiscard]] Model buildModel(NodeView tree, FileSource source) const;
  [[nodiscard]] TSNFunction buildTSNFunction(NodeView tree, FileSource source) const;
  [[nodiscard]] LocalTSNFunctions buildTSNFunctions(NodeView tree, const Ident& mainName, FileSource source) const;
  [[nodiscard]] TSNFile buildTSNFile(NodeView tree, FileSource source) const;
  [[nodiscard]] ModelFile buildModelFile(NodeView tree, FileSource source) const;
  [[nodiscard]] TSNFunctionFile buildTSNFunctionFile(NodeView tree, FileSource source) const;
  [[nodiscard]] ComponentStructureInfo extractStructureInfo(NodeView tree) const;

private:
  const nvf::ValueTokensToValue* toValue_;
  const ASTBuilder::TokenListener& unreadTokenListener_;
};

} // namespace tessarin::compiler::core
