// The walk that finds the names of a file in its syntax tree.
#include "tessarin/foundation/stack.hpp"
#include "tessarin/ide/NameCollector.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/Model.hpp"

#include <algorithm>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace tessarin::ide {

using namespace compiler::core;

namespace {

DeclarationKind kindOf(MemberType::Value type) noexcept {
  switch (type) {
  case MemberType::THROUGH: return DeclarationKind::Through;
  case MemberType::PARAMETER: return DeclarationKind::Parameter;
  case MemberType::INPUT: return DeclarationKind::Input;
  case MemberType::OUTPUT: return DeclarationKind::Output;
  case MemberType::NODE: return DeclarationKind::Node;
  case MemberType::COMPONENT: return DeclarationKind::MemberComponent;
  case MemberType::MODECHART: return DeclarationKind::Modechart;
  case MemberType::INTERMEDIATE: return DeclarationKind::Intermediate;
  case MemberType::VARIABLE:
  case MemberType::NONE: break;
  }
  return DeclarationKind::Variable;
}

/// Declares the names of a list; placeholders have none.
void declareAll(NameCollector& collector, const nvf::Expressions<OptIdent>& ids, DeclarationKind kind, Index scope) {
  for (const OptIdent& id : ids) {
    if (const auto* ident = id.getIf<Ident>()) collector.declare(*ident, kind, scope);
  }
}

// ---- the members of a model ----

/// Declares the members in sections of all depths. All stand in the scope of the model.
class MemberDeclarations {
public:
  MemberDeclarations(NameCollector& collector, Index scope) noexcept : collector_(collector), scope_(scope) {}

  void declare(const DeclarativeSections& sections) { declare(sections.semanticSections()); }
  /// What has been declared by blocks of declarations, in the order in which the walk comes by it again.
  [[nodiscard]] std::vector<Index> take() { return std::move(declared_); }

private:
  void declare(const SemanticSections& sections) {
    for (const DeclarationBlock& block : sections.declarationBlocks()) {
      const DeclarationKind kind = kindOf(block.type());
      for (const DeclarationItem& item : block.declarations()) declare(item, kind);
    }
    for (const ModechartBlock& block : sections.modechartBlocks()) {
      for (const ModechartDeclaration& chart : block.declarations()) {
        collector_.declare(chart.id(), DeclarationKind::Modechart, scope_);
      }
    }
    nvf::with_stack([&] {
      for (const ConditionalSection& conditional : sections.conditionalSections()) {
        declare(conditional.ifSection().declarations());
        for (const ElseifSection& section : conditional.elseifSections()) declare(section.declarations());
        if (const auto section = conditional.elseSection()) declare(section->declarations());
      }
      for (const ForLoop& loop : sections.forLoops()) declare(loop.body());
    });
  }
  void declare(const DeclarationItem& item, DeclarationKind kind) {
    if (const auto* ident = item.getIf<Ident>()) {
      declare(*ident, kind);
    } else if (const auto* element = item.getIf<ObjectArrayElementDecl>()) {
      declare(element->LHS().id(), kind);
    } else {
      for (const OptIdent& id : id_list_value(item).ids()) {
        if (const auto* name = id.getIf<Ident>()) declare(*name, kind);
      }
    }
  }
  void declare(const Ident& ident, DeclarationKind kind) {
    declared_.push_back(collector_.declare(ident, kind, scope_));
  }

  NameCollector& collector_;
  Index scope_;
  std::vector<Index> declared_;
};

// ---- the references ----

class Walker {
public:
  explicit Walker(Names& names) : names_(names), collector_(names) {}

  void walk(const ModelFile& file) {
    const Model& model = file.model();
    beginFile(file.importStmts(), file.localTSNFunctions());
    // A model does not see itself by its plain name.
    const bool isDomain = model.type() == ModelType::DDOMAIN;
    names_.main = collector_.declareUnbound(model.name(),
                                            isDomain ? DeclarationKind::Domain : DeclarationKind::Component, fileScope);

    scope_ = collector_.open(ScopeKind::Model, fileScope);
    names_.model = scope_;
    MemberDeclarations members(collector_, scope_);
    members.declare(model.declarativeSections());
    members_ = members.take();
    walkAttributes(model.attributes());
    if (model.baseClassName()) {
      names_.base = dottedName(model.baseClassName()->name(), Role::Base);
      for (const NamedArgument& argument : model.baseClassName()->args()) walkNamed(argument, names_.base);
    }
    walk(model.declarativeSections());
    collector_.setupFunction(model.setupFunctionParseTree(), scope_);
    collector_.close(scope_);
    scope_ = fileScope;
    walk(file.localTSNFunctions());
  }
  void walk(const TSNFunctionFile& file) {
    beginFile(file.importStmts(), file.localTSNFunctions());
    names_.main = collector_.declare(file.tsnFunction().name(), DeclarationKind::Function, fileScope);
    walk(file.tsnFunction());
    walk(file.localTSNFunctions());
  }

private:
  static constexpr Index fileScope = 0;

  void beginFile(const std::vector<ImportStmt>& imports, const LocalTSNFunctions& functions) {
    collector_.open(ScopeKind::File, noIndex);
    for (const ImportStmt& import : imports) {
      const Index last = dottedName(import.importName(), Role::Import);
      if (import.isUnqualified()) {
        names_.openImports.push_back(last);
        continue;
      }
      const nvf::Expressions<Ident>& ids = import.importName().ids();
      const Index declaration = collector_.declare(ids[ids.size() - 1], DeclarationKind::Import, fileScope);
      names_.declarations[declaration].type = last;
      imports_.emplace(ids[ids.size() - 1].id(), declaration);
    }
    for (const TSNFunction* function : inOrderOfName(functions)) {
      collector_.declare(function->name(), DeclarationKind::Function, fileScope);
    }
  }

  /// Does the work in a scope inside the present one.
  template <class Work>
  void inScope(ScopeKind kind, Work work) {
    const Index outer = scope_;
    scope_ = collector_.open(kind, outer);
    work();
    collector_.close(scope_);
    scope_ = outer;
  }

  // ---- paths ----

  /// A dotted name that leads to another file; of its steps the last one.
  Index dottedName(const Name& name, Role role) {
    Index last = noIndex;
    for (const Ident& ident : name.ids()) last = typeStep(ident, role, last);
    collector_.endPath(last);
    return last;
  }
  /// A step of what leads to another file: of this one only what an import brings by its name is looked at, and of an
  /// import itself nothing is.
  Index typeStep(const Ident& ident, Role role, Index parent) {
    if (parent != noIndex) return collector_.member(ident, role, scope_, parent);
    if (role != Role::Import) {
      const auto found = imports_.find(ident.id());
      if (found != imports_.end()) return collector_.referTo(ident, role, scope_, found->second);
      if (!names_.openImports.empty()) return collector_.referUnknown(ident, role, scope_, Unknown::MaybeImported);
    }
    return collector_.referUnknown(ident, role, scope_, Unknown::Outside);
  }

  /// The steps of a variable with their subscripts and arguments; the last one is returned. Of a type the first step
  /// leads to another file.
  Index walkPath(const Variable& variable, Role role) {
    Index last = noIndex;
    const auto step = [&](const Ident& ident, bool isCall, bool leads) {
      const Role stepRole = isCall && role == Role::Value ? Role::Call : role;
      if (role == Role::Type) {
        last = typeStep(ident, role, last);
      } else if (last == noIndex) {
        last = collector_.refer(ident, stepRole, scope_, leads);
      } else {
        last = collector_.member(ident, stepRole, scope_, last);
      }
    };
    for (const IdParenSubs& one : variable.leadingPath()) {
      step(one.ident(), one.subs().has_value(), true);
      if (one.subs()) walkSubscripts(one.subs()->subs());
    }
    step(variable.id(), variable.tail().has_value(), false);
    collector_.endPath(last);
    if (variable.tail()) {
      walkSubscripts(variable.tail()->posArgs());
      for (const NamedArgument& argument : variable.tail()->namedArgs()) walkNamed(argument, last);
    }
    return last;
  }

  void walkSubscripts(const std::vector<Subscript>& subs) {
    for (const Subscript& sub : subs) {
      if (sub.expr() != nullptr) walk(*sub.expr());
    }
  }

  /// `name = value` in the arguments of what `callee` names, to which the name belongs.
  void walkNamed(const NamedArgument& argument, Index callee) {
    if (const auto* variable = argument.name().getIf<Variable>()) {
      Index last = callee;
      for (const IdParenSubs& one : variable->leadingPath()) {
        last = collector_.member(one.ident(), Role::Argument, scope_, last);
        if (one.subs()) walkSubscripts(one.subs()->subs());
      }
      collector_.endPath(collector_.member(variable->id(), Role::Argument, scope_, last));
      if (variable->tail()) walkSubscripts(variable->tail()->posArgs());
    } else {
      node(argument.name().get<ValueRef>());
    }
    walkOrWord(argument.value());
  }

  // ---- attributes ----

  /// A name that is a value all by itself and that nothing declares is a word, such as `linear`.
  void walkOrWord(const Expr& value) {
    if (const auto* variable = value.getIf<Variable>(); variable != nullptr && variable->isID()) {
      collector_.allowWord(walkPath(*variable, Role::Value));
    } else {
      walk(value);
    }
  }

  /// A name that is the whole value of an attribute is a word of it, whatever is declared; other values refer to what
  /// is declared, and what is not are words as well.
  void walkAttribute(const IdentValuePair& pair) {
    if (const auto* variable = pair.value().getIf<Variable>(); variable != nullptr && variable->isID()) {
      const Index word = collector_.referUnknown(variable->id(), Role::Word, scope_, Unknown::Word);
      collector_.endPath(word);
      return;
    }
    const auto first = static_cast<Index>(names_.references.size());
    walk(pair.value());
    for (Index i = first; i < names_.references.size(); ++i) collector_.allowWord(i);
  }
  template <class Pairs>
  void walkAttributes(const Pairs& pairs) {
    for (const IdentValuePair& pair : pairs) walkAttribute(pair);
  }

  // ---- expressions ----

  void walk(const Expr& expr) {
    expr.visit([this](const auto& alternative) { node(alternative); });
  }
  void walkAll(const std::vector<Expr>& exprs) {
    for (const Expr& expr : exprs) walk(expr);
  }

  void node(const Time&) {}
  void node(const EndIndex&) {}
  void node(const NumberLiteral&) {}
  void node(const StringLiteral&) {}
  void node(const ConcreteValueExpr&) {}
  void node(const Variable& variable) { walkPath(variable, Role::Value); }
  void node(const FullPathVariable& path) {
    if (path.subs()) walkSubscripts(path.subs()->subs());
  }
  void node(const RelativePathVariable& path) {
    names_.isComplete = false;
    if (path.subs()) walkSubscripts(path.subs()->subs());
  }
  void node(const UnitExpr& unit) { walk(unit.expr()); }
  void node(const ValueExpr& value) { walk(value.expr()); }
  void node(const MatrixExpr& matrix) {
    for (const MatrixExpr::Row& row : matrix.rows()) walkAll(row);
  }
  void node(const FieldValueArrayExpr& array) {
    for (const IdentValuePair& pair : array.pairList()) walkOrWord(pair.value());
  }
  void node(const IfExpr& expr) {
    walk(expr.condition());
    walkItems(expr.ifEqnItems());
    for (const ElseifBranch& branch : expr.elseifBranches()) {
      walk(branch.condition());
      walkItems(branch.eqnItems());
    }
    walkItems(expr.elseEqnItems());
  }
  void node(const OpExpr& op) { walkAll(op.operands()); }
  void node(const LetExpr& let) {
    inScope(ScopeKind::Let, [&] {
      for (const IdListValuePair& pair : let.declarations()) {
        declareAll(collector_, pair.ids(), DeclarationKind::Let, scope_);
      }
      for (const IdListValuePair& pair : let.declarations()) walk(pair.value());
      walkItems(let.eqnItemList());
    });
  }
  void node(const MRVIndex& index) { walk(index.expr()); }
  void node(const TransitionExpr& transition) {
    walk(transition.expr());
    walk(transition.preCondition());
  }
  void node(const ModechartEqnExpr& modechart) { node(modechart.expr()); }
  void node(const NativeFunctionCall& call) { resolvedCall(call); }
  void node(const CalvexFunctionCall& call) { resolvedCall(call); }
  void node(const TessarinFunctionCall& call) { resolvedCall(call); }
  void node(const TessarinLocalFunctionCall& call) { resolvedCall(call); }
  /// The name of such a call has no place.
  template <class Call>
  void resolvedCall(const Call& call) {
    names_.isComplete = false;
    walkAll(call.positionalArguments());
    for (const auto& [name, value] : call.namedArguments()) walk(value);
  }
  void node(const ValueRef& ref) {
    const Index last = constantPath(ref.leadingPath());
    collector_.endPath(constantStep(ref.id(), last));
    if (!ref.tail()) return;
    if (const auto* subs = ref.tail()->getIf<ParenSubs>()) walkSubscripts(subs->subs());
  }
  void node(const ObjectRef& ref) { collector_.endPath(constantPath(ref.ref())); }
  template <class Steps>
  Index constantPath(const Steps& steps) {
    Index last = noIndex;
    for (const IdValueIndices& step : steps) last = constantStep(step.ident(), last);
    return last;
  }
  Index constantStep(const Ident& ident, Index parent) {
    if (parent != noIndex) return collector_.member(ident, Role::Value, scope_, parent);
    return collector_.refer(ident, Role::Value, scope_, true);
  }

  // ---- equations ----

  void walkItems(const std::vector<EqnItemHandle>& items) {
    for (const EqnItemHandle& item : items) walk(item.get());
  }
  void walk(const EqnItem& item) {
    item.visit([this](const auto& alternative) { walk(alternative); });
  }
  void walk(const EqnAssertion& assertion) {
    walk(assertion.predicate());
    if (const auto* message = std::get_if<MessageObject>(&assertion.message())) {
      for (const MessageObject::Hole& hole : message->holes()) {
        if (const auto* member = std::get_if<MemberText>(&hole)) walk(*member);
        if (const auto* ref = std::get_if<RefText>(&hole)) node(ref->ref());
      }
    }
    if (assertion.action()) walkOrWord(*assertion.action());
  }
  /// The tree has the place of the whole path. Its first name begins and its last one ends there; those between stand
  /// without blanks, or else their places are not known and they are left out.
  void walk(const MemberText& text) {
    const nvf::CxIdPath& path = text.path();
    const nvf::FileName file = text.range().begin().fileName();
    const nvf::LineColumn begin = text.range().begin().lineColumn();
    const nvf::LineColumn end = text.range().end().lineColumn();
    const bool isDense = begin.line() == end.line() && begin.column() + path.string().size() == end.column();
    if (path.size() > 2 && !isDense) names_.isComplete = false;
    nvf::LineColumn place = begin;
    Index last = noIndex;
    for (std::size_t i = 0; i < path.size(); ++i) {
      const bool isLast = i + 1 == path.size();
      if (i > 0 && !isDense && !isLast) break;
      if (i > 0 && isLast && !isDense) place = {end.line(), end.column() - std::min(end.column(), path[i].size())};
      const nvf::Location location(file, place);
      const Ident ident(path[i], nvf::Range(location, location));
      last = i == 0 ? collector_.refer(ident, Role::Value, scope_, !isLast)
                    : collector_.member(ident, Role::Value, scope_, last);
      place = {place.line(), place.column() + path[i].size() + 1};
    }
    collector_.endPath(last);
  }

  // ---- blocks ----

  void walk(const DeclarationBlock& block) {
    walkAttributes(block.attributes());
    const bool hasTypes = block.type() == MemberType::NODE || block.type() == MemberType::COMPONENT;
    for (const DeclarationItem& item : block.declarations()) {
      if (const auto* element = item.getIf<ObjectArrayElementDecl>()) {
        walkElement(*element, hasTypes);
      } else if (const auto* pair = item.getIf<IdListValuePair>()) {
        const Index type = walkValue(pair->value(), hasTypes);
        for (std::size_t i = number_of_effective_ids(*pair); i > 0; --i) setType(type);
      } else {
        setType(noIndex);
      }
    }
  }
  /// The value of a declaration; for a node or a component returns the reference that tells what it is.
  Index walkValue(const Expr& value, bool isType) {
    const auto* variable = value.getIf<Variable>();
    if (isType && variable != nullptr) return walkPath(*variable, Role::Type);
    walk(value);
    return noIndex;
  }
  /// Sets it for the next declaration.
  void setType(Index type) { names_.declarations[members_[nextMember_++]].type = type; }
  /// `name(i, j) = value`. An index that nothing around declares may be what the declaration itself runs over.
  void walkElement(const ObjectArrayElementDecl& element, bool isType) {
    std::vector<nvf::CxId> open;
    for (const Ident& index : element.LHS().indices()) {
      if (collector_.bound(index.id()) == noIndex) {
        collector_.bindElementIndex(index.id());
        open.push_back(index.id());
      }
      collector_.endPath(collector_.refer(index, Role::ElementIndex, scope_));
    }
    const Index type = walkValue(element.RHS(), isType);
    for (const nvf::CxId& id : open) collector_.unbind(id);
    setType(type);
  }

  void walk(const BranchBlock& block) {
    for (const Through& through : block.throughs()) {
      collector_.endPath(collector_.refer(through.lhs().ident(), Role::Branch, scope_));
      if (through.lhs().subs()) walkSubscripts(through.lhs().subs()->subs());
      walkEnd(through.from());
      walkEnd(through.to());
    }
  }
  void walk(const ConnectionBlock& block) {
    for (const Connection& connection : block.connections()) {
      walkEnd(connection.firstArg());
      for (const ConnectionArg& argument : connection.remainingArguments()) walkEnd(argument);
    }
  }
  /// An end of a branch or of a connection.
  template <class Union>
  void walkEnd(const Union& end) {
    end.visit([&](const auto& alternative) {
      using Alternative = std::decay_t<decltype(alternative)>;
      if constexpr (std::is_same_v<Alternative, Expr>) {
        walk(alternative);
      } else if constexpr (!std::is_same_v<Alternative, ImplicitReference>) {
        node(alternative);
      }
    });
  }
  void walk(const EquationBlock& block) {
    walkAttributes(block.attributes());
    for (const EqnItem& item : block.eqnItems()) walk(item);
  }
  void walk(const EventBlock& block) {
    for (const WhenClause& clause : block.events()) {
      walkWhen(clause.whenBranch());
      for (const ElseWhenBranch& branch : clause.elseWhens()) walkWhen(branch);
    }
  }
  template <class Branch>
  void walkWhen(const Branch& branch) {
    walk(branch.predicate());
    walkUpdates(branch.body());
  }
  void walkUpdates(const nvf::Expressions<IdentValuePair>& updates) {
    for (const IdentValuePair& update : updates) {
      collector_.endPath(collector_.refer(update.ident(), Role::Update, scope_));
      walk(update.value());
    }
  }
  void walk(const ModechartBlock& block) {
    walkAttributes(block.attributes());
    for (const ModechartDeclaration& declaration : block.declarations()) walk(declaration.modechart());
  }
  /// Modes have a scope that only transitions and initial modes look at.
  void walk(const Modechart& chart) {
    const Index modes = collector_.open(ScopeKind::Modechart, scope_);
    for (const ModesSection& section : chart.modesSections()) {
      for (const Mode& mode : section.modes()) {
        for (const Ident& id : mode.ids()) collector_.declare(id, DeclarationKind::Mode, modes);
      }
    }
    const auto refer = [&](const Ident& id) {
      const Index found = collector_.bound(id.id());
      const bool isMode = found < NameCollector::elementIndex && names_.declarations[found].scope == modes;
      collector_.endPath(isMode ? collector_.referTo(id, Role::Mode, modes, found)
                                : collector_.referUnknown(id, Role::Mode, modes, Unknown::NotDeclared));
    };
    for (const TransitionsSection& section : chart.transitionsSections()) {
      for (const Transition& transition : section.transitions()) {
        for (const Ident& id : transition.modes()) refer(id);
      }
    }
    for (const InitialSection& section : chart.initialSections()) {
      for (const InitialMode& mode : section.initialModes()) refer(mode.id());
    }
    collector_.close(modes);
    for (const ModesSection& section : chart.modesSections()) {
      for (const Mode& mode : section.modes()) {
        for (const EquationBlock& block : mode.equationBlocks()) walk(block);
        for (const EntryBlock& entry : mode.entryBlocks()) walkUpdates(entry.actions());
      }
    }
    for (const TransitionsSection& section : chart.transitionsSections()) {
      for (const Transition& transition : section.transitions()) {
        walk(transition.predicate());
      }
    }
    for (const InitialSection& section : chart.initialSections()) {
      for (const InitialMode& mode : section.initialModes()) {
        walk(mode.predicate());
      }
    }
  }
  void walk(const AnnotationsBlock& block) {
    walkAttributes(block.classAnnotations());
    for (const MemberAnnotation& annotation : block.annotations()) {
      for (const Ident& id : annotation.ids()) collector_.endPath(collector_.refer(id, Role::Annotated, scope_));
      walkAttributes(annotation.attributes());
    }
  }

  // ---- sections ----

  void walk(const DeclarativeSections& sections) {
    walk(sections.semanticSections());
    for (const AnnotationsBlock& block : sections.annotationsBlocks()) walk(block);
  }
  template <class Items>
  void walkEach(const Items& items) {
    for (const auto& item : items) walk(item);
  }
  void walk(const SemanticSections& sections) {
    nvf::with_stack([&] {
      walkEach(sections.declarationBlocks());
      walkEach(sections.branchBlocks());
      walkEach(sections.connectionBlocks());
      walkEach(sections.equationBlocks());
      walkEach(sections.eventBlocks());
      walkEach(sections.modechartBlocks());
      walkEach(sections.conditionalSections());
      walkEach(sections.forLoops());
    });
  }
  void walk(const ConditionalSection& conditional) {
    walk(conditional.ifSection().predicate());
    walk(conditional.ifSection().declarations());
    for (const ElseifSection& section : conditional.elseifSections()) {
      walk(section.predicate());
      walk(section.declarations());
    }
    if (const auto section = conditional.elseSection()) walk(section->declarations());
  }
  void walk(const ForLoop& loop) {
    walk(loop.idValuePair().value());
    inScope(ScopeKind::Loop, [&] {
      collector_.declare(loop.idValuePair().ident(), DeclarationKind::LoopVariable, scope_);
      walk(loop.body());
    });
  }

  // ---- functions ----

  void walk(const LocalTSNFunctions& functions) {
    for (const TSNFunction* function : inOrderOfName(functions)) walk(*function);
  }
  void walk(const TSNFunction& function) {
    inScope(ScopeKind::Function, [&] {
      for (const Ident& id : function.outputs()) collector_.declare(id, DeclarationKind::FunctionOutput, scope_);
      for (const Ident& id : function.inputs()) collector_.declare(id, DeclarationKind::FunctionInput, scope_);
      for (const DefinitionsBlock& block : function.definitions()) {
        for (const FunctionEqnItem& item : block.eqnItems()) {
          if (const auto* pair = item.getIf<IdListValuePair>()) define(pair->ids());
        }
      }
      for (const DefinitionsBlock& block : function.definitions()) {
        walkAttributes(block.attributes());
        for (const FunctionEqnItem& item : block.eqnItems()) {
          if (const auto* pair = item.getIf<IdListValuePair>()) {
            walk(pair->value());
          } else {
            walk(item.get<EqnAssertion>());
          }
        }
      }
    });
  }
  /// A definition of an output refers to it; any other one declares a local name.
  void define(const nvf::Expressions<OptIdent>& ids) {
    for (const OptIdent& id : ids) {
      const auto* ident = id.getIf<Ident>();
      if (ident == nullptr) continue;
      const Index known = collector_.bound(ident->id());
      const bool isOutput = known < NameCollector::elementIndex && names_.declarations[known].scope == scope_ &&
                            names_.declarations[known].kind == DeclarationKind::FunctionOutput;
      if (isOutput) {
        collector_.endPath(collector_.referTo(*ident, Role::Update, scope_, known));
      } else {
        collector_.declare(*ident, DeclarationKind::FunctionLocal, scope_);
      }
    }
  }

  Names& names_;
  NameCollector collector_;
  std::unordered_map<nvf::CxId, Index> imports_; // what is imported by name, of several the first
  std::vector<Index> members_;                   // the declarations of members in the order of the walk
  std::size_t nextMember_ = 0;                   // of these the one that the walk comes by next
  Index scope_ = fileScope;
};

} // namespace

Names namesOf(const TSNFile& file) {
  Names names;
  std::visit([&names](const auto& kind) { Walker(names).walk(kind); }, file);
  std::sort(names.byName.begin(), names.byName.end(), [&](Index a, Index b) {
    const Declaration& left = names.declarations[a];
    const Declaration& right = names.declarations[b];
    return left.scope != right.scope ? left.scope < right.scope : left.name < right.name;
  });
  return names;
}

} // namespace tessarin::ide
