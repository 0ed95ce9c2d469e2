// Subscripts and argument lists: what stands in parentheses behind a name.
#pragma once

#include "tessarin/parser/ast/Ident.hpp"

#include <iosfwd>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

class Expr;
class NamedArgumentName;
/// They break the recursion between expressions and their parts.
/// @{
using ExprHandle = nvf::Handle<Expr>;
using NamedArgumentNameHandle = nvf::Handle<NamedArgumentName>;
/// @}

/// One index of a subscript list: a lone colon, or an expression. It is written by hand because its fields depend on
/// its type: a colon has no expression and compares, hashes and digests without one.
class TESSARIN_EXPORT Subscript : public nvf::detail::OrderingOperators<Subscript> {
public:
  /// The two sorts; the numbers enter hashes and digests.
  enum class Type : int { Colon = 0, Expression = 1 };

  /// A colon at no place.
  Subscript() = default;
  Subscript(const Subscript&) = default;
  Subscript(Subscript&&) = default;
  /// Takes the value before the old one goes: a part of a subscript may be assigned to it.
  Subscript& operator=(Subscript other) noexcept {
    swap(*this, other);
    return *this;
  }
  ~Subscript() = default;
  /// A colon at a place: `type` is not checked, and there is no expression whatever it is.
  Subscript(Type type, const nvf::Location& location) : type_(type), location_(location) {}
  /// An expression at its own place.
  Subscript(const Expr& expr); // NOLINT(google-explicit-constructor): an expression is a subscript

  /// Which sort it is.
  [[nodiscard]] Type type() const noexcept { return type_; }
  /// Null where there is none, as for a colon.
  [[nodiscard]] const std::shared_ptr<const Expr>& expr() const noexcept { return expr_; }
  /// Where it stands; no part of the value.
  [[nodiscard]] const nvf::Location& location() const noexcept { return location_; }
  /// A copy that shares nothing with this one.
  [[nodiscard]] Subscript copy() const;
  /// ":" or the expression's text, at indent 0.
  [[nodiscard]] ustring string(ToStringContext context) const;

  friend void swap(Subscript& a, Subscript& b) noexcept {
    std::swap(a.type_, b.type_);
    a.expr_.swap(b.expr_);
    std::swap(a.location_, b.location_);
  }
  friend TESSARIN_EXPORT std::size_t hash_value(const Subscript& s);
  friend TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const Subscript& s);
  /// By type; where both have one, by expression, of which none is less than any.
  friend TESSARIN_EXPORT Ordering compare(const Subscript& a, const Subscript& b);
  friend TESSARIN_EXPORT bool operator==(const Subscript& a, const Subscript& b);
  friend bool equal_ignore_annotation(const Subscript& a, const Subscript& b) { return a == b; }
  /// Rebuilds the subscript: an expression is stripped and gives the location; a colon loses its location, intended.
  friend TESSARIN_EXPORT void strip_annotation_inplace(Subscript& s);
  friend TESSARIN_EXPORT void dump(nvf::DumpSink& sink, const Subscript& s);

private:
  Type type_ = Type::Colon;
  std::shared_ptr<const Expr> expr_;
  nvf::Location location_;
};

/// A parenthesised list of subscripts.
class TESSARIN_EXPORT ParenSubs : public nvf::TupleWrapper<ParenSubs*, std::vector<Subscript>, IgnoredRange> {
public:
  /// The subscripts in the order of the source. A default one is empty. The text has its parentheses.
  /// @{
  ParenSubs() = default;
  ParenSubs(std::vector<Subscript> subs, const nvf::Range& range) : TupleWrapper(std::move(subs), range) {}
  [[nodiscard]] const std::vector<Subscript>& subs() const noexcept { return get<0>(); }
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  /// @}
};

/// One step of a dotted path: a name, or a name with subscripts.
class TESSARIN_EXPORT IdParenSubs : public nvf::TupleWrapper<IdParenSubs*, Ident, std::optional<ParenSubs>> {
public:
  /// The name, and the subscripts where it has parentheses. A default one has the empty name.
  /// @{
  IdParenSubs() = default;
  IdParenSubs(const Ident& ident, const std::optional<ParenSubs>& subs) : TupleWrapper(ident, subs) {}
  [[nodiscard]] const Ident& ident() const noexcept { return get<0>(); }
  [[nodiscard]] const std::optional<ParenSubs>& subs() const noexcept { return get<1>(); }
  /// @}
};
/// The step as text, without the indent of the context.
TESSARIN_EXPORT ustring to_string(const IdParenSubs& step, const ToStringContext& context);

/// `name = value` or `name := value` in an argument list.
class TESSARIN_EXPORT NamedArgument
    : public nvf::TupleWrapper<NamedArgument*, NamedArgumentNameHandle, ExprHandle, bool> {
public:
  /// The name, the value, and which sign stands between them.
  /// @{
  NamedArgument();
  /// `isColonEquals` is true for `:=`.
  NamedArgument(const NamedArgumentName& name, const Expr& value, bool isColonEquals);
  [[nodiscard]] const NamedArgumentName& name() const noexcept;
  [[nodiscard]] const Expr& value() const noexcept;
  [[nodiscard]] bool isColonEquals() const noexcept { return get<2>(); }
  /// The place of the name.
  [[nodiscard]] nvf::Location location() const;
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  /// @}
};

/// A whole argument list: positional arguments, then named ones.
class TESSARIN_EXPORT Arguments
    : public nvf::TupleWrapper<Arguments*, std::vector<Subscript>, std::vector<NamedArgument>, IgnoredRange> {
public:
  /// The arguments of each sort in the order of the source. A default list is empty. The text has its parentheses.
  /// @{
  Arguments() = default;
  Arguments(std::vector<Subscript> positional, std::vector<NamedArgument> named, const nvf::Range& range)
      : TupleWrapper(std::move(positional), std::move(named), range) {}
  [[nodiscard]] const std::vector<Subscript>& posArgs() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<NamedArgument>& namedArgs() const noexcept { return get<1>(); }
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  /// @}
};
/// In the source, from the opening to the closing parenthesis; the same as `arguments.range()`.
TESSARIN_EXPORT nvf::Range range(const Arguments& arguments);
/// The same as `arguments.string(context)`.
TESSARIN_EXPORT ustring to_string(const Arguments& arguments, const ToStringContext& context);
/// Writes the default form in the local encoding.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const Arguments& arguments);

} // namespace tessarin::compiler::core

template <>
inline constexpr bool nvf::hashesByValue<tessarin::compiler::core::Subscript> = true;

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ParenSubs, "subs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::IdParenSubs, "ident", "subs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::NamedArgument, "name", "value", "isColonEquals");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Arguments, "positional", "named");
