// Branches, connections, modecharts, setup functions, and sections that nest.
#include "builder/files.hpp"
#include "support/large.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;

void check(const std::vector<BuildCase>& cases) {
  for (const auto& [source, expected] : cases) EXPECT_EQ(builtBody(source), expected) << source;
}

TEST(BuildSections, Branches) {
  check({
      {"branches; end", "  branches\n  end\n"},
      {"branches\n  i : p.i -> *\n  j(1, :) : * -> q(2).j; k : p -> mode\nend",
       "  branches\n    i : p.i -> *;\n    j(1, :) : * -> q(2).j;\n    k : p -> mode;\n  end\n"},
      {"branches\n  i() : p.i -> *\nend", "  branches\n    i() : p.i -> *;\n  end\n"},
      {"branches\n  i : internal_value_ref__(p.i) -> q.i(1)\nend",
       "  branches\n    i : internal_value_ref__(p.i) -> q.i(1);\n  end\n"},
      {"branches\n  a.b : x -> y\nend", "NoDotRefBranchVar at 2:3"},
      {"branches\n  a(i = 1) : x -> y\nend", "NoNamedArgBranchVar at 2:3"},
      {"branches\n  a(1, i = 1) : x -> y\nend", "NoNamedArgBranchVar at 2:3"},
      {"branches\n  a.b(i = 1) : x -> y\nend", "NoDotRefBranchVar at 2:3"},
      // The begin of a branch is built before its end, and both before its variable.
      {"branches\n  a({1, '+'}) : x({1, '-'}) -> y({1, '/'})\nend", "InvalidUnitLiteral(-) at 2:23"},
      {"branches\n  a({1, '+'}) : x -> y({1, '/'})\nend", "InvalidUnitLiteral(/) at 2:28"},
      {"branches\n  a.b({1, '+'}) : x -> y\nend", "InvalidUnitLiteral(+) at 2:11"},
      {"branches\n  i : internal_value_ref__(p.i, 1, 2) -> *\nend", "InvalidValueRefSyntax at 2:7"},
  });
}

TEST(BuildSections, BranchesHaveNoPlace) {
  const Model model = modelOf("component c\nbranches\n  i(2) : p.i -> *\nend\nend");
  const BranchBlock& block = model.declarativeSections().branchBlocks().at(0);
  EXPECT_EQ(block.location().lineColumn(), nvf::LineColumn(1, 0));
  const Through& branch = block.through(0);
  EXPECT_EQ(branch.location(), nvf::Location());
  EXPECT_EQ(branch.lhs().subs()->range().begin().lineColumn(), nvf::LineColumn(2, 3));
  EXPECT_EQ(branch.from().get<Variable>().location().lineColumn(), nvf::LineColumn(2, 9));
  EXPECT_EQ(branch.to().get<ImplicitReference>().location().lineColumn(), nvf::LineColumn(2, 16));
}

TEST(BuildSections, Connections) {
  check({
      {"connections; end", "  connections\n  end\n"},
      {"connections\n  connect(a, b.c(1), *)\n  connect(*, a); connect(a)\nend",
       "  connections\n    connect(a,b.c(1),*);\n    connect(*,a);\n    connect(a);\n  end\n"},
      // The first argument may be any expression.
      {"connections\n  connect(a + b, c)\n  connect(1, c)\nend",
       "  connections\n    connect(a + b,c);\n    connect(1,c);\n  end\n"},
      // A literal as a further argument reads as "*", intended.
      {"connections\n  connect(a, 1, 'x', time)\nend", "  connections\n    connect(a,*,*,*);\n  end\n"},
      {"connections\n  connect(a, internal_value_ref__(p.i), internal_object_ref__(q))\nend",
       "  connections\n    connect(a,internal_value_ref__(p.i),internal_object_ref__(q));\n  end\n"},
      {"connections\n  connect(c, a + b)\nend", "InvalidConnectionArg(a + b) at 2:14"},
      {"connections\n  connect(c, d, (-x))\nend", "InvalidConnectionArg(-x) at 2:18"},
      {"connections\n  connect({1, '+'}, a + b)\nend", "InvalidUnitLiteral(+) at 2:15"},
      {"connections\n  connect(c, a + {1, '+'})\nend", "InvalidUnitLiteral(+) at 2:22"},
  });
}

TEST(BuildSections, Modecharts) {
  check({
      {"modecharts; end", "  modecharts\n  end\n"},
      {"modecharts (A = 1)\n  m = modechart; end\nend",
       "  modecharts(A = 1)\n    m = ...\n      modechart\n      end\n  end\n"},
      {"modecharts\n"
       "  m = modechart\n"
       "    initial; a : t > 1; end\n"
       "    modes\n"
       "      mode a\n"
       "        entry; x = 1; y = 2; end\n"
       "        equations; x == y; end\n"
       "      end\n"
       "      mode {b}; end\n"
       "      mode {c, d}; end\n"
       "    end\n"
       "    transitions; a -> b -> c : t; end\n"
       "    modes; end\n"
       "  end\n"
       "end",
       "  modecharts\n"
       "    m = ...\n"
       "      modechart\n"
       "        modes\n"
       "          mode a\n"
       "            equations \n"
       "              x == y;\n"
       "            end\n"
       "            entry\n"
       "              x = 1;\n"
       "              y = 2;\n"
       "            end\n"
       "          end\n"
       "          mode b\n"
       "          end\n"
       "          mode {c, d}\n"
       "          end\n"
       "        end\n"
       "        modes\n"
       "        end\n"
       "        transitions\n"
       "          a->b->c : t;\n"
       "        end\n"
       "        initial\n"
       "          a : t > 1;\n"
       "        end\n"
       "      end\n"
       "  end\n"},
      // In the order of the source, and attributes first.
      {"modecharts (A = {1, '+'})\n  m = modechart; initial; a : {1, '-'}; end\nend\nend",
       "InvalidUnitLiteral(+) at 1:21"},
      {"modecharts\n  m = modechart; initial; a : {1, '-'}; end\n  modes; mode a; entry; x = {1, '+'}; end; end; "
       "end\nend\nend",
       "InvalidUnitLiteral(-) at 2:35"},
  });
}

TEST(BuildSections, PlacesInModecharts) {
  const Model model =
      modelOf("component c\nmodecharts\n  m = modechart\n    modes\n      mode a\n        entry; x = 1; end\n"
              "      end\n    end\n  end\nend\nend");
  const ModechartBlock& block = model.declarativeSections().modechartBlocks().at(0);
  EXPECT_EQ(block.location().lineColumn(), nvf::LineColumn(1, 0));
  const Modechart& modechart = block.declarations().at(0).modechart();
  EXPECT_EQ(modechart.range().begin().lineColumn(), nvf::LineColumn(2, 6));
  EXPECT_EQ(modechart.range().end().lineColumn(), nvf::LineColumn(8, 5));
  const Mode& mode = modechart.modesSections().at(0).modes().at(0);
  EXPECT_EQ(mode.range().begin().lineColumn(), nvf::LineColumn(4, 6));
  EXPECT_EQ(mode.range().end().lineColumn(), nvf::LineColumn(6, 9));
  EXPECT_EQ(mode.entryBlocks().at(0).range(), nvf::Range());
}

TEST(BuildSections, Nesting) {
  check({
      {"if a; end", "  if a\n  end\n"},
      {"if a; elseif b; elseif c; else; end", "  if a\n  elseif b\n  elseif c\n  else\n  end\n"},
      {"if a\n  for i = 1:n\n    equations; x(i) == 0; end\n    if i > 1; parameters; p = 1; end; end\n  end\n"
       "  annotations; A = 1; end\nelse\n  connections; connect(a, b); end\nend",
       "  if a\n"
       "    for i = 1 : n\n"
       "      equations \n        x(i) == 0;\n      end\n"
       "      if i > 1\n        parameters\n          p = 1;\n        end\n      end\n"
       "    end\n"
       "    annotations\n    A = 1\n    end\n"
       "  else\n"
       "    connections\n      connect(a,b);\n    end\n"
       "  end\n"},
      // A kind of sections has a place of its own in a body, whatever the order in the source.
      {"annotations; A = 1; end\nfor i = 1; end\nif a; end\nmodecharts; end\nevents; end\nequations; end\n"
       "connections; end\nbranches; end\nparameters; end",
       "  parameters\n  end\n  branches\n  end\n  connections\n  end\n  equations \n  end\n  events\n  end\n"
       "  modecharts\n  end\n  if a\n  end\n  for i = 1\n  end\n  annotations\n  A = 1\n  end\n"},
  });
}

TEST(BuildSections, WhatMayStandWhere) {
  const std::string setup = "function setup\nend\n";
  const std::string annotations = "annotations\nend\n";
  check({
      {setup + "equations\nend", "  equations \n  end\n"}, // known as a parse tree only
      {setup + setup, "MultipleSetupFunctions at 3:1"},
      {setup + setup + setup, "MultipleSetupFunctions at 3:1"},
      {"if a\n" + setup + "end", "IllegalSetupFunction at 2:1"},
      {"if a\nelseif b\n" + setup + "end", "IllegalSetupFunction at 3:1"},
      {"if a\nelse\n" + setup + "end", "IllegalSetupFunction at 3:1"},
      {"for i = 1\n" + setup + "end", "IllegalSetupFunction at 2:1"},
      {setup + "if a\n" + setup + "end", "IllegalSetupFunction at 4:1"},
      {"if a\n" + setup + "end\n" + setup + setup, "IllegalSetupFunction at 2:1"},
      {"for i = 1\n" + annotations + annotations + "end", "AnnotationsInForLoop at 2:1"},
      {"if a\nfor i = 1\n" + annotations + "end\nend", "AnnotationsInForLoop at 3:1"},
      {"for i = 1\nif a\n" + annotations + "end\nend",
       "  for i = 1\n    if a\n      annotations\n      end\n    end\n  end\n"},
      // The whole body is built before its annotations are refused.
      {"for i = 1\n" + annotations + "parameters; [~] = 1; end\nend", "NoIdInDeclaration at 4:14"},
      // Predicate, sections, each elseif, else.
      {"if {1, '+'}\nparameters; [~] = 1; end\nend", "InvalidUnitLiteral(+) at 1:8"},
      {"if a\nparameters; [~] = 1; end\nelseif {1, '+'}\nend", "NoIdInDeclaration at 2:14"},
      {"if a\nelseif b\nparameters; [~] = 1; end\nelse\n" + setup + "end", "NoIdInDeclaration at 3:14"},
      {"for i = {1, '+'}\nparameters; [~] = 1; end\nend", "InvalidUnitLiteral(+) at 1:13"},
  });
}

TEST(BuildSections, SetupFunctionStaysATree) {
  const Model model = modelOf("component c\nfunction setup\nx = 1\nend\nend");
  ASSERT_TRUE(model.hasSetupFunctionParseTree());
  const ParseTree& tree = model.setupFunctionParseTree();
  EXPECT_EQ(tree.code(), NonTerminal::NonExprStmt);
  EXPECT_EQ(tree.location().lineColumn(), nvf::LineColumn(1, 0));
  EXPECT_FALSE(modelOf("component c end").hasSetupFunctionParseTree());
}

LARGE_TEST(BuildSections, DeepNesting) {
  constexpr std::size_t depth = 10'000;
  const auto nested = [](std::string_view head, std::string_view core) {
    std::string text = "component c\n";
    for (std::size_t i = 0; i < depth; ++i) text += head;
    text += core;
    for (std::size_t i = 0; i < depth; ++i) text += "end\n";
    return text + "end";
  };
  onSmallStack([&] {
    for (const std::string head : {"if a\n", "if a\nelse\n", "if a\nelseif b\n", "for i = 1\n"}) {
      const ParseTree tree = fileTree(nested(head, "parameters; x = 1; end\n"));
      const Model model = ASTBuilder().buildModelFile(tree, FileSource::open).model();
      const SemanticSections& sections = model.declarativeSections().semanticSections();
      EXPECT_EQ(sections.conditionalSections().size() + sections.forLoops().size(), 1U);
    }
    EXPECT_EQ(resultOf([&] {
                (void)modelOf(nested("if a\n", "parameters; [~] = 1; end\n"));
                return std::string();
              }),
              "NoIdInDeclaration at " + std::to_string(depth + 2) + ":14");
  });
}

LARGE_TEST(BuildSections, ManySections) {
  constexpr std::size_t count = 20'000;
  std::string text = "component c\n";
  for (std::size_t i = 0; i < count; ++i) text += "equations; x == y; end\n";
  text += "if a\n";
  for (std::size_t i = 0; i < count; ++i) text += "elseif b\n";
  const Model model = modelOf(text + "end\nend");
  EXPECT_EQ(model.declarativeSections().equationBlocks().size(), count);
  EXPECT_EQ(model.declarativeSections().conditionalSections().at(0).elseifSections().size(), count);
}

} // namespace
} // namespace tessarin::test
