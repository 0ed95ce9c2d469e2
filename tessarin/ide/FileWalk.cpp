#include "tessarin/ide/FileWalk.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include <type_traits>
#include <variant>

namespace tessarin::ide {

using namespace compiler::core;

FileVisitor::~FileVisitor() = default;

namespace {

/// One `walk` for each class that holds expressions.
class Walker {
public:
  explicit Walker(FileVisitor& visitor) noexcept : visitor_(visitor) {}

  void walk(const ModelFile& file) {
    const Model& model = file.model();
    walkAll(model.attributes());
    if (model.baseClassName()) walkAll(model.baseClassName()->args());
    walk(model.declarativeSections());
    walk(file.localTSNFunctions());
  }
  void walk(const TSNFunctionFile& file) {
    walk(file.tsnFunction());
    walk(file.localTSNFunctions());
  }

private:
  template <class Items>
  void walkAll(const Items& items) {
    for (const auto& item : items) walk(item);
  }
  /// One of several alternatives. What holds no expressions is passed over.
  template <class Union>
  void walkAlternative(const Union& alternatives) {
    alternatives.visit([this](const auto& alternative) {
      using Alternative = std::decay_t<decltype(alternative)>;
      if constexpr (std::is_constructible_v<Expr, const Alternative&>) {
        visitor_.expression(Expr(alternative));
      } else if constexpr (!std::is_same_v<Alternative, Ident> && !std::is_same_v<Alternative, ImplicitReference>) {
        walk(alternative);
      }
    });
  }

  void walk(const Expr& expr) { visitor_.expression(expr); }
  void walk(const IdentValuePair& pair) { walk(pair.value()); }
  void walk(const IdListValuePair& pair) { walk(pair.value()); }
  void walk(const NamedArgument& argument) {
    walk(to_expr(argument.name()));
    walk(argument.value());
  }
  void walk(const IdParenSubs& step) {
    if (!step.subs()) return;
    for (const Subscript& sub : step.subs()->subs()) {
      if (sub.expr() != nullptr) walk(*sub.expr());
    }
  }

  // Blocks.
  void walk(const DeclarationBlock& block) {
    visitor_.declarations(block);
    walkAll(block.attributes());
    for (const DeclarationItem& item : block.declarations()) walkAlternative(item);
  }
  void walk(const ObjectArrayElementDecl& declaration) { walk(declaration.RHS()); }
  void walk(const BranchBlock& block) { walkAll(block.throughs()); }
  void walk(const Through& through) {
    walk(through.lhs());
    walkAlternative(through.from());
    walkAlternative(through.to());
  }
  void walk(const ConnectionBlock& block) { walkAll(block.connections()); }
  void walk(const Connection& connection) {
    walkAlternative(connection.firstArg());
    for (const ConnectionArg& argument : connection.remainingArguments()) walkAlternative(argument);
  }
  void walk(const EquationBlock& block) {
    walkAll(block.attributes());
    for (const EqnItem& item : block.eqnItems()) {
      visitor_.equation(item);
      walkAlternative(item);
    }
  }
  void walk(const EqnAssertion& assertion) {
    walk(assertion.predicate());
    if (const auto* message = std::get_if<MessageObject>(&assertion.message())) {
      for (const MessageObject::Hole& hole : message->holes()) {
        if (const auto* text = std::get_if<RefText>(&hole)) walk(Expr(text->ref()));
      }
    }
    if (assertion.action()) walk(*assertion.action());
  }
  void walk(const EventBlock& block) {
    for (const WhenClause& clause : block.events()) {
      walkBranch(clause.whenBranch());
      for (const ElseWhenBranch& branch : clause.elseWhens()) walkBranch(branch);
    }
  }
  template <class Branch>
  void walkBranch(const Branch& branch) {
    walk(branch.predicate());
    walkAll(branch.body());
  }
  void walk(const ModechartBlock& block) {
    walkAll(block.attributes());
    for (const ModechartDeclaration& declaration : block.declarations()) {
      visitor_.modechart(declaration);
      walk(declaration.modechart());
    }
  }
  void walk(const Modechart& chart) {
    for (const ModesSection& section : chart.modesSections()) walkAll(section.modes());
    for (const TransitionsSection& section : chart.transitionsSections()) {
      for (const Transition& transition : section.transitions()) walk(transition.predicate());
    }
    for (const InitialSection& section : chart.initialSections()) {
      for (const InitialMode& mode : section.initialModes()) walk(mode.predicate());
    }
  }
  void walk(const Mode& mode) {
    walkAll(mode.equationBlocks());
    for (const EntryBlock& entry : mode.entryBlocks()) walkAll(entry.actions());
  }
  void walk(const AnnotationsBlock& block) {
    walkAll(block.classAnnotations());
    for (const MemberAnnotation& annotation : block.annotations()) walkAll(annotation.attributes());
  }

  // Sections.
  void walk(const DeclarativeSections& sections) {
    walk(sections.semanticSections());
    walkAll(sections.annotationsBlocks());
  }
  void walk(const SemanticSections& sections) {
    nvf::with_stack([&] {
      walkAll(sections.declarationBlocks());
      walkAll(sections.branchBlocks());
      walkAll(sections.connectionBlocks());
      walkAll(sections.equationBlocks());
      walkAll(sections.eventBlocks());
      walkAll(sections.modechartBlocks());
      walkAll(sections.conditionalSections());
      walkAll(sections.forLoops());
    });
  }
  void walk(const ConditionalSection& conditional) {
    walkConditional(conditional.ifSection());
    for (const ElseifSection& section : conditional.elseifSections()) walkConditional(section);
    if (const auto section = conditional.elseSection()) walk(section->declarations());
  }
  template <class Section>
  void walkConditional(const Section& section) {
    walk(section.predicate());
    walk(section.declarations());
  }
  void walk(const ForLoop& loop) {
    walk(loop.idValuePair());
    walk(loop.body());
  }

  // Functions.
  void walk(const LocalTSNFunctions& functions) {
    for (const TSNFunction* function : inOrderOfName(functions)) walk(*function);
  }
  void walk(const TSNFunction& function) {
    for (const DefinitionsBlock& block : function.definitions()) {
      walkAll(block.attributes());
      for (const FunctionEqnItem& item : block.eqnItems()) walkAlternative(item);
    }
  }

  FileVisitor& visitor_;
};

} // namespace

void walk(const TSNFile& file, FileVisitor& visitor) {
  std::visit([&visitor](const auto& kind) { Walker(visitor).walk(kind); }, file);
}

} // namespace tessarin::ide
