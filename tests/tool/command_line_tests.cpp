#include "tessarin/foundation/sanitizer.hpp"

#include "support/large.hpp"
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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
      {"check", "a.tsn", "-j-1"},
      {"check", "a.tsn", "-j1.5"},
      {"check", "a.tsn", "-j0x2"},
      {"check", "a.tsn", "-j010"},
      {"check", "a.tsn", "-j257"},
      {"check", "a.tsn", "-j99999999999999999999"},
      {"check", "a.tsn", "--format"},
      {"check", "a.tsn", "--format", "yaml"},
      {"check", "a.tsn", "--format", "json", "--format", "json"},
      {"check", "a.tsn", "--format", "text", "--json"},
      {"check", "a.tsn", "--json", "--format=sarif"},
      {"tokens", "a.tsn", "--format", "json"},
      {"tokens", "a.tsn", "tree", "a.tsn"},
      {"fmt", "a.tsn", "--lines", "2"},
      {"fmt", "a.tsn", "--lines", "3:2"},
      {"fmt", "a.tsn", "b.tsn", "--lines", "1:2"},
      {"fmt", "a.tsn", "-"},
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

TEST(CommandLine, SaysWhatMayBeMeant) {
  struct Case {
    std::vector<std::string> arguments;
    std::string message;
  };
  const std::string more = "\nRun 'tsn --help' for more information.\n";
  const Case cases[] = {
      {{"chekc", "a.tsn"}, "there is no command 'chekc'; did you mean 'check'?" + more},
      {{"outlines"}, "there is no command 'outlines'; did you mean 'outline'?" + more},
      {{"tre", "--json"}, "there is no command 'tre'; did you mean 'tree'?" + more},
      {{"a.tsn"}, "there is no command 'a.tsn'" + more},
      {{"x\x1B[2Jy"}, "there is no command 'x\\u001B[2Jy'" + more},
      {{std::string(300, 'c')}, "there is no command '" + std::string(300, 'c') + "'" + more},
      {{"--versoin"}, "there is no option '--versoin'; did you mean '--version'?" + more},
      {{"check", "a.tsn", "--fromat=json"},
       "there is no option '--fromat'; did you mean '--format'?\nRun 'tsn check --help' for more information.\n"},
      {{"expr", "1", "--jsn"},
       "there is no option '--jsn'; did you mean '--json'?\nRun 'tsn expr --help' for more information.\n"},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    const ToolResult result = runTool(folder, c.arguments);
    EXPECT_EQ(result.error, "tsn: " + c.message);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 2);
  }
  const ToolResult nothing = runTool(folder, {});
  EXPECT_EQ(nothing.error, "tsn: a command is missing\n\n" + runTool(folder, {"--help"}).out);
  EXPECT_EQ(nothing.status, 2);
}

TEST(CommandLine, ClosedStreamsAreNoOtherFiles) {
  const TemporaryFolder folder;
  folder.write("a.tsn", "x = 1;\n");
  const ToolResult input = runBehind(folder, "exec <&-", {"tokens", "-"});
  EXPECT_EQ(input.error, "<stdin>: error: cannot be read: Bad file descriptor\n");
  EXPECT_EQ(input.status, 2);
  // The file that is opened first would get the number of the stream.
  const ToolResult both = runBehind(folder, "exec <&-", {"check", "a.tsn", "-"});
  EXPECT_NE(both.out.find("<stdin>: error: cannot be read"), std::string::npos) << both.out;
  const ToolResult output = runBehind(folder, "exec >&-", {"tokens", "a.tsn"});
  EXPECT_EQ(output.error, "tsn: cannot write to standard output: Bad file descriptor\n");
  EXPECT_EQ(output.status, 2);
}

#if !TESSARIN_ADDRESS_SANITIZER && !TESSARIN_THREAD_SANITIZER // which take more memory than there is
LARGE_TEST(CommandLine, MemoryThatEnds) {
  const TemporaryFolder folder;
  std::string source = "component f\nequations\n";
  for (int i = 0; i < 10'000; ++i) source += "x" + std::to_string(i) + " == a + b * c;\n";
  folder.write("f.tsn", source + "end\nend\n");
  // From where the tool does not start up to where the answer is there: a document is whole, or there is none.
  int refusals = 0;
  int answers = 0;
  for (int megabytes = 8; megabytes <= 1200 && answers == 0; megabytes += megabytes / 8) {
    const std::string line = "ulimit -v " + std::to_string(megabytes * 1024);
    for (const std::string command : {"ast", "tree", "check"}) {
      const ToolResult result = runBehind(folder, line, {command, "--json", "f.tsn"});
      if (result.status == 127) break; // not started
      // Tables of the libraries are made before the tool's own first line.
      if (result.status == 134 && refusals == 0 && result.out.empty()) break;
      const bool isWhole = result.out.ends_with("}\n") && nlohmann::json::accept(result.out);
      if (result.out.find("there is not enough memory") != std::string::npos) {
        EXPECT_TRUE(isWhole) << command << megabytes;
        EXPECT_EQ(result.status, 2) << command << megabytes;
        ++refusals;
      } else if (result.status == 2) {
        EXPECT_EQ(result.out, "") << command << megabytes;
        EXPECT_EQ(result.error, "tsn: there is not enough memory\n") << command << megabytes;
        ++refusals;
      } else {
        EXPECT_TRUE(isWhole) << command << megabytes;
        EXPECT_EQ(result.status, 0) << result.error;
        if (command == "ast") ++answers;
      }
    }
  }
  EXPECT_GT(refusals, 0);
  EXPECT_GT(answers, 0);
}
#endif

TEST(CommandLine, NothingSteersTheTerminal) {
  const TemporaryFolder folder;
  folder.write("f.tsn", "x = 'a\x1B[2J\xC2\x9B';\n");
  for (const std::string command : {"tree", "tokens"}) {
    const Terminal terminal;
    runTool(folder, {command, "f.tsn"}, {.outputFile = terminal.name(), .environment = {"TERM=xterm"}});
    const std::string text = terminal.written();
    EXPECT_NE(text.find("\\u001B[2J\\u009"), std::string::npos) << text;
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_EQ(text.find("\xC2\x9B"), std::string::npos) << text;
  }
  // A file gets what stands there; the listing itself writes what no terminal shows by its number.
  EXPECT_NE(runTool(folder, {"tree", "f.tsn"}).out.find("a\x1B[2J\\u009b"), std::string::npos);
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
    const bool writesFiles = command == "fmt";
    EXPECT_EQ(part.out.find("--json") == std::string::npos, writesFiles) << part.out;
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
  for (const std::string option : {"--help", "--version"}) {
    const ToolResult result = runTool(folder, {option}, {.outputFile = "/dev/full"});
    EXPECT_EQ(result.error, "tsn: cannot write to standard output: No space left on device\n");
    EXPECT_EQ(result.status, 2);
  }
}

} // namespace
