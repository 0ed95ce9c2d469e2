// The `annotations` block of a model.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <cstddef>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// `[a, b] : name = value, name = value`: attributes of members.
class TESSARIN_EXPORT MemberAnnotation
    : public nvf::TupleWrapper<MemberAnnotation, nvf::Expressions<Ident>, nvf::Expressions<IdentValuePair>> {
public:
  /// The members, and the attributes that each of them gets, both in the order of the source.
  /// @{
  MemberAnnotation(const nvf::Expressions<Ident>& ids, const nvf::Expressions<IdentValuePair>& attributes)
      : TupleWrapper(ids, attributes) {}
  [[nodiscard]] const nvf::Expressions<Ident>& ids() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& attributes() const noexcept { return get<1>(); }
  /// One line without a line end; `step` is not used.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// An `annotations` block. Annotations of the class and of its members are kept apart: the order between them is lost.
class TESSARIN_EXPORT AnnotationsBlock
    : public nvf::TupleWrapper<AnnotationsBlock, std::vector<IdentValuePair>, std::vector<MemberAnnotation>,
                               detail::IgnoreValue<nvf::Location>> {
public:
  /// The annotations of each sort in the order of the source.
  /// @{
  AnnotationsBlock(std::vector<IdentValuePair> classAnnotations, std::vector<MemberAnnotation> annotations,
                   const nvf::Location& location)
      : TupleWrapper(std::move(classAnnotations), std::move(annotations), location) {}
  [[nodiscard]] const std::vector<IdentValuePair>& classAnnotations() const noexcept { return get<0>(); }
  /// Those of members.
  [[nodiscard]] const std::vector<MemberAnnotation>& annotations() const noexcept { return get<1>(); }
  /// The place of the keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<2>(); }
  /// Without a line end behind the last line.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::MemberAnnotation, "ids", "attributes");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::AnnotationsBlock, "classAnnotations", "annotations");
