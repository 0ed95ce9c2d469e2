// Rewriting with functions, and rewriting everything that a model or a function holds.
//
//   const Expr twice = rewrite(expr, [](const NumberLiteral& n) { return make::number(2 * n.value().number()); });
//
//   const Model plain = rewrite(model, [](const OpExpr& op) -> std::optional<Expr> {
//     if (op.opType() != OpExprType::Der) return std::nullopt;      // stays as it is
//     return make::call("d", {op.operandAt(0)});
//   });
//
// A rewriting is an `ExprTransformVisitor`; a function stands for one that calls it with each expression whose parts
// have been rewritten already. What stays as it was is shared with what came in. All functions may be called from any
// thread.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/parser/ast/ExprTransformVisitor.hpp"
#include "tessarin/parser/ast/Model.hpp"
#include "tessarin/parser/ast/TSNFunction.hpp"
#include "tessarin/parser/ast/Walk.hpp"

#include <concepts>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace tessarin::compiler::core {

/// Rewrites each expression that stands in no other one, in the order of the fields: `visitor.process` gives what takes
/// its place. A reference that the grammar has where no other expression may stand, as at the end of a branch, keeps
/// its names, and its subscripts are rewritten. What is not changed is shared. Throws what the visitor throws.
/// @{
TESSARIN_EXPORT Model rewrite(const Model& model, ExprTransformVisitor& visitor);
TESSARIN_EXPORT TSNFunction rewrite(const TSNFunction& function, ExprTransformVisitor& visitor);
TESSARIN_EXPORT DeclarativeSections rewrite(const DeclarativeSections& sections, ExprTransformVisitor& visitor);
/// @}
/// The same as `visitor.process(expr)`.
inline Expr rewrite(const Expr& expr, ExprTransformVisitor& visitor) {
  return visitor.process(expr);
}

/// A function that takes an expression, or by overloads expressions of several kinds, and gives an `Expr`, something
/// that is one, or an optional that is empty where the expression stays as it is.
template <class Function>
concept ExprFunction = !std::derived_from<std::remove_cvref_t<Function>, ExprTransformVisitor> &&
                       (std::invocable<Function&, detail::Exactly<Expr>>
#define TESSARIN_EXPR_KIND(name) || std::invocable<Function&, detail::Exactly<name>>
#include "tessarin/parser/ast/expr_kinds.def"
                       );

namespace detail {
/// Calls a function with the expressions that it takes, from the inside out.
template <class Function>
class FunctionRewriter final : public ExprTransformVisitor {
public:
  using ExprTransformVisitor::process;
  explicit FunctionRewriter(Function& function) noexcept : function_(function) {}
  Expr process(const Expr& expr) override {
    Expr rewritten = ExprTransformVisitor::process(expr);
    if constexpr (std::invocable<Function&, Exactly<Expr>>) {
      return resultOf(std::invoke(function_, std::as_const(rewritten)), rewritten);
    } else {
      return rewritten.visit([&](const auto& alternative) -> Expr {
        using Alternative = std::decay_t<decltype(alternative)>;
        if constexpr (std::invocable<Function&, Exactly<Alternative>>) {
          return resultOf(std::invoke(function_, alternative), rewritten);
        } else {
          return rewritten;
        }
      });
    }
  }

private:
  template <class Result>
  static Expr resultOf(Result&& result, const Expr& before) {
    if constexpr (nvf::detail::Optional<std::remove_cvref_t<Result>>) {
      return result ? Expr(*std::forward<Result>(result)) : before;
    } else {
      return Expr(std::forward<Result>(result));
    }
  }

  Function& function_;
};
} // namespace detail

/// What can be rewritten: expressions, and what holds them.
template <class T>
concept IsRewritable = requires(const T& value, ExprTransformVisitor& visitor) {
  { rewrite(value, visitor) } -> std::same_as<T>;
};

/// Rewrites with a function: each expression becomes what the function gives for it. It sees expressions behind their
/// parts; it is not told which names a `let` around them declares.
template <class T, ExprFunction Function> // the function first: only with one does the other question end
requires IsRewritable<T>
[[nodiscard]] T rewrite(const T& value, Function&& function) {
  detail::FunctionRewriter<std::remove_reference_t<Function>> visitor(function);
  return rewrite(value, static_cast<ExprTransformVisitor&>(visitor));
}

} // namespace tessarin::compiler::core
