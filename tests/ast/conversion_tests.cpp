#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/Conversions.hpp"

#include "ast/builders.hpp"
#include "support/large.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace tessarin::test;
using core::ArrayMemberPathElement;
using core::BaseClassPathElement;
using core::MemberPathElement;
using core::Subscript;
using core::UniquePath;
using core::Variable;

constexpr std::size_t largest = std::numeric_limits<std::size_t>::max();

std::string text(const Expr& expr) {
  return nvf::narrow(core::to_string(expr));
}

// ---- unique paths ----

TEST(UniquePaths, AreVariables) {
  const std::pair<UniquePath, std::string> cases[] = {
      {{BaseClassPathElement()}, "base"},
      {{BaseClassPathElement(), MemberPathElement(3)}, "base.member(3)"},
      {{ArrayMemberPathElement(0, 12), BaseClassPathElement()}, "arraymember(0, 12).base"},
      {{MemberPathElement((std::size_t{1} << 53U) + 1)}, "member(9007199254740993)"},
      {{MemberPathElement(largest), ArrayMemberPathElement(largest - 1, 0)},
       "member(18446744073709551615).arraymember(18446744073709551614, 0)"},
  };
  for (const auto& [path, expected] : cases) {
    const Expr expr = core::to_expr(path);
    EXPECT_EQ(text(expr), expected);
    EXPECT_EQ(core::to_unique_path(expr), path) << expected;
    EXPECT_EQ(core::expr_range(expr), nvf::Range());
  }
  EXPECT_EQ(core::to_unique_path(call("base", {})), UniquePath{BaseClassPathElement()});
  EXPECT_EQ(core::to_unique_path(call("member", {number("2e0")})), UniquePath{MemberPathElement(2)});
}

void expectRefused(const std::function<void()>& convert, const nvf::Location& location) {
  using Error = nvf::LocatedError<kelvane::tessarin::compiler::core::ast::InvalidFullPathVariableSyntax>;
  try {
    convert();
    ADD_FAILURE() << "not refused";
  } catch (const Error& error) {
    EXPECT_EQ(error.location(), location);
    EXPECT_FALSE(error.showColumn());
  }
}

TEST(UniquePaths, OtherExpressionsAreRefused) {
  const nvf::Range here = onLine(7);
  const Expr one = number("1");
  const auto member = [&here](const Subscripts& subs, const NamedValues& named = {}) {
    return variable("member", arguments(subs, named), here);
  };
  const Expr cases[] = {
      number("1", here),
      name("members", here),
      name("a.base", here),
      name("base.a", here),
      name("member", here),
      name("arraymember", here),
      variable("base", arguments({one}), here),
      variable("base", arguments({}, {{"n", one}}), here),
      variable("arraymember", arguments({one}), here),
      variable("arraymember", arguments({one, one, one}), here),
      variable({step("member")}, "base", std::nullopt, here),
      variable({step("member", {one, one})}, "base", std::nullopt, here),
      variable({step("member", {colon()})}, "base", std::nullopt, here),
      member({}),
      member({colon()}),
      member({one, one}),
      member({one}, {{"n", one}}),
      member({name("i")}),
      member({number("1.5")}),
      member({number("1i")}),
      member({number("inf")}),
      member({number("nan")}),
      member({number("-1")}),
      member({op(OpExprType::UnaryMinus, one)}),
      member({number("1e30")}),
      member({number("18446744073709551616")}),
      member({string(u"1")}),
  };
  for (const Expr& expr : cases) {
    SCOPED_TRACE(text(expr));
    expectRefused([&] { core::to_unique_path(expr); }, here.begin());
  }
}

TEST(UniquePaths, SeveralStandInOneRow) {
  const Expr base = name("base");
  const Expr member = call("member", {number("2")});
  const UniquePath basePath{BaseClassPathElement()};
  const UniquePath memberPath{MemberPathElement(2)};
  using Paths = std::vector<UniquePath>;
  EXPECT_EQ(core::to_unique_paths(member), Paths{memberPath});
  EXPECT_EQ(core::to_unique_paths(matrix({{base, member, base}})), (Paths{basePath, memberPath, basePath}));
  EXPECT_EQ(core::to_unique_paths(matrix({})), Paths());
  EXPECT_EQ(core::to_unique_paths(matrix({{}})), Paths());
  expectRefused([&] { core::to_unique_paths(matrix({{base}, {member}}, onLine(3))); }, onLine(3).begin());
  expectRefused([&] { core::to_unique_paths(matrix({{base, name("x", onLine(4))}}, onLine(3))); }, onLine(4).begin());
}

TEST(WholeNumbers, AreReadExactly) {
  const std::pair<std::string, std::optional<std::size_t>> cases[] = {
      {"0", 0},
      {"-0", 0},
      {"007", 7},
      {"3.0", 3},
      {"1e3", 1000},
      {"9007199254740993", 9007199254740993},
      {"18446744073709551615", largest},
      {"1.8446744073709550e19", 18446744073709549568U}, // the last double below 2^64
      {"18446744073709551616", std::nullopt},
      {"1e30", std::nullopt},
      {"1e999", std::nullopt},
      {"0.5", std::nullopt},
      {"-1", std::nullopt},
      {"2i", std::nullopt},
      {"nan", std::nullopt},
  };
  for (const auto& [literal, expected] : cases) EXPECT_EQ(core::to_whole_number(number(literal)), expected) << literal;
  EXPECT_EQ(core::to_whole_number(string(u"1")), std::nullopt);
}

// ---- references ----

TEST(References, WithConstantIndices) {
  const Expr three = constant(3);
  const Expr four = constant(4);
  const nvf::Range here = onLine(2);
  const auto index = [](const Expr& expr) { return expr.get<core::ConcreteValueExpr>(); };
  const nvf::Expressions<core::IdValueIndices> path{
      core::IdValueIndices(ident("a"), std::nullopt),
      core::IdValueIndices(ident("b"), nvf::Expressions<core::ConcreteValueExpr>{index(three), index(four)})};
  const std::vector<core::IdParenSubs> steps{step("a"), step("b", {three, four})};
  EXPECT_EQ(core::to_idvalueindicespath(core::IdSubsPath(steps)), path);
  EXPECT_EQ(core::to_idvalueindicespath({}), nvf::Expressions<core::IdValueIndices>());

  const Variable plain = variable(steps, "c", std::nullopt, here);
  EXPECT_EQ(core::to_valueref(plain), core::ValueRef(ident("c"), path, std::nullopt, std::nullopt, here));
  EXPECT_EQ(core::to_valueref(plain)->range(), here);
  EXPECT_EQ(core::to_objectref(plain)->ref().back(), core::IdValueIndices(ident("c"), std::nullopt));
  EXPECT_EQ(core::to_objectref(plain)->originalVariable(), plain);
  EXPECT_EQ(core::to_objectref(plain)->range(), here);

  const Subscripts subs{name("i"), colon()};
  const core::Arguments tail(subs, {}, onLine(5));
  const Variable indexed = variable(steps, "c", tail, here);
  const std::optional<core::ValueRef> ref = core::to_valueref(indexed);
  EXPECT_EQ(ref, core::ValueRef(ident("c"), path, core::ValueRefTail(parenSubs(subs)), std::nullopt, here));
  EXPECT_EQ(ref->tail()->get<core::ParenSubs>().range(), onLine(5));
  EXPECT_EQ(core::to_objectref(indexed), std::nullopt);

  const Variable element = variable("a.b", arguments({four}));
  EXPECT_EQ(core::to_objectref(element)->ref().size(), 2U);
  EXPECT_EQ(core::to_objectref(element)->ref()[1].indices()->front(), index(four));
  EXPECT_EQ(core::to_objectref(variable("a", arguments({})))->ref()[0].indices()->size(), 0U);

  // What stands inside a path must be constant.
  for (const Subscript& sub : {Subscript(number("1")), colon()}) {
    const Variable open = variable({step("a", {three, sub})}, "b");
    EXPECT_EQ(core::to_idvalueindicespath(open.leadingPath()), std::nullopt);
    EXPECT_EQ(core::to_valueref(open), std::nullopt);
    EXPECT_EQ(core::to_objectref(open), std::nullopt);
  }
  const Variable named = variable("a", arguments({}, {{"n", three}}));
  EXPECT_EQ(core::to_valueref(named), std::nullopt);
  EXPECT_EQ(core::to_objectref(named), std::nullopt);
}

TEST(References, PathAndTail) {
  const core::Arguments tail = arguments({name("x"), colon()});
  const auto plain = core::to_pathtailpair(variable("a.b"));
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->first, idPath("a.b"));
  EXPECT_EQ(plain->second, std::nullopt);
  EXPECT_EQ(core::to_pathtailpair(variable("a.b", tail))->second, tail);
  EXPECT_FALSE(core::to_pathtailpair(variable({step("a", {name("x")})}, "b")));
  EXPECT_FALSE(core::to_pathtailpair(variable({step("a", {})}, "b")));

  EXPECT_TRUE(core::is_idpath(variable("a.b.c")));
  EXPECT_FALSE(core::is_idpath(variable("a.b", arguments({}))));
  EXPECT_FALSE(core::is_idpath(variable({step("a", {name("x")})}, "b")));
  EXPECT_EQ(core::leading_id(variable("a.b.c")), ident("a"));
  EXPECT_EQ(core::leading_id(variable("a", tail)), ident("a"));
}

TEST(References, NamesOfArgumentsAsExpressions) {
  EXPECT_EQ(core::to_expr(core::NamedArgumentName(variable("a.b"))), name("a.b"));
  EXPECT_EQ(core::to_expr(core::NamedArgumentName(valueRef({"a"}, "b"))), Expr(valueRef({"a"}, "b")));
}

TEST(Calls, ToAndFromVariables) {
  const Expr x = name("x");
  const Expr y = name("y");
  const nvf::Range here = onLine(1);
  const auto argumentNamed = [&x](const core::NamedArgumentName& name) {
    return core::Arguments({}, {core::NamedArgument(name, x, false)}, nvf::Range());
  };
  struct Case {
    Variable variable;
    std::optional<core::NativeFunctionCall> call;
  };
  const Case cases[] = {
      {variable("f"), core::NativeFunctionCall(idPath("f"), here)},
      {variable("f", arguments({})), core::NativeFunctionCall(idPath("f"), {}, {}, here)},
      {variable("f.g", arguments({x, y}, {{"a", x}, {"b", y}})),
       core::NativeFunctionCall(idPath("f.g"), {x, y}, {{id("b"), y}, {id("a"), x}}, here)},
      {variable("f", arguments({x, colon()})), std::nullopt},
      {variable({step("a", {number("1")})}, "b", arguments({number("2")})), std::nullopt},
      {variable("f", argumentNamed(variable("a.b"))), std::nullopt},
      {variable("f", argumentNamed(variable("a", arguments({})))), std::nullopt},
      {variable("f", argumentNamed(valueRef({}, "a"))), std::nullopt},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(text(row.variable));
    EXPECT_EQ(core::to_nativefunctioncall(row.variable), row.call);
    if (row.call) {
      EXPECT_EQ(core::to_variable(*row.call), row.variable);
    }
  }

  const auto repeated = core::to_functioncall_args(arguments({}, {{"a", x}, {"b", y}, {"a", y}}));
  ASSERT_TRUE(repeated);
  EXPECT_EQ(repeated->named, (core::NativeFunctionCall::NamedArguments{{id("a"), x}, {id("b"), y}}));

  const Variable back = core::to_variable(core::NativeFunctionCall(idPath("f.g"), {x}, {{id("a"), y}}, here));
  EXPECT_EQ(back.range(), here);
  EXPECT_EQ(back.tail()->range(), here);
  EXPECT_EQ(core::to_nativefunctioncall(variable("f", arguments({x}), here))->range(), here);
}

TEST(Paths, OfNames) {
  const nvf::Range here = onLine(9);
  const Variable abc = core::cxidpath_to_variable(idPath("a.b.c"), here);
  EXPECT_EQ(abc, variable("a.b.c"));
  EXPECT_EQ(abc.range(), here);
  EXPECT_EQ(core::cxidpath_to_variable(idPath("a"), here), variable("a"));
  EXPECT_EQ(core::variable_to_cxidpath(abc), idPath("a.b.c"));
  EXPECT_EQ(core::variable_to_cxidpath(variable({step("a", {colon()})}, "b", arguments({name("x")}))), idPath("a.b"));
  EXPECT_THROW(core::variable_to_cxidpath(Variable()), nvf::IdPathTooShort);

  const core::IdSubsPath steps = core::cxidpath_to_idsubspath(idPath("a.b"));
  EXPECT_EQ(steps, (core::IdSubsPath{step("a"), step("b")}));
  EXPECT_EQ(core::idsubspath_to_variable(steps, here), variable("a.b"));
  EXPECT_EQ(core::idsubspath_to_variable(steps, here).range(), here);
  const Subscripts subs{name("i"), colon()};
  EXPECT_EQ(core::idsubspath_to_variable({step("a", subs), step("b", subs)}),
            variable({step("a", subs)}, "b", arguments(subs)));
  try {
    core::idsubspath_to_variable({});
    ADD_FAILURE() << "an empty path is no variable";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "Internal error: cannot convert empty IdSubsPath.");
  }
  EXPECT_EQ(core::parensubs_to_arguments(core::ParenSubs(subs, here)).range(), here);
  EXPECT_EQ(core::make_variable(idPath("a.b"), arguments(subs), here), variable("a.b", arguments(subs)));
  EXPECT_EQ(core::make_variable(idPath("f"), {name("i"), name("j")}), variable("f", arguments({name("i"), name("j")})));
}

// ---- values ----

Expr valueExpr(const nvf::ValueData& data, const std::string& unit = "1") {
  return core::ConcreteValueExpr(
      nvf::Value(data, nvf::UnitsExpr(nvf::detail::CheckExprString()(unit.data(), unit.size()))), onLine(4));
}

TEST(Values, AreWrittenAsLiterals) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const nvf::ArraySize row(1, 3);
  const std::pair<Expr, std::string> cases[] = {
      {valueExpr(nvf::Array<double>(1.5)), "1.5"},
      {valueExpr(nvf::Array<double>(-2.0)), "-2"},
      {valueExpr(nvf::Array<double>(infinity)), "inf"},
      {valueExpr(nvf::Array<double>(row, {std::nan(""), -infinity, 0.1})), "[nan, -inf, 0.1]"},
      {valueExpr(nvf::Array<double>(nvf::ArraySize(2, 3), {1, 2, 3, 4, 5, 6})), "[1, 3, 5; 2, 4, 6]"},
      {valueExpr(nvf::Array<int>(row, {1, -2, 3})), "[1, -2, 3]"},
      {valueExpr(nvf::Array<bool>(nvf::ArraySize(2, 1), {true, false})), "[1; 0]"},
      {valueExpr(nvf::Array<unsigned long>(largest)), "18446744073709551615"},
      {valueExpr(nvf::Array<nvf::ustring>(nvf::ArraySize(1, 2), {u"a", u"it's"})), "['a', 'it''s']"},
      {valueExpr(nvf::Array<double>(3), "m/s"), "{3, 'm/s'}"},
      {valueExpr(nvf::Array<double>(row, {1, 2, 3}), "V"), "{[1, 2, 3], 'V'}"},
      {op(OpExprType::Add, name("a"), valueExpr(nvf::Array<double>(3))), "a + 3"},
      {call("f", {valueExpr(nvf::Array<double>(3))}), "f(3)"},
  };
  for (const auto& [expr, expected] : cases) EXPECT_EQ(text(core::concrete_value_to_matrix(expr)), expected);

  const Expr withUnit = core::concrete_value_to_matrix(valueExpr(nvf::Array<double>(3), "m"));
  EXPECT_EQ(core::expr_range(withUnit), onLine(4));
  EXPECT_EQ(core::expr_range(withUnit.get<core::UnitExpr>().expr()), onLine(4));
}

TEST(Values, AreReadFromMatricesOfNumbers) {
  const Expr one = number("1");
  const Expr two = number("2");
  const Expr pair = constant(nvf::ArraySize(1, 2), {1, 2});
  const std::pair<Expr, Expr> cases[] = {
      {matrix({{one, two}}), pair},
      {matrix({{one, two}, {two, number("-1.5")}}), constant(nvf::ArraySize(2, 2), {1, 2, 2, -1.5})},
      {matrix({{one}}), constant(1)},
      {matrix({}), constant(nvf::ArraySize(0, 0), {})},
      {matrix({{}, {}}), constant(nvf::ArraySize(2, 0), {})},
      {call("f", {matrix({{one, two}})}), call("f", {pair})},
      {matrix({{matrix({{one, two}}), name("a")}}), matrix({{pair, name("a")}})},

      {one, one},
      {matrix({{one, two}, {one}}), matrix({{one, two}, {one}})},
      {matrix({{one, number("2i")}}), matrix({{one, number("2i")}})},
      {matrix({{op(OpExprType::UnaryMinus, one), two}}), matrix({{op(OpExprType::UnaryMinus, one), two}})},
      {matrix({{one, string(u"2")}}), matrix({{one, string(u"2")}})},
  };
  for (const auto& [expr, expected] : cases) EXPECT_EQ(core::matrix_to_concrete_value(expr), expected) << text(expr);
  EXPECT_EQ(core::expr_range(core::matrix_to_concrete_value(matrix({{one, two}}, onLine(3)))), onLine(3));

  // Rows of a hostile matrix are compared before room is made for a rectangle of them.
  std::vector<core::MatrixExpr::Row> rows(1'000'000);
  rows.front().assign(1'000'000, one);
  EXPECT_EQ(core::matrix_to_concrete_value(matrix(rows)).get<core::MatrixExpr>().numOfRows(), rows.size());
}

TEST(Values, SurviveTheWayThroughAMatrix) {
  const Expr cases[] = {
      constant(nvf::ArraySize(2, 2), {0.1, -2, std::numeric_limits<double>::infinity(), 1e300}),
      constant(nvf::ArraySize(1, 3), {std::nan(""), 5e-324, -0.0}),
      constant(nvf::ArraySize(3, 0), {}),
      constant(nvf::ArraySize(0, 0), {}),
  };
  for (const Expr& expr : cases) {
    EXPECT_EQ(core::matrix_to_concrete_value(core::concrete_value_to_matrix(expr)), expr) << text(expr);
  }
}

LARGE_TEST(Values, NeedNoLargeStack) {
  onSmallStack([] {
    const Expr value = constant(nvf::ArraySize(1, 2), {1, 2});
    const Expr numbers = matrix({{number("1"), number("2")}});
    EXPECT_EQ(core::concrete_value_to_matrix(chain(100'000, value)), chain(100'000, numbers));
    EXPECT_EQ(core::matrix_to_concrete_value(chain(100'000, numbers)), chain(100'000, value));
    Expr nested = name("a");
    for (int i = 0; i < 10'000; ++i) nested = matrix({{nested}});
    EXPECT_EQ(core::matrix_to_concrete_value(nested), nested);
  });
}

// ---- evaluation by the compiler ----

TEST(CompilerEval, WrapsAndUnwraps) {
  const Expr x = name("x", onLine(1));
  EXPECT_EQ(text(core::to_compiler_eval(op(OpExprType::Add, x, x))), "tessarin.compilerEval(x + x)");
  EXPECT_EQ(core::expr_range(core::to_compiler_eval(x)), nvf::Range());
  EXPECT_EQ(core::compiler_eval_name(), idPath("tessarin.compilerEval"));
  EXPECT_EQ(core::compiler_eval(core::to_compiler_eval(x)), x);

  const std::string path = "tessarin.compilerEval";
  const Expr others[] = {
      x,
      name(path),
      call(path, {}),
      call(path, {x, x}),
      call(path, {colon()}),
      call(path, {}, {{"x", x}}),
      call(path, {x}, {{"x", x}}),
      call("compilerEval", {x}),
      call("tessarin.compilereval", {x}),
      call("tessarin.tessarin.compilerEval", {x}),
      variable({step("tessarin", {})}, "compilerEval", arguments({x})),
  };
  for (const Expr& expr : others) EXPECT_EQ(core::compiler_eval(expr), std::nullopt) << text(expr);
}

} // namespace
