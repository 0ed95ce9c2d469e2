// Branches and connections.
#include "tessarin/parser/ast/Branch.hpp"
#include "tessarin/parser/ast/Connection.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include "ast/builders.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

const nvf::Location here = onLine(1).begin();
const nvf::Location there = onLine(2).begin();
const ImplicitReference reference;

struct Printed {
  nvf::ustring text;
  std::u16string expected;
};

Through through(const IdParenSubs& lhs, const ThroughLeaf& from, const ThroughLeaf& to) {
  return {lhs, from, to, here};
}

Connection connection(const ConnectionFirstArg& first, const std::vector<ConnectionArg>& others) {
  return {first, others, here};
}

/// `c.b`, which the user wrote as `as.written`.
ValueRef resolved() {
  return {ident("b"), constantPath({"c"}), std::nullopt, variable("as.written"), nvf::Range()};
}

TEST(Branches, Print) {
  const ToStringContext asUserStr = ToStringContext().asUserStr(true);
  const Through toReference = through(step("i"), variable("a.p"), reference);
  const Through subscripted = through(step("i", {number("1"), colon()}), reference, resolved());
  const Printed rows[] = {
      {toReference.string(ToStringContext()), u"i : a.p -> *"},
      {subscripted.string(ToStringContext()), u"i(1, :) : * -> internal_value_ref__(c.b)"},
      {subscripted.string(asUserStr), u"i(1, :) : * -> as.written"},
      {BranchBlock({toReference, toReference}, here).string(2, 3), u"  branches\n"
                                                                   u"     i : a.p -> *;\n"
                                                                   u"     i : a.p -> *;\n"
                                                                   u"  end"},
      {BranchBlock({}, here).string(2, 2), u"  branches\n  end"},
  };
  for (const Printed& row : rows) EXPECT_EQ(row.text, row.expected);
}

TEST(Connections, Print) {
  const ToStringContext inLine;
  const ToStringContext ownLine = ToStringContext().indent(Indentation{2}).asRValue(false);
  const ToStringContext asUserStr = ToStringContext().asUserStr(true);
  const Connection alone = connection(name("a"), {});
  const Connection many = connection(reference, {variable("b.c"), resolved(), objectRef({"d"}), reference});
  const Printed rows[] = {
      {alone.string(inLine), u"connect(a)"},
      {connection(name("a"), {variable("b"), reference}).string(inLine), u"connect(a,b,*)"},
      {connection(op(OpExprType::Add, name("a"), name("b")), {variable("c")}).string(inLine), u"connect(a + b,c)"},
      {many.string(inLine), u"connect(*,b.c,internal_value_ref__(c.b),internal_object_ref__(d),*)"},
      {connection(reference, {resolved()}).string(asUserStr), u"connect(*,as.written)"},
      // The reference gets the indent of a line, as an expression does.
      {to_string(ConnectionFirstArg(reference), ownLine), u"  *"},
      {to_string(ConnectionFirstArg(name("a")), ownLine), to_string(name("a"), ownLine)},
      {to_string(ConnectionArg(reference), ownLine), u"  *"},
      {to_string(ConnectionArg(reference), ownLine.rvalue()), u"*"},
      {ConnectionBlock({alone, alone}, here).string(2, 3), u"  connections\n"
                                                           u"     connect(a);\n"
                                                           u"     connect(a);\n"
                                                           u"  end"},
      {ConnectionBlock({}, here).string(2, 2), u"  connections\n  end"},
  };
  for (const Printed& row : rows) EXPECT_EQ(row.text, row.expected);

  std::ostringstream stream;
  stream << ConnectionFirstArg(name("a.b")) << ' ' << ConnectionArg(reference);
  EXPECT_EQ(stream.str(), "a.b *");
}

TEST(Connections, ArgumentsBehindTheFirstCountFromOne) {
  const Connection three = connection(name("a"), {variable("b"), reference});
  EXPECT_EQ(three.numOfArguments(), 3U);
  EXPECT_EQ(three.argument(1), ConnectionArg(variable("b")));
  EXPECT_EQ(three.argument(2), ConnectionArg(reference));
  EXPECT_THROW((void)three.argument(0), std::out_of_range);
  EXPECT_THROW((void)three.argument(3), std::out_of_range);
  EXPECT_EQ(connection(name("a"), {}).numOfArguments(), 1U);
  EXPECT_EQ(Connection(name("a"), {}, here), connection(name("a"), {}));

  const ConnectionBlock block({three}, here);
  EXPECT_EQ(block.connection(0), three);
  EXPECT_THROW((void)block.connection(1), std::out_of_range);
  EXPECT_EQ(block.numOfConnections(), 1U);
  EXPECT_FALSE(block.isEmpty());
  EXPECT_TRUE(ConnectionBlock({}, here).isEmpty());
  EXPECT_TRUE(BranchBlock({}, here).isEmpty());
}

TEST(Connections, PlacesOfArguments) {
  const nvf::Range range = onLine(2);
  const ConnectionFirstArg firstArgs[] = {name("a", range), ImplicitReference(range)};
  for (const ConnectionFirstArg& argument : firstArgs) {
    EXPECT_EQ(connectionFirstArg_range(argument), range) << argument;
    EXPECT_EQ(connectionFirstArg_location(argument), there) << argument;
    EXPECT_EQ(connectionFirstArg_line(argument), 2U) << argument;
  }
  const ConnectionArg arguments[] = {
      ImplicitReference(range),
      variable("a", std::nullopt, range),
      ValueRef(ident("a"), {}, std::nullopt, std::nullopt, range),
      ObjectRef(nvf::Expressions1<IdValueIndices>(constantPath({"a"})), std::nullopt, range),
  };
  for (const ConnectionArg& argument : arguments) {
    EXPECT_EQ(connection_arg_range(argument), range) << argument;
    EXPECT_EQ(connection_arg_location(argument), there) << argument;
  }
}

TEST(Branches, ValuesAreDistinctAndInOrder) {
  expectDistinctInOrder<ThroughLeaf>({
      ThroughLeaf(),
      variable("a"),
      variable("b"),
      valueRef({}, "a"),
  });
  expectDistinctInOrder<Through>({
      through(step("i"), reference, reference),
      through(step("i"), reference, variable("a")),
      through(step("i"), variable("a"), reference),
      through(step("i", {number("1")}), reference, reference),
      through(step("j"), reference, reference),
  });
  const Through one = through(step("i"), reference, reference);
  expectDistinctInOrder<BranchBlock>({
      BranchBlock({}, here),
      BranchBlock({one}, here),
      BranchBlock({one, one}, here),
  });
}

TEST(Connections, ValuesAreDistinctAndInOrder) {
  expectDistinctInOrder<ConnectionFirstArg>({ConnectionFirstArg(), name("a"), name("b"), reference});
  expectDistinctInOrder<ConnectionArg>({
      ConnectionArg(),
      variable("a"),
      variable("b"),
      valueRef({}, "a"),
      objectRef({"a"}),
  });
  expectDistinctInOrder<Connection>({
      connection(name("a"), {}),
      connection(name("a"), {reference}),
      connection(name("a"), {reference, reference}),
      connection(name("a"), {variable("b")}),
      connection(name("b"), {}),
      connection(reference, {}),
  });
  const Connection one = connection(name("a"), {});
  expectDistinctInOrder<ConnectionBlock>({
      ConnectionBlock({}, here),
      ConnectionBlock({one}, here),
      ConnectionBlock({one, one}, here),
  });
}

TEST(Branches, PlacesNeverCount) {
  const auto expectEqual = [](const auto& atHere, const auto& atThere) {
    EXPECT_NE(atHere.location(), atThere.location());
    expectEqualValues(atHere, atThere);
  };
  expectEqual(Through(step("i"), reference, reference, here), Through(step("i"), reference, reference, there));
  expectEqual(BranchBlock({}, here), BranchBlock({}, there));
  expectEqual(Connection(name("a"), {}, here), Connection(name("a", onLine(3)), {}, there));
  expectEqual(ConnectionBlock({}, here), ConnectionBlock({}, there));
}

TEST(Branches, DigestBytes) {
  EXPECT_EQ(digestBytes(BranchBlock({through(step("i"), variable("a"), reference)}, here)),
            "69"                 // the branch variable
            "000000000000000161" // a name
            "0000000000000000"); // the implicit reference
  EXPECT_EQ(digestBytes(ConnectionBlock({connection(name("a"), {reference, objectRef({"b", "c"})})}, here)),
            "0000000000000000"       // an expression,
            "000000000000000461"     // a name
            "0000000000000000"       // the implicit reference
            "00000000000000036263"); // an object
  EXPECT_EQ(digestBytes(ConnectionFirstArg(reference)), "0000000000000001");
}

TEST(Connections, StrippingReachesTheArguments) {
  const Variable indexed = variable("a", arguments({Subscript(Subscript::Type::Colon, here)}));
  const auto placeOfColon = [](const Variable& variable) { return variable.tail()->posArgs().front().location(); };
  ThroughLeaf leaf = indexed;
  ConnectionArg argument = indexed;
  ConnectionFirstArg firstArg = Expr(indexed);
  strip_annotation_inplace(leaf);
  strip_annotation_inplace(argument);
  strip_annotation_inplace(firstArg);
  EXPECT_EQ(placeOfColon(leaf.get<Variable>()), nvf::Location());
  EXPECT_EQ(placeOfColon(argument.get<Variable>()), nvf::Location());
  EXPECT_EQ(placeOfColon(firstArg.get<Expr>().get<Variable>()), nvf::Location());
  EXPECT_EQ(placeOfColon(indexed), here) << "the value that was copied";
  EXPECT_TRUE(equal_ignore_annotation(argument, ConnectionArg(indexed)));
  EXPECT_THROW((void)argument.get<ObjectRef>(), nvf::BadGet);
}

} // namespace
