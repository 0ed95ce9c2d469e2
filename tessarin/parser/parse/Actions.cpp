#include "tessarin/parser/parse/Actions.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/warning.hpp"

#include <optional>

namespace tessarin::compiler::core {

namespace messages = kelvane::tessarin::compiler::core::parse;
using K = NonTerminal;

namespace {

bool isPower(const ParseTree& tree) {
  return tree.isNonTerminalType(K::Power) || tree.isNonTerminalType(K::DotPower);
}

/// The kind of a prefix operator behind a power sign.
std::optional<NonTerminal::Value> exponentKind(const ParseTree& tree) {
  if (tree.isNonTerminalType(K::UnaryPlus)) return K::PlusExponent;
  if (tree.isNonTerminalType(K::UnaryMinus)) return K::MinusExponent;
  if (tree.isNonTerminalType(K::Not)) return K::NotExponent;
  return std::nullopt;
}

ParseTree node(NonTerminal::Value kind, const std::vector<ParseTree>& children) {
  return {kind, children};
}

} // namespace

void Actions::refuseDepth() {
  raise<messages::DeepStatements>(state_.current.location());
}

ParseTree Actions::nest(ParseTree& list) {
  const ParseTree flat = std::move(list);
  ParseTree first = flat.child(0);
  ParseTree result = (*this)(flat.code(), first);
  for (std::size_t i = 1; i < flat.count(); ++i) {
    ParseTree item = flat.child(i);
    result = (*this)(flat.code(), result, item);
  }
  return result;
}

// ---- expressions ----

ParseTree Actions::rewritePower(ParseTree power) {
  const ParseTree& a = power.child(0);
  const ParseTree& op = power.child(1);
  const ParseTree& right = power.child(2);
  const std::optional<NonTerminal::Value> exponent = exponentKind(right);
  if (!exponent) return power;
  const ParseTree& sign = right.child(0);
  const ParseTree& operand = right.child(1);
  if (!isPower(operand)) return node(power.code(), {a, op, node(*exponent, {sign, operand})});
  const ParseTree inner = node(power.code(), {a, op, node(*exponent, {sign, operand.child(0)})});
  return node(operand.code(), {inner, operand.child(1), operand.child(2)});
}

ParseTree Actions::foldColon(ParseTree& a, ParseTree& op, ParseTree& b) {
  if (!a.isNonTerminalType(K::Colon)) return (*this)(K::Colon, a, op, b);
  return checkDepth(node(K::Colon3, {a.child(0), a.child(1), a.child(2), op, b}));
}

ParseTree Actions::tryUnitExpression(ParseTree& cellArray) {
  const ParseTree& body = cellArray.child(1);
  if (body.count() != 1 || body.child(0).count() != 2) return std::move(cellArray);
  const ParseTree& value = body.child(0).child(0);
  const ParseTree& unit = body.child(0).child(1);
  if (!unit.isTerminalType(TokenId::STRING) && !unit.isTerminalType(TokenId::STRING_LITERAL)) {
    return std::move(cellArray);
  }
  return node(K::UnitExpression, {value, unit});
}

ParseTree Actions::unitExpression(ParseTree& cellArray) {
  ParseTree result = tryUnitExpression(cellArray);
  if (result.isNonTerminalType(K::CellArray)) refuse<messages::CellArrayInDeclarativeConstruct>(result.child(0));
  return result;
}

void Actions::checkNotRelational(const ParseTree& operand) {
  if (operand.type() == 1 && K::isRelational(operand.code())) refuse<messages::AmbiguousRelational>(operand);
}

ParseTree Actions::relation(NonTerminal::Value kind, ParseTree& left, ParseTree& op, ParseTree& right) {
  checkNotRelational(left);
  checkNotRelational(right);
  return (*this)(kind, left, op, right);
}

// ---- statements and functions ----

void Actions::checkEmptyIndices(const ParseTree& target) {
  if (!target.isNonTerminalType(K::Subsref)) return;
  if (target.child(2).count() == 0) refuse<messages::EmptyIndices>(target.child(1));
}

void Actions::checkAssignmentTarget(const ParseTree& target) {
  if (target.isNonTerminalType(K::Matrix)) {
    const ParseTree& body = target.child(1);
    if (body.count() > 1) refuse<messages::ColArrayOnLhs>(target.child(0));
    const ParseTree& row = body.child(0);
    for (std::size_t i = 0; i < row.count(); ++i) checkEmptyIndices(row.child(i));
  } else {
    checkEmptyIndices(target);
  }
}

ParseTree Actions::openFunction(ParseTree& keyword, ParseTree& outputs, ParseTree& inputs, ParseTree& separator,
                                ParseTree body) {
  ParseTree name = outputs.child(outputs.count() - 1);
  return (*this)(K::OpenFcnDef, keyword, outputs.trim(1), name, inputs, separator, body);
}

ParseTree Actions::closeFunction(ParseTree& function, ParseTree& end) {
  --state_.functionDepth;
  // A name of two parts, `function a.b`, is no leaf and ends in the fatal diagnostic of `token()`: intended.
  state_.lastClosedFunction = function.child(2).token().text();
  std::vector<ParseTree> children;
  for (std::size_t i = 0; i < function.count(); ++i) children.push_back(function.child(i));
  children.push_back(end);
  return (*this)(K::NonExprStmt, checkDepth(node(K::ClosedFcnDef, children)));
}

void Actions::checkInFunction(const ParseTree& statement) {
  if (state_.functionDepth != 0 || state_.lastClosedFunction.empty() || statement.type() == 0) return;
  if (statement.child(0).isNonTerminalType(K::ClosedFcnDef)) return;
  raise<messages::StatementNotInAFunction>(state_.current.location(), state_.lastClosedFunction.view());
}

// ---- equations ----

void Actions::warnOfEquation(const ParseTree& keyword) {
  nvf::file_line_warning<messages::UseOfEquationDeprecated>(keyword.location());
}

void Actions::checkNoNestedEquations(const ParseTree& keyword) {
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

void Actions::finish(ParseTree& imports, ParseTree& main, ParseTree& functions) {
  state_.result = (*this)(K::FileGoal, roll(imports), main, roll(functions));
}

void Actions::finishModel(ParseTree& imports, ParseTree& model, ParseTree& functions) {
  const Token name = model.child(2).token();
  finish(imports, model, functions);
  checkName<messages::InconsistentModelNameAndFileName>(name);
}

void Actions::finishFunction(ParseTree& imports, ParseTree& function, ParseTree& functions) {
  const Token name = function.child(1).token();
  finish(imports, function, functions);
  checkName<messages::InconsistentFunctionNameAndFileName>(name);
}

void Actions::finishStatements(ParseTree& statements) {
  state_.result = (*this)(K::FileGoal, roll(statements));
}

} // namespace tessarin::compiler::core
