// The `branches` block of a model: which through variable flows from where to where.
//
// The classes hold what they are given; what may stand at an end of a branch is not asked here.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <cstddef>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// An end of a branch: the implicit reference (0), a name of the source (1) or a reference to a value (2).
class TESSARIN_EXPORT ThroughLeaf : public nvf::TaggedUnion<ThroughLeaf, ImplicitReference, Variable, ValueRef> {
public:
  using TaggedUnion::TaggedUnion;
};

/// `i(k) : from -> to`.
class TESSARIN_EXPORT Through
    : public nvf::TupleWrapper<Through*, IdParenSubs, ThroughLeaf, ThroughLeaf, detail::IgnoreValue<nvf::Location>> {
public:
  /// The variable, the nodes that the branch goes from and to, and its place, which the builder leaves empty. Outside
  /// a line an end that is a name of the source gets the indent of the context; the variable gets none.
  /// @{
  Through(const IdParenSubs& lhs, const ThroughLeaf& from, const ThroughLeaf& to, const nvf::Location& location)
      : TupleWrapper(lhs, from, to, location) {}
  /// The branch variable.
  [[nodiscard]] const IdParenSubs& lhs() const noexcept { return get<0>(); }
  [[nodiscard]] const ThroughLeaf& from() const noexcept { return get<1>(); }
  [[nodiscard]] const ThroughLeaf& to() const noexcept { return get<2>(); }
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<3>(); }
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  /// @}
};

/// A `branches` block.
class TESSARIN_EXPORT BranchBlock
    : public nvf::TupleWrapper<BranchBlock*, std::vector<Through>, detail::IgnoreValue<nvf::Location>> {
public:
  /// The branches in the order of the source.
  /// @{
  BranchBlock(std::vector<Through> throughs, const nvf::Location& location)
      : TupleWrapper(std::move(throughs), location) {}
  [[nodiscard]] const std::vector<Through>& throughs() const noexcept { return get<0>(); }
  /// The place of the keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<1>(); }
  [[nodiscard]] std::size_t numOfThroughs() const noexcept { return throughs().size(); }
  [[nodiscard]] bool isEmpty() const noexcept { return throughs().empty(); }
  /// The `i`-th, from 0. Throws `std::out_of_range` where there is none.
  [[nodiscard]] const Through& through(std::size_t i) const { return throughs().at(i); }
  /// Without a line end behind the last line.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ThroughLeaf);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Through, "lhs", "from", "to");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::BranchBlock, "throughs");
