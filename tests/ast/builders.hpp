// Trees built by hand, for tests that want to see them in the code. Everything has an empty range unless one is given.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarin::test {

namespace core = tessarin::compiler::core;
using core::Expr;
using core::OpExprType;

/// The first unit of a line, from 0: a range that can be told from others.
inline nvf::Range onLine(unsigned long line) {
  return {nvf::Location({}, nvf::LineColumn(line, 0)), nvf::Location({}, nvf::LineColumn(line, 1))};
}

inline nvf::CxId id(std::string_view text) {
  return nvf::detail::CxIdCheck()(text.data(), text.size());
}
inline nvf::CxIdPath idPath(std::string_view dotted) {
  return nvf::CxIdPath(dotted);
}
inline core::Ident ident(std::string_view text) {
  return core::Ident(id(text), nvf::Range());
}

// ---- literals ----

inline Expr number(std::string_view text, const nvf::Range& range = {}) {
  return core::NumberLiteral(nvf::detail::NumberStringCheck()(text.data(), text.size()), range);
}
inline Expr string(const nvf::ustring& text) {
  return core::StringLiteral(text, nvf::Range());
}
inline core::UnitLiteral unitText(std::string_view text) {
  return core::UnitLiteral(nvf::detail::CheckExprString()(text.data(), text.size()), nvf::Range());
}
inline Expr withUnit(const Expr& expr, std::string_view unit) {
  return core::UnitExpr(expr, unitText(unit), nvf::Range());
}
/// A concrete value of doubles, in index order.
inline core::ConcreteValueExpr constant(const nvf::ArraySize& size, const std::vector<double>& elements) {
  return {nvf::Value(nvf::Array<double>(size, elements), nvf::UnitsExpr()), nvf::Range()};
}
inline core::ConcreteValueExpr constant(double number) {
  return constant(nvf::ArraySize::scalar(), {number});
}

// ---- references ----

using Subscripts = std::vector<core::Subscript>;
using NamedValues = std::vector<std::pair<std::string, Expr>>;

inline core::Subscript colon() {
  return core::Subscript();
}
inline core::ParenSubs parenSubs(const Subscripts& subs) {
  return {subs, nvf::Range()};
}
inline core::IdParenSubs step(std::string_view name) {
  return {ident(name), std::nullopt};
}
inline core::IdParenSubs step(std::string_view name, const Subscripts& subs) {
  return {ident(name), parenSubs(subs)};
}

/// The steps of a dotted name, all without subscripts.
inline std::vector<core::IdParenSubs> steps(std::string_view dotted) {
  std::vector<core::IdParenSubs> result;
  for (const nvf::CxId& name : nvf::BasicCxIdPath<0>(dotted)) {
    result.emplace_back(core::Ident(name, nvf::Range()), std::nullopt);
  }
  return result;
}

inline core::Arguments arguments(const Subscripts& positional, const NamedValues& named = {}) {
  std::vector<core::NamedArgument> namedArguments;
  for (const auto& [name, value] : named) {
    namedArguments.emplace_back(core::Variable(id(name), nvf::Range()), value, false);
  }
  return {positional, namedArguments, nvf::Range()};
}

/// `path.name`, with an argument list or without one.
inline core::Variable variable(const std::vector<core::IdParenSubs>& path, std::string_view name,
                               const std::optional<core::Arguments>& tail = std::nullopt,
                               const nvf::Range& range = {}) {
  return {ident(name), nvf::Expressions<core::IdParenSubs>(path), tail, range};
}
/// A dotted name, with an argument list or without one.
inline core::Variable variable(std::string_view dotted, const std::optional<core::Arguments>& tail = std::nullopt,
                               const nvf::Range& range = {}) {
  const std::size_t dot = dotted.rfind('.');
  if (dot == std::string_view::npos) return variable(std::vector<core::IdParenSubs>(), dotted, tail, range);
  return variable(steps(dotted.substr(0, dot)), dotted.substr(dot + 1), tail, range);
}
inline Expr name(std::string_view dotted, const nvf::Range& range = {}) {
  return variable(dotted, std::nullopt, range);
}
/// `dotted(positional, named)`.
inline Expr call(std::string_view dotted, const Subscripts& positional, const NamedValues& named = {}) {
  return variable(dotted, arguments(positional, named));
}

/// `internal_full_path__` of the path of one member.
inline Expr fullPath(std::size_t member, const Subscripts& subs = {}) {
  const core::FullPathVariable::Path path{core::UniquePathElement(core::MemberPathElement(member))};
  const std::optional<core::ParenSubs> parens = subs.empty() ? std::nullopt : std::optional(parenSubs(subs));
  return core::FullPathVariable(path, parens, std::nullopt, nvf::Range());
}
inline Expr relativePath(std::size_t depth, std::string_view name, const Subscripts& subs = {}) {
  const std::optional<core::ParenSubs> parens = subs.empty() ? std::nullopt : std::optional(parenSubs(subs));
  return core::RelativePathVariable(nvf::Positive<std::size_t>(depth), id(name), parens, nvf::Range());
}
inline nvf::Expressions<core::IdValueIndices> constantPath(std::initializer_list<std::string_view> names) {
  std::vector<core::IdValueIndices> path;
  for (const std::string_view name : names) path.emplace_back(ident(name), std::nullopt);
  return nvf::Expressions<core::IdValueIndices>(path);
}
inline core::ValueRef valueRef(std::initializer_list<std::string_view> path, std::string_view name,
                               const std::optional<core::ValueRefTail>& tail = std::nullopt) {
  return {ident(name), constantPath(path), tail, std::nullopt, nvf::Range()};
}
inline core::ObjectRef objectRef(std::initializer_list<std::string_view> path) {
  return {nvf::Expressions1<core::IdValueIndices>(constantPath(path)), std::nullopt, nvf::Range()};
}

// ---- compound expressions ----

template <class... Operands>
Expr op(OpExprType type, const Operands&... operands) {
  return core::OpExpr(type, std::vector<Expr>{operands...}, nvf::Range());
}
inline Expr matrix(const std::vector<core::MatrixExpr::Row>& rows, const nvf::Range& range = {}) {
  return core::MatrixExpr(rows, range);
}
/// `name = value, …`
inline nvf::Expressions<core::IdentValuePair> pairs(const NamedValues& values) {
  std::vector<core::IdentValuePair> result;
  for (const auto& [name, value] : values) result.emplace_back(ident(name), value, nvf::Location());
  return nvf::Expressions<core::IdentValuePair>(std::move(result));
}
inline Expr fields(const NamedValues& values) {
  return core::FieldValueArrayExpr(pairs(values), nvf::Range());
}
inline nvf::Expressions<core::Ident> idents(std::initializer_list<std::string_view> names) {
  std::vector<core::Ident> result;
  for (const std::string_view name : names) result.push_back(ident(name));
  return nvf::Expressions<core::Ident>(std::move(result));
}

using Items = std::vector<core::EqnItem>;

inline core::EqnItem assertion(const Expr& predicate, const std::optional<Expr>& action = std::nullopt) {
  return core::EqnAssertion(predicate, core::NoMessage(), action, nvf::Range());
}
inline core::IfExpr ifThen(const Expr& condition, const Items& items, const Items& elseItems = {},
                           const std::vector<core::ElseifBranch>& branches = {}) {
  return {condition, items, elseItems, branches, nvf::Range()};
}
/// `[names] = value`, where the name "~" is a placeholder.
inline core::IdListValuePair declaration(std::initializer_list<std::string_view> names, const Expr& value) {
  std::vector<core::OptIdent> ids;
  for (const std::string_view name : names) {
    ids.push_back(name == "~" ? core::OptIdent(core::Tilde()) : core::OptIdent(ident(name)));
  }
  return {nvf::Expressions<core::OptIdent>(ids), value, false};
}
inline core::IdListValuePair declaration(std::string_view name, const Expr& value) {
  return declaration({name}, value);
}
inline core::LetExpr let(const std::vector<core::IdListValuePair>& declarations, const Items& items) {
  return {declarations, items, nvf::Range()};
}

// ---- trees of a size ----

/// A chain of `size` operators that lean to the left: `a + a + … + a`.
inline Expr chain(std::size_t size, const Expr& leaf) {
  Expr result = leaf;
  for (std::size_t i = 0; i < size; ++i) result = op(OpExprType::Add, result, leaf);
  return result;
}

} // namespace tessarin::test
