// Copies of values with one part changed. Everything else is shared with the value that was given, which stays as it
// is.
//
// The place of a value is changed by its own `withRange`, or by the one here where it is one of several alternatives.
// Positions count from 0; where there is no such part, `std::out_of_range` is thrown. All functions may be called from
// any thread.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/parser/ast/Model.hpp"
#include "tessarin/parser/ast/TSNFunction.hpp"

#include <cstddef>
#include <vector>

namespace tessarin::compiler::core {

/// The expression at another place. A `TransitionExpr` and a `ModechartEqnExpr` have the place of what is in them,
/// which gets it.
TESSARIN_EXPORT Expr withRange(const Expr& expr, const nvf::Range& range);

/// With another operand, element, field, `elseif` branch, item or declaration.
/// @{
TESSARIN_EXPORT OpExpr withOperand(const OpExpr& op, std::size_t i, const Expr& operand);
TESSARIN_EXPORT MatrixExpr withElement(const MatrixExpr& matrix, std::size_t row, std::size_t column,
                                       const Expr& element);
TESSARIN_EXPORT FieldValueArrayExpr withPair(const FieldValueArrayExpr& array, std::size_t i,
                                             const IdentValuePair& pair);
TESSARIN_EXPORT IfExpr withBranch(const IfExpr& expr, std::size_t i, const ElseifBranch& branch);
TESSARIN_EXPORT EquationBlock withItem(const EquationBlock& block, std::size_t i, const EqnItem& item);
TESSARIN_EXPORT DeclarationBlock withDeclaration(const DeclarationBlock& block, std::size_t i,
                                                 const DeclarationItem& declaration);
/// @}

/// With another value behind the name.
/// @{
TESSARIN_EXPORT IdentValuePair withValue(const IdentValuePair& pair, const Expr& value);
TESSARIN_EXPORT IdListValuePair withValue(const IdListValuePair& pair, const Expr& value);
/// @}

/// With another argument list.
TESSARIN_EXPORT Variable withTail(const Variable& variable, const std::optional<Arguments>& tail);

/// With another list of blocks; the other blocks stay.
/// @{
TESSARIN_EXPORT SemanticSections withDeclarationBlocks(const SemanticSections& sections,
                                                       std::vector<DeclarationBlock> blocks);
TESSARIN_EXPORT SemanticSections withEquationBlocks(const SemanticSections& sections,
                                                    std::vector<EquationBlock> blocks);
TESSARIN_EXPORT DeclarativeSections withSections(const DeclarativeSections& sections,
                                                 const SemanticSections& semanticSections);
TESSARIN_EXPORT Model withSections(const Model& model, const DeclarativeSections& sections);
/// @}

/// With another name.
/// @{
TESSARIN_EXPORT Model withName(const Model& model, const Ident& name);
TESSARIN_EXPORT TSNFunction withName(const TSNFunction& function, const Ident& name);
/// @}

} // namespace tessarin::compiler::core
