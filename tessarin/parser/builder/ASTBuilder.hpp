// From the parse tree to the syntax tree. What the grammar lets through and the builder refuses reaches no later stage.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/value_token.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace tessarin::compiler::core {

class AnnotationsBlock;
class BranchBlock;
class ClassInitializer;
class ComponentStructureInfo;
class ConditionalSection;
class Connection;
class ConnectionBlock;
class DeclarationBlock;
class DeclarativeSections;
class DefinitionsBlock;
class ElseSection;
class ElseifSection;
class ForLoop;
class ImportStmt;
class InitialMode;
class InitialSection;
class MemberAnnotation;
class Mode;
class Model;
class Modechart;
class ModechartBlock;
class ModechartDeclaration;
class ModesSection;
class ObjectArrayElementDecl;
class Through;
class ThroughLeaf;
class Transition;
class TransitionsSection;

/// A file of the language: a model (0) or a function (1), each with its imports and local functions.
using TSNFile = std::variant<ModelFile, TSNFunctionFile>;

/// Turns a parse tree into values of the syntax tree.
///
/// A member builds what its name says from the node of that thing, in one walk; the first fault ends it with a
/// `nvf::LocationException` whose message is of the ast family, and shows no column. A node that the grammar cannot
/// yield is a fatal diagnostic (`nvf::terminate`). Trees may nest as deep as the parser lets them, on a stack of any
/// size.
///
/// The members change nothing: one builder may serve several threads.
class TESSARIN_EXPORT ASTBuilder {
public:
  /// Without a converter: `concrete_value__(…)` stays an ordinary variable.
  ASTBuilder() noexcept;
  /// With what makes values of the tokens in `concrete_value__(…)`; it may be null.
  explicit ASTBuilder(std::unique_ptr<nvf::ValueTokensToValue> toValue) noexcept;
  /// With a clone of the converter.
  explicit ASTBuilder(nvf::ValueTokensToValue&& toValue);
  /// Clones the converter.
  ASTBuilder(const ASTBuilder& other);
  ASTBuilder& operator=(const ASTBuilder&) = delete;
  ~ASTBuilder();

  /// Is told of each token.
  using TokenListener = std::function<void(const Token&)>;
  /// Sets who is told of the tokens that are not read as what they are: a token which is no expression by itself, such
  /// as the name in braces with a line end behind the first one, is built as `Expr()`, intended. An empty function, as
  /// there is at first, is told nothing. What it throws passes through.
  /// @{
  void unreadTokenListener(TokenListener listener) { unreadTokenListener_ = std::move(listener); }
  [[nodiscard]] const TokenListener& unreadTokenListener() const noexcept { return unreadTokenListener_; }
  /// @}

  /// Expressions, and the parts that only they have.
  /// @{
  [[nodiscard]] Expr buildExpr(const ParseTree& tree) const;
  /// The rows as they are: an empty one stays.
  [[nodiscard]] MatrixExpr buildMatrixExpr(const ParseTree& tree) const;
  [[nodiscard]] MatrixExpr::Row buildMatrixRow(const ParseTree& tree) const;
  [[nodiscard]] FieldValueArrayExpr buildFieldValueArrayExpr(const ParseTree& tree) const;
  [[nodiscard]] IfExpr buildIfExpr(const ParseTree& tree) const;
  [[nodiscard]] LetExpr buildLetExpr(const ParseTree& tree) const;
  /// From the first to the last token.
  [[nodiscard]] nvf::Range computeRange(const ParseTree& tree) const;
  /// The content of a string of either sort.
  [[nodiscard]] StringLiteral toCvLiteral(const Token& token) const;
  /// @}

  /// The ident of a leaf. Throws what `Ident` throws where its text is no identifier.
  [[nodiscard]] Ident buildIdent(const ParseTree& tree) const;

  /// Names, alone and in lists; a list keeps the order of the text.
  /// @{
  [[nodiscard]] OptIdent buildOptIdent(const ParseTree& tree) const;
  [[nodiscard]] nvf::Expressions<OptIdent> buildIdentList(const ParseTree& tree) const;
  [[nodiscard]] nvf::Expressions<Ident> buildIdentList1(const ParseTree& tree) const;
  [[nodiscard]] IdentValuePair buildIdentValuePair(const ParseTree& tree) const;
  [[nodiscard]] nvf::Expressions<IdentValuePair> buildIdentValuePairs(const ParseTree& tree) const;
  [[nodiscard]] Name buildTypeSpecifier(const ParseTree& tree) const;
  /// @}

  /// A reference is a node of kind `Subsref`. Its children lie side by side: names, dots, and argument lists with their
  /// parentheses. The forms that have no syntax of their own are calls of reserved names; those of another shape raise
  /// the message of their form, but for the kinds of expressions and for `concrete_value__`, which are variables then.
  /// @{
  [[nodiscard]] Variable buildVariable(const ParseTree& tree) const;
  [[nodiscard]] FullPathVariable buildFullPathVariable(const ParseTree& tree) const;
  [[nodiscard]] RelativePathVariable buildRelativePathVariable(const ParseTree& tree) const;
  [[nodiscard]] ValueRef buildValueRef(const ParseTree& tree) const;
  [[nodiscard]] std::optional<ValueRefTail> buildValueRefTail(const ParseTree& tree) const;
  [[nodiscard]] ObjectRef buildObjectRef(const ParseTree& tree) const;
  [[nodiscard]] ImplicitReference buildImplicitReference(const ParseTree& tree) const;
  [[nodiscard]] NativeFunctionCall buildNativeFunctionCall(const ParseTree& tree) const;
  [[nodiscard]] CalvexFunctionCall buildCalvexFunctionCall(const ParseTree& tree) const;
  [[nodiscard]] TessarinFunctionCall buildTessarinFunctionCall(const ParseTree& tree) const;
  [[nodiscard]] TessarinLocalFunctionCall buildTessarinLocalFunctionCall(const ParseTree& tree) const;
  [[nodiscard]] Expr buildConcreteValueExpr(const ParseTree& tree) const;
  [[nodiscard]] Expr buildMRVIndex(const ParseTree& tree) const;
  [[nodiscard]] Expr buildTransitionExpr(const ParseTree& tree) const;
  /// Throws `nvf::BadGet` where the argument is no `if`.
  [[nodiscard]] Expr buildModechartEqnExpr(const ParseTree& tree) const;
  /// The subscripts in a list of positional arguments.
  [[nodiscard]] std::vector<Subscript> buildSubscripts(const ParseTree& tree) const;
  /// The steps whose names are the children of a `Subsref` at these positions.
  [[nodiscard]] nvf::Expressions<IdParenSubs> buildIdSubsPath(const ParseTree& tree,
                                                              const std::vector<std::size_t>& positions) const;
  /// The arguments in a list of named ones; `:=` is refused unless it is allowed.
  [[nodiscard]] std::vector<NamedArgument> buildEqnNamedArgs(const ParseTree& tree, bool allowColonEquals) const;
  /// @}

  /// Equations, the blocks that hold them, and what a `when` clause does. An `if` is built as condition, items,
  /// `elseif`s, `else`.
  /// @{
  [[nodiscard]] EqnItem buildEqnItem(const ParseTree& tree) const;
  [[nodiscard]] std::vector<EqnItem> buildEqnItemList(const ParseTree& tree) const;
  [[nodiscard]] EqnAssertion buildEqnAssertion(const ParseTree& tree) const;
  [[nodiscard]] EquationBlock buildEquationBlock(const ParseTree& tree) const;
  [[nodiscard]] WhenClause buildWhenClause(const ParseTree& tree) const;
  [[nodiscard]] EventBlock buildEventBlock(const ParseTree& tree) const;
  [[nodiscard]] FunctionEqnItem buildFunctionEqnItem(const ParseTree& tree) const;
  [[nodiscard]] nvf::Expressions<FunctionEqnItem> buildFunctionEqnItems(const ParseTree& tree) const;
  /// @}

  /// The declaration whose names and whose value are the children at these positions.
  [[nodiscard]] IdListValuePair buildEqnDeclaration(const ParseTree& tree, std::size_t idIndex,
                                                    std::size_t valueIndex) const;

  /// Declarations, definitions, imports and annotations. A block's attributes are built before its contents.
  /// @{
  [[nodiscard]] std::vector<IdListValuePair> buildEqDeclarationList(const ParseTree& tree) const;
  [[nodiscard]] Ident buildUntypedEqnDeclaration(const ParseTree& tree, std::size_t idIndex) const;
  [[nodiscard]] IdListValuePair buildModelItemDecl(const ParseTree& tree) const;
  [[nodiscard]] ObjectArrayElementDecl buildObjArrayDecl(const ParseTree& tree) const;
  [[nodiscard]] DeclarationBlock buildDeclarationBlock(const ParseTree& tree) const;
  [[nodiscard]] DefinitionsBlock buildDefinitionsBlock(const ParseTree& tree) const;
  [[nodiscard]] std::vector<ImportStmt> buildImports(const ParseTree& tree) const;
  [[nodiscard]] ClassInitializer buildClassInitializer(const ParseTree& tree) const;
  [[nodiscard]] AnnotationsBlock buildAnnotationsBlock(const ParseTree& tree) const;
  [[nodiscard]] MemberAnnotation buildMemberAnnotation(const ParseTree& tree) const;
  /// @}

  /// Branches and connections, with their references.
  /// @{
  [[nodiscard]] BranchBlock buildBranchBlock(const ParseTree& tree) const;
  [[nodiscard]] Through buildThrough(const ParseTree& tree) const;
  [[nodiscard]] ThroughLeaf buildThroughLeaf(const ParseTree& tree) const;
  [[nodiscard]] ConnectionBlock buildConnectionBlock(const ParseTree& tree) const;
  [[nodiscard]] Connection buildConnection(const ParseTree& tree) const;
  /// @}

  /// Modecharts and their sections.
  /// @{
  [[nodiscard]] ModechartBlock buildModechartBlock(const ParseTree& tree) const;
  [[nodiscard]] ModechartDeclaration buildModechartDeclaration(const ParseTree& tree) const;
  [[nodiscard]] Modechart buildModechart(const ParseTree& tree) const;
  [[nodiscard]] ModesSection buildModesSection(const ParseTree& tree) const;
  [[nodiscard]] Mode buildMode(const ParseTree& tree) const;
  [[nodiscard]] TransitionsSection buildTransitionsSection(const ParseTree& tree) const;
  [[nodiscard]] Transition buildTransition(const ParseTree& tree) const;
  [[nodiscard]] InitialSection buildInitialSection(const ParseTree& tree) const;
  [[nodiscard]] InitialMode buildInitialMode(const ParseTree& tree) const;
  /// @}

  /// Sections and what holds them. `source` is a mark that the result carries.
  /// @{
  [[nodiscard]] DeclarativeSections buildDeclarative(const ParseTree& tree) const;
  [[nodiscard]] ConditionalSection buildConditionalSection(const ParseTree& tree) const;
  [[nodiscard]] std::vector<ElseifSection> buildElseifSections(const ParseTree& tree) const;
  [[nodiscard]] ElseifSection buildElseifSection(const ParseTree& tree) const;
  [[nodiscard]] ElseSection buildElseSection(const ParseTree& tree) const;
  [[nodiscard]] ForLoop buildForLoop(const ParseTree& tree) const;
  [[nodiscard]] Model buildModel(const ParseTree& tree, FileSource source) const;
  [[nodiscard]] TSNFunction buildTSNFunction(const ParseTree& tree, FileSource source) const;
  /// The local functions of a file whose model or function has the name `mainName`.
  [[nodiscard]] LocalTSNFunctions buildTSNFunctions(const ParseTree& tree, const Ident& mainName,
                                                    FileSource source) const;
  /// @}

  /// The following take the tree of a whole file. A file of statements raises a `nvf::MessageException`, as does a file
  /// of the other sort.
  /// @{
  [[nodiscard]] TSNFile buildTSNFile(const ParseTree& tree, FileSource source) const;
  [[nodiscard]] ModelFile buildModelFile(const ParseTree& tree, FileSource source) const;
  [[nodiscard]] TSNFunctionFile buildTSNFunctionFile(const ParseTree& tree, FileSource source) const;
  /// The outline of a component, without its equations. Sections that nest, modecharts and annotations are fatal.
  [[nodiscard]] ComponentStructureInfo extractStructureInfo(const ParseTree& tree) const;
  /// @}

private:
  std::unique_ptr<nvf::ValueTokensToValue> toValue_; // null where there is none
  TokenListener unreadTokenListener_;
};

} // namespace tessarin::compiler::core
