// tsn fmt on files.
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace {

using namespace tessarin::test;
namespace fs = std::filesystem;

std::string contents(const TemporaryFolder& folder, const fs::path& name) {
  std::ifstream file(folder.path() / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Fmt, WritesWhatChangesAndKeepsTheMode) {
  const TemporaryFolder folder;
  folder.write("m/a.tsn", "x=1");
  folder.write("m/n/b.tsn", "x = 1;\n");
  folder.write("m/c.txt", "x=1");
  fs::permissions(folder.path() / "m/a.tsn", fs::perms(0640));
  fs::permissions(folder.path() / "m/n/b.tsn", fs::perms(0444));
  const auto untouched = fs::last_write_time(folder.path() / "m/n/b.tsn");

  const ToolResult check = runTool(folder, {"fmt", "--check", "m"});
  EXPECT_EQ(check.status, 1);
  EXPECT_EQ(check.out, "m/a.tsn\n");
  const ToolResult diff = runTool(folder, {"fmt", "--diff", "m"});
  EXPECT_EQ(diff.status, 0);
  EXPECT_EQ(diff.out, "--- m/a.tsn\n+++ m/a.tsn\n@@ -1,1 +1,1 @@\n-x=1\n\\ No newline at end of file\n+x = 1\n");
  EXPECT_EQ(contents(folder, "m/a.tsn"), "x=1");

  const ToolResult result = runTool(folder, {"fmt", "m"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.error, "");
  EXPECT_EQ(contents(folder, "m/a.tsn"), "x = 1\n");
  EXPECT_EQ(contents(folder, "m/c.txt"), "x=1");
  EXPECT_EQ(fs::status(folder.path() / "m/a.tsn").permissions(), fs::perms(0640));
  EXPECT_EQ(fs::last_write_time(folder.path() / "m/n/b.tsn"), untouched);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path() / "m"), {}), 3); // nothing is left behind
  EXPECT_EQ(runTool(folder, {"fmt", "--check", "m"}).status, 0);
}

TEST(Fmt, FollowsNoLinks) {
  const TemporaryFolder folder;
  folder.write("out/a.tsn", "x=1");
  folder.write("m/b.tsn", "y = 1\n");
  fs::create_symlink("../out/a.tsn", folder.path() / "m/a.tsn");
  fs::create_symlink("../out", folder.path() / "m/out");
  EXPECT_EQ(runTool(folder, {"fmt", "m"}).status, 0);
  const ToolResult named = runTool(folder, {"fmt", "m/a.tsn"});
  EXPECT_EQ(named.status, 2);
  EXPECT_NE(named.error.find("is a link, and links are not followed"), std::string::npos) << named.error;
  EXPECT_EQ(contents(folder, "out/a.tsn"), "x=1");
  EXPECT_TRUE(fs::is_symlink(folder.path() / "m/a.tsn"));
  ASSERT_EQ(mkfifo((folder.path() / "m/pipe.tsn").c_str(), 0600), 0); // nobody writes to it
  EXPECT_EQ(runTool(folder, {"fmt", "m/pipe.tsn"}).status, 2);
}

TEST(Fmt, StandardInput) {
  const TemporaryFolder folder;
  folder.write("m/.editorconfig", "root = true\n[*.tsn]\nindent_size = 4\n");
  const std::string text = "if a\nx=1\nend";
  EXPECT_EQ(runTool(folder, {"fmt", "-"}, {.input = text}).out, "if a\n  x = 1\nend\n");
  const ToolResult named = runTool(folder, {"fmt", "-", "--stdin-path", "m/new.tsn"}, {.input = text});
  EXPECT_EQ(named.out, "if a\n    x = 1\nend\n");
  EXPECT_EQ(named.status, 0);
  const ToolResult check = runTool(folder, {"fmt", "-", "--check"}, {.input = text});
  EXPECT_EQ(check.out, "<stdin>\n");
  EXPECT_EQ(check.status, 1);
  EXPECT_EQ(runTool(folder, {"fmt", "-", "--lines", "2:2"}, {.input = text}).out, "if a\n  x = 1\nend\n");
}

/// The faulty statement stays, and the rest does not; where structure is at fault, all stays.
TEST(Fmt, FaultyFiles) {
  const TemporaryFolder folder;
  folder.write("a.tsn", "component a\nparameters\nb=1;\n  c =) 2; % why\n\nd=[1,...\n  2];\nend\nend\n");
  const ToolResult result = runTool(folder, {"fmt", "a.tsn"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "a.tsn:4:1: error: what is faulty stays as it is; 'tsn check' tells the fault\n");
  EXPECT_EQ(contents(folder, "a.tsn"),
            "component a\n  parameters\n    b = 1;\n  c =) 2; % why\n\n    d = [1, ...\n         2];\n  end\nend\n");
  folder.write("b.tsn", "component b\nparameters\nb=1;\nend\n");
  EXPECT_EQ(runTool(folder, {"fmt", "b.tsn"}).status, 1);
  EXPECT_EQ(contents(folder, "b.tsn"), "component b\nparameters\nb=1;\nend\n");
  folder.write("c.tsn", "x = \xff");
  EXPECT_EQ(runTool(folder, {"fmt", "c.tsn"}).status, 1);
}

} // namespace
