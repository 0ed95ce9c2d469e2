// Sections in their nesting, models, functions, and whole files.
#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/stack.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/ComponentStructureInfo.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"
#include "tessarin/parser/builder/TreeBuilder.hpp"
#include "tessarin/parser/parse/ParseTreeBuilder.hpp"

#include <map>
#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages
using K = NonTerminal;

namespace {

/// The sections of one body, each kind in a list of its own.
class Sections {
public:
  /// Builds the section and keeps it; tells whether it is of a kind that any body can hold.
  bool add(const TreeBuilder& builder, NodeView tree) {
    switch (tree.code()) {
    case K::ConditionalSection: conditionals_.push_back(builder.buildConditionalSection(tree)); return true;
    case K::ForLoopSection: forLoops_.push_back(builder.buildForLoop(tree)); return true;
    case K::ModelDeclarationBlock: declarations_.push_back(builder.buildDeclarationBlock(tree)); return true;
    case K::EquationsBlock: equations_.push_back(builder.buildEquationBlock(tree)); return true;
    case K::EventsBlock: events_.push_back(builder.buildEventBlock(tree)); return true;
    case K::ConnectionsBlock: connections_.push_back(builder.buildConnectionBlock(tree)); return true;
    case K::BranchesBlock: branches_.push_back(builder.buildBranchBlock(tree)); return true;
    case K::ModechartBlock: modecharts_.push_back(builder.buildModechartBlock(tree)); return true;
    case K::AnnotationsBlock: annotations_.push_back(builder.buildAnnotationsBlock(tree)); return true;
    default: return false;
    }
  }

  [[nodiscard]] DeclarativeSections finish() && {
    return DeclarativeSections(SemanticSections(std::move(declarations_), std::move(branches_), std::move(connections_),
                                                std::move(equations_), std::move(events_), std::move(modecharts_),
                                                std::move(conditionals_), std::move(forLoops_)),
                               std::move(annotations_));
  }

private:
  std::vector<DeclarationBlock> declarations_;
  std::vector<BranchBlock> branches_;
  std::vector<ConnectionBlock> connections_;
  std::vector<EquationBlock> equations_;
  std::vector<EventBlock> events_;
  std::vector<ModechartBlock> modecharts_;
  std::vector<AnnotationsBlock> annotations_;
  std::vector<ConditionalSection> conditionals_;
  std::vector<ForLoop> forLoops_;
};

} // namespace

// ---- sections ----

DeclarativeSections TreeBuilder::buildDeclarative(NodeView tree) const {
  return nvf::with_stack([&] {
    Sections sections;
    for (const NodeView child : childrenOf(tree)) {
      if (sections.add(*this, child)) continue;
      if (child.code() == K::NonExprStmt) raiseAt<IllegalSetupFunction>(placeOf(child));
      fatal(notRecognized, 649,
            "tessarin::compiler::core::DeclarativeSections tessarin::compiler::core::ASTBuilder::"
            "buildDeclarative(const tessarin::compiler::core::ParseTree&) const");
    }
    return std::move(sections).finish();
  });
}

ConditionalSection TreeBuilder::buildConditionalSection(NodeView tree) const {
  const Expr predicate = buildExpr(childOf(tree, 0));
  const IfSection ifSection(predicate, buildDeclarative(childOf(tree, 1)));
  std::vector<ElseifSection> elseifs = buildElseifSections(childOf(tree, 2));
  std::optional<ElseSection> elseSection;
  if (childOf(tree, 3).count() != 0) elseSection = buildElseSection(childOf(tree, 3));
  return ConditionalSection(ifSection, std::move(elseifs), elseSection);
}

std::vector<ElseifSection> TreeBuilder::buildElseifSections(NodeView tree) const {
  return mapChildren(tree, [this](NodeView item) { return buildElseifSection(item); });
}

ElseifSection TreeBuilder::buildElseifSection(NodeView tree) const {
  const Expr predicate = buildExpr(childOf(tree, 0));
  return ElseifSection(predicate, buildDeclarative(childOf(tree, 1)));
}

ElseSection TreeBuilder::buildElseSection(NodeView tree) const {
  return ElseSection(buildDeclarative(childOf(childOf(tree, 0), 0)));
}

ForLoop TreeBuilder::buildForLoop(NodeView tree) const {
  const IdentValuePair pair = buildIdentValuePair(childOf(tree, 0));
  const DeclarativeSections body = buildDeclarative(childOf(tree, 1));
  // Only what stands in the loop itself is refused: a block inside an `if` inside the loop passes, intended.
  if (!body.annotationsBlocks().empty()) raiseAt<AnnotationsInForLoop>(body.annotationsBlocks().front().location());
  return ForLoop(pair, body.semanticSections());
}

// ---- models ----

namespace {

// Where the parts of a model begin: the keyword, the attributes, the name, and from here on the sections. The first of
// them may be an empty terminal in place of a base class.
constexpr std::size_t firstSection = 3;

} // namespace

Model TreeBuilder::buildModel(NodeView tree, FileSource source) const {
  const Token& keyword = childOf(tree, 0).token();
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(childOf(tree, 1));
  const Ident name = buildIdent(childOf(tree, 2));
  std::optional<ClassInitializer> baseClass;
  ParseTree setup;
  Sections sections;
  for (const NodeView child : childrenOf(tree, firstSection)) {
    if (child.type() == 0) continue;
    if (sections.add(*this, child)) continue;
    switch (child.code()) {
    case K::NonExprStmt:
      if (setup.type() != 0) raiseAt<MultipleSetupFunctions>(placeOf(child));
      setup = detach(child);
      break;
    case K::Baseclass: baseClass = buildClassInitializer(child); break;
    default:
      fatal(notRecognized, 329,
            "tessarin::compiler::core::Model tessarin::compiler::core::ASTBuilder::"
            "buildModel(const tessarin::compiler::core::ParseTree&, tessarin::compiler::core::FileSource) const");
    }
  }
  return Model(TokenId::modelType(keyword.code()), name, baseClass, std::move(sections).finish(), attributes, source,
               setup, keyword.location());
}

// ---- functions ----

TSNFunction TreeBuilder::buildTSNFunction(NodeView tree, FileSource source) const {
  const nvf::Expressions<Ident> outputs = buildIdentList1(childOf(tree, 0));
  const Ident name = buildIdent(childOf(tree, 1));
  nvf::Expressions<Ident> inputs;
  if (childOf(tree, 2).isNonTerminalType(K::FcnInputs)) inputs = buildIdentList1(childOf(childOf(tree, 2), 1));
  nvf::Expressions1<DefinitionsBlock> definitions(mapChildren(
      tree, [this](NodeView block) { return buildDefinitionsBlock(block); }, 3));
  return TSNFunction(name, outputs, inputs, definitions, source);
}

LocalTSNFunctions TreeBuilder::buildTSNFunctions(NodeView tree, const Ident& mainName, FileSource source) const {
  std::map<nvf::CxId, TSNFunction> functions;
  for (const NodeView child : childrenOf(tree)) {
    const TSNFunction function = buildTSNFunction(child, source);
    const Ident& name = function.name();
    if (name.id() == mainName.id()) raiseAt<NoSameNameForLocalTSNFcn>(placeOf(child), name.string());
    if (!functions.emplace(name.id(), function).second) raiseAt<DuplicateLocalTSNFcnId>(placeOf(child), name.string());
  }
  // Entered in the order of their names, so that the order in which the table is walked, and with it the printed form
  // of the file, does not depend on their order in the text.
  return LocalTSNFunctions(functions.rbegin(), functions.rend(), functions.size());
}

// ---- files ----

namespace {

/// The model or function of a file, which must be of this kind; raises `Msg` for any other file.
template <class Msg>
NodeView mainItem(NodeView tree, NonTerminal::Value kind) {
  if (childOf(tree, 0).isNonTerminalType(K::Stmts) || !childOf(tree, 1).isNonTerminalType(kind)) {
    throw nvf::MessageException(nvf::Message(Msg()));
  }
  return childOf(tree, 1);
}

} // namespace

TSNFile TreeBuilder::buildTSNFile(NodeView tree, FileSource source) const {
  if (childOf(tree, 0).isNonTerminalType(K::Stmts)) throw nvf::MessageException(nvf::Message(InvalidTsnFile()));
  if (childOf(tree, 1).isNonTerminalType(K::Model)) return buildModelFile(tree, source);
  return buildTSNFunctionFile(tree, source);
}

// Faults in local functions come before those in imports, and these before those in the model or function itself,
// whatever their order in the text, intended.

ModelFile TreeBuilder::buildModelFile(NodeView tree, FileSource source) const {
  const NodeView model = mainItem<InvalidTsnModel>(tree, K::Model);
  const LocalTSNFunctions functions = buildTSNFunctions(childOf(tree, 2), buildIdent(childOf(model, 2)), source);
  const std::vector<ImportStmt> imports = buildImports(childOf(tree, 0));
  return ModelFile(buildModel(model, source), imports, functions);
}

TSNFunctionFile TreeBuilder::buildTSNFunctionFile(NodeView tree, FileSource source) const {
  const NodeView function = mainItem<InvalidTsnFunction>(tree, K::TSNFunction);
  const LocalTSNFunctions functions = buildTSNFunctions(childOf(tree, 2), buildIdent(childOf(function, 1)), source);
  const std::vector<ImportStmt> imports = buildImports(childOf(tree, 0));
  return TSNFunctionFile(buildTSNFunction(function, source), imports, functions);
}

ComponentStructureInfo TreeBuilder::extractStructureInfo(NodeView tree) const {
  const NodeView model = mainItem<InvalidTsnModel>(tree, K::Model);
  std::vector<DeclarationBlock> declarations;
  std::vector<ConnectionBlock> connections;
  std::vector<BranchBlock> branches;
  for (const NodeView child : childrenOf(model, firstSection)) {
    if (child.type() == 0) continue;
    switch (child.code()) {
    case K::NonExprStmt:
    case K::Baseclass:
    case K::EquationsBlock:
    case K::EventsBlock: break;
    case K::ModelDeclarationBlock:
      if (childOf(child, 0).isTerminalType(TokenId::COMPONENTS)) declarations.push_back(buildDeclarationBlock(child));
      break;
    case K::ConnectionsBlock: connections.push_back(buildConnectionBlock(child)); break;
    case K::BranchesBlock: branches.push_back(buildBranchBlock(child)); break;
    default:
      fatal(notRecognized, 720,
            "tessarin::compiler::core::ComponentStructureInfo tessarin::compiler::core::ASTBuilder::"
            "extractStructureInfo(const tessarin::compiler::core::ParseTree&) const");
    }
  }
  return ComponentStructureInfo(buildImports(childOf(tree, 0)), std::move(declarations), std::move(connections),
                                std::move(branches));
}

} // namespace tessarin::compiler::core
