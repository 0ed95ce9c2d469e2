// Declarations, base classes, imports and annotations.
#include "builder/files.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;

TEST(BuildDeclaration, Printed) {
  const std::vector<BuildCase> cases{
      {"parameters; p = 1, q := {2, 'm'}; end", "  parameters\n    p = 1;\n    q := {2, 'm'};\n  end\n"},
      {"variables (Access = private, Hidden = true); x = 0; end",
       "  variables(Access = private, Hidden = true)\n    x = 0;\n  end\n"},
      {"intermediates; end", "  intermediates\n  end\n"},
      {"inputs; u; v = 1; w := 2; mode; end", "  inputs\n    u;\n    v = 1;\n    w := 2;\n    mode;\n  end\n"},
      {"outputs; y; end", "  outputs\n    y;\n  end\n"},
      {"nodes; p = d.e; p(i) = d.e; q(i, j) = d(i); end",
       "  nodes\n    p = d.e;\n    p(i) = d.e;\n    q(i,j) = d(i);\n  end\n"},
      {"components; r = l.resistor(R = 1, T := 2); end", "  components\n    r = l.resistor(R = 1, T := 2);\n  end\n"},
      // A list of one needs no brackets.
      {"parameters; [a] = 1; [a, ~, b] := f(x); [~, a] = 1; end",
       "  parameters\n    a = 1;\n    [a,~,b] := f(x);\n    [~,a] = 1;\n  end\n"},
      // Blocks of one kind stay apart.
      {"parameters; a = 1; end; parameters; b = 1; end",
       "  parameters\n    a = 1;\n  end\n  parameters\n    b = 1;\n  end\n"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(builtBody(source), expected) << source;
}

TEST(BuildDeclaration, Faults) {
  const std::vector<BuildCase> cases{
      {"parameters\n  [~,~] = 1\nend", "NoIdInDeclaration at 2:4"},
      {"variables\n  [~] := 1\nend", "NoIdInDeclaration at 2:4"},
      {"nodes\n  p(i + 1) = x\nend", "ArrayDeclIndexExpr(i + 1) at 2:5"},
      {"nodes\n  p(i, 2) = x\nend", "ArrayDeclIndexExpr(2) at 2:8"},
      {"components\n  p(i, j.k) = x\nend", "ArrayDeclIndexExpr(j.k) at 2:8"},
      {"components\n  p(j()) = x\nend", "ArrayDeclIndexExpr(j()) at 2:5"},
      // Attributes before declarations, a value before the check of its names, an index before the next one.
      {"parameters (A = {1, '+'})\n  [~] = 1\nend", "InvalidUnitLiteral(+) at 1:21"},
      {"parameters\n  [~] = {1, '+'}\nend", "InvalidUnitLiteral(+) at 2:13"},
      {"nodes\n  p(1, {1, '+'}) = x\nend", "ArrayDeclIndexExpr(1) at 2:5"},
      {"nodes\n  p(1) = {1, '+'}\nend", "ArrayDeclIndexExpr(1) at 2:5"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(builtBody(source), expected) << source;
}

TEST(BuildDeclaration, Places) {
  const Model model = modelOf("component c < a.b(x = 1)\n\n  parameters (A = 1)\n    [p, q] = 1\n  end\nend");
  const DeclarationBlock& block = model.declarativeSections().declarationBlocks().at(0);
  EXPECT_EQ(block.location().lineColumn(), nvf::LineColumn(2, 2));
  EXPECT_EQ(block.type(), MemberType::PARAMETER);
  EXPECT_EQ(block.attribute(0).rightLocation().lineColumn(), nvf::LineColumn(2, 18));
  const IdListValuePair pair = id_list_value(block.declaration(0));
  EXPECT_EQ(pair.location().lineColumn(), nvf::LineColumn(3, 5));
  EXPECT_FALSE(pair.isColonEquals());
  EXPECT_EQ(model.baseClassName()->name().location().lineColumn(), nvf::LineColumn(0, 14));
}

TEST(BuildDeclaration, BaseClassesAndImports) {
  const std::vector<BuildCase> cases{
      {"component c < b end", "% c.tsn\ncomponent c < b\nend \n\n"},
      // Empty parentheses leave no trace.
      {"component c < a.b() end", "% c.tsn\ncomponent c < a.b\nend \n\n"},
      {"component c < b(x = 1, y.z := {2, 'm'}) end", "% c.tsn\ncomponent c < b(x = 1, y.z := {2, 'm'})\nend \n\n"},
      {"component (A = 1, B = x) c end", "% c.tsn\ncomponent (A = 1, B = x) c\nend \n\n"},
      {"import a.b\nimport a.*\nimport x\ndomain c end",
       "% c.tsn\nimport a.b;\nimport a.*;\nimport x;\ndomain c\nend \n\n"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(built(source), expected) << source;
}

TEST(BuildDeclaration, Annotations) {
  const std::vector<BuildCase> cases{
      {"annotations; end", "  annotations\n  end\n"},
      // Those of the class come first, at the indent of the block, whatever their order was.
      {"annotations\n  p : A = 1, B = x\n  C = 2\n  [q, r] : D = 'd'\n  E = 3, F = 4, G = 5\nend",
       "  annotations\n  C = 2\n  E = 3\n  F = 4\n  G = 5\n    p : A = 1, B = x;\n    [q, r] : D = 'd';\n  end\n"},
      {"annotations\n  [q] : D = 1\nend", "  annotations\n    q : D = 1;\n  end\n"},
      {"annotations\n  A = {B = {1, 'm'}, C = {D = 2}}, E = 1\nend",
       "  annotations\n  A = {B = {1, 'm'}, C = {D = 2}}\n  E = 1\n  end\n"},
      {"annotations\n  A = 1, B = {1, '+'}\nend", "InvalidUnitLiteral(+) at 2:18"},
      {"annotations\n  p : A = 1, B = {1, '+'}\n  C = {1, '-'}\nend", "InvalidUnitLiteral(+) at 2:22"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(builtBody(source), expected) << source;
}

TEST(BuildDeclaration, ManyAnnotationsOnOneLine) {
  constexpr std::size_t count = 40'000; // nested in each other, as the parser leaves them
  std::string line;
  for (std::size_t i = 0; i < count; ++i) line += (i == 0 ? "A = " : ", A = ") + std::to_string(i);
  const Model model = modelOf("component c\nannotations\n" + line + "\nend\nend");
  const std::vector<IdentValuePair>& pairs = model.declarativeSections().annotationsBlocks().at(0).classAnnotations();
  ASSERT_EQ(pairs.size(), count);
  EXPECT_EQ(nvf::encode_utf8(pairs.front().string()), "A = 0");
  EXPECT_EQ(nvf::encode_utf8(pairs.back().string()), "A = " + std::to_string(count - 1));
}

} // namespace
} // namespace tessarin::test
