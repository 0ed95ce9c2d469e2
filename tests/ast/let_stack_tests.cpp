#include "tessarin/parser/ast/LetDeclNameStack.hpp"

#include "ast/builders.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

namespace {

using namespace tessarin::test;
using core::LetDeclNameStack;
using Found = std::optional<LetDeclNameStack::Found>;

/// `let [a, ~, b] = 0; c = 0; a = 0 in end`.
core::LetExpr outerLet() {
  const Expr zero = number("0");
  return let({declaration({"a", "~", "b"}, zero), declaration("c", zero), declaration("a", zero)}, {});
}
/// `let d = 0; c = 0 in end`.
core::LetExpr innerLet() {
  return let({declaration("d", number("0")), declaration("c", number("0"))}, {});
}

TEST(LetStack, FindsNamesFromTheInnermostScopeOutwards) {
  LetDeclNameStack stack;
  EXPECT_EQ(stack.lookup(id("a")), Found());

  stack.push(outerLet());
  EXPECT_EQ(stack.lookup(id("a")), Found({0, 0})) << "of two declarations of a name the first stands";
  EXPECT_EQ(stack.lookup(id("b")), Found({0, 0}));
  EXPECT_EQ(stack.lookup(id("c")), Found({0, 1}));
  EXPECT_EQ(stack.lookup(nvf::CxId()), Found()) << "placeholders declare nothing";
  EXPECT_EQ(stack.nameStack().back().size(), 3U);

  stack.push(innerLet());
  EXPECT_EQ(stack.lookup(id("b")), Found({1, 0}));
  EXPECT_EQ(stack.lookup(id("c")), Found({0, 1}));
  EXPECT_EQ(stack.lookup(id("d")), Found({0, 0}));

  stack.pop();
  EXPECT_EQ(stack.lookup(id("c")), Found({0, 1}));
  EXPECT_EQ(stack.lookup(id("d")), Found());
  stack.pop();
  EXPECT_EQ(stack.lookup(id("c")), Found());
  EXPECT_THROW(stack.pop(), std::out_of_range);
}

TEST(LetStack, CopiesStandForThemselves) {
  LetDeclNameStack stack;
  stack.push(outerLet());
  LetDeclNameStack copy = stack;
  copy.push(innerLet());
  EXPECT_EQ(stack.lookup(id("d")), Found());
  EXPECT_EQ(copy.lookup(id("d")), Found({0, 0}));
  EXPECT_EQ(stack.declStack(), LetDeclNameStack::DeclStack{outerLet().declarations()});
  stack.pop();
  EXPECT_EQ(copy.lookup(id("b")), Found({1, 0}));

  LetDeclNameStack changed(copy.nameStack(), copy.declStack());
  changed.nameStack()[0].erase(id("b"));
  EXPECT_EQ(changed.lookup(id("b")), Found());
  EXPECT_EQ(copy.lookup(id("b")), Found({1, 0}));
}

TEST(LetStack, SimpleLookupTakesTheLastNameOfAVariable) {
  LetDeclNameStack stack;
  stack.push(innerLet());
  EXPECT_TRUE(stack.simpleLookup(variable("d")));
  EXPECT_TRUE(stack.simpleLookup(variable("d", arguments({number("1")}))));
  EXPECT_TRUE(stack.simpleLookup(variable("a.d"))); // intended
  EXPECT_FALSE(stack.simpleLookup(variable("d.a")));
  EXPECT_TRUE(stack.simpleLookup(idPath("d")));
  EXPECT_FALSE(stack.simpleLookup(idPath("d.d")));
  EXPECT_FALSE(stack.simpleLookup(idPath("a")));
}

} // namespace
