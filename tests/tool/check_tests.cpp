#include "support/large.hpp"
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using nlohmann::json;
using namespace tessarin::test;

const std::string good = "component good\nend\n";
const std::string bad = "x = ;\n"; // at 1:5
const std::string fatal = "component fatal\n function a.b\n  y = 2;\n end\nend\n";

/// The findings of a run, without the sentences: places, severities and ids.
std::string headlines(const std::string& text) {
  std::string out;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    const std::string line = text.substr(begin, end - begin);
    begin = end + 1;
    const std::size_t id = line.rfind(" [");
    const std::size_t severity = line.find(": error: ");
    if (id != std::string::npos && severity != std::string::npos) {
      out += line.substr(0, severity) + ": error" + line.substr(id) + "\n";
    }
  }
  return out;
}

TEST(CheckCommand, ShowsTheLineAndTheColumn) {
  struct Case {
    std::string source;
    std::string report;
  };
  const std::string blanks(300, ' ');
  const Case cases[] = {
      {"x = ;\n", "1:5: error: @\nx = ;\n    ^\n"},
      // Tabs stay, wide characters take two columns, combining ones none, and a pair of units one character.
      {"\ty\t= ;\n", "1:6: error: @\n\ty\t= ;\n\t \t  ^\n"},
      {"a = '漢字'; x = ;\n", "1:15: error: @\na = '漢字'; x = ;\n                ^\n"},
      {"a = 'e\u0301'; x = ;\n", "1:15: error: @\na = 'e\u0301'; x = ;\n             ^\n"},
      {"a = '\U0001D538'; x = ;\n", "1:15: error: @\na = '\U0001D538'; x = ;\n             ^\n"},
      // Nothing in the source can steer the terminal.
      {"a = '\x1B[2J\u202E'; x = ;\n", "1:18: error: @\na = '\u241B[2J\uFFFD'; x = ;\n                 ^\n"},
      // All line ends count.
      {"a = 1\rb = 2\r\nx = ;", "3:5: error: @\nx = ;\n    ^\n"},
      // Tildes reach to the end of the token, in columns of the terminal; where no token is, there is a caret alone.
      {"x = 2 value1;\n", "1:7: error: @\nx = 2 value1;\n      ^~~~~~\n"},
      {"x = 2 '漢\u0301';\n", "1:7: error: @\nx = 2 '漢\u0301';\n      ^~~~\n"},
      {"x = 2 'open\n", "1:7: error: @\nx = 2 'open\n      ^~~~~\n"},
      {"x = [1 2\n", "2:1: error: @\n"},
      // Of long lines the surroundings are shown.
      {blanks + "x = ;" + blanks, "1:305: error: @\n…" + std::string(96, ' ') + "x = ;" + std::string(99, ' ') + "…\n" +
                                      std::string(101, ' ') + "^\n"},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    folder.write("f.tsn", c.source);
    const ToolResult result = runTool(folder, {"check", "f.tsn"});
    std::string sentence = result.out.substr(0, result.out.find('\n'));
    sentence.erase(0, sentence.find(": error: ") + 9);
    std::string expected = "f.tsn:" + c.report + "1 file checked: 1 error, 0 warnings\n";
    expected.replace(expected.find('@'), 1, sentence);
    EXPECT_EQ(result.out, expected);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.status, 1);
  }
}

TEST(CheckCommand, FaultsWithoutASourceLine) {
  const TemporaryFolder folder;
  folder.write("fatal.tsn", fatal);
  folder.write("end.tsn", "x = ...\n"); // the fault is on the last line, which is empty
  folder.write("cast.tsn", "component cast\n equations\n  x == internal_mrv_index__(f, 1.5, 2);\n end\nend\n");
  folder.write("utf.tsn", "x\xC0");
  const ToolResult result = runTool(folder, {"check", "end.tsn", "fatal.tsn", "cast.tsn", "utf.tsn", "gone.tsn"});
  EXPECT_EQ(result.out,
            "end.tsn:2:1: error: The text ends too early: an 'end' is missing, or the last statement is not complete. "
            "[IncompleteStatement]\n"
            "fatal.tsn: internal error: non-terminal (parser/parse/NonTerminalData:34, "
            "virtual const tessarin::compiler::core::Token& tessarin::compiler::core::NonTerminalData::token() const)\n"
            "cast.tsn: error: refused with boost::bad_lexical_cast: "
            "bad lexical cast: source type value could not be interpreted as target\n"
            "utf.tsn: error: invalid UTF-8 at byte 1, line 1, column 2\n"
            "gone.tsn: error: cannot be read: No such file or directory\n"
            "5 files checked: 5 errors, 0 warnings\n");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.status, 2);
}

TEST(CheckCommand, WarnsOfNamesThatAreReadAsTime) {
  struct Case {
    std::string expression;
    std::string report;
  };
  const std::string text =
      " is not read as a name here: 'time' takes its place. Write the braces and what is in them in "
      "one line. [NameReadAsTime]\n";
  const Case cases[] = {
      {"{x, 'm'}", ""},
      {"{\n 1, 'm'}", ""},
      {"{\n [xy], 'm'}", "f.tsn:4:3: warning: 'xy'" + text + " [xy], 'm'};\n  ^~\n"},
      {"{\n xy, 'm'}", "f.tsn:4:2: warning: 'xy'" + text + " xy, 'm'};\n ^~\n"},
      {"{\n 1 + xy, 'm'}", "f.tsn:4:6: warning: 'xy'" + text + " 1 + xy, 'm'};\n     ^~\n"},
      {"{\n x, 'm'} + {\n y, 'm'}", // as the builder comes by them, which is from the right
       "f.tsn:5:2: warning: 'y'" + text + " y, 'm'};\n ^\n" + "f.tsn:4:2: warning: 'x'" + text + " x, 'm'} + {\n ^\n"},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    folder.write("f.tsn", "component f\n equations\n  a == " + c.expression + ";\n end\nend\n");
    const ToolResult result = runTool(folder, {"check", "f.tsn"});
    EXPECT_EQ(result.out.substr(0, result.out.find("1 file checked")), c.report);
    EXPECT_EQ(result.status, 0);
  }
}

TEST(CheckCommand, FilesBelowFoldersInOrder) {
  const TemporaryFolder folder;
  for (const char* name : {"b/two.tsn", "b/one.tsn", "b-a/x.tsn", "b/deep/er/x.tsn", "b/.tsn"}) folder.write(name, bad);
  folder.write("b/ignored.txt", bad);
  folder.write("b/folder.tsn/ignored", bad);
  std::filesystem::create_directory(folder.path() / "empty");
  // A loop, a second way to a folder, a link that leads nowhere, and one that leads to a file.
  std::filesystem::create_directory_symlink("..", folder.path() / "b/deep/up");
  std::filesystem::create_directory_symlink("../b-a", folder.path() / "b/again");
  std::filesystem::create_symlink("nowhere", folder.path() / "b/dangling.tsn");
  std::filesystem::create_symlink("../b-a/x.tsn", folder.path() / "b/link.tsn");

  struct Case {
    std::vector<std::string> arguments;
    std::vector<std::string> paths;
    int status;
  };
  const Case cases[] = {
      {{"b"}, {"b/.tsn", "b/dangling.tsn", "b/deep/er/x.tsn", "b/link.tsn", "b/one.tsn", "b/two.tsn"}, 2},
      {{"b-a/", "b/ignored.txt"}, {"b-a/x.tsn", "b/ignored.txt"}, 1},
      {{"b/deep/up/one.tsn", "b-a", "b-a/x.tsn"}, {"b/deep/up/one.tsn", "b-a/x.tsn"}, 1},
      // Each file once, however it is written; a link is a file of its own.
      {{"./b-a/x.tsn", "b/../b-a//x.tsn", "b/again", "b/link.tsn"}, {"./b-a/x.tsn", "b/link.tsn"}, 1},
      {{"b/again"}, {"b/again/x.tsn"}, 1},
      {{"empty"}, {}, 2},
      {{"empty", "b-a"}, {"b-a/x.tsn"}, 1},
  };
  for (const Case& c : cases) {
    std::vector<std::string> arguments = {"check", "--json"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const ToolResult result = runTool(folder, arguments);
    std::vector<std::string> paths;
    const json document = json::parse(result.out);
    for (const json& file : document["files"]) paths.push_back(file["path"]);
    EXPECT_EQ(paths, c.paths);
    EXPECT_EQ(result.status, c.status);
  }
  EXPECT_EQ(runTool(folder, {"check", "empty"}).error, "tsn: there are no .tsn files below 'empty'\n");
}

TEST(CheckCommand, Json) {
  const TemporaryFolder folder;
  folder.write("a/bad.tsn", bad);
  folder.write("a/fatal.tsn", fatal);
  folder.write("a/good.tsn", good);
  folder.write("a/named.tsn", "component other\nend\n");
  folder.write("a/utf.tsn", "\xFF");
  const ToolResult result = runTool(folder, {"check", "--json", "a", "gone.tsn"});
  EXPECT_EQ(json::parse(result.out), json::parse(R"({
    "files":[
      {"path":"a/bad.tsn","fault":{"family":"parse","id":"UnexpectedSep","arguments":[],"line":0,"column":4,
        "endLine":0,"endColumn":5},"warnings":[]},
      {"path":"a/fatal.tsn","fatal":{"text":"non-terminal","source":"parser/parse/NonTerminalData","line":34,"signature":
       "virtual const tessarin::compiler::core::Token& tessarin::compiler::core::NonTerminalData::token() const"},
       "warnings":[]},
      {"path":"a/good.tsn","warnings":[]},
      {"path":"a/named.tsn","warnings":[{"family":"parse","id":"InconsistentModelNameAndFileName",
       "arguments":["other"],"line":0,"column":10,"endLine":0,"endColumn":15}]},
      {"path":"a/utf.tsn","error":["nvf::InvalidUtf8","invalid UTF-8 at byte 0, line 1, column 1"],"warnings":[]},
      {"path":"gone.tsn","error":["tessarin::tool::UnreadableFile","cannot be read: No such file or directory"],
       "warnings":[]}],
    "summary":{"files":6,"errors":4,"warnings":1}})"))
      << result.out;
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.status, 2);

  for (const std::vector<std::string>& form :
       {std::vector<std::string>{"--format", "json"}, {"--format=json", "--json"}, {"--json", "--json"}}) {
    std::vector<std::string> arguments = {"check", "a", "gone.tsn"};
    arguments.insert(arguments.end(), form.begin(), form.end());
    EXPECT_EQ(runTool(folder, arguments).out, result.out) << form.front();
  }
}

LARGE_TEST(CheckCommand, TheSameForAnyNumberOfWorkers) {
  const TemporaryFolder folder;
  for (int i = 0; i < 60; ++i) {
    const std::string name = "f" + std::to_string(i);
    // Files of very different length, so that workers finish out of order.
    std::string source;
    for (int line = 0; line < (i % 7 == 0 ? 1000 : 1); ++line) source += "y = " + std::to_string(line) + ";\n";
    folder.write(name + ".tsn", source + (i % 3 == 0 ? bad : i % 5 == 0 ? fatal : good));
  }
  for (const char* format : {"text", "json", "sarif"}) {
    std::vector<std::string> arguments = {"check", ".", "--format", format, "-j1"};
    const ToolResult one = runTool(folder, arguments);
    EXPECT_EQ(one.status, 1);
    for (const char* jobs : {"-j2", "-j16", "-j256"}) {
      arguments.back() = jobs;
      const ToolResult many = runTool(folder, arguments);
      EXPECT_EQ(many.out, one.out) << format << jobs;
      EXPECT_EQ(many.status, one.status);
    }
  }
}

TEST(CheckCommand, ReportsOnALongLineAreShort) {
  std::string source = "component f\ninputs\n";
  for (int i = 0; i < 3000; ++i) source += std::string(64, 'n') + ";";
  const TemporaryFolder folder;
  folder.write("f.tsn", source + "\nend\nend\n");
  const ToolResult result = runTool(folder, {"check", "f.tsn"});
  EXPECT_TRUE(result.out.ends_with("\n1 file checked: 0 errors, 3000 warnings\n"));
  EXPECT_LT(result.out.size(), 20 * source.size());
  EXPECT_EQ(result.status, 0);
}

TEST(CheckCommand, FoldersThatCannotBeRead) {
  // Names that together are longer than a path may be: even the superuser cannot look into the last folders.
  const TemporaryFolder folder;
  folder.write("a/good.tsn", good);
  const std::string name(250, 'd');
  int current = open((folder.path() / "a").c_str(), O_DIRECTORY);
  for (int i = 0; i < 17; ++i) {
    ASSERT_EQ(mkdirat(current, name.c_str(), 0700), 0);
    const int next = openat(current, name.c_str(), O_DIRECTORY);
    close(current);
    current = next;
  }
  close(current);
  const ToolResult result = runTool(folder, {"check", "a"});
  EXPECT_EQ(result.out, "1 file checked: 0 errors, 0 warnings\n");
  EXPECT_TRUE(result.error.ends_with("' cannot be read: File name too long\n")) << result.error;
  EXPECT_EQ(result.status, 2);
}

TEST(CheckCommand, LongNamesAreCutInText) {
  const TemporaryFolder folder;
  folder.write("f.tsn", "component " + std::string(200'000, 'n') + "\nend\n");
  const ToolResult text = runTool(folder, {"check", "f.tsn"});
  EXPECT_NE(text.out.find("nnn… "), std::string::npos) << text.out.substr(0, 1000);
  EXPECT_LT(text.out.size(), 2000U);
}

TEST(CheckCommand, StandardInput) {
  const TemporaryFolder folder;
  const ToolResult result = runTool(folder, {"check", "-"}, {.input = bad});
  EXPECT_EQ(headlines(result.out), "<stdin>:1:5: error [UnexpectedSep]\n");
  EXPECT_EQ(result.status, 1);
}

TEST(CheckCommand, ColoursOnATerminalOnly) {
  const TemporaryFolder folder;
  folder.write("f.tsn", bad);
  const auto isColoured = [&](const std::vector<std::string>& environment) {
    const Terminal terminal;
    const ToolResult result =
        runTool(folder, {"check", "f.tsn"}, {.outputFile = terminal.name(), .environment = environment});
    EXPECT_EQ(result.status, 1);
    const std::string text = terminal.written();
    EXPECT_NE(text.find("error:"), std::string::npos) << text;
    return text.find("\x1B[") != std::string::npos;
  };
  EXPECT_TRUE(isColoured({"TERM=xterm"}));
  EXPECT_TRUE(isColoured({"TERM=xterm", "NO_COLOR="}));
  EXPECT_FALSE(isColoured({"TERM=xterm", "NO_COLOR=1"}));
  EXPECT_FALSE(isColoured({"TERM=dumb"}));
  EXPECT_FALSE(isColoured({}));
  const ToolResult piped = runTool(folder, {"check", "f.tsn"}, {.environment = {"TERM=xterm"}});
  EXPECT_EQ(piped.out.find('\x1B'), std::string::npos);
}

} // namespace
