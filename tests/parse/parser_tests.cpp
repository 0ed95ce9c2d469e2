// The parser as a machine: constructors, listeners, moving, what passes through it.
#include "support/parsing.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;

static_assert(!std::is_copy_constructible_v<Parser> && std::is_nothrow_move_constructible_v<Parser>);

const std::string model = "component c\nequations\n% text\na == b;\nend\nend\n";

nvf::AsciiString ascii(const std::string& text) {
  return nvf::detail::AsciiStringCheck()(text.data(), text.size());
}

TEST(Parser, BothConstructorsGiveTheSameTree) {
  const ParseTree fromBuffer = Parser(bufferOf(model)).parse();
  const ParseTree fromText = Parser(ascii(model), nvf::FileName(std::string("c.tsn"))).parse();
  EXPECT_TRUE(fromBuffer.isNonTerminalType(NonTerminal::FileGoal));
  EXPECT_EQ(compare(fromBuffer, fromText), Ordering::Equal) << "places included";
  EXPECT_EQ(fromText.location().fileName(), nvf::FileName(std::string("c.tsn")));
}

TEST(Parser, TokenListenerSeesWhatTheParserSees) {
  const auto codesOf = [](const std::string& source) {
    std::vector<TokenId::Value> codes;
    Parser parser(bufferOf(source));
    parser.tokenListener([](const Token&) { FAIL() << "a listener that has been replaced"; });
    parser.tokenListener([&codes](const Token& token) { codes.push_back(token.code()); });
    (void)parse(std::move(parser));
    return codes;
  };
  using Codes = std::vector<TokenId::Value>;
  EXPECT_EQ(codesOf("x = 1"), (Codes{TokenId::ID, TokenId::EQUALS, TokenId::NUMBER, TokenId::EOI, TokenId::EOI}))
      << "one end closes the statement, the other one the file";
  EXPECT_EQ(codesOf("component c end"), (Codes{TokenId::COMPONENT, TokenId::ID, TokenId::END, TokenId::EOI}));
  EXPECT_EQ(codesOf(""), Codes{TokenId::EOI});
  EXPECT_EQ(codesOf("a b c"), (Codes{TokenId::ID, TokenId::ID})) << "nothing is read behind a fault";
}

TEST(Parser, AListenerMayReplaceItself) {
  std::string seen;
  Parser parser(bufferOf("x = 1"));
  const auto name = [](const Token& token) { return std::string(TokenId::toString(token.code())) + " "; };
  // The text of the first one's own is long enough to be on the heap, and is read after the replacement.
  parser.tokenListener([&, own = std::string(100, '.')](const Token& token) {
    parser.tokenListener([&](const Token& later) { seen += "later " + name(later); });
    seen += own.substr(0, 1) + name(token);
  });
  (void)parser.parse();
  EXPECT_EQ(seen, ".ID later EQUALS later NUMBER later EOI later EOI ");
}

TEST(Parser, ASecondParseRepeatsTheFirst) {
  const auto faultOf = [](Parser& parser) {
    try {
      (void)parser.parse();
      return std::string("no fault");
    } catch (const nvf::LocationException& e) {
      return nvf::encode_utf8(e.fullMessage());
    }
  };
  Parser parser(bufferOf("x = = 1\ny = 2\n"));
  const std::string first = faultOf(parser);
  EXPECT_NE(first, "no fault");
  EXPECT_EQ(faultOf(parser), first);
  Parser moved(std::move(parser));
  EXPECT_EQ(faultOf(moved), first);

  Parser good(bufferOf(model));
  const ParseTree tree = good.parse();
  EXPECT_EQ(compare(good.parse(), tree), Ordering::Equal);
}

class CountingListener final : public MarkupListener {
public:
  explicit CountingListener(std::string& seen) : seen_(&seen) {}
  [[nodiscard]] std::unique_ptr<MarkupListener> clone() const override {
    return std::make_unique<CountingListener>(*this);
  }
  void notify(const nvf::ustring& text, const nvf::LineColumn& place) override {
    *seen_ += std::to_string(place.line()) + ":" + nvf::encode_utf8(text) + ";";
  }

private:
  std::string* seen_;
};

TEST(Parser, MarkupListenerSeesComments) {
  std::string former;
  std::string seen;
  Parser parser(bufferOf(model));
  parser.markupListener(CountingListener(former));
  parser.markupListener(CountingListener(seen));
  (void)parser.parse();
  EXPECT_EQ(former, "");
  EXPECT_EQ(seen, "2:% text;");
}

TEST(Parser, WhatAListenerThrowsPassesThrough) {
  struct Refusal {};
  Parser parser(bufferOf(model));
  parser.tokenListener([](const Token& token) {
    if (token.code() == TokenId::EQ) throw Refusal();
  });
  EXPECT_THROW((void)parser.parse(), Refusal);
}

TEST(Parser, Moving) {
  Parser source(bufferOf(model));
  Parser target(std::move(source));
  EXPECT_TRUE(target.parse().isNonTerminalType(NonTerminal::FileGoal));
  // NOLINTBEGIN(bugprone-use-after-move, clang-analyzer-cplusplus.Move): what is tested
  EXPECT_THROW((void)source.parse(), std::logic_error);
  EXPECT_THROW((void)source.impl(), std::logic_error);
  EXPECT_THROW(source.tokenListener(nullptr), std::logic_error);
  std::string seen;
  EXPECT_THROW(source.markupListener(CountingListener(seen)), std::logic_error);
  source = Parser(bufferOf("x"));
  EXPECT_TRUE(source.parse().isNonTerminalType(NonTerminal::FileGoal));
  // NOLINTEND(bugprone-use-after-move, clang-analyzer-cplusplus.Move)
}

TEST(Parser, NameWarnings) {
  const auto warningsFor = [](const std::string& source, const std::string& file) {
    std::string warnings;
    for (const nvf::Message& warning : parse(source, file).warnings) warnings += describe(warning) + ";";
    return warnings;
  };
  const std::string component = "component name\nend";
  const std::string warning = "InconsistentModelNameAndFileName(name) at 1:11;";
  EXPECT_EQ(warningsFor(component, "name.tsn"), "");
  EXPECT_EQ(warningsFor(component, "/a.b/name.tsn"), "");
  EXPECT_EQ(warningsFor(component, "name"), "");
  EXPECT_EQ(warningsFor(component, "name.old.tsn"), warning) << "only the last extension is taken off";
  EXPECT_EQ(warningsFor(component, "Name.tsn"), warning) << "case counts";
  EXPECT_EQ(warningsFor(component, "name/other.tsn"), warning);
  EXPECT_EQ(warningsFor(component, ".tsn"), warning) << "the stem is empty";
  EXPECT_EQ(warningsFor(component, ""), warning);
  EXPECT_EQ(warningsFor("function y = f\ndefinitions; end\nend\nfunction y = name\ndefinitions; end\nend", "f.tsn"), "")
      << "only the first function counts";
  EXPECT_EQ(warningsFor("x = 1", "name.tsn"), "");
}

TEST(Parser, ParsersOnSeveralThreads) {
  const ParseTree expected = Parser(bufferOf(model)).parse();
  std::atomic<int> same = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 50; ++k) {
        const ParseTree shared = expected; // NOLINT(performance-unnecessary-copy-initialization): threads share it
        if (compare(Parser(bufferOf(model)).parse(), shared) == Ordering::Equal) ++same;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(same, 200);
}

TEST(Parser, NodesOutliveTheParserAndDieOnAnyThread) {
  std::string text = "component c\nequations\n";
  for (int i = 0; i < 2000; ++i) text += "a(" + std::to_string(i) + ") == b;\n";
  text += "end\nend\n";
  // Pieces of the tree, which keep alive the memory that they lie in and no more of the tree.
  std::vector<ParseTree> pieces;
  {
    const ParseTree equations = Parser(bufferOf(text)).parse().child(1).child(4);
    for (std::size_t i = 0; i < equations.count(); ++i) pieces.push_back(equations.child(i));
  }
  ASSERT_FALSE(pieces.empty());
  const std::size_t hash = hash_value(pieces.front());
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([copies = pieces, hash]() mutable {
      EXPECT_EQ(hash_value(copies.front()), hash);
      copies.clear();
    });
  }
  pieces.clear();
  for (std::thread& thread : threads) thread.join();
}

} // namespace
} // namespace tessarin::test
