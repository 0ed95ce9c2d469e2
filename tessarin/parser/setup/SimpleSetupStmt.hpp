// A setup function as a value: assignments, calls of `error` and `warning`, `if` statements, and lists of these.
//
// The text of a setup function is parsed by the grammar of all statements, and SetupConversion.hpp takes from it what a
// setup function may hold. An `elseif` is an `if` in the false branch of the one before, so that a chain of them nests
// as deep as it is long.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <cstddef>
#include <iosfwd>

namespace tessarin::compiler::core {

class SimpleSetupStmt;
/// Breaks the recursion between statements and their parts.
using SimpleSetupStmtHandle = nvf::Handle<SimpleSetupStmt>;

/// `a.b = value;`.
class TESSARIN_EXPORT SimpleSetupAsgnStmt : public nvf::TupleWrapper<SimpleSetupAsgnStmt*, Name, Expr> {
public:
  /// Assigns the value of `rhs` to the path `lhs`.
  SimpleSetupAsgnStmt(Name lhs, Expr rhs) : TupleWrapper(std::move(lhs), std::move(rhs)) {}
  /// The path that is assigned to.
  [[nodiscard]] const Name& lhs() const noexcept { return get<0>(); }
  /// What is assigned.
  [[nodiscard]] const Expr& rhs() const noexcept { return get<1>(); }
};

namespace detail {

/// What `error` and `warning` have in common. The range is that of the call.
template <class Stmt>
class SimpleSetupDiagnostic : public nvf::TupleWrapper<Stmt*, nvf::MessageId, ustring, IgnoredRange> {
  using Base = nvf::TupleWrapper<Stmt*, nvf::MessageId, ustring, IgnoredRange>;

public:
  SimpleSetupDiagnostic(const nvf::MessageId& id, const ustring& message, const nvf::Range& range)
      : Base(id, message, range) {}
  /// The identifier of the diagnostic; the empty one where it has none.
  [[nodiscard]] const nvf::MessageId& id() const noexcept { return this->template get<0>(); }
  /// The text, without quotes.
  [[nodiscard]] const ustring& message() const noexcept { return this->template get<1>(); }
};

} // namespace detail

/// `error('id', 'message');`.
class TESSARIN_EXPORT SimpleSetupErrorStmt : public detail::SimpleSetupDiagnostic<SimpleSetupErrorStmt> {
public:
  using SimpleSetupDiagnostic::SimpleSetupDiagnostic;
};

/// `warning('id', 'message');`.
class TESSARIN_EXPORT SimpleSetupWarningStmt : public detail::SimpleSetupDiagnostic<SimpleSetupWarningStmt> {
public:
  using SimpleSetupDiagnostic::SimpleSetupDiagnostic;
};

/// `if predicate … else … end`. A branch without statements is the empty list.
class TESSARIN_EXPORT SimpleSetupIfStmt
    : public nvf::TupleWrapper<SimpleSetupIfStmt*, Expr, SimpleSetupStmtHandle, SimpleSetupStmtHandle> {
public:
  /// Takes the statements of both branches.
  SimpleSetupIfStmt(const Expr& predicate, SimpleSetupStmt whenTrue, SimpleSetupStmt whenFalse);
  /// What decides between the branches.
  [[nodiscard]] const Expr& predicate() const noexcept { return get<0>(); }
  /// What is done where the predicate has this value.
  [[nodiscard]] const SimpleSetupStmt& branch(bool value) const noexcept;
};

/// A list of statements (0), an assignment (1), an error (2), a warning (3) or an `if` (4). The numbers enter
/// orderings, hashes and digests. The default is the empty list.
class TESSARIN_EXPORT SimpleSetupStmt
    : public nvf::TaggedUnion<SimpleSetupStmt, nvf::Expressions<SimpleSetupStmt>, SimpleSetupAsgnStmt,
                              SimpleSetupErrorStmt, SimpleSetupWarningStmt, SimpleSetupIfStmt> {
public:
  using TaggedUnion::TaggedUnion;
};

/// A copy whose expressions share nothing with the original, as `strip_annotation_inplace` leaves them.
/// @{
TESSARIN_EXPORT SimpleSetupStmt strip(const SimpleSetupStmt& stmt);
TESSARIN_EXPORT SimpleSetupIfStmt strip(const SimpleSetupIfStmt& stmt);
TESSARIN_EXPORT nvf::Expressions<SimpleSetupStmt> strip(const nvf::Expressions<SimpleSetupStmt>& stmts);
/// @}

/// Writes the statement in the local encoding, each of its lines behind `indent` times two blanks and followed by a
/// flush. An empty list writes nothing.
/// @{
TESSARIN_EXPORT void out(std::ostream& stream, const SimpleSetupStmt& stmt, std::size_t indent);
TESSARIN_EXPORT void out(std::ostream& stream, const nvf::Expressions<SimpleSetupStmt>& stmts, std::size_t indent);
TESSARIN_EXPORT void out(std::ostream& stream, const SimpleSetupAsgnStmt& stmt, std::size_t indent);
TESSARIN_EXPORT void out(std::ostream& stream, const SimpleSetupErrorStmt& stmt, std::size_t indent);
TESSARIN_EXPORT void out(std::ostream& stream, const SimpleSetupWarningStmt& stmt, std::size_t indent);
TESSARIN_EXPORT void out(std::ostream& stream, const SimpleSetupIfStmt& stmt, std::size_t indent);
/// @}

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::SimpleSetupAsgnStmt, "lhs", "rhs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::SimpleSetupErrorStmt, "id", "message");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::SimpleSetupWarningStmt, "id", "message");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::SimpleSetupIfStmt, "predicate", "whenTrue", "whenFalse");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::SimpleSetupStmt);
