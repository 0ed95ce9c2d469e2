// The `connections` block of a model: which ports are joined.
//
// The classes hold what they are given; what may be connected is not asked here.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <cstddef>
#include <iosfwd>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// The first argument of `connect`: a whole expression (0), unlike the others, or the implicit reference (1).
class TESSARIN_EXPORT ConnectionFirstArg : public nvf::TaggedUnion<ConnectionFirstArg, Expr, ImplicitReference> {
public:
  using TaggedUnion::TaggedUnion;
};
/// Where the argument stands; the line counts from 0.
/// @{
TESSARIN_EXPORT nvf::Range connectionFirstArg_range(const ConnectionFirstArg& argument);
TESSARIN_EXPORT nvf::Location connectionFirstArg_location(const ConnectionFirstArg& argument);
TESSARIN_EXPORT std::size_t connectionFirstArg_line(const ConnectionFirstArg& argument);
/// @}
/// The argument as text. Outside a line the implicit reference gets the indent of the context, and an expression what
/// `to_string` of an `Expr` gives it.
TESSARIN_EXPORT ustring to_string(const ConnectionFirstArg& argument, const ToStringContext& context);
/// Writes the default form in the local encoding.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const ConnectionFirstArg& argument);

/// A further argument of `connect`: the implicit reference (0), a name of the source (1), or a reference to a value (2)
/// or to an object (3).
class TESSARIN_EXPORT ConnectionArg
    : public nvf::TaggedUnion<ConnectionArg, ImplicitReference, Variable, ValueRef, ObjectRef> {
public:
  using TaggedUnion::TaggedUnion;
};
/// Where the argument stands.
/// @{
TESSARIN_EXPORT nvf::Range connection_arg_range(const ConnectionArg& argument);
TESSARIN_EXPORT nvf::Location connection_arg_location(const ConnectionArg& argument);
/// @}
/// The argument as text. Outside a line the implicit reference gets the indent of the context, and an expression what
/// `to_string` of an `Expr` gives it.
TESSARIN_EXPORT ustring to_string(const ConnectionArg& argument, const ToStringContext& context);
/// Writes the default form in the local encoding.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const ConnectionArg& argument);

/// `connect(a, b, c)`.
class TESSARIN_EXPORT Connection : public nvf::TupleWrapper<Connection*, ConnectionFirstArg, std::vector<ConnectionArg>,
                                                            detail::IgnoreValue<nvf::Location>> {
public:
  /// `location` is the place of the keyword.
  Connection(const ConnectionFirstArg& firstArg, std::vector<ConnectionArg> remainingArguments,
             const nvf::Location& location)
      : TupleWrapper(firstArg, std::move(remainingArguments), location) {}

  /// The arguments in the order of the source. The text has no end of a statement; the indent of the context stands
  /// before each argument that takes one, and not before `connect`.
  /// @{
  Connection(const Expr& firstArg, std::vector<ConnectionArg> remainingArguments, const nvf::Location& location)
      : Connection(ConnectionFirstArg(firstArg), std::move(remainingArguments), location) {}
  [[nodiscard]] const ConnectionFirstArg& firstArg() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<ConnectionArg>& remainingArguments() const noexcept { return get<1>(); }
  /// The place of the keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<2>(); }
  /// The first argument counts.
  [[nodiscard]] std::size_t numOfArguments() const noexcept { return remainingArguments().size() + 1; }
  /// The `i`-th of the remaining arguments, from 1. Throws `std::out_of_range` where there is none, also for 0: the
  /// first argument is another type.
  [[nodiscard]] const ConnectionArg& argument(std::size_t i) const { return remainingArguments().at(i - 1); }
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  /// @}
};

/// A `connections` block.
class TESSARIN_EXPORT ConnectionBlock
    : public nvf::TupleWrapper<ConnectionBlock*, std::vector<Connection>, detail::IgnoreValue<nvf::Location>> {
public:
  /// The connections in the order of the source.
  /// @{
  ConnectionBlock(std::vector<Connection> connections, const nvf::Location& location)
      : TupleWrapper(std::move(connections), location) {}
  [[nodiscard]] const std::vector<Connection>& connections() const noexcept { return get<0>(); }
  /// The place of the keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<1>(); }
  [[nodiscard]] std::size_t numOfConnections() const noexcept { return connections().size(); }
  [[nodiscard]] bool isEmpty() const noexcept { return connections().empty(); }
  /// The `i`-th, from 0. Throws `std::out_of_range` where there is none.
  [[nodiscard]] const Connection& connection(std::size_t i) const { return connections().at(i); }
  /// Without a line end behind the last line.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ConnectionFirstArg);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ConnectionArg);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Connection, "firstArg", "remainingArguments");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ConnectionBlock, "connections");
