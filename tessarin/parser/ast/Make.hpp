// Trees made by hand: one function for each thing that the source can say.
//
//   namespace make = tessarin::compiler::core::make;
//   const Expr equation = make::equal(make::der(make::var("x")), make::multiply(make::var("p.k"), make::number(2)));
//   const Model model = make::model({.name = "spring", .equations = {make::equations({equation})}});
//
// Names, numbers and units are checked: what is none throws `nvf::InvalidCxId`, `nvf::InvalidNumberString` or
// `nvf::InvalidUnitExpression`. Narrow text is UTF-8. What is made has empty ranges; `withRange` of With.hpp gives it
// another one. All functions may be called from any thread.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/any_text.hpp"
#include "tessarin/parser/ast/Model.hpp"
#include "tessarin/parser/ast/TSNFunction.hpp"

#include <concepts>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Factories for trees.
namespace tessarin::compiler::core::make {

using nvf::AnyText;
/// Values by name, in an order.
using NamedValues = std::vector<std::pair<AnyText, Expr>>;
/// What stands between the parentheses behind a name.
using Subscripts = std::vector<Subscript>;
/// Equations and assertions.
using Items = std::vector<EqnItem>;

// ---- names ----

/// An identifier.
TESSARIN_EXPORT nvf::CxId id(const AnyText& text);
/// A dotted path of names.
TESSARIN_EXPORT nvf::CxIdPath path(const AnyText& dotted);
/// An identifier as it stands in a tree.
TESSARIN_EXPORT Ident ident(const AnyText& text);
/// Several of them.
TESSARIN_EXPORT nvf::Expressions<Ident> idents(const std::vector<AnyText>& names);
/// The dotted name of a class.
TESSARIN_EXPORT Name name(const AnyText& dotted);

// ---- literals ----

/// A number as it is written, such as `1.50`.
TESSARIN_EXPORT Expr number(const AnyText& text);
/// A number in the shortest text that reads back as the same one; a negative number is a minus before a number.
/// @{
TESSARIN_EXPORT Expr number(double value);
template <std::integral Integer>
Expr number(Integer value);
/// @}
/// A text, which is printed between quotes.
TESSARIN_EXPORT Expr text(const AnyText& content);
/// A unit as it is written.
TESSARIN_EXPORT UnitLiteral unit(const AnyText& text);
/// `{expr, 'unit'}`.
TESSARIN_EXPORT Expr withUnit(const Expr& expr, const AnyText& unit);
/// `value(expr, 'unit')`.
TESSARIN_EXPORT Expr valueIn(const Expr& expr, const AnyText& unit);
/// A value of doubles in index order, with a unit.
TESSARIN_EXPORT ConcreteValueExpr constant(const nvf::ArraySize& size, std::vector<double> elements,
                                           const AnyText& unit = "1");
/// A number as a value, with a unit.
TESSARIN_EXPORT ConcreteValueExpr constant(double number, const AnyText& unit = "1");

// ---- references and calls ----

/// The `:` of a list of subscripts.
TESSARIN_EXPORT Subscript colon();
/// A list of subscripts in parentheses.
TESSARIN_EXPORT ParenSubs parenSubs(Subscripts subscripts);
/// A step of a dotted path, with subscripts or without.
/// @{
TESSARIN_EXPORT IdParenSubs step(const AnyText& name);
TESSARIN_EXPORT IdParenSubs step(const AnyText& name, Subscripts subscripts);
/// @}
/// An argument list.
TESSARIN_EXPORT Arguments arguments(Subscripts positional, const NamedValues& named = {});
/// `path.name`, with an argument list or without one.
TESSARIN_EXPORT Variable variable(const std::vector<IdParenSubs>& path, const AnyText& name,
                                  const std::optional<Arguments>& tail = std::nullopt);
/// A dotted name, with an argument list or without one.
TESSARIN_EXPORT Variable variable(const AnyText& dotted, const std::optional<Arguments>& tail = std::nullopt);
/// A dotted name as an expression.
TESSARIN_EXPORT Expr var(const AnyText& dotted);
/// `dotted(positional, named)`: a call, or an element of an array.
TESSARIN_EXPORT Expr call(const AnyText& dotted, Subscripts positional, const NamedValues& named = {});

// ---- operators ----

/// Any operator; the number of operands is not checked.
template <std::convertible_to<Expr>... Operands>
Expr op(OpExprType type, const Operands&... operands) {
  return OpExpr(type, std::vector<Expr>{Expr(operands)...}, nvf::Range());
}

/// `der(x)`, `-x`, `~x` and `x'`.
/// @{
inline Expr der(const Expr& operand) {
  return op(OpExprType::Der, operand);
}
inline Expr negate(const Expr& operand) {
  return op(OpExprType::UnaryMinus, operand);
}
inline Expr logicalNot(const Expr& operand) {
  return op(OpExprType::Not, operand);
}
inline Expr transpose(const Expr& operand) {
  return op(OpExprType::Transpose, operand);
}
/// @}

/// `left + right`, and so on: `-`, `*`, `/`, `^`.
/// @{
inline Expr add(const Expr& left, const Expr& right) {
  return op(OpExprType::Add, left, right);
}
inline Expr subtract(const Expr& left, const Expr& right) {
  return op(OpExprType::Sub, left, right);
}
inline Expr multiply(const Expr& left, const Expr& right) {
  return op(OpExprType::Mul, left, right);
}
inline Expr divide(const Expr& left, const Expr& right) {
  return op(OpExprType::Div, left, right);
}
inline Expr power(const Expr& left, const Expr& right) {
  return op(OpExprType::Power, left, right);
}
/// @}

/// `left == right`, which is also how an equation is written, and `~=`, `<`, `<=`, `>`, `>=`, `&&`, `||`.
/// @{
inline Expr equal(const Expr& left, const Expr& right) {
  return op(OpExprType::Eq, left, right);
}
inline Expr notEqual(const Expr& left, const Expr& right) {
  return op(OpExprType::Ne, left, right);
}
inline Expr less(const Expr& left, const Expr& right) {
  return op(OpExprType::Lt, left, right);
}
inline Expr lessEqual(const Expr& left, const Expr& right) {
  return op(OpExprType::Le, left, right);
}
inline Expr greater(const Expr& left, const Expr& right) {
  return op(OpExprType::Gt, left, right);
}
inline Expr greaterEqual(const Expr& left, const Expr& right) {
  return op(OpExprType::Ge, left, right);
}
inline Expr logicalAnd(const Expr& left, const Expr& right) {
  return op(OpExprType::AndAnd, left, right);
}
inline Expr logicalOr(const Expr& left, const Expr& right) {
  return op(OpExprType::OrOr, left, right);
}
/// @}

// ---- compound expressions ----

/// `[a, b; c, d]`, row by row.
TESSARIN_EXPORT Expr matrix(std::vector<MatrixExpr::Row> rows);
/// `name = value, …`, as attributes and the fields of a structure.
TESSARIN_EXPORT nvf::Expressions<IdentValuePair> pairs(const NamedValues& values);
/// `{name = value, …}`.
TESSARIN_EXPORT Expr fields(const NamedValues& values);
/// `assert(predicate)` and `assert(predicate, 'text')`.
TESSARIN_EXPORT EqnItem assertion(const Expr& predicate, const std::optional<AnyText>& text = std::nullopt);
/// `if condition, items; else elseItems; end`, with `elseif` branches between.
TESSARIN_EXPORT IfExpr ifThen(const Expr& condition, const Items& items, const Items& elseItems = {},
                              const std::vector<ElseifBranch>& branches = {});
/// `name = value`.
TESSARIN_EXPORT IdListValuePair declaration(const AnyText& name, const Expr& value);
/// `[a, ~, b] = value`, where "~" stands for a result without a name.
TESSARIN_EXPORT IdListValuePair declaration(const std::vector<AnyText>& names, const Expr& value);
/// `let declarations in items end`.
TESSARIN_EXPORT LetExpr let(const std::vector<IdListValuePair>& declarations, const Items& items);

// ---- blocks, models and functions, by the names of their parts ----

/// The parts of a `DeclarationBlock`.
struct DeclarationBlockParts {
  /// As the class names them.
  /// @{
  MemberType::Value type = MemberType::NONE;
  std::vector<DeclarationItem> declarations = {};
  NamedValues attributes = {};
  nvf::Location location = {};
  /// @}
};
/// A block of declarations: `{.type = MemberType::PARAMETER, .declarations = {declaration("k", number(1))}}`.
TESSARIN_EXPORT DeclarationBlock declarations(const DeclarationBlockParts& parts);

/// An `equations` block; expressions are items.
TESSARIN_EXPORT EquationBlock equations(Items items);

/// The parts of a `Model`: the lists of blocks are those of its sections.
struct ModelParts {
  /// As the class names them; what is not given is empty.
  /// @{
  ModelType::Value type = ModelType::COMPONENT;
  AnyText name = {};
  std::optional<ClassInitializer> base = {};
  NamedValues attributes = {};
  std::vector<DeclarationBlock> declarations = {};
  std::vector<BranchBlock> branches = {};
  std::vector<ConnectionBlock> connections = {};
  std::vector<EquationBlock> equations = {};
  std::vector<EventBlock> events = {};
  std::vector<ModechartBlock> modecharts = {};
  std::vector<AnnotationsBlock> annotations = {};
  std::vector<ConditionalSection> conditionals = {};
  std::vector<ForLoop> loops = {};
  FileSource source = FileSource::open;
  ParseTree setupFunction = {};
  nvf::Location location = {};
  /// @}
};
/// A model; its name must be an identifier.
TESSARIN_EXPORT Model model(const ModelParts& parts);

/// The parts of a `TSNFunction`.
struct FunctionParts {
  /// As the class names them; there must be a name.
  /// @{
  AnyText name = {};
  std::vector<AnyText> outputs = {};
  std::vector<AnyText> inputs = {};
  std::vector<FunctionEqnItem> definitions = {};
  FileSource source = FileSource::open;
  /// @}
};
/// A function with one block of definitions.
TESSARIN_EXPORT TSNFunction function(const FunctionParts& parts);

// ---- what is too small for the source file ----

template <std::integral Integer>
Expr number(Integer value) {
  if (value < Integer{}) return negate(number(AnyText(std::to_string(value).substr(1))));
  return number(AnyText(std::to_string(value)));
}

} // namespace tessarin::compiler::core::make
