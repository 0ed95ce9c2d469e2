// What names mean across files: through packages, imports, bases and members, over texts in memory and over the
// examples.
#include "tessarin/ide/Library.hpp"

#include "support/golden.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tessarin::ide {

namespace {

namespace fs = std::filesystem;

/// `path:line:column kind`, a directory, or the reason.
std::string textOf(Library& library, const Meaning& meaning) {
  if (meaning.kind == Meaning::Kind::Unknown) return "? " + std::string(wordFor(meaning.reason));
  if (meaning.kind == Meaning::Kind::Package) return meaning.path.generic_string() + "/";
  const Declaration& declaration = library.names(meaning.path)->declarations[meaning.declaration];
  return meaning.path.generic_string() + ':' + std::to_string(declaration.begin.line() + 1) + ':' +
         std::to_string(declaration.begin.column() + 1) + ' ' + std::string(wordFor(declaration.kind));
}

class LibraryTest : public ::testing::Test {
protected:
  LibraryTest() : reader(std::make_shared<MemoryReader>()), library(Roots({"lib"}), reader) {}

  void file(const std::string& path, nvf::ustring_view text) { reader->set(path, text); }
  /// What the name at a place means, the place from 1.
  std::string at(const std::string& path, unsigned long line, unsigned long column) {
    const Names* names = library.names(path);
    if (names == nullptr) return "no names";
    const Index reference = names->referenceAt({line - 1, column - 1});
    return reference == noIndex ? "nothing" : textOf(library, library.meanings(path)[reference]);
  }

  std::shared_ptr<MemoryReader> reader;
  Library library;
};

TEST_F(LibraryTest, PackagesBasesImportsAndMembers) {
  file("lib/e/port.tsn", u"domain port\n  variables\n    v = 0;\n  end\nend\n");
  file("lib/e/two.tsn", u"component two\n  nodes\n    p = e.port;\n  end\n  variables\n    i = 0;\n  end\nend\n");
  file("lib/e/r.tsn", u"component r < e.two\n  parameters\n    R = 1;\n  end\nend\n");
  file("lib/f.tsn", u"function y = f(x)\n  definitions\n    y = x;\n  end\nend\n");
  file("lib/c.tsn", u"import e.*;\n"
                    u"import e.r;\n"
                    u"component c < e.r\n"
                    u"  components\n"
                    u"    s = r(R = R);\n"
                    u"    t = two;\n"
                    u"    z = far.away;\n"
                    u"  end\n"
                    u"  equations\n"
                    u"    s.p.v == i + t.none;\n"
                    u"    s.R.k == f(z.x) + e.q(nope);\n"
                    u"  end\n"
                    u"end\n");
  const std::string c = "lib/c.tsn";
  EXPECT_EQ(at(c, 1, 8), "lib/e/");
  EXPECT_EQ(at(c, 2, 10), "lib/e/r.tsn:1:11 component");
  EXPECT_EQ(at(c, 3, 17), "lib/e/r.tsn:1:11 component");
  EXPECT_EQ(at(c, 5, 9), "lib/e/r.tsn:1:11 component") << "imported by its name";
  EXPECT_EQ(at(c, 5, 11), "lib/e/r.tsn:3:5 parameter") << "an argument names a member of what is made";
  EXPECT_EQ(at(c, 5, 15), "lib/e/r.tsn:3:5 parameter") << "a value, inherited";
  EXPECT_EQ(at(c, 6, 9), "lib/e/two.tsn:1:11 component") << "imported with all names";
  EXPECT_EQ(at(c, 7, 9), "? it leads outside what is known");
  EXPECT_EQ(at(c, 10, 5), "lib/c.tsn:5:5 member component");
  EXPECT_EQ(at(c, 10, 7), "lib/e/two.tsn:3:5 node") << "through the base of the member's component";
  EXPECT_EQ(at(c, 10, 9), "lib/e/port.tsn:3:5 variable");
  EXPECT_EQ(at(c, 10, 14), "lib/e/two.tsn:6:5 variable") << "inherited over two steps";
  EXPECT_EQ(at(c, 10, 20), "? what it belongs to is known and has no such member");
  EXPECT_EQ(at(c, 11, 9), "? it belongs to a value, which may be a structure");
  EXPECT_EQ(at(c, 11, 14), "lib/f.tsn:1:14 function");
  EXPECT_EQ(at(c, 11, 18), "? it belongs to something that is not known");
  EXPECT_EQ(at(c, 11, 25), "? what it belongs to is known and has no such member");
  EXPECT_EQ(at(c, 11, 27), "? nothing around declares it") << "all bases and imports are known";

  EXPECT_EQ(textOf(library, library.find(nvf::CxIdPath(std::string_view("c.s.p.v")))), "lib/e/port.tsn:3:5 variable");
}

TEST_F(LibraryTest, WhatIsNotKnownIsLeftOpen) {
  file("lib/a.tsn", u"component a < b\n  equations\n    x == 1;\n  end\nend\n");
  file("lib/b.tsn", u"component b < a\nend\n");
  file("lib/c.tsn", u"component c < d\n  equations\n    x == 1;\n  end\nend\n");
  file("lib/d.tsn", u"component d < out.side\nend\n");
  file("lib/g.tsn", u"import out.*;\ncomponent g < h\n  equations\n    x == 1;\n  end\nend\n");
  file("lib/h.tsn", u"component h\n  parameters\n");
  EXPECT_EQ(at("lib/a.tsn", 3, 5), "? the bases lead in a circle");
  EXPECT_EQ(at("lib/c.tsn", 3, 5), "? a base, which is not known, may declare it");
  EXPECT_EQ(at("lib/g.tsn", 2, 15), "? the file that it leads to has a fault");
  EXPECT_EQ(at("lib/g.tsn", 4, 5), "? a base, which is not known, may declare it");
  EXPECT_EQ(at("lib/h.tsn", 1, 1), "no names");

  // A buffer takes the place of the file, and what was known of the file is forgotten.
  file("lib/h.tsn", u"component h\n  parameters\n    x = 1;\n  end\nend\n");
  library.forget();
  EXPECT_EQ(at("lib/g.tsn", 4, 5), "lib/h.tsn:3:5 parameter");
  reader->reset("lib/h.tsn");
  library.forget();
  EXPECT_EQ(at("lib/g.tsn", 2, 15), "? an import of all names, which is not known, may bring it");
}

TEST(Roots, NamesAndMarks) {
  auto reader = std::make_shared<MemoryReader>();
  reader->set("/l/a/.tessarin.json", u"");
  reader->set("/l/a/b/c.tsn", u"");
  EXPECT_EQ(findRoot("/l/a/b/c.tsn", *reader), fs::path("/l/a"));
  EXPECT_EQ(findRoot("/l/x/c.tsn", *reader), std::nullopt);
  EXPECT_TRUE(reader->isDirectory("/l/a/b"));
  EXPECT_TRUE(reader->isDirectory("/l/a/b/"));
  EXPECT_FALSE(reader->isDirectory("/l/a/b/c"));
  EXPECT_FALSE(reader->isDirectory("/l/a/b/c.tsn"));

  const Roots roots({"/l/a"});
  const auto name = [&](const char* path) {
    const auto found = roots.nameOf(path);
    return found ? nvf::narrow(found->string()) : "none";
  };
  EXPECT_EQ(name("/l/a/b/c.tsn"), "b.c");
  EXPECT_EQ(name("/l/a/./b/../c.tsn"), "c");
  for (const char* path : {"/l/c.tsn", "/l/a/b/c.txt", "/l/a/b-c/d.tsn", "/l/a/1.tsn", "/l/a"}) {
    EXPECT_EQ(name(path), "none") << path;
  }
}

/// Every reference of the examples leads somewhere, or is listed with the reason why not.
TEST(Library, OfTheExamples) {
  const fs::path root = fs::path(TESSARIN_TEST_DATA "/../../examples/library").lexically_normal();
  Library library(Roots({root}), std::make_shared<DiskReader>());
  std::set<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.path().extension() == ".tsn") files.insert(entry.path().lexically_relative(root).generic_string());
  }
  test::GoldenFile golden(TESSARIN_TEST_DATA "/names/library.txt");
  std::set<std::string> cases;
  for (const test::GoldenCase& c : golden.cases()) cases.insert(c.title);
  EXPECT_EQ(cases, files);
  golden.check([&](const test::GoldenCase& c) {
    const fs::path path = root / c.title;
    const Names* names = library.names(path);
    const std::vector<Meaning>& meanings = library.meanings(path);
    std::size_t known = 0;
    std::map<std::string, std::set<std::string>> open;
    for (std::size_t i = 0; i < meanings.size(); ++i) {
      if (meanings[i].kind != Meaning::Kind::Unknown) {
        ++known;
      } else {
        open[std::string(wordFor(meanings[i].reason))].insert(nvf::narrow(names->references[i].name.view()));
      }
    }
    std::string out = std::to_string(known) + " of " + std::to_string(meanings.size()) + " references are known\n";
    for (const auto& [reason, found] : open) {
      out += reason + ':';
      for (const std::string& name : found) out += ' ' + name;
      out += '\n';
    }
    return out;
  });
}

} // namespace

} // namespace tessarin::ide
