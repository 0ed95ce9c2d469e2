// The laws that all classes of the syntax tree keep.
#include "tessarin/foundation/message.hpp"

#include "ast/kinds.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

TEST(AstLaws, KindsAreDistinctAndInOrder) {
  const std::vector<Expr> kinds = oneOfEachKind();
  std::set<std::size_t> ids;
  for (const Expr& expr : kinds) ids.insert(expr.id());
  EXPECT_EQ(ids.size(), 24U) << "a kind has no sample";
  EXPECT_EQ(*ids.rbegin(), 23U);
  // An absent option and an empty list feed the same bytes to a digest, nothing: intended, so digests are compared
  // below.
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    for (std::size_t j = 0; j < kinds.size(); ++j) {
      SCOPED_TRACE(std::to_string(i) + " and " + std::to_string(j));
      const auto expected = i < j ? Ordering::Less : i > j ? Ordering::Greater : Ordering::Equal;
      EXPECT_EQ(compare(kinds[i], kinds[j]), expected);
      EXPECT_EQ(kinds[i] == kinds[j], i == j);
      EXPECT_EQ(equal_ignore_annotation(kinds[i], kinds[j]), i == j);
      EXPECT_EQ(hash_value(kinds[i]) == hash_value(kinds[j]), i == j);
      EXPECT_EQ(kinds[i] < kinds[j], i < j);
    }
  }
}

TEST(AstLaws, RangesNeverCount) {
  const std::vector<Expr> here = oneOfEachKind(onLine(1));
  const std::vector<Expr> there = oneOfEachKind(onLine(7));
  for (std::size_t i = 0; i < here.size(); ++i) {
    SCOPED_TRACE(i);
    expectEqualValues(here[i], there[i]);
    EXPECT_TRUE(equal_ignore_annotation(here[i], there[i]));
    const bool hasRange = here[i].id() > 1; // the samples of `time` and `end` have none
    EXPECT_EQ(expr_range(here[i]) != expr_range(there[i]), hasRange);
  }
}

TEST(AstLaws, HashesStartFromKnownValues) {
  EXPECT_EQ(hash_value(Time()), 0xe6546b64U) << "one ignored field";
  EXPECT_EQ(hash_value(ParenSubs()), 0xcb34c5ae03d8f098U) << "an empty list and an ignored field";
  EXPECT_EQ(hash_value(Expr(EndIndex())), nvf::hash_combine(0xe6546b64U, 1));
  EXPECT_EQ(hash_value(NoMessage()), 0U);
  EXPECT_EQ(hash_value(colon()), nvf::hash_combine(0, 0));
  const core::IfExpr ifExpr = ifThen(name("c"), {name("a")}, {});
  EXPECT_EQ(hash_value(core::ModechartEqnExpr(ifExpr)), hash_value(ifExpr)) << "nothing of its own";
}

TEST(AstLaws, DigestBytesOfEachKind) {
  struct Case {
    Expr expr;
    const char* bytes;
  };
  const Case cases[] = {
      {Time(), "0000000000000000"},
      {number("1.5"), "0000000000000002312e35"},
      {string(u"a\u20ac"), "0000000000000003006120ac"},
      {name("a.b"), "00000000000000046261"},
      {call("f", {colon(), name("x")}, {{"n", number("1")}}),
       "000000000000000466"         // the name
       "00000000"                   // a colon
       "00000001000000000000000478" // an expression
       "0000000000000001"
       "6e" // the argument's name, a variable
       "000000000000000231"
       "00"}, // its value, and that it is no ":="
      {fullPath(3), "000000000000000500000000000000010000000000000003"},
      {relativePath(2, "a"), "0000000000000006000000000000000261"},
      {withUnit(number("1"), "m"), "00000000000000070000000000000002316d"},
      {matrix({{number("1")}, {number("2")}}), "0000000000000009000000000000000231000000000000000232"},
      {fields({{"n", number("1")}}), "000000000000000a6e000000000000000231"},
      {op(OpExprType::Add, name("a"), name("b")), "000000000000000c0000000e000000000000000461000000000000000462"},
      {MRVIndex(name("f"), 1, 2, nvf::Range()), "000000000000000f00000000000000046600000000000000010000000000000002"},
      {NativeFunctionCall(idPath("m.f"), nvf::Range()), "00000000000000126d6601"},
      {CalvexFunctionCall(idPath("g"), true, false, true, nvf::Range()), "00000000000000136701010001"},
      {TessarinLocalFunctionCall(idPath("p"), id("l"), nvf::Range()), "000000000000001570016c"},
      {valueRef({"a"}, "b", ValueRefTail(ident("c"))), "00000000000000166261000000000000000163"},
      {objectRef({"a", "b"}), "00000000000000176162"},
  };
  for (const Case& c : cases) EXPECT_EQ(digestBytes(c.expr), c.bytes) << c.expr;
}

TEST(AstLaws, ItemsAndAssertions) {
  const auto assertion = [](const EqnAssertion::Message& message, const std::optional<Expr>& action) {
    return EqnAssertion(name("p"), message, action, onLine(1));
  };
  const nvf::MessageId messageId = *nvf::MessageId::make(u"a:b");
  expectDistinctInOrder<EqnItem>({
      EqnItem(name("p")),
      EqnItem(assertion(NoMessage(), std::nullopt)),
      EqnItem(assertion(NoMessage(), name("x"))),
      EqnItem(assertion(MessageObject(messageId, {}), std::nullopt)),
      EqnItem(assertion(MessageObject(messageId, {nvf::ustring(u"hole")}), std::nullopt)),
      EqnItem(assertion(MessageObject(messageId, {MemberText(idPath("m"), nvf::Range())}), std::nullopt)),
      EqnItem(assertion(PreformattedMessage(nvf::MessageId(), u"text"), std::nullopt)),
      EqnItem(assertion(PreformattedMessage(messageId, u"text"), std::nullopt)),
  });
  expectEqualValues(EqnAssertion(name("p"), NoMessage(), std::nullopt, onLine(1)),
                    EqnAssertion(name("p"), NoMessage(), std::nullopt, onLine(2)));
  EXPECT_EQ(hash_value(assertion(NoMessage(), std::nullopt)),
            nvf::hash_combine(nvf::hash_combine(nvf::hash_combine(0, hash_value(name("p"))), nvf::hash_combine(0, 0)),
                              ~std::size_t{0}));
}

TEST(AstLaws, Actions) {
  using Action = EqnAssertion::ActionType;
  for (const Action action : {Action::Default, Action::Warn, Action::Error}) {
    EXPECT_EQ(EqnAssertion::toActionType(EqnAssertion::toValue(action), nvf::Location()), action);
  }
  const auto idOf = [](const nvf::Value& value) -> std::string {
    try {
      (void)EqnAssertion::toActionType(value, onLine(4).begin());
    } catch (const nvf::LocationException& error) {
      EXPECT_EQ(error.location(), onLine(4).begin());
      return error.id().id;
    } catch (const std::bad_variant_access& error) {
      return error.what();
    }
    return "";
  };
  const auto ints = [](const std::vector<int>& elements) {
    return nvf::Array<int>(nvf::ArraySize(1, elements.size()), elements);
  };
  const nvf::UnitsExpr metre(nvf::detail::CheckExprString()("m", 1));
  EXPECT_EQ(idOf(constant(1).value()), "Unexpected index");
  EXPECT_EQ(idOf(nvf::Value(nvf::ValueData(ints({1, 2})), nvf::UnitsExpr())), "InvalidTypeForAssertAction");
  EXPECT_EQ(idOf(nvf::Value(nvf::ValueData(ints({1})), metre)), "InvalidTypeForAssertAction");
  EXPECT_EQ(idOf(nvf::Value(nvf::ValueData(ints({3})), nvf::UnitsExpr())), "InvalidValueForAssertAction");
  EXPECT_EQ(idOf(nvf::Value(nvf::ValueData(ints({-1})), nvf::UnitsExpr())), "InvalidValueForAssertAction");
}

TEST(AstLaws, AlternativesAndPrecedence) {
  EXPECT_EQ(Expr().id(), 0U);
  EXPECT_THROW((void)name("a").get<ValueRef>(), nvf::BadGet);
  try {
    (void)name("a").get<StringLiteral>();
  } catch (const nvf::BadGet& error) {
    EXPECT_NE(std::string(error.what()).find("Literal"), std::string::npos);
  }
  EXPECT_EQ(expr_precedence(op(OpExprType::OrOr, name("a"), name("b"))), 10U);
  EXPECT_EQ(expr_precedence(name("a")), 0U);
  EXPECT_EQ(OpExpr::operatorType(NonTerminal::DotRDiv), OpExprType::DotRDiv);
  EXPECT_EQ(OpExpr::operatorType(NonTerminal::Model), static_cast<OpExprType>(-1));
  EXPECT_THROW(IdParenIds(ident("a"), {}), std::logic_error);
  EXPECT_EQ(IdParenIds().string(), u"()");
}

TEST(AstLaws, StrippingUnsharesAndKeepsWhatItMust) {
  for (const Expr& original : oneOfEachKind(onLine(3))) {
    const std::size_t hash = hash_value(original);
    Expr copy = original;
    strip_annotation_inplace(copy);
    EXPECT_EQ(copy, original);
    EXPECT_EQ(hash_value(copy), hash);
    EXPECT_EQ(expr_range(copy), expr_range(original)) << "a range stays";
  }
  // A colon loses its place and an assertion is left alone: both intended.
  Subscript colonAt(Subscript::Type::Colon, onLine(3).begin());
  strip_annotation_inplace(colonAt);
  EXPECT_EQ(colonAt.location(), nvf::Location());
  const EqnAssertion assertion(call("f", {Subscript(Subscript::Type::Colon, onLine(3).begin())}), NoMessage(),
                               std::nullopt, onLine(3));
  EqnItem item = assertion;
  strip_annotation_inplace(item);
  const auto& kept = item.get<EqnAssertion>().predicate().get<Variable>();
  EXPECT_EQ(kept.tail()->posArgs().front().location(), onLine(3).begin());
}

TEST(AstLaws, HandlesCopyWhatOthersShare) {
  ExprHandle a(name("a"));
  const ExprHandle b = a;
  EXPECT_EQ(&std::as_const(a).get(), &b.get());
  a.get() = name("c");
  EXPECT_EQ(b.get(), name("a"));
  EXPECT_EQ(std::as_const(a).get(), name("c"));
  const Expr* own = &std::as_const(a).get();
  EXPECT_EQ(&a.get(), own) << "the only owner gets its own target";
}

TEST(AstLaws, ThreadsShareOneTree) {
  const std::vector<Expr> kinds = oneOfEachKind();
  const Expr shared = matrix({{kinds.begin(), kinds.end()}});
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([shared, &kinds] {
      for (int repeat = 0; repeat < 20; ++repeat) {
        Expr copy = shared;
        EXPECT_EQ(hash_value(copy), hash_value(shared));
        EXPECT_EQ(to_string(copy), to_string(shared));
        EXPECT_EQ(compare(copy, matrix({{kinds.begin(), kinds.end()}})), Ordering::Equal);
        strip_annotation_inplace(copy);
        EXPECT_EQ(copy, shared);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

/// Notes each class that is shown, with its fields.
class NamesSink final : public nvf::DumpSink {
public:
  void beginNode(const std::string& className, const nvf::Range*) override { open_.push_back(className + "("); }
  void endNode() override {
    names.insert(open_.back() + ")");
    open_.pop_back();
  }
  void beginList(std::size_t) override {}
  void endList() override {}
  void value(const nvf::ustring&) override {}
  void field(std::string_view name) override {
    open_.back() += std::string(open_.back().back() == '(' ? "" : ",") += name;
  }

  std::set<std::string> names;

private:
  std::vector<std::string> open_;
};

TEST(AstLaws, NamesOfClassesAndFieldsAreFixed) {
  NamesSink sink;
  for (const Expr& expr : oneOfEachKind()) dump(sink, expr);
  EXPECT_EQ(sink.names, (std::set<std::string>{
                            "Arguments(positional,named)",
                            "ArrayMemberPathElement(memberIndex,elementIndex)",
                            "BaseClassPathElement()",
                            "CalvexFunctionCall(path,positionalArguments,namedArguments,noArguments,isEnum,dottedEnum,"
                            "evalCompileTime)",
                            "ConcreteValueExpr(value)",
                            "ElseifBranch(condition,eqnItems)",
                            "EndIndex()",
                            "FieldValueArrayExpr(pairs)",
                            "FullPathVariable(paths,subs)",
                            "IdListValuePair(ids,value,isColonEquals)",
                            "IdParenSubs(ident,subs)",
                            "IdValueIndices(ident,indices)",
                            "Ident(id)",
                            "IdentValuePair(ident,value)",
                            "IfExpr(condition,ifEqnItems,elseEqnItems,elseifBranches)",
                            "LetExpr(declarations,eqnItems)",
                            "MRVIndex(expr,rvIndex,numRvs)",
                            "MatrixExpr(rows)",
                            "MemberPathElement(memberIndex)",
                            "ModechartEqnExpr(expr)",
                            "NamedArgument(name,value,isColonEquals)",
                            "NativeFunctionCall(path,positionalArguments,namedArguments,noArguments)",
                            "NumberLiteral(value)",
                            "ObjectRef(ref)",
                            "OpExpr(operator,operands)",
                            "ParenSubs(subs)",
                            "RelativePathVariable(depth,id,subs)",
                            "StringLiteral(value)",
                            "TessarinFunctionCall(path,positionalArguments,namedArguments,noArguments)",
                            "TessarinLocalFunctionCall(path,positionalArguments,namedArguments,noArguments,fcnId)",
                            "Tilde()",
                            "Time()",
                            "TransitionExpr(expr,preCondition)",
                            "UnitExpr(expr,unit)",
                            "UnitLiteral(value)",
                            "ValueExpr(expr,unit,conversion)",
                            "ValueRef(id,leadingPath,tail)",
                            "Variable(id,leadingPath,tail)",
                        }));
}

} // namespace
