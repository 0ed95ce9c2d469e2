// What people who write programs on the library reach for, through the one header that they include.
#include "tessarin/tessarin.hpp"

#include "ast/kinds.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <unordered_map>
#include <unordered_set>

namespace {

using namespace tessarin;
namespace make = tessarin::compiler::core::make;

template <class T>
std::string shown(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

/// A component `c` with this body.
ModelFile modelFile(std::string_view body) {
  return std::get<ModelFile>(parseText("c.tsn", "component c\n" + std::string(body) + "\nend\n"));
}

const std::string& body() {
  static const std::string text = "  parameters\n"
                                  "    k = {2, 'N'};\n"
                                  "  end\n"
                                  "  variables\n"
                                  "    x = 0;\n"
                                  "  end\n"
                                  "  if k > 1\n"
                                  "    equations\n"
                                  "      der(x) == k*f(x, k);\n"
                                  "      if x > 1, assert(x < 5); else x == 1; end\n"
                                  "    end\n"
                                  "  end";
  return text;
}

// ---- reading ----

TEST(ParseFile, ThrowsTheFirstFaultAsAFailure) {
  try {
    (void)parseText("c.tsn", u"component c\n  equations\n    a == ;\n  end\nend\n");
    FAIL();
  } catch (const nvf::Failure& failure) {
    ASSERT_NE(failure.findMessage(), nullptr);
    ASSERT_NE(failure.findLocation(), nullptr);
    EXPECT_EQ(failure.findLocation()->lineColumn(), nvf::LineColumn(2, 9));
    EXPECT_EQ(failure.text(), failure.findMessage()->text());
  }
  EXPECT_THROW((void)parseFile("no/such/file.tsn"), nvf::UnreadableFile);
  EXPECT_THROW((void)parseText("c.tsn", "component \xff"), nvf::InvalidUtf8);
}

TEST(ParseFile, AResultHasTheFileOrWhatWasSaid) {
  const ParseResult good = tryParseText("c.tsn", "component c\nend\n");
  ASSERT_TRUE(good);
  EXPECT_TRUE(good.findings().empty());
  EXPECT_EQ(&good.value(), &*good);

  const ParseResult warned = tryParseText("other.tsn", "component c\nend\n");
  ASSERT_TRUE(warned.ok());
  ASSERT_EQ(warned.findings().size(), 1U);
  EXPECT_EQ(warned.findings()[0].severity, nvf::Severity::Warning);
  EXPECT_EQ(warned.findings()[0].id->id, "InconsistentModelNameAndFileName");

  const ParseResult bad = tryParseText("c.tsn", "component c\n  equations\n    a = 1;\n  end\nend\n");
  EXPECT_FALSE(bad);
  ASSERT_EQ(bad.findings().size(), 1U);
  EXPECT_EQ(shown(bad.findings()[0]).rfind("c.tsn:3:", 0), 0U) << bad.findings()[0];
  EXPECT_THROW((void)bad.value(), nvf::LocationException);

  const ParseResult unread = tryParseFile("no/such/file.tsn");
  ASSERT_EQ(unread.findings().size(), 1U);
  EXPECT_EQ(shown(unread.findings()[0]), "error: no/such/file.tsn cannot be read: No such file or directory");
  EXPECT_FALSE(unread.findings()[0].location || unread.findings()[0].id);
}

TEST(ParseFile, ReadsWhatIsOnTheDisk) {
  const auto path = std::filesystem::temp_directory_path() / "tessarin_library_tests.tsn";
  std::string text = "component tessarin_library_tests\n";
  for (int i = 0; i < 1000; ++i) text += "  % \xc3\xa4\n"; // longer than the first block that is read
  std::ofstream(path) << text << "end\n";
  EXPECT_EQ(std::get<ModelFile>(parseFile(path)).model().name().id(), "tessarin_library_tests");
  EXPECT_EQ(nvf::read_source(path).text(), nvf::decode_utf8(text + "end\n"));
  std::filesystem::remove(path);
}

TEST(ParseFile, JobsOnTwoThreadsHaveTheirOwnFindings) {
  const auto job = [](const std::string& name) {
    for (int i = 0; i < 50; ++i) {
      const ParseResult result = tryParseText(name, "component c\nend\n");
      ASSERT_EQ(result.findings().size(), 1U);
      EXPECT_EQ(result.findings()[0].location->fileName(), nvf::FileName(name));
    }
  };
  std::thread other(job, "a.tsn");
  job("b.tsn");
  other.join();
}

// ---- looking ----

TEST(Kinds, EveryKindHasItsName) {
  for (const Expr& expr : test::oneOfEachKind()) {
    EXPECT_EQ(static_cast<std::size_t>(kind(expr)), expr.id());
    expr.visit([&expr](const auto& alternative) {
      EXPECT_EQ(AstNode(alternative).kind(), NodeKind(AstNode(alternative).kind()));
      EXPECT_EQ(kindName(expr), kindName(AstNode(alternative).kind()));
    });
  }
  EXPECT_EQ(shown(OpExprType::AndAnd), "AndAnd");
  EXPECT_EQ(kindName(static_cast<ExprKind>(24)), "");
  EXPECT_TRUE(is<OpExpr>(make::der(make::var("x"))));
  EXPECT_EQ(getOp(make::var("x"), OpExprType::Der), nullptr);
}

TEST(Walk, ComesByEveryNodeOnceAndLeavesIt) {
  struct Listener : NodeVisitor {
    std::vector<AstNode> open;
    std::map<std::string_view, int> entered;
    Walk enter(AstNode node) override {
      open.push_back(node);
      ++entered[kindName(node.kind())];
      return node.is<IfExpr>() ? Walk::Skip : Walk::Into;
    }
    void leave(AstNode node) override {
      EXPECT_EQ(open.back(), node);
      open.pop_back();
    }
  } listener;
  const ModelFile file = modelFile(body());
  EXPECT_TRUE(walk(file, listener));
  EXPECT_TRUE(listener.open.empty());
  EXPECT_EQ(listener.entered["Model"], 1);
  EXPECT_EQ(listener.entered["DeclarationBlock"], 2);
  EXPECT_EQ(listener.entered["ConditionalSection"], 1);
  EXPECT_EQ(listener.entered["IfExpr"], 1);
  EXPECT_EQ(listener.entered["EqnAssertion"], 0); // inside what was skipped
  EXPECT_EQ(listener.entered["Variable"], 6);     // k > 1, der(x), k, f with x and k
}

TEST(Walk, FunctionsSeeTheClassesThatTheyTake) {
  const ModelFile file = modelFile(body());
  int variables = 0;
  int blocks = 0;
  int expressions = 0;
  EXPECT_TRUE(walk(file, nvf::overloaded{[&](const Variable&) { ++variables; },
                                         [&](const DeclarationBlock&) {
                                           ++blocks;
                                           return Walk::Skip;
                                         }}));
  walk(file, [&expressions](const Expr&) { ++expressions; });
  EXPECT_EQ(variables, 9);
  EXPECT_EQ(blocks, 2);
  EXPECT_GT(expressions, variables);
  EXPECT_FALSE(walk(file, [](const Variable&) { return Walk::Stop; }));
}

TEST(Walk, DeepAndLongTreesOnASmallStack) {
  test::onSmallStack([] {
    Expr nested = make::var("a");
    for (int i = 0; i < 20'000; ++i) nested = i % 2 == 0 ? make::negate(nested) : Expr(TransitionExpr(nested, nested));
    const Expr sum = test::chain(100'000, make::var("a"));
    std::size_t count = 0;
    walk(sum, [&count](const Variable&) { ++count; });
    EXPECT_EQ(count, 100'001U);
    EXPECT_TRUE(find(sum, nvf::LineColumn(0, 0)).empty());
    EXPECT_EQ(range(AstNode(sum)), nvf::Range());
    count = 0;
    walk(nested, [&count](const AstNode&) { return ++count < 100'000 ? Walk::Into : Walk::Stop; });
    EXPECT_EQ(count, 100'000U);
  });
}

TEST(Walk, ChildrenAreTheNextExpressions) {
  const Expr expr = str_to_astexpr(u"f(a + b, n = [c; d])");
  std::string children;
  forEachChild(expr, [&children](const Expr& child) { children += shown(child) + ";"; });
  EXPECT_EQ(children, "a + b;[c; d];");
}

TEST(Find, LeadsFromTheModelToTheName) {
  const std::string marked = "  equations\n    a.b == -$0c;\n  end";
  std::string text = "component c\n" + marked + "\nend\n";
  text.erase(text.find("$0"), 2);
  const TSNFile file = parseText("c.tsn", text);
  std::string path;
  for (const AstNode node : find(file, nvf::LineColumn(2, 12))) path += std::string(kindName(node.kind())) + " ";
  EXPECT_EQ(path,
            "Model DeclarativeSections SemanticSections EquationBlock EqnItem Expr OpExpr Expr OpExpr Expr Variable "
            "Ident ");
  EXPECT_TRUE(find(file, nvf::LineColumn(9, 0)).empty());
  const auto block = find(file, nvf::LineColumn(1, 4)); // the keyword
  ASSERT_FALSE(block.empty());
  EXPECT_EQ(block.back().kind(), NodeKind::EquationBlock);
  EXPECT_EQ(range(block.back()).end().lineColumn(), nvf::LineColumn(2, 13));
}

// ---- changing ----

/// Where the fields of an expression lie.
const void* identity(const Expr& expr) {
  return expr.visit([](const auto& alternative) -> const void* { return &alternative.tuple(); });
}

TEST(Rewriting, WhatStaysIsShared) {
  ExprTransformVisitor nothing;
  for (const Expr& expr : test::oneOfEachKind(test::onLine(3))) {
    const Expr same = rewrite(expr, nothing);
    EXPECT_EQ(same, expr);
    EXPECT_EQ(range(AstNode(same)), range(AstNode(expr)));
    if (!is<NumberLiteral>(expr) && !is<StringLiteral>(expr) && !is<TransitionExpr>(expr) &&
        !is<ModechartEqnExpr>(expr)) {
      EXPECT_EQ(identity(same), identity(expr)) << expr;
    }
  }
  const Expr left = make::add(make::var("a"), make::var("b"));
  const Expr changed = rewrite(make::multiply(left, make::number(1)),
                               [](const NumberLiteral& number) { return make::number(2 * number.value().number()); });
  EXPECT_EQ(shown(changed), "(a + b) * 2");
  EXPECT_EQ(identity(changed.get<OpExpr>().operandAt(0)), identity(left));

  // A place that has changed is a change.
  const Expr moved = rewrite(left, [](const Variable& v) { return v.withRange(test::onLine(7)); });
  EXPECT_EQ(moved, left);
  EXPECT_EQ(range(AstNode(moved.get<OpExpr>().operandAt(0))), test::onLine(7));
}

TEST(Rewriting, ReachesEveryPartOfAFile) {
  const ModelFile file = modelFile(body());
  const ModelFile renamed = rewrite(file, [](const Variable& variable) -> std::optional<Expr> {
    if (!variable.isID() || variable.id().id() != "x") return std::nullopt;
    return make::var("y");
  });
  std::string expected = shown(file);
  for (std::size_t i = 0; (i = expected.find("x", i)) != std::string::npos; ++i) {
    if (expected.substr(i, 4) != "x = ") expected[i] = 'y'; // all but the declaration
  }
  EXPECT_EQ(shown(renamed), expected);
  EXPECT_EQ(rewrite(file, [](const Time&) { return make::number(0); }).model(), file.model());

  const TSNFile function = parseText("f.tsn", "function y = f(x)\n  definitions\n    y = x + 1;\n  end\nend\n");
  const TSNFile twice = rewrite(function, [](const NumberLiteral&) { return make::number(2); });
  EXPECT_NE(shown(std::get<TSNFunctionFile>(twice)).find("y = x + 2"), std::string::npos);
}

TEST(With, ChangesOnePartOfACopy) {
  const Expr sum = str_to_astexpr(u"a + b");
  EXPECT_EQ(shown(Expr(withOperand(sum.get<OpExpr>(), 1, make::number(-2.5)))), "a + -2.5");
  EXPECT_EQ(shown(sum), "a + b");
  EXPECT_THROW((void)withOperand(sum.get<OpExpr>(), 2, sum), std::out_of_range);
  for (const Expr& expr : test::oneOfEachKind()) {
    const Expr moved = withRange(expr, test::onLine(4));
    EXPECT_EQ(moved, expr);
    EXPECT_EQ(expr_range(moved), test::onLine(4)) << kindName(expr);
  }
  const Model model = modelFile(body()).model();
  EXPECT_EQ(withName(model, make::ident("d")).name().id(), "d");
  EXPECT_EQ(withName(model, make::ident("d")).declarativeSections(), model.declarativeSections());
}

// ---- making ----

TEST(Make, WhatIsMadeReadsBack) {
  const Expr cases[] = {
      make::equal(make::der(make::var("x")), make::multiply(make::var("p.k"), make::number(2))),
      make::call("a.f", {make::var("x"), make::colon()}, {{"n", make::text("it's ä")}}),
      make::matrix({{make::number(1), make::number("2.50")}, {make::negate(make::number(0.25)), make::var("x")}}),
      make::withUnit(make::power(make::var("x"), make::number(2UL)), "m/s^2"),
      make::ifThen(make::less(make::var("x"), make::number(1e-9)), {make::var("a")},
                   {make::valueIn(make::var("b"), "m")}),
      make::let({make::declaration({"a", "~"}, make::call("f", {})), make::declaration("b", make::number(-3))},
                {make::logicalOr(make::var("a"), make::logicalNot(make::var("b")))}),
  };
  for (const Expr& expr : cases) EXPECT_EQ(str_to_astexpr(to_string(expr)), expr) << expr;
  EXPECT_EQ(make::number(-2.5), make::negate(make::number(2.5)));

  const Model model = make::model({
      .name = "c",
      .declarations = {make::declarations(
          {.type = MemberType::PARAMETER, .declarations = {make::declaration("k", make::number(1))}})},
      .equations = {make::equations({cases[0], make::assertion(make::var("k"), "k is needed")})},
  });
  const TSNFunction function = make::function(
      {.name = "g", .outputs = {"y"}, .inputs = {"x"}, .definitions = {make::declaration("y", make::var("x"))}});
  const ModelFile file(model, {}, {{make::id("g"), function}});
  EXPECT_EQ(shown(std::get<ModelFile>(parseText("c.tsn", shown(file)))), shown(file));
}

TEST(Make, TextIsChecked) {
  EXPECT_EQ(nvf::CxId("a_1"), u"a_1");
  EXPECT_EQ(nvf::CxId(nvf::ustring(u"b")), "b");
  EXPECT_EQ(nvf::CxId::make("1a"), std::nullopt);
  EXPECT_EQ(nvf::CxId::make(u"ab")->view(), u"ab");
  EXPECT_EQ(nvf::NumberString("1.50"), "1.50");
  EXPECT_EQ(nvf::NumberString::make(u"x"), std::nullopt);
  EXPECT_EQ(nvf::ExprString(u"m/s"), "m/s");
  EXPECT_EQ(nvf::ExprString::make("m/"), std::nullopt);
  EXPECT_EQ(nvf::UnitsExpr("m*s"), nvf::UnitsExpr("s*m"));
  EXPECT_EQ(nvf::UnitsExpr::make("?"), std::nullopt);
  EXPECT_EQ(nvf::CxIdPath(std::string_view("a.b")), "a.b");
  EXPECT_THROW((void)make::var("a.ä"), nvf::InvalidCxId);
  EXPECT_THROW((void)nvf::CxId(""), nvf::Failure);
  EXPECT_THROW((void)nvf::NumberString(""), nvf::InvalidNumberString);
}

// ---- containers and streams ----

TEST(Containers, ValuesAreKeys) {
  const nvf::FileName file("a.tsn");
  const nvf::Location place(file, nvf::LineColumn(1, 2));
  EXPECT_EQ((std::unordered_map<Expr, int>{{make::var("a"), 1}}).count(make::var("a")), 1U);
  EXPECT_EQ((std::set<nvf::CxIdPath>{make::path("b"), make::path("a.b")}).begin()->string(), u"a.b");
  EXPECT_EQ((std::unordered_set<nvf::UnitsExpr>{nvf::UnitsExpr("m*s"), nvf::UnitsExpr("s*m")}).size(), 1U);
  EXPECT_EQ((std::set<nvf::Location>{place, place}).size(), 1U);
  EXPECT_EQ((std::unordered_set<nvf::Range>{{place, place}, {}}).size(), 2U);
  EXPECT_EQ((std::set<Token>{Token(), Token()}).size(), 1U);
  EXPECT_EQ((std::unordered_set<Token>{Token(), Token(TokenId::ID, place, u"a", 1)}).size(), 2U);
  EXPECT_EQ(shown(nvf::Range(place, nvf::Location(file, nvf::LineColumn(3, 0)))), "(a.tsn:2:3-4:1)");
  EXPECT_EQ(shown(nvf::UnitsExpr("s*m")), "m*s");
}

TEST(Containers, ADigestIsBytes) {
  EXPECT_EQ(nvf::digest_hex(make::id("ab")), "6162");
  EXPECT_EQ(nvf::digest_bytes(make::id("ab")), "ab");
  EXPECT_EQ(nvf::digest_hex(make::var("a")), nvf::digest_hex(str_to_astexpr(u"a")));
}

TEST(Handles, AreLookedAtWithoutACopy) {
  const Expr expr = make::var("a");
  ExprHandle handle(expr);
  const ExprHandle other = handle;
  EXPECT_EQ(&*handle, &*other);
  EXPECT_EQ(handle->id(), expr.id());
}

} // namespace
