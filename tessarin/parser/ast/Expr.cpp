#include "tessarin/parser/ast/Expr.hpp"

#include "tessarin/foundation/terminate.hpp"
#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/ast/fixed_id.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace tessarin::compiler::core {

// ---- ranges and precedence ----

nvf::Range expr_range(const Expr& expr) {
  return expr.visit([](const auto& alternative) { return alternative.range(); });
}
nvf::Location expr_location(const Expr& expr) {
  return expr_range(expr).begin();
}
std::size_t expr_line(const Expr& expr) {
  return expr_location(expr).lineColumn().line();
}

std::size_t expr_precedence(const Expr& expr) {
  const OpExpr* op = expr.getIf<OpExpr>();
  return op == nullptr ? 0 : op->precedence();
}

// ---- matrices and pairs ----

std::size_t MatrixExpr::numOfRows() const noexcept {
  return rows().size();
}
const MatrixExpr::Row& MatrixExpr::row(std::size_t row) const {
  return rows().at(row);
}
const Expr& MatrixExpr::element(std::size_t row, std::size_t column) const {
  return this->row(row).at(column);
}

IdentValuePair::IdentValuePair() : IdentValuePair(Ident(detail::fixedId("x"), nvf::Range()), Expr(), nvf::Location()) {}
IdentValuePair::IdentValuePair(const Ident& ident, const Expr& value, const nvf::Location& rightLocation)
    : TupleWrapper(ident, value, rightLocation) {}

// ---- operators ----

namespace {

struct OperatorInfo {
  const char16_t* image;
  std::size_t arity;
  std::size_t precedence;
  NonTerminal::Value code; // its node in a parse tree
};

constexpr auto operators = std::to_array<OperatorInfo>({
#define TESSARIN_OPERATOR(name, image, arity, precedence) {image, arity, precedence, NonTerminal::name},
#include "tessarin/parser/ast/operators.def"
});

constexpr auto lastCode = std::max_element(operators.begin(), operators.end(),
                                           [](const auto& a, const auto& b) { return a.code < b.code; }) -> code;

/// The operator of each kind of node up to the last one that is one's, or -1.
constexpr auto typesByCode = [] {
  std::array<std::int8_t, static_cast<std::size_t>(lastCode) + 1> types{};
  for (std::int8_t& type : types) type = -1;
  for (std::size_t i = 0; i < operators.size(); ++i)
    types[static_cast<std::size_t>(operators[i].code)] = static_cast<std::int8_t>(i);
  return types;
}();

const OperatorInfo& info(OpExprType type) {
  const auto number = static_cast<std::size_t>(type);
  if (number >= operators.size()) {
    nvf::terminate("Operator type not recognized.", "parser/ast/Expr", __LINE__, "OpExpr");
  }
  return operators[number];
}

} // namespace

OpExpr::OpExpr(OpExprType type, const Expr& operand, const nvf::Range& range)
    : OpExpr(type, std::vector<Expr>{operand}, range) {}
OpExpr::OpExpr(OpExprType type, const Expr& left, const Expr& right, const nvf::Range& range)
    : OpExpr(type, std::vector<Expr>{left, right}, range) {}
OpExpr::OpExpr(OpExprType type, const Expr& first, const Expr& second, const Expr& third, const nvf::Range& range)
    : OpExpr(type, std::vector<Expr>{first, second, third}, range) {}
OpExpr::OpExpr(OpExprType type, std::vector<Expr> operands, const nvf::Range& range)
    : TupleWrapper(type, std::move(operands), range) {}

std::size_t OpExpr::precedence() const {
  return info(opType()).precedence;
}
std::size_t OpExpr::arity() const {
  return info(opType()).arity;
}
std::size_t OpExpr::numOfOperands() const noexcept {
  return operands().size();
}
const Expr& OpExpr::operandAt(std::size_t i) const noexcept {
  return operands()[i];
}

ustring OpExpr::typeString(OpExprType type) {
  return info(type).image;
}

ustring dump_text(OpExprType type) {
  const auto number = static_cast<std::size_t>(type);
  return number < operators.size() ? operators[number].image : nvf::widen(std::to_string(static_cast<int>(type)));
}

OpExprType OpExpr::operatorType(NonTerminal::Value code) {
  const auto number = static_cast<std::size_t>(code);
  return static_cast<OpExprType>(number < typesByCode.size() ? typesByCode[number] : -1);
}

// ---- kinds without syntax ----

TransitionExpr::TransitionExpr(const Expr& expr, const Expr& preCondition)
    : TupleWrapper(expr, preCondition, expr_range(expr)) {}

TESSARIN_FIXED_ID(MRVIndex::ctor, "internal_mrv_index__")
TESSARIN_FIXED_ID(TransitionExpr::ctor, "internal_transition_expr__")
TESSARIN_FIXED_ID(ModechartEqnExpr::ctor, "internal_modechart_eqn_expr__")
TESSARIN_FIXED_ID(NativeFunctionCall::ctor, "internal_native_function_call__")
TESSARIN_FIXED_ID(CalvexFunctionCall::ctor, "internal_calvex_function_call__")
TESSARIN_FIXED_ID(TessarinFunctionCall::ctor, "internal_tessarin_function_call__")
TESSARIN_FIXED_ID(TessarinLocalFunctionCall::ctor, "internal_tessarin_local_function_call__")

// ---- function calls ----

template <class Derived, class... Extra>
std::optional<Arguments> FunctionCallBase<Derived, Extra...>::arguments() const {
  if (noArguments()) return std::nullopt;
  const std::vector<Subscript> positional(positionalArguments().begin(), positionalArguments().end());
  std::vector<NamedArgument> named;
  named.reserve(namedArguments().size());
  for (const auto& [name, value] : namedArguments()) named.emplace_back(Variable(name, nvf::Range()), value, false);
  return Arguments(positional, named, nvf::Range());
}

template class FunctionCallBase<NativeFunctionCall>;
template class FunctionCallBase<CalvexFunctionCall, bool, bool, bool>;
template class FunctionCallBase<TessarinFunctionCall>;
template class FunctionCallBase<TessarinLocalFunctionCall, nvf::CxId>;

NativeFunctionCall::NativeFunctionCall(const nvf::CxIdPath& path, const nvf::Range& range)
    : FunctionCallBase(path, std::vector<Expr>(), NamedArguments(), true, range) {}
NativeFunctionCall::NativeFunctionCall(const nvf::CxIdPath& path, const std::vector<Expr>& positional,
                                       const NamedArguments& named, const nvf::Range& range)
    : FunctionCallBase(path, positional, named, false, range) {}

CalvexFunctionCall::CalvexFunctionCall(const nvf::CxIdPath& path, bool isEnum, bool dottedEnum, bool evalCompileTime,
                                       const nvf::Range& range)
    : FunctionCallBase(path, std::vector<Expr>(), NamedArguments(), true, isEnum, dottedEnum, evalCompileTime, range) {}
CalvexFunctionCall::CalvexFunctionCall(const nvf::CxIdPath& path, const std::vector<Expr>& positional, bool isEnum,
                                       bool dottedEnum, bool evalCompileTime, const nvf::Range& range)
    : FunctionCallBase(path, positional, NamedArguments(), false, isEnum, dottedEnum, evalCompileTime, range) {}

TessarinFunctionCall::TessarinFunctionCall(const nvf::CxIdPath& path, const nvf::Range& range)
    : FunctionCallBase(path, std::vector<Expr>(), NamedArguments(), true, range) {}
TessarinFunctionCall::TessarinFunctionCall(const nvf::CxIdPath& path, const std::vector<Expr>& positional,
                                           const nvf::Range& range)
    : FunctionCallBase(path, positional, NamedArguments(), false, range) {}

TessarinLocalFunctionCall::TessarinLocalFunctionCall(const nvf::CxIdPath& path, const nvf::CxId& fcnId,
                                                     const nvf::Range& range)
    : FunctionCallBase(path, std::vector<Expr>(), NamedArguments(), true, fcnId, range) {}
TessarinLocalFunctionCall::TessarinLocalFunctionCall(const nvf::CxIdPath& path, const nvf::CxId& fcnId,
                                                     const std::vector<Expr>& positional, const nvf::Range& range)
    : FunctionCallBase(path, positional, NamedArguments(), false, fcnId, range) {}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::NumberLiteral);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::StringLiteral);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::UnitLiteral);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Time);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::EndIndex);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::UnitExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ValueExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::MatrixExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::IdentValuePair);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::FieldValueArrayExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::OpExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::MRVIndex);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::TransitionExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::NativeFunctionCall);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::CalvexFunctionCall);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::TessarinFunctionCall);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::TessarinLocalFunctionCall);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Expr);
