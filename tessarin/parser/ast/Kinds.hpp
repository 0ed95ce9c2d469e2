// The kinds of expressions and their names.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/parser/ast/Expr.hpp"

#include <cstddef>
#include <iosfwd>
#include <string_view>

namespace tessarin::compiler::core {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow" // the enumerators are named as the classes, which GCC minds for aliases
/// The kinds of expressions, each with the name of its class; the number is `Expr::id()`. The table is expr_kinds.def.
enum class ExprKind : std::size_t {
#define TESSARIN_EXPR_KIND(name) name,
#include "tessarin/parser/ast/expr_kinds.def"
};
#pragma GCC diagnostic pop

/// The kind of an expression.
inline ExprKind kind(const Expr& expr) noexcept {
  return static_cast<ExprKind>(expr.id());
}

/// The name of a kind, such as "OpExpr"; empty for what is no kind. It lives as long as the process.
TESSARIN_EXPORT std::string_view kindName(ExprKind kind) noexcept;
/// The name of the kind of an expression.
TESSARIN_EXPORT std::string_view kindName(const Expr& expr) noexcept;
/// The name of an operator, such as "Add"; empty for what is no operator. How it is written is
/// `OpExpr::typeString`.
TESSARIN_EXPORT std::string_view kindName(OpExprType type) noexcept;

/// Writes the name of the kind.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, ExprKind kind);
/// Writes the name of the operator.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, OpExprType type);

/// Whether a value that is one of several alternatives holds an `Alternative`: `is<OpExpr>(expr)`.
template <class Alternative, nvf::IsTaggedUnion Union>
[[nodiscard]] bool is(const Union& value) noexcept {
  return value.template getIf<Alternative>() != nullptr;
}

/// The operator `type` that the expression is, or null: `if (const OpExpr* der = getOp(expr, OpExprType::Der))`.
[[nodiscard]] inline const OpExpr* getOp(const Expr& expr, OpExprType type) noexcept {
  const auto* op = expr.getIf<OpExpr>();
  return op != nullptr && op->opType() == type ? op : nullptr;
}

} // namespace tessarin::compiler::core
