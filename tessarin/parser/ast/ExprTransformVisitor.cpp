#include "tessarin/parser/ast/ExprTransformVisitor.hpp"

#include <vector>

namespace tessarin::compiler::core {

namespace {

/// Opens the scope of a `let` and closes it again, also where an exception passes.
class LetScope {
public:
  LetScope(LetDeclNameStack& stack, const LetExpr& let) : stack_(stack) { stack_.push(let); }
  LetScope(const LetScope&) = delete;
  LetScope& operator=(const LetScope&) = delete;
  ~LetScope() { stack_.pop(); }

private:
  LetDeclNameStack& stack_;
};

/// What `rewrite` makes of each element.
template <class T, class Rewrite>
std::vector<T> rewriteEach(const std::vector<T>& elements, Rewrite rewrite) {
  std::vector<T> result;
  result.reserve(elements.size());
  for (const T& element : elements) result.push_back(rewrite(element));
  return result;
}

std::vector<EqnItem> rewriteItems(const std::vector<EqnItemHandle>& items, ExprTransformVisitor& visitor) {
  std::vector<EqnItem> result;
  result.reserve(items.size());
  for (const EqnItemHandle& item : items) result.push_back(visitor.process(item.get()));
  return result;
}

std::vector<Subscript> rewriteSubscripts(const std::vector<Subscript>& subscripts, ExprTransformVisitor& visitor) {
  return rewriteEach(subscripts,
                     [&](const Subscript& s) { return s.expr() ? Subscript(visitor.process(*s.expr())) : s; });
}

std::vector<Expr> rewriteExprs(const std::vector<Expr>& exprs, ExprTransformVisitor& visitor) {
  return rewriteEach(exprs, [&](const Expr& expr) { return visitor.process(expr); });
}

std::optional<ParenSubs> rewriteSubs(const std::optional<ParenSubs>& subs, ExprTransformVisitor& visitor) {
  return subs ? std::optional(visitor.process(*subs)) : std::nullopt;
}

NativeFunctionCall::NamedArguments rewriteNamed(const NativeFunctionCall::NamedArguments& named,
                                                ExprTransformVisitor& visitor) {
  NativeFunctionCall::NamedArguments result;
  for (const auto& [name, value] : named) result.emplace_hint(result.end(), name, visitor.process(value));
  return result;
}

} // namespace

ExprTransformVisitor::~ExprTransformVisitor() = default;

Expr expr_transform(const Expr& expr, ExprTransformVisitor& visitor) {
  return expr.visit([&visitor](const auto& alternative) { return visitor(alternative); });
}

// ---- what has no children, or whose children are left as they are ----

Expr ExprTransformVisitor::operator()(const Time& time) {
  return time;
}
Expr ExprTransformVisitor::operator()(const EndIndex& end) {
  return end;
}
Expr ExprTransformVisitor::operator()(const NumberLiteral& number) {
  return number;
}
Expr ExprTransformVisitor::operator()(const StringLiteral& string) {
  return string;
}
Expr ExprTransformVisitor::operator()(const ConcreteValueExpr& value) {
  return value;
}
Expr ExprTransformVisitor::operator()(const ObjectRef& ref) {
  return ref;
}

// ---- modecharts ----

Expr ExprTransformVisitor::operator()(const TransitionExpr& transition) {
  const Expr preCondition = process(transition.preCondition());
  return TransitionExpr(process(transition.expr()), preCondition);
}
Expr ExprTransformVisitor::operator()(const ModechartEqnExpr& modechart) {
  return ModechartEqnExpr(processIfExpr(modechart.expr()));
}

// ---- references ----

Expr ExprTransformVisitor::operator()(const FullPathVariable& path) {
  return FullPathVariable(path.paths(), rewriteSubs(path.subs(), *this), path.originalVariable(), path.range());
}
Expr ExprTransformVisitor::operator()(const RelativePathVariable& path) {
  return RelativePathVariable(path.depth(), path.id(), rewriteSubs(path.subs(), *this), path.range());
}
Expr ExprTransformVisitor::operator()(const Variable& variable) {
  std::vector<IdParenSubs> path;
  path.reserve(variable.leadingPath().size());
  for (const IdParenSubs& step : variable.leadingPath())
    path.emplace_back(step.ident(), rewriteSubs(step.subs(), *this));
  const std::optional<Arguments> tail = variable.tail() ? std::optional(process(*variable.tail())) : std::nullopt;
  return Variable(variable.id(), nvf::Expressions<IdParenSubs>(std::move(path)), tail, variable.range());
}
Expr ExprTransformVisitor::operator()(const ValueRef& ref) {
  const std::optional<ValueRefTail> tail = ref.tail() ? std::optional(process(*ref.tail())) : std::nullopt;
  return ValueRef(ref.id(), ref.leadingPath(), tail, ref.originalVariable(), ref.range());
}

// ---- compounds ----

Expr ExprTransformVisitor::operator()(const UnitExpr& expr) {
  return UnitExpr(process(expr.expr()), expr.unit(), expr.range());
}
Expr ExprTransformVisitor::operator()(const ValueExpr& expr) {
  const Expr value = process(expr.expr());
  return expr.conversion() ? ValueExpr(value, expr.unit(), *expr.conversion(), expr.range())
                           : ValueExpr(value, expr.unit(), expr.range());
}
Expr ExprTransformVisitor::operator()(const MatrixExpr& matrix) {
  return MatrixExpr(rewriteEach(matrix.rows(), [this](const MatrixExpr::Row& row) { return rewriteExprs(row, *this); }),
                    matrix.range());
}
Expr ExprTransformVisitor::operator()(const FieldValueArrayExpr& array) {
  std::vector<IdentValuePair> pairs;
  pairs.reserve(array.numPairs());
  for (const IdentValuePair& pair : array.pairList()) {
    pairs.emplace_back(pair.ident(), process(pair.value()), pair.rightLocation());
  }
  return FieldValueArrayExpr(nvf::Expressions<IdentValuePair>(std::move(pairs)), array.range());
}
Expr ExprTransformVisitor::operator()(const OpExpr& expr) {
  return OpExpr(expr.opType(), rewriteExprs(expr.operands(), *this), expr.range());
}
Expr ExprTransformVisitor::operator()(const MRVIndex& index) {
  return MRVIndex(process(index.expr()), index.rvIndex(), index.numRvs(), index.range());
}

// ---- calls ----

Expr ExprTransformVisitor::operator()(const NativeFunctionCall& call) {
  if (call.noArguments()) return call;
  const std::vector<Expr> positional = rewriteExprs(call.positionalArguments(), *this);
  return NativeFunctionCall(call.path(), positional, rewriteNamed(call.namedArguments(), *this), call.range());
}
Expr ExprTransformVisitor::operator()(const CalvexFunctionCall& call) {
  if (call.noArguments()) return call;
  return CalvexFunctionCall(call.path(), rewriteExprs(call.positionalArguments(), *this), call.isEnum(),
                            call.dottedEnum(), call.evalCompileTime(), call.range());
}
Expr ExprTransformVisitor::operator()(const TessarinFunctionCall& call) {
  if (call.noArguments()) return call;
  return TessarinFunctionCall(call.path(), rewriteExprs(call.positionalArguments(), *this), call.range());
}
Expr ExprTransformVisitor::operator()(const TessarinLocalFunctionCall& call) {
  if (call.noArguments()) return call;
  return TessarinLocalFunctionCall(call.path(), call.fcnId(), rewriteExprs(call.positionalArguments(), *this),
                                   call.range());
}

// ---- conditions and declarations ----

Expr ExprTransformVisitor::operator()(const IfExpr& expr) {
  return processIfExpr(expr);
}

IfExpr ExprTransformVisitor::processIfExpr(const IfExpr& expr) {
  const Expr condition = process(expr.condition());
  const std::vector<EqnItem> ifItems = rewriteItems(expr.ifEqnItems(), *this);
  const std::vector<EqnItem> elseItems = rewriteItems(expr.elseEqnItems(), *this);
  const auto branches = rewriteEach(expr.elseifBranches(), [this](const ElseifBranch& branch) {
    const Expr branchCondition = process(branch.condition());
    return ElseifBranch(branchCondition, rewriteItems(branch.eqnItems(), *this));
  });
  return {condition, ifItems, elseItems, branches, expr.range()};
}

Expr ExprTransformVisitor::operator()(const LetExpr& expr) {
  const LetScope scope(letStack_, expr);
  const auto declarations = rewriteEach(expr.declarations(), [this](const IdListValuePair& declaration) {
    return IdListValuePair(declaration.ids(), process(declaration.value()), false);
  });
  return LetExpr(declarations, rewriteItems(expr.eqnItemList(), *this), expr.range());
}

// ---- the parts that are no expressions ----

Expr ExprTransformVisitor::process(const Expr& expr) {
  return expr_transform(expr, *this);
}

Arguments ExprTransformVisitor::process(const Arguments& arguments) {
  const std::vector<Subscript> positional = rewriteSubscripts(arguments.posArgs(), *this);
  const auto named = rewriteEach(arguments.namedArgs(), [this](const NamedArgument& argument) {
    return NamedArgument(argument.name(), process(argument.value()), argument.isColonEquals());
  });
  return {positional, named, arguments.range()};
}

ParenSubs ExprTransformVisitor::process(const ParenSubs& subs) {
  return {rewriteSubscripts(subs.subs(), *this), subs.range()};
}

ValueRefTail ExprTransformVisitor::process(const ValueRefTail& tail) {
  if (const ParenSubs* subs = tail.getIf<ParenSubs>()) return process(*subs);
  return tail;
}

EqnItem ExprTransformVisitor::process(const EqnItem& item) {
  if (const Expr* expr = item.getIf<Expr>()) return process(*expr);
  const auto& assertion = item.get<EqnAssertion>();
  const Expr predicate = process(assertion.predicate());
  const std::optional<Expr> action = assertion.action() ? std::optional(process(*assertion.action())) : std::nullopt;
  return EqnAssertion(predicate, assertion.message(), action, assertion.range());
}

} // namespace tessarin::compiler::core
