#include "tessarin/parser/parse/Actions.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/warning.hpp"

#include <optional>

namespace tessarin::compiler::core {

namespace messages = kelvane::tessarin::compiler::core::parse;
using K = NonTerminal;

namespace {

bool isPower(NodeView tree) {
  return tree.isNonTerminalType(K::Power) || tree.isNonTerminalType(K::DotPower);
}

/// The kind of a prefix operator behind a power sign.
std::optional<NonTerminal::Value> exponentKind(NodeView tree) {
  if (tree.isNonTerminalType(K::UnaryPlus)) return K::PlusExponent;
  if (tree.isNonTerminalType(K::UnaryMinus)) return K::MinusExponent;
  if (tree.isNonTerminalType(K::Not)) return K::NotExponent;
  return std::nullopt;
}

} // namespace

void Actions::refuseDepth() {
  raise<messages::DeepStatements>(state_.current.location());
}

NodeRef Actions::node(NonTerminal::Value kind, std::initializer_list<NodeRef> children) {
  return state_.trees.node(kind, {children.begin(), children.size()});
}

NodeRef Actions::child(NodeRef tree, std::size_t i) const {
  return at(tree).child(i).ref();
}

NodeRef Actions::nest(NodeRef list) {
  const NonTerminal::Value kind = at(list).code();
  NodeRef result = (*this)(kind, child(list, 0));
  for (std::size_t i = 1; i < at(list).count(); ++i) result = (*this)(kind, result, child(list, i));
  return result;
}

// ---- expressions ----

NodeRef Actions::rewritePower(NodeRef power) {
  const NodeRef a = child(power, 0);
  const NodeRef op = child(power, 1);
  const NodeRef right = child(power, 2);
  const std::optional<NonTerminal::Value> exponent = exponentKind(at(right));
  if (!exponent) return power;
  const NonTerminal::Value kind = at(power).code();
  const NodeRef sign = child(right, 0);
  const NodeRef operand = child(right, 1);
  if (!isPower(at(operand))) return node(kind, {a, op, node(*exponent, {sign, operand})});
  const NodeRef inner = node(kind, {a, op, node(*exponent, {sign, child(operand, 0)})});
  return node(at(operand).code(), {inner, child(operand, 1), child(operand, 2)});
}

NodeRef Actions::foldColon(NodeRef a, NodeRef op, NodeRef b) {
  if (!at(a).isNonTerminalType(K::Colon)) return (*this)(K::Colon, a, op, b);
  return (*this)(K::Colon3, child(a, 0), child(a, 1), child(a, 2), op, b);
}

NodeRef Actions::tryUnitExpression(NodeRef cellArray) {
  const NodeView body = at(cellArray).child(1);
  if (body.count() != 1 || body.child(0).count() != 2) return cellArray;
  const NodeView value = body.child(0).child(0);
  const NodeView unit = body.child(0).child(1);
  if (!unit.isTerminalType(TokenId::STRING) && !unit.isTerminalType(TokenId::STRING_LITERAL)) return cellArray;
  return node(K::UnitExpression, {value.ref(), unit.ref()});
}

NodeRef Actions::unitExpression(NodeRef cellArray) {
  const NodeRef result = tryUnitExpression(cellArray);
  if (at(result).isNonTerminalType(K::CellArray)) refuse<messages::CellArrayInDeclarativeConstruct>(child(result, 0));
  return result;
}

void Actions::checkNotRelational(NodeRef operand) {
  if (at(operand).type() == 1 && K::isRelational(at(operand).code())) refuse<messages::AmbiguousRelational>(operand);
}

NodeRef Actions::relation(NonTerminal::Value kind, NodeRef left, NodeRef op, NodeRef right) {
  checkNotRelational(left);
  checkNotRelational(right);
  return (*this)(kind, left, op, right);
}

// ---- statements and functions ----

void Actions::checkEmptyIndices(NodeRef target) {
  if (!at(target).isNonTerminalType(K::Subsref)) return;
  if (at(target).child(2).count() == 0) refuse<messages::EmptyIndices>(child(target, 1));
}

void Actions::checkAssignmentTarget(NodeRef target) {
  if (at(target).isNonTerminalType(K::Matrix)) {
    const NodeView body = at(target).child(1);
    if (body.count() > 1) refuse<messages::ColArrayOnLhs>(child(target, 0));
    for (const NodeView element : body.child(0).children()) checkEmptyIndices(element.ref());
  } else {
    checkEmptyIndices(target);
  }
}

NodeRef Actions::openFunction(NodeRef keyword, NodeRef outputs, NodeRef inputs, NodeRef separator, NodeRef body) {
  const NodeRef name = child(outputs, at(outputs).count() - 1);
  return (*this)(K::OpenFcnDef, keyword, state_.trees.trim(outputs, 1), name, inputs, separator, body);
}

NodeRef Actions::closeFunction(NodeRef function, NodeRef end) {
  --state_.functionDepth;
  // A name of two parts, `function a.b`, is no leaf and ends in the fatal diagnostic of `token()`: intended.
  state_.lastClosedFunction = at(function).child(2).token().text();
  const NodeRef closed = node(K::ClosedFcnDef, {});
  for (std::size_t i = 0; i < at(function).count(); ++i) state_.trees.append(closed, child(function, i));
  state_.trees.append(closed, end);
  return (*this)(K::NonExprStmt, checkDepth(closed));
}

void Actions::checkInFunction(NodeRef statement) {
  if (state_.functionDepth != 0 || state_.lastClosedFunction.empty() || at(statement).type() == 0) return;
  if (at(statement).child(0).isNonTerminalType(K::ClosedFcnDef)) return;
  raise<messages::StatementNotInAFunction>(state_.current.location(), state_.lastClosedFunction.view());
}

// ---- equations ----

void Actions::warnOfEquation(NodeRef keyword) {
  nvf::file_line_warning<messages::UseOfEquationDeprecated>(at(keyword).left()->location());
}

void Actions::checkNoNestedEquations(NodeRef keyword) {
  if (state_.inEquations) refuse<messages::IllegalNestedEquation>(keyword);
}

// ---- whole files ----

namespace {

/// The last component of a path without its last extension; that of ".tsn" is empty.
nvf::ustring stem(const nvf::FileName& file) {
  const nvf::ustring path = file;
  const std::size_t slash = path.rfind(u'/');
  const nvf::ustring name = slash == nvf::ustring::npos ? path : path.substr(slash + 1);
  return name.substr(0, name.rfind(u'.'));
}

/// Warns where the name differs from that of the file.
template <class Msg>
void checkName(const Token& name) {
  if (stem(name.location().fileName()) == name.text().view()) return;
  nvf::file_line_warning<Msg>(name.location(), name.text().view());
}

} // namespace

void Actions::finish(NodeRef imports, NodeRef main, NodeRef functions) {
  state_.result = (*this)(K::FileGoal, roll(imports), main, roll(functions));
}

void Actions::finishModel(NodeRef imports, NodeRef model, NodeRef functions) {
  const Token name = at(model).child(2).token();
  finish(imports, model, functions);
  checkName<messages::InconsistentModelNameAndFileName>(name);
}

void Actions::finishFunction(NodeRef imports, NodeRef function, NodeRef functions) {
  const Token name = at(function).child(1).token();
  finish(imports, function, functions);
  checkName<messages::InconsistentFunctionNameAndFileName>(name);
}

void Actions::finishStatements(NodeRef statements) {
  state_.result = (*this)(K::FileGoal, roll(statements));
}

} // namespace tessarin::compiler::core
