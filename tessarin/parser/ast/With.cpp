#include "tessarin/parser/ast/With.hpp"

#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <utility>

namespace tessarin::compiler::core {

namespace {

/// The fields of a copy, for changing them.
template <std::size_t I, class T>
auto& fieldOf(T& copy) {
  return std::get<I>(nvf::detail::OwnFields::of(copy));
}

template <std::size_t I, class T, class Value>
T withField(T copy, Value&& value) {
  fieldOf<I>(copy) = std::forward<Value>(value);
  return copy;
}

/// A sequence that shares its elements is made anew.
template <class T>
nvf::Expressions<T> withElementAt(const nvf::Expressions<T>& sequence, std::size_t i, const T& element) {
  std::vector<T> elements(sequence.begin(), sequence.end());
  elements.at(i) = element;
  return nvf::Expressions<T>(std::move(elements));
}

} // namespace

Expr withRange(const Expr& expr, const nvf::Range& range) {
  return expr.visit([&range](const auto& alternative) -> Expr {
    using T = std::decay_t<decltype(alternative)>;
    if constexpr (std::same_as<T, TransitionExpr>) {
      return TransitionExpr(withRange(alternative.expr(), range), alternative.preCondition());
    } else if constexpr (std::same_as<T, ModechartEqnExpr>) {
      return ModechartEqnExpr(alternative.expr().withRange(range));
    } else {
      return alternative.withRange(range);
    }
  });
}

OpExpr withOperand(const OpExpr& op, std::size_t i, const Expr& operand) {
  OpExpr copy = op;
  fieldOf<1>(copy).at(i) = operand;
  return copy;
}
MatrixExpr withElement(const MatrixExpr& matrix, std::size_t row, std::size_t column, const Expr& element) {
  MatrixExpr copy = matrix;
  fieldOf<0>(copy).at(row).at(column) = element;
  return copy;
}
FieldValueArrayExpr withPair(const FieldValueArrayExpr& array, std::size_t i, const IdentValuePair& pair) {
  return withField<0>(array, withElementAt(array.pairList(), i, pair));
}
IfExpr withBranch(const IfExpr& expr, std::size_t i, const ElseifBranch& branch) {
  IfExpr copy = expr;
  fieldOf<3>(copy).at(i) = branch;
  return copy;
}
EquationBlock withItem(const EquationBlock& block, std::size_t i, const EqnItem& item) {
  EquationBlock copy = block;
  fieldOf<0>(copy).at(i) = item;
  return copy;
}
DeclarationBlock withDeclaration(const DeclarationBlock& block, std::size_t i, const DeclarationItem& declaration) {
  return withField<2>(block, withElementAt(block.declarations(), i, declaration));
}

IdentValuePair withValue(const IdentValuePair& pair, const Expr& value) {
  return withField<1>(pair, ExprHandle(value));
}
IdListValuePair withValue(const IdListValuePair& pair, const Expr& value) {
  return withField<1>(pair, ExprHandle(value));
}
Variable withTail(const Variable& variable, const std::optional<Arguments>& tail) {
  return withField<2>(variable, tail);
}

SemanticSections withDeclarationBlocks(const SemanticSections& sections, std::vector<DeclarationBlock> blocks) {
  return withField<0>(sections, std::move(blocks));
}
SemanticSections withEquationBlocks(const SemanticSections& sections, std::vector<EquationBlock> blocks) {
  return withField<3>(sections, std::move(blocks));
}
DeclarativeSections withSections(const DeclarativeSections& sections, const SemanticSections& semanticSections) {
  return withField<0>(sections, semanticSections);
}
Model withSections(const Model& model, const DeclarativeSections& sections) {
  return withField<3>(model, sections);
}

Model withName(const Model& model, const Ident& name) {
  return withField<1>(model, name);
}
TSNFunction withName(const TSNFunction& function, const Ident& name) {
  return withField<0>(function, name);
}

} // namespace tessarin::compiler::core
