// The statements of a setup function as values, and their text.
#include "ast/builders.hpp"
#include "setup/converting.hpp"
#include "support/value_laws.hpp"

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;
using Stmts = nvf::Expressions<SimpleSetupStmt>;

nvf::MessageId messageId(const char* text) {
  return nvf::MessageId::make(nvf::widen(text)).value();
}

SimpleSetupAsgnStmt assign(const char* target, const Expr& value) {
  return {Name(target), value};
}

template <class Stmt>
Stmt diagnostic(const char* id, const nvf::ustring& message, const nvf::Range& range = {}) {
  return Stmt(messageId(id), message, range);
}

const SimpleSetupStmt nothing;
const SimpleSetupStmt one = assign("x", number("1"));
const SimpleSetupStmt two = assign("y", number("2"));

TEST(SimpleSetupStmt, KindsAndFieldsCountInOrder) {
  const std::vector<SimpleSetupStmt> stmts{
      Stmts{one},
      Stmts{one, two},
      assign("x", number("1")),
      assign("x", number("2")),
      assign("x.a", number("1")),
      diagnostic<SimpleSetupErrorStmt>("a:b", u"c"),
      diagnostic<SimpleSetupErrorStmt>("a:b", u"d"),
      diagnostic<SimpleSetupErrorStmt>("b:b", u"c"),
      diagnostic<SimpleSetupWarningStmt>("a:b", u"c"),
      SimpleSetupIfStmt(name("a"), one, one),
      SimpleSetupIfStmt(name("a"), one, two),
      SimpleSetupIfStmt(name("a"), two, one),
      SimpleSetupIfStmt(name("b"), one, one),
  };
  expectDistinctInOrder(stmts);
  EXPECT_EQ(nothing, SimpleSetupStmt(Stmts()));
  EXPECT_EQ(compare(nothing, stmts[0]), nvf::Ordering::Less);
  // An 8-byte number of the kind, then the fields; a list feeds its elements and no length.
  EXPECT_EQ(digestBytes(nothing), "0000000000000000");
  EXPECT_EQ(digestBytes(stmts[5]), "00000000000000020061003a00620063");
  EXPECT_EQ(digestBytes(SimpleSetupStmt(SimpleSetupIfStmt(name("a"), one, nothing))),
            "0000000000000004" + digestBytes(name("a")) + digestBytes(one) + digestBytes(nothing));
}

TEST(SimpleSetupStmt, RangesNeverCount) {
  const auto here = diagnostic<SimpleSetupErrorStmt>("a:b", u"c", onLine(1));
  const auto there = diagnostic<SimpleSetupErrorStmt>("a:b", u"c", onLine(2));
  EXPECT_NE(here.range(), there.range());
  expectEqualValues(here, there);
  EXPECT_TRUE(equal_ignore_annotation(SimpleSetupStmt(here), SimpleSetupStmt(there)));
  EXPECT_FALSE(equal_ignore_annotation(SimpleSetupStmt(here), one));
}

TEST(SimpleSetupStmt, StrippingTakesThePlacesOfColonsOnlyAndLeavesTheOriginal) {
  const auto colonIn = [](const SimpleSetupStmt& stmt) {
    return stmt.get<SimpleSetupAsgnStmt>().rhs().get<Variable>().tail()->posArgs().at(0).location();
  };
  const SimpleSetupStmt placed = convert("x = a(:);");
  const nvf::Location place = colonIn(placed);
  EXPECT_NE(place, nvf::Location());

  EXPECT_EQ(colonIn(strip(placed)), nvf::Location());
  EXPECT_EQ(colonIn(strip(Stmts{one, placed})[1]), nvf::Location());
  const SimpleSetupIfStmt choice(name("a"), placed, placed);
  EXPECT_EQ(colonIn(strip(choice).branch(false)), nvf::Location());
  SimpleSetupStmt nested = Stmts{one, choice};
  const SimpleSetupStmt copy = nested;
  strip_annotation_inplace(nested);
  EXPECT_EQ(colonIn(nested.get<Stmts>()[1].get<SimpleSetupIfStmt>().branch(true)), nvf::Location());
  EXPECT_EQ(nested, copy);

  EXPECT_EQ(colonIn(placed), place);
  EXPECT_EQ(colonIn(copy.get<Stmts>()[1].get<SimpleSetupIfStmt>().branch(true)), place);
}

TEST(SimpleSetupStmt, Text) {
  struct Case {
    SimpleSetupStmt stmt;
    const char* text;
  };
  const Case cases[] = {
      {nothing, ""},
      {assign("a.b", name("c")), "  a.b = c;\n"},
      // The quote in the text is not doubled.
      {diagnostic<SimpleSetupErrorStmt>("a:b", u"it's \u00e9"), "  error('a:b', 'it's \xc3\xa9');\n"},
      {SimpleSetupWarningStmt(nvf::MessageId(), u"c", {}), "  warning('', 'c');\n"},
      {Stmts{one, Stmts{two, nothing}}, "  x = 1;\n  y = 2;\n"},
      {SimpleSetupIfStmt(name("a"), one, nothing), "  if a\n    x = 1;\n  end\n"},
      {SimpleSetupIfStmt(name("a"), nothing, two), "  if a\n  else\n    y = 2;\n  end\n"},
      {SimpleSetupIfStmt(name("a"), one, SimpleSetupIfStmt(name("b"), two, nothing)),
       "  if a\n    x = 1;\n  elseif b\n    y = 2;\n  end\n"},
      {SimpleSetupIfStmt(name("a"), SimpleSetupIfStmt(name("b"), one, nothing),
                         Stmts{SimpleSetupIfStmt(name("c"), one, two)}),
       "  if a\n    if b\n      x = 1;\n    end\n  else\n    if c\n      x = 1;\n    else\n      y = 2;\n    end\n  "
       "end\n"},
  };
  for (const Case& c : cases) EXPECT_EQ(printed(c.stmt, 1), c.text);
}

} // namespace
