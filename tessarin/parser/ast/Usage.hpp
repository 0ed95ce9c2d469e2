// Usage analysis: which names an expression touches.
//
// There is one walker, `visit_variables`, with a table of callbacks; the analyses are tables for it. It knows the
// scopes of `let`: a variable that names a declaration of an open `let` is a local, and no use of a variable of the
// model.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/ast/LetDeclNameStack.hpp"

#include <boost/unordered_set.hpp>

#include <functional>
#include <vector>

namespace tessarin::compiler::core {

/// What is walked besides the values that an expression is made of: a set of bits.
enum class VisitPredicateFlags : int {
  None = 0,
  Assertions = 1, ///< the predicates and actions of assertions; without this bit assertions are skipped
  Conditions = 2, ///< the conditions of `if` and `elseif`
  All = -1,
};
/// Both sets together.
constexpr VisitPredicateFlags operator|(VisitPredicateFlags a, VisitPredicateFlags b) noexcept {
  return static_cast<VisitPredicateFlags>(static_cast<int>(a) | static_cast<int>(b));
}

/// Lets a callback send the walker on into the subscripts and arguments of a reference, in the scope where the walker
/// is.
class TESSARIN_EXPORT VariableRecursion {
public:
  VariableRecursion() = default;
  VariableRecursion(const VariableRecursion&) = delete;
  VariableRecursion& operator=(const VariableRecursion&) = delete;
  virtual ~VariableRecursion();

  /// Walks the subscripts and arguments of the reference.
  /// @{
  virtual void operator()(const Variable& variable) = 0;
  virtual void operator()(const ValueRef& ref) = 0;
  virtual void operator()(const FullPathVariable& path) = 0;
  virtual void operator()(const RelativePathVariable& path) = 0;
  /// @}
};

/// What `visit_variables` calls for the kinds of expressions. Any of the functions may be empty.
///
/// The walker enters the subscripts of a reference only when the callback sends it on, through the recursion that it is
/// given. It calls the functions of all other kinds before it enters their parts, and enters these in any case.
struct VariableVisitFcns {
  /// Called for variables but locals of a `let`, with what sends the walker on into their subscripts.
  std::function<void(const Variable&, VariableRecursion&)> variable;

  /// Called for the references of the kind, with what sends the walker on into their subscripts.
  /// @{
  std::function<void(const FullPathVariable&, VariableRecursion&)> fullPathVariable;
  std::function<void(const RelativePathVariable&, VariableRecursion&)> relativePathVariable;
  std::function<void(const ValueRef&, VariableRecursion&)> valueRef;
  /// @}

  /// Called for the expressions of the kind, before their parts.
  /// @{
  std::function<void(const ObjectRef&)> objectRef;
  std::function<void(const UnitExpr&)> unitExpr;
  std::function<void(const OpExpr&)> opExpr;
  std::function<void(const Time&)> time;
  std::function<void(const CalvexFunctionCall&)> calvexFunctionCall;
  std::function<void(const TessarinFunctionCall&)> tessarinFunctionCall;
  std::function<void(const TessarinLocalFunctionCall&)> tessarinLocalFunctionCall;
  std::function<void(const NativeFunctionCall&)> nativeFunctionCall;
  /// @}
};

/// Walks the expression in its order and calls the functions. Of a local of a `let`, the subscripts are walked at once,
/// unless `variable` is empty. Of a `TransitionExpr` only the expression is walked. Passes on what the functions throw.
TESSARIN_EXPORT void visit_variables(const Expr& expr, const VariableVisitFcns& functions, VisitPredicateFlags flags);

/// What the analyses find, in no order.
/// @{
using VariableSet = boost::unordered_set<Variable>;
using ValueRefSet = boost::unordered_set<ValueRef>;
using FullPathVariableSet = boost::unordered_set<FullPathVariable>;
using IdSet = boost::unordered_set<nvf::CxId>;
/// @}

/// The variables, those in the subscripts of variables and full paths included. Two uses with different subscripts are
/// two variables.
TESSARIN_EXPORT VariableSet used_variables(const Expr& expr, VisitPredicateFlags flags);
/// The references to values, those in the subscripts of variables, full paths and such references included.
TESSARIN_EXPORT ValueRefSet used_valuerefs(const Expr& expr, VisitPredicateFlags flags);
/// The full paths, those in subscripts included. Assertions and conditions count.
TESSARIN_EXPORT FullPathVariableSet used_fpvs(const Expr& expr);
/// The first names of variables and of references to values and objects, those in subscripts included: `a.b(c)` uses
/// `a` and `c`. Assertions and conditions count.
TESSARIN_EXPORT IdSet used_ids(const Expr& expr);

/// Adds what `used_fpvs` finds to a set.
struct TESSARIN_EXPORT UsedFullPathVariables {
  /// Adds those of `expr` to `paths`.
  void operator()(const Expr& expr, FullPathVariableSet& paths) const;
};

/// Adds what `used_ids` finds to a set.
struct TESSARIN_EXPORT UsedIds {
  /// Adds those of `expr` to `ids`.
  void operator()(const Expr& expr, IdSet& ids) const;
};

/// Finds the declarations of one `let` that expressions use, directly or through other declarations of that `let`.
/// Assertions and conditions count.
class TESSARIN_EXPORT UsedLetDecls {
public:
  /// With the declarations of the `let`, in its order.
  explicit UsedLetDecls(std::vector<IdListValuePair> declarations);
  /// The declarations that this expression and those of former calls use, in the order in which they are declared.
  std::vector<IdListValuePair> operator()(const Expr& expr);

private:
  friend LetDeclNameStack::DeclStack used_let_decls(const Expr& expr, const LetDeclNameStack& stack);
  std::vector<IdListValuePair> use(const IdSet& names);

  std::vector<IdListValuePair> declarations_;
  LetDeclNameStack::Names names_;
  std::vector<bool> used_; // by index of the declaration
};

/// The declarations of each scope of the stack that the expression uses, from the outermost scope to the innermost.
/// Each scope is taken by itself: that a declaration of an inner scope uses one of an outer scope does not count.
TESSARIN_EXPORT LetDeclNameStack::DeclStack used_let_decls(const Expr& expr, const LetDeclNameStack& stack);

} // namespace tessarin::compiler::core
