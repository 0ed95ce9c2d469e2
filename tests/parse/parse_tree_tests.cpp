// The parse tree as a value: building, reading, comparing, hashing, digesting, stripping, misuse.
#include "support/parsing.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;
using K = NonTerminal;

Token token(std::string_view text, unsigned long column = 0) {
  const nvf::ustring wide = nvf::decode_utf8(text);
  return {TokenId::ID, nvf::Location(nvf::FileName(), nvf::LineColumn(0, column)), wide.data(), wide.size()};
}
ParseTree leaf(std::string_view text, unsigned long column = 0) {
  return ParseTree(token(text, column));
}
ParseTree node(NonTerminal::Value kind, const std::vector<ParseTree>& children = {}) {
  return {kind, children};
}
ParseTree dot(const ParseTree& path, const ParseTree& name) {
  return node(K::Dot, {path, ParseTree(Token(TokenId::DOT, nvf::Location(), nullptr, 0)), name});
}

TEST(ParseTree, Default) {
  const ParseTree tree;
  EXPECT_TRUE(tree.isTerminalType(TokenId::EMPTYTOKEN));
  EXPECT_FALSE(tree.isTerminalType(TokenId::ID));
  EXPECT_EQ(tree.data(), ParseTree::DEFAULT_DATA.data()) << "all defaults share one node";
  EXPECT_EQ(tree.left(), tree.right());
  EXPECT_TRUE(tree.equal(ParseTree(Token())));

  ParseTree changed;
  EXPECT_NE(changed.data(), ParseTree::DEFAULT_DATA.data()) << "which nobody can change";
}

TEST(ParseTree, Reading) {
  const std::vector<ParseTree> children{node(K::Row), leaf("a", 1), leaf("b", 2), node(K::Row, {node(K::Row)})};
  const ParseTree tree(K::ArrayBody, children.data(), children.size());
  EXPECT_EQ(tree.type(), 1);
  EXPECT_TRUE(tree.isNonTerminalType(K::ArrayBody));
  EXPECT_FALSE(tree.isNonTerminalType(K::Row));
  EXPECT_FALSE(tree.isTerminalType(TokenId::ID));
  EXPECT_FALSE(tree.child(1).isNonTerminalType(K::Row));
  EXPECT_EQ(tree.count(), 4U);
  EXPECT_EQ(tree.left(), &tree.child(1).token()) << "empty nodes hold no token";
  EXPECT_EQ(tree.right(), &tree.child(2).token());
  EXPECT_EQ(tree.location().lineColumn(), nvf::LineColumn(0, 1));
  EXPECT_EQ(tree.child(3).left(), nullptr);
  EXPECT_EQ(tree.child(3).right(), nullptr);
  EXPECT_EQ(ParseTree(K::Row, nullptr, 0).count(), 0U);
  EXPECT_EQ(leaf("a").type(), 0);
}

TEST(ParseTree, Roll) {
  const struct {
    ParseTree tree;
    const char* rolled;
  } rows[] = {
      {node(K::IdList), "(IdList)"},
      {node(K::IdList, {node(K::IdList), node(K::IdList, {node(K::IdList)})}), "(IdList)"},
      {node(K::IdList, {node(K::IdList, {leaf("a")}), leaf("b")}), "(IdList a b)"},
      {node(K::IdList, {leaf("a"), node(K::IdList, {leaf("b"), node(K::IdList, {leaf("c")})}), leaf("d")}),
       "(IdList a b c d)"},
      {node(K::Row, {node(K::IdList, {node(K::IdList, {leaf("a")})}), node(K::Row, {leaf("b")})}),
       "(Row (IdList (IdList a)) b)"},
  };
  for (const auto& [tree, rolled] : rows) {
    EXPECT_EQ(expressionOf(tree.roll()), rolled);
    EXPECT_EQ(expressionOf(tree.roll().roll()), rolled);
  }

  std::vector<ParseTree> out{leaf("x")};
  rows[2].tree.roll(K::IdList, out);
  leaf("c").roll(K::IdList, out);
  EXPECT_EQ(expressionOf(node(K::Row, out)), "(Row x a b c)") << "what was there stays";
}

TEST(ParseTree, Trim) {
  const ParseTree tree = node(K::Row, {leaf("a", 1), leaf("b", 2), leaf("c", 3)});
  const char* rows[] = {"(Row a b c)", "(Row a b)", "(Row a)", "(Row)", "(Row)"};
  for (std::size_t n = 0; n < std::size(rows); ++n) EXPECT_EQ(expressionOf(tree.trim(n)), rows[n]);
  EXPECT_EQ(tree.trim(1).right()->location().lineColumn().column(), 2U);
  EXPECT_EQ(node(K::Row).trim(1).count(), 0U);
}

TEST(ParseTree, OrderOfDifferentTrees) {
  const ParseTree a = leaf("a");
  const std::vector<ParseTree> ascending{
      ParseTree(Token()),
      a,
      leaf("b"),
      node(K::Case),
      node(K::Case, {a}),
      node(K::Case, {a, a}),
      node(K::Case, {a, leaf("b")}),
      node(K::Case, {leaf("b")}),
      node(K::Case, {node(K::Case)}),
      node(K::Colon),
      node(K::TSNFunctionEqnExpr),
  };
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const Ordering expected = i == j ? Ordering::Equal : i < j ? Ordering::Less : Ordering::Greater;
      EXPECT_EQ(compare(ascending[i], ascending[j]), expected) << i << " " << j;
      EXPECT_EQ(ascending[i].equal(ascending[j]), i == j) << i << " " << j;
    }
  }
}

TEST(ParseTree, PlacesCountInTheOrderOnly) {
  const ParseTree here = node(K::Row, {leaf("a", 1)});
  const ParseTree there = node(K::Row, {leaf("a", 2)});
  EXPECT_TRUE(here.equal(there));
  EXPECT_EQ(compare(here, there), Ordering::Less);
}

/// The constants of hashes are pinned: hashes of trees are compared between builds.
TEST(ParseTree, Hash) {
  EXPECT_EQ(hash_value(node(K::Case)), 0xcb34c5ae03d8f098U);
  EXPECT_EQ(hash_value(node(K::Row)), 0x7a140b9382019ac8U);
  EXPECT_EQ(hash_value(node(K::Model, {node(K::Case), node(K::Row)})), 0xa6b0c220d87ae65cU);
  EXPECT_EQ(hash_value(leaf("a", 3)), hash_value(token("a", 3)));
  EXPECT_EQ(hash_value(ParseTree()), hash_value(Token()));

  const ParseTree tree = node(K::Add, {leaf("a"), node(K::Row, {leaf("b")})});
  EXPECT_EQ(hash_value(tree), hash_value(tree)) << "a remembered hash is the same";
  EXPECT_EQ(hash_value(tree), hash_value(node(K::Add, {leaf("a"), node(K::Row, {leaf("b")})})));
  EXPECT_NE(hash_value(tree), hash_value(node(K::Add, {node(K::Row, {leaf("b")}), leaf("a")})));
}

TEST(ParseTree, Digest) {
  EXPECT_EQ(digestBytes(node(K::Case)), "00000000");
  EXPECT_EQ(digestBytes(node(K::TSNFunctionEqnExpr)), "0000009b");
  EXPECT_EQ(digestBytes(node(K::Model, {node(K::Row), node(K::ExprList, {node(K::Colon)})})),
            "000000520000000f0000001e00000001")
      << "no counts, nothing at the end";
  EXPECT_EQ(digestBytes(node(K::Row, {leaf("a", 2)})), "0000000f" + digestBytes(token("a", 2)));
}

TEST(ParseTree, StripCopiesWhatIsShared) {
  const ParseTree shared = node(K::Row, {leaf("a", 5)});
  const ParseTree before = node(K::ArrayBody, {shared, shared, node(K::Row)});
  ParseTree stripped = before;
  const std::size_t hash = hash_value(before);
  strip_annotation_inplace(stripped);

  const nvf::Location nowhere;
  EXPECT_EQ(stripped.left()->location(), nowhere);
  EXPECT_EQ(stripped.left(), &stripped.child(0).child(0).token());
  EXPECT_EQ(stripped.right(), &stripped.child(1).child(0).token());
  EXPECT_TRUE(stripped.equal(before));
  EXPECT_EQ(compare(stripped, node(K::ArrayBody, {node(K::Row, {leaf("a")}), node(K::Row, {leaf("a")}), node(K::Row)})),
            Ordering::Equal);
  EXPECT_EQ(hash_value(stripped),
            hash_value(node(K::ArrayBody, {node(K::Row, {leaf("a")}), node(K::Row, {leaf("a")}), node(K::Row)})))
      << "no hash of the former places is remembered";

  EXPECT_EQ(before.location().lineColumn().column(), 5U) << "other handles keep their tree";
  EXPECT_EQ(shared.location().lineColumn().column(), 5U);
  EXPECT_EQ(hash_value(before), hash);

  // What nobody else holds is changed where it is.
  const ParseTreeData* const data = std::as_const(stripped).data();
  strip_annotation_inplace(stripped);
  EXPECT_EQ(std::as_const(stripped).data(), data);
}

TEST(ParseTree, Visit) {
  struct Visitor final : ParseTreeVisitor {
    std::string asked;
    std::string seen;
    bool wantsToken(TokenId::Value code) override {
      asked += TokenId::displayString(code);
      return code == TokenId::ID;
    }
    void visitToken(const Token& token) override { seen += nvf::encode_utf8(token.text().view()); }
  } visitor;
  node(K::Row, {dot(leaf("a"), leaf("b")), node(K::Row), leaf("c")}).visit(visitor);
  EXPECT_EQ(visitor.asked, "ID\".\"IDID");
  EXPECT_EQ(visitor.seen, "abc");
}

TEST(ParseTree, Listing) {
  const ParseTree tree = node(K::Row, {leaf("a"), node(K::IdList, {node(K::Case), leaf("b")})});
  const auto line = [](std::string_view text) {
    std::ostringstream stream;
    stream << token(text);
    return stream.str();
  };
  const std::string expected = "* Row\n  * " + line("a") + "\n  * IdList\n    * Case\n    * " + line("b") + "\n";
  EXPECT_EQ(tree.getText(0), expected);
  EXPECT_EQ(tree.getText(5), expected) << "the argument means nothing";
  std::ostringstream stream;
  tree.child(0).out(stream, 3);
  EXPECT_EQ(stream.str(), "      * " + line("a") + "\n");
}

TEST(ParseTree, DotPath) {
  const auto subscript = [](const ParseTree& path) { return node(K::Subsref, {path, leaf("x"), node(K::ExprList)}); };
  const struct {
    ParseTree tree;
    const char16_t* path;
  } rows[] = {
      {leaf("a"), u"a"},
      {dot(leaf("a"), leaf("b")), u"a.b"},
      {dot(dot(leaf("a"), leaf("b")), leaf("c")), u"a.b.c"},
      {dot(subscript(dot(leaf("a"), leaf("b"))), leaf("c")), u"a.b"},
      {subscript(leaf("a")), u"a"},
      {dot(node(K::DotParen, {leaf("a")}), leaf("b")), u""},
      {dot(leaf("a"), node(K::ExprList)), u"a"},
      {ParseTree(), u""},
      {node(K::Dot, {leaf("a"), leaf("b")}), u"a"},
      {node(K::Dot), u""},
      {node(K::Subsref), u""},
      {dot(node(K::Dot), leaf("a")), u""},
  };
  for (const auto& [tree, expected] : rows) EXPECT_EQ(dot_path(tree).string(), expected) << expressionOf(tree);
}

TEST(ParseTree, Swap) {
  ParseTree a = leaf("a");
  ParseTree b = node(K::Row);
  swap(a, b);
  EXPECT_EQ(expressionOf(a) + expressionOf(b), "(Row)a");
}

/// To ask a node for what it has not is a fault of the program; the diagnostics are fixed.
TEST(ParseTree, Misuse) {
  const ThrowingTerminate terminate;
  const ParseTree terminal = leaf("a");
  const ParseTree inner = node(K::Row);
  const struct {
    std::function<void()> misuse;
    nvf::FatalDiagnostic expected;
  } rows[] = {
      {[&] { (void)inner.token(); },
       {"non-terminal", "parser/parse/NonTerminalData", 34,
        "virtual const tessarin::compiler::core::Token& tessarin::compiler::core::NonTerminalData::token() const"}},
      {[&] { (void)terminal.code(); },
       {"terminal", "parser/parse/TerminalData", 29,
        "virtual tessarin::compiler::core::NonTerminal::Value tessarin::compiler::core::TerminalData::code() const"}},
      {[&] { (void)terminal.roll(); },
       {"terminal", "parser/parse/TerminalData", 29,
        "virtual tessarin::compiler::core::NonTerminal::Value tessarin::compiler::core::TerminalData::code() const"}},
      {[&] { (void)terminal.count(); },
       {"terminal", "parser/parse/TerminalData", 35,
        "virtual size_t tessarin::compiler::core::TerminalData::count() const"}},
      {[&] { (void)terminal.child(0); },
       {"terminal", "parser/parse/TerminalData", 42,
        "virtual const tessarin::compiler::core::ParseTree& tessarin::compiler::core::TerminalData::child(size_t) "
        "const"}},
      {[&] { (void)terminal.trim(0); },
       {"terminal", "parser/parse/TerminalData", 48,
        "virtual tessarin::compiler::core::ParseTree tessarin::compiler::core::TerminalData::trim(size_t) const"}},
  };
  for (const auto& [misuse, expected] : rows) {
    try {
      misuse();
      ADD_FAILURE() << expected.signature;
    } catch (const nvf::FatalError& e) {
      const nvf::FatalDiagnostic& found = e.diagnostic();
      EXPECT_EQ(found.text, expected.text);
      EXPECT_EQ(found.sourceFile, expected.sourceFile);
      EXPECT_EQ(found.line, expected.line);
      EXPECT_EQ(found.signature, expected.signature);
    }
  }
}

TEST(NonTerminal, Names) {
  const std::pair<int, const char*> rows[] = {
      {0, "Case"}, {15, "Row"}, {61, "Lt"}, {66, "Ne"}, {155, "TSNFunctionEqnExpr"}};
  for (const auto& [number, name] : rows) {
    const auto kind = static_cast<NonTerminal::Value>(number);
    std::ostringstream stream;
    stream << kind;
    EXPECT_STREQ(NonTerminal::name(kind), name);
    EXPECT_EQ(stream.str(), name);
    EXPECT_EQ(NonTerminal::isRelational(kind), number >= 61 && number <= 66);
  }
  EXPECT_FALSE(NonTerminal::isRelational(K::DotRDiv) || NonTerminal::isRelational(K::ExprStmt));
  std::ostringstream stream;
  stream << static_cast<NonTerminal::Value>(-1);
  EXPECT_TRUE(stream.bad());
}

} // namespace
} // namespace tessarin::test
