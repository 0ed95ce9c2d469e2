#include "tessarin/parser/setup/SimpleSetupStmt.hpp"

#include <ostream>
#include <string_view>
#include <utility>

namespace tessarin::compiler::core {

SimpleSetupIfStmt::SimpleSetupIfStmt(const Expr& predicate, SimpleSetupStmt whenTrue, SimpleSetupStmt whenFalse)
    : TupleWrapper(predicate, SimpleSetupStmtHandle(std::move(whenTrue)), SimpleSetupStmtHandle(std::move(whenFalse))) {
}

const SimpleSetupStmt& SimpleSetupIfStmt::branch(bool value) const noexcept {
  return value ? get<1>().get() : get<2>().get();
}

// ---- stripping ----

SimpleSetupStmt strip(const SimpleSetupStmt& stmt) {
  SimpleSetupStmt result = stmt;
  strip_annotation_inplace(result);
  return result;
}

SimpleSetupIfStmt strip(const SimpleSetupIfStmt& stmt) {
  SimpleSetupIfStmt result = stmt;
  strip_annotation_inplace(result);
  return result;
}

nvf::Expressions<SimpleSetupStmt> strip(const nvf::Expressions<SimpleSetupStmt>& stmts) {
  nvf::Expressions<SimpleSetupStmt> result = stmts;
  nvf::fields::strip(result);
  return result;
}

// ---- the text form ----

namespace detail {

namespace {

std::ostream& blanks(std::ostream& stream, std::size_t indent) {
  for (std::size_t i = 0; i < indent; ++i) stream << "  ";
  return stream;
}

/// The text of the message stands between the quotes as it is: a quote in it is not doubled, intended.
template <class Stmt>
void out(std::ostream& stream, std::string_view word, const SimpleSetupDiagnostic<Stmt>& stmt, std::size_t indent) {
  blanks(stream, indent) << word << "('" << stmt.id() << "', '" << nvf::to_string(stmt.message()) << "');" << std::endl;
}

/// `if` or `elseif` with what stands under it.
void out(std::ostream& stream, std::string_view word, const SimpleSetupIfStmt& stmt, std::size_t indent) {
  blanks(stream, indent) << word << ' ' << stmt.predicate() << std::endl;
  core::out(stream, stmt.branch(true), indent + 1);
}

bool isEmptyList(const SimpleSetupStmt& stmt) {
  const auto* list = stmt.getIf<nvf::Expressions<SimpleSetupStmt>>();
  return list != nullptr && list->empty();
}

} // namespace

} // namespace detail

void out(std::ostream& stream, const SimpleSetupStmt& stmt, std::size_t indent) {
  stmt.visit([&](const auto& alternative) { out(stream, alternative, indent); });
}

void out(std::ostream& stream, const nvf::Expressions<SimpleSetupStmt>& stmts, std::size_t indent) {
  for (const SimpleSetupStmt& stmt : stmts) out(stream, stmt, indent);
}

void out(std::ostream& stream, const SimpleSetupAsgnStmt& stmt, std::size_t indent) {
  detail::blanks(stream, indent) << nvf::to_string(stmt.lhs().string()) << " = " << stmt.rhs() << ';' << std::endl;
}

void out(std::ostream& stream, const SimpleSetupErrorStmt& stmt, std::size_t indent) {
  detail::out(stream, "error", stmt, indent);
}

void out(std::ostream& stream, const SimpleSetupWarningStmt& stmt, std::size_t indent) {
  detail::out(stream, "warning", stmt, indent);
}

void out(std::ostream& stream, const SimpleSetupIfStmt& stmt, std::size_t indent) {
  detail::out(stream, "if", stmt, indent);
  const SimpleSetupStmt* rest = &stmt.branch(false);
  while (const auto* link = rest->getIf<SimpleSetupIfStmt>()) {
    detail::out(stream, "elseif", *link, indent);
    rest = &link->branch(false);
  }
  if (!detail::isEmptyList(*rest)) {
    detail::blanks(stream, indent) << "else" << std::endl;
    out(stream, *rest, indent + 1);
  }
  detail::blanks(stream, indent) << "end" << std::endl;
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::SimpleSetupAsgnStmt);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::SimpleSetupErrorStmt);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::SimpleSetupWarningStmt);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::SimpleSetupIfStmt);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::SimpleSetupStmt);
