// Large and deep texts on a small stack: long lists, long chains, nesting up to the limit and beyond it.
#include "support/large.hpp"
#include "support/parsing.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <streambuf>
#include <string>

namespace tessarin::test {
namespace {

using namespace compiler::core;

std::string repeat(std::string_view text, std::size_t n) {
  std::string result;
  result.reserve(text.size() * n);
  for (std::size_t i = 0; i < n; ++i) result += text;
  return result;
}

/// A stream buffer that drops what is written.
class NullBuffer final : public std::streambuf {
  int overflow(int c) override { return c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

/// Every operation on a tree, and its end.
// NOLINTNEXTLINE(performance-unnecessary-value-param): the last owner lets go of it here
void useTree(ParseTree tree, bool isPrinted) {
  ParseTree stripped = tree;
  strip_annotation_inplace(stripped);
  EXPECT_TRUE(stripped.equal(tree));
  EXPECT_EQ(compare(stripped, tree), Ordering::Less) << "a place that is none comes before every place";
  EXPECT_EQ(hash_value(tree), hash_value(ParseTree(tree)));
  std::size_t bytes = 0;
  DigestSink sink = [&bytes](const char*, unsigned long size) { bytes += size; };
  incorporate_data(sink, tree);
  EXPECT_GT(bytes, 0U);
  struct Counter final : ParseTreeVisitor {
    std::size_t count = 0;
    bool wantsToken(TokenId::Value) override { return true; }
    void visitToken(const Token&) override { ++count; }
  } counter;
  tree.visit(counter);
  EXPECT_GT(counter.count, 0U);
  (void)tree.roll();
  if (isPrinted) {
    NullBuffer buffer;
    std::ostream null(&buffer);
    null << tree;
  }
}

struct Row {
  const char* name;
  std::string before;
  std::string item;
  std::string after;
};

const char* const equationsHead = "component c\nequations\n";
const char* const equationsTail = "\nend\nend\n";

/// What can be repeated without nesting.
const std::vector<Row>& flatRows() {
  static const std::vector<Row> rows{
      {"array", std::string(equationsHead) + "[", "1,", "1]" + std::string(equationsTail)},
      {"rows", std::string(equationsHead) + "[", "1;", "1]" + std::string(equationsTail)},
      {"arguments", std::string(equationsHead) + "f(", "1,", "1)" + std::string(equationsTail)},
      {"named arguments", std::string(equationsHead) + "f(", "a=1,", "b=1)" + std::string(equationsTail)},
      {"equations", equationsHead, "a;", equationsTail},
      {"branches of an if", std::string(equationsHead) + "if a,", " elseif b,",
       " else end" + std::string(equationsTail)},
      {"declarations of a let", std::string(equationsHead) + "let ", "a=1;", " in end" + std::string(equationsTail)},
      {"sections without separators", "component c\n", "events;end ", "end"},
      {"conditional sections", "component c\nif a", " elseif b", " end end"},
      {"declarations", "component c\nparameters;", "a=1;", "end end"},
      {"attributes", "component (", "a=1,", "a=1) c end"},
      {"annotations", "component c\nannotations;", "a=1,", "a=1;end end"},
      {"items of annotations", "component c\nannotations;", "a:b=1;", "end end"},
      {"definitions", "function y = c ", "definitions;end ", "definitions;end end"},
      {"parts of modecharts", "component c\nmodecharts;m=modechart ", "modes;end ", "end; end end"},
      {"parts of modes", "component c\nmodecharts;m=modechart modes;mode A ", "entry;end ", "end; end end; end end"},
      {"functions", "function y = c definitions;end end ", "function y=f definitions;end end ", ""},
      {"imports", "", "import a.b\n", "component c end"},
      {"path of an import", "import a", ".a", "\ncomponent c end"},
      {"statements", "", "a;", ""},
      {"separators", "a", ";", ""},
      {"subscripts", "a(", "1,", "1)"},
      {"elements", "{", "1,", "1}"},
      {"fields", "{", "a=1,", "a=1}"},
      {"branches of a statement", "if a,", " elseif b,", " end"},
      {"cases", "switch a", " case 1;", " end"},
  };
  return rows;
}

LARGE_TEST(ParseSize, ListOfAMillionItems) {
  onSmallStack([] {
    const Row& array = flatRows().front();
    const Parsed parsed = parse(array.before + repeat(array.item, 1'000'000) + array.after);
    ASSERT_FALSE(parsed.fault);
    useTree(parsed.tree, true);
  });
}

/// A list that were copied for each item would take minutes here.
LARGE_TEST(ParseSize, ListsOfEverySort) {
  onSmallStack([] {
    for (const Row& row : flatRows()) {
      const Parsed parsed = parse(row.before + repeat(row.item, 40'000) + row.after);
      EXPECT_FALSE(parsed.fault) << row.name;
    }
  });
}

LARGE_TEST(ParseSize, ChainsToTheLeftDoNotNest) {
  const struct {
    const char* name;
    std::string before;
    std::string item;
  } rows[] = {
      {"sum", "x", " + x"},         {"mixed operators", "x", " * x - y"},
      {"transposes", "x", "'"},     {"powers", "x", "^x"},
      {"path", "x", ".x"},          {"subscripts", "x", "(1)"},
      {"relations", "x", " < x"},   {"ranges", "x", ":x"},
      {"conditions", "x", " || x"},
  };
  onSmallStack([&rows] {
    for (const auto& row : rows) {
      SCOPED_TRACE(row.name);
      const Parsed parsed = parse(row.before + repeat(row.item, 30'000) + ";");
      ASSERT_FALSE(parsed.fault) << describe(*parsed.fault);
      useTree(parsed.tree, false);
    }
    const Parsed parsed = parse(equationsHead + ("x" + repeat(" + x.y(1)", 100'000)) + equationsTail);
    ASSERT_FALSE(parsed.fault);
    useTree(parsed.tree, false);
  });
}

/// Texts that nest: `open` as often as wanted, and `close` as often behind `middle`.
struct Nest {
  const char* name;
  std::string before;
  std::string open;
  std::string middle;
  std::string close;
  std::string after;
  std::size_t nodes; ///< by how many nodes a repetition nests

  [[nodiscard]] std::string source(std::size_t n) const {
    return before + repeat(open, n) + middle + repeat(close, n) + after;
  }
};

const std::vector<Nest>& nests() {
  const std::string head = equationsHead;
  const std::string tail = equationsTail;
  static const std::vector<Nest> table{
      {"prefix operators", "", "-", "x", "", "", 1},
      {"prefix operators of equations", head, "~", "x", "", tail, 1},
      {"powers of prefix operators", "x", "^-x", "", "", ";", 2},
      {"powers of prefix operators of equations", head + "x", "^-x", "", "", tail, 2},
      {"if expressions", head, "if a, b else ", "c", " end", tail, 3},
      {"if expressions in conditions", head, "if ", "c", ", a else b end", tail, 1},
      {"let expressions", head, "let in ", "c", " end", tail, 2},
      {"derivatives", head + "x", ".der", "", "", tail, 1},
      {"anonymous functions", "", "@()", "x", "", "", 1},
      {"bodies of if", "", "if a, ", "b", ", end", "", 3},
      {"bodies of while", "", "while a, ", "b", ", end", "", 3},
      {"conditional sections", "component c\n", "if a ", "events;end", " end", " end", 2},
      {"loops over sections", "component c\n", "for i=1 ", "events;end", " end", " end", 2},
      {"else sections", "component c\n", "if a else ", "events;end", " end", " end", 4},
  };
  return table;
}

LARGE_TEST(ParseSize, NestingUpToTheLimitAndBeyond) {
  static_assert(maxNesting >= 10'000);
  constexpr std::size_t around = 10; // more than the nodes that what stands around the nest may add
  onSmallStack([] {
    for (const Nest& nest : nests()) {
      SCOPED_TRACE(nest.name);
      const Parsed accepted = parse(nest.source((maxNesting - around) / nest.nodes));
      ASSERT_FALSE(accepted.fault) << describe(*accepted.fault);
      useTree(accepted.tree, false);
      for (const std::size_t n : {maxNesting / nest.nodes + around, std::size_t{2} * maxNesting}) {
        const Parsed refused = parse(nest.source(n));
        ASSERT_TRUE(refused.fault);
        EXPECT_EQ(refused.fault->id().id, "DeepStatements");
      }
    }
  });
}

/// A line of a listing is indented by its depth, so that a listing grows with the square of the depth.
LARGE_TEST(ParseSize, ListingOfADeepTree) {
  onSmallStack([] {
    const Parsed parsed = parse("x" + repeat(" + x", 10'000) + ";");
    useTree(parsed.tree, true);
  });
}

} // namespace
} // namespace tessarin::test
