#include "tessarin/parser/ast/Modechart.hpp"

#include "ast/builders.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

EntryBlock entry(const NamedValues& actions) {
  return {pairs(actions), nvf::Range()};
}
EquationBlock equations(const Items& items) {
  return {items, {}, nvf::Location()};
}
Mode mode(std::initializer_list<std::string_view> names, const std::vector<EquationBlock>& equationBlocks = {},
          const std::vector<EntryBlock>& entries = {}, const nvf::Range& range = {}) {
  return {idents(names), equationBlocks, entries, range};
}
Modechart modechart(const std::vector<ModesSection>& modes, const std::vector<TransitionsSection>& transitions = {},
                    const std::vector<InitialSection>& initial = {}, const nvf::Range& range = {}) {
  return {modes, transitions, initial, range};
}
ModechartBlock block(const NamedValues& attributes, const std::vector<ModechartDeclaration>& declarations,
                     const nvf::Location& location = {}) {
  return {pairs(attributes), declarations, location};
}

TEST(Modecharts, PrintedForm) {
  const Modechart chart =
      modechart({ModesSection({mode({"a"}, {equations({op(OpExprType::Eq, name("x"), number("1"))})},
                                    {entry({{"n", number("0")}, {"m", name("n")}}), entry({})}),
                               mode({"b", "c"})}),
                 ModesSection({})},
                {TransitionsSection({Transition(idents({"a", "b", "c"}), op(OpExprType::Gt, name("x"), number("2"))),
                                     Transition(idents({"b", "a"}), name("p"))})},
                {InitialSection({InitialMode(ident("a"), name("q"))})});
  EXPECT_EQ(block({{"k", number("1")}, {"l", name("m")}},
                  {ModechartDeclaration(ident("m1"), chart), ModechartDeclaration(ident("m2"), modechart({}))})
                .string(1, 2),
            u" modecharts(k = 1, l = m)\n"
            u"   m1 = ...\n"
            u"     modechart\n"
            u"       modes\n"
            u"         mode a\n"
            u"           equations \n"
            u"             x == 1;\n"
            u"           end\n"
            u"           entry\n"
            u"             n = 0;\n"
            u"             m = n;\n"
            u"           end\n"
            u"           entry\n"
            u"           end\n"
            u"         end\n"
            u"         mode {b, c}\n"
            u"         end\n"
            u"       end\n"
            u"       modes\n"
            u"       end\n"
            u"       transitions\n"
            u"         a->b->c : x > 2;\n"
            u"         b->a : p;\n"
            u"       end\n"
            u"       initial\n"
            u"         a : q;\n"
            u"       end\n"
            u"     end\n"
            u"   m2 = ...\n"
            u"     modechart\n"
            u"     end\n"
            u" end");
  EXPECT_EQ(block({}, {}).string(0, 2), u"modecharts\nend");
  EXPECT_EQ(mode({}).string(0, 2), u"mode {}\nend") << "only one id stands without braces";
}

TEST(Modecharts, PartsPrintAsInTheWhole) {
  EXPECT_EQ(entry({{"n", number("0")}}).string(1, 3), u" entry\n    n = 0;\n end");
  EXPECT_EQ(Transition(idents({"a", "b"}), name("p")).string(2, 2), u"  a->b : p");
  EXPECT_EQ(TransitionsSection({Transition(idents({"a", "b"}), name("p"))}).string(0, 1),
            u"transitions\n a->b : p;\nend");
  EXPECT_EQ(InitialMode(ident("a"), name("p")).string(2, 2), u"  a : p");
  EXPECT_EQ(InitialSection({}).string(1, 2), u" initial\n end");
  EXPECT_EQ(ModesSection({}).string(0, 2), u"modes\nend");
  EXPECT_EQ(ModechartDeclaration(ident("m"), modechart({})).string(0, 2), u"m = ...\n  modechart\n  end");
}

TEST(Modecharts, Laws) {
  const Modechart empty = modechart({});
  const Modechart a = modechart({ModesSection({mode({"a"})})});
  expectDistinctInOrder<ModechartBlock>({
      block({}, {ModechartDeclaration(ident("m"), empty)}),
      block({}, {ModechartDeclaration(ident("m"), a)}),
      block({}, {ModechartDeclaration(ident("m"),
                                      modechart({ModesSection({mode({"a"}, {}, {entry({})})})},
                                                {TransitionsSection({Transition(idents({"a", "b"}), name("p"))})}))}),
      block({}, {ModechartDeclaration(ident("n"), empty)}),
      block({{"k", number("1")}}, {}),
  });
  // Places do not count.
  const Mode placed = mode({"a"}, {}, {}, onLine(3));
  expectEqualValues(block({}, {ModechartDeclaration(ident("m"), a)}),
                    block({},
                          {ModechartDeclaration(ident("m"), modechart({ModesSection({placed})}, {}, {}, onLine(2)))},
                          onLine(1).begin()));
  EXPECT_EQ(placed.location(), onLine(3).begin());
  EXPECT_EQ(modechart({}, {}, {}, onLine(2)).line(), 2U);
  EXPECT_EQ(block({}, {}, onLine(4).begin()).line(), 4U);
}

} // namespace
