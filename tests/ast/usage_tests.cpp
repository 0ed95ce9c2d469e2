#include "tessarin/parser/ast/Usage.hpp"

#include "ast/builders.hpp"
#include "support/large.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace tessarin::test;
using core::LetDeclNameStack;
using core::VariableRecursion;
using core::VariableVisitFcns;
using Flags = core::VisitPredicateFlags;

std::string text(const Expr& expr) {
  return nvf::narrow(core::to_string(expr));
}
std::string text(const nvf::CxId& name) {
  return nvf::narrow(name.view());
}
std::string text(const core::IdListValuePair& declaration) {
  return nvf::narrow(core::to_string(declaration.ids().front()));
}

template <class Elements>
std::vector<std::string> texts(const Elements& elements) {
  std::vector<std::string> result;
  for (const auto& element : elements) result.push_back(text(element));
  return result;
}

std::string join(const std::vector<std::string>& words) {
  std::string result;
  for (const std::string& word : words) result += (result.empty() ? "" : " ") + word;
  return result;
}

/// The elements of a set in the order of their texts.
template <class Set>
std::string sorted(const Set& set) {
  std::vector<std::string> words = texts(set);
  std::sort(words.begin(), words.end());
  return join(words);
}

/// Everything that the walker calls, in order; references are entered.
std::string calls(const Expr& expr, Flags flags = Flags::All) {
  std::vector<std::string> log;
  const auto enter = [&log](const auto& reference, VariableRecursion& recursion) {
    log.push_back(text(Expr(reference)));
    recursion(reference);
  };
  const auto note = [&log](const char* what) { return [&log, what](const auto&) { log.emplace_back(what); }; };
  const VariableVisitFcns functions{enter,           enter,        enter,         enter,
                                    note("object"),  note("unit"), note("op"),    note("time"),
                                    note("foreign"), note("own"),  note("local"), note("native")};
  core::visit_variables(expr, functions, flags);
  return join(log);
}

const Expr a = name("a");
const Expr b = name("b");
const Expr c = name("c");
const Expr d = name("d");
const Expr e = name("e");

TEST(Usage, WalksEachKindInItsOrder) {
  const nvf::CxIdPath f = idPath("f");
  const nvf::Range none;
  const Expr conditional = ifThen(a, {b}, {c}, {core::ElseifBranch(d, {e})});
  const std::pair<Expr, std::string> cases[] = {
      {core::Time(), "time"},
      {core::EndIndex(), ""},
      {number("1"), ""},
      {string(u"a"), ""},
      {constant(1), ""},
      {objectRef({"o", "p"}), "object"},
      {withUnit(a, "m"), "unit a"},
      {core::ValueExpr(a, unitText("m"), none), "a"},
      {matrix({{a, b}, {}, {c}}), "a b c"},
      {fields({{"z", a}, {"y", b}}), "a b"},
      {conditional, "a b c d e"},
      {core::ModechartEqnExpr(conditional.get<core::IfExpr>()), "a b c d e"},
      {op(OpExprType::Sub, a, op(OpExprType::Not, b)), "op a op b"},
      {let({declaration("x", a)}, {name("x"), b}), "a b"},
      {core::MRVIndex(a, 0, 1, none), "a"},
      {core::TransitionExpr(a, b), "a"},
      {core::NativeFunctionCall(f, {b, a}, {{id("y"), d}, {id("x"), c}}, none), "native b a c d"},
      {core::NativeFunctionCall(f, none), "native"},
      {core::CalvexFunctionCall(f, {a}, false, false, false, none), "foreign a"},
      {core::TessarinFunctionCall(f, {a}, none), "own a"},
      {core::TessarinLocalFunctionCall(f, id("g"), {a}, none), "local a"},
  };
  for (const auto& [expr, expected] : cases) EXPECT_EQ(calls(expr), expected) << "kind " << expr.id();
}

TEST(Usage, EntersReferencesOnlyWhenTheCallbackAsks) {
  const Expr reference = variable({step("p", {a, colon()}), step("q"), step("r", {b})}, "s",
                                  arguments({c, colon()}, {{"n", d}, {"m", e}}));
  const Expr ref = valueRef({"p"}, "q", core::ValueRefTail(parenSubs({a, colon(), b})));
  struct Case {
    Expr expr;
    std::string inside;
  };
  const Case cases[] = {
      {reference, "a b c d e"},
      {fullPath(3, {a, colon(), b}), "a b"},
      {fullPath(3), ""},
      {relativePath(2, "r", {a, b}), "a b"},
      {relativePath(2, "r"), ""},
      {ref, "a b"},
      {valueRef({"p"}, "q", core::ValueRefTail(ident("t"))), ""},
      {valueRef({}, "q"), ""},
  };
  for (const auto& [expr, inside] : cases) {
    SCOPED_TRACE(text(expr));
    EXPECT_EQ(calls(expr), text(expr) + (inside.empty() ? "" : " " + inside));

    int seen = 0;
    const auto stay = [&seen](const auto&, VariableRecursion&) { ++seen; };
    core::visit_variables(expr, {stay, stay, stay, stay, {}, {}, {}, {}, {}, {}, {}, {}}, Flags::All);
    EXPECT_EQ(seen, 1);

    // Without its function a reference is not entered either; what is inside would be found as `variable`.
    VariableVisitFcns others;
    if (expr.getIf<core::Variable>() == nullptr) others.variable = stay;
    core::visit_variables(expr, others, Flags::All);
    EXPECT_EQ(seen, 1);
  }
  EXPECT_NO_THROW(core::visit_variables(matrix({{reference, ref}}), {}, Flags::All));
}

TEST(Usage, FlagsChooseConditionsAndAssertions) {
  const Expr tree = ifThen(a, {assertion(b, c), d}, {}, {core::ElseifBranch(e, {assertion(name("f"))})});
  EXPECT_EQ(sorted(core::used_variables(tree, Flags::None)), "d");
  EXPECT_EQ(sorted(core::used_variables(tree, Flags::Assertions)), "b c d f");
  EXPECT_EQ(sorted(core::used_variables(tree, Flags::Conditions)), "a d e");
  EXPECT_EQ(sorted(core::used_variables(tree, Flags::Conditions | Flags::Assertions)), "a b c d e f");
  EXPECT_EQ(sorted(core::used_variables(tree, static_cast<Flags>(-1))), "a b c d e f");
}

TEST(Usage, LocalsOfALetAreNoVariables) {
  const Expr one = number("1");
  const Expr x = name("x");
  const Expr y = name("y");
  const std::pair<Expr, std::string> cases[] = {
      {let({declaration("x", one)}, {op(OpExprType::Add, x, y)}), "y"},
      {let({declaration("x", y)}, {x}), "y"},
      {let({declaration("x", y), declaration("y", one)}, {x}), ""}, // a value sees the names behind it too
      {let({declaration({"~", "x"}, one)}, {x, y}), "y"},
      {let({declaration("x", one)}, {call("x", {y})}), "y"},
      {let({declaration("x", one)}, {name("x.y"), name("y.x")}), "x.y"}, // the last name counts, intended
      {let({declaration("x", one)}, {Expr(let({declaration("x", one)}, {x})), x}), ""},
      {matrix({{let({declaration("x", one)}, {x}), x}}), "x"},
      {let({declaration("x", one), declaration("x", y)}, {x}), "y"},
  };
  for (const auto& [expr, expected] : cases) {
    EXPECT_EQ(sorted(core::used_variables(expr, Flags::All)), expected) << text(expr);
  }
}

TEST(Usage, AnExceptionOfACallbackClosesTheScopesThatItLeaves) {
  const Expr tree = call("f", {Expr(let({declaration("x", name("boom"))}, {})), name("x")});
  std::vector<std::string> seen;
  VariableVisitFcns functions;
  functions.variable = [&seen](const core::Variable& v, VariableRecursion& recursion) {
    if (v == variable("boom")) throw 1;
    seen.push_back(text(v.id().id()));
    if (seen.size() > 1) return;
    EXPECT_THROW(recursion(v), int);
    recursion(variable("g", arguments({name("x")})));
  };
  core::visit_variables(tree, functions, Flags::All);
  EXPECT_EQ(join(seen), "f x");
}

TEST(Usage, TheAnalyses) {
  const Expr ref = valueRef({"p", "q"}, "r", core::ValueRefTail(parenSubs({fullPath(1), b})));
  const Expr plainRef = valueRef({}, "s");
  struct Case {
    Expr expr;
    std::string variables;
    std::string refs;
    std::string paths;
    std::string ids;
  };
  const std::string one = text(fullPath(1));
  const Case cases[] = {
      {number("1"), "", "", "", ""},
      {op(OpExprType::Add, call("a.b", {c}), name("a.b")), "a.b a.b(c) c", "", "", "a c"},
      {variable({step("a", {b})}, "d"), "a(b).d b", "", "", "a b"},
      {fullPath(2, {fullPath(1), a, plainRef}), "a", text(plainRef),
       one + " " + text(fullPath(2, {fullPath(1), a, plainRef})), "a s"},
      {ref, "", text(ref), one, "b p"},
      {objectRef({"o", "p"}), "", "", "", "o"},
      {relativePath(1, "r", {a, fullPath(1)}), "", "", "", ""},
      {ifThen(a, {assertion(fullPath(1), plainRef)}), "a", text(plainRef), one, "a s"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(text(row.expr));
    EXPECT_EQ(sorted(core::used_variables(row.expr, Flags::All)), row.variables);
    EXPECT_EQ(sorted(core::used_valuerefs(row.expr, Flags::All)), row.refs);
    EXPECT_EQ(sorted(core::used_fpvs(row.expr)), row.paths);
    EXPECT_EQ(sorted(core::used_ids(row.expr)), row.ids);
  }
}

TEST(Usage, FunctionObjectsAddToASet) {
  core::IdSet ids{id("z")};
  core::UsedIds()(a, ids);
  core::UsedIds()(b, ids);
  EXPECT_EQ(sorted(ids), "a b z");
  core::FullPathVariableSet paths;
  core::UsedFullPathVariables()(fullPath(1), paths);
  core::UsedFullPathVariables()(fullPath(2), paths);
  EXPECT_EQ(paths.size(), 2U);
}

TEST(Usage, UsedLetDeclarationsAreListedAsDeclared) {
  const Expr one = number("1");
  using Declarations = std::vector<core::IdListValuePair>;
  struct Case {
    Declarations declarations;
    Expr expr;
    std::string used; // the first name of each
  };
  const Case cases[] = {
      {{declaration("a", b), declaration("b", one)}, a, "a b"},
      {{declaration("b", one), declaration("c", one), declaration("a", b)}, a, "b a"},
      {{declaration("a", b), declaration("b", a)}, b, "a b"},
      {{declaration("a", a)}, a, "a"},
      {{declaration({"a", "~", "c"}, b), declaration("b", one)}, c, "a b"},
      {{declaration("a", one)}, name("a.b"), ""},
      {{declaration("b", one)}, name("a.b"), ""},
      {{declaration("a", one), declaration("b", one)}, call("a", {b}), "a b"},
      {{declaration("a", one)}, variable({step("x", {a})}, "y"), "a"},
      {{declaration("a", one)}, fullPath(1, {a}), "a"},
      {{declaration("a", one)}, relativePath(1, "r", {a}), "a"},
      {{declaration("a", one)}, valueRef({}, "r", core::ValueRefTail(parenSubs({a}))), ""},
      {{declaration("a", one)}, ifThen(a, {}), "a"},
      {{declaration("a", one)}, let({declaration("a", one)}, {a}), ""}, // hidden
      {{declaration("a", b), declaration("b", one)},
       let({declaration("b", one)}, {a}),
       "a b"}, // hidden in the expression only
  };
  for (const auto& [declarations, expr, used] : cases) {
    EXPECT_EQ(join(texts(core::UsedLetDecls(declarations)(expr))), used) << text(expr);
  }

  core::UsedLetDecls accumulating({declaration("a", one), declaration("b", one)});
  EXPECT_EQ(join(texts(accumulating(b))), "b");
  EXPECT_EQ(join(texts(accumulating(a))), "a b");
}

TEST(Usage, UsedLetDeclarationsOfAStack) {
  const Expr one = number("1");
  LetDeclNameStack stack;
  stack.push(let({declaration("a", one), declaration("b", one)}, {}));
  stack.push(let({}, {}));
  stack.push(let({declaration("c", a), declaration("d", c), declaration("b", one)}, {}));
  const auto used = [&stack](const Expr& expr) {
    std::string result;
    for (const auto& level : core::used_let_decls(expr, stack)) result += "[" + join(texts(level)) + "]";
    return result;
  };
  EXPECT_EQ(used(one), "[][][]");
  EXPECT_EQ(used(d), "[][][c d]") << "each scope is taken by itself";
  EXPECT_EQ(used(matrix({{a, b}})), "[a b][][b]");
  EXPECT_TRUE(core::used_let_decls(a, LetDeclNameStack()).empty());
}

LARGE_TEST(Usage, NeedsNoLargeStackAndNoMoreThanLinearTime) {
  onSmallStack([] {
    constexpr std::size_t length = 100'000;
    constexpr std::size_t levels = 10'000;
    EXPECT_EQ(sorted(core::used_variables(chain(length, a), Flags::All)), "a");
    Expr subscripts = a;
    Expr lets = name("x");
    Expr conditions = a;
    for (std::size_t i = 0; i < levels; ++i) {
      subscripts = call("b", {subscripts});
      lets = let({declaration("x", name("y"))}, {lets, name("y")});
      conditions = ifThen(conditions, {b});
    }
    EXPECT_EQ(sorted(core::used_ids(subscripts)), "a b");
    EXPECT_EQ(sorted(core::used_ids(lets)), "y");
    EXPECT_EQ(sorted(core::used_ids(conditions)), "a b");

    std::vector<core::IdListValuePair> declarations;
    LetDeclNameStack stack;
    const auto numbered = [](std::size_t i) { return "a" + std::to_string(i); };
    for (std::size_t i = 0; i < levels; ++i) {
      declarations.push_back(declaration(numbered(i), name(numbered(i + 1))));
      stack.push(let({declarations.back()}, {}));
    }
    EXPECT_EQ(core::UsedLetDecls(declarations)(name("a0")).size(), levels);
    EXPECT_EQ(core::used_let_decls(chain(length, a), stack).size(), levels);
  });
}

} // namespace
