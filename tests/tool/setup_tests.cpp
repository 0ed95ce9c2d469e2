// tsn setup, and what tsn check says of setup functions.
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using namespace tessarin::test;

std::string modelWith(const std::string& statements) {
  return "component c\n  function setup\n" + statements + "\n  end\nend\n";
}

TEST(SetupCommand, TextAndJson) {
  struct Case {
    std::string source;
    std::string text;
    std::string document; // without the warnings, of which there are none
  };
  const std::string printed = "if R <= 0\n  error('a:b', 'R\u00e9');\nelseif G\n  warning('', 'G');\nend\nx = 1;\n";
  const Case cases[] = {
      {modelWith("if R <= 0, error('a:b', 'R\u00e9'); elseif G\n warning('G'), end\n x = 1;"), printed,
       json{{"text", printed}}.dump()},
      {"component c\nend\n", "", R"({"text":""})"},
      {"function y = c(x)\n definitions\n  y = x;\n end\nend\n", "", R"({"none":true})"},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    folder.write("c.tsn", c.source);
    const ToolResult text = runTool(folder, {"setup", "c.tsn"});
    EXPECT_EQ(text.out, c.text);
    EXPECT_EQ(text.error, "");
    EXPECT_EQ(text.status, 0);
    json expected = json::parse(c.document);
    expected["warnings"] = json::array();
    EXPECT_EQ(json::parse(runTool(folder, {"setup", "c.tsn", "--json"}).out), expected);
  }
}

TEST(SetupCommand, FaultsHaveALineAndNoColumn) {
  struct Case {
    std::string statements;
    std::string id;
    int line; // from 0, in the file
  };
  const Case cases[] = {
      {"\n x = 1", "SimpleSetupMissingSemicolonInAssignment", 3},
      {"note('a')", "SimpleSetupUnsupportedStatement", 2},
      {"error()", "SimpleSetupInvalidDiagnosticArgument", 2},
      {"if a\n warning('a:b', 'c', 'd')\n end", "SimpleSetupInvalidDiagnosticArgument", 3},
      {"error('no id', 'c')", "SimpleSetupInvalidDiagnosticArgument", 2},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    folder.write("c.tsn", modelWith(c.statements));
    const ToolResult result = runTool(folder, {"setup", "c.tsn", "--json"});
    const json expected = {
        {"fault",
         {{"family", "setup"}, {"id", c.id}, {"arguments", json::array()}, {"line", c.line}, {"column", nullptr}}},
        {"warnings", json::array()}};
    EXPECT_EQ(json::parse(result.out), expected) << result.out;
    EXPECT_EQ(result.status, 1);
  }

  folder.write("c.tsn", modelWith("  x = 'a';"));
  const std::string shown = "c.tsn:3: error: This expression cannot be used in a setup function. "
                            "[SimpleSetupUnsupportedExpression]\n  x = 'a';\n";
  const ToolResult setup = runTool(folder, {"setup", "c.tsn"});
  EXPECT_EQ(setup.error, shown);
  EXPECT_EQ(setup.status, 1);
  const ToolResult check = runTool(folder, {"check", "c.tsn"});
  EXPECT_NE((check.out + check.error).find(shown), std::string::npos) << check.out << check.error;
  EXPECT_EQ(check.status, 1);
}

} // namespace
