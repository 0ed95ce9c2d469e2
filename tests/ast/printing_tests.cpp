#include "tessarin/parser/ast/Connection.hpp"
#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include "ast/builders.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;
using enum OpExprType;

struct Case {
  Expr expr;
  std::u16string text;
};

TEST(Printing, DefaultForm) {
  const Expr a = name("a");
  const Expr b = name("b");
  const Expr c = name("c");
  const Expr sum = op(Add, a, b);
  const Case cases[] = {
      {Time(), u"time"},
      {EndIndex(), u"end"},
      {number("1.50"), u"1.50"},
      {string(u"it's"), u"'it''s'"},
      // Operators: parentheses stand only where the tree needs them.
      {op(Sub, op(Sub, a, b), c), u"a - b - c"},
      {op(Sub, a, op(Sub, b, c)), u"a - (b - c)"},
      {op(Mul, sum, c), u"(a + b) * c"},
      {op(Add, op(Mul, a, b), c), u"a * b + c"},
      {op(OrOr, op(AndAnd, a, b), op(Or, a, b)), u"a && b || a | b"},
      {op(Lt, op(Lt, a, b), c), u"a < b < c"},
      {op(Power, a, op(Power, b, c)), u"(a ^ ((b ^ c)))"},
      {op(DotPower, op(Power, a, b), c), u"((a ^ b) .^ c)"},
      {op(UnaryMinus, sum), u"-(a + b)"},
      {op(Mul, op(UnaryMinus, a), b), u"-a * b"},
      {op(Not, op(Eq, a, b)), u"~(a == b)"},
      {op(Transpose, sum), u"(a + b)'"},
      {op(DotTranspose, op(Transpose, a)), u"a'.'"},
      {op(Der, sum), u"der(a + b)"},
      {op(Colon, a, sum), u"a : a + b"},
      {op(Colon3, a, op(Lt, a, b), c), u"a : (a < b) : c"},
      {op(RDiv, a, b), u"a \\ b"},
      // Compounds.
      {matrix({{number("1"), number("2")}, {number("3"), number("4")}}), u"[1, 2; 3, 4]"},
      {matrix({}), u"[]"},
      {matrix({{}, {a}}), u"[; a]"},
      {fields({{"n", a}, {"m", sum}}), u"{n = a, m = a + b}"},
      {withUnit(a, "m/s"), u"{a, 'm/s'}"},
      {ValueExpr(a, unitText("m"), nvf::Range()), u"value(a,'m')"},
      {ValueExpr(a, unitText("m"), StringLiteral(u"x", nvf::Range()), nvf::Range()), u"value(a,'m','x')"},
      // References.
      {variable({step("a", {number("1"), colon()}), step("b")}, "c", arguments({a}, {{"n", b}})),
       u"a(1, :).b.c(a, n = b)"},
      {call("f", {}), u"f()"},
      {fullPath(3), u"internal_full_path__(member(3))"},
      {fullPath(3, {a, colon()}), u"internal_full_path__(member(3), a, :)"},
      {relativePath(2, "x", {a}), u"internal_relative_path__(2, x, a)"},
      {valueRef({"a"}, "b"), u"internal_value_ref__(a.b)"},
      {valueRef({}, "b", ValueRefTail(ident("c"))), u"internal_value_ref__(b,internal_value_ref_id_tail__(c))"},
      {valueRef({}, "b", ValueRefTail(parenSubs({a}))), u"internal_value_ref__(b,internal_value_ref_subs_tail__(a))"},
      {objectRef({"a", "b"}), u"internal_object_ref__(a.b)"},
      {ObjectRef(nvf::Expressions1<IdValueIndices>{IdValueIndices(
                     ident("a"), nvf::Expressions<ConcreteValueExpr>{constant(1), constant(2)})},
                 std::nullopt, nvf::Range()),
       u"internal_object_ref__(a(concrete_value__(1,'1'),concrete_value__(2,'1')))"},
      // Kinds without syntax.
      {MRVIndex(a, 1, 2, nvf::Range()), u"internal_mrv_index__(a,1,2)"},
      {TransitionExpr(a, sum), u"internal_transition_expr__(a,a + b)"},
      {ModechartEqnExpr(ifThen(a, {b}, {c})), u"internal_modechart_eqn_expr__(if a, b; else c; end)"},
      {NativeFunctionCall(idPath("m.f"), nvf::Range()), u"internal_native_function_call__(m.f)"},
      {NativeFunctionCall(idPath("f"), {a}, {{id("n"), b}}, nvf::Range()),
       u"internal_native_function_call__(f(a, n = b))"},
      {CalvexFunctionCall(idPath("g"), {a}, true, false, true, nvf::Range()),
       u"internal_calvex_function_call__(g(a),1,0,1)"},
      {TessarinFunctionCall(idPath("p.h"), {}, nvf::Range()), u"internal_tessarin_function_call__(p.h())"},
      {TessarinLocalFunctionCall(idPath("p.q"), id("l"), {a}, nvf::Range()),
       u"internal_tessarin_local_function_call__(p.q,l(a))"},
      // Conditions and declarations on one line.
      {ifThen(a, {b}, {c}), u"if a, b; else c; end"},
      {ifThen(a, {}), u"if a, else end"},
      {ifThen(a, {b}, {c}, {ElseifBranch(sum, {a})}), u"if a, b; elseif a + b, a; else c; end"},
      {let({declaration("x", a), declaration({"y", "~"}, call("f", {}))}, {op(Eq, name("x"), b)}),
       u"let x = a; [y,~] = f(); in x == b; end"},
  };
  for (const Case& c2 : cases) EXPECT_EQ(to_string(c2.expr), c2.text);
}

TEST(Printing, UserForm) {
  const Expr a = name("a");
  const Variable original = variable("as.written");
  const Case cases[] = {
      {MRVIndex(a, 1, 2, nvf::Range()), u"a"},
      {TransitionExpr(a, name("b")), u"a"},
      {ModechartEqnExpr(ifThen(a, {a}, {a})), u"if a, a; else a; end"},
      {NativeFunctionCall(idPath("m.f"), {a}, {}, nvf::Range()), u"m.f(a)"},
      {CalvexFunctionCall(idPath("g"), {a}, true, false, true, nvf::Range()), u"g(a)"},
      {TessarinFunctionCall(idPath("p.h"), {}, nvf::Range()), u"p.h()"},
      {TessarinFunctionCall(idPath("p.h"), nvf::Range()), u"p.h"},
      {TessarinLocalFunctionCall(idPath("p.q"), id("l"), {a}, nvf::Range()), u"l(a)"},
      {FullPathVariable(FullPathVariable::Path{UniquePathElement(BaseClassPathElement())}, std::nullopt, original,
                        nvf::Range()),
       u"as.written"},
      {ValueRef(ident("b"), {}, std::nullopt, original, nvf::Range()), u"as.written"},
      {valueRef({}, "b"), u"internal_value_ref__(b)"},
      {ObjectRef(nvf::Expressions1<IdValueIndices>(constantPath({"a"})), original, nvf::Range()), u"as.written"},
      {constant(2.5), u"2.5"},
  };
  for (const Case& c : cases) EXPECT_EQ(to_user_string(c.expr), c.text);
}

TEST(Printing, IndentedForm) {
  const LetExpr inner = let({declaration("x", name("a"))}, {name("x")});
  const EquationBlock block(
      Items{Expr(ifThen(name("c"), {op(Eq, name("y"), number("1")), Expr(inner)}, {assertion(name("p"))}))},
      nvf::Expressions<IdentValuePair>{IdentValuePair(ident("k"), number("1"), nvf::Location())}, nvf::Location());
  EXPECT_EQ(block.string(2, 2), u"  equations (k = 1)\n"
                                u"    if c\n"
                                u"      y == 1;\n"
                                u"      let\n"
                                u"        x = a;\n"
                                u"      in\n"
                                u"        x;\n"
                                u"      end;\n"
                                u"    else\n"
                                u"      assert(p);\n"
                                u"    end;\n"
                                u"  end");
  EXPECT_EQ(EquationBlock().string(0, 2), u"equations \nend");

  const nvf::Expressions<IdentValuePair> update{IdentValuePair(ident("n"), number("0"), nvf::Location())};
  const EventBlock events({WhenClause(WhenBranch(name("p"), update), {ElseWhenBranch(name("q"), update)})},
                          nvf::Location());
  EXPECT_EQ(events.string(0, 2), u"events\n"
                                 u"  when p\n"
                                 u"    n = 0;\n"
                                 u"  elsewhen q\n"
                                 u"    n = 0;\n"
                                 u"  end;\n"
                                 u"end");

  // An operator with a lead gets the indent; a prefix operator, which has none, does not: intended.
  const ToStringContext line = ToStringContext().indent(Indentation{4}).asRValue(false);
  EXPECT_EQ(to_string(op(Add, name("a"), name("b")), line), u"    a + b");
  EXPECT_EQ(to_string(op(UnaryMinus, name("a")), line), u"-a");
  EXPECT_EQ(to_string(op(Power, name("a"), name("b")), line), u"(    a ^ b)");
  EXPECT_EQ(line.incrementIndent(2).indent(), 8U);
  EXPECT_EQ(ToStringContext().incrementIndent(2).indent(), 0U) << "what starts at indent 0 stays on one line";
}

TEST(Printing, Assertions) {
  const nvf::MessageId messageId = *nvf::MessageId::make(u"a:b");
  const auto text = [](const EqnAssertion::Message& message, const std::optional<Expr>& action) {
    return EqnAssertion(name("p"), message, action, nvf::Range()).string(core::Indentation{2});
  };
  EXPECT_EQ(text(NoMessage(), std::nullopt), u"  assert(p)");
  EXPECT_EQ(text(PreformattedMessage(nvf::MessageId(), u"it's"), std::nullopt), u"  assert(p, 'it''s')");
  EXPECT_EQ(text(PreformattedMessage(messageId, u"t"), name("x")), u"  assert(p, 'a:b', 't', Action = x)");
  EXPECT_EQ(text(MessageObject(messageId, {nvf::ustring(u"h"), MemberText(idPath("m.n"), nvf::Range()),
                                           RefText(valueRef({}, "r"), nvf::Range())}),
                 std::nullopt),
            u"  assert(p, message('a:b', 'h', text(m.n), text(internal_value_ref__(r))))");
}

TEST(Printing, ContextsSteerIt) {
  const Expr withUnits = op(Add, withUnit(name("a"), "m"), name("b"));
  ToStringContext context;
  context.unitExprFcn(
      std::make_shared<const ToStringContext::UnitExprFcn>(make_ctor_unit_expr_fcn(idPath("units.make"))));
  EXPECT_EQ(to_string(withUnits, context), u"units.make(a, 'm') + b");
  context.unitExprFcn(std::make_shared<const ToStringContext::UnitExprFcn>(make_error_always_unit_expr_fcn()));
  try {
    (void)to_string(withUnits, context);
    ADD_FAILURE();
  } catch (const UnexpectedUnitExpr& error) {
    EXPECT_STREQ(error.what(), "UnexpectedUnitExpr: {a, 'm'}");
  }

  // The first name of a reference is mapped, unless a `let` binds it.
  ToStringContext mapped;
  mapped.mapIdentifierFcn(std::make_shared<const ToStringContext::MapIdentifierFcn>([](const nvf::CxId& name) {
    return nvf::CxIdPath({id("top"), name});
  }));
  EXPECT_EQ(to_string(op(Add, name("a.b"), call("f", {name("x")})), mapped), u"top.a.b + top.f(top.x)");
  EXPECT_EQ(to_string(let({declaration("x", name("y"))}, {op(Eq, name("x"), name("y"))}), mapped),
            u"let x = top.y; in x == top.y; end");

  ToStringContext hooked;
  hooked.outputFcn([](const Expr& expr, const ToStringContext&) -> std::optional<ustring> {
    return expr == name("a") ? std::optional<ustring>(u"<a>") : std::nullopt;
  });
  EXPECT_EQ(to_string(op(Add, name("a"), name("b")), hooked), u"<a> + b");
  EXPECT_EQ(to_string(fields({{"n", name("a")}}), ToStringContext().fvaAsStruct(true)), u"struct('n', {a})");

  std::ostringstream stream;
  stream << Expr(string(u"\u20ac"));
  EXPECT_EQ(stream.str(), "'\xe2\x82\xac'");
}

/// What an object writes to a narrow stream.
template <class... Arguments>
std::string written(const Arguments&... arguments) {
  std::ostringstream stream;
  (stream << ... << arguments);
  return stream.str();
}

TEST(Printing, PartsPrintAlone) {
  const Arguments list = arguments({name("x"), colon()}, {{"n", name("y")}});
  const ToStringContext context;
  EXPECT_EQ(to_string(list, context), u"(x, :, n = y)");
  EXPECT_EQ(written(list), "(x, :, n = y)");
  EXPECT_EQ(list.namedArgs().front().string(context), u"n = y");
  EXPECT_EQ(list.posArgs().front().string(context), u"x");
  EXPECT_EQ(colon().string(ToStringContext().indent(Indentation{4})), u":");
  EXPECT_EQ(list.posArgs().front().copy(), list.posArgs().front());
  EXPECT_NE(list.posArgs().front().copy().expr(), list.posArgs().front().expr());
  EXPECT_EQ(to_string(step("s", {name("x")}), context), u"s(x)");
  EXPECT_EQ(to_string(FunctionEqnItem(declaration("x", name("y"))), context), u"x = y");
  EXPECT_EQ(written(EqnItem(name("x"))), "x");
  EXPECT_EQ(ident("a").string(context), u"a");
  EXPECT_EQ(Name(nvf::BasicCxIdPath<0>("a.b")).path(), idPath("a.b"));
  EXPECT_THROW((void)Name().path(), nvf::IdPathTooShort);

  const nvf::Expressions<IdentValuePair> update = pairs({{"n", number("0")}});
  EXPECT_EQ(WhenBranch(name("p"), update).string(2, 2), u"  when p\n    n = 0;\n");
  EXPECT_EQ(ElseWhenBranch(name("p"), update).string(0, 2), u"elsewhen p\n  n = 0;\n");
  EXPECT_EQ(WhenClause(WhenBranch(name("p"), {}), {}).string(0, 2), u"when p\nend");

  EXPECT_EQ(written(UniquePathElement(BaseClassPathElement()), ' ', UniquePathElement(MemberPathElement(3)), ' ',
                    UniquePathElement(ArrayMemberPathElement(3, 4))),
            "base member(3) arraymember(3,4)");
}

TEST(Printing, LiteralsWriteToStreams) {
  const auto narrow = [](const auto& outputter, const auto& value) {
    std::ostringstream stream;
    outputter(stream, value);
    return stream.str();
  };
  EXPECT_EQ(narrow(SimpleOutputter(), number("1.50").get<NumberLiteral>().value()), "1.50");
  EXPECT_EQ(narrow(CharacterVectorOutputter(), ustring(u"it's \u20ac")), "'it''s \xe2\x82\xac'");
  std::basic_ostringstream<char16_t> wide;
  nvf::setup_stream_locale(wide);
  CharacterVectorOutputter()(wide, ustring(u"it's"));
  EXPECT_EQ(wide.str(), u"'it''s'");
  EXPECT_EQ(number("1.50").get<NumberLiteral>().string(), u"1.50");
  EXPECT_EQ(narrow(SingleQuoteOutputter(), unitText("m/s").value()), "'m/s'");
}

template <class T>
std::string streamed(const T& value) {
  std::ostringstream stream;
  stream << value;
  return stream.str();
}

TEST(Streams, EveryClassWithATextHasAStreamForm) {
  const Expr x = name("x");
  const auto nameValue = IdentValuePair(ident("n"), x, nvf::Location());
  const nvf::Expressions<IdentValuePair> updates{nameValue};
  const WhenBranch when(x, updates);
  const ElseWhenBranch elseWhen(x, updates);
  EXPECT_EQ(streamed(ident("a")), "a");
  EXPECT_EQ(streamed(Tilde()), "~");
  EXPECT_EQ(streamed(OptIdent(ident("a"))), "a");
  EXPECT_EQ(streamed(ImplicitReference()), "*");
  EXPECT_EQ(streamed(Name("a.b")), "a.b");
  EXPECT_EQ(streamed(nameValue), "n = x");
  EXPECT_EQ(streamed(colon()), ":");
  EXPECT_EQ(streamed(Subscript(x)), "x");
  EXPECT_EQ(streamed(parenSubs({colon(), x})), "(:, x)");
  EXPECT_EQ(streamed(step("a", {x})), "a(x)");
  EXPECT_EQ(streamed(NamedArgument(variable("n"), x, true)), "n := x");
  EXPECT_EQ(streamed(IdParenIds(ident("a"), idents({"i", "j"}))), "a(i,j)");
  EXPECT_EQ(streamed(declaration({"a", "~"}, x)), "[a,~] = x");
  EXPECT_EQ(streamed(FunctionEqnItem(declaration("a", x))), "a = x");
  EXPECT_EQ(streamed(unitText("m/s")), "'m/s'");
  EXPECT_EQ(streamed(EquationBlock({x}, {}, nvf::Location())), "equations \n  x;\nend");
  EXPECT_EQ(streamed(when), "when x\n  n = x;\n");
  EXPECT_EQ(streamed(elseWhen), "elsewhen x\n  n = x;\n");
  EXPECT_EQ(streamed(WhenClause(when, {elseWhen})), "when x\n  n = x;\nelsewhen x\n  n = x;\nend");
  EXPECT_EQ(streamed(EventBlock({WhenClause(when, {})}, nvf::Location())), "events\n  when x\n    n = x;\n  end;\nend");
}

TEST(Streams, AKindOfAnExpressionIsPrintedAsOne) {
  // Also where it converts to other classes that have a text, as to an argument of a connection.
  const Variable v = variable("a.b", arguments({number("1")}));
  EXPECT_EQ(streamed(v), "a.b(1)");
  EXPECT_EQ(to_string(v, ToStringContext()), u"a.b(1)");
  EXPECT_EQ(streamed(valueRef({"a"}, "b")), streamed(Expr(valueRef({"a"}, "b"))));
  EXPECT_EQ(streamed(objectRef({"a"})), streamed(Expr(objectRef({"a"}))));
  EXPECT_EQ(streamed(Time()), "time");
  EXPECT_EQ(streamed(StringLiteral(u"it's", nvf::Range())), "'it''s'");
  EXPECT_EQ(streamed(ifThen(name("c"), {}, {})), streamed(Expr(ifThen(name("c"), {}, {}))));
}

} // namespace
