// Expressions, references, equations and assertions.
#include "tessarin/parser/builder/StringEntries.hpp"

#include "ast/kinds.hpp"
#include "builder/files.hpp"
#include "support/large.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;

const ASTBuilder& withValues() {
  static const ASTBuilder builder(nvf::DefaultValueTokensToValue{});
  return builder;
}

/// The item on the first line of an equations block.
EqnItem itemOf(const std::string& text, const ASTBuilder& builder) {
  const ParseTree tree = fileTree("component c\nequations\n" + text + "\nend\nend\n");
  const ModelFile file = builder.buildModelFile(tree, FileSource::open);
  return file.model().declarativeSections().equationBlocks().at(0).eqnItem(0);
}

/// The number of the kind, the printed form, and the columns of the first token's begin and the last one's end, from 0,
/// where a token without a text ends where it begins; or the fault. An assertion has no kind.
std::string builtItem(const std::string& text, const ASTBuilder& builder = withValues()) {
  return resultOf(
      [&] {
        const EqnItem item = itemOf(text, builder);
        const nvf::Range range = eqnitem_range(item);
        const auto* expr = item.getIf<Expr>();
        return (expr != nullptr ? std::to_string(expr->id()) + " " : "") +
               nvf::encode_utf8(to_string(item, ToStringContext())) + " @" +
               std::to_string(range.begin().lineColumn().column()) + "-" +
               std::to_string(range.end().lineColumn().column());
      },
      2);
}

void check(const std::vector<BuildCase>& cases) {
  for (const auto& [source, expected] : cases) EXPECT_EQ(builtItem(source), expected) << source;
}

TEST(BuildExpr, Kinds) {
  check({
      {"time", "0 time @0-4"},
      {"1.50e3", "2 1.50e3 @0-6"},
      {"'it''s \"\"'", "3 'it''s \"\"' @0-10"},
      {"\"say \"\"it''s\"\"\"", "3 'say \"it''''s\"' @0-15"},
      {"(a)", "4 a @1-2"},
      {"((a + b))", "12 a + b @2-7"},
      {"-a^2", "12 -(a ^ 2) @0-4"},
      {"a^-b", "12 (a ^ (-b)) @0-4"},
      {"a - b - c", "12 a - b - c @0-9"},
      {"a - (b - c)", "12 a - (b - c) @0-10"},
      {"1:n", "12 1 : n @0-3"},
      {"1:2:n", "12 1 : 2 : n @0-5"},
      {"a.b.der", "12 der(a.b) @2-7"},
      {"der(x)'", "12 der(x)' @0-6"},
      {"{1, 'm/s'}", "7 {1, 'm/s'} @1-9"},
      {"value(x, 'm')", "8 value(x,'m') @0-12"},
      {"value(x, \"m\", 'relative')", "8 value(x,'m','relative') @0-24"},
      {"[1, 2; a]", "9 [1, 2; a] @0-8"},
      {"{a = 1, b = {c = 2}}", "10 {a = 1, b = {c = 2}} @1-18"},
      {"if a, b; elseif c, d; else e; end", "11 if a, b; elseif c, d; else e; end @0-33"},
      {"let [a, ~] = f(x); in a; end", "13 let [a,~] = f(x); in a; end @0-23"},
      // The operand to the right is built first, a unit behind its expression, items of an elseif before its condition.
      {"{1, '+'} + {1, '-'}", "InvalidUnitLiteral(-) at 1:16"},
      {"{{1, '+'}, '-'}", "InvalidUnitLiteral(+) at 1:6"},
      {"if a, b; elseif {1, '+'}, {1, '-'}; else c; end", "InvalidUnitLiteral(-) at 1:31"},
  });
}

TEST(BuildExpr, References) {
  check({
      {"a(1, :, n = 2)", "4 a(1, :, n = 2) @0-13"},
      {"a.b(2).c(end)", "4 a.b(2).c(end) @0-12"},
      {"x(a := 1)", "4 x(a := 1) @0-8"},
      {"f(1, g = 2).h", "UnexpectedNamedArg at 1:6"},
      {"f(internal_value_ref__(a, internal_value_ref_id_tail__(b)) = 1)",
       "4 f(internal_value_ref__(a,internal_value_ref_id_tail__(b)) = 1) @0-62"},
      {"a.internal_full_path__(1)", "4 a.internal_full_path__(1) @0-24"},
      {"internal_full_path__", "InvalidFullPathVariableSyntax at 1:1"},
      {"internal_full_path__(base.member(1), 2)", "5 internal_full_path__(base.member(1), 2) @0-38"},
      {"internal_full_path__([base, member(1)])", "5 internal_full_path__([base, member(1)]) @0-38"},
      {"internal_full_path__()", "InvalidFullPathVariableSyntax at 1:1"},
      {"internal_full_path__(:)", "InvalidFullPathVariableSyntax at 1:1"},
      {"internal_full_path__(1)", "InvalidFullPathVariableSyntax at 1:22"},
      {"internal_relative_path__(2, x, 3)", "6 internal_relative_path__(2, x, 3) @0-32"},
      {"internal_relative_path__(0, x)", "InvalidRelativePathVariableSyntax at 1:1"},
      {"internal_relative_path__(1.5, x)", "InvalidRelativePathVariableSyntax at 1:1"},
      {"internal_relative_path__(99999999999999999999, x)", "InvalidRelativePathVariableSyntax at 1:1"},
      {"internal_relative_path__(1, x.y)", "InvalidRelativePathVariableSyntax at 1:1"},
      {"internal_relative_path__(1)", "InvalidRelativePathVariableSyntax at 1:1"},
      {"concrete_value__('double 1x1',2.5,'m')", "14 concrete_value__(2.5,'m') @0-37"},
      {"concrete_value__(a)", "4 concrete_value__(a) @0-18"},
      {"concrete_value__('double 1x1',-inf,'1')", "14 concrete_value__(-inf,'1') @0-38"},
      {"internal_mrv_index__(f, 1, 2)", "15 internal_mrv_index__(f,1,2) @0-28"},
      {"internal_mrv_index__(f, 1)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_mrv_index__(f, -1, 2)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_mrv_index__.x", "4 internal_mrv_index__.x @0-22"},
      {"internal_transition_expr__(a, b)", "16 internal_transition_expr__(a,b) @27-28"},
      {"internal_transition_expr__(a)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_modechart_eqn_expr__(if a, b; else c; end)",
       "17 internal_modechart_eqn_expr__(if a, b; else c; end) @30-50"},
      {"internal_native_function_call__(f.g(x, n = 1))", "18 internal_native_function_call__(f.g(x, n = 1)) @32-44"},
      {"internal_native_function_call__(f(1).g)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_native_function_call__(f, g)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_native_function_call__(1)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_calvex_function_call__(f(x),1,0,1)", "19 internal_calvex_function_call__(f(x),1,0,1) @0-42"},
      {"internal_calvex_function_call__(f,0,0,0)", "19 internal_calvex_function_call__(f,0,0,0) @0-39"},
      {"internal_calvex_function_call__(f(n = 1),0,0,0)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_calvex_function_call__(f,0,0)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_tessarin_function_call__(a.f())", "20 internal_tessarin_function_call__(a.f()) @0-39"},
      {"internal_tessarin_local_function_call__(a.f,g(x))",
       "21 internal_tessarin_local_function_call__(a.f,g(x)) @0-48"},
      {"internal_tessarin_local_function_call__(a.f,b.g)", "InvalidFunctionCallSyntax at 1:1"},
      {"internal_value_ref__(a.b)", "22 internal_value_ref__(a.b) @0-24"},
      {"internal_value_ref__(a(concrete_value__('double 1x1',1,'1')).b, internal_value_ref_subs_tail__(:, x))",
       "22 internal_value_ref__(a(concrete_value__(1,'1')).b,internal_value_ref_subs_tail__(:, x)) @0-100"},
      {"internal_value_ref__(a(1).b)", "InvalidValueRefSyntax at 1:1"},
      {"internal_value_ref__(1)", "InvalidValueRefSyntax at 1:1"},
      {"internal_value_ref__(a, b)", "InvalidValueRefSyntax at 1:25"},
      {"internal_value_ref__(a, internal_value_ref_id_tail__(b.c))", "InvalidValueRefSyntax at 1:25"},
      {"internal_object_ref__(a.b)", "23 internal_object_ref__(a.b) @0-25"},
      {"internal_object_ref__(a, b)", "InvalidObjectRefSyntax at 1:1"},
      {"internal_object_ref__(n = 1)", "InvalidObjectRefSyntax at 1:1"},
  });
  EXPECT_EQ(builtItem("concrete_value__('double 1x1',1,'1')", ASTBuilder()),
            "4 concrete_value__('double 1x1', 1, '1') @0-35")
      << "without a converter";
  EXPECT_THROW(itemOf("internal_modechart_eqn_expr__(a)", ASTBuilder()), nvf::BadGet);
}

TEST(BuildEquation, Assertions) {
  check({
      {"assert(x)", "assert(x) @0-8"},
      {"assert(x, 'text')", "assert(x, 'text') @0-16"},
      {"assert(x, 'a:b', 'text')", "assert(x, 'a:b', 'text') @0-23"},
      {"assert(x, 'not an id', 'text')", "InvalidAssertErrorID(not an id) at 1:11"},
      {"assert(x, '', 'text')", "InvalidAssertErrorID() at 1:11"},
      {"assert(x, message('a:b', 'hole', text(y.z), text(internal_value_ref__(v))))",
       "assert(x, message('a:b', 'hole', text(y.z), text(internal_value_ref__(v)))) @0-74"},
      {"assert(x, message('a:b', 1))", "InvalidMessageObject at 1:26"},
      {"assert(x, message('a:b', text(y(1))))", "InvalidMessageObject at 1:26"},
      {"assert(x, message('a:b', text(y, z)))", "InvalidMessageObject at 1:26"},
      {"assert(x, message('ab'))", "InvalidAssertErrorID(ab) at 1:19"},
      {"assert(x, message(n))", "InvalidMessageObject at 1:11"},
      {"assert(x, other('a:b'))", "InvalidMessageObject at 1:11"},
      {"assert(x, Warn = true)", "assert(x, Action = concrete_value__('int32 1x1',1,'1')) @0-21"},
      {"assert(x, Warn = false)", "assert(x, Action = concrete_value__('int32 1x1',2,'1')) @0-22"},
      {"assert(x, Warn = 1)", "InvalidValueForWarn at 1:18"},
      {"assert(x, Action = y)", "assert(x, Action = y) @0-20"},
      {"assert(x, Action = true)", "InvalidValueForAssertAction at 1:20"},
      {"assert(x, Other = y)", "InvalidAttributeForAssert at 1:11"},
      {"assert(x, a.b = y)", "InvalidNamedArg(a.b) at 1:11"},
      {"assert(x, Warn := true)", "NoColonEquals at 1:16"},
      {"assert(x, Warn = true, Warn = true)", "InvalidNumberOfNamedArgsForAssert at 1:1"},
      {"assert()", "InvalidNumberOfPosArgsForAssert at 1:1"},
      {"assert(a, b, c, d)", "InvalidNumberOfPosArgsForAssert at 1:1"},
      {"assert(:)", "InvalidAssertPredicate at 1:8"},
      {"assert(x, :)", "InvalidAssertMessage at 1:11"},
      {"assert(x, 1)", "InvalidAssertMessage at 1:11"},
      {"assert(x, 1, Warn = 1)", "InvalidAssertMessage at 1:11"},
  });
}

/// Makes expressions that read back.
class RandomExpr {
public:
  explicit RandomExpr(std::uint32_t seed) : random_(seed) {
    for (const Expr& expr : oneOfEachKind()) {
      const bool isEmptyList = (expr.getIf<MatrixExpr>() != nullptr && to_string(expr) == u"[]") ||
                               (expr.getIf<FieldValueArrayExpr>() != nullptr && to_string(expr) == u"{}");
      // "end" stands in subscripts only, and a `let` not inside of brackets.
      const bool isMisplaced = expr.getIf<EndIndex>() != nullptr || expr.getIf<LetExpr>() != nullptr;
      if (!isEmptyList && !isMisplaced) leaves_.push_back(expr);
    }
  }

  Expr make(int depth) {
    if (depth == 0) return leaves_[random_() % leaves_.size()];
    constexpr OpExprType binary[] = {OpExprType::Add,  OpExprType::Sub,   OpExprType::Mul,      OpExprType::DotDiv,
                                     OpExprType::RDiv, OpExprType::Power, OpExprType::DotPower, OpExprType::AndAnd,
                                     OpExprType::OrOr, OpExprType::And};
    constexpr OpExprType unary[] = {OpExprType::Not, OpExprType::UnaryMinus, OpExprType::UnaryPlus, OpExprType::Der};
    switch (random_() % 8) {
    case 0: return op(unary[random_() % std::size(unary)], make(depth - 1));
    case 1: return call("f", {make(depth - 1), make(depth - 1)});
    case 2: return matrix({{make(depth - 1)}, {make(depth - 1)}});
    case 3: return ifThen(make(depth - 1), {make(depth - 1)}, {make(depth - 1)});
    case 4: return withUnit(make(depth - 1), "m/s");
    default: return op(binary[random_() % std::size(binary)], make(depth - 1), make(depth - 1));
    }
  }

private:
  std::mt19937 random_;
  std::vector<Expr> leaves_;
};

TEST(BuildExpr, WhatIsPrintedReadsBack) {
  const nvf::ScopedWarningSink silent([](const nvf::Message&) {});
  RandomExpr random(1);
  for (int i = 0; i < 3000; ++i) {
    const Expr expr = random.make(i % 5);
    const nvf::ustring text = to_string(expr);
    const Expr again = str_to_astexpr(text, withValues());
    ASSERT_EQ(again, expr) << nvf::encode_utf8(text);
    ASSERT_EQ(to_string(again), text);
  }
}

LARGE_TEST(BuildExpr, DeepTreesOnASmallStack) {
  onSmallStack([] {
    std::string chain = "a";
    for (int i = 0; i < 100'000; ++i) chain += "+a";
    EXPECT_EQ(to_string(itemOf(chain, ASTBuilder()), ToStringContext()).size(), 4 * 100'000U + 1);
    const std::string signs(10'000, '-');
    EXPECT_EQ(to_string(itemOf(signs + "a", ASTBuilder()), ToStringContext()).size(), signs.size() + 1);
    std::string scopes = "a";
    for (int i = 0; i < 10'000; ++i) scopes = "let x = 1; in " + scopes + "; end";
    EXPECT_EQ(builtItem(scopes).substr(0, 9), "13 let x ");
  });
}

TEST(BuildExpr, TreesOfTheStatementLanguageAreRefused) {
  // A list in braces that begins with a line end holds trees of the other language.
  check({
      {"{\n a, 'm'}", "7 {time, 'm'} @1-7"},
      {"{\n a.b, 'm'}", "fatal: Parse tree node not recognized. 496"},
      {"{\n a(1), 'm'}", "fatal: Parse tree node not recognized. 575"},
      {"{\n @a, 'm'}", "fatal: Parse tree node not recognized. 496"},
  });
}

} // namespace
} // namespace tessarin::test
