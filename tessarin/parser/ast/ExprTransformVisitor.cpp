#include "tessarin/parser/ast/ExprTransformVisitor.hpp"

#include "tessarin/parser/ast/Same.hpp"

#include <concepts>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

namespace {

/// Opens the scope of a `let` and closes it again, also where an exception passes: the stack becomes the former one,
/// for which nothing has to be made.
class LetScope {
public:
  LetScope(LetDeclNameStack& stack, const LetExpr& let) : stack_(stack), former_(stack) { stack_.push(let); }
  LetScope(const LetScope&) = delete;
  LetScope& operator=(const LetScope&) = delete;
  ~LetScope() { stack_ = std::move(former_); }

private:
  LetDeclNameStack& stack_;
  LetDeclNameStack former_;
};
static_assert(std::is_nothrow_move_assignable_v<LetDeclNameStack>);

// ---- parts ----
//
// What a part has become, or nothing where it has stayed what it was: a node whose parts all stay is not made anew.

template <class T>
const T& valueOf(const T& element) {
  return element;
}
const EqnItem& valueOf(const EqnItemHandle& element) {
  return element.get();
}

/// The elements with what `rewrite` makes of each, which gives an optional; nothing where all stay.
template <class Elements, class Rewrite>
auto rewriteEach(const Elements& elements, Rewrite rewrite) {
  using T = typename std::invoke_result_t<Rewrite&, const typename Elements::value_type&>::value_type;
  std::optional<std::vector<T>> result;
  for (auto element = elements.begin(); element != elements.end(); ++element) {
    std::optional<T> changed = rewrite(*element);
    if (!changed && !result) continue;
    if (!result) {
      result.emplace();
      result->reserve(elements.size());
      for (auto before = elements.begin(); before != element; ++before) result->push_back(valueOf(*before));
    }
    result->push_back(changed ? std::move(*changed) : valueOf(*element));
  }
  return result;
}

std::optional<Expr> rewriteExpr(const Expr& expr, ExprTransformVisitor& visitor) {
  return changeOf(expr, visitor.process(expr));
}

std::optional<std::vector<EqnItem>> rewriteItems(const std::vector<EqnItemHandle>& items,
                                                 ExprTransformVisitor& visitor) {
  return rewriteEach(items,
                     [&](const EqnItemHandle& item) { return changeOf(item.get(), visitor.process(item.get())); });
}

std::optional<std::vector<Subscript>> rewriteSubscripts(const std::vector<Subscript>& subscripts,
                                                        ExprTransformVisitor& visitor) {
  return rewriteEach(subscripts, [&](const Subscript& s) -> std::optional<Subscript> {
    if (!s.expr()) return std::nullopt;
    const std::optional<Expr> expr = rewriteExpr(*s.expr(), visitor);
    return expr ? std::optional<Subscript>(*expr) : std::nullopt;
  });
}

std::optional<std::vector<Expr>> rewriteExprs(const std::vector<Expr>& exprs, ExprTransformVisitor& visitor) {
  return rewriteEach(exprs, [&](const Expr& expr) { return rewriteExpr(expr, visitor); });
}

/// What stands in an optional and has become something else.
template <class T>
std::optional<T> rewriteOptional(const std::optional<T>& part, ExprTransformVisitor& visitor) {
  return part ? changeOf(*part, visitor.process(*part)) : std::nullopt;
}

/// What a part is now.
template <class T>
const T& now(const std::optional<T>& changed, const T& before) {
  return changed ? *changed : before;
}
template <class T>
std::optional<T> now(const std::optional<T>& changed, const std::optional<T>& before) {
  return changed ? changed : before;
}
std::vector<EqnItem> now(const std::optional<std::vector<EqnItem>>& changed, const std::vector<EqnItemHandle>& before) {
  if (changed) return *changed;
  std::vector<EqnItem> items;
  items.reserve(before.size());
  for (const EqnItemHandle& item : before) items.push_back(item.get());
  return items;
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
  const std::optional<Expr> preCondition = rewriteExpr(transition.preCondition(), *this);
  const std::optional<Expr> expr = rewriteExpr(transition.expr(), *this);
  if (!preCondition && !expr) return transition;
  return TransitionExpr(now(expr, transition.expr()), now(preCondition, transition.preCondition()));
}
Expr ExprTransformVisitor::operator()(const ModechartEqnExpr& modechart) {
  return ModechartEqnExpr(processIfExpr(modechart.expr()));
}

// ---- references ----

Expr ExprTransformVisitor::operator()(const FullPathVariable& path) {
  const std::optional<ParenSubs> subs = rewriteOptional(path.subs(), *this);
  return subs ? FullPathVariable(path.paths(), subs, path.originalVariable(), path.range()) : path;
}
Expr ExprTransformVisitor::operator()(const RelativePathVariable& path) {
  const std::optional<ParenSubs> subs = rewriteOptional(path.subs(), *this);
  return subs ? RelativePathVariable(path.depth(), path.id(), subs, path.range()) : path;
}
Expr ExprTransformVisitor::operator()(const Variable& variable) {
  auto path = rewriteEach(variable.leadingPath(), [this](const IdParenSubs& step) -> std::optional<IdParenSubs> {
    const std::optional<ParenSubs> subs = rewriteOptional(step.subs(), *this);
    return subs ? std::optional<IdParenSubs>(std::in_place, step.ident(), subs) : std::nullopt;
  });
  const std::optional<Arguments> tail = rewriteOptional(variable.tail(), *this);
  if (!path && !tail) return variable;
  return Variable(variable.id(), path ? nvf::Expressions<IdParenSubs>(std::move(*path)) : variable.leadingPath(),
                  now(tail, variable.tail()), variable.range());
}
Expr ExprTransformVisitor::operator()(const ValueRef& ref) {
  const std::optional<ValueRefTail> tail = rewriteOptional(ref.tail(), *this);
  return tail ? ValueRef(ref.id(), ref.leadingPath(), tail, ref.originalVariable(), ref.range()) : ref;
}

// ---- compounds ----

Expr ExprTransformVisitor::operator()(const UnitExpr& expr) {
  const std::optional<Expr> value = rewriteExpr(expr.expr(), *this);
  return value ? UnitExpr(*value, expr.unit(), expr.range()) : expr;
}
Expr ExprTransformVisitor::operator()(const ValueExpr& expr) {
  const std::optional<Expr> value = rewriteExpr(expr.expr(), *this);
  if (!value) return expr;
  return expr.conversion() ? ValueExpr(*value, expr.unit(), *expr.conversion(), expr.range())
                           : ValueExpr(*value, expr.unit(), expr.range());
}
Expr ExprTransformVisitor::operator()(const MatrixExpr& matrix) {
  auto rows = rewriteEach(matrix.rows(), [this](const MatrixExpr::Row& row) { return rewriteExprs(row, *this); });
  return rows ? MatrixExpr(std::move(*rows), matrix.range()) : matrix;
}
Expr ExprTransformVisitor::operator()(const FieldValueArrayExpr& array) {
  auto pairs = rewriteEach(array.pairList(), [this](const IdentValuePair& pair) -> std::optional<IdentValuePair> {
    const std::optional<Expr> value = rewriteExpr(pair.value(), *this);
    if (!value) return std::nullopt;
    return IdentValuePair(pair.ident(), *value, pair.rightLocation());
  });
  return pairs ? FieldValueArrayExpr(nvf::Expressions<IdentValuePair>(std::move(*pairs)), array.range()) : array;
}
Expr ExprTransformVisitor::operator()(const OpExpr& expr) {
  auto operands = rewriteExprs(expr.operands(), *this);
  return operands ? OpExpr(expr.opType(), std::move(*operands), expr.range()) : expr;
}
Expr ExprTransformVisitor::operator()(const MRVIndex& index) {
  const std::optional<Expr> expr = rewriteExpr(index.expr(), *this);
  return expr ? MRVIndex(*expr, index.rvIndex(), index.numRvs(), index.range()) : index;
}

// ---- calls: one without an argument list has nothing to rewrite ----

Expr ExprTransformVisitor::operator()(const NativeFunctionCall& call) {
  const auto positional = rewriteExprs(call.positionalArguments(), *this);
  std::optional<NativeFunctionCall::NamedArguments> named;
  for (const auto& [name, value] : call.namedArguments()) {
    std::optional<Expr> changed = rewriteExpr(value, *this);
    if (!changed) continue;
    if (!named) named = call.namedArguments();
    named->at(name) = std::move(*changed);
  }
  if (!positional && !named) return call;
  return NativeFunctionCall(call.path(), now(positional, call.positionalArguments()), now(named, call.namedArguments()),
                            call.range());
}
Expr ExprTransformVisitor::operator()(const CalvexFunctionCall& call) {
  const auto positional = rewriteExprs(call.positionalArguments(), *this);
  if (!positional) return call;
  return CalvexFunctionCall(call.path(), *positional, call.isEnum(), call.dottedEnum(), call.evalCompileTime(),
                            call.range());
}
Expr ExprTransformVisitor::operator()(const TessarinFunctionCall& call) {
  const auto positional = rewriteExprs(call.positionalArguments(), *this);
  return positional ? TessarinFunctionCall(call.path(), *positional, call.range()) : call;
}
Expr ExprTransformVisitor::operator()(const TessarinLocalFunctionCall& call) {
  const auto positional = rewriteExprs(call.positionalArguments(), *this);
  return positional ? TessarinLocalFunctionCall(call.path(), call.fcnId(), *positional, call.range()) : call;
}

// ---- conditions and declarations ----

Expr ExprTransformVisitor::operator()(const IfExpr& expr) {
  return processIfExpr(expr);
}

IfExpr ExprTransformVisitor::processIfExpr(const IfExpr& expr) {
  const std::optional<Expr> condition = rewriteExpr(expr.condition(), *this);
  const auto ifItems = rewriteItems(expr.ifEqnItems(), *this);
  const auto elseItems = rewriteItems(expr.elseEqnItems(), *this);
  const auto branches = rewriteEach(expr.elseifBranches(), [this](const ElseifBranch& branch) {
    const std::optional<Expr> branchCondition = rewriteExpr(branch.condition(), *this);
    const auto items = rewriteItems(branch.eqnItems(), *this);
    return branchCondition || items
               ? std::optional<ElseifBranch>(std::in_place, now(branchCondition, branch.condition()),
                                             now(items, branch.eqnItems()))
               : std::nullopt;
  });
  if (!condition && !ifItems && !elseItems && !branches) return expr;
  return {now(condition, expr.condition()), now(ifItems, expr.ifEqnItems()), now(elseItems, expr.elseEqnItems()),
          now(branches, expr.elseifBranches()), expr.range()};
}

Expr ExprTransformVisitor::operator()(const LetExpr& expr) {
  const LetScope scope(letStack_, expr);
  const auto declarations =
      rewriteEach(expr.declarations(), [this](const IdListValuePair& declaration) -> std::optional<IdListValuePair> {
        const std::optional<Expr> value = rewriteExpr(declaration.value(), *this);
        // However a declaration was written, it is written with `=` from here on.
        if (!value && !declaration.isColonEquals()) return std::nullopt;
        return IdListValuePair(declaration.ids(), now(value, declaration.value()), false);
      });
  const auto items = rewriteItems(expr.eqnItemList(), *this);
  if (!declarations && !items) return expr;
  return LetExpr(now(declarations, expr.declarations()), now(items, expr.eqnItemList()), expr.range());
}

// ---- the parts that are no expressions ----

Expr ExprTransformVisitor::process(const Expr& expr) {
  return expr_transform(expr, *this);
}

Arguments ExprTransformVisitor::process(const Arguments& arguments) {
  const auto positional = rewriteSubscripts(arguments.posArgs(), *this);
  const auto named =
      rewriteEach(arguments.namedArgs(), [this](const NamedArgument& argument) -> std::optional<NamedArgument> {
        const std::optional<Expr> value = rewriteExpr(argument.value(), *this);
        if (!value) return std::nullopt;
        return NamedArgument(argument.name(), *value, argument.isColonEquals());
      });
  if (!positional && !named) return arguments;
  return {now(positional, arguments.posArgs()), now(named, arguments.namedArgs()), arguments.range()};
}

ParenSubs ExprTransformVisitor::process(const ParenSubs& subs) {
  auto rewritten = rewriteSubscripts(subs.subs(), *this);
  return rewritten ? ParenSubs(std::move(*rewritten), subs.range()) : subs;
}

ValueRefTail ExprTransformVisitor::process(const ValueRefTail& tail) {
  if (const ParenSubs* subs = tail.getIf<ParenSubs>()) return process(*subs);
  return tail;
}

EqnItem ExprTransformVisitor::process(const EqnItem& item) {
  if (const Expr* expr = item.getIf<Expr>()) return process(*expr);
  const auto& assertion = item.get<EqnAssertion>();
  const std::optional<Expr> predicate = rewriteExpr(assertion.predicate(), *this);
  const std::optional<Expr> action = rewriteOptional(assertion.action(), *this);
  if (!predicate && !action) return item;
  return EqnAssertion(now(predicate, assertion.predicate()), assertion.message(), now(action, assertion.action()),
                      assertion.range());
}

} // namespace tessarin::compiler::core
