// Assignment is by value: a part of an object may be assigned to the object that owns it.
#include "tessarin/parser/ast/Sections.hpp"
#include "tessarin/parser/setup/SimpleSetupStmt.hpp"

#include "ast/builders.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <compare>
#include <string>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

/// What a part tells of itself. Unlike a copy it does not keep alive what the part shares.
template <class T>
std::string telling(const T& value) {
  return digestBytes(value) + " " + std::to_string(hash_value(value));
}

/// Assigns a part of `whole` to it, once as it is and once as often as there is one.
template <class T, class Part>
void expectTakes(T whole, Part part) {
  hash_value(whole); // a hash that is cached goes with the value
  const std::string expected = telling<T>(part(whole));
  whole = part(whole);
  EXPECT_EQ(telling(whole), expected);
}

/// Something with blocks of its own, unlike any other.
Expr inner() {
  return op(OpExprType::Add, string(u"a text that does not fit into a string without memory of its own"), name("b.c"));
}

TEST(Assignment, AnExpressionTakesAPartOfItself) {
  struct Case {
    const char* what;
    Expr whole;
    const Expr& (*part)(const Expr& whole);
  };
  const Items items{EqnItem(inner())};
  Case cases[] = {
      {"UnitExpr", withUnit(inner(), "m"), [](const Expr& e) -> const Expr& { return e.get<UnitExpr>().expr(); }},
      {"ValueExpr", ValueExpr(inner(), unitText("m"), nvf::Range()),
       [](const Expr& e) -> const Expr& { return e.get<ValueExpr>().expr(); }},
      {"MatrixExpr", matrix({{number("1"), inner()}}),
       [](const Expr& e) -> const Expr& { return e.get<MatrixExpr>().element(0, 1); }},
      {"FieldValueArrayExpr", fields({{"n", inner()}}),
       [](const Expr& e) -> const Expr& { return e.get<FieldValueArrayExpr>().pair(0).value(); }},
      {"IfExpr", ifThen(inner(), {}), [](const Expr& e) -> const Expr& { return e.get<IfExpr>().condition(); }},
      {"an item", ifThen(name("c"), items),
       [](const Expr& e) -> const Expr& { return e.get<IfExpr>().ifEqnItem(0).get<Expr>(); }},
      {"a branch", ifThen(name("c"), {}, {}, {ElseifBranch(inner(), {})}),
       [](const Expr& e) -> const Expr& { return e.get<IfExpr>().elseifBranch(0).condition(); }},
      {"OpExpr", op(OpExprType::Not, inner()),
       [](const Expr& e) -> const Expr& { return e.get<OpExpr>().operandAt(0); }},
      {"LetExpr", let({declaration("x", inner())}, {}),
       [](const Expr& e) -> const Expr& { return e.get<LetExpr>().declarationAt(0).value(); }},
      {"MRVIndex", MRVIndex(inner(), 1, 2, nvf::Range()),
       [](const Expr& e) -> const Expr& { return e.get<MRVIndex>().expr(); }},
      {"TransitionExpr", TransitionExpr(inner(), name("p")),
       [](const Expr& e) -> const Expr& { return e.get<TransitionExpr>().expr(); }},
      {"its condition", TransitionExpr(name("p"), inner()),
       [](const Expr& e) -> const Expr& { return e.get<TransitionExpr>().preCondition(); }},
      {"ModechartEqnExpr", ModechartEqnExpr(ifThen(inner(), {})),
       [](const Expr& e) -> const Expr& { return e.get<ModechartEqnExpr>().expr().condition(); }},
      {"NativeFunctionCall", NativeFunctionCall(idPath("f"), {inner()}, {}, nvf::Range()),
       [](const Expr& e) -> const Expr& { return e.get<NativeFunctionCall>().positionalArguments()[0]; }},
      {"a named argument", NativeFunctionCall(idPath("f"), {}, {{id("n"), inner()}}, nvf::Range()),
       [](const Expr& e) -> const Expr& { return e.get<NativeFunctionCall>().namedArguments().begin()->second; }},
      {"a subscript", call("f", {inner()}),
       [](const Expr& e) -> const Expr& { return *e.get<Variable>().tail()->posArgs()[0].expr(); }},
      {"a value by name", call("f", {}, {{"n", inner()}}),
       [](const Expr& e) -> const Expr& { return e.get<Variable>().tail()->namedArgs()[0].value(); }},
  };
  for (Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string expected = telling(c.part(c.whole));
    c.whole = c.part(c.whole);
    EXPECT_EQ(telling(c.whole), expected);
  }

  Expr nested = inner();
  for (int i = 0; i < 100; ++i) nested = op(OpExprType::UnaryMinus, nested);
  while (const auto* minus = nested.getIf<OpExpr>()) nested = minus->operandAt(0);
  EXPECT_EQ(nested.id(), 3U);
}

TEST(Assignment, SoDoTheOtherClasses) {
  const auto itself = [](const auto& value) -> const auto& {
    return value;
  };
  const auto nestedAssertion = assertion(ifThen(name("c"), {assertion(inner(), inner())}));
  const auto nested = [](const EqnAssertion& a) -> const EqnAssertion& {
    return a.predicate().get<IfExpr>().ifEqnItem(0).get<EqnAssertion>();
  };
  expectTakes(nestedAssertion.get<EqnAssertion>(), nested);
  expectTakes<EqnItem>(Expr(ifThen(name("c"), {EqnItem(inner())})),
                       [](const EqnItem& i) -> const EqnItem& { return i.get<Expr>().get<IfExpr>().ifEqnItem(0); });
  expectTakes<EqnItem>(nestedAssertion, [](const EqnItem& i) -> const EqnItem& {
    return i.get<EqnAssertion>().predicate().get<IfExpr>().ifEqnItem(0);
  });
  expectTakes<FunctionEqnItem>(nestedAssertion.get<EqnAssertion>(), itself);

  expectTakes(TransitionExpr(TransitionExpr(inner(), inner()), inner()),
              [](const TransitionExpr& t) -> const TransitionExpr& { return t.expr().get<TransitionExpr>(); });
  expectTakes(ModechartEqnExpr(ifThen(ModechartEqnExpr(ifThen(inner(), {})), {})),
              [](const ModechartEqnExpr& m) -> const ModechartEqnExpr& {
                return m.expr().condition().get<ModechartEqnExpr>();
              });
  expectTakes(Subscript(call("f", {Subscript(inner()), colon()})),
              [](const Subscript& s) -> const Subscript& { return s.expr()->get<Variable>().tail()->posArgs()[0]; });
  expectTakes(Subscript(call("f", {Subscript(inner()), colon()})),
              [](const Subscript& s) -> const Subscript& { return s.expr()->get<Variable>().tail()->posArgs()[1]; });
  expectTakes(StringLiteral(ustring(100, u'x'), onLine(1)), itself);

  // Shared values.
  expectTakes(UnitExpr(withUnit(inner(), "m"), unitText("s"), nvf::Range()),
              [](const UnitExpr& u) -> const UnitExpr& { return u.expr().get<UnitExpr>(); });
  expectTakes(variable("f", arguments({call("g", {inner()})})),
              [](const Variable& v) -> const Variable& { return v.tail()->posArgs()[0].expr()->get<Variable>(); });
  expectTakes(ExprHandle(withUnit(inner(), "m")), itself);

  // Sections hold sections.
  const auto sections = [](const ConditionalSection& section) {
    return DeclarativeSections({}, {}, {}, {}, {}, {}, {}, {section}, {});
  };
  const auto first = [](const DeclarativeSections& s) -> const ConditionalSection& {
    return s.conditionalSections().front();
  };
  const auto condition = [&](const DeclarativeSections& s) {
    return ConditionalSection(IfSection(inner(), s), {ElseifSection(inner(), s)}, ElseSection(s));
  };
  const DeclarativeSections twice = sections(condition(sections(condition({}))));
  expectTakes(twice, [&](const DeclarativeSections& s) -> const DeclarativeSections& {
    return first(s).ifSection().declarations();
  });
  expectTakes(first(twice), [&](const ConditionalSection& s) -> const ConditionalSection& {
    return first(s.elseifSections()[0].declarations());
  });
  expectTakes(first(twice).ifSection(),
              [&](const IfSection& s) -> const IfSection& { return first(s.declarations()).ifSection(); });
  expectTakes(first(twice).elseifSections()[0], [&](const ElseifSection& s) -> const ElseifSection& {
    return first(s.declarations()).elseifSections()[0];
  });

  // Statements hold statements.
  const SimpleSetupAsgnStmt assign(Name("a.b"), inner());
  expectTakes<SimpleSetupStmt>(
      SimpleSetupIfStmt(name("c"), SimpleSetupStmt(assign), SimpleSetupStmt()),
      [](const SimpleSetupStmt& s) -> const SimpleSetupStmt& { return s.get<SimpleSetupIfStmt>().branch(true); });
  expectTakes<SimpleSetupStmt>(nvf::Expressions<SimpleSetupStmt>{SimpleSetupStmt(assign)},
                               [](const SimpleSetupStmt& s) -> const SimpleSetupStmt& {
                                 return s.get<nvf::Expressions<SimpleSetupStmt>>().front();
                               });
}

TEST(Assignment, ACachedHashGoesWithTheValue) {
  StringLiteral text(u"one", onLine(1));
  const std::size_t one = hash_value(text);
  text = StringLiteral(u"two", onLine(1));
  EXPECT_EQ(hash_value(text), hash_value(StringLiteral(u"two", onLine(2))));
  EXPECT_NE(hash_value(text), one);
  StringLiteral other(u"one", onLine(3));
  swap(text, other);
  EXPECT_EQ(hash_value(text), one);
  strip_annotation_inplace(text);
  EXPECT_EQ(hash_value(text), one);
}

TEST(Unions, AreMadeOfEachAlternativeByValue) {
  const Variable v = variable("v");
  const EqnItem item(v);
  EXPECT_EQ(item.get<Expr>().get<Variable>(), v);
  EXPECT_EQ(EqnItem(OpExpr(OpExprType::Not, v, nvf::Range())).get<Expr>().id(), 12U);
  EXPECT_EQ((std::vector<EqnItem>{v}), std::vector<EqnItem>(1, item));
  EXPECT_EQ(ConnectionFirstArg(v).get<Expr>(), Expr(v));
  static_assert(std::is_convertible_v<Variable, Expr> && std::is_convertible_v<Expr, EqnItem>);
  static_assert(!std::is_constructible_v<Expr, Ident> && !std::is_constructible_v<OptIdent, Variable>);
  static_assert(!std::is_constructible_v<Expr, EqnItem>);
}

TEST(Subscripts, OrderAndEqualityAgree) {
  // No expression at all, although the type says that there is one, is less than any.
  expectDistinctInOrder<Subscript>({
      Subscript(),
      Subscript(Subscript::Type::Expression, onLine(1).begin()),
      Subscript(Expr()),
      Subscript(name("a")),
  });
  expectEqualValues(Subscript(), Subscript(Subscript::Type::Colon, onLine(1).begin()));
  expectEqualValues(Subscript(Subscript::Type::Expression, onLine(1).begin()),
                    Subscript(Subscript::Type::Expression, nvf::Location()));
}

TEST(Names, ThatLaterStagesUse) {
  static_assert(std::is_same_v<EqnAssertion::MessageObject, MessageObject>);
  static_assert(std::is_same_v<EqnAssertion::MemberText, MemberText>);
  static_assert(std::is_same_v<EqnAssertion::RefText, RefText>);
  static_assert(std::is_base_of_v<nvf::SimpleAnnotation<EqnAssertion>, EqnAssertion>);
  static_assert(std::is_base_of_v<nvf::detail::Comparable<EqnAssertion>, EqnAssertion>);
  static_assert(std::three_way_comparable<EqnAssertion>);
  // No order: its "less" is none, see its header.
  static_assert(!std::three_way_comparable<DeclarationBlock>);
}

} // namespace
