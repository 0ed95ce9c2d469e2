// Declarations, imports, base classes, definitions and annotations.
#include "tessarin/parser/ast/Annotation.hpp"
#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include "ast/builders.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

using DeclarationItems = nvf::Expressions<DeclarationItem>;
using FunctionItems = nvf::Expressions<FunctionEqnItem>;

const nvf::Location here = onLine(1).begin();
const nvf::Location there = onLine(2).begin();

ObjectArrayElementDecl element(std::string_view array, std::initializer_list<std::string_view> indices,
                               const Expr& value) {
  return {IdParenIds(ident(array), idents(indices)), value};
}

/// An expression that shows whether it was stripped: its colon has a place until then.
Expr indexed() {
  return call("f", {Subscript(Subscript::Type::Colon, here)});
}
nvf::Location placeOfColon(const Expr& expr) {
  return expr.get<Variable>().tail()->posArgs().front().location();
}

struct Printed {
  nvf::ustring text;
  std::u16string expected;
};

// ---- types of members ----

TEST(Declarations, KeywordsOpenBlocksOfTheirType) {
  const std::vector<std::u16string> keywords{u"variables", u"throughs",   u"parameters", u"inputs",       u"outputs",
                                             u"nodes",     u"components", u"modecharts", u"intermediates"};
  std::size_t openings = 0;
  for (int code = TokenId::first; code <= TokenId::last; ++code) {
    const auto token = static_cast<TokenId::Value>(code);
    const MemberType::Value type = DeclarationBlock::declarationType(token);
    if (type == MemberType::NONE) continue;
    ++openings;
    const std::u16string& keyword = keywords.at(static_cast<std::size_t>(type));
    EXPECT_EQ(DeclarationBlock::typeString(type), keyword);
    EXPECT_EQ(nvf::widen(TokenId::displayString(token)), u'"' + keyword + u'"');
  }
  EXPECT_EQ(openings, keywords.size());
  EXPECT_EQ(DeclarationBlock::declarationType(static_cast<TokenId::Value>(-1)), MemberType::NONE);
}

// ---- lists of identifiers ----

TEST(Declarations, PlaceholdersAreSkippedAndCounted) {
  const auto handled = [](std::initializer_list<std::string_view> names) {
    const IdListValuePair pair = declaration(names, name("f"));
    std::string calls;
    opt_ident_vector_handler(pair.ids(), [&calls](const Ident& ident, unsigned long index) {
      calls += nvf::narrow(ident.id().string()) + std::to_string(index) + " ";
    });
    return std::to_string(number_of_effective_ids(pair)) + ": " + calls;
  };
  EXPECT_EQ(handled({"~", "~", "x"}), "1: x2 ");
  EXPECT_EQ(handled({"a", "~", "b"}), "2: a0 b2 ");
  EXPECT_EQ(handled({"~"}), "0: ");
  EXPECT_EQ(handled({}), "0: ");
}

TEST(Declarations, ATildeIsAPlaceholder) {
  // The parser gives both as names.
  const auto made = [](std::u16string_view text) {
    return to_opt_ident(Token(TokenId::ID, there, text.data(), text.size()));
  };
  EXPECT_EQ(made(u"~"), OptIdent(Tilde()));
  EXPECT_EQ(made(u"a"), OptIdent(ident("a")));
  EXPECT_EQ(location(made(u"~")), there);
  EXPECT_EQ(location(made(u"a")), there);
  EXPECT_EQ(OptIdent().id(), 0U);
}

TEST(Declarations, ReplacingAnElementMakesANewList) {
  const nvf::Expressions<OptIdent> ids = declaration({"a", "~", "c"}, name("f")).ids();
  const auto replaced = [&ids](std::size_t index) {
    return IdListValuePair(replace_element(ids, index, ident("x")), name("f"), false).string(ToStringContext());
  };
  EXPECT_EQ(replaced(0), u"[x,~,c] = f");
  EXPECT_EQ(replaced(1), u"[a,x,c] = f");
  EXPECT_EQ(replaced(2), u"[a,~,x] = f");
  EXPECT_EQ(replaced(3), u"[a,~,c] = f") << "past the end";
  EXPECT_EQ(ids, declaration({"a", "~", "c"}, name("f")).ids()) << "the list that was given";
  EXPECT_TRUE(replace_element(nvf::Expressions<OptIdent>(), 0, ident("x")).empty());

  const IdListValuePair a = declaration("a", name("f"));
  const IdListValuePair b = declaration("b", name("g"));
  EXPECT_EQ(replace_element(nvf::Expressions<IdListValuePair>{a, a}, 1, b), (nvf::Expressions<IdListValuePair>{a, b}));
}

// ---- printed forms ----

TEST(Declarations, ItemsPrint) {
  const ToStringContext inLine;
  const ToStringContext ownLine = ToStringContext().indent(Indentation{4}).asRValue(false);
  const Expr sum = op(OpExprType::Add, name("b"), name("c"));
  const IdListValuePair colonEquals(declaration("a", sum).ids(), sum, true);
  const Printed rows[] = {
      {to_string(DeclarationItem(ident("a")), inLine), u"a"},
      {to_string(DeclarationItem(declaration("a", sum)), inLine), u"a = b + c"},
      {to_string(DeclarationItem(declaration({"a", "~"}, sum)), inLine), u"[a,~] = b + c"},
      {to_string(DeclarationItem(declaration({"~"}, sum)), inLine), u"~ = b + c"},
      {to_string(DeclarationItem(declaration({}, sum)), inLine), u"[] = b + c"},
      {to_string(DeclarationItem(colonEquals), inLine), u"a := b + c"},
      {to_string(DeclarationItem(element("a", {"i", "j"}, sum)), inLine), u"a(i,j) = b + c"},
      // Only names with a value get the indent, and never what is behind the "=".
      {to_string(DeclarationItem(ident("a")), ownLine), u"a"},
      {to_string(DeclarationItem(declaration("a", sum)), ownLine), u"    a = b + c"},
      {to_string(DeclarationItem(element("a", {"i"}, sum)), ownLine), u"a(i) = b + c"},
  };
  for (const Printed& row : rows) EXPECT_EQ(row.text, row.expected);
}

TEST(Declarations, BlocksPrint) {
  const auto parameters = MemberType::PARAMETER;
  const DeclarationItems items{declaration("a", number("1")), declaration({"b", "~"}, call("f", {name("x")})),
                               element("c", {"i", "j"}, name("d")), ident("e")};
  const FunctionItems definitions{FunctionEqnItem(declaration("x", name("a"))),
                                  FunctionEqnItem(EqnAssertion(name("p"), NoMessage(), std::nullopt, nvf::Range()))};
  const NamedArgument colonEquals(NamedArgumentName(variable("y")), number("2"), true);
  const MemberAnnotation ofOne(idents({"a"}), pairs({{"n", number("1")}}));
  const MemberAnnotation ofTwo(idents({"b", "c"}), pairs({{"n", number("1")}, {"m", name("x")}}));
  const Printed rows[] = {
      {DeclarationBlock(parameters, pairs({{"Access", name("none")}, {"k", number("1")}}), items, here).string(2, 3),
       u"  parameters(Access = none, k = 1)\n"
       u"     a = 1;\n"
       u"     [b,~] = f(x);\n"
       u"     c(i,j) = d;\n"
       u"     e;\n"
       u"  end"},
      {DeclarationBlock(MemberType::THROUGH, {}, {}, here).string(0, 2), u"throughs\nend"},

      {MemberAnnotation(idents({}), {}).string(0, 2), u"[] : ;"},
      // Those of the class stand at the indent of the block and without ";".
      {AnnotationsBlock({IdentValuePair(ident("Icon"), string(u"a.svg"), here)}, {ofOne, ofTwo}, here).string(4, 2),
       u"    annotations\n"
       u"    Icon = 'a.svg'\n"
       u"      a : n = 1;\n"
       u"      [b, c] : n = 1, m = x;\n"
       u"    end"},
      {AnnotationsBlock({}, {}, here).string(0, 2), u"annotations\nend"},

      {ImportStmt(Name("a.b"), false, here).string(0), u"import a.b"},
      {ImportStmt(Name("a.b"), true, here).string(2), u"  import a.b.*"},
      {ClassInitializer(Name("a.b"), {}).string(), u"a.b"},
      {ClassInitializer(Name("a"), {NamedArgument(NamedArgumentName(variable("x.z")), name("b"), false), colonEquals})
           .string(),
       u"a(x.z = b, y := 2)"},

      // A blank before both line ends, and items at twice the indent without ";".
      {DefinitionsBlock(definitions, {}, here).string(4, 2), u"    definitions \n"
                                                             u"        x = a\n"
                                                             u"        assert(p)\n"
                                                             u"    end \n"},
      {DefinitionsBlock({}, pairs({{"k", number("1")}, {"l", name("x")}}), here).string(0, 2),
       u"definitions (k = 1, l = x)\nend \n"},
  };
  for (const Printed& row : rows) EXPECT_EQ(row.text, row.expected);
}

// ---- values ----

TEST(Declarations, ValuesAreDistinctAndInOrder) {
  const DeclarationItem x = ident("x");
  const DeclarationItem y = ident("y");
  const auto block = [](MemberType::Value type, const NamedValues& attributes, const DeclarationItems& items) {
    return DeclarationBlock(type, pairs(attributes), items, here);
  };
  expectDistinctInOrder<DeclarationItem>({
      ident("a"),
      ident("b"),
      declaration("a", name("x")),
      declaration("a", name("y")),
      IdListValuePair(declaration("a", name("y")).ids(), name("y"), true),
      declaration({"a", "~"}, name("x")),
      element("a", {"i"}, name("x")),
      element("a", {"i"}, name("y")),
      element("a", {"i", "j"}, name("x")),
  });
  expectDistinctInOrder<DeclarationBlock>({
      block(MemberType::VARIABLE, {}, {}),
      block(MemberType::VARIABLE, {}, {x}),
      block(MemberType::VARIABLE, {}, {x, y}),
      block(MemberType::VARIABLE, {{"a", number("1")}}, {}),
      block(MemberType::VARIABLE, {{"a", number("2")}}, {}),
      block(MemberType::VARIABLE, {{"b", number("1")}}, {}),
      block(MemberType::INPUT, {}, {x}),
  });
  expectDistinctInOrder<ImportStmt>({
      ImportStmt(Name("a"), false, here),
      ImportStmt(Name("a"), true, here),
      ImportStmt(Name("a.b"), false, here),
  });
  const NamedArgument argument(NamedArgumentName(variable("x")), name("y"), false);
  expectDistinctInOrder<ClassInitializer>(
      {ClassInitializer(Name("a"), {}), ClassInitializer(Name("a"), {argument}), ClassInitializer(Name("b"), {})});
  const FunctionItems items{FunctionEqnItem(declaration("x", name("a")))};
  expectDistinctInOrder<DefinitionsBlock>({
      DefinitionsBlock({}, {}, here),
      DefinitionsBlock({}, pairs({{"a", number("1")}}), here),
      DefinitionsBlock(items, {}, here),
  });
  const MemberAnnotation ofA(idents({"a"}), {});
  expectDistinctInOrder<MemberAnnotation>(
      {ofA, MemberAnnotation(idents({"a"}), pairs({{"n", number("1")}})), MemberAnnotation(idents({"a", "b"}), {})});
  expectDistinctInOrder<AnnotationsBlock>({
      AnnotationsBlock({}, {}, here),
      AnnotationsBlock({}, {ofA}, here),
      AnnotationsBlock({IdentValuePair(ident("n"), number("1"), here)}, {}, here),
  });
}

TEST(Declarations, PlacesNeverCount) {
  const auto expectEqual = [](const auto& atHere, const auto& atThere) {
    EXPECT_NE(atHere.location(), atThere.location());
    expectEqualValues(atHere, atThere);
  };
  const auto blockAt = [](const nvf::Location& place) {
    return DeclarationBlock(MemberType::NODE, {}, {ident("x")}, place);
  };
  expectEqual(blockAt(here), blockAt(there));
  expectEqual(ImportStmt(Name("a"), true, here), ImportStmt(Name("a"), true, there));
  expectEqual(DefinitionsBlock({}, {}, here), DefinitionsBlock({}, {}, there));
  expectEqual(AnnotationsBlock({}, {}, here), AnnotationsBlock({}, {}, there));
  EXPECT_EQ(blockAt(there).line(), 2U);
  EXPECT_EQ(ImportStmt(Name("a"), true, there).line(), 2U);

  const Ident placed(id("a"), onLine(2));
  const DeclarationItem items[] = {
      placed,
      IdListValuePair(nvf::Expressions<OptIdent>{OptIdent(Tilde(onLine(2))), OptIdent(ident("b"))}, name("x"), false),
      ObjectArrayElementDecl(IdParenIds(placed, idents({"i"})), name("x")),
  };
  for (const DeclarationItem& item : items) EXPECT_EQ(location(item), there) << item.id();
}

TEST(Declarations, HashAndDigestOfABlock) {
  const DeclarationItem item = declaration("x", number("2"));
  const DeclarationBlock block(MemberType::PARAMETER, pairs({{"n", number("1")}}), {item, item}, here);
  std::size_t hash = 0;
  for (const std::size_t part : {std::size_t{MemberType::PARAMETER}, hash_value(id("n")), hash_value(number("1")),
                                 hash_value(item), hash_value(item)}) {
    hash = nvf::hash_combine(hash, part);
  }
  EXPECT_EQ(hash_value(block), hash);
  const std::string itemBytes = "0000000000000001"   // names with a value
                                "0000000000000000"   // an identifier
                                "78"                 // its text
                                "000000000000000232" // the value
                                "00";                // that it is no ":="
  EXPECT_EQ(digestBytes(block), "000000026e000000000000000231" + itemBytes + itemBytes);
  EXPECT_EQ(digestBytes(element("a", {"i", "j"}, name("b"))), "61696a000000000000000462");
  EXPECT_EQ(digestBytes(ImportStmt(Name("a.b"), true, here)), "616201");
  EXPECT_EQ(digestBytes(MemberAnnotation(idents({"a", "b"}), pairs({{"n", number("1")}}))), "61626e000000000000000231");
}

TEST(Declarations, BlocksAreLessInAllOrInNothing) {
  const auto block = [](MemberType::Value type, std::string_view attribute, std::string_view member) {
    return DeclarationBlock(type, pairs({{std::string(attribute), number("1")}}), {ident(member)}, here);
  };
  const DeclarationBlock base = block(MemberType::INPUT, "a", "x");
  const DeclarationBlock greater = block(MemberType::OUTPUT, "b", "y");
  EXPECT_TRUE(base < greater);
  EXPECT_FALSE(greater < base);
  for (const DeclarationBlock& neither :
       {base, block(MemberType::OUTPUT, "a", "x"), block(MemberType::INPUT, "b", "x"),
        block(MemberType::INPUT, "a", "y"), block(MemberType::OUTPUT, "b", "x"), block(MemberType::OUTPUT, "a", "y"),
        block(MemberType::INPUT, "b", "y"), block(MemberType::OUTPUT, "b", "w")}) {
    SCOPED_TRACE(nvf::narrow(neither.string(0, 2)));
    EXPECT_FALSE(base < neither);
    EXPECT_FALSE(neither < base);
  }
  // A prefix is less.
  EXPECT_TRUE(DeclarationBlock(MemberType::INPUT, {}, {}, here) < greater);
}

TEST(Declarations, ListsAreShared) {
  const nvf::Expressions<IdentValuePair> attributes = pairs({{"a", number("1")}});
  const DeclarationItems items{ident("x"), ident("y")};
  const DeclarationBlock block(MemberType::INPUT, attributes, items, here);
  EXPECT_EQ(block.declarations().begin(), items.begin());
  EXPECT_EQ(&block.attribute(0), attributes.begin());
  EXPECT_EQ(block.numOfDeclarations(), 2U);
  EXPECT_EQ(block.declaration(1), items[1]);
  EXPECT_EQ(DeclarationBlock(MemberType::INPUT, {}, {}, here).numOfAttributes(), 0U);
}

TEST(Declarations, OnlyNamesWithAValueAreAnIdListValue) {
  const IdListValuePair pair = declaration("a", name("x"));
  EXPECT_EQ(id_list_value(pair), pair);
  for (const DeclarationItem& item : {DeclarationItem(), DeclarationItem(element("a", {"i"}, name("x")))}) {
    try {
      (void)id_list_value(item);
      ADD_FAILURE() << item.id();
    } catch (const nvf::BadGet& error) {
      EXPECT_NE(std::string(error.what()).find("IdListValuePair"), std::string::npos) << error.what();
    }
  }
}

TEST(Declarations, StrippingReachesTheValues) {
  const auto valueOf = [](const DeclarationItem& item) {
    if (const auto* object = item.getIf<ObjectArrayElementDecl>()) return object->RHS();
    return id_list_value(item).value();
  };
  for (const DeclarationItem& original :
       {DeclarationItem(declaration({"a", "~"}, indexed())), DeclarationItem(element("a", {"i"}, indexed()))}) {
    DeclarationItem item = original;
    strip_annotation_inplace(item);
    EXPECT_EQ(item, original);
    EXPECT_TRUE(equal_ignore_annotation(item, original));
    EXPECT_EQ(placeOfColon(valueOf(item)), nvf::Location());
    EXPECT_EQ(placeOfColon(valueOf(original)), here) << "the copy that was taken before";
  }
}

} // namespace
