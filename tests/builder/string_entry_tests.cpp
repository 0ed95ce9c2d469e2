// Fragments of the language in strings.
#include "tessarin/parser/ast/ToStringContext.hpp"
#include "tessarin/parser/builder/StringEntries.hpp"

#include "builder/files.hpp"

#include <boost/numeric/conversion/cast.hpp>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;

std::string textOf(const Expr& value) {
  return nvf::encode_utf8(to_string(value));
}
std::string textOf(const EqnItem& value) {
  return nvf::encode_utf8(to_string(value, ToStringContext()));
}
template <class T>
requires requires(const T& value) {
  value.string(ToStringContext());
}
std::string textOf(const T& value) {
  return nvf::encode_utf8(value.string(ToStringContext()));
}
template <class T>
requires requires(const T& value) {
  value.string();
}
std::string textOf(const T& value) {
  return nvf::encode_utf8(value.string());
}
template <class T>
requires requires(const T& value) {
  value.string(0, 2);
}
std::string textOf(const T& value) {
  return nvf::encode_utf8(value.string(0, 2));
}
template <class T>
std::string textOf(const std::vector<T>& values) {
  std::string text;
  for (const T& value : values) text += textOf(value) + ";";
  return text;
}

/// What comes of one fragment, given as text of either sort: a test says it once.
using Entry = std::function<std::string(const std::string&)>;

/// The entry whose overloads are called by `function`, which all must give the same.
template <class Function>
Entry entry(Function function) {
  return [function](const std::string& text) {
    std::string result = resultOf([&] { return textOf(function(text)); });
    EXPECT_EQ(resultOf([&] { return textOf(function(nvf::widen(text))); }), result);
    return result;
  };
}

const Entry name = entry([](const auto& text) { return str_to_astname(text); });
const Entry initializer = [](const std::string& text) {
  return resultOf([&] { return textOf(str_to_classinitializer(nvf::widen(text), ASTBuilder())); });
};
const Entry item = entry([](const auto& text) { return str_to_asteqnitem(text); });
const Entry expr = entry([](const auto& text) { return str_to_astexpr(text); });
const Entry named = [](const std::string& text) {
  return resultOf([&] { return textOf(str_to_astexpr_with_dummy_filename(text)); });
};
const Entry lines = entry([](const auto& text) { return str_to_astexprs(text); });
const Entry branch = entry([](const auto& text) { return str_to_astthrough(text); });
const Entry connection = entry([](const auto& text) { return str_to_astconnection(text); });
const Entry event = entry([](const auto& text) { return str_to_whenclause(text); });
const Entry pair = entry([](const auto& text) { return str_to_ivpair(text); });
const Entry annotation = entry([](const auto& text) { return str_to_annotation(text); });
const Entry objectRef = [](const std::string& text) {
  return resultOf([&] { return textOf(Expr(str_to_objectref(text))); });
};
const Entry valueRef = [](const std::string& text) {
  return resultOf([&] { return textOf(Expr(str_to_valueref(text))); });
};

struct Case {
  const Entry& entry;
  std::string text;
  std::string expected;
};

void check(const std::vector<Case>& cases) {
  for (const Case& c : cases) EXPECT_EQ(c.entry(c.text), c.expected) << c.text;
}

TEST(StringEntries, Pieces) {
  check({
      {name, "a.b.c", "a.b.c"},
      {name, "a.b(x = 1)", "a.b"},
      {initializer, "a.b", "a.b"},
      {initializer, "a.b(x = 1, y := {2, 'm'})", "a.b(x = 1, y := {2, 'm'})"},
      {item, "a == b", "a == b"},
      {item, "assert(a > b)", "assert(a > b)"},
      {expr, "a + b*c", "a + b * c"},
      {expr, "a;", "a"},
      {expr, "  a % a comment", "a"},
      {expr, "if a, b else c end", "if a, b; else c; end"},
      {named, "a + b", "a + b"},
      {lines, "a\nb == c; d\n\n", "a;b == c;d;"},
      {lines, "a", "a;"},
      {lines, "", ""},
      {branch, "i(1) : p.i -> *", "i(1) : p.i -> *"},
      {connection, "connect(a, b.c, *)", "connect(a,b.c,*)"},
      {event, "when a; x = 1; elsewhen b; x = 2; end", "when a\n  x = 1;\nelsewhen b\n  x = 2;\nend"},
      {pair, "A = {1, 'm'}", "A = {1, 'm'}"},
      {pair, "[a] : B = 1\nA = 1, C = 2", "A = 1"},
      {annotation, "a : B = 1, C = 2", "a : B = 1, C = 2;"},
      {annotation, "A = 1\n[a, b] : B = 1", "[a, b] : B = 1;"},
      // Only the first one counts.
      {branch, "i : p -> q; j : q -> p", "i : p -> q"},
      {connection, "connect(a); connect(b)", "connect(a)"},
  });
}

TEST(StringEntries, Faults) {
  check({
      // Syntax errors: one message about the whole fragment, without a place.
      {expr, "1+", "InvalidExpressionSyntax(1+)"},
      {expr, "a\nb", "InvalidExpressionSyntax(a\nb)"},
      {expr, "a; b", "InvalidExpressionSyntax(a; b)"},
      {expr, "", "InvalidExpressionSyntax()"},
      {expr, " % nothing", "InvalidExpressionSyntax( % nothing)"},
      {expr, "assert(x)", "AssertionNotExpression(assert(x))"},
      {named, "1+", "InvalidExpressionSyntax(1+)"},
      {named, "assert(x)", "AssertionNotExpression(assert(x))"},
      {item, "1+", "InvalidExpressionSyntax(1+)"},
      {item, "", "InvalidExpressionSyntax()"},
      {lines, "a\nassert(b)\nc", "AssertionNotExpression(a\nassert(b)\nc)"},
      {branch, "i : p", "InvalidThroughSyntax(i : p)"},
      {branch, " ", "InvalidThroughSyntax( )"},
      {connection, "connect(", "InvalidConnectionSyntax(connect()"},
      {connection, "", "InvalidConnectionSyntax()"},
      {event, "when a", "InvalidConnectionSyntax(when a)"}, // the message of its neighbour, intended
      {event, "", "InvalidConnectionSyntax()"},
      {pair, "A", "InvalidAnnotationSyntax(A)"},
      {pair, "a : B = 1", "InvalidAnnotationSyntax(a : B = 1)"},
      {annotation, "a : B", "InvalidAnnotationSyntax(a : B)"},
      {annotation, "A = 1", "InvalidAnnotationSyntax(A = 1)"},
      {annotation, "", "InvalidAnnotationSyntax()"},
      // The functions without a message of their own pass the parser's on.
      {name, "", "UnexpectedSep at 1:19"},
      {name, "a.", "UnexpectedSep at 1:21"},
      {initializer, "a(", "UnbalancedParens at 1:21"},
      // What the builder refuses stays at its place in the whole text.
      {expr, "x({1, '+'})", "InvalidUnitLiteral(+) at 3:7"},
      {lines, "a\nx({1, '+'})", "InvalidUnitLiteral(+) at 4:7"},
      {branch, "a.b : x -> y", "NoDotRefBranchVar at 3:1"},
      {connection, "connect(c, a + b)", "InvalidConnectionArg(a + b) at 3:12"},
      {pair, "A = {1, '+'}", "InvalidUnitLiteral(+) at 3:9"},
      {initializer, "a(x = {1, '+'})", "InvalidUnitLiteral(+) at 1:29"},
  });
}

TEST(StringEntries, SeveralTexts) {
  const auto exprs = [](const std::vector<std::string>& texts) {
    return entry([&texts](const auto& example) {
      using Text = std::decay_t<decltype(example)>;
      std::vector<Text> converted;
      for (const std::string& text : texts) {
        if constexpr (std::is_same_v<Text, std::string>) {
          converted.push_back(text);
        } else {
          converted.push_back(nvf::widen(text));
        }
      }
      return strs_to_astexprs(converted);
    })("");
  };
  EXPECT_EQ(exprs({}), "");
  EXPECT_EQ(exprs({"a", "b == c", "d;"}), "a;b == c;d;");
  EXPECT_EQ(exprs({"a", "b+"}), "InvalidExpressionSyntax(a, b+)");
  EXPECT_EQ(exprs({"a\nb", "c"}), "InvalidExpressionSyntax(a\nb, c)");
  EXPECT_EQ(exprs({"a", ""}), "InvalidExpressionSyntax(a, )");
  EXPECT_EQ(exprs({"", "a"}), "InvalidExpressionSyntax(, a)");
  EXPECT_EQ(exprs({"a", "assert(b)", "assert(c)"}), "AssertionNotExpression(assert(b))");
}

TEST(StringEntries, Declarations) {
  const auto declaration = [](const std::string& id, const std::string& value) {
    return entry([&](const auto& text) {
      using Text = std::decay_t<decltype(text)>;
      return str_to_IdListValuePair(Text(id.begin(), id.end()), Text(value.begin(), value.end()));
    })("");
  };
  EXPECT_EQ(declaration("a", "b + 1"), "a = b + 1");
  EXPECT_EQ(declaration("[a, ~]", "f(x)"), "[a,~] = f(x)");
  EXPECT_EQ(declaration("a:", "1"), "a := 1");
  EXPECT_EQ(declaration("[~]", "1"), "NoIdInDeclaration at 3:2");
  EXPECT_EQ(declaration("% a", "1"), "InvalidExpressionSyntax(% a=1)");
}

TEST(StringEntries, PlacesOfSyntaxErrors) {
  struct Row {
    std::string text;
    std::string expected;
    std::string shown;
  };
  // The place counts in the fragment; the text of the message keeps the line of the whole.
  const std::vector<Row> rows{
      {"a b", "BisonSyntaxError at 1:3", "line 3, column 3: "},
      {"a\n b c", "BisonSyntaxError at 2:4", "line 4, column 4: "},
      {"a\n(b", "BisonSyntaxError at 2:5", "line 4, column 5: "},
  };
  for (const Row& row : rows) {
    const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
    try {
      (void)str_to_astexprs(row.text);
      ADD_FAILURE() << row.text;
    } catch (const nvf::LocationException& e) {
      const nvf::LineColumn& place = e.location().lineColumn();
      EXPECT_EQ(e.id().id + " at " + std::to_string(place.line() + 1) + ":" + std::to_string(place.column() + 1),
                row.expected);
      EXPECT_EQ(e.message().location(), e.location());
      EXPECT_TRUE(e.location().fileName().empty());
      EXPECT_TRUE(e.showColumn());
      EXPECT_TRUE(nvf::encode_utf8(e.fullMessage()).starts_with(row.shown)) << nvf::encode_utf8(e.fullMessage());
    }
  }
}

TEST(StringEntries, Warnings) {
  std::string seen;
  const nvf::ScopedWarningSink sink([&seen](const nvf::Message& warning) { seen += describe(warning) + ";"; });
  (void)str_to_astexpr_with_dummy_filename("a");
  EXPECT_EQ(seen, "");
  (void)str_to_astexpr("a");
  EXPECT_EQ(seen, "InconsistentModelNameAndFileName(dummy) at 1:11;") << "a file without a name";
}

TEST(StringEntries, TextThatIsNotAscii) {
  const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
  const std::string text = "'\xc3\xa4'";
  const std::vector<std::function<void()>> calls{
      [&] { (void)str_to_astname(text); },
      [&] { (void)str_to_asteqnitem(text); },
      [&] { (void)str_to_astexpr(text); },
      [&] { (void)str_to_astexpr_with_dummy_filename(text); },
      [&] {
        (void)strs_to_astexprs(std::vector<std::string>{"a", text});
      },
      [&] { (void)str_to_astexprs(text); },
      [&] { (void)str_to_astthrough(text); },
      [&] { (void)str_to_astconnection(text); },
      [&] { (void)str_to_whenclause(text); },
      [&] { (void)str_to_IdListValuePair("a", text); },
      [&] { (void)str_to_ivpair(text); },
      [&] { (void)str_to_annotation(text); },
      [&] { (void)str_to_objectref(text); },
      [&] { (void)str_to_valueref(text); },
      [&] { (void)str_to_valueref(text, "a"); },
  };
  for (const auto& call : calls) {
    try {
      call();
      ADD_FAILURE() << "no exception";
    } catch (const std::logic_error& e) {
      EXPECT_STREQ(e.what(), "parsing non-ASCII std::string: '\\u00c3\\u00a4'");
    }
  }
  // A `ustring` goes to the tokenizer.
  EXPECT_EQ(to_string(str_to_astexpr(nvf::ustring(u"'\u00e4'"))), u"'\u00e4'");
  EXPECT_EQ(resultOf([] { return textOf(str_to_astexpr(nvf::ustring(u"\u00e4"))); }),
            "InvalidExpressionSyntax(\xc3\xa4)");
}

TEST(StringEntries, TextThatLeavesTheFrame) {
  // What the grammar makes of the whole counts.
  check({
      {expr, "a\n  end\n  equations\n  b", "a"},
      {expr, "a\n  end\nend\nfunction y = f\ndefinitions", "a"},
      {expr, "a\n  end\nend\ncomponent", "InvalidExpressionSyntax(a\n  end\nend\ncomponent)"},
      {branch, "end\n  variables\n x = 1", "InvalidThroughSyntax(end\n  variables\n x = 1)"},
  });
}

class Answer final : public nvf::ValueTokensToValue {
public:
  std::optional<nvf::Value> operator()(const std::vector<nvf::ValueToken>&) const override {
    return nvf::Value(nvf::Array<double>(42.0), nvf::UnitsExpr());
  }
  [[nodiscard]] std::unique_ptr<nvf::ValueTokensToValue> clone() const override { return std::make_unique<Answer>(); }
};

TEST(StringEntries, BuilderIsUsed) {
  const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
  const ASTBuilder builder{Answer()};
  const nvf::ustring text = u"concrete_value__(1)";
  const auto isConstant = [](const Expr& e) { return e.getIf<ConcreteValueExpr>() != nullptr; };
  EXPECT_TRUE(isConstant(str_to_astexpr(text, builder)));
  EXPECT_TRUE(isConstant(str_to_astexpr(nvf::narrow(text), builder)));
  EXPECT_FALSE(isConstant(str_to_astexpr(text)));
  EXPECT_TRUE(isConstant(str_to_asteqnitem(text, builder).get<Expr>()));
  EXPECT_TRUE(isConstant(str_to_IdListValuePair(u"a", text, builder).value()));
  EXPECT_TRUE(isConstant(str_to_classinitializer(u"a(x = " + text + u")", builder).args().at(0).value()));
  EXPECT_TRUE(
      isConstant(*str_to_astthrough(u"i(" + text + u") : a -> b", builder).lhs().subs().value().subs().at(0).expr()));
  EXPECT_TRUE(isConstant(str_to_astconnection(u"connect(x + " + text + u", a)", builder)
                             .firstArg()
                             .get<Expr>()
                             .get<OpExpr>()
                             .operandAt(1)));
  EXPECT_TRUE(isConstant(str_to_whenclause(u"when " + text + u"; end", builder).whenBranch().predicate()));
}

// ---- references ----

/// The indices of the steps of a path, such as `a(1)(2 3;4 5).b`.
template <class Path>
std::string indices(const Path& path) {
  std::string text;
  for (const IdValueIndices& step : path) {
    text += (text.empty() ? "" : ".") + nvf::encode_utf8(step.ident().string());
    if (!step.indices()) continue;
    if (step.indices()->empty()) text += "()";
    for (const ConcreteValueExpr& index : *step.indices()) {
      const auto* array = index.value().data().template getIf<unsigned long>();
      EXPECT_NE(array, nullptr) << "of unsigned numbers";
      if (array == nullptr) continue;
      text += "(";
      for (std::size_t row = 0; row < array->size().m(); ++row) {
        for (std::size_t column = 0; column < array->size().n(); ++column) {
          text += (column != 0 ? " " : row != 0 ? ";" : "") + std::to_string(array->at(row, column));
        }
      }
      text += ")";
    }
  }
  return text;
}

TEST(StringEntries, ObjectReferences) {
  const auto object = [](const std::string& text) {
    return resultOf([&] { return indices(str_to_objectref(text).ref()); });
  };
  const std::vector<BuildCase> cases{
      {"a", "a"},
      {"a.b.c", "a.b.c"},
      {"a(1).b(2, 3)", "a(1).b(2)(3)"},
      {"a(1.5)", "a(1)"}, // cut to a whole number
      {"a(0.9)", "a(0)"},
      {"a(1e3)", "a(1000)"},
      {"a()", "a()"},
      {"a([1 2; 3 4]).b", "a(1 2;3 4).b"},
      {"a([1, 2.7])", "a(1 2)"},
      {"a([])", "a()"},
      {"a([1; 2])", "a(1;2)"},
      {"a(9007199254740992)", "a(9007199254740992)"},
      {"", "InvalidObjectRefSyntax()"},
      {"1", "InvalidObjectRefSyntax(1)"},
      {"a+", "InvalidObjectRefSyntax(a+)"},
      {"a\nb", "InvalidObjectRefSyntax(a\nb)"},
      {"a + b", "InvalidObjectRefSyntax(a + b)"},
      {"assert(a)", "InvalidObjectRefSyntax(assert(a))"},
      {"a(-1)", "InvalidObjectRefSyntax(a(-1))"},
      {"a(b)", "InvalidObjectRefSyntax(a(b))"},
      {"a(:)", "InvalidObjectRefSyntax(a(:))"},
      {"a(2i)", "InvalidObjectRefSyntax(a(2i))"},
      {"a(x = 1)", "InvalidObjectRefSyntax(a(x = 1))"},
      {"a(b).c", "InvalidObjectRefSyntax(a(b).c)"},
      {"a([1, b])", "InvalidObjectRefSyntax(a([1, b]))"},
      {"a([1 2; 3])", "InvalidObjectRefSyntax(a([1 2; 3]))"},
      {"internal_object_ref__(a)", "InvalidObjectRefSyntax(internal_object_ref__(a))"},
      // what the builder refuses
      {"a(x = 1).b", "InvalidObjectRefSyntax(a(x = 1).b)"},
      {"a(b(x = 1).c).d", "InvalidObjectRefSyntax(a(b(x = 1).c).d)"},
      {"{1, '?'}", "InvalidObjectRefSyntax({1, '?'})"},
      {"internal_object_ref__(a(1))", "InvalidObjectRefSyntax(internal_object_ref__(a(1)))"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(object(text), expected) << text;

  const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
  EXPECT_THROW((void)str_to_objectref("a(1e30)"), boost::numeric::positive_overflow);
  EXPECT_THROW((void)str_to_objectref("a(18446744073709551616)"), boost::numeric::positive_overflow);
  EXPECT_THROW((void)str_to_objectref("a([1 1e999])"), boost::numeric::positive_overflow);
  EXPECT_THROW((void)str_to_objectref("a(1e30).b(x = 1)"), boost::numeric::positive_overflow); // the path comes first
  EXPECT_THROW((void)str_to_valueref("a(1e30).b(x = 1)"), boost::numeric::positive_overflow);
  EXPECT_EQ(str_to_objectref("a(1).b").range(), nvf::Range());
}

TEST(StringEntries, ValueReferences) {
  const auto value = [](const std::string& text) {
    return resultOf([&] {
      const ValueRef ref = str_to_valueref(text);
      EXPECT_EQ(ref.range(), nvf::Range());
      const ParenSubs* subs = ref.tail() ? ref.tail()->getIf<ParenSubs>() : nullptr;
      EXPECT_EQ(subs != nullptr, ref.tail().has_value());
      return "[" + indices(ref.leadingPath()) + "] " + nvf::encode_utf8(ref.id().string()) +
             (subs != nullptr ? textOf(*subs) : "");
    });
  };
  const std::vector<BuildCase> cases{
      {"a", "[] a"},
      {"a.b", "[a] b"},
      {"a(1).b.c", "[a(1).b] c"},
      {"a(1).b(i, :, [1 2])", "[a(1)] b(i, :, [1, 2])"}, // the tail is not evaluated
      {"a()", "[] a()"},
      {"a(i).b", "InvalidValueRefSyntax(a(i).b)"},
      {"a(x = 1)", "InvalidValueRefSyntax(a(x = 1))"},
      {"a(1, x = 1)", "InvalidValueRefSyntax(a(1, x = 1))"},
      {"1", "InvalidValueRefSyntax(1)"},
      {"a.", "InvalidValueRefSyntax(a.)"},
      {"{1, '?'}", "InvalidValueRefSyntax({1, '?'})"},
      {"a(b(x = 1).c)", "InvalidValueRefSyntax(a(b(x = 1).c))"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(value(text), expected) << text;

  const auto tailed = [](const std::string& text, const std::string& tail) {
    return resultOf([&] {
      const ValueRef ref = str_to_valueref(text, tail);
      EXPECT_EQ(ref.range(), nvf::Range());
      EXPECT_EQ(ref.originalVariable()->range(), nvf::Range());
      return "[" + indices(ref.leadingPath()) + "] " + nvf::encode_utf8(ref.id().string()) + " " +
             nvf::encode_utf8(ref.tail()->get<Ident>().string()) + " of " + textOf(Expr(*ref.originalVariable()));
    });
  };
  EXPECT_EQ(tailed("a", "b"), "[] a b of a.b");
  EXPECT_EQ(tailed("a(1).b", "c"), "[a(1)] b c of a(1).b.c");
  EXPECT_EQ(tailed("a.b(1)", "c"), "InvalidValueRefSyntax(a.b(1))");
  EXPECT_EQ(tailed("a", "b(1)"), "InvalidValueRefSyntax(a.b(1))");
  EXPECT_EQ(tailed("a", "b({1,'+'})"), "InvalidValueRefSyntax(a.b({1,'+'}))");
  EXPECT_EQ(tailed("a", "1"), "InvalidValueRefSyntax(a.1)");
  EXPECT_EQ(tailed("a", ""), "InvalidValueRefSyntax(a.)");
  EXPECT_EQ(tailed("a+", "b"), "InvalidValueRefSyntax(a+)");
}

} // namespace
} // namespace tessarin::test
