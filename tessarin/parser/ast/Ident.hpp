// Names in the source: identifiers with their places, placeholders, and dotted names.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/node.hpp"
#include "tessarin/parser/ast/TextForm.hpp"
#include "tessarin/parser/lex/Token.hpp"

#include <iosfwd>
#include <string>

namespace tessarin::compiler::core {

namespace detail {
using nvf::detail::BesideValue;
using nvf::detail::Comparable;
using nvf::detail::IgnoreValue;
} // namespace detail

class ToStringContext;

/// The range of a node: carried by it, and never part of its value.
using IgnoredRange = detail::IgnoreValue<nvf::Range>;

/// One identifier with its place. The default has the empty id.
class TESSARIN_EXPORT Ident : public nvf::TupleWrapper<Ident*, nvf::CxId, IgnoredRange> {
public:
  Ident() = default;
  /// The token's text and range. Throws what `nvf::detail::CxIdCheck` throws where the text is no identifier.
  explicit Ident(const Token& token);
  /// An identifier at a place, which is no part of the value.
  Ident(const nvf::CxId& id, const nvf::Range& range) : TupleWrapper(id, range) {}

  /// The identifier without its place.
  [[nodiscard]] const nvf::CxId& id() const noexcept { return get<0>(); }
  /// The identifier as text; it depends on no context.
  /// @{
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  [[nodiscard]] ustring string() const;
  /// @}
};

/// The `~` that stands for a result without a name.
class TESSARIN_EXPORT Tilde : public nvf::TupleWrapper<Tilde*, IgnoredRange> {
public:
  Tilde() = default;
  /// With its place, which is no part of the value.
  explicit Tilde(const nvf::Range& range) : TupleWrapper(IgnoredRange(range)) {}
  /// "~", like `string()`.
  static const ustring& ctor();
  /// "~".
  [[nodiscard]] ustring string() const;
};

/// An identifier (0) or a placeholder (1) in a list of results.
class TESSARIN_EXPORT OptIdent : public nvf::TaggedUnion<OptIdent, Ident, Tilde> {
public:
  using TaggedUnion::TaggedUnion;
};
/// The identifier, or "~".
TESSARIN_EXPORT ustring to_string(const OptIdent& ident);
/// Where it stands.
TESSARIN_EXPORT nvf::Location location(const OptIdent& ident);
/// A `Tilde` where the token's text is "~", otherwise an `Ident`.
TESSARIN_EXPORT OptIdent to_opt_ident(const Token& token);

/// The `*` that stands for an end of a branch or an argument of a connection.
class TESSARIN_EXPORT ImplicitReference : public nvf::TupleWrapper<ImplicitReference*, IgnoredRange> {
public:
  ImplicitReference() = default;
  /// With its place, which is no part of the value.
  explicit ImplicitReference(const nvf::Range& range) : TupleWrapper(IgnoredRange(range)) {}
  /// "*".
  [[nodiscard]] ustring string() const;
};

/// A dotted name, as of a base class or an import.
class TESSARIN_EXPORT Name : public nvf::TupleWrapper<Name, nvf::Expressions<Ident>> {
public:
  Name() = default;
  /// Of these identifiers, each with its place.
  explicit Name(const nvf::Expressions<Ident>& ids) : TupleWrapper(ids) {}
  /// The path's identifiers, each with an empty range.
  explicit Name(const nvf::BasicCxIdPath<0>& path);
  /// The identifiers of a dotted text, each with an empty range. Throws where the text is none.
  /// @{
  explicit Name(const std::string& dotted);
  explicit Name(const char* dotted);
  /// @}

  /// The identifiers from left to right. A default name has none.
  [[nodiscard]] const nvf::Expressions<Ident>& ids() const noexcept { return get<0>(); }
  /// The identifiers joined by ".".
  [[nodiscard]] ustring string() const;
  /// Throws where there is no identifier.
  [[nodiscard]] nvf::CxIdPath path() const;
  /// The place of the first identifier; a default one where there is none.
  [[nodiscard]] nvf::Location location() const;
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Ident, "id");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Tilde);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::OptIdent);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ImplicitReference);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Name, "ids");
