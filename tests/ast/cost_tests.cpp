// What services cost on trees that are made to be dear. The limits are wide, since other processes run too; what grows
// with the square of these sizes takes many times as long.
#include "tessarin/parser/ast/ExprTransformVisitor.hpp"

#include "ast/builders.hpp"
#include "support/large.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

template <class Function>
double secondsOf(Function function) {
  const auto begin = std::chrono::steady_clock::now();
  function();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// `let`s inside each other, each with a name of its own that its item uses.
Expr nestedLets(int depth) {
  Expr result = name("x");
  for (int i = 0; i < depth; ++i) {
    const std::string local = "a" + std::to_string(i);
    result = let({declaration(local, number("1"))}, {op(OpExprType::Eq, name(local), name("outside")), result});
  }
  return result;
}

/// Transitions inside each other.
Expr nestedTransitions(int depth) {
  Expr result = name("x");
  for (int i = 0; i < depth; ++i) result = TransitionExpr(result, name("p"));
  return result;
}

/// Keeps the stack of each `let`, and asks it for a name of the innermost scope and for one that no scope has.
class Keeping final : public ExprTransformVisitor {
public:
  using ExprTransformVisitor::operator();
  Expr operator()(const Variable& variable) override {
    stacks.push_back(letStack());
    if (letStack().simpleLookup(variable)) ++locals;
    return variable;
  }
  std::vector<LetDeclNameStack> stacks;
  std::size_t locals = 0;
};

LARGE_TEST(Cost, RewritingMayKeepTheStackOfEachLet) {
  constexpr int depth = 20'000;
  const Expr expr = nestedLets(depth);
  Keeping visitor;
  EXPECT_LT(secondsOf([&] { EXPECT_EQ(visitor.process(expr).id(), expr.id()); }), 20);
  EXPECT_EQ(visitor.locals, std::size_t{depth});
  ASSERT_EQ(visitor.stacks.size(), 2U * depth + 1);
  EXPECT_EQ(visitor.stacks[0].lookup(id("a19999")), LetDeclNameStack::Found(0, 0));
  EXPECT_EQ(visitor.stacks.back().lookup(id("a19999")), LetDeclNameStack::Found(depth - 1, 0));
  EXPECT_EQ(visitor.stacks[6].nameStack().size(), 4U);
  EXPECT_EQ(visitor.stacks[6].declStack().back()[0].value(), number("1"));
  EXPECT_TRUE(visitor.letStack().nameStack().empty());
}

LARGE_TEST(Cost, PrintingMapsTheNamesOfNestedLets) {
  constexpr int depth = 20'000;
  const Expr expr = nestedLets(depth);
  const auto top = std::make_shared<const ToStringContext::MapIdentifierFcn>([](const nvf::CxId& name) {
    return nvf::CxIdPath({id("top"), name});
  });
  nvf::ustring text;
  EXPECT_LT(secondsOf([&] { text = to_string(expr, ToStringContext().mapIdentifierFcn(top)); }), 20);
  EXPECT_NE(text.find(u"a0 == top.outside"), nvf::ustring::npos);
  EXPECT_NE(text.find(u" top.x;"), nvf::ustring::npos);
  EXPECT_EQ(text.find(u"top.a"), nvf::ustring::npos);
}

class Counting final : public nvf::DumpSink {
public:
  void beginNode(const std::string&, const nvf::Range*) override { ++nodes; }
  void endNode() override {}
  void beginList(std::size_t) override {}
  void endList() override {}
  void value(const nvf::ustring&) override {}
  std::size_t nodes = 0;
};

LARGE_TEST(Cost, NestedTransitionsAreShownAndHashedOnce) {
  constexpr int depth = 20'000;
  const Expr expr = nestedTransitions(depth);
  Counting sink;
  EXPECT_LT(secondsOf([&] { dump(sink, expr); }), 10);
  EXPECT_EQ(sink.nodes, depth * std::size_t{3} + 2); // each with its condition and the name in it
  EXPECT_LT(secondsOf([&] {
              for (int i = 0; i < depth; ++i) EXPECT_EQ(hash_value(expr), hash_value(expr));
            }),
            10);
}

LARGE_TEST(Cost, ALongTextIsHashedOnce) {
  const Expr expr = string(nvf::ustring(1'000'000, u'x'));
  const std::size_t hash = hash_value(expr);
  EXPECT_LT(secondsOf([&] {
              for (int i = 0; i < 20'000; ++i) EXPECT_EQ(hash_value(expr), hash);
            }),
            10);
}

} // namespace
