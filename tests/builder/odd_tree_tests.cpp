// Trees that no text gives: they end in a fault or a fatal diagnostic.
#include "tessarin/parser/setup/SetupConversion.hpp"

#include "builder/files.hpp"
#include "support/large.hpp"
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

std::optional<SetupDiagnosticFunction> noDiagnostic(const nvf::CxId&) {
  return std::nullopt;
}

/// Calls everything that is made of a parse tree.
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
  visit([&] { static_cast<void>(b.buildMatrixRow(t)); });
  visit([&] { static_cast<void>(b.buildIdent(t)); });
  visit([&] { static_cast<void>(b.buildOptIdent(t)); });
  visit([&] { static_cast<void>(b.buildIdentList(t)); });
  visit([&] { static_cast<void>(b.buildIdentList1(t)); });
  visit([&] { static_cast<void>(b.buildIdentValuePair(t)); });
  visit([&] { static_cast<void>(b.buildIdentValuePairs(t)); });
  visit([&] { static_cast<void>(b.buildTypeSpecifier(t)); });
  visit([&] { static_cast<void>(b.buildImplicitReference(t)); });
  visit([&] { static_cast<void>(b.buildIdSubsPath(t, {0, 2})); });
  visit([&] { static_cast<void>(b.buildEqnItem(t)); });
  visit([&] { static_cast<void>(b.buildEqnItemList(t)); });
  visit([&] { static_cast<void>(b.buildFunctionEqnItem(t)); });
  visit([&] { static_cast<void>(b.buildEqnDeclaration(t, 0, 1)); });
  visit([&] { static_cast<void>(b.buildEqDeclarationList(t)); });
  visit([&] { static_cast<void>(b.buildUntypedEqnDeclaration(t, 0)); });
  visit([&] { static_cast<void>(b.buildModelItemDecl(t)); });
  visit([&] { static_cast<void>(b.buildObjArrayDecl(t)); });
  visit([&] { static_cast<void>(b.buildDeclarationBlock(t)); });
  visit([&] { static_cast<void>(b.buildDefinitionsBlock(t)); });
  visit([&] { static_cast<void>(b.buildImports(t)); });
  visit([&] { static_cast<void>(b.buildClassInitializer(t)); });
  visit([&] { static_cast<void>(b.buildAnnotationsBlock(t)); });
  visit([&] { static_cast<void>(b.buildMemberAnnotation(t)); });
  visit([&] { static_cast<void>(b.buildBranchBlock(t)); });
  visit([&] { static_cast<void>(b.buildThrough(t)); });
  visit([&] { static_cast<void>(b.buildThroughLeaf(t)); });
  visit([&] { static_cast<void>(b.buildConnectionBlock(t)); });
  visit([&] { static_cast<void>(b.buildConnection(t)); });
  visit([&] { static_cast<void>(b.buildModechartBlock(t)); });
  visit([&] { static_cast<void>(b.buildModechartDeclaration(t)); });
  visit([&] { static_cast<void>(b.buildModechart(t)); });
  visit([&] { static_cast<void>(b.buildModesSection(t)); });
  visit([&] { static_cast<void>(b.buildMode(t)); });
  visit([&] { static_cast<void>(b.buildTransitionsSection(t)); });
  visit([&] { static_cast<void>(b.buildTransition(t)); });
  visit([&] { static_cast<void>(b.buildInitialSection(t)); });
  visit([&] { static_cast<void>(b.buildInitialMode(t)); });
  visit([&] { static_cast<void>(b.buildDeclarative(t)); });
  visit([&] { static_cast<void>(b.buildConditionalSection(t)); });
  visit([&] { static_cast<void>(b.buildElseifSections(t)); });
  visit([&] { static_cast<void>(b.buildElseifSection(t)); });
  visit([&] { static_cast<void>(b.buildElseSection(t)); });
  visit([&] { static_cast<void>(b.buildForLoop(t)); });
  visit([&] { static_cast<void>(b.buildModel(t, FileSource::open)); });
  visit([&] { static_cast<void>(b.buildTSNFunction(t, FileSource::open)); });
  visit([&] {
    static_cast<void>(b.buildTSNFunctions(t, Ident(Token(TokenId::ID, nvf::Location(), u"m", 1)), FileSource::open));
  });
  visit([&] { static_cast<void>(b.buildTSNFile(t, FileSource::open)); });
  visit([&] { static_cast<void>(b.buildModelFile(t, FileSource::open)); });
  visit([&] { static_cast<void>(b.buildTSNFunctionFile(t, FileSource::open)); });
  visit([&] { static_cast<void>(b.extractStructureInfo(t)); });
  visit([&] { static_cast<void>(to_setup_expr(t)); });
  visit([&] {
    static_cast<void>(to_simple_setup_stmt(ParseTree(K::NonExprStmt, std::vector<ParseTree>(6, t)), noDiagnostic));
  });
}

TEST(BuildOddTrees, SetupFunctions) {
  const auto converted = [](const ParseTree& body) {
    const ParseTree fill = leaf(TokenId::EMPTYTOKEN, {});
    return resultOf([&] {
      static_cast<void>(to_simple_setup_stmt(
          {K::NonExprStmt, {{K::ClosedFcnDef, {fill, fill, fill, fill, fill, body}}}}, noDiagnostic));
      return std::string();
    });
  };
  const ParseTree assignment(K::Assign, {name(), leaf(TokenId::EQUALS, {}), leaf(TokenId::NUMBER, u"1")});
  EXPECT_EQ(converted({K::ExprStmt, {assignment, leaf(TokenId::SEMI, {})}}), "");
  EXPECT_EQ(converted({K::ExprStmt, {assignment}}), "SimpleSetupUnsupportedStatement");
  EXPECT_EQ(converted({K::IfStmt, {name(), name()}}), "fatal: Parse tree node not recognized. 118");
}

LARGE_TEST(BuildOddTrees, NothingButExceptions) {
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

LARGE_TEST(BuildOddTrees, DeeperThanTheParserGoes) {
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
