// One expression of each kind, and more than one where the kind has parts that may be absent.
#pragma once

#include "ast/builders.hpp"

#include <vector>

namespace tessarin::test {

/// The same expressions in the same order on every call, each with the given range where its class has one: sorted by
/// kind, and inside a kind by what it holds.
inline std::vector<Expr> oneOfEachKind(const nvf::Range& range = {}) {
  using namespace core;
  const Variable original = variable("as.written", std::nullopt, range);
  const std::vector<EqnItem> items{EqnItem(name("p", range))};
  const FullPathVariable::Path path{UniquePathElement(BaseClassPathElement()), UniquePathElement(MemberPathElement(3))};
  const FullPathVariable::Path other{UniquePathElement(ArrayMemberPathElement(1, 2))};
  const nvf::Expressions<ConcreteValueExpr> two{ConcreteValueExpr(constant(2).value(), range)};
  const std::vector<IdValueIndices> steps{{ident("a"), two}, {ident("b"), std::nullopt}};
  const auto positive = [](std::size_t n) { return nvf::Positive<std::size_t>(n); };
  return {
      Time(),
      EndIndex(),
      NumberLiteral(nvf::detail::NumberStringCheck()(u"1.5"), range),
      NumberLiteral(nvf::detail::NumberStringCheck()(u"1.50"), range),
      StringLiteral(u"it's", range),
      Variable(ident("a"), {}, std::nullopt, range),
      Variable(ident("a"), {}, Arguments({}, {}, range), range),
      Variable(ident("a"), {}, Arguments({Subscript(Subscript::Type::Colon, range.begin())}, {}, range), range),
      Variable(ident("a"), {}, arguments({name("x")}, {{"n", number("2")}}), range),
      Variable(ident("a"), nvf::Expressions<IdParenSubs>{step("m", {number("1")})}, std::nullopt, range),
      FullPathVariable(path, std::nullopt, original, range),
      FullPathVariable(std::vector<FullPathVariable::Path>{path, other}, parenSubs({number("1")}), std::nullopt, range),
      RelativePathVariable(positive(1), id("b"), std::nullopt, range),
      RelativePathVariable(positive(2), id("a"), parenSubs({number("1")}), range),
      UnitExpr(number("1"), unitText("m/s"), range),
      ValueExpr(name("x"), unitText("m"), range),
      ValueExpr(name("x"), unitText("m"), StringLiteral(u"relative", range), range),
      MatrixExpr({}, range),
      MatrixExpr({{}}, range),
      MatrixExpr({{number("1"), number("2")}, {name("x")}}, range),
      FieldValueArrayExpr({}, range),
      FieldValueArrayExpr(nvf::Expressions<IdentValuePair>{IdentValuePair(ident("n"), number("1"), range.end())},
                          range),
      IfExpr(name("c"), items, {}, {}, range),
      IfExpr(name("c"), items, items, {ElseifBranch(name("d"), items)}, range),
      OpExpr(OpExprType::Der, name("x"), range),
      OpExpr(OpExprType::Add, name("a"), name("b"), range),
      OpExpr(OpExprType::Colon3, number("1"), number("2"), number("3"), range),
      LetExpr(
          {IdListValuePair(nvf::Expressions<OptIdent>{OptIdent(ident("a")), OptIdent(Tilde(range))}, name("f"), false)},
          items, range),
      ConcreteValueExpr(constant(2.5).value(), range),
      MRVIndex(name("f"), 1, 2, range),
      TransitionExpr(name("a", range), name("b", range)),
      ModechartEqnExpr(IfExpr(name("c"), items, items, {}, range)),
      NativeFunctionCall(idPath("m.f"), {}, {}, range),
      NativeFunctionCall(idPath("m.f"), range),
      NativeFunctionCall(idPath("m.f"), {name("x")}, {{id("n"), number("1")}}, range),
      CalvexFunctionCall(idPath("g"), {name("x")}, true, false, true, range),
      TessarinFunctionCall(idPath("p.h"), {name("x")}, range),
      TessarinLocalFunctionCall(idPath("p.file"), id("local"), {name("x")}, range),
      ValueRef(ident("c"), {}, std::nullopt, original, range),
      ValueRef(ident("c"), {}, ValueRefTail(parenSubs({number("1")})), std::nullopt, range),
      ValueRef(ident("c"), nvf::Expressions<IdValueIndices>(steps), ValueRefTail(ident("d")), std::nullopt, range),
      ObjectRef(nvf::Expressions1<IdValueIndices>(steps), original, range),
  };
}

} // namespace tessarin::test
