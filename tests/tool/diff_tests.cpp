// tsn diff as its users run it: on files, on directories, and as a driver for git.
#include "tool/run_tool.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using namespace tessarin::test;

std::string model(const std::string& name, const std::string& resistance) {
  return "component " + name + "\n  parameters\n    R = {" + resistance + ", 'Ohm'};\n  end\nend\n";
}

TEST(DiffCommand, FilesWithTheStatusOfDiff) {
  const TemporaryFolder folder;
  folder.write("a/m.tsn", model("m", "100"));
  folder.write("b/m.tsn", "% layout\n" + model("m", "100"));
  folder.write("c/m.tsn", model("m", "120"));
  folder.write("faulty.tsn", "component");

  const ToolResult same = runTool(folder, {"diff", "a/m.tsn", "b/m.tsn"});
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(same.out, "");

  const ToolResult other = runTool(folder, {"diff", "a/m.tsn", "c/m.tsn"});
  EXPECT_EQ(other.status, 1);
  EXPECT_EQ(other.error, "");
  EXPECT_EQ(other.out, "a/m.tsn -> c/m.tsn\n"
                       "  changed member R, in parameters  3:5 -> 3:5\n"
                       "    - R = {100, 'Ohm'}\n"
                       "    + R = {120, 'Ohm'}\n"
                       "      100  ->  120\n");

  const ToolResult document = runTool(folder, {"diff", "--json", "a/m.tsn", "c/m.tsn"});
  EXPECT_EQ(document.status, 1);
  const json change = json::parse(document.out)["files"][0]["changes"][0];
  EXPECT_EQ(change["kind"], "changed");
  EXPECT_EQ(change["after"]["line"], 2);
  EXPECT_EQ(change["parts"][0]["afterRange"], json({2, 9, 2, 12}));

  for (const std::vector<std::string>& trouble :
       std::vector<std::vector<std::string>>{{"diff", "a/m.tsn", "faulty.tsn"},
                                             {"diff", "a/m.tsn", "none.tsn"},
                                             {"diff", "a", "a/m.tsn"},
                                             {"diff", "a"}}) {
    const ToolResult result = runTool(folder, trouble);
    EXPECT_EQ(result.status, 2) << trouble.back();
    EXPECT_NE(result.error, "") << trouble.back();
  }
}

TEST(DiffCommand, DirectoriesByPathAndMovedFilesByName) {
  const TemporaryFolder folder;
  folder.write("a/same.tsn", model("same", "1"));
  folder.write("b/same.tsn", model("same", "1"));
  folder.write("a/gone.tsn", model("gone", "1"));
  folder.write("b/come.tsn", model("come", "1"));
  folder.write("a/x/moved.tsn", model("moved", "1"));
  folder.write("b/y/moved.tsn", model("moved", "2"));
  folder.write("a/x/moved.txt", "no model");
  const ToolResult result = runTool(folder, {"diff", "a", "b"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "added file come.tsn\n"
                        "removed file gone.tsn\n"
                        "moved file x/moved.tsn -> y/moved.tsn\n"
                        "  changed member R, in parameters  3:5 -> 3:5\n"
                        "    - R = {1, 'Ohm'}\n"
                        "    + R = {2, 'Ohm'}\n"
                        "      1  ->  2\n");
}

TEST(FindAndDepsCommands, OverALibraryThatIsMarked) {
  const TemporaryFolder folder;
  folder.write("lib/.tessarin.json", "");
  folder.write("lib/e/r.tsn", model("r", "1"));
  folder.write("lib/c.tsn", "component c < e.r\n  components\n    s = e.r(R = R);\n    t = other.x;\n  end\nend\n");

  const ToolResult member = runTool(folder, {"find", "--root", "lib", "c.s.R"});
  EXPECT_EQ(member.out, "lib/e/r.tsn:3:5: parameter\n");
  EXPECT_EQ(member.status, 0);
  EXPECT_EQ(runTool(folder, {"find", "--root", "lib", "e"}).out, "lib/e: package\n");
  EXPECT_EQ(runTool(folder, {"find", "R"}).out, "lib/e/r.tsn:3:5: parameter\n") << "in all files below";
  EXPECT_EQ(runTool(folder, {"find", "none"}).status, 1);
  EXPECT_EQ(runTool(folder, {"find", "1"}).status, 2);

  EXPECT_EQ(runTool(folder, {"deps", "lib"}).out, "c\n  e.r\n  other.x (outside)\ne.r\n");
  EXPECT_EQ(runTool(folder, {"deps", "lib/c.tsn", "--dot"}).out,
            "digraph {\n  \"c\";\n  \"c\" -> \"e.r\";\n  \"c\" -> \"other.x\" [style=dashed];\n}\n")
      << "the root is the one that is marked above the file";
  const json document = json::parse(runTool(folder, {"deps", "lib", "--json"}).out);
  EXPECT_EQ(document["files"][0]["uses"], json({"e.r"}));
}

/// A repository of its own, whose user and settings are no one else's.
class Repository {
public:
  Repository() {
    git({"init", "-q", "."});
    git({"config", "user.name", "A"});
    git({"config", "user.email", "a@example.invalid"});
  }
  std::string git(const std::vector<std::string>& arguments) const {
    ToolOptions options;
    options.environment = {"GIT_CONFIG_NOSYSTEM=1", "HOME=" + folder.path().string(), "GIT_PAGER=cat"};
    const ToolResult result = runProgram("git", folder, arguments, options);
    EXPECT_EQ(result.status, 0) << arguments.front() << ": " << result.error;
    return result.out;
  }
  TemporaryFolder folder;
};

TEST(DiffCommand, AsADriverForGit) {
  const Repository repository;
  repository.folder.write(".gitattributes", "*.tsn diff=tsn\n");
  repository.folder.write("m.tsn", model("m", "100"));
  repository.folder.write("layout.tsn", model("layout", "1"));
  repository.folder.write("gone.tsn", model("gone", "1"));
  repository.git({"config", "diff.tsn.command", "'" TSN_EXECUTABLE "' diff --git"});
  repository.git({"add", "."});
  repository.git({"commit", "-q", "-m", "first"});

  repository.folder.write("m.tsn", model("m", "120"));
  repository.folder.write("layout.tsn", "% a comment\n" + model("layout", "1"));
  repository.folder.write("new.tsn", model("new", "1"));
  repository.git({"add", "."});
  repository.git({"rm", "-q", "gone.tsn"});
  const std::string expected = "removed file gone.tsn\n"
                               "m.tsn\n"
                               "  changed member R, in parameters  3:5 -> 3:5\n"
                               "    - R = {100, 'Ohm'}\n"
                               "    + R = {120, 'Ohm'}\n"
                               "      100  ->  120\n"
                               "added file new.tsn\n";
  EXPECT_EQ(repository.git({"diff", "--cached", "--no-renames"}), expected);
  repository.git({"commit", "-q", "-m", "second"});
  EXPECT_NE(repository.git({"log", "-1", "-p", "--ext-diff", "--no-renames"}).find(expected), std::string::npos);

  // A renamed file, and one with a fault, which does not end the run of git.
  repository.git({"mv", "m.tsn", "n.tsn"});
  EXPECT_EQ(repository.git({"diff", "--cached", "-M"}), "moved file m.tsn -> n.tsn\n");
  repository.folder.write("new.tsn", "component");
  EXPECT_EQ(repository.git({"diff"}), "");
}

} // namespace
