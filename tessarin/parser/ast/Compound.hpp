// The expression kinds that contain expressions, but for references.
#pragma once

#include "tessarin/parser/ast/Literal.hpp"
#include "tessarin/parser/ast/Reference.hpp"
#include "tessarin/parser/lex/Token.hpp"
#include "tessarin/parser/parse/NonTerminal.hpp"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

class EqnItem;
/// Breaks the recursion between items and what holds them.
using EqnItemHandle = nvf::Handle<EqnItem>;

/// The keyword `time`. All are equal.
class TESSARIN_EXPORT Time : public nvf::TupleWrapper<Time*, IgnoredRange> {
public:
  /// A default one has an empty range.
  /// @{
  Time() = default;
  explicit Time(const Token& token) : TupleWrapper(IgnoredRange(token.range())) {}
  /// @}
};

/// The `end` of an index. All are equal.
class TESSARIN_EXPORT EndIndex : public nvf::TupleWrapper<EndIndex*, IgnoredRange> {
public:
  /// A default one has an empty range.
  /// @{
  EndIndex() = default;
  explicit EndIndex(const Token& token) : TupleWrapper(IgnoredRange(token.range())) {}
  /// @}
};

/// `{expr, 'unit'}`.
class TESSARIN_EXPORT UnitExpr : public nvf::TupleWrapper<UnitExpr*, ExprHandle, UnitLiteral, IgnoredRange> {
public:
  /// The expression, and the unit as it is written.
  /// @{
  UnitExpr(const Expr& expr, const UnitLiteral& unit, const nvf::Range& range) : TupleWrapper(expr, unit, range) {}
  [[nodiscard]] const Expr& expr() const noexcept { return get<0>().get(); }
  [[nodiscard]] const UnitLiteral& unit() const noexcept { return get<1>(); }
  /// @}
};

/// `value(expr, 'unit')` or `value(expr, 'unit', 'conversion')`.
class TESSARIN_EXPORT ValueExpr
    : public nvf::TupleWrapper<ValueExpr*, ExprHandle, UnitLiteral, std::optional<StringLiteral>, IgnoredRange> {
public:
  /// The expression, the unit that its value is given in, and how it is converted.
  /// @{
  ValueExpr(const Expr& expr, const UnitLiteral& unit, const nvf::Range& range)
      : TupleWrapper(expr, unit, std::nullopt, range) {}
  ValueExpr(const Expr& expr, const UnitLiteral& unit, const StringLiteral& conversion, const nvf::Range& range)
      : TupleWrapper(expr, unit, conversion, range) {}
  [[nodiscard]] const Expr& expr() const noexcept { return get<0>().get(); }
  [[nodiscard]] const UnitLiteral& unit() const noexcept { return get<1>(); }
  /// The third argument, such as `'relative'`.
  [[nodiscard]] const std::optional<StringLiteral>& conversion() const noexcept { return get<2>(); }
  /// @}
};

/// `[a, b; c, d]`. Rows may differ in length and may be empty; no rows and one empty row are two values.
class TESSARIN_EXPORT MatrixExpr : public nvf::TupleWrapper<MatrixExpr*, std::vector<std::vector<Expr>>, IgnoredRange> {
public:
  /// The elements of a row.
  using Row = std::vector<Expr>;

  /// The rows with their elements, in the order of the source.
  /// @{
  MatrixExpr(std::vector<Row> rows, const nvf::Range& range) : TupleWrapper(std::move(rows), range) {}
  [[nodiscard]] const std::vector<Row>& rows() const noexcept { return get<0>(); }
  [[nodiscard]] std::size_t numOfRows() const noexcept;
  /// The row and the element at a position from 0; throws `std::out_of_range` where there is none.
  [[nodiscard]] const Row& row(std::size_t row) const;
  [[nodiscard]] const Expr& element(std::size_t row, std::size_t column) const;
  /// @}
};

/// `name = value`. The default has the ident "x" and the default expression.
class TESSARIN_EXPORT IdentValuePair
    : public nvf::TupleWrapper<IdentValuePair*, Ident, ExprHandle, detail::IgnoreValue<nvf::Location>> {
public:
  /// `x` with the default expression.
  IdentValuePair();
  /// `rightLocation` is the place of the pair's last token.
  IdentValuePair(const Ident& ident, const Expr& value, const nvf::Location& rightLocation);
  /// The name, what it is set to, and the place of the last token, which is no part of the value.
  /// @{
  [[nodiscard]] const Ident& ident() const noexcept { return get<0>(); }
  [[nodiscard]] const Expr& value() const noexcept { return get<1>().get(); }
  [[nodiscard]] const nvf::Location& rightLocation() const noexcept { return get<2>(); }
  /// @}

  /// The place of the ident.
  [[nodiscard]] nvf::Location location() const { return ident().location(); }
  /// `name = value`, both in the default form.
  [[nodiscard]] ustring string() const;
};

/// `{name = value, …}`.
class TESSARIN_EXPORT FieldValueArrayExpr
    : public nvf::TupleWrapper<FieldValueArrayExpr*, nvf::Expressions<IdentValuePair>, IgnoredRange> {
public:
  /// The pairs in the order of the source; a name may occur twice.
  /// @{
  FieldValueArrayExpr(const nvf::Expressions<IdentValuePair>& pairs, const nvf::Range& range)
      : TupleWrapper(pairs, range) {}
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& pairList() const noexcept { return get<0>(); }
  [[nodiscard]] std::size_t numPairs() const noexcept { return pairList().size(); }
  /// The `i`-th pair, from 0; `i` is not checked.
  [[nodiscard]] const IdentValuePair& pair(std::size_t i) const { return pairList()[i]; }
  /// @}
};

/// The operators, in the order of operators.def.
enum class OpExprType : int {
#define TESSARIN_OPERATOR(name, image, arity, precedence) name,
#include "tessarin/parser/ast/operators.def"
};

/// How the operator is written; its number where it is none.
TESSARIN_EXPORT ustring dump_text(OpExprType type);

/// An operator with its operands.
class TESSARIN_EXPORT OpExpr : public nvf::TupleWrapper<OpExpr*, OpExprType, std::vector<Expr>, IgnoredRange> {
public:
  /// The number of operands is not checked against the operator.
  /// @{
  OpExpr(OpExprType type, const Expr& operand, const nvf::Range& range);
  OpExpr(OpExprType type, const Expr& left, const Expr& right, const nvf::Range& range);
  OpExpr(OpExprType type, const Expr& first, const Expr& second, const Expr& third, const nvf::Range& range);
  OpExpr(OpExprType type, std::vector<Expr> operands, const nvf::Range& range);
  /// @}

  /// Which operator it is.
  [[nodiscard]] OpExprType opType() const noexcept { return get<0>(); }
  /// A lower number binds tighter. What is no operator is fatal, see `nvf::terminate`.
  [[nodiscard]] std::size_t precedence() const;
  /// The number of operands that the operator takes. What is no operator is fatal.
  [[nodiscard]] std::size_t arity() const;
  /// The operands that there are, from left to right, and their number.
  /// @{
  [[nodiscard]] const std::vector<Expr>& operands() const noexcept { return get<1>(); }
  [[nodiscard]] std::size_t numOfOperands() const noexcept;
  /// @}

  /// The `i`-th operand; `i` is not checked.
  [[nodiscard]] const Expr& operandAt(std::size_t i) const noexcept;

  /// How the operator is written. What is no operator, such as -1, is fatal.
  static ustring typeString(OpExprType type);
  /// The operator whose node in a parse tree has this code; -1 where there is none.
  static OpExprType operatorType(NonTerminal::Value code);
};

/// Selects one of the several results of a call. `rvIndex` is not checked against `numRvs`.
class TESSARIN_EXPORT MRVIndex
    : public nvf::TupleWrapper<MRVIndex*, ExprHandle, std::size_t, std::size_t, IgnoredRange> {
public:
  /// The call and the result that is meant.
  /// @{
  MRVIndex(const Expr& expr, const std::size_t& rvIndex, const std::size_t& numRvs, const nvf::Range& range)
      : TupleWrapper(expr, rvIndex, numRvs, range) {}
  [[nodiscard]] const Expr& expr() const noexcept { return get<0>().get(); }
  /// Which result it is.
  [[nodiscard]] std::size_t rvIndex() const noexcept { return get<1>(); }
  /// How many results the call gives.
  [[nodiscard]] std::size_t numRvs() const noexcept { return get<2>(); }
  /// "internal_mrv_index__".
  static const nvf::CxId& ctor();
  /// @}
};

/// An expression of a modechart with the condition under which it holds. Its range is that of the expression.
class TESSARIN_EXPORT TransitionExpr
    : public nvf::TupleWrapper<TransitionExpr, ExprHandle, ExprHandle, detail::BesideValue<nvf::Range>> {
public:
  /// The expression with its condition.
  /// @{
  TransitionExpr(const Expr& expr, const Expr& preCondition);
  [[nodiscard]] const Expr& expr() const noexcept { return get<0>().get(); }
  /// What must hold for the expression to hold.
  [[nodiscard]] const Expr& preCondition() const noexcept { return get<1>().get(); }
  /// "internal_transition_expr__".
  static const nvf::CxId& ctor();
  /// @}
};

/// `x = e` or `[a, ~, b] = e`: a declaration of a `let`, of a function or of a block.
class TESSARIN_EXPORT IdListValuePair
    : public nvf::TupleWrapper<IdListValuePair*, nvf::Expressions<OptIdent>, ExprHandle, bool> {
public:
  /// The names, among them placeholders, and the one value that they share. A default one has no name. The text stands
  /// behind the indent of the context, also where the context is for text inside a line.
  /// @{
  IdListValuePair();
  /// `isColonEquals` is true where the declaration was written with `:=`.
  IdListValuePair(const nvf::Expressions<OptIdent>& ids, const Expr& value, bool isColonEquals);
  [[nodiscard]] const nvf::Expressions<OptIdent>& ids() const noexcept { return get<0>(); }
  [[nodiscard]] const Expr& value() const noexcept { return get<1>().get(); }
  [[nodiscard]] bool isColonEquals() const noexcept { return get<2>(); }
  /// The place of the first id; a default one where there is none.
  [[nodiscard]] nvf::Location location() const;
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  /// @}
};
/// The number of ids that are no placeholders.
TESSARIN_EXPORT std::size_t number_of_effective_ids(const IdListValuePair& pair);

class EqnAssertion;

/// `elseif condition, items`.
class TESSARIN_EXPORT ElseifBranch : public nvf::TupleWrapper<ElseifBranch*, ExprHandle, std::vector<EqnItemHandle>> {
public:
  /// The condition, and the items by their number, from 0, in the order of the source. A default one has the default
  /// expression and no items.
  /// @{
  ElseifBranch();
  ElseifBranch(const Expr& condition, const std::vector<EqnItem>& items);
  [[nodiscard]] const Expr& condition() const noexcept { return get<0>().get(); }
  [[nodiscard]] const std::vector<EqnItemHandle>& eqnItems() const noexcept { return get<1>(); }
  [[nodiscard]] std::size_t numOfEqnItems() const noexcept { return eqnItems().size(); }
  /// The `i`-th item, from 0; throws `std::out_of_range` where there is none.
  [[nodiscard]] const EqnItem& eqnItem(std::size_t i) const;
  /// How many of the items are expressions.
  [[nodiscard]] std::size_t numOfEqnExprs() const;
  /// How many of the items are assertions.
  [[nodiscard]] std::size_t numOfEqnAssertions() const;
  /// Copies of the items that are expressions, in their order.
  [[nodiscard]] std::vector<Expr> eqnExprs() const;
  /// Copies of the items that are assertions, in their order.
  [[nodiscard]] std::vector<EqnAssertion> eqnAssertions() const;
  /// @}
};

/// `if condition, items; elseif …; else items; end`. The fields have the else branch before the elseif branches.
class TESSARIN_EXPORT IfExpr
    : public nvf::TupleWrapper<IfExpr*, ExprHandle, std::vector<EqnItemHandle>, std::vector<EqnItemHandle>,
                               std::vector<ElseifBranch>, IgnoredRange> {
public:
  /// The default expression as the condition, and no items.
  IfExpr();
  /// `elseItems` stand before `elseifBranches`, as the fields do.
  IfExpr(const Expr& condition, const std::vector<EqnItem>& ifItems, const std::vector<EqnItem>& elseItems,
         const std::vector<ElseifBranch>& elseifBranches, const nvf::Range& range);

  /// The condition and what holds under it, otherwise, or under the conditions of the branches; each list in the order
  /// of the source.
  /// @{
  [[nodiscard]] const Expr& condition() const noexcept { return get<0>().get(); }
  [[nodiscard]] const std::vector<EqnItemHandle>& ifEqnItems() const noexcept { return get<1>(); }
  [[nodiscard]] const std::vector<EqnItemHandle>& elseEqnItems() const noexcept { return get<2>(); }
  [[nodiscard]] const std::vector<ElseifBranch>& elseifBranches() const noexcept { return get<3>(); }
  /// @}

  /// The items and branches by number, from 0. Throws `std::out_of_range` where there is none.
  /// @{
  [[nodiscard]] std::size_t numOfIfEqnItems() const noexcept { return ifEqnItems().size(); }
  [[nodiscard]] const EqnItem& ifEqnItem(std::size_t i) const;
  [[nodiscard]] std::size_t numOfElseEqnItems() const noexcept { return elseEqnItems().size(); }
  [[nodiscard]] const EqnItem& elseEqnItem(std::size_t i) const;
  [[nodiscard]] std::size_t numOfElseifBranches() const noexcept { return elseifBranches().size(); }
  [[nodiscard]] const ElseifBranch& elseifBranch(std::size_t i) const { return elseifBranches().at(i); }
  /// @}

  /// The items that are expressions and those that are assertions, counted and copied, each in their order.
  /// @{
  [[nodiscard]] std::size_t numOfIfEqnExprs() const;
  [[nodiscard]] std::size_t numOfIfEqnAssertions() const;
  [[nodiscard]] std::size_t numOfElseEqnExprs() const;
  [[nodiscard]] std::size_t numOfElseEqnAssertions() const;
  [[nodiscard]] std::vector<Expr> ifEqnExprs() const;
  [[nodiscard]] std::vector<EqnAssertion> ifEqnAssertions() const;
  [[nodiscard]] std::vector<Expr> elseEqnExprs() const;
  [[nodiscard]] std::vector<EqnAssertion> elseEqnAssertions() const;
  /// @}
};

/// Wraps the `if` that a modechart has become. Its range is that of the `if`.
class TESSARIN_EXPORT ModechartEqnExpr : public nvf::TupleWrapper<ModechartEqnExpr, IfExpr> {
public:
  /// The `if`; that it came from a modechart is not checked.
  /// @{
  explicit ModechartEqnExpr(const IfExpr& expr) : TupleWrapper(expr) {}
  [[nodiscard]] const IfExpr& expr() const noexcept { return get<0>(); }
  [[nodiscard]] nvf::Range range() const { return expr().range(); }
  /// "internal_modechart_eqn_expr__".
  static const nvf::CxId& ctor();
  /// @}
};

/// `let declarations in items end`.
class TESSARIN_EXPORT LetExpr
    : public nvf::TupleWrapper<LetExpr*, std::vector<IdListValuePair>, std::vector<EqnItemHandle>, IgnoredRange> {
public:
  /// Nothing is checked: a name may be declared twice.
  LetExpr(const std::vector<IdListValuePair>& declarations, const std::vector<EqnItem>& items, const nvf::Range& range);

  /// The declarations, and the items that see them; by number, from 0. Throws `std::out_of_range` where there is none.
  /// @{
  [[nodiscard]] const std::vector<IdListValuePair>& declarations() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<EqnItemHandle>& eqnItemList() const noexcept { return get<1>(); }
  [[nodiscard]] std::size_t numOfDeclarations() const noexcept { return declarations().size(); }
  [[nodiscard]] const IdListValuePair& declarationAt(std::size_t i) const { return declarations().at(i); }
  [[nodiscard]] std::size_t numOfEqnItems() const noexcept { return eqnItemList().size(); }
  [[nodiscard]] const EqnItem& eqnItem(std::size_t i) const;
  /// @}

  /// The items that are expressions and those that are assertions, counted and copied, each in their order.
  /// @{
  [[nodiscard]] std::size_t numOfEqnExprs() const;
  [[nodiscard]] std::size_t numOfAssertions() const;
  [[nodiscard]] std::vector<Expr> eqnExprs() const;
  [[nodiscard]] std::vector<EqnAssertion> eqnAssertions() const;
  /// @}
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Time);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::EndIndex);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::UnitExpr, "expr", "unit");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ValueExpr, "expr", "unit", "conversion");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::MatrixExpr, "rows");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::IdentValuePair, "ident", "value");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::FieldValueArrayExpr, "pairs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::OpExpr, "operator", "operands");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::MRVIndex, "expr", "rvIndex", "numRvs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::TransitionExpr, "expr", "preCondition");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::IdListValuePair, "ids", "value", "isColonEquals");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ElseifBranch, "condition", "eqnItems");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::IfExpr, "condition", "ifEqnItems", "elseEqnItems",
                            "elseifBranches");
namespace nvf {
/// Hashes as the `if` that it wraps: intended.
template <>
std::size_t
Operations<tessarin::compiler::core::ModechartEqnExpr>::hash(const tessarin::compiler::core::ModechartEqnExpr& expr);
} // namespace nvf
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ModechartEqnExpr, "expr");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::LetExpr, "declarations", "eqnItems");

#include "tessarin/parser/ast/Expr.hpp" // completes what the handles point to
