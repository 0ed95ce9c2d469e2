#include "tessarin/parser/ast/Conversions.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/ExprTransformVisitor.hpp"
#include "tessarin/parser/ast/fixed_id.hpp"

#include <algorithm>
#include <stdexcept>

namespace tessarin::compiler::core {

// ---- names ----

namespace {

Ident unplaced(const nvf::CxId& id) {
  return Ident(id, nvf::Range());
}

/// The steps before the last name of a path.
IdSubsPath leadingSteps(const nvf::CxIdPath& path) {
  std::vector<IdParenSubs> steps;
  steps.reserve(path.size() - 1);
  for (auto id = path.begin(); id + 1 != path.end(); ++id) steps.emplace_back(unplaced(*id), std::nullopt);
  return IdSubsPath(std::move(steps));
}

bool hasSubscripts(const IdParenSubs& step) {
  return step.subs().has_value();
}

/// The subscripts of a step and the positional arguments of a tail; null where there are none at all.
const std::vector<Subscript>* subscripts(const std::optional<ParenSubs>& subs) {
  return subs ? &subs->subs() : nullptr;
}
const std::vector<Subscript>* subscripts(const std::optional<Arguments>& tail) {
  return tail ? &tail->posArgs() : nullptr;
}
bool hasNamedArguments(const std::optional<Arguments>& tail) {
  return tail && !tail->namedArgs().empty();
}

} // namespace

const Ident& leading_id(const Variable& variable) {
  return variable.leadingPath().empty() ? variable.id() : variable.leadingPath().front().ident();
}

bool is_idpath(const Variable& variable) {
  const IdSubsPath& path = variable.leadingPath();
  return !variable.tail() && std::none_of(path.begin(), path.end(), hasSubscripts);
}

Expr to_expr(const NamedArgumentName& name) {
  return name.visit([](const auto& alternative) { return Expr(alternative); });
}

Variable make_variable(const nvf::CxIdPath& path, const std::optional<Arguments>& arguments, const nvf::Range& range) {
  return {unplaced(path.back()), leadingSteps(path), arguments, range};
}

Variable make_variable(const nvf::CxIdPath& path, const std::vector<Expr>& positional, const nvf::Range& range) {
  return make_variable(path, Arguments(std::vector<Subscript>(positional.begin(), positional.end()), {}, range), range);
}

Variable cxidpath_to_variable(const nvf::CxIdPath& path, const nvf::Range& range) {
  return make_variable(path, std::nullopt, range);
}

nvf::CxIdPath variable_to_cxidpath(const Variable& variable) {
  ustring text;
  for (const IdParenSubs& step : variable.leadingPath()) text.append(step.ident().id().view()) += u'.';
  text += variable.id().id().view();
  return nvf::CxIdPath(ustring_view(text));
}

IdSubsPath cxidpath_to_idsubspath(const nvf::CxIdPath& path) {
  std::vector<IdParenSubs> steps;
  steps.reserve(path.size());
  for (const nvf::CxId& id : path) steps.emplace_back(unplaced(id), std::nullopt);
  return IdSubsPath(std::move(steps));
}

Arguments parensubs_to_arguments(const ParenSubs& subs) {
  return {subs.subs(), {}, subs.range()};
}

Variable idsubspath_to_variable(const IdSubsPath& path, const nvf::Range& range) {
  if (path.empty()) throw std::logic_error("Internal error: cannot convert empty IdSubsPath.");
  const IdParenSubs& last = path.back();
  std::optional<Arguments> tail;
  if (last.subs()) tail = parensubs_to_arguments(*last.subs());
  return {last.ident(), IdSubsPath(path.begin(), path.end() - 1), tail, range};
}

// ---- unique paths ----

namespace {

/// The step `name(index, …)`.
template <class... Indices>
IdParenSubs pathStep(const nvf::CxId& name, Indices... indices) {
  const auto literal = [](std::size_t index) { return Expr(NumberLiteral(nvf::NumberString(index), nvf::Range())); };
  if constexpr (sizeof...(indices) == 0) {
    return {unplaced(name), std::nullopt};
  } else {
    return {unplaced(name), ParenSubs({Subscript(literal(indices))...}, nvf::Range())};
  }
}

struct ToPathStep {
  IdParenSubs operator()(const BaseClassPathElement&) const { return pathStep(BaseClassPathElement::id()); }
  IdParenSubs operator()(const MemberPathElement& e) const {
    return pathStep(MemberPathElement::id(), e.memberIndex());
  }
  IdParenSubs operator()(const ArrayMemberPathElement& e) const {
    return pathStep(ArrayMemberPathElement::id(), e.memberIndex(), e.elementIndex());
  }
};

/// The element that a step of a variable is. `base()` is taken for `base`.
std::optional<UniquePathElement> pathElement(const nvf::CxId& name, const std::vector<Subscript>* subs) {
  std::vector<std::size_t> indices;
  if (subs != nullptr) {
    for (const Subscript& sub : *subs) {
      const std::optional<std::size_t> index = sub.expr() ? to_whole_number(*sub.expr()) : std::nullopt;
      if (!index) return std::nullopt;
      indices.push_back(*index);
    }
  }
  if (name == BaseClassPathElement::id() && indices.empty()) return BaseClassPathElement();
  if (name == MemberPathElement::id() && indices.size() == 1) return MemberPathElement(indices[0]);
  if (name == ArrayMemberPathElement::id() && indices.size() == 2) {
    return ArrayMemberPathElement(indices[0], indices[1]);
  }
  return std::nullopt;
}

/// The elements of the path that a variable is, or nothing where a step is no element.
std::optional<std::vector<UniquePathElement>> pathElements(const Variable& variable) {
  std::vector<UniquePathElement> elements;
  const auto append = [&elements](const Ident& name, const std::vector<Subscript>* subs) {
    const std::optional<UniquePathElement> element = pathElement(name.id(), subs);
    if (element) elements.push_back(*element);
    return element.has_value();
  };
  for (const IdParenSubs& step : variable.leadingPath()) {
    if (!append(step.ident(), subscripts(step.subs()))) return std::nullopt;
  }
  if (hasNamedArguments(variable.tail()) || !append(variable.id(), subscripts(variable.tail()))) return std::nullopt;
  return elements;
}

[[noreturn]] void refusePath(const Expr& expr) {
  using kelvane::tessarin::compiler::core::ast::InvalidFullPathVariableSyntax;
  throw nvf::LocatedError<InvalidFullPathVariableSyntax>(expr_location(expr), false);
}

} // namespace

std::optional<std::size_t> to_whole_number(const Expr& expr) {
  const NumberLiteral* literal = expr.getIf<NumberLiteral>();
  if (literal == nullptr || literal->value().isImaginary()) return std::nullopt;
  if (const auto digits = nvf::whole_number<std::size_t>(nvf::narrow(literal->value().view()))) return digits;
  constexpr double limit = 18446744073709551616.0; // 2^64: the conversion of anything from here on is undefined
  const double number = literal->value().number();
  if (!(number >= 0 && number < limit)) return std::nullopt;
  const auto whole = static_cast<std::size_t>(number);
  if (static_cast<double>(whole) != number) return std::nullopt;
  return whole;
}

Expr to_expr(const UniquePath& path) {
  std::vector<IdParenSubs> steps;
  steps.reserve(path.size());
  for (const UniquePathElement& element : path) steps.push_back(element.visit(ToPathStep()));
  return idsubspath_to_variable(IdSubsPath(std::move(steps)));
}

UniquePath to_unique_path(const Expr& expr) {
  const Variable* variable = expr.getIf<Variable>();
  if (variable == nullptr) refusePath(expr);
  std::optional<std::vector<UniquePathElement>> elements = pathElements(*variable);
  if (!elements) refusePath(expr);
  return UniquePath(std::move(*elements));
}

std::vector<UniquePath> to_unique_paths(const Expr& expr) {
  const MatrixExpr* matrix = expr.getIf<MatrixExpr>();
  if (matrix == nullptr) return {to_unique_path(expr)};
  if (matrix->numOfRows() > 1) refusePath(expr);
  std::vector<UniquePath> paths;
  for (const MatrixExpr::Row& row : matrix->rows()) {
    for (const Expr& element : row) paths.push_back(to_unique_path(element));
  }
  return paths;
}

// ---- references ----

namespace {

/// The subscripts as constants.
std::optional<nvf::Expressions<ConcreteValueExpr>> constants(const std::vector<Subscript>& subs) {
  std::vector<ConcreteValueExpr> values;
  values.reserve(subs.size());
  for (const Subscript& sub : subs) {
    const ConcreteValueExpr* value = sub.expr() ? sub.expr()->getIf<ConcreteValueExpr>() : nullptr;
    if (value == nullptr) return std::nullopt;
    values.push_back(*value);
  }
  return nvf::Expressions<ConcreteValueExpr>(std::move(values));
}

/// Appends the step with its subscripts as constants; tells whether they all are.
bool appendStep(std::vector<IdValueIndices>& path, const Ident& ident, const std::vector<Subscript>* subs) {
  IdValueIndices::Indices indices;
  if (subs != nullptr) {
    indices = constants(*subs);
    if (!indices) return false;
  }
  path.emplace_back(ident, indices);
  return true;
}

std::optional<std::vector<IdValueIndices>> constantSteps(const IdSubsPath& path) {
  std::vector<IdValueIndices> steps;
  steps.reserve(path.size() + 1);
  for (const IdParenSubs& step : path) {
    if (!appendStep(steps, step.ident(), subscripts(step.subs()))) return std::nullopt;
  }
  return steps;
}

} // namespace

std::optional<nvf::Expressions<IdValueIndices>> to_idvalueindicespath(const IdSubsPath& path) {
  std::optional<std::vector<IdValueIndices>> steps = constantSteps(path);
  if (!steps) return std::nullopt;
  return nvf::Expressions<IdValueIndices>(std::move(*steps));
}

std::optional<ValueRef> to_valueref(const Variable& variable) {
  const auto path = to_idvalueindicespath(variable.leadingPath());
  if (!path) return std::nullopt;
  if (hasNamedArguments(variable.tail())) return std::nullopt;
  std::optional<ValueRefTail> tail;
  if (variable.tail()) tail = ParenSubs(variable.tail()->posArgs(), variable.tail()->range());
  return ValueRef(variable.id(), *path, tail, std::nullopt, variable.range());
}

std::optional<ObjectRef> to_objectref(const Variable& variable) {
  std::optional<std::vector<IdValueIndices>> steps = constantSteps(variable.leadingPath());
  if (!steps || hasNamedArguments(variable.tail())) return std::nullopt;
  if (!appendStep(*steps, variable.id(), subscripts(variable.tail()))) return std::nullopt;
  return ObjectRef(nvf::Expressions1<IdValueIndices>(std::move(*steps)), variable, variable.range());
}

std::optional<std::pair<nvf::CxIdPath, std::optional<Arguments>>> to_pathtailpair(const Variable& variable) {
  std::vector<nvf::CxId> ids;
  ids.reserve(variable.leadingPath().size() + 1);
  for (const IdParenSubs& step : variable.leadingPath()) {
    if (hasSubscripts(step)) return std::nullopt;
    ids.push_back(step.ident().id());
  }
  ids.push_back(variable.id().id());
  return std::pair(nvf::CxIdPath(ids), variable.tail());
}

std::optional<FunctionCallArguments> to_functioncall_args(const Arguments& arguments) {
  FunctionCallArguments result;
  result.positional.reserve(arguments.posArgs().size());
  for (const Subscript& argument : arguments.posArgs()) {
    if (!argument.expr()) return std::nullopt;
    result.positional.push_back(*argument.expr());
  }
  for (const NamedArgument& argument : arguments.namedArgs()) {
    const Variable* name = argument.name().getIf<Variable>();
    if (name == nullptr || !name->isID()) return std::nullopt;
    result.named.emplace(name->id().id(), argument.value());
  }
  return result;
}

std::optional<NativeFunctionCall> to_nativefunctioncall(const Variable& variable) {
  const auto pair = to_pathtailpair(variable);
  if (!pair) return std::nullopt;
  const auto& [path, tail] = *pair;
  if (!tail) return NativeFunctionCall(path, variable.range());
  const std::optional<FunctionCallArguments> arguments = to_functioncall_args(*tail);
  if (!arguments) return std::nullopt;
  return NativeFunctionCall(path, arguments->positional, arguments->named, variable.range());
}

Variable to_variable(const NativeFunctionCall& call) {
  std::optional<Arguments> arguments = call.arguments();
  if (arguments) arguments = Arguments(arguments->posArgs(), arguments->namedArgs(), call.range());
  return make_variable(call.path(), arguments, call.range());
}

// ---- values ----

namespace {

/// The literal of an element of a value.
struct ToLiteral {
  nvf::Range range;

  Expr operator()(const ustring& text) const { return StringLiteral(text, range); }
  Expr operator()(bool flag) const { return (*this)(flag ? 1 : 0); }
  template <class Number>
  Expr operator()(Number number) const {
    return NumberLiteral(nvf::NumberString(number), range);
  }
};

class ConcreteValueToMatrixVisitor : public ExprTransformVisitor {
public:
  using ExprTransformVisitor::operator();
  Expr operator()(const ConcreteValueExpr& expr) override {
    const nvf::UnitsExpr& unit = expr.value().unit();
    Expr data = expr.value().data().visit([&expr](const auto& array) { return literals(array, expr.range()); });
    if (unit.isOne()) return data;
    return UnitExpr(data, UnitLiteral(unit.text(), expr.range()), expr.range());
  }

private:
  template <class T>
  static Expr literals(const nvf::Array<T>& array, const nvf::Range& range) {
    const ToLiteral literal{range};
    if (array.size().isScalar()) return literal(array[0]);
    std::vector<MatrixExpr::Row> rows(array.size().m());
    for (std::size_t i = 0; i < rows.size(); ++i) {
      rows[i].reserve(array.size().n());
      for (std::size_t j = 0; j < array.size().n(); ++j) rows[i].push_back(literal(array.at(i, j)));
    }
    return MatrixExpr(rows, range);
  }
};

class MatrixToConcreteValueVisitor : public ExprTransformVisitor {
public:
  using ExprTransformVisitor::operator();
  Expr operator()(const MatrixExpr& matrix) override {
    const std::optional<nvf::Array<double>> numbers = arrayOf(matrix);
    if (!numbers) return ExprTransformVisitor::operator()(matrix);
    return ConcreteValueExpr(nvf::Value(nvf::ValueData(*numbers), nvf::UnitsExpr()), matrix.range());
  }

private:
  static std::optional<nvf::Array<double>> arrayOf(const MatrixExpr& matrix) {
    const std::vector<MatrixExpr::Row>& rows = matrix.rows();
    const std::size_t columns = rows.empty() ? 0 : rows.front().size();
    const auto fits = [columns](const MatrixExpr::Row& row) { return row.size() == columns; };
    if (!std::all_of(rows.begin(), rows.end(), fits)) return std::nullopt;
    std::vector<double> numbers(rows.size() * columns);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      for (std::size_t j = 0; j < columns; ++j) {
        const NumberLiteral* literal = rows[i][j].getIf<NumberLiteral>();
        if (literal == nullptr || literal->value().isImaginary()) return std::nullopt;
        numbers[j * rows.size() + i] = literal->value().number();
      }
    }
    return nvf::Array<double>(nvf::ArraySize(rows.size(), columns), std::move(numbers));
  }
};

} // namespace

Expr concrete_value_to_matrix(const Expr& expr) {
  ConcreteValueToMatrixVisitor visitor;
  return visitor.process(expr);
}

Expr matrix_to_concrete_value(const Expr& expr) {
  MatrixToConcreteValueVisitor visitor;
  return visitor.process(expr);
}

// ---- evaluation by the compiler ----

const nvf::CxIdPath& compiler_eval_name() {
  static const nvf::CxIdPath name{detail::fixedId("tessarin"), detail::fixedId("compilerEval")};
  return name;
}

Expr to_compiler_eval(const Expr& expr) {
  return make_variable(compiler_eval_name(), std::vector<Expr>{expr});
}

std::optional<Expr> compiler_eval(const Expr& expr) {
  const Variable* variable = expr.getIf<Variable>();
  if (variable == nullptr) return std::nullopt;
  const auto pair = to_pathtailpair(*variable);
  if (!pair || !(pair->first == compiler_eval_name()) || !pair->second) return std::nullopt;
  const Arguments& arguments = *pair->second;
  if (arguments.posArgs().size() != 1 || !arguments.namedArgs().empty()) return std::nullopt;
  const std::shared_ptr<const Expr>& argument = arguments.posArgs().front().expr();
  if (!argument) return std::nullopt;
  return *argument;
}

} // namespace tessarin::compiler::core
