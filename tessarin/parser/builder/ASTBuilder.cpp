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
ASTBuilder::ASTBuilder(const ASTBuilder& other)
    : toValue_(other.toValue_ ? other.toValue_->clone() : nullptr), unreadTokenListener_(other.unreadTokenListener_) {}
ASTBuilder::~ASTBuilder() = default;

// ---- the members ----

Expr ASTBuilder::buildExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildExpr(Flattened(tree).root());
}
MatrixExpr ASTBuilder::buildMatrixExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildMatrixExpr(Flattened(tree).root());
}
MatrixExpr::Row ASTBuilder::buildMatrixRow(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildMatrixRow(Flattened(tree).root());
}
FieldValueArrayExpr ASTBuilder::buildFieldValueArrayExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildFieldValueArrayExpr(Flattened(tree).root());
}
IfExpr ASTBuilder::buildIfExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildIfExpr(Flattened(tree).root());
}
LetExpr ASTBuilder::buildLetExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildLetExpr(Flattened(tree).root());
}
nvf::Range ASTBuilder::computeRange(const ParseTree& tree) const { // which needs no look inside
  const Token* first = tree.left();
  return first == nullptr ? nvf::Range() : first->range() + tree.right()->range();
}
StringLiteral ASTBuilder::toCvLiteral(const Token& token) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).toCvLiteral(token);
}
Ident ASTBuilder::buildIdent(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildIdent(Flattened(tree).root());
}
OptIdent ASTBuilder::buildOptIdent(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildOptIdent(Flattened(tree).root());
}
nvf::Expressions<OptIdent> ASTBuilder::buildIdentList(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildIdentList(Flattened(tree).root());
}
nvf::Expressions<Ident> ASTBuilder::buildIdentList1(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildIdentList1(Flattened(tree).root());
}
IdentValuePair ASTBuilder::buildIdentValuePair(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildIdentValuePair(Flattened(tree).root());
}
nvf::Expressions<IdentValuePair> ASTBuilder::buildIdentValuePairs(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildIdentValuePairs(Flattened(tree).root());
}
Name ASTBuilder::buildTypeSpecifier(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTypeSpecifier(Flattened(tree).root());
}
Variable ASTBuilder::buildVariable(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildVariable(Flattened(tree).root());
}
FullPathVariable ASTBuilder::buildFullPathVariable(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildFullPathVariable(Flattened(tree).root());
}
RelativePathVariable ASTBuilder::buildRelativePathVariable(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildRelativePathVariable(Flattened(tree).root());
}
ValueRef ASTBuilder::buildValueRef(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildValueRef(Flattened(tree).root());
}
std::optional<ValueRefTail> ASTBuilder::buildValueRefTail(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildValueRefTail(Flattened(tree).root());
}
ObjectRef ASTBuilder::buildObjectRef(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildObjectRef(Flattened(tree).root());
}
ImplicitReference ASTBuilder::buildImplicitReference(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildImplicitReference(Flattened(tree).root());
}
NativeFunctionCall ASTBuilder::buildNativeFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildNativeFunctionCall(Flattened(tree).root());
}
CalvexFunctionCall ASTBuilder::buildCalvexFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildCalvexFunctionCall(Flattened(tree).root());
}
TessarinFunctionCall ASTBuilder::buildTessarinFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTessarinFunctionCall(Flattened(tree).root());
}
TessarinLocalFunctionCall ASTBuilder::buildTessarinLocalFunctionCall(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTessarinLocalFunctionCall(Flattened(tree).root());
}
Expr ASTBuilder::buildConcreteValueExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildConcreteValueExpr(Flattened(tree).root());
}
Expr ASTBuilder::buildMRVIndex(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildMRVIndex(Flattened(tree).root());
}
Expr ASTBuilder::buildTransitionExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTransitionExpr(Flattened(tree).root());
}
Expr ASTBuilder::buildModechartEqnExpr(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModechartEqnExpr(Flattened(tree).root());
}
std::vector<Subscript> ASTBuilder::buildSubscripts(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildSubscripts(Flattened(tree).root());
}
nvf::Expressions<IdParenSubs> ASTBuilder::buildIdSubsPath(const ParseTree& tree,
                                                          const std::vector<std::size_t>& positions) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildIdSubsPath(Flattened(tree).root(), positions);
}
std::vector<NamedArgument> ASTBuilder::buildEqnNamedArgs(const ParseTree& tree, bool allowColonEquals) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildEqnNamedArgs(Flattened(tree).root(), allowColonEquals);
}
EqnItem ASTBuilder::buildEqnItem(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildEqnItem(Flattened(tree).root());
}
std::vector<EqnItem> ASTBuilder::buildEqnItemList(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildEqnItemList(Flattened(tree).root());
}
EqnAssertion ASTBuilder::buildEqnAssertion(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildEqnAssertion(Flattened(tree).root());
}
EquationBlock ASTBuilder::buildEquationBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildEquationBlock(Flattened(tree).root());
}
WhenClause ASTBuilder::buildWhenClause(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildWhenClause(Flattened(tree).root());
}
EventBlock ASTBuilder::buildEventBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildEventBlock(Flattened(tree).root());
}
FunctionEqnItem ASTBuilder::buildFunctionEqnItem(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildFunctionEqnItem(Flattened(tree).root());
}
nvf::Expressions<FunctionEqnItem> ASTBuilder::buildFunctionEqnItems(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildFunctionEqnItems(Flattened(tree).root());
}
IdListValuePair ASTBuilder::buildEqnDeclaration(const ParseTree& tree, std::size_t idIndex,
                                                std::size_t valueIndex) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_)
      .buildEqnDeclaration(Flattened(tree).root(), idIndex, valueIndex);
}
std::vector<IdListValuePair> ASTBuilder::buildEqDeclarationList(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildEqDeclarationList(Flattened(tree).root());
}
Ident ASTBuilder::buildUntypedEqnDeclaration(const ParseTree& tree, std::size_t idIndex) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildUntypedEqnDeclaration(Flattened(tree).root(), idIndex);
}
IdListValuePair ASTBuilder::buildModelItemDecl(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModelItemDecl(Flattened(tree).root());
}
ObjectArrayElementDecl ASTBuilder::buildObjArrayDecl(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildObjArrayDecl(Flattened(tree).root());
}
DeclarationBlock ASTBuilder::buildDeclarationBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildDeclarationBlock(Flattened(tree).root());
}
DefinitionsBlock ASTBuilder::buildDefinitionsBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildDefinitionsBlock(Flattened(tree).root());
}
std::vector<ImportStmt> ASTBuilder::buildImports(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildImports(Flattened(tree).root());
}
ClassInitializer ASTBuilder::buildClassInitializer(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildClassInitializer(Flattened(tree).root());
}
AnnotationsBlock ASTBuilder::buildAnnotationsBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildAnnotationsBlock(Flattened(tree).root());
}
MemberAnnotation ASTBuilder::buildMemberAnnotation(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildMemberAnnotation(Flattened(tree).root());
}
BranchBlock ASTBuilder::buildBranchBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildBranchBlock(Flattened(tree).root());
}
Through ASTBuilder::buildThrough(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildThrough(Flattened(tree).root());
}
ThroughLeaf ASTBuilder::buildThroughLeaf(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildThroughLeaf(Flattened(tree).root());
}
ConnectionBlock ASTBuilder::buildConnectionBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildConnectionBlock(Flattened(tree).root());
}
Connection ASTBuilder::buildConnection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildConnection(Flattened(tree).root());
}
ModechartBlock ASTBuilder::buildModechartBlock(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModechartBlock(Flattened(tree).root());
}
ModechartDeclaration ASTBuilder::buildModechartDeclaration(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModechartDeclaration(Flattened(tree).root());
}
Modechart ASTBuilder::buildModechart(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModechart(Flattened(tree).root());
}
ModesSection ASTBuilder::buildModesSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModesSection(Flattened(tree).root());
}
Mode ASTBuilder::buildMode(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildMode(Flattened(tree).root());
}
TransitionsSection ASTBuilder::buildTransitionsSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTransitionsSection(Flattened(tree).root());
}
Transition ASTBuilder::buildTransition(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTransition(Flattened(tree).root());
}
InitialSection ASTBuilder::buildInitialSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildInitialSection(Flattened(tree).root());
}
InitialMode ASTBuilder::buildInitialMode(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildInitialMode(Flattened(tree).root());
}
DeclarativeSections ASTBuilder::buildDeclarative(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildDeclarative(Flattened(tree).root());
}
ConditionalSection ASTBuilder::buildConditionalSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildConditionalSection(Flattened(tree).root());
}
std::vector<ElseifSection> ASTBuilder::buildElseifSections(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildElseifSections(Flattened(tree).root());
}
ElseifSection ASTBuilder::buildElseifSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildElseifSection(Flattened(tree).root());
}
ElseSection ASTBuilder::buildElseSection(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildElseSection(Flattened(tree).root());
}
ForLoop ASTBuilder::buildForLoop(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildForLoop(Flattened(tree).root());
}
Model ASTBuilder::buildModel(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModel(Flattened(tree).root(), source);
}
TSNFunction ASTBuilder::buildTSNFunction(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTSNFunction(Flattened(tree).root(), source);
}
LocalTSNFunctions ASTBuilder::buildTSNFunctions(const ParseTree& tree, const Ident& mainName, FileSource source) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTSNFunctions(Flattened(tree).root(), mainName, source);
}
TSNFile ASTBuilder::buildTSNFile(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTSNFile(Flattened(tree).root(), source);
}
ModelFile ASTBuilder::buildModelFile(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildModelFile(Flattened(tree).root(), source);
}
TSNFunctionFile ASTBuilder::buildTSNFunctionFile(const ParseTree& tree, FileSource source) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).buildTSNFunctionFile(Flattened(tree).root(), source);
}
ComponentStructureInfo ASTBuilder::extractStructureInfo(const ParseTree& tree) const {
  return TreeBuilder(toValue_.get(), unreadTokenListener_).extractStructureInfo(Flattened(tree).root());
}

} // namespace tessarin::compiler::core
