#include "tessarin/parser/ast/Usage.hpp"

#include <unordered_map>
#include <utility>

namespace tessarin::compiler::core {

VariableRecursion::~VariableRecursion() = default;

namespace {

/// How many open `let` expressions declare each name. The walker only asks whether there is one, and gets its answer
/// here in constant time however deep `let` expressions nest.
class OpenNames {
public:
  [[nodiscard]] bool contains(const nvf::CxId& id) const { return counts_.contains(id); }
  void open(const nvf::CxId& id) { ++counts_[id]; }
  void close(const nvf::CxId& id) noexcept {
    const auto found = counts_.find(id);
    if (--found->second == 0) counts_.erase(found);
  }

private:
  std::unordered_map<nvf::CxId, std::size_t> counts_;
};

/// Holds the names of a `let` open.
class LetScope {
public:
  LetScope(OpenNames& open, const LetExpr& let) : open_(open), names_(declared_names(let.declarations())) {
    for (const auto& [name, index] : names_) open_.open(name);
  }
  LetScope(const LetScope&) = delete;
  LetScope& operator=(const LetScope&) = delete;
  ~LetScope() {
    for (const auto& [name, index] : names_) open_.close(name);
  }

private:
  OpenNames& open_;
  LetDeclNameStack::Names names_;
};

/// The walk. As a `VariableRecursion` it goes on into references; `node` has the work for each kind of expression.
class Walker final : public VariableRecursion {
public:
  Walker(const VariableVisitFcns& functions, VisitPredicateFlags flags) : functions_(functions), flags_(flags) {}

  void walk(const Expr& expr) {
    expr.visit([this](const auto& alternative) { node(alternative); });
  }

  void operator()(const Variable& variable) override {
    for (const IdParenSubs& step : variable.leadingPath()) walkOptional(step.subs());
    if (!variable.tail()) return;
    walkSubscripts(variable.tail()->posArgs());
    for (const NamedArgument& argument : variable.tail()->namedArgs()) walk(argument.value());
  }
  void operator()(const ValueRef& ref) override {
    // The indices of the leading path are constants, in which there is nothing to find.
    if (!ref.tail()) return;
    if (const ParenSubs* subs = ref.tail()->getIf<ParenSubs>()) walkSubscripts(subs->subs());
  }
  void operator()(const FullPathVariable& path) override { walkOptional(path.subs()); }
  void operator()(const RelativePathVariable& path) override { walkOptional(path.subs()); }

private:
  void node(const Time& time) { call(functions_.time, time); }
  void node(const EndIndex&) {}
  void node(const NumberLiteral&) {}
  void node(const StringLiteral&) {}
  void node(const ConcreteValueExpr&) {}
  void node(const Variable& variable) {
    if (!functions_.variable) return;
    if (open_.contains(variable.id().id())) {
      (*this)(variable);
    } else {
      functions_.variable(variable, *this);
    }
  }
  void node(const FullPathVariable& path) { call(functions_.fullPathVariable, path, *this); }
  void node(const RelativePathVariable& path) { call(functions_.relativePathVariable, path, *this); }
  void node(const ValueRef& ref) { call(functions_.valueRef, ref, *this); }
  void node(const ObjectRef& ref) { call(functions_.objectRef, ref); }
  void node(const UnitExpr& unit) {
    call(functions_.unitExpr, unit);
    walk(unit.expr());
  }
  void node(const ValueExpr& value) { walk(value.expr()); }
  void node(const MatrixExpr& matrix) {
    for (const MatrixExpr::Row& row : matrix.rows()) walkAll(row);
  }
  void node(const FieldValueArrayExpr& array) {
    for (const IdentValuePair& pair : array.pairList()) walk(pair.value());
  }
  void node(const IfExpr& expr) {
    walkCondition(expr.condition());
    walkItems(expr.ifEqnItems());
    walkItems(expr.elseEqnItems());
    for (const ElseifBranch& branch : expr.elseifBranches()) {
      walkCondition(branch.condition());
      walkItems(branch.eqnItems());
    }
  }
  void node(const OpExpr& op) {
    call(functions_.opExpr, op);
    walkAll(op.operands());
  }
  void node(const LetExpr& let) {
    const LetScope scope(open_, let);
    for (const IdListValuePair& declaration : let.declarations()) walk(declaration.value());
    walkItems(let.eqnItemList());
  }
  void node(const MRVIndex& index) { walk(index.expr()); }
  void node(const TransitionExpr& transition) { walk(transition.expr()); }
  void node(const ModechartEqnExpr& modechart) { node(modechart.expr()); }
  void node(const NativeFunctionCall& c) { functionCall(functions_.nativeFunctionCall, c); }
  void node(const CalvexFunctionCall& c) { functionCall(functions_.calvexFunctionCall, c); }
  void node(const TessarinFunctionCall& c) { functionCall(functions_.tessarinFunctionCall, c); }
  void node(const TessarinLocalFunctionCall& c) { functionCall(functions_.tessarinLocalFunctionCall, c); }

  template <class Function, class... Arguments>
  static void call(const Function& function, Arguments&... arguments) {
    if (function) function(arguments...);
  }

  template <class Function, class Call>
  void functionCall(const Function& function, const Call& c) {
    call(function, c);
    walkAll(c.positionalArguments());
    for (const auto& [name, value] : c.namedArguments()) walk(value);
  }

  [[nodiscard]] bool has(VisitPredicateFlags flag) const noexcept {
    return (static_cast<int>(flags_) & static_cast<int>(flag)) != 0;
  }

  void walkAll(const std::vector<Expr>& exprs) {
    for (const Expr& expr : exprs) walk(expr);
  }
  void walkCondition(const Expr& condition) {
    if (has(VisitPredicateFlags::Conditions)) walk(condition);
  }
  void walkItems(const std::vector<EqnItemHandle>& items) {
    for (const EqnItemHandle& item : items)
      item.get().visit([this](const auto& alternative) { walkItem(alternative); });
  }
  void walkItem(const Expr& expr) { walk(expr); }
  void walkItem(const EqnAssertion& assertion) {
    if (!has(VisitPredicateFlags::Assertions)) return;
    walk(assertion.predicate());
    if (assertion.action()) walk(*assertion.action());
  }
  void walkSubscripts(const std::vector<Subscript>& subs) {
    for (const Subscript& sub : subs) {
      if (sub.expr()) walk(*sub.expr());
    }
  }
  void walkOptional(const std::optional<ParenSubs>& subs) {
    if (subs) walkSubscripts(subs->subs());
  }

  const VariableVisitFcns& functions_;
  VisitPredicateFlags flags_;
  OpenNames open_;
};

/// The callback that only goes on into the reference.
constexpr auto recurse = [](const auto& reference, VariableRecursion& recursion) { recursion(reference); };

/// The callback that puts the reference into a set and goes on into it.
template <class Set>
auto insertInto(Set& set) {
  return [&set](const auto& reference, VariableRecursion& recursion) {
    set.insert(reference);
    recursion(reference);
  };
}

/// The ids of the variables that have no leading path: those that can name a declaration of a `let` around.
IdSet pathlessNames(const Expr& expr) {
  IdSet names;
  VariableVisitFcns functions;
  functions.variable = [&names](const Variable& variable, VariableRecursion& recursion) {
    if (variable.leadingPath().empty()) names.insert(variable.id().id());
    recursion(variable);
  };
  functions.fullPathVariable = recurse;
  functions.relativePathVariable = recurse;
  visit_variables(expr, functions, VisitPredicateFlags::All);
  return names;
}

} // namespace

void visit_variables(const Expr& expr, const VariableVisitFcns& functions, VisitPredicateFlags flags) {
  Walker(functions, flags).walk(expr);
}

VariableSet used_variables(const Expr& expr, VisitPredicateFlags flags) {
  VariableSet variables;
  VariableVisitFcns functions;
  functions.variable = insertInto(variables);
  functions.fullPathVariable = recurse;
  visit_variables(expr, functions, flags);
  return variables;
}

ValueRefSet used_valuerefs(const Expr& expr, VisitPredicateFlags flags) {
  ValueRefSet refs;
  VariableVisitFcns functions;
  functions.variable = recurse;
  functions.fullPathVariable = recurse;
  functions.valueRef = insertInto(refs);
  visit_variables(expr, functions, flags);
  return refs;
}

void UsedFullPathVariables::operator()(const Expr& expr, FullPathVariableSet& paths) const {
  VariableVisitFcns functions;
  functions.variable = recurse;
  functions.fullPathVariable = insertInto(paths);
  functions.valueRef = recurse;
  visit_variables(expr, functions, VisitPredicateFlags::All);
}

FullPathVariableSet used_fpvs(const Expr& expr) {
  FullPathVariableSet paths;
  UsedFullPathVariables()(expr, paths);
  return paths;
}

void UsedIds::operator()(const Expr& expr, IdSet& ids) const {
  VariableVisitFcns functions;
  functions.variable = [&ids](const Variable& variable, VariableRecursion& recursion) {
    ids.insert(leading_id(variable).id());
    recursion(variable);
  };
  functions.fullPathVariable = recurse;
  functions.valueRef = [&ids](const ValueRef& ref, VariableRecursion& recursion) {
    ids.insert(ref.firstId().id());
    recursion(ref);
  };
  functions.objectRef = [&ids](const ObjectRef& ref) { ids.insert(ref.firstId().id()); };
  visit_variables(expr, functions, VisitPredicateFlags::All);
}

IdSet used_ids(const Expr& expr) {
  IdSet ids;
  UsedIds()(expr, ids);
  return ids;
}

UsedLetDecls::UsedLetDecls(std::vector<IdListValuePair> declarations)
    : declarations_(std::move(declarations)), names_(declared_names(declarations_)), used_(declarations_.size()) {}

std::vector<IdListValuePair> UsedLetDecls::operator()(const Expr& expr) {
  return use(pathlessNames(expr));
}

std::vector<IdListValuePair> UsedLetDecls::use(const IdSet& names) {
  std::vector<std::size_t> toWalk;
  const auto mark = [this, &toWalk](std::size_t declaration) {
    if (used_[declaration]) return;
    used_[declaration] = true;
    toWalk.push_back(declaration);
  };

  for (const auto& [name, declaration] : names_) {
    if (names.count(name) != 0) mark(declaration);
  }
  while (!toWalk.empty()) {
    const Expr value = declarations_[toWalk.back()].value();
    toWalk.pop_back();
    for (const nvf::CxId& name : pathlessNames(value)) {
      const auto found = names_.find(name);
      if (found != names_.end()) mark(found->second);
    }
  }

  std::vector<IdListValuePair> result;
  for (std::size_t i = 0; i < declarations_.size(); ++i) {
    if (used_[i]) result.push_back(declarations_[i]);
  }
  return result;
}

LetDeclNameStack::DeclStack used_let_decls(const Expr& expr, const LetDeclNameStack& stack) {
  const IdSet names = pathlessNames(expr);
  LetDeclNameStack::DeclStack used;
  for (const auto& declarations : stack.declStack()) used.push_back(UsedLetDecls(declarations).use(names));
  return used;
}

} // namespace tessarin::compiler::core
