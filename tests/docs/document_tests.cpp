// README.md and docs/language.md tell the truth: the examples are in order, and the outputs are those that come.
#include "tessarin/parser/lex/State.hpp"
#include "tessarin/parser/lex/Token.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "docs/markdown.hpp"
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>

namespace {

using namespace tessarin::compiler::core;
using namespace tessarin::test;

const std::filesystem::path sources = TESSARIN_SOURCE_DIR;

/// Compares what a block shows with what it should, or makes it show that where documents are to be updated.
void expectShown(const char* document, const FencedBlock& block, const std::string& text) {
  if (std::getenv("TESSARIN_UPDATE_GOLDEN") == nullptr) {
    EXPECT_EQ(block.text, text);
  } else if (block.text != text) {
    rewriteBlock(sources / document, block, text);
  }
}

std::string where(const char* document, const FencedBlock& block) {
  return std::string(document) + ":" + std::to_string(block.line);
}

// ---- README.md ----

/// What a command of the shell writes to both of its outputs.
std::string outputOf(const std::filesystem::path& folder, const std::string& command) {
  const std::string inFolder = "cd '" + folder.string() + "' && { " + command + "\n} 2>&1 </dev/null";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(inFolder.c_str(), "r"), pclose);
  if (!pipe) throw std::runtime_error("cannot run " + command);
  std::string output;
  std::array<char, 4096> part{};
  for (std::size_t n = 0; (n = std::fread(part.data(), 1, part.size(), pipe.get())) != 0;)
    output.append(part.data(), n);
  return output;
}

/// Puts `by` in the place of each `what`.
std::string replaced(std::string text, std::string_view what, std::string_view by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

/// The command as the test runs it; empty where the test does not know its program.
std::string runnable(const std::string& command) {
  const std::string result =
      replaced(replaced(command, "./dev run ", "'" TSN_EXECUTABLE "' "), "./inspect", "'" README_PROGRAM "'");
  return result == command ? std::string() : result;
}

/// What README.md tells a reader to type and the tests do not: it builds, installs or needs what is not built.
constexpr std::string_view notRun[] = {
    "./dev run check FILE",
    "./dev test",
    "cmake --preset release",
    "cmake --build build/release",
    "cmake --install build/release --prefix /usr/local",
    "sudo ldconfig",
    "./dev package",
};

std::string withoutComment(std::string line) {
  line = line.substr(0, line.find('#'));
  return line.substr(0, line.find_last_not_of(' ') + 1);
}

/// A text without what a reader cannot see: blanks at the ends of lines and blank lines at the end.
std::string visible(const std::string& text) {
  std::string result;
  for (const std::string& line : linesOf(text)) result += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
  while (result.ends_with("\n\n")) result.pop_back();
  return result;
}

/// Runs the commands of a block, which stand behind "$ ", and compares what follows each with what it writes.
std::string replay(const std::filesystem::path& folder, const FencedBlock& block) {
  std::string actual;
  for (const std::string& line : linesOf(block.text)) {
    if (!line.starts_with("$ ")) continue;
    const std::string command = runnable(line.substr(2));
    EXPECT_NE(command, "") << where("README.md", block) << ": unknown command: " << line;
    actual += line + '\n';
    if (!command.empty()) actual += visible(outputOf(folder, command));
  }
  return actual;
}

TEST(Readme, CommandsWriteWhatIsShown) {
  const TemporaryFolder folder;
  int commands = 0;
  for (const FencedBlock& block : fencedBlocks(sources / "README.md")) {
    SCOPED_TRACE(where("README.md", block));
    if (block.info == "tsn") {
      std::smatch name;
      ASSERT_TRUE(std::regex_search(block.lead, name, std::regex("`([a-z_]+\\.tsn)`[^`]*$"))) << block.lead;
      folder.write(name.str(1), block.text);
    } else if (block.info.empty()) {
      ASSERT_TRUE(block.text.starts_with("$ ")) << "a block without a language shows commands";
      expectShown("README.md", block, replay(folder.path(), block));
      ++commands;
    } else if (block.info == "sh") {
      for (const std::string& line : linesOf(block.text)) {
        EXPECT_NE(std::find(std::begin(notRun), std::end(notRun), withoutComment(line)), std::end(notRun))
            << "unknown command: " << line;
      }
    } else {
      EXPECT_TRUE(block.info == "cpp" || block.info == "cmake") << "unknown language: " << block.info;
    }
  }
  EXPECT_GT(commands, 5);
}

TEST(Readme, NamesEveryFolder) {
  for (const char* const document : {"README.md", "docs/architecture.md"}) {
    const std::string text = outputOf(sources, std::string("cat ") + document);
    for (const std::filesystem::path& parent : {sources / "tessarin", sources / "tessarin/parser"}) {
      for (const auto& entry : std::filesystem::directory_iterator(parent)) {
        const std::string folder = std::filesystem::relative(entry.path(), sources).generic_string();
        if (!entry.is_directory() || folder == "tessarin/parser") continue;
        EXPECT_NE(text.find("| `" + folder + "` |"), std::string::npos) << document << " does not name " << folder;
      }
    }
  }
}

// ---- docs/language.md ----

/// What an example needs around it to be a file.
struct Frame {
  std::string_view info;
  std::string_view before;
  std::string_view after;
};

constexpr Frame frames[] = {
    {"tsn section", "component example\n", "end\n"},
    {"tsn equations", "component example\nequations\n", "end\nend\n"},
};

/// A block with an expression on each line, as declarations of parameters.
std::string declarationsOf(const std::string& expressions) {
  std::string text = "component example\nparameters\n";
  int number = 0;
  for (const std::string& line : linesOf(expressions)) {
    if (!line.empty()) text += "x" + std::to_string(++number) + " = " + line + '\n';
  }
  return text + "end\nend\n";
}

struct Example {
  std::string file;
  std::string text;
};

/// The file that a block stands for; throws `std::runtime_error` where it stands for none.
Example exampleOf(const FencedBlock& block) {
  if (block.info == "tsn") {
    std::smatch name;
    const std::regex head("(?:^|\n)(?:component|domain|function) *(?:\\(.*\\) *)?(?:[\\w\\[\\], ]+ = )?(\\w+)");
    if (!std::regex_search(block.text, name, head)) throw std::runtime_error("an example without a name");
    return {name.str(1) + ".tsn", block.text};
  }
  if (block.info == "tsn expression") return {"example.tsn", declarationsOf(block.text)};
  for (const Frame& frame : frames) {
    if (frame.info == block.info)
      return {"example.tsn", std::string(frame.before) + block.text + std::string(frame.after)};
  }
  throw std::runtime_error("unknown sort of example: " + block.info);
}

TEST(LanguageGuide, ExamplesAreInOrderAndFaultsAreAsShown) {
  const std::vector<FencedBlock> blocks = fencedBlocks(sources / "docs" / "language.md");
  int faults = 0;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const FencedBlock& block = blocks[i];
    SCOPED_TRACE(where("docs/language.md", block));
    const bool isFaulty = i + 1 < blocks.size() && blocks[i + 1].info == "text" && blocks[i + 1].follows;
    const Example example = exampleOf(block);
    const TemporaryFolder folder;
    folder.write(example.file, example.text);
    const std::string output = visible(outputOf(folder.path(), "'" TSN_EXECUTABLE "' check " + example.file));
    if (!isFaulty) {
      EXPECT_EQ(output, "1 file checked: 0 errors, 0 warnings\n") << example.text;
      continue;
    }
    expectShown("docs/language.md", blocks[i + 1], output);
    ++faults;
    ++i;
  }
  EXPECT_GT(blocks.size(), 30U);
  EXPECT_GT(faults, 2);
}

/// The part of the guide below a heading, up to the next one.
std::string chapter(const std::string& heading) {
  const std::string text = outputOf(sources, "cat docs/language.md");
  const std::size_t begin = text.find('\n' + heading + '\n');
  if (begin == std::string::npos) throw std::runtime_error("no heading " + heading);
  return text.substr(begin, text.find("\n#", begin + heading.size()) - begin);
}

TEST(LanguageGuide, NamesEveryKeyword) {
  constexpr std::string_view keywords[] = {
#define TESSARIN_RESERVED(code, name, text, flags) text,
#define TESSARIN_KIND(code, name, image, category, flags)
#include "tessarin/parser/lex/kinds.def"
  };
  const std::string text = chapter("### Names and keywords");
  for (const std::string_view keyword : keywords)
    EXPECT_NE(text.find("`" + std::string(keyword) + "`"), std::string::npos) << keyword;
}

TEST(LanguageGuide, OperatorsStandInTheirRows) {
  struct Operator {
    std::u16string_view image;
    std::size_t precedence;
  };
  constexpr Operator operators[] = {
#define TESSARIN_OPERATOR(name, image, arity, precedence) {image, precedence},
#include "tessarin/parser/ast/operators.def"
  };
  std::vector<std::string> rows; // without the head and the line below it
  for (const std::string& line : linesOf(chapter("### Operators")))
    if (line.starts_with("| `")) rows.push_back(replaced(line, "\\|", "|"));
  ASSERT_EQ(rows.size(), 10U);
  for (const Operator& op : operators) {
    if (op.precedence == 0) continue; // a derivative is written as a call
    const std::string image(op.image.begin(), op.image.end());
    EXPECT_NE(rows[op.precedence - 1].find("`" + image + "`"), std::string::npos) << image;
  }
}

TEST(LanguageGuide, LimitsAreThoseOfTheCode) {
  const std::string text = chapter("## Limits");
  for (const std::size_t limit : {std::size_t{Token::maxNameLength}, std::size_t{State::maxParenDepth},
                                  std::size_t{State::maxCommentDepth}, std::size_t{maxNesting}})
    EXPECT_NE(text.find("| " + std::to_string(limit) + " "), std::string::npos) << limit;
}

} // namespace
