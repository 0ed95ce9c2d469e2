#include "tool/run_tool.hpp"

#include <gtest/gtest.h>

namespace {

using namespace tessarin::test;

const std::vector<std::string> commands = {
#define TSN_COMMAND(name, ...) #name,
#include "tools/tsn/commands.def"
};

TEST(CommandLine, WrongUsage) {
  const std::vector<std::string> cases[] = {
      {},
      {"nonsense"},
      {"--nonsense"},
      {"tokens"},
      {"tokens", "a.tsn", "b.tsn"},
      {"tokens", "a.tsn", "--nonsense"},
      {"tree", "a.tsn", "--scanner"},
      {"check"},
      {"check", "a.tsn", "-j0"},
      {"check", "a.tsn", "-j", "many"},
      {"check", "a.tsn", "--format"},
      {"check", "a.tsn", "--format", "yaml"},
      {"check", "a.tsn", "--format", "json", "--format", "json"},
      {"check", "a.tsn", "--format", "text", "--json"},
      {"check", "a.tsn", "--json", "--format=sarif"},
      {"tokens", "a.tsn", "--format", "json"},
      {"tokens", "a.tsn", "tree", "a.tsn"},
  };
  const TemporaryFolder folder;
  folder.write("a.tsn", "x = 1;\n");
  folder.write("b.tsn", "x = 1;\n");
  for (const auto& arguments : cases) {
    const ToolResult result = runTool(folder, arguments);
    const std::string shown = arguments.empty() ? "nothing" : arguments.back();
    EXPECT_EQ(result.status, 2) << shown;
    EXPECT_EQ(result.out, "") << shown;
    EXPECT_NE(result.error, "") << shown;
  }
}

TEST(CommandLine, UnreadableFiles) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("loop.tsn", folder.path() / "loop.tsn");
  for (const std::string command : {"tokens", "tree"}) {
    for (const std::string path : {"gone.tsn", ".", "loop.tsn", "x/\x1B.tsn"}) {
      const ToolResult result = runTool(folder, {command, path});
      EXPECT_EQ(result.status, 2) << path;
      EXPECT_EQ(result.out, "") << path;
      EXPECT_NE(result.error.find(": error: cannot be read: "), std::string::npos) << result.error;
      EXPECT_EQ(result.error.find('\x1B'), std::string::npos);
    }
  }
}

TEST(CommandLine, HelpAndVersion) {
  const TemporaryFolder folder;
  const ToolResult help = runTool(folder, {"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.error, "");
  for (const std::string& command : commands) {
    EXPECT_NE(help.out.find("\n  " + command + " "), std::string::npos) << command;
    const ToolResult part = runTool(folder, {command, "--help"});
    EXPECT_EQ(part.status, 0);
    EXPECT_NE(part.out.find("Usage: tsn " + command), std::string::npos) << part.out;
    EXPECT_NE(part.out.find("--json"), std::string::npos) << part.out;
  }
  const ToolResult version = runTool(folder, {"--version"});
  EXPECT_EQ(version.out, "tsn " TESSARIN_VERSION "\n");
  EXPECT_EQ(version.status, 0);
}

TEST(CommandLine, OutputThatCannotBeWritten) {
  const TemporaryFolder folder;
  folder.write("f.tsn", "x = 1;\n");
  for (const std::string command : {"tokens", "tree", "check"}) {
    const ToolResult result = runTool(folder, {command, "f.tsn"}, {.outputFile = "/dev/full"});
    EXPECT_EQ(result.error, "tsn: cannot write to standard output: No space left on device\n");
    EXPECT_EQ(result.status, 2);
  }
}

} // namespace
