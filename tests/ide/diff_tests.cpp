// How models differ: a golden listing of changes, laws, and what hostile text costs.
#include "tessarin/ide/Diff.hpp"
#include "tessarin/ide/Stages.hpp"

#include "support/golden.hpp"
#include "support/parsing.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace tessarin::ide {

namespace {

compiler::core::TSNFile fileOf(const std::string& text, const std::string& name = "m.tsn") {
  return buildFile(test::bufferOf(text, name));
}

std::string sideText(const DiffSide& side) {
  std::string out = std::to_string(side.begin.line() + 1) + ':' + std::to_string(side.begin.column() + 1);
  if (!side.where.empty()) out += " in " + nvf::encode_utf8(side.where);
  return out + ": " + nvf::encode_utf8(side.text) + '\n';
}

std::string listing(const std::vector<Change>& changes) {
  std::string out;
  for (const Change& change : changes) {
    const DiffSide& side = change.after ? *change.after : *change.before;
    out += std::string(wordFor(change.kind)) + ' ' + std::string(wordFor(change.element));
    out += (side.name.empty() ? "" : " " + nvf::encode_utf8(side.name)) + '\n';
    if (change.before) out += "  - " + sideText(*change.before);
    if (change.after) out += "  + " + sideText(*change.after);
    for (const DiffPart& part : change.parts) {
      out += "    " + nvf::encode_utf8(part.before) + " -> " + nvf::encode_utf8(part.after) + '\n';
    }
  }
  return out.empty() ? "nothing\n" : out;
}

TEST(Diff, OfSmallFiles) {
  const std::string line = "\n====\n";
  test::GoldenFile(TESSARIN_TEST_DATA "/diff/files.txt").check([&line](const test::GoldenCase& c) {
    const std::size_t middle = c.source.find(line);
    return listing(diff(fileOf(c.source.substr(0, middle)), fileOf(c.source.substr(middle + line.size()))));
  });
}

/// A file that is printed has lost comments and layout and keeps its meaning; against an empty one all is new or gone,
/// and in the same number.
TEST(Diff, LawsOverTheModelsThatAreHere) {
  const std::filesystem::path root = TESSARIN_TEST_DATA "/../..";
  for (const char* folder : {"examples", "tests/data/models"}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
      if (entry.path().extension() != ".tsn" || entry.path().stem() == "schedule") continue;
      std::ifstream stream(entry.path());
      std::stringstream text;
      text << stream.rdbuf();
      const auto file = fileOf(text.str(), entry.path().filename().string());
      const std::string same = "% a comment\n" + text.str() + "\n\n";
      EXPECT_EQ(listing(diff(file, fileOf(same, entry.path().filename().string()))), "nothing\n") << entry.path();

      const auto other = fileOf("component m\nend\n");
      const std::vector<Change> forth = diff(other, file);
      const std::vector<Change> back = diff(file, other);
      EXPECT_FALSE(forth.empty());
      EXPECT_EQ(forth.size(), back.size()) << entry.path();
    }
  }
}

std::string repeated(std::size_t count, const std::function<std::string(std::size_t)>& piece) {
  std::string out;
  for (std::size_t i = 0; i < count; ++i) out += piece(i);
  return out;
}

TEST(Diff, DeepAndLargeFilesOnASmallStack) {
  test::onSmallStack([] {
    const std::size_t depth = 1000;
    const auto nested = [&](const std::string& inside) {
      return "component m\n" + repeated(depth, [](std::size_t i) { return "if n > " + std::to_string(i) + "\n"; }) +
             "parameters\n" + inside + "\nend\n" + repeated(depth, [](std::size_t) { return "end\n"; }) + "end\n";
    };
    const std::vector<Change> deep = diff(fileOf(nested("p = 1;")), fileOf(nested("p = 2;")));
    ASSERT_EQ(deep.size(), 1U);
    EXPECT_EQ(nvf::encode_utf8(deep.front().parts.front().after), "2");
    EXPECT_LT(deep.front().after->where.size(), 200U);

    // A long chain that differs in its first and in its last operand.
    const auto chain = [](const std::string& first, const std::string& last) {
      return "component m\nequations\ny == " + first + repeated(5000, [](std::size_t) { return " + x"; }) + " + " +
             last + ";\nend\nend\n";
    };
    const std::vector<Change> wide = diff(fileOf(chain("a", "b")), fileOf(chain("c", "d")));
    ASSERT_EQ(wide.size(), 1U);
    EXPECT_EQ(wide.front().parts.size(), 2U);

    // Many elements that are all alike, and one less of them.
    const auto many = [](std::size_t count) {
      return "component m\nequations\n" + repeated(count, [](std::size_t) { return "x == y;\n"; }) + "end\nend\n";
    };
    EXPECT_EQ(diff(fileOf(many(3000)), fileOf(many(2999))).size(), 1U);
  });
}

} // namespace

} // namespace tessarin::ide
