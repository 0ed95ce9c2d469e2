// Trees built by hand, for tests that want to see them in the code: the factories of the library, and what tests alone
// need, such as a range in one word. Everything has an empty range unless one is given.
#pragma once

#include "tessarin/parser/ast/Make.hpp"

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
using core::make::arguments;
using core::make::call;
using core::make::colon;
using core::make::constant;
using core::make::fields;
using core::make::id;
using core::make::ident;
using core::make::ifThen;
using core::make::Items;
using core::make::let;
using core::make::NamedValues;
using core::make::op;
using core::make::pairs;
using core::make::parenSubs;
using core::make::step;
using core::make::Subscripts;
using core::make::withUnit;

/// The first unit of a line, from 0: a range that can be told from others.
inline nvf::Range onLine(unsigned long line) {
  return {nvf::Location({}, nvf::LineColumn(line, 0)), nvf::Location({}, nvf::LineColumn(line, 1))};
}

inline nvf::CxIdPath idPath(std::string_view dotted) {
  return nvf::CxIdPath(dotted);
}

inline nvf::Expressions<core::Ident> idents(std::initializer_list<std::string_view> names) {
  return core::make::idents({names.begin(), names.end()});
}

// ---- literals ----

inline Expr number(std::string_view text, const nvf::Range& range = {}) {
  return core::NumberLiteral(nvf::NumberString(text), range);
}
inline Expr string(const nvf::ustring& text) {
  return core::StringLiteral(text, nvf::Range());
}
inline core::UnitLiteral unitText(std::string_view text) {
  return core::make::unit(text);
}

// ---- references ----

/// `path.name`, with an argument list or without one.
inline core::Variable variable(const std::vector<core::IdParenSubs>& path, std::string_view name,
                               const std::optional<core::Arguments>& tail = std::nullopt,
                               const nvf::Range& range = {}) {
  return core::make::variable(path, name, tail).withRange(range);
}
/// A dotted name, with an argument list or without one.
inline core::Variable variable(std::string_view dotted, const std::optional<core::Arguments>& tail = std::nullopt,
                               const nvf::Range& range = {}) {
  return core::make::variable(dotted, tail).withRange(range);
}
inline Expr name(std::string_view dotted, const nvf::Range& range = {}) {
  return variable(dotted, std::nullopt, range);
}
inline std::optional<core::ParenSubs> optionalSubs(const Subscripts& subs) {
  if (subs.empty()) return std::nullopt;
  return parenSubs(subs);
}
/// `internal_full_path__` of the path of one member.
inline Expr fullPath(std::size_t member, const Subscripts& subs = {}) {
  const core::FullPathVariable::Path path{core::UniquePathElement(core::MemberPathElement(member))};
  return core::FullPathVariable(path, optionalSubs(subs), std::nullopt, nvf::Range());
}
inline Expr relativePath(std::size_t depth, std::string_view name, const Subscripts& subs = {}) {
  return core::RelativePathVariable(nvf::Positive<std::size_t>(depth), id(name), optionalSubs(subs), nvf::Range());
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

inline Expr matrix(const std::vector<core::MatrixExpr::Row>& rows, const nvf::Range& range = {}) {
  return core::MatrixExpr(rows, range);
}
inline core::EqnItem assertion(const Expr& predicate, const std::optional<Expr>& action = std::nullopt) {
  return core::EqnAssertion(predicate, core::NoMessage(), action, nvf::Range());
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

// ---- trees of a size ----

/// A chain of `size` operators that lean to the left: `a + a + … + a`.
inline Expr chain(std::size_t size, const Expr& leaf) {
  Expr result = leaf;
  for (std::size_t i = 0; i < size; ++i) result = op(OpExprType::Add, result, leaf);
  return result;
}

} // namespace tessarin::test
