// The public face of the builder: each member leads the public tree to the flat one, and goes on with `TreeBuilder`.
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include "tessarin/parser/ast/ComponentStructureInfo.hpp"
#include "tessarin/parser/builder/TreeBuilder.hpp"
#include "tessarin/parser/parse/ParseTreeBuilder.hpp"

#include <utility>

namespace tessarin::compiler::core {

// ---- the builder ----

ASTBuilder::ASTBuilder() noexcept = default;
ASTBuilder::ASTBuilder(std::unique_ptr<nvf::ValueTokensToValue> toValue) noexcept : toValue_(std::move(toValue)) {}
ASTBuilder::ASTBuilder(nvf::ValueTokensToValue&& toValue) : toValue_(toValue.clone()) {}
ASTBuilder::ASTBuilder(const ASTBuilder& other) : toValue_(other.toValue_ ? other.toValue_->clone() : nullptr) {}
ASTBuilder::~ASTBuilder() = default;

// ---- the members ----

Expr ASTBuilder::buildExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildExpr(Flattened(tree).root());
}
MatrixExpr ASTBuilder::buildMatrixExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildMatrixExpr(Flattened(tree).root());
}
MatrixExpr::Row ASTBuilder::buildMatrixRow(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildMatrixRow(Flattened(tree).root());
}
FieldValueArrayExpr ASTBuilder::buildFieldValueArrayExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildFieldValueArrayExpr(Flattened(tree).root());
}
IfExpr ASTBuilder::buildIfExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildIfExpr(Flattened(tree).root());
}
LetExpr ASTBuilder::buildLetExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildLetExpr(Flattened(tree).root());
}
nvf::Range ASTBuilder::computeRange(const ParseTree& tree) const { // which needs no look inside
  const Token* first = tree.left();
  return first == nullptr ? nvf::Range() : first->range() + tree.right()->range();
}
StringLiteral ASTBuilder::toCvLiteral(const Token& token) const {
  return TreeBuilder(toValue_.get()).toCvLiteral(token);
}
Ident ASTBuilder::buildIdent(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildIdent(Flattened(tree).root());
}
OptIdent ASTBuilder::buildOptIdent(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildOptIdent(Flattened(tree).root());
}
nvf::Expressions<OptIdent> ASTBuilder::buildIdentList(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildIdentList(Flattened(tree).root());
}
nvf::Expressions<Ident> ASTBuilder::buildIdentList1(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildIdentList1(Flattened(tree).root());
}
IdentValuePair ASTBuilder::buildIdentValuePair(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildIdentValuePair(Flattened(tree).root());
}
nvf::Expressions<IdentValuePair> ASTBuilder::buildIdentValuePairs(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildIdentValuePairs(Flattened(tree).root());
}
Name ASTBuilder::buildTypeSpecifier(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildTypeSpecifier(Flattened(tree).root());
}
Variable ASTBuilder::buildVariable(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildVariable(Flattened(tree).root());
}
FullPathVariable ASTBuilder::buildFullPathVariable(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildFullPathVariable(Flattened(tree).root());
}
RelativePathVariable ASTBuilder::buildRelativePathVariable(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildRelativePathVariable(Flattened(tree).root());
}
ValueRef ASTBuilder::buildValueRef(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildValueRef(Flattened(tree).root());
}
std::optional<ValueRefTail> ASTBuilder::buildValueRefTail(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildValueRefTail(Flattened(tree).root());
}
ObjectRef ASTBuilder::buildObjectRef(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildObjectRef(Flattened(tree).root());
}
ImplicitReference ASTBuilder::buildImplicitReference(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildImplicitReference(Flattened(tree).root());
}
NativeFunctionCall ASTBuilder::buildNativeFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildNativeFunctionCall(Flattened(tree).root());
}
CalvexFunctionCall ASTBuilder::buildCalvexFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildCalvexFunctionCall(Flattened(tree).root());
}
TessarinFunctionCall ASTBuilder::buildTessarinFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildTessarinFunctionCall(Flattened(tree).root());
}
TessarinLocalFunctionCall ASTBuilder::buildTessarinLocalFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildTessarinLocalFunctionCall(Flattened(tree).root());
}
Expr ASTBuilder::buildConcreteValueExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildConcreteValueExpr(Flattened(tree).root());
}
Expr ASTBuilder::buildMRVIndex(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildMRVIndex(Flattened(tree).root());
}
Expr ASTBuilder::buildTransitionExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildTransitionExpr(Flattened(tree).root());
}
Expr ASTBuilder::buildModechartEqnExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildModechartEqnExpr(Flattened(tree).root());
}
std::vector<Subscript> ASTBuilder::buildSubscripts(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildSubscripts(Flattened(tree).root());
}
nvf::Expressions<IdParenSubs> ASTBuilder::buildIdSubsPath(const ParseTree& tree,
                                                          const std::vector<std::size_t>& positions) const {
  return TreeBuilder(toValue_.get()).buildIdSubsPath(Flattened(tree).root(), positions);
}
std::vector<NamedArgument> ASTBuilder::buildEqnNamedArgs(const ParseTree& tree, bool allowColonEquals) const {
  return TreeBuilder(toValue_.get()).buildEqnNamedArgs(Flattened(tree).root(), allowColonEquals);
}
EqnItem ASTBuilder::buildEqnItem(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildEqnItem(Flattened(tree).root());
}
std::vector<EqnItem> ASTBuilder::buildEqnItemList(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildEqnItemList(Flattened(tree).root());
}
EqnAssertion ASTBuilder::buildEqnAssertion(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildEqnAssertion(Flattened(tree).root());
}
EquationBlock ASTBuilder::buildEquationBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildEquationBlock(Flattened(tree).root());
}
WhenClause ASTBuilder::buildWhenClause(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildWhenClause(Flattened(tree).root());
}
EventBlock ASTBuilder::buildEventBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildEventBlock(Flattened(tree).root());
}
FunctionEqnItem ASTBuilder::buildFunctionEqnItem(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildFunctionEqnItem(Flattened(tree).root());
}
nvf::Expressions<FunctionEqnItem> ASTBuilder::buildFunctionEqnItems(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildFunctionEqnItems(Flattened(tree).root());
}
IdListValuePair ASTBuilder::buildEqnDeclaration(const ParseTree& tree, std::size_t idIndex,
                                                std::size_t valueIndex) const {
  return TreeBuilder(toValue_.get()).buildEqnDeclaration(Flattened(tree).root(), idIndex, valueIndex);
}
std::vector<IdListValuePair> ASTBuilder::buildEqDeclarationList(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildEqDeclarationList(Flattened(tree).root());
}
Ident ASTBuilder::buildUntypedEqnDeclaration(const ParseTree& tree, std::size_t idIndex) const {
  return TreeBuilder(toValue_.get()).buildUntypedEqnDeclaration(Flattened(tree).root(), idIndex);
}
IdListValuePair ASTBuilder::buildModelItemDecl(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildModelItemDecl(Flattened(tree).root());
}
ObjectArrayElementDecl ASTBuilder::buildObjArrayDecl(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildObjArrayDecl(Flattened(tree).root());
}
DeclarationBlock ASTBuilder::buildDeclarationBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildDeclarationBlock(Flattened(tree).root());
}
DefinitionsBlock ASTBuilder::buildDefinitionsBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildDefinitionsBlock(Flattened(tree).root());
}
std::vector<ImportStmt> ASTBuilder::buildImports(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildImports(Flattened(tree).root());
}
ClassInitializer ASTBuilder::buildClassInitializer(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildClassInitializer(Flattened(tree).root());
}
AnnotationsBlock ASTBuilder::buildAnnotationsBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildAnnotationsBlock(Flattened(tree).root());
}
MemberAnnotation ASTBuilder::buildMemberAnnotation(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildMemberAnnotation(Flattened(tree).root());
}
BranchBlock ASTBuilder::buildBranchBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildBranchBlock(Flattened(tree).root());
}
Through ASTBuilder::buildThrough(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildThrough(Flattened(tree).root());
}
ThroughLeaf ASTBuilder::buildThroughLeaf(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildThroughLeaf(Flattened(tree).root());
}
ConnectionBlock ASTBuilder::buildConnectionBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildConnectionBlock(Flattened(tree).root());
}
Connection ASTBuilder::buildConnection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildConnection(Flattened(tree).root());
}
ModechartBlock ASTBuilder::buildModechartBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildModechartBlock(Flattened(tree).root());
}
ModechartDeclaration ASTBuilder::buildModechartDeclaration(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildModechartDeclaration(Flattened(tree).root());
}
Modechart ASTBuilder::buildModechart(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildModechart(Flattened(tree).root());
}
ModesSection ASTBuilder::buildModesSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildModesSection(Flattened(tree).root());
}
Mode ASTBuilder::buildMode(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildMode(Flattened(tree).root());
}
TransitionsSection ASTBuilder::buildTransitionsSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildTransitionsSection(Flattened(tree).root());
}
Transition ASTBuilder::buildTransition(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildTransition(Flattened(tree).root());
}
InitialSection ASTBuilder::buildInitialSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildInitialSection(Flattened(tree).root());
}
InitialMode ASTBuilder::buildInitialMode(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildInitialMode(Flattened(tree).root());
}
DeclarativeSections ASTBuilder::buildDeclarative(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildDeclarative(Flattened(tree).root());
}
ConditionalSection ASTBuilder::buildConditionalSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildConditionalSection(Flattened(tree).root());
}
std::vector<ElseifSection> ASTBuilder::buildElseifSections(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildElseifSections(Flattened(tree).root());
}
ElseifSection ASTBuilder::buildElseifSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildElseifSection(Flattened(tree).root());
}
ElseSection ASTBuilder::buildElseSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildElseSection(Flattened(tree).root());
}
ForLoop ASTBuilder::buildForLoop(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).buildForLoop(Flattened(tree).root());
}
Model ASTBuilder::buildModel(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get()).buildModel(Flattened(tree).root(), source);
}
TSNFunction ASTBuilder::buildTSNFunction(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get()).buildTSNFunction(Flattened(tree).root(), source);
}
LocalTSNFunctions ASTBuilder::buildTSNFunctions(const ParseTree& tree, const Ident& mainName, FileSource source) const {
  return TreeBuilder(toValue_.get()).buildTSNFunctions(Flattened(tree).root(), mainName, source);
}
TSNFile ASTBuilder::buildTSNFile(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get()).buildTSNFile(Flattened(tree).root(), source);
}
ModelFile ASTBuilder::buildModelFile(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get()).buildModelFile(Flattened(tree).root(), source);
}
TSNFunctionFile ASTBuilder::buildTSNFunctionFile(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get()).buildTSNFunctionFile(Flattened(tree).root(), source);
}
ComponentStructureInfo ASTBuilder::extractStructureInfo(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get()).extractStructureInfo(Flattened(tree).root());
}

} // namespace tessarin::compiler::core
