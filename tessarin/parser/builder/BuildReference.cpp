// References: variables, and the resolved forms, which have no syntax of their own. These are written as calls of
// reserved names, and this is how printed trees come back.
#include "tessarin/parser/builder/BuildReference.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/builder/BuildCommon.hpp"

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace tessarin::compiler::core {

using namespace kelvane::tessarin::compiler::core::ast; // the messages
using K = NonTerminal;

namespace {

constexpr const char* buildVariableSignature =
    "tessarin::compiler::core::Variable tessarin::compiler::core::ASTBuilder::buildVariable(const "
    "tessarin::compiler::core::ParseTree&) const";

// ---- shapes ----

bool isReference(NodeView tree) {
  return tree.isNonTerminalType(K::Subsref);
}

/// The arguments of a reference that is one name with one argument list in parentheses; nothing for any other tree.
std::optional<NodeView> callArguments(NodeView tree) {
  if (!isReference(tree) || tree.count() != 4 || !childOf(tree, 1).isTerminalType(TokenId::LP)) return std::nullopt;
  return childOf(tree, 2).isNonTerminalType(K::EqnArgs) ? std::optional(childOf(tree, 2)) : std::nullopt;
}

NodeView positionalList(NodeView arguments) {
  return childOf(arguments, 0);
}
NodeView namedList(NodeView arguments) {
  return childOf(arguments, 1);
}

/// The positional arguments of a call of a reserved name, which takes no named ones and `least` to `most` positional
/// ones. Raises `Msg` at the name for any other tree.
template <class Msg>
NodeView reservedArguments(NodeView tree, std::size_t least, std::size_t most) {
  if (const auto arguments = callArguments(tree)) {
    const NodeView positional = positionalList(*arguments);
    const bool fits = positional.count() >= least && positional.count() <= most;
    if (fits && namedList(*arguments).count() == 0) return positional;
  }
  raiseAt<Msg>(placeOf(tree));
}

constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

/// The positions of the names among the children of a reference.
std::vector<std::size_t> namePositions(NodeView tree) {
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < tree.count(); ++i) {
    if (childOf(tree, i).isTerminalType(TokenId::ID)) positions.push_back(i);
  }
  return positions;
}

nvf::ustring_view firstName(NodeView tree) {
  return childOf(tree, 0).token().text().view();
}

/// An argument list among the children of a reference, with the parentheses around it.
struct ArgumentList {
  NodeView arguments;
  nvf::Range range;
};

ArgumentList argumentListAt(NodeView tree, std::size_t position) {
  const NodeView arguments = childOf(tree, position + 1);
  if (!arguments.isNonTerminalType(K::EqnArgs)) fatal(notRecognized, 575, buildVariableSignature);
  return {arguments, rangeOf(childOf(tree, position)) + rangeOf(childOf(tree, position + 2))};
}

// ---- pieces of the reserved forms ----

/// The subscripts behind the first `count` ones, with the range of the whole list; nothing where there are none.
std::optional<ParenSubs> furtherSubs(std::vector<Subscript> all, std::size_t count, const nvf::Range& range) {
  if (all.size() <= count) return std::nullopt;
  all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count));
  return ParenSubs(all, range);
}

/// The variable that an argument of a reserved call must be.
template <class Msg>
Variable variableArgument(const TreeBuilder& builder, NodeView call, NodeView argument) {
  if (!isReference(argument)) raiseAt<Msg>(placeOf(call));
  return builder.buildVariable(argument);
}

/// The dotted name and the positional arguments of a call.
struct Callee {
  nvf::CxIdPath path;
  std::optional<std::vector<Expr>> arguments; // absent where there is no argument list
};

/// The positional arguments of an argument list that has no named ones.
std::vector<Expr> positionalOf(NodeView call, const Arguments& list) {
  std::optional<FunctionCallArguments> arguments = to_functioncall_args(list);
  if (!arguments || !arguments->named.empty()) raiseAt<InvalidFunctionCallSyntax>(placeOf(call));
  return std::move(arguments->positional);
}

Callee calleeOf(const TreeBuilder& builder, NodeView call, NodeView argument) {
  const auto pair = to_pathtailpair(variableArgument<InvalidFunctionCallSyntax>(builder, call, argument));
  if (!pair) raiseAt<InvalidFunctionCallSyntax>(placeOf(call));
  Callee callee{pair->first, std::nullopt};
  if (pair->second) callee.arguments = positionalOf(call, *pair->second);
  return callee;
}

/// The path with constant indices of the reference that the argument must be.
template <class Msg>
nvf::Expressions<IdValueIndices> constantPath(const TreeBuilder& builder, NodeView call, NodeView argument) {
  if (!isReference(argument)) raiseAt<Msg>(placeOf(call));
  const auto path = to_idvalueindicespath(builder.buildIdSubsPath(argument, namePositions(argument)));
  if (!path || path->empty()) raiseAt<Msg>(placeOf(call));
  return *path;
}

// ---- the tokens of a concrete value ----

/// The text of a number, of "inf" or of "nan" in any case; nothing for any other tree.
std::optional<nvf::ustring> unsignedNumberText(NodeView tree) {
  if (tree.isTerminalType(TokenId::NUMBER)) return nvf::ustring(tree.token().text().view());
  if (!isReference(tree) || tree.count() != 1) return std::nullopt;
  nvf::ustring lower(firstName(tree));
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char16_t unit) { return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit; });
  if (lower != u"inf" && lower != u"nan") return std::nullopt;
  return nvf::ustring(firstName(tree));
}

std::optional<nvf::ValueToken> valueToken(NodeView tree) {
  if (tree.isTerminalType(TokenId::STRING)) {
    std::string text;
    for (const char16_t unit : tree.token().text()) text += static_cast<char>(unit);
    return nvf::StringValueToken(std::move(text));
  }
  const bool isNegative = tree.isNonTerminalType(K::UnaryMinus) && tree.count() == 2;
  const auto digits = unsignedNumberText(isNegative ? childOf(tree, 1) : tree);
  if (!digits) return std::nullopt;
  const nvf::ustring text = isNegative ? u"-" + *digits : *digits;
  return nvf::NumericValueToken(text);
}

std::optional<std::vector<nvf::ValueToken>> valueTokens(NodeView tree) {
  const auto arguments = callArguments(tree);
  if (!arguments || namedList(*arguments).count() != 0) return std::nullopt;
  std::vector<nvf::ValueToken> tokens;
  for (const NodeView child : childrenOf(positionalList(*arguments))) {
    std::optional<nvf::ValueToken> token = valueToken(child);
    if (!token) return std::nullopt;
    tokens.push_back(std::move(*token));
  }
  return tokens;
}

// ---- the reserved names ----

using Build = Expr (*)(const TreeBuilder&, NodeView);

/// The builder of the form that the name is reserved for; null for an ordinary name.
Build reservedForm(nvf::ustring_view name) {
  struct Row {
    nvf::ustring_view name;
    Build build;
  };
  static const Row rows[] = {
      {FullPathVariable::ctor().view(),
       [](const TreeBuilder& b, NodeView t) { return Expr(b.buildFullPathVariable(t)); }},
      {RelativePathVariable::ctor().view(),
       [](const TreeBuilder& b, NodeView t) { return Expr(b.buildRelativePathVariable(t)); }},
      {ConcreteValueExpr::constructorName().view(),
       [](const TreeBuilder& b, NodeView t) { return b.buildConcreteValueExpr(t); }},
      {MRVIndex::ctor().view(), [](const TreeBuilder& b, NodeView t) { return b.buildMRVIndex(t); }},
      {TransitionExpr::ctor().view(), [](const TreeBuilder& b, NodeView t) { return b.buildTransitionExpr(t); }},
      {ModechartEqnExpr::ctor().view(), [](const TreeBuilder& b, NodeView t) { return b.buildModechartEqnExpr(t); }},
      {NativeFunctionCall::ctor().view(),
       [](const TreeBuilder& b, NodeView t) { return Expr(b.buildNativeFunctionCall(t)); }},
      {CalvexFunctionCall::ctor().view(),
       [](const TreeBuilder& b, NodeView t) { return Expr(b.buildCalvexFunctionCall(t)); }},
      {TessarinFunctionCall::ctor().view(),
       [](const TreeBuilder& b, NodeView t) { return Expr(b.buildTessarinFunctionCall(t)); }},
      {TessarinLocalFunctionCall::ctor().view(),
       [](const TreeBuilder& b, NodeView t) { return Expr(b.buildTessarinLocalFunctionCall(t)); }},
      {ValueRef::ctor().view(), [](const TreeBuilder& b, NodeView t) { return Expr(b.buildValueRef(t)); }},
      {ObjectRef::ctor().view(), [](const TreeBuilder& b, NodeView t) { return Expr(b.buildObjectRef(t)); }},
  };
  if (!name.ends_with(u"__")) return nullptr; // as all of them do
  for (const Row& row : rows) {
    if (row.name == name) return row.build;
  }
  return nullptr;
}

} // namespace

Expr buildReference(const TreeBuilder& builder, NodeView tree) {
  if (const Build build = reservedForm(firstName(tree))) return build(builder, tree);
  return builder.buildVariable(tree);
}

// ---- variables ----

Variable TreeBuilder::buildVariable(NodeView tree) const {
  // Most are a plain name.
  if (tree.count() == 1 && tree.child(0).isTerminalType(TokenId::ID)) {
    return {buildIdent(tree.child(0)), {}, std::nullopt, rangeOf(tree)};
  }
  std::vector<std::size_t> positions = namePositions(tree);
  if (positions.empty()) fatal(notRecognized, 543, buildVariableSignature);
  const std::size_t last = positions.back();
  positions.pop_back();
  std::optional<Arguments> arguments;
  if (last + 1 < tree.count()) {
    const ArgumentList list = argumentListAt(tree, last + 1);
    const std::vector<Subscript> positional = buildSubscripts(positionalList(list.arguments));
    arguments = Arguments(positional, buildEqnNamedArgs(namedList(list.arguments), true), list.range);
  }
  const nvf::Expressions<IdParenSubs> path = buildIdSubsPath(tree, positions);
  return {buildIdent(childOf(tree, last)), path, arguments, rangeOf(tree)};
}

nvf::Expressions<IdParenSubs> TreeBuilder::buildIdSubsPath(NodeView tree,
                                                           const std::vector<std::size_t>& positions) const {
  std::vector<IdParenSubs> steps;
  steps.reserve(positions.size());
  for (const std::size_t position : positions) {
    const Ident name = buildIdent(childOf(tree, position));
    if (position + 1 == tree.count() || childOf(tree, position + 1).isTerminalType(TokenId::DOT)) {
      steps.emplace_back(name, std::nullopt);
      continue;
    }
    const ArgumentList list = argumentListAt(tree, position + 1);
    const NodeView named = namedList(list.arguments);
    if (named.count() != 0) raiseAt<UnexpectedNamedArg>(placeOf(named));
    steps.emplace_back(name, ParenSubs(buildSubscripts(positionalList(list.arguments)), list.range));
  }
  return nvf::Expressions<IdParenSubs>(std::move(steps));
}

std::vector<Subscript> TreeBuilder::buildSubscripts(NodeView tree) const {
  return mapChildren(tree, [this](NodeView child) {
    if (child.isTerminalType(TokenId::COLON)) return Subscript(Subscript::Type::Colon, child.token().location());
    return Subscript(buildExpr(child));
  });
}

std::vector<NamedArgument> TreeBuilder::buildEqnNamedArgs(NodeView tree, bool allowColonEquals) const {
  return mapChildren(tree, [&](NodeView child) {
    const Expr value = buildExpr(childOf(child, 2));
    const NodeView sign = childOf(child, 1);
    const bool isColonEquals = sign.isTerminalType(TokenId::COLONEQUALS);
    if (isColonEquals && !allowColonEquals) raiseAt<NoColonEquals>(placeOf(sign));
    const NodeView name = childOf(child, 0);
    const bool isValueRef = firstName(name) == ValueRef::ctor().view();
    return NamedArgument(isValueRef ? NamedArgumentName(buildValueRef(name)) : NamedArgumentName(buildVariable(name)),
                         value, isColonEquals);
  });
}

// ---- paths ----

FullPathVariable TreeBuilder::buildFullPathVariable(NodeView tree) const {
  using Msg = InvalidFullPathVariableSyntax;
  const NodeView positional = reservedArguments<Msg>(tree, 1, anyNumber);
  const std::vector<Subscript> subs = buildSubscripts(positional);
  if (subs.front().expr() == nullptr) raiseAt<Msg>(placeOf(tree));
  return {to_unique_paths(*subs.front().expr()), furtherSubs(subs, 1, rangeOf(positional)), std::nullopt,
          rangeOf(tree)};
}

RelativePathVariable TreeBuilder::buildRelativePathVariable(NodeView tree) const {
  using Msg = InvalidRelativePathVariableSyntax;
  const NodeView positional = reservedArguments<Msg>(tree, 2, anyNumber);
  const std::vector<Subscript> subs = buildSubscripts(positional);
  const std::size_t depth = subs[0].expr() == nullptr ? 0 : to_whole_number(*subs[0].expr()).value_or(0);
  const Variable* name = subs[1].expr() == nullptr ? nullptr : subs[1].expr()->getIf<Variable>();
  if (depth == 0 || name == nullptr || !name->isID()) raiseAt<Msg>(placeOf(tree));
  return {nvf::Positive<std::size_t>(depth), name->id().id(), furtherSubs(subs, 2, rangeOf(positional)), rangeOf(tree)};
}

// ---- values and wrappers ----

Expr TreeBuilder::buildConcreteValueExpr(NodeView tree) const {
  if (toValue_ != nullptr) {
    if (const auto tokens = valueTokens(tree)) {
      if (const auto value = (*toValue_)(*tokens)) return ConcreteValueExpr(*value, rangeOf(tree));
    }
  }
  return buildVariable(tree);
}

Expr TreeBuilder::buildMRVIndex(NodeView tree) const {
  if (!callArguments(tree)) return buildVariable(tree);
  const NodeView positional = reservedArguments<InvalidFunctionCallSyntax>(tree, 3, 3);
  const auto index = [&](std::size_t i) {
    if (!childOf(positional, i).isTerminalType(TokenId::NUMBER)) raiseAt<InvalidFunctionCallSyntax>(placeOf(tree));
    std::string digits;
    for (const char16_t unit : childOf(positional, i).token().text()) digits += static_cast<char>(unit);
    return boost::lexical_cast<std::size_t>(digits);
  };
  const Expr expr = buildExpr(childOf(positional, 0));
  const std::size_t rvIndex = index(1);
  return MRVIndex(expr, rvIndex, index(2), rangeOf(tree));
}

Expr TreeBuilder::buildTransitionExpr(NodeView tree) const {
  if (!callArguments(tree)) return buildVariable(tree);
  const NodeView positional = reservedArguments<InvalidFunctionCallSyntax>(tree, 2, 2);
  const Expr expr = buildExpr(childOf(positional, 0));
  return TransitionExpr(expr, buildExpr(childOf(positional, 1)));
}

Expr TreeBuilder::buildModechartEqnExpr(NodeView tree) const {
  if (!callArguments(tree)) return buildVariable(tree);
  const NodeView positional = reservedArguments<InvalidFunctionCallSyntax>(tree, 1, 1);
  return ModechartEqnExpr(buildExpr(childOf(positional, 0)).get<IfExpr>());
}

// ---- calls ----

NativeFunctionCall TreeBuilder::buildNativeFunctionCall(NodeView tree) const {
  const NodeView positional = reservedArguments<InvalidFunctionCallSyntax>(tree, 1, 1);
  const auto call =
      to_nativefunctioncall(variableArgument<InvalidFunctionCallSyntax>(*this, tree, childOf(positional, 0)));
  if (!call) raiseAt<InvalidFunctionCallSyntax>(placeOf(tree));
  return *call;
}

CalvexFunctionCall TreeBuilder::buildCalvexFunctionCall(NodeView tree) const {
  const NodeView positional = reservedArguments<InvalidFunctionCallSyntax>(tree, 4, 4);
  const Callee callee = calleeOf(*this, tree, childOf(positional, 0));
  const auto flag = [&](std::size_t i) {
    if (childOf(positional, i).type() != 0) raiseAt<InvalidFunctionCallSyntax>(placeOf(tree));
    return childOf(positional, i).token().text().view() == u"1";
  };
  const bool isEnum = flag(1);
  const bool dottedEnum = flag(2);
  const bool evalCompileTime = flag(3);
  const nvf::Range range = rangeOf(tree);
  if (!callee.arguments) return {callee.path, isEnum, dottedEnum, evalCompileTime, range};
  return {callee.path, *callee.arguments, isEnum, dottedEnum, evalCompileTime, range};
}

TessarinFunctionCall TreeBuilder::buildTessarinFunctionCall(NodeView tree) const {
  const NodeView positional = reservedArguments<InvalidFunctionCallSyntax>(tree, 1, 1);
  const Callee callee = calleeOf(*this, tree, childOf(positional, 0));
  const nvf::Range range = rangeOf(tree);
  if (!callee.arguments) return {callee.path, range};
  return {callee.path, *callee.arguments, range};
}

TessarinLocalFunctionCall TreeBuilder::buildTessarinLocalFunctionCall(NodeView tree) const {
  const NodeView positional = reservedArguments<InvalidFunctionCallSyntax>(tree, 2, 2);
  const Callee file = calleeOf(*this, tree, childOf(positional, 0));
  const Variable function = variableArgument<InvalidFunctionCallSyntax>(*this, tree, childOf(positional, 1));
  if (file.arguments || !function.leadingPath().empty()) raiseAt<InvalidFunctionCallSyntax>(placeOf(tree));
  const nvf::Range range = rangeOf(tree);
  if (!function.tail()) return {file.path, function.id().id(), range};
  return {file.path, function.id().id(), positionalOf(tree, *function.tail()), range};
}

// ---- references to values and objects ----

ValueRef TreeBuilder::buildValueRef(NodeView tree) const {
  using Msg = InvalidValueRefSyntax;
  const NodeView positional = reservedArguments<Msg>(tree, 1, 2);
  const nvf::Expressions<IdValueIndices> path = constantPath<Msg>(*this, tree, childOf(positional, 0));
  const IdValueIndices& last = *(path.end() - 1);
  if (last.indices()) raiseAt<Msg>(placeOf(tree));
  std::optional<ValueRefTail> tail;
  if (positional.count() == 2) tail = buildValueRefTail(childOf(positional, 1));
  return {last.ident(), nvf::Expressions<IdValueIndices>(path.begin(), path.end() - 1), tail, std::nullopt,
          rangeOf(tree)};
}

std::optional<ValueRefTail> TreeBuilder::buildValueRefTail(NodeView tree) const {
  using Msg = InvalidValueRefSyntax;
  const NodeView positional = reservedArguments<Msg>(tree, 0, anyNumber);
  // Any name but this one stands for subscripts: intended.
  if (firstName(tree) != ValueRef::idTailCtor().view()) {
    return ValueRefTail(ParenSubs(buildSubscripts(positional), rangeOf(tree)));
  }
  if (positional.count() != 1) raiseAt<Msg>(placeOf(tree));
  const Variable name = variableArgument<Msg>(*this, tree, childOf(positional, 0));
  if (!name.isID()) raiseAt<Msg>(placeOf(tree));
  return ValueRefTail(name.id());
}

ObjectRef TreeBuilder::buildObjectRef(NodeView tree) const {
  using Msg = InvalidObjectRefSyntax;
  const NodeView positional = reservedArguments<Msg>(tree, 1, 1);
  const nvf::Expressions<IdValueIndices> path = constantPath<Msg>(*this, tree, childOf(positional, 0));
  return {nvf::Expressions1<IdValueIndices>(path), std::nullopt, rangeOf(tree)};
}

} // namespace tessarin::compiler::core
