// Conversions between the forms of references, and between values and matrices.
//
// The source has one form of reference, `Variable`; resolved forms are classes of their own. What cannot be converted
// gives an empty result, unless something else is said.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// A resolved path into a model.
using UniquePath = nvf::Expressions1<UniquePathElement>;
/// A dotted path as the source writes it.
using IdSubsPath = nvf::Expressions<IdParenSubs>;

// ---- unique paths ----

/// The path as a variable with empty ranges, such as `base.member(3)`: the indices are written as they are stored.
TESSARIN_EXPORT Expr to_expr(const UniquePath& path);
/// The inverse. Throws `LocatedError<InvalidFullPathVariableSyntax>` at the expression where it is no such variable.
TESSARIN_EXPORT UniquePath to_unique_path(const Expr& expr);
/// The paths in the single row of a matrix, none for a matrix without rows, or the one path that the expression is.
/// Throws like `to_unique_path`, also for a matrix of several rows.
TESSARIN_EXPORT std::vector<UniquePath> to_unique_paths(const Expr& expr);

/// The value of a number literal that is a whole number and fits; nothing for any other expression, imaginary numbers
/// included. Digits are read exactly, however many there are; `3.0` and `1e3` are whole numbers too.
TESSARIN_EXPORT std::optional<std::size_t> to_whole_number(const Expr& expr);

// ---- references ----

/// The path with constant indices. Each subscript must be a `ConcreteValueExpr`.
TESSARIN_EXPORT std::optional<nvf::Expressions<IdValueIndices>> to_idvalueindicespath(const IdSubsPath& path);
/// The reference to a value, without an original variable. The subscripts of the leading path must be constants, those
/// behind the last name need not be; there must be no named argument.
TESSARIN_EXPORT std::optional<ValueRef> to_valueref(const Variable& variable);
/// The reference to an object, which keeps the variable as its original. All subscripts must be constants; there must
/// be no named argument.
TESSARIN_EXPORT std::optional<ObjectRef> to_objectref(const Variable& variable);
/// The names, and the argument list behind the last one. No other name may have subscripts.
TESSARIN_EXPORT std::optional<std::pair<nvf::CxIdPath, std::optional<Arguments>>>
to_pathtailpair(const Variable& variable);

/// The arguments of a call.
struct FunctionCallArguments {
  std::vector<Expr> positional;    ///< In the order of the source.
  std::map<nvf::CxId, Expr> named; ///< By name.
};
/// No argument may be a colon, and the names must be plain. Of two named arguments of one name the first stands.
TESSARIN_EXPORT std::optional<FunctionCallArguments> to_functioncall_args(const Arguments& arguments);
/// The call that the variable is. Only its last name may have arguments, and these as `to_functioncall_args` wants
/// them.
TESSARIN_EXPORT std::optional<NativeFunctionCall> to_nativefunctioncall(const Variable& variable);
/// The inverse. The range of the call becomes that of the variable and of its argument list.
TESSARIN_EXPORT Variable to_variable(const NativeFunctionCall& call);

// ---- paths of names ----

/// The variable of these names. The names have empty ranges.
TESSARIN_EXPORT Variable cxidpath_to_variable(const nvf::CxIdPath& path, const nvf::Range& range);
/// The names; subscripts and arguments are dropped. Throws `nvf::IdPathTooShort` where the only name is the empty one.
TESSARIN_EXPORT nvf::CxIdPath variable_to_cxidpath(const Variable& variable);
/// The names with empty ranges as steps without subscripts.
TESSARIN_EXPORT IdSubsPath cxidpath_to_idsubspath(const nvf::CxIdPath& path);
/// The variable of these steps: the last one gives its name and its arguments. Throws `std::logic_error` for an empty
/// path.
TESSARIN_EXPORT Variable idsubspath_to_variable(const IdSubsPath& path, const nvf::Range& range = nvf::Range());
/// The variable of these names, which have empty ranges, with an argument list.
TESSARIN_EXPORT Variable make_variable(const nvf::CxIdPath& path, const std::optional<Arguments>& arguments,
                                       const nvf::Range& range = nvf::Range());
/// The same with positional arguments; their list has the range of the variable.
TESSARIN_EXPORT Variable make_variable(const nvf::CxIdPath& path, const std::vector<Expr>& positional,
                                       const nvf::Range& range = nvf::Range());
/// The subscripts as positional arguments.
TESSARIN_EXPORT Arguments parensubs_to_arguments(const ParenSubs& subs);

// ---- values ----

/// Replaces each concrete value by literals: an array of one element by the element, any other by a matrix, and a value
/// with a unit other than 1 by a `UnitExpr` around these. Infinity is written as the number "inf" and what is not a
/// number as "nan"; a negative element is one number with its sign; true and false are 1 and 0. An array without rows
/// loses the number of its columns.
TESSARIN_EXPORT Expr concrete_value_to_matrix(const Expr& expr);
/// Replaces each matrix of number literals, with rows of one length, by the concrete value of its doubles, with the
/// unit 1. A matrix with other elements stays, imaginary numbers and signs before a number included; what is inside it
/// is converted. Inverse to `concrete_value_to_matrix` for arrays of doubles with the unit 1 that are not one element.
TESSARIN_EXPORT Expr matrix_to_concrete_value(const Expr& expr);

// ---- evaluation by the compiler ----

/// `tessarin.compilerEval`.
TESSARIN_EXPORT const nvf::CxIdPath& compiler_eval_name();
/// `tessarin.compilerEval(expr)`, with empty ranges.
TESSARIN_EXPORT Expr to_compiler_eval(const Expr& expr);
/// The inverse: the one argument of such a call, or nothing for any other expression.
TESSARIN_EXPORT std::optional<Expr> compiler_eval(const Expr& expr);

} // namespace tessarin::compiler::core
