// The commands that look at the syntax tree: print, ast, outline, uses, digest and expr.
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <string>

namespace {

using nlohmann::json;
using namespace tessarin::test;

constexpr const char* valve = R"(import a.b.*
component (Hidden = true) valve < base(k = 2)
  nodes
    p = hydraulic.port;
  end
  parameters
    [c, d] = limits(1);
    [e, ~] = limits(2);
  end
  if c > 1
    variables
      x = {0, 'm'};
    end
    equations
      assert(c > 0, message('a:b', text(d)), Warn = true);
    end
  end
  branches
    q(c) : p.q -> *;
  end
  equations
    let
      u = x + d;
    in
      u == x(c)*p.v;
    end
  end
end
function [lower, upper] = limits(kind)
  definitions
    lower = kind;
    upper = -kind;
  end
end
)";

// What the valve has not. Each expression has a number of its own, in the order in which they are listed.
constexpr const char* plant = R"(component plant
  for k = 20
    parameters
      in_loop = 21;
    end
  end
  annotations
    Icon = 22;
    [a, b]: Side = 23;
  end
  modecharts (External = 12)
    m = modechart
      modes
        mode on
          entry
            x = 14;
          end
          equations
            x == 13;
          end
        end
      end
      transitions
        on -> off : t > 15;
      end
      initial
        on : 16;
      end
    end
  end
  events
    when 7
      y = 8;
    elsewhen 9
      y = 10; z = 11;
    end
  end
  equations
    x == 6;
    assert(6.1, message('a:b', text(internal_value_ref__(q))), Warn = false);
  end
  connections
    connect(4 + 0, *)
    connect(a.p, b.p(5))
  end
  components
    a(i) = part(k = 1);
    [a, b] = 2;
    c = pipe(3);
  end
  if 17
  elseif 18
  else
    inputs
      i = 19;
      j;
    end
  end
end
)";

/// What the tool answers about the files above.
ToolResult ask(const std::vector<std::string>& arguments) {
  const TemporaryFolder folder;
  folder.write("valve.tsn", valve);
  folder.write("plant.tsn", plant);
  ToolResult result = runTool(folder, arguments);
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.status, 0);
  return result;
}

TEST(PrintCommand, WhatItPrintsReadsBackAndPrintsTheSame) {
  const std::string first = ask({"print", "valve.tsn"}).out;
  const TemporaryFolder folder;
  folder.write("valve.tsn", first);
  const ToolResult second = runTool(folder, {"print", "valve.tsn", "--json"});
  EXPECT_EQ(second.status, 0) << second.out;
  EXPECT_EQ(json::parse(second.out), (json{{"text", first}, {"warnings", json::array()}}));
}

TEST(AstCommand, ListsNodesWithTheirRangesAndFields) {
  const std::string text = ask({"ast", "valve.tsn"}).out;
  for (const char* line : {"\nModel type='component'\n", "name: Ident <2:27-2:32> id='valve'\n",
                           "predicate: OpExpr <10:6-10:11> operator='>'\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << text;
  }
  const json document = json::parse(ask({"ast", "valve.tsn", "--json"}).out);
  ASSERT_EQ(document["ast"].size(), 3) << "imports, the model, local functions";
  EXPECT_EQ(document["ast"][0][0]["class"], "ImportStmt");
  EXPECT_EQ(document["ast"][1]["class"], "Model");
  EXPECT_EQ(document["ast"][2][0]["fields"]["name"],
            json::parse(R"({"class":"Ident","range":[28,26,28,32],"fields":{"id":"limits"}})"));
  const json& block = document["ast"][1]["fields"]["declarativeSections"]["fields"]["semanticSections"]["fields"];
  EXPECT_EQ(block["conditionalSections"][0]["fields"]["ifSection"]["fields"]["predicate"]["fields"]["operator"], ">");
  EXPECT_EQ(block["declarationBlocks"][0]["fields"]["type"], "node");
  EXPECT_EQ(document["ast"][1]["fields"]["modelSource"], "open");
}

/// Adds each `class` of the nodes in the document, with its fields.
void collectClasses(const json& document, std::set<std::string>& classes) {
  if (document.is_object() && document.contains("class")) {
    std::string text = document["class"].get<std::string>() + ":";
    for (const auto& [name, value] : document["fields"].items()) text += " " + name;
    classes.insert(text);
  }
  for (const json& part : document) {
    if (part.is_structured()) collectClasses(part, classes);
  }
}

TEST(AstCommand, NamesOfClassesAndFieldsAreFixed) {
  std::set<std::string> classes;
  for (const char* file : {"valve.tsn", "plant.tsn"}) {
    collectClasses(json::parse(ask({"ast", file, "--json"}).out), classes);
  }
  // All classes, with their fields in the order of their names.
  const std::set<std::string> known{
      "AnnotationsBlock: annotations classAnnotations",
      "Arguments: named positional",
      "ArrayMemberPathElement: elementIndex memberIndex",
      "BaseClassPathElement:",
      "BranchBlock: throughs",
      "CalvexFunctionCall: dottedEnum evalCompileTime isEnum namedArguments noArguments path positionalArguments",
      "ClassInitializer: args name",
      "ConcreteValueExpr: value",
      "ConditionalSection: elseSection elseifSections ifSection",
      "Connection: firstArg remainingArguments",
      "ConnectionBlock: connections",
      "DeclarationBlock: attributes declarations type",
      "DeclarativeSections: annotationsBlocks semanticSections",
      "DefinitionsBlock: attributes eqnItems",
      "ElseSection: declarations",
      "ElseWhenBranch: body predicate",
      "ElseifBranch: condition eqnItems",
      "ElseifSection: declarations predicate",
      "EndIndex:",
      "EntryBlock: actions",
      "EqnAssertion: action message predicate",
      "EquationBlock: attributes eqnItems",
      "EventBlock: events",
      "FieldValueArrayExpr: pairs",
      "ForLoop: body idValuePair",
      "FullPathVariable: paths subs",
      "IdListValuePair: ids isColonEquals value",
      "IdParenIds: id indices",
      "IdParenSubs: ident subs",
      "IdValueIndices: ident indices",
      "Ident: id",
      "IdentValuePair: ident value",
      "IfExpr: condition elseEqnItems elseifBranches ifEqnItems",
      "IfSection: declarations predicate",
      "ImplicitReference:",
      "ImportStmt: importName isUnqualified",
      "InitialMode: id predicate",
      "InitialSection: initialModes",
      "LetExpr: declarations eqnItems",
      "MRVIndex: expr numRvs rvIndex",
      "MatrixExpr: rows",
      "MemberAnnotation: attributes ids",
      "MemberPathElement: memberIndex",
      "MemberText: path",
      "MessageObject: holes id",
      "Mode: entryBlocks equationBlocks ids",
      "Modechart: initialSections modesSections transitionsSections",
      "ModechartBlock: attributes declarations",
      "ModechartDeclaration: id modechart",
      "ModechartEqnExpr: expr",
      "Model: attributes baseClassName declarativeSections modelSource name setupFunction type",
      "ModesSection: modes",
      "Name: ids",
      "NamedArgument: isColonEquals name value",
      "NativeFunctionCall: namedArguments noArguments path positionalArguments",
      "NoMessage:",
      "NumberLiteral: value",
      "ObjectArrayElementDecl: lhs rhs",
      "ObjectRef: ref",
      "OpExpr: operands operator",
      "ParenSubs: subs",
      "PreformattedMessage: id text",
      "RefText: ref",
      "RelativePathVariable: depth id subs",
      "SemanticSections: branchBlocks conditionalSections connectionBlocks declarationBlocks equationBlocks "
      "eventBlocks forLoops modechartBlocks",
      "SimpleSetupAsgnStmt: lhs rhs",
      "SimpleSetupErrorStmt: id message",
      "SimpleSetupIfStmt: predicate whenFalse whenTrue",
      "SimpleSetupWarningStmt: id message",
      "StringLiteral: value",
      "TSNFunction: definitions inputs name outputs source",
      "TessarinFunctionCall: namedArguments noArguments path positionalArguments",
      "TessarinLocalFunctionCall: fcnId namedArguments noArguments path positionalArguments",
      "Through: from lhs to",
      "Tilde:",
      "Time:",
      "Transition: modes predicate",
      "TransitionExpr: expr preCondition",
      "TransitionsSection: transitions",
      "UnitExpr: expr unit",
      "UnitLiteral: value",
      "ValueExpr: conversion expr unit",
      "ValueRef: id leadingPath tail",
      "Variable: id leadingPath tail",
      "WhenBranch: body predicate",
      "WhenClause: elseWhens whenBranch",
  };
  for (const std::string& text : classes) EXPECT_TRUE(known.contains(text)) << text;
  EXPECT_GT(classes.size(), 50U) << "the files are to have most of them";
}

TEST(OutlineCommand, ListsWhatTheFileDeclares) {
  EXPECT_EQ(ask({"outline", "valve.tsn"}).out, R"(import a.b.*  1:1
component valve < base  2:27
  variables
    x  12:7
  parameters
    c  7:6
    d  7:9
    e  8:6
  nodes
    p  4:5
function [lower, upper] = limits(kind)  29:27
)");
  const json outline = json::parse(ask({"outline", "valve.tsn", "--json"}).out)["outline"];
  EXPECT_EQ(outline["type"], "component");
  EXPECT_EQ(outline["base"], "base");
  EXPECT_EQ(outline["members"][0],
            json::parse(R"({"kind":"variables","entries":[{"name":"x","line":11,"column":6}]})"));
  EXPECT_EQ(outline["functions"][0]["outputs"], json::parse(R"(["lower","upper"])"));
}

TEST(OutlineCommand, MembersOfEverySort) {
  EXPECT_EQ(ask({"outline", "plant.tsn"}).out, R"(component plant  1:11
  parameters
    in_loop  4:7
  inputs
    i  55:7
    j  56:7
  components
    a  47:5
    a  48:6
    b  48:9
    c  49:5
  modecharts
    m  12:5
)");
}

TEST(OutlineCommand, OtherFiles) {
  EXPECT_EQ(json::parse(ask({"outline", "plant.tsn", "--json"}).out)["outline"]["base"], nullptr);
  const TemporaryFolder folder;
  folder.write("d.tsn", "import a.b\ndomain d\nend\n");
  EXPECT_EQ(runTool(folder, {"outline", "d.tsn"}).out, "import a.b  1:1\ndomain d  2:8\n");
  folder.write("f.tsn", "function y = f(x)\n  definitions\n    y = g(x);\n  end\nend\n"
                        "function y = g(x)\n  definitions\n    y = x + 1;\n  end\nend\n");
  EXPECT_EQ(runTool(folder, {"outline", "f.tsn"}).out, "function [y] = f(x)  1:14\nfunction [y] = g(x)  6:14\n");
  const json digests = json::parse(runTool(folder, {"digest", "f.tsn", "--json"}).out)["exprs"];
  ASSERT_EQ(digests.size(), 2);
  EXPECT_EQ(digests[0][0], "g(x)") << "the local functions come last";
}

TEST(UsesCommand, ARowForEachEquationAndTwoForAnAssertion) {
  EXPECT_EQ(json::parse(ask({"uses", "valve.tsn", "--json"}).out), json::parse(R"x({"uses":[
      ["let u = x + d; in u == x(c) * p.v; end", ["c", "d", "p.v", "x", "x(c)"], ["c", "d", "p", "x"]],
      ["c > 0", ["c"], ["c"]],
      ["concrete_value__('int32 1x1',1,'1')", [], []]],"warnings":[]})x"));
  EXPECT_NE(ask({"uses", "valve.tsn"}).out.find("c > 0\n  variables: c\n  identifiers: c\n"), std::string::npos);
}

TEST(DigestCommand, ExpressionsComeInTheOrderOfTheFile) {
  std::vector<std::string> texts;
  const json document = json::parse(ask({"digest", "valve.tsn", "--json"}).out);
  for (const json& row : document["exprs"]) {
    texts.push_back(row[0]);
    EXPECT_EQ(row.size(), 4);
    EXPECT_EQ(row[2].get<std::string>().size() % 2, 0);
  }
  EXPECT_EQ(texts, (std::vector<std::string>{"true", "k", "2",                           // the head
                                             "hydraulic.port", "limits(1)", "limits(2)", // declarations
                                             "c", "p.q",                                 // branches
                                             "let u = x + d; in u == x(c) * p.v; end",   // equations
                                             "c > 1", "{0, 'm'}", "c > 0",
                                             "concrete_value__('int32 1x1',1,'1')", // the conditional section
                                             "kind", "-kind"}));                    // the local function
}

TEST(DigestCommand, BlocksComeByTheirKind) {
  std::string texts;
  const json document = json::parse(ask({"digest", "plant.tsn", "--json"}).out);
  for (const json& row : document["exprs"]) texts += row[0].get<std::string>() + '|';
  EXPECT_EQ(texts, "part(k = 1)|2|pipe(3)|4 + 0|a.p|b.p(5)|x == "
                   "6|6.1|internal_value_ref__(q)|concrete_value__('int32 "
                   "1x1',2,'1')|7|8|9|10|11|12|x == 13|14|t > 15|16|17|18|19|20|21|22|"
                   "23|");
}

TEST(ExprCommand, PrintsOneExpression) {
  struct Case {
    std::vector<std::string> arguments;
    std::string out;
    std::string error;
    int status;
  };
  const Case cases[] = {
      {{"a+b * (c)"}, "a + b * c\n", "", 0},
      {{"--user", "a+b"}, "a + b\n", "", 0},
      {{"concrete_value__('int32 1x1', 1, '1')"}, "concrete_value__('int32 1x1',1,'1')\n", "", 0},
      {{"--", "-x"}, "-x\n", "", 0},
      {{"a +"}, "", "[InvalidExpressionSyntax]", 1},
      {{"assert(a)"}, "", "[AssertionNotExpression]", 1},
      {{"{1, '+'}"}, "", "<expression>:1:5: error: '+' is not a unit. [InvalidUnitLiteral]", 1},
      {{"--user", "--digest", "a"}, "", "excludes", 2},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    std::vector<std::string> arguments{"expr"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const ToolResult result = runTool(folder, arguments);
    EXPECT_EQ(result.out, c.out) << c.arguments.back();
    EXPECT_NE(result.error.find(c.error), std::string::npos) << result.error;
    EXPECT_EQ(result.status, c.status) << c.arguments.back();
  }
  const json document = json::parse(runTool(folder, {"expr", "a + 1", "--json"}).out);
  EXPECT_EQ(document["expr"]["tree"]["range"], json::parse("[0,0,0,5]"));
  EXPECT_EQ(json::parse(runTool(folder, {"expr", "{1, '+'}", "--json"}).out)["fault"],
            json::parse(R"({"family":"ast","id":"InvalidUnitLiteral","arguments":["+"],"line":0,"column":4})"));
  EXPECT_EQ(document["expr"]["digest"].get<std::string>() + "\n", runTool(folder, {"expr", "a+1", "--digest"}).out);
}

TEST(CheckCommand, ReportsWhatTheBuilderRefuses) {
  const TemporaryFolder folder;
  folder.write("c.tsn", "component c\n  branches\n    i : 1 -> *;\n  end\nend\n");
  const ToolResult result = runTool(folder, {"check", "c.tsn"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.out.find("c.tsn:3:"), std::string::npos) << result.out;
}

} // namespace
