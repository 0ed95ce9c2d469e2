// The expression: a closed variant of 24 kinds. Parsing produces it, rewriting maps it to itself, and printing gives a
// text that parses back to an equal tree.
#pragma once

#include "tessarin/parser/ast/Compound.hpp"
#include "tessarin/parser/ast/FunctionCall.hpp"

#include <iosfwd>

namespace tessarin::compiler::core {

/// The order of the kinds is fixed: their numbers enter orderings, hashes and digests. The default is a default `Time`.
class TESSARIN_EXPORT Expr
    : public nvf::TaggedUnion<Expr, Time, EndIndex, NumberLiteral, StringLiteral, Variable, FullPathVariable,
                              RelativePathVariable, UnitExpr, ValueExpr, MatrixExpr, FieldValueArrayExpr, IfExpr,
                              OpExpr, LetExpr, ConcreteValueExpr, MRVIndex, TransitionExpr, ModechartEqnExpr,
                              NativeFunctionCall, CalvexFunctionCall, TessarinFunctionCall, TessarinLocalFunctionCall,
                              ValueRef, ObjectRef> {
public:
  using TaggedUnion::TaggedUnion;
};

/// One of the kinds of an expression.
template <class A>
concept ExprAlternative = nvf::AlternativeOf<A, Expr>;

/// The range of the alternative.
TESSARIN_EXPORT nvf::Range expr_range(const Expr& expr);
/// The begin of the range.
TESSARIN_EXPORT nvf::Location expr_location(const Expr& expr);
/// The line of the location, from 0.
TESSARIN_EXPORT std::size_t expr_line(const Expr& expr);
/// The precedence of the operator; 0 for what is none.
TESSARIN_EXPORT std::size_t expr_precedence(const Expr& expr);

/// In the form that the context asks for.
TESSARIN_EXPORT ustring to_string(const Expr& expr, const ToStringContext& context);
/// In the default form, which parses back to an equal tree.
TESSARIN_EXPORT ustring to_string(const Expr& expr);
/// As the user wrote it, where that is known.
TESSARIN_EXPORT ustring to_user_string(const Expr& expr);
/// The default form in the local encoding.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const Expr& expr);

/// The same for a kind of an expression, whatever else it converts to.
/// @{
template <ExprAlternative A>
ustring to_string(const A& expr, const ToStringContext& context) {
  return to_string(Expr(expr), context);
}
template <ExprAlternative A>
requires(!HasTextForm<A>) std::ostream& operator<<(std::ostream& stream, const A& expr) {
  return stream << Expr(expr);
}
/// @}

/// The name of an argument as an expression.
TESSARIN_EXPORT Expr to_expr(const NamedArgumentName& name);

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Expr);
