#include "tessarin/parser/ast/ExprTransformVisitor.hpp"

#include "ast/kinds.hpp"
#include "support/large.hpp"
#include "support/small_stack.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

/// A random tree over samples of every kind.
class Generator {
public:
  explicit Generator(unsigned seed) : random_(seed) {}

  Expr operator()(int depth) {
    if (depth == 0) return leaves_[pick(leaves_.size())];
    const Expr a = (*this)(depth - 1);
    const Expr b = (*this)(depth - 1);
    switch (pick(10)) {
    case 0: return op(static_cast<OpExprType>(pick(28)), a, b);
    case 1: return matrix({{a, b}, {b}});
    case 2: return call("f", {a, colon()}, {{"n", b}});
    case 3: return variable({step("s", {a})}, "t", arguments({b}));
    case 4: return ifThen(a, {b, assertion(a, b)}, {a}, {ElseifBranch(b, {a})});
    case 5: return let({declaration("x", a)}, {b, assertion(a)});
    case 6: return withUnit(a, "m");
    case 7: return fields({{"n", a}, {"m", b}});
    case 8: return TransitionExpr(a, b);
    default: return NativeFunctionCall(idPath("g"), {a}, {{id("n"), b}}, nvf::Range());
    }
  }

private:
  std::size_t pick(std::size_t count) { return random_() % count; }
  std::mt19937 random_;
  std::vector<Expr> leaves_ = oneOfEachKind(onLine(2));
};

TEST(Rewriting, TheIdentityGivesAnEqualTreeWithItsRanges) {
  ExprTransformVisitor identity;
  for (const Expr& expr : oneOfEachKind(onLine(5))) {
    const Expr rewritten = identity.process(expr);
    expectEqualValues(rewritten, expr);
    EXPECT_EQ(expr_range(rewritten), expr_range(expr));
  }
  for (unsigned seed = 0; seed < 200; ++seed) {
    const Expr expr = Generator(seed)(4);
    expectEqualValues(identity.process(expr), expr);
  }
  EXPECT_TRUE(identity.letStack().nameStack().empty());
}

/// Replaces the variable `from` by `to` where no `let` binds it, and notes each expression that passes.
class Replace : public ExprTransformVisitor {
public:
  Replace(Expr from, Expr to) : from_(std::move(from)), to_(std::move(to)) {}
  using ExprTransformVisitor::operator();
  using ExprTransformVisitor::process;
  Expr operator()(const Variable& variable) override {
    if (Expr(variable) == from_ && !letStack().simpleLookup(variable)) return to_;
    return ExprTransformVisitor::operator()(variable);
  }
  Expr process(const Expr& expr) override {
    ++seen;
    return ExprTransformVisitor::process(expr);
  }
  std::size_t seen = 0;

private:
  Expr from_;
  Expr to_;
};

TEST(Rewriting, SubclassesSeeEveryExpression) {
  struct Case {
    Expr before;
    Expr after;
  };
  const Expr a = name("a");
  const Expr b = name("b");
  const Case cases[] = {
      {op(OpExprType::Add, a, call("f", {a, colon()}, {{"a", a}})),
       op(OpExprType::Add, b, call("f", {b, colon()}, {{"a", b}}))},
      {variable({step("a", {a})}, "c"), variable({step("a", {b})}, "c")},
      {let({declaration("a", a)}, {a}), let({declaration("a", a)}, {a})},
      {matrix({{let({declaration("a", a)}, {a}), a}}), matrix({{let({declaration("a", a)}, {a}), b}})},
      {ifThen(a, {assertion(a, a)}, {a}, {ElseifBranch(a, {a})}),
       ifThen(b, {assertion(b, b)}, {b}, {ElseifBranch(b, {b})})},
      {ValueRef(ident("r"), {}, ValueRefTail(parenSubs({a})), std::nullopt, nvf::Range()),
       ValueRef(ident("r"), {}, ValueRefTail(parenSubs({b})), std::nullopt, nvf::Range())},
      {fullPath(1, {a}), fullPath(1, {b})},
      {relativePath(1, "a", {a}), relativePath(1, "a", {b})},
      {ModechartEqnExpr(ifThen(a, {a}, {a})), ModechartEqnExpr(ifThen(b, {b}, {b}))},
      {MRVIndex(a, 0, 1, nvf::Range()), MRVIndex(b, 0, 1, nvf::Range())},
      {objectRef({"a"}), objectRef({"a"})},
  };
  for (const Case& c : cases) {
    Replace visitor(a, b);
    EXPECT_EQ(visitor.process(c.before), c.after) << c.before;
    EXPECT_GT(visitor.seen, 0U);
  }
}

TEST(Rewriting, AnExceptionLeavesTheScopesBalanced) {
  struct Throws : ExprTransformVisitor {
    using ExprTransformVisitor::operator();
    Expr operator()(const NumberLiteral&) override { throw std::runtime_error("number"); }
  } visitor;
  EXPECT_THROW((void)visitor.process(let({declaration("x", number("1"))}, {name("x")})), std::runtime_error);
  EXPECT_TRUE(visitor.letStack().nameStack().empty());
  EXPECT_TRUE(visitor.letStack().declStack().empty());
}

LARGE_TEST(Rewriting, EveryOperationWorksOnDeepTreesOnASmallStack) {
  onSmallStack([] {
    const Expr sum = chain(100'000, name("a"));
    Expr nested = name("a");
    for (int i = 0; i < 10'000; ++i) {
      nested = i % 3 == 0   ? Expr(ifThen(name("c"), {nested}, {}))
               : i % 3 == 1 ? op(OpExprType::UnaryMinus, nested)
                            : call("f", {nested});
    }
    Expr scopes = name("a");
    for (int i = 0; i < 10'000; ++i) scopes = let({declaration("x", number("1"))}, {scopes});
    ToStringContext mapping;
    mapping.mapIdentifierFcn(std::make_shared<const ToStringContext::MapIdentifierFcn>([](const nvf::CxId& id) {
      return nvf::CxIdPath({core::Ident(id, {}).id(), id});
    }));
    EXPECT_NE(to_string(scopes, mapping).find(u"a.a"), nvf::ustring::npos);
    for (const Expr& expr : {sum, nested, scopes}) {
      Replace visitor(name("a"), name("b"));
      Expr copy = visitor.process(expr);
      EXPECT_FALSE(copy == expr);
      EXPECT_NE(compare(copy, expr), Ordering::Equal);
      EXPECT_NE(hash_value(copy), hash_value(expr));
      EXPECT_NE(digestOf(copy), digestOf(expr));
      EXPECT_NE(to_string(copy), to_string(expr));
      copy = ExprTransformVisitor().process(expr);
      strip_annotation_inplace(copy);
      EXPECT_TRUE(equal_ignore_annotation(copy, expr));
    }
  });
}

} // namespace
