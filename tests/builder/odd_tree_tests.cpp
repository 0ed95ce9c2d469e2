// Trees that no text gives: they end in a fault or a fatal diagnostic.
#include "builder/files.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;
using K = NonTerminal;

ParseTree leaf(TokenId::Value code, std::u16string_view text) {
  return ParseTree(Token(code, nvf::Location(), text.data(), text.size()));
}
ParseTree name(std::u16string_view text = u"a") {
  return leaf(TokenId::ID, text);
}
ParseTree reference(std::u16string_view text = u"a") {
  return {K::Subsref, {name(text)}};
}
ParseTree call(std::u16string_view text, const ParseTree& arguments) {
  return {K::Subsref, {name(text), leaf(TokenId::LP, {}), arguments, leaf(TokenId::RP, {})}};
}

std::string built(const ParseTree& tree) {
  return resultOf([&] { return nvf::encode_utf8(to_string(ASTBuilder().buildExpr(tree))); });
}

TEST(BuildOddTrees, ExpressionsWithTheWrongChildren) {
  const ParseTree unit = leaf(TokenId::STRING, u"'m'");
  const std::string notRecognized = "fatal: Parse tree node not recognized. ";
  const std::vector<std::pair<ParseTree, std::string>> cases{
      {{K::ValueExpr, {name(), reference()}}, "fatal: Unexpected parse tree. 452"},
      {{K::ValueExpr, {name(), reference(), unit, unit, unit}}, "fatal: Unexpected parse tree. 452"},
      {{K::ValueExpr, {name(), reference(), unit, unit}}, "value(a,'m','m')"},
      {{K::Row, {reference()}}, notRecognized + "496"},
      {{K::EqnAssert, {name()}}, notRecognized + "496"},
      {{K::Add, {reference()}}, notRecognized + "118"},
      {{K::Colon3, {reference(), name(), reference()}}, notRecognized + "118"},
      {{K::UnaryMinus, {name()}}, notRecognized + "118"},
      {{K::Subsref, {}}, notRecognized + "118"},
      {{K::Subsref, {leaf(TokenId::NUMBER, u"1")}}, notRecognized + "543"},
      {{K::Subsref, {name(), leaf(TokenId::LP, {})}}, notRecognized + "118"},
      {call(u"a", {K::ExprList, {}}), notRecognized + "575"},
      {call(u"a", {K::EqnArgs, {}}), notRecognized + "118"},
      {call(u"internal_object_ref__", {K::ExprList, {}}), "InvalidObjectRefSyntax at 1:1"},
      {call(u"internal_object_ref__", {K::EqnArgs, {}}), notRecognized + "118"},
      {name(), "time"}, // a token that is no expression: the default one
  };
  for (const auto& [tree, expected] : cases) EXPECT_EQ(built(tree), expected) << tree.getText(0);
}

/// Calls each of the members for expressions, references and equations.
template <class Visit>
void forEachMember(const ASTBuilder& b, const ParseTree& t, Visit visit) {
  visit([&] { static_cast<void>(b.buildExpr(t)); });
  visit([&] { static_cast<void>(b.buildVariable(t)); });
  visit([&] { static_cast<void>(b.buildFullPathVariable(t)); });
  visit([&] { static_cast<void>(b.buildRelativePathVariable(t)); });
  visit([&] { static_cast<void>(b.buildConcreteValueExpr(t)); });
  visit([&] { static_cast<void>(b.buildMRVIndex(t)); });
  visit([&] { static_cast<void>(b.buildTransitionExpr(t)); });
  visit([&] { static_cast<void>(b.buildModechartEqnExpr(t)); });
  visit([&] { static_cast<void>(b.buildNativeFunctionCall(t)); });
  visit([&] { static_cast<void>(b.buildCalvexFunctionCall(t)); });
  visit([&] { static_cast<void>(b.buildTessarinFunctionCall(t)); });
  visit([&] { static_cast<void>(b.buildTessarinLocalFunctionCall(t)); });
  visit([&] { static_cast<void>(b.buildValueRef(t)); });
  visit([&] { static_cast<void>(b.buildValueRefTail(t)); });
  visit([&] { static_cast<void>(b.buildObjectRef(t)); });
  visit([&] { static_cast<void>(b.buildSubscripts(t)); });
  visit([&] { static_cast<void>(b.buildEqnNamedArgs(t, true)); });
  visit([&] { static_cast<void>(b.buildMatrixExpr(t)); });
  visit([&] { static_cast<void>(b.buildFieldValueArrayExpr(t)); });
  visit([&] { static_cast<void>(b.buildIfExpr(t)); });
  visit([&] { static_cast<void>(b.buildLetExpr(t)); });
  visit([&] { static_cast<void>(b.buildEqnAssertion(t)); });
  visit([&] { static_cast<void>(b.buildEquationBlock(t)); });
  visit([&] { static_cast<void>(b.buildWhenClause(t)); });
  visit([&] { static_cast<void>(b.buildEventBlock(t)); });
  visit([&] { static_cast<void>(b.buildFunctionEqnItems(t)); });
}

TEST(BuildOddTrees, NothingButExceptions) {
  const ThrowingTerminate terminate;
  const nvf::ScopedWarningSink silent([](const nvf::Message&) {});
  const ASTBuilder builder(nvf::DefaultValueTokensToValue{});
  const ParseTree fillers[] = {
      name(),
      leaf(TokenId::NUMBER, u"1"),
      leaf(TokenId::LP, {}),
      leaf(TokenId::STRING, u"'"), // shorter than its quotes
      reference(u"internal_value_ref__"),
      {K::EqnArgs, {}},
      {K::Row, {{K::Row, {}}, {K::EqnArgs, {}}}},
      call(u"internal_value_ref__", {K::EqnArgs, {{K::ExprList, {{K::Subsref, {}}}}, {K::EqnNamedArgList, {}}}}),
  };
  constexpr K::Value last = K::TSNFunctionEqnExpr;
  std::size_t faults = 0;
  for (int kind = 0; kind <= last; ++kind) {
    for (const ParseTree& filler : fillers) {
      for (std::size_t count = 0; count <= 5; ++count) {
        const ParseTree tree(static_cast<K::Value>(kind), std::vector<ParseTree>(count, filler));
        forEachMember(builder, tree, [&](const auto& build) {
          try {
            build();
          } catch (const nvf::Exception&) {
            ++faults; // fatal diagnostics included
          }
        });
      }
    }
  }
  EXPECT_GT(faults, 100'000U);
}

TEST(BuildOddTrees, DeeperThanTheParserGoes) {
  onSmallStack([] {
    constexpr int depth = 60'000; // more than `maxNesting`
    ParseTree nested = reference();
    for (int i = 0; i < depth; ++i) nested = ParseTree(K::ParenExpr, {leaf(TokenId::LP, {}), nested});
    EXPECT_EQ(built(nested), "a");
    ParseTree right = reference();
    for (int i = 0; i < depth; ++i) right = ParseTree(K::Power, {reference(), leaf(TokenId::EXP, {}), right});
    EXPECT_EQ(built(right).substr(0, 7), "(a ^ ((");
    ParseTree args = reference();
    for (int i = 0; i < depth; ++i) {
      args = call(u"f", {K::EqnArgs, {ParseTree(K::ExprList, {args}), ParseTree(K::EqnNamedArgList, {})}});
    }
    EXPECT_EQ(built(args).substr(0, 8), "f(f(f(f(");
  });
}

TEST(BuildOddTrees, CopiesHaveTheirOwnConverter) {
  const ParseTree text = leaf(TokenId::STRING, u"'m'");
  const ParseTree value = call(
      u"concrete_value__",
      {K::EqnArgs, {ParseTree(K::ExprList, {leaf(TokenId::NUMBER, u"2"), text}), ParseTree(K::EqnNamedArgList, {})}});
  const auto isValue = [&](const ASTBuilder& builder) {
    return builder.buildExpr(value).getIf<ConcreteValueExpr>() != nullptr;
  };
  auto original = std::make_unique<ASTBuilder>(std::make_unique<nvf::DefaultValueTokensToValue>());
  EXPECT_TRUE(isValue(*original));
  const ASTBuilder copy(*original);
  original.reset();
  EXPECT_TRUE(isValue(copy));
  EXPECT_FALSE(isValue(ASTBuilder(ASTBuilder())));
  EXPECT_FALSE(isValue(ASTBuilder(std::unique_ptr<nvf::ValueTokensToValue>())));
}

} // namespace
} // namespace tessarin::test
