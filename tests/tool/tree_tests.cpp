#include "support/large.hpp"
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

using nlohmann::json;
using namespace tessarin::test;

TEST(TreeCommand, Json) {
  struct Case {
    std::string source;
    std::string document;
    int status;
  };
  const Case cases[] = {
      {"x = 2\n", R"({"tree":["FileGoal",[["Stmts",[["ExprStmt",[["Assign",[
           {"t":"ID","x":"x","l":0,"c":0},{"t":"EQUALS","x":"","l":0,"c":2},{"t":"NUMBER","x":"2","l":0,"c":4}]],
           {"t":"EOL","x":"","l":0,"c":5}]]]]]],"warnings":[]})",
       0},
      // A fault comes with the warnings before it, and without a tree.
      {"component other\n equations\n  x == if a, 1 end;\n end\nend\n",
       R"({"fault":{"family":"parse","id":"IfWithNoElse","arguments":[],"line":2,"column":15,
           "endLine":2,"endColumn":18},"warnings":[]})",
       1},
      {"component other\nend\n", R"x({"tree":["FileGoal",[["ImportStmtList",[]],["Model",[
           {"t":"COMPONENT","x":"component","l":0,"c":0},["AvPairs",[]],{"t":"ID","x":"other","l":0,"c":10},
           {"t":"EMPTYTOKEN","x":"","l":0,"c":0}]],["TSNFunctions",[]]]],
           "warnings":[{"family":"parse","id":"InconsistentModelNameAndFileName","arguments":["other"],
                        "line":0,"column":10,"endLine":0,"endColumn":15}]})x",
       0},
      // What the library takes for a defect of its own does not end the tool.
      {"component f\n function a.b\n  y = 2;\n end\nend\n", R"({"fatal":{"text":"non-terminal",
           "source":"parser/parse/NonTerminalData","line":34,"signature":
           "virtual const tessarin::compiler::core::Token& tessarin::compiler::core::NonTerminalData::token() const"},
           "warnings":[]})",
       1},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    folder.write("f.tsn", c.source);
    const ToolResult result = runTool(folder, {"tree", "f.tsn", "--json"});
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
    EXPECT_EQ(json::parse(result.out), json::parse(c.document)) << result.out;
    EXPECT_EQ(result.status, c.status);
  }
}

TEST(TreeCommand, StandardInputHasNoNameToDifferFrom) {
  const TemporaryFolder folder;
  for (const std::string source :
       {"component other\nend\n", "function y = f(x)\n definitions\n  y = x;\n end\nend\n"}) {
    const ToolResult result = runTool(folder, {"tree", "-", "--json"}, {.input = source});
    EXPECT_EQ(json::parse(result.out)["warnings"], json::array()) << result.out;
    EXPECT_EQ(result.status, 0);
  }
}

TEST(TreeCommand, Text) {
  const TemporaryFolder folder;
  folder.write("f.tsn", "x = 2\n");
  const auto padded = [](std::string text) {
    text.resize(33, ' ');
    return text;
  };
  const ToolResult result = runTool(folder, {"tree", "f.tsn"});
  EXPECT_EQ(result.out, "* FileGoal\n"
                        "  * Stmts\n"
                        "    * ExprStmt\n"
                        "      * Assign\n"
                        "        * ID        (f.tsn:1:1)" +
                            padded("x") +
                            "\n"
                            "        * EQUALS    (f.tsn:1:3)\n"
                            "        * NUMBER    (f.tsn:1:5)" +
                            padded("2") +
                            "\n"
                            "      * EOL       (f.tsn:1:6)\n");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.status, 0);

  folder.write("f.tsn", "x = \n");
  const ToolResult fault = runTool(folder, {"tree", "f.tsn"});
  EXPECT_EQ(fault.out, "");
  EXPECT_EQ(fault.error.find("f.tsn:1:5: error: "), 0U) << fault.error;
  EXPECT_EQ(fault.status, 1);
}

LARGE_TEST(TreeCommand, DeepTreesOnASmallStack) {
  constexpr std::size_t depth = 9000;
  constexpr std::size_t terms = 100'000;
  std::string sum = "x = 0";
  for (std::size_t i = 0; i < terms; ++i) sum += "+1";
  const std::pair<std::string, std::size_t> cases[] = {
      {"x = " + std::string(depth, '~') + "1\n", depth},
      {sum + "\n", terms},
  };
  const TemporaryFolder folder;
  for (const auto& [source, levels] : cases) {
    folder.write("f.tsn", source);
    const ToolResult result = runTool(folder, {"tree", "f.tsn", "--json"}, {.stack = std::size_t{1024} * 1024});
    EXPECT_EQ(result.status, 0) << result.error;
    const auto opened = static_cast<std::size_t>(std::count(result.out.begin(), result.out.end(), '['));
    EXPECT_GE(opened, 2 * levels);
    EXPECT_TRUE(json::accept(result.out));
  }
}

} // namespace
