#include "tessarin/foundation/message.hpp"
#include "tessarin/packages/TsnFilePrinter.hpp"

#include "packages/entities.hpp"

#include <gtest/gtest.h>

#include <barrier>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;
namespace fs = std::filesystem;

/// Each test has a directory of its own, which it leaves empty-handed.
class FilePrinter : public testing::Test {
public:
  FilePrinter() {
    std::string name = (fs::temp_directory_path() / "tessarin-XXXXXX").native();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    root = name;
  }
  FilePrinter(const FilePrinter&) = delete;
  FilePrinter& operator=(const FilePrinter&) = delete;
  ~FilePrinter() override {
    std::error_code ignored;
    fs::permissions(root, fs::perms::owner_all, ignored);
    fs::remove_all(root, ignored);
  }

protected:
  void print(const Entity& entity) const { TsnFilePrinter(root).printFile(*entity); }

  /// Prints the entity and expects the message with the path below the root. FailToOpenFile nests the reason of the
  /// system, unless there is `noReason`: the name is none of an entry.
  void expectRefused(const Entity& entity, const std::string& id, const fs::path& path, bool noReason = false) const {
    SCOPED_TRACE(path);
    try {
      print(entity);
      ADD_FAILURE() << "no message";
    } catch (const nvf::MessageException& error) {
      EXPECT_EQ(error.id().catalog, "kelvane:tessarin:compiler:core:ast");
      EXPECT_EQ(error.id().id, id);
      const nvf::ustring text = nvf::utf8_string_to_ustring((root / path).native());
      EXPECT_EQ(error.id().arguments, std::vector<nvf::MessageArgument>{text});
      const auto* nested = dynamic_cast<const std::nested_exception*>(&error);
      ASSERT_EQ(nested != nullptr, id == "FailToOpenFile" && !noReason);
      if (nested != nullptr) {
        EXPECT_THROW(nested->rethrow_nested(), fs::filesystem_error);
      }
    }
  }

  /// What stands below the root: the contents of each file, and "/" for a directory.
  [[nodiscard]] std::map<std::string, std::string> contents() const {
    std::map<std::string, std::string> result;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
      std::ifstream file(entry.path(), std::ios::binary);
      result[entry.path().lexically_relative(root).native()] =
          entry.is_directory() ? "/" : std::string(std::istreambuf_iterator<char>(file), {});
    }
    return result;
  }

  fs::path root;
};

TEST_F(FilePrinter, WritesAPackageOnce) {
  const Entity package = directory(u"p", {modelFile("a", {import("x")}),
                                          directory(u"q", {functionFile("f"), directory(u"\u20ac", {modelFile("b")})}),
                                          directory(u"", {modelFile("c")}), modelFile("d")});
  print(package);
  const std::map<std::string, std::string> written{
      {"p", "/"},
      {"p/a.tsn", "% a.tsn\nimport x;\ncomponent a\nend \n\n"},
      {"p/q", "/"},
      {"p/q/f.tsn", "% f.tsn\nfunction [ y ] = f( )\n  definitions \n    y = 1\n  end \nend \n\n"},
      {"p/q/\xe2\x82\xac", "/"},
      {"p/q/\xe2\x82\xac/b.tsn", "% b.tsn\ncomponent b\nend \n\n"},
      {"p/c.tsn", "% c.tsn\ncomponent c\nend \n\n"},
      {"p/d.tsn", "% d.tsn\ncomponent d\nend \n\n"},
  };
  EXPECT_EQ(contents(), written);

  expectRefused(package, "CodeGenExistingDir", "p");
  // What stands before the fault is written, and stays.
  expectRefused(directory(u"", {modelFile("n"), directory(u"", {package}), modelFile("o")}), "CodeGenExistingDir", "p");
  expectRefused(directory(u"", {modelFile("n")}), "CodeGenExistingFile", "n.tsn");
  auto after = written;
  after["n.tsn"] = "% n.tsn\ncomponent n\nend \n\n";
  EXPECT_EQ(contents(), after);
}

TEST_F(FilePrinter, OnePrinterWritesSeveral) {
  TsnFilePrinter printer(root);
  printer.printFile(*directory(u"p", {directory(u"q", {})}));
  printer.printFile(*modelFile("m"));
  EXPECT_TRUE(is_regular_file(root / "m.tsn"));
  // After an exception it is where it has stopped: intended.
  EXPECT_THROW(printer.printFile(*directory(u"r", {directory(u"q", {modelFile("m"), modelFile("m")})})),
               nvf::MessageException);
  printer.printFile(*modelFile("n"));
  EXPECT_TRUE(is_regular_file(root / "r" / "q" / "n.tsn"));
}

TEST_F(FilePrinter, NamesStayInsideTheirDirectory) {
  const struct {
    nvf::ustring name;
    std::string path;
  } cases[] = {
      {u"a/b", "a/b"}, {u"../a", "../a"}, {u"/a", "/a"},
      {u".", "."},     {u"..", ".."},     {{u'a', u'\0', u'b'}, {'a', 0, 'b'}},
  };
  for (const auto& c : cases) {
    expectRefused(directory(c.name, {}), "FailToOpenFile", c.path, true);
    expectRefused(directory(u"", {directory(c.name, {})}), "FailToOpenFile", c.path, true);
  }
  EXPECT_TRUE(contents().empty());
  print(directory(u"...", {directory(u" a\\b:c", {})}));
  EXPECT_TRUE(is_directory(root / "..." / " a\\b:c"));
}

TEST_F(FilePrinter, RefusesWhatCannotBeWritten) {
  std::ofstream(root / "f") << "kept";
  create_directory(root / "m.tsn");
  expectRefused(directory(u"f", {modelFile("a")}), "FailToOpenFile", "f");
  expectRefused(modelFile("m"), "FailToOpenFile", "m.tsn");
  expectRefused(directory(nvf::ustring(300, u'x'), {}), "FailToOpenFile", std::string(300, 'x'));
  EXPECT_EQ(contents(), (std::map<std::string, std::string>{{"f", "kept"}, {"m.tsn", "/"}}));

  root /= "missing";
  expectRefused(directory(u"d", {}), "FailToOpenFile", "d");
  expectRefused(modelFile("a"), "FailToOpenFile", "a.tsn");
  root = root.parent_path();
}

TEST_F(FilePrinter, RefusesAReadOnlyDirectory) {
  // The superuser may write anywhere, so somebody else does it for them.
  constexpr uid_t somebody = 65534;
  const bool isSuperuser = geteuid() == 0;
  permissions(root, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec);
  if (isSuperuser) {
    ASSERT_EQ(seteuid(somebody), 0);
  }
  expectRefused(directory(u"d", {}), "FailToOpenFile", "d");
  expectRefused(modelFile("m"), "FailToOpenFile", "m.tsn");
  if (isSuperuser) {
    ASSERT_EQ(seteuid(0), 0);
  }
  EXPECT_TRUE(contents().empty());
}

TEST_F(FilePrinter, FollowsNoLinksAndOpensNothingThatExists) {
  const fs::path outside = root / "outside";
  create_directory(outside);
  const fs::path inside = root / "inside";
  create_directory(inside);
  std::ofstream(outside / "kept") << "kept";

  root = inside;
  fs::create_symlink(outside / "new", root / "dangling.tsn");
  fs::create_symlink("/dev/null", root / "device.tsn");
  fs::create_symlink(outside / "kept", root / "link.tsn");
  fs::create_symlink(outside / "nowhere", root / "dangling");
  fs::create_directory_symlink(outside, root / "folder");
  ASSERT_EQ(mkfifo((root / "pipe.tsn").c_str(), 0600), 0);
  expectRefused(modelFile("dangling"), "FailToOpenFile", "dangling.tsn");
  expectRefused(modelFile("device"), "FailToOpenFile", "device.tsn");
  expectRefused(modelFile("pipe"), "FailToOpenFile", "pipe.tsn");
  expectRefused(modelFile("link"), "CodeGenExistingFile", "link.tsn");
  expectRefused(directory(u"dangling", {modelFile("a")}), "FailToOpenFile", "dangling");
  expectRefused(directory(u"folder", {modelFile("a")}), "CodeGenExistingDir", "folder");

  root = outside;
  EXPECT_EQ(contents(), (std::map<std::string, std::string>{{"kept", "kept"}}));
  root = outside.parent_path();
}

TEST_F(FilePrinter, WritersAtTheSameTimeDoNotOverwrite) {
  constexpr int rounds = 100;
  for (int round = 0; round < rounds; ++round) {
    const std::string name = "m" + std::to_string(round);
    const Entity entities[] = {modelFile(name, {import("a")}), modelFile(name, {import("b")})};
    bool isWritten[] = {false, false};
    std::barrier start(2);
    const auto write = [&](std::size_t i) {
      start.arrive_and_wait();
      try {
        print(entities[i]);
        isWritten[i] = true;
      } catch (const nvf::MessageException& error) {
        EXPECT_EQ(error.id().id, "CodeGenExistingFile");
      }
    };
    std::thread other(write, 1);
    write(0);
    other.join();
    ASSERT_NE(isWritten[0], isWritten[1]);
    std::ifstream file(root / (name + ".tsn"), std::ios::binary);
    ASSERT_EQ(std::string(std::istreambuf_iterator<char>(file), {}),
              nvf::ustring_to_local_encoded_string(entities[isWritten[0] ? 0 : 1]->string(0, 2)));
  }
  EXPECT_EQ(contents().size(), std::size_t{rounds}) << "and nothing else is left";
}

/// As long as it lives, a file of the process cannot be longer: what a full disk is like.
class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &former_);
    const rlimit limit{bytes, former_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &former_);
    std::signal(SIGXFSZ, handler_);
  }

private:
  rlimit former_{};
  void (*handler_)(int);
};

TEST_F(FilePrinter, LeavesNoHalfFileOnAFullDisk) {
  const Entity large = modelFile("m", std::vector<ImportStmt>(1000, import("a")));
  std::string id;
  {
    const FileSizeLimit limit(100);
    try {
      print(large);
    } catch (const nvf::MessageException& error) {
      id = error.id().id;
    }
  }
  EXPECT_EQ(id, "FailToOpenFile");
  EXPECT_TRUE(contents().empty());
  print(large);
  EXPECT_EQ(contents().size(), 1U);
}

TEST_F(FilePrinter, FilesHaveThePermissionsOfNewFiles) {
  print(modelFile("m"));
  std::ofstream(root / "other") << "";
  EXPECT_EQ(status(root / "m.tsn").permissions(), status(root / "other").permissions());
}

} // namespace
