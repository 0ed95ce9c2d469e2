#include "tessarin/parser/ast/Make.hpp"

#include <cmath>

namespace tessarin::compiler::core::make {

// ---- names ----

nvf::CxId id(const AnyText& text) {
  return nvf::CxId(text.view());
}
nvf::CxIdPath path(const AnyText& dotted) {
  return nvf::CxIdPath(dotted.view());
}
Ident ident(const AnyText& text) {
  return {id(text), nvf::Range()};
}
nvf::Expressions<Ident> idents(const std::vector<AnyText>& names) {
  std::vector<Ident> result;
  for (const AnyText& name : names) result.push_back(ident(name));
  return nvf::Expressions<Ident>(std::move(result));
}
Name name(const AnyText& dotted) {
  return Name(nvf::BasicCxIdPath<0>(dotted.view()));
}

// ---- literals ----

Expr number(const AnyText& text) {
  return NumberLiteral(nvf::NumberString(text.view()), nvf::Range());
}
Expr number(double value) {
  if (std::signbit(value) && !std::isnan(value)) return negate(number(-value));
  return NumberLiteral(nvf::NumberString(value), nvf::Range());
}
Expr text(const AnyText& content) {
  return StringLiteral(content.string(), nvf::Range());
}
UnitLiteral unit(const AnyText& text) {
  return {nvf::ExprString(text.view()), nvf::Range()};
}
Expr withUnit(const Expr& expr, const AnyText& unitText) {
  return UnitExpr(expr, unit(unitText), nvf::Range());
}
Expr valueIn(const Expr& expr, const AnyText& unitText) {
  return ValueExpr(expr, unit(unitText), nvf::Range());
}
ConcreteValueExpr constant(const nvf::ArraySize& size, std::vector<double> elements, const AnyText& unitText) {
  const nvf::Array<double> array(size, std::move(elements));
  return {nvf::Value(array, nvf::UnitsExpr(unitText.view())), nvf::Range()};
}
ConcreteValueExpr constant(double number, const AnyText& unitText) {
  return constant(nvf::ArraySize::scalar(), {number}, unitText);
}

// ---- references and calls ----

Subscript colon() {
  return {};
}
ParenSubs parenSubs(Subscripts subscripts) {
  return {std::move(subscripts), nvf::Range()};
}
IdParenSubs step(const AnyText& name) {
  return {ident(name), std::nullopt};
}
IdParenSubs step(const AnyText& name, Subscripts subscripts) {
  return {ident(name), parenSubs(std::move(subscripts))};
}
Arguments arguments(Subscripts positional, const NamedValues& named) {
  std::vector<NamedArgument> namedArguments;
  for (const auto& [name, value] : named) {
    namedArguments.emplace_back(Variable(id(name), nvf::Range()), value, false);
  }
  return {std::move(positional), std::move(namedArguments), nvf::Range()};
}
Variable variable(const std::vector<IdParenSubs>& path, const AnyText& name, const std::optional<Arguments>& tail) {
  return {ident(name), nvf::Expressions<IdParenSubs>(path), tail, nvf::Range()};
}
Variable variable(const AnyText& dotted, const std::optional<Arguments>& tail) {
  std::vector<IdParenSubs> steps;
  for (const nvf::CxId& name : path(dotted)) steps.emplace_back(Ident(name, nvf::Range()), std::nullopt);
  const Ident last = steps.back().ident();
  steps.pop_back();
  return {last, nvf::Expressions<IdParenSubs>(std::move(steps)), tail, nvf::Range()};
}
Expr var(const AnyText& dotted) {
  return variable(dotted);
}
Expr call(const AnyText& dotted, Subscripts positional, const NamedValues& named) {
  return variable(dotted, arguments(std::move(positional), named));
}

// ---- compound expressions ----

Expr matrix(std::vector<MatrixExpr::Row> rows) {
  return MatrixExpr(std::move(rows), nvf::Range());
}
nvf::Expressions<IdentValuePair> pairs(const NamedValues& values) {
  std::vector<IdentValuePair> result;
  for (const auto& [name, value] : values) result.emplace_back(ident(name), value, nvf::Location());
  return nvf::Expressions<IdentValuePair>(std::move(result));
}
Expr fields(const NamedValues& values) {
  return FieldValueArrayExpr(pairs(values), nvf::Range());
}
EqnItem assertion(const Expr& predicate, const std::optional<AnyText>& text) {
  EqnAssertion::Message message = NoMessage();
  if (text) message = PreformattedMessage(nvf::MessageId(), text->string());
  return EqnAssertion(predicate, message, std::nullopt, nvf::Range());
}
IfExpr ifThen(const Expr& condition, const Items& items, const Items& elseItems,
              const std::vector<ElseifBranch>& branches) {
  return {condition, items, elseItems, branches, nvf::Range()};
}
IdListValuePair declaration(const AnyText& name, const Expr& value) {
  return declaration(std::vector<AnyText>{name}, value);
}
IdListValuePair declaration(const std::vector<AnyText>& names, const Expr& value) {
  std::vector<OptIdent> ids;
  for (const AnyText& name : names) {
    ids.push_back(name.view() == u"~" ? OptIdent(Tilde()) : OptIdent(ident(name)));
  }
  return {nvf::Expressions<OptIdent>(std::move(ids)), value, false};
}
LetExpr let(const std::vector<IdListValuePair>& declarations, const Items& items) {
  return {declarations, items, nvf::Range()};
}

// ---- blocks, models and functions ----

DeclarationBlock declarations(const DeclarationBlockParts& parts) {
  return {parts.type, pairs(parts.attributes), nvf::Expressions<DeclarationItem>(parts.declarations), parts.location};
}
EquationBlock equations(Items items) {
  return {std::move(items), {}, nvf::Location()};
}
Model model(const ModelParts& parts) {
  const DeclarativeSections sections(parts.declarations, parts.branches, parts.connections, parts.equations,
                                     parts.events, parts.modecharts, parts.annotations, parts.conditionals,
                                     parts.loops);
  return {parts.type,   ident(parts.name),   parts.base,    sections, pairs(parts.attributes),
          parts.source, parts.setupFunction, parts.location};
}
TSNFunction function(const FunctionParts& parts) {
  const DefinitionsBlock block(nvf::Expressions<FunctionEqnItem>(parts.definitions), {}, nvf::Location());
  return {ident(parts.name), idents(parts.outputs), idents(parts.inputs), nvf::Expressions1<DefinitionsBlock>{block},
          parts.source};
}

} // namespace tessarin::compiler::core::make
