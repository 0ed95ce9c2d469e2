// The manual page and the completion know what the help of the tool tells.
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <system_error>

namespace {

using namespace tessarin::test;

struct Command {
  std::string name;
  std::string example;
};

const std::vector<Command> commands = {
#define TSN_COMMAND(name, description, example) {#name, example},
#include "tools/tsn/commands.def"
};

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  std::transform(commands.begin(), commands.end(), std::back_inserter(names), [](const Command& c) { return c.name; });
  return names;
}

/// All matches of the one group of an expression.
std::vector<std::string> matches(const std::string& text, const std::string& expression) {
  const std::regex regex(expression);
  std::vector<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    found.push_back((*match)[1]);
  }
  return found;
}

/// The options that the help names, such as "-h" and "--help". `command` may be empty.
std::set<std::string> optionsInHelp(const TemporaryFolder& folder, const std::string& command) {
  const std::vector<std::string> arguments = {command, "--help"};
  const ToolResult result = runTool(folder, {arguments.begin() + (command.empty() ? 1 : 0), arguments.end()});
  EXPECT_EQ(result.status, 0) << result.error;
  std::set<std::string> options;
  for (const std::string& names : matches(result.out, "\n  (-[^ ]+)")) {
    for (const std::string& name : matches(names, "([^,]+)")) options.insert(name);
  }
  return options;
}

/// The manual page with plain hyphens.
std::string manual() {
  std::ifstream stream(TSN_MANUAL);
  const std::string text(std::istreambuf_iterator<char>(stream), {});
  return std::regex_replace(text, std::regex(R"(\\-)"), "-");
}

/// What stands in the manual behind a heading, up to the next one.
std::string section(const std::string& heading) {
  const std::string text = manual();
  const std::size_t begin = text.find("\n" + heading + "\n");
  if (begin == std::string::npos) return {};
  return text.substr(begin, std::min(text.find("\n.S", begin + 1), text.size()) - begin);
}

std::set<std::string> optionsIn(const std::vector<std::string>& parts) {
  std::set<std::string> options;
  for (const std::string& part : parts) {
    for (const std::string& name : matches(part, R"([\s"](--?[a-z]+(?:-[a-z]+)*))")) options.insert(name);
  }
  return options;
}

TEST(Manual, HasTheCommandsAndOptionsOfTheHelp) {
  const TemporaryFolder folder;
  EXPECT_EQ(matches(manual(), "\n\\.SS (.*)"), commandNames());
  for (const std::string& command : commandNames()) {
    std::set<std::string> options = optionsInHelp(folder, command);
    for (const char* common : {"-h", "--help"}) EXPECT_EQ(options.erase(common), 1U) << command;
    const std::string text = section(".SS " + command);
    EXPECT_EQ(optionsIn({text}), options) << command;
    EXPECT_EQ(optionsIn(matches(text, "\n\\.TP\n(.*)")), options) << command; // each with a paragraph of its own
  }
  EXPECT_EQ(optionsIn({section(".SH OPTIONS")}), optionsInHelp(folder, ""));
  EXPECT_NE(manual().find("\"tsn " TESSARIN_VERSION "\""), std::string::npos);
}

TEST(Manual, IsWellFormed) {
  const TemporaryFolder folder;
  try {
    const ToolResult result = runProgram("groff", folder, {"-man", "-Tutf8", "-ww", "-z", TSN_MANUAL});
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.status, 0);
  } catch (const std::system_error&) {
    GTEST_SKIP() << "there is no groff";
  }
}

TEST(Help, ItsExamplesWork) {
  const TemporaryFolder folder;
  const char* source =
      "component spring\nparameters\n k = 1;\nend\nequations\n k == 1;\nend\nfunction setup\n k = 2;\nend\nend\n";
  for (const char* name : {"spring.tsn", "main.tsn", "models/spring.tsn"}) folder.write(name, source);
  folder.write("old/spring.tsn", "component spring\nparameters\n k = 3;\nend\nend\n");
  folder.write("library/electrical/resistor.tsn", "component resistor\nparameters\n R = 1;\nend\nend\n");
  const std::string directory = std::filesystem::path(TSN_EXECUTABLE).parent_path();
  for (const Command& command : commands) {
    const ToolResult result = runProgram("sh", folder, {"-c", "PATH=$0:$PATH; " + command.example, directory});
    // For these 1 is an answer: there is something to format, there are differences.
    const int answer = command.name == "fmt" || command.name == "diff" ? 1 : 0;
    EXPECT_EQ(result.status, answer) << command.example << '\n' << result.error;
    EXPECT_NE(result.out, "") << command.example;
    EXPECT_TRUE(command.example.starts_with("tsn " + command.name + " ")) << command.example;
  }
}

/// What the shell offers for the last one of the words, sorted. The first one stands for the tool.
std::vector<std::string> completions(const TemporaryFolder& folder, const std::vector<std::string>& words) {
  constexpr const char* script = R"(
    source "$0"
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    _tsn "$1" "${@: -1}" "${@: -2:1}"
    ((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}")";
  std::vector<std::string> arguments = {"--norc", "-c", script, TSN_COMPLETION, TSN_EXECUTABLE};
  arguments.insert(arguments.end(), words.begin(), words.end());
  const ToolResult result = runProgram("bash", folder, arguments);
  EXPECT_EQ(result.error, "");
  std::istringstream lines(result.out);
  std::vector<std::string> found;
  for (std::string line; std::getline(lines, line);) found.push_back(line);
  std::sort(found.begin(), found.end());
  return found;
}

TEST(Completion, HasTheCommandsAndOptionsOfTheHelp) {
  const TemporaryFolder folder;
  std::vector<std::string> names = commandNames();
  std::sort(names.begin(), names.end());
  EXPECT_EQ(completions(folder, {""}), names);
  const auto sorted = [](const std::set<std::string>& options) {
    return std::vector<std::string>(options.begin(), options.end());
  };
  EXPECT_EQ(completions(folder, {"-"}), sorted(optionsInHelp(folder, "")));
  for (const std::string& name : names) {
    EXPECT_EQ(completions(folder, {name, "-"}), sorted(optionsInHelp(folder, name))) << name;
  }
}

TEST(Completion, Words) {
  const TemporaryFolder folder;
  for (const char* name : {"a.tsn", "other.txt", "models/b.tsn", "my models/c.tsn", "my models/d.tsn"}) {
    folder.write(name, "");
  }
  struct Case {
    std::vector<std::string> words;
    std::vector<std::string> completions;
  };
  const Case cases[] = {
      {{"t"}, {"tokens", "tree"}},
      {{"--v"}, {"--version"}},
      {{"nonsense", ""}, {}},
      {{"check", "--fo"}, {"--format"}},
      {{"check", "--format", ""}, {"json", "sarif", "text"}},
      {{"check", "a.tsn", "--format", "s"}, {"sarif"}},
      // As the shell divides `--format=` and `--format=j`.
      {{"check", "--format", "="}, {"json", "sarif", "text"}},
      {{"check", "--format", "=", "j"}, {"json"}},
      {{"check", "-j", ""}, {}},
      {{"check", "--jobs", ""}, {}},
      {{"check", "--json", ""}, {"a.tsn", "models", "my models"}},
      {{"check", ""}, {"a.tsn", "models", "my models"}},
      {{"check", "-j", "4", "m"}, {"models", "my models"}},
      {{"tree", "my models/"}, {"my models/c.tsn", "my models/d.tsn"}},
      {{"tree", "models/x"}, {}},
      {{"expr", ""}, {}},
      {{"expr", "--user", ""}, {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(completions(folder, c.words), c.completions) << c.words.front() << ' ' << c.words.back();
  }
}

} // namespace
