// What fills equations and events blocks, and conditions and scopes. `assert` has a loose grammar: all rules on its
// arguments are here.
#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"
#include "tessarin/parser/builder/TreeBuilder.hpp"

#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages
using K = NonTerminal;

// ---- items and blocks ----

EqnItem TreeBuilder::buildEqnItem(NodeView tree) const {
  if (tree.isNonTerminalType(K::EqnAssert)) return buildEqnAssertion(tree);
  return buildExpr(tree);
}

std::vector<EqnItem> TreeBuilder::buildEqnItemList(NodeView tree) const {
  return mapChildren(tree, [this](NodeView item) { return buildEqnItem(item); });
}

EquationBlock TreeBuilder::buildEquationBlock(NodeView tree) const {
  const nvf::Expressions<IdentValuePair> attributes = buildIdentValuePairs(childOf(tree, 1));
  return {buildEqnItemList(childOf(tree, 2)), attributes, childOf(tree, 0).token().location()};
}

IfExpr TreeBuilder::buildIfExpr(NodeView tree) const {
  const Expr condition = buildExpr(childOf(tree, 1));
  const std::vector<EqnItem> ifItems = buildEqnItemList(childOf(tree, 2));
  const std::vector<ElseifBranch> elseifs = mapChildren(childOf(tree, 3), [this](NodeView branch) {
    const std::vector<EqnItem> items = buildEqnItemList(childOf(branch, 1));
    return ElseifBranch(buildExpr(childOf(branch, 0)), items);
  });
  const std::vector<EqnItem> elseItems = buildEqnItemList(childOf(childOf(tree, 4), 0));
  return {condition, ifItems, elseItems, elseifs, rangeOf(tree)};
}

LetExpr TreeBuilder::buildLetExpr(NodeView tree) const {
  const std::vector<IdListValuePair> declarations = buildEqDeclarationList(childOf(tree, 1));
  return {declarations, buildEqnItemList(childOf(tree, 2)), rangeOf(tree)};
}

WhenClause TreeBuilder::buildWhenClause(NodeView tree) const {
  const Expr predicate = buildExpr(childOf(tree, 0));
  const WhenBranch when(predicate, buildIdentValuePairs(childOf(tree, 1)));
  return {when, mapChildren(childOf(tree, 2), [this](NodeView branch) {
            const Expr condition = buildExpr(childOf(branch, 0));
            return ElseWhenBranch(condition, buildIdentValuePairs(childOf(branch, 1)));
          })};
}

EventBlock TreeBuilder::buildEventBlock(NodeView tree) const {
  return {mapChildren(childOf(tree, 1), [this](NodeView clause) { return buildWhenClause(clause); }),
          childOf(tree, 0).token().location()};
}

// ---- assertions ----

namespace {

/// The id that the string spells.
nvf::MessageId messageId(const StringLiteral& text) {
  const std::optional<nvf::MessageId> id = nvf::MessageId::make(text.value());
  if (!id || id->empty()) raiseAt<InvalidAssertErrorID>(text.range().begin(), text.value());
  return *id;
}

bool isNamed(const nvf::CxIdPath& path, const nvf::CxId& name) {
  return path.size() == 1 && path.front() == name;
}

/// The hole that `text(…)` stands for.
MessageObject::Hole textHole(const Variable& variable) {
  const auto call = to_nativefunctioncall(variable);
  if (call && isNamed(call->path(), MemberText::ctor()) && call->positionalArguments().size() == 1 &&
      call->namedArguments().empty()) {
    const Expr& argument = call->positionalArguments().front();
    if (const auto* member = argument.getIf<Variable>()) {
      const auto pair = to_pathtailpair(*member);
      if (pair && !pair->second) return MemberText(pair->first, member->range());
    } else if (const auto* ref = argument.getIf<ValueRef>(); ref != nullptr && !ref->tail()) {
      return RefText(*ref, ref->range());
    }
  }
  raiseAt<InvalidMessageObject>(variable.range().begin());
}

MessageObject::Hole messageHole(const Expr& argument) {
  if (const auto* text = argument.getIf<StringLiteral>()) return text->value();
  if (const auto* variable = argument.getIf<Variable>()) return textHole(*variable);
  raiseAt<InvalidMessageObject>(expr_location(argument));
}

/// What `message('id', hole, …)` says.
MessageObject messageObject(const Variable& variable) {
  const auto call = to_nativefunctioncall(variable);
  const bool isMessage = call && isNamed(call->path(), MessageObject::ctor()) && !call->positionalArguments().empty() &&
                         call->namedArguments().empty();
  const auto* id = isMessage ? call->positionalArguments().front().getIf<StringLiteral>() : nullptr;
  if (id == nullptr) raiseAt<InvalidMessageObject>(variable.range().begin());
  const nvf::MessageId checkedId = messageId(*id);
  std::vector<MessageObject::Hole> holes;
  for (std::size_t i = 1; i < call->positionalArguments().size(); ++i) {
    holes.push_back(messageHole(call->positionalArguments()[i]));
  }
  return {checkedId, holes};
}

/// What the arguments behind the predicate say.
EqnAssertion::Message message(const std::vector<Expr>& arguments) {
  if (arguments.empty()) return NoMessage();
  const auto* first = arguments.front().getIf<StringLiteral>();
  if (arguments.size() == 1) {
    if (first != nullptr) return PreformattedMessage(nvf::MessageId(), first->value());
    if (const auto* variable = arguments.front().getIf<Variable>()) return messageObject(*variable);
  } else if (const auto* second = arguments.back().getIf<StringLiteral>(); first != nullptr && second != nullptr) {
    return PreformattedMessage(messageId(*first), second->value());
  }
  raiseAt<InvalidAssertMessage>(expr_location(arguments.front()));
}

/// What `Action = …` or `Warn = …` asks for. Names and truth are compared as text.
Expr action(const NamedArgument& argument) {
  const Expr nameExpr = to_expr(argument.name());
  const ustring name = to_string(nameExpr);
  const auto* variable = nameExpr.getIf<Variable>();
  if (variable == nullptr || !variable->isID()) raiseAt<InvalidNamedArg>(argument.location(), name);

  const Expr& value = argument.value();
  const ustring text = to_string(value);
  const bool isTruth = text == u"true" || text == u"false";
  if (name == u"Action") {
    if (isTruth) raiseAt<InvalidValueForAssertAction>(expr_location(value));
    return value;
  }
  if (name == u"Warn") {
    if (!isTruth || value.getIf<Variable>() == nullptr) raiseAt<InvalidValueForWarn>(expr_location(value));
    using Type = EqnAssertion::ActionType;
    return ConcreteValueExpr(EqnAssertion::toValue(text == u"true" ? Type::Warn : Type::Error), nvf::Range());
  }
  raiseAt<InvalidAttributeForAssert>(argument.location());
}

} // namespace

EqnAssertion TreeBuilder::buildEqnAssertion(NodeView tree) const {
  const nvf::Location& keyword = childOf(tree, 0).token().location();
  const NodeView arguments = childOf(tree, 2);
  const std::vector<Subscript> positional = buildSubscripts(childOf(arguments, 0));
  const std::vector<NamedArgument> named = buildEqnNamedArgs(childOf(arguments, 1), false);

  if (positional.empty() || positional.size() > 3) raiseAt<InvalidNumberOfPosArgsForAssert>(keyword);
  if (positional[0].expr() == nullptr) raiseAt<InvalidAssertPredicate>(positional[0].location());
  std::vector<Expr> rest;
  for (std::size_t i = 1; i < positional.size(); ++i) {
    if (positional[i].expr() == nullptr) raiseAt<InvalidAssertMessage>(positional[i].location());
    rest.push_back(*positional[i].expr());
  }
  const EqnAssertion::Message text = message(rest);

  if (named.size() > 1) raiseAt<InvalidNumberOfNamedArgsForAssert>(keyword);
  std::optional<Expr> actionExpr;
  if (!named.empty()) actionExpr = action(named.front());
  return {*positional[0].expr(), text, actionExpr, rangeOf(tree)};
}

} // namespace tessarin::compiler::core
