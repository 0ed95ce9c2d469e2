// What names mean: golden listings of small files, counts over whole libraries, and what hostile text costs.
#include "tessarin/ide/Names.hpp"
#include "tessarin/ide/Stages.hpp"

#include "support/golden.hpp"
#include "support/parsing.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace tessarin::ide {

namespace {

Names namesIn(const std::string& text, const std::string& fileName) {
  return namesOf(buildFile(test::bufferOf(text, fileName)));
}

std::string placeText(const PlacedName& name) {
  return std::to_string(name.begin.line() + 1) + ':' + std::to_string(name.begin.column() + 1);
}
std::string nameText(const PlacedName& name) {
  return nvf::narrow(name.name.view());
}

std::string listing(const Names& names) {
  std::string out;
  for (const Declaration& declaration : names.declarations) {
    out +=
        placeText(declaration) + " declares " + nameText(declaration) + ", " + std::string(wordFor(declaration.kind));
    if (&names.declarations[declaration.first] != &declaration) {
      out += ", again after " + placeText(names.declarations[declaration.first]);
    }
    if (declaration.type != noIndex) out += ", of " + placeText(names.references[declaration.type]);
    out += '\n';
  }
  for (const Reference& reference : names.references) {
    out += placeText(reference) + ' ' + std::string(wordFor(reference.role)) + ' ';
    if (reference.parent != noIndex) out += placeText(names.references[reference.parent]) + '.';
    out += nameText(reference);
    if (!reference.isLastStep) out += '.';
    out += reference.target == noIndex ? "? " + std::string(wordFor(reference.reason))
                                       : " -> " + placeText(names.declarations[reference.target]);
    out += '\n';
  }
  if (!names.isComplete) out += "not complete\n";
  return out;
}

/// Counts, and the names that are open, by reason.
std::string summary(const Names& names) {
  std::map<std::string, std::set<std::string>> open;
  std::size_t known = 0;
  for (const Reference& reference : names.references) {
    if (reference.target != noIndex) {
      ++known;
      continue;
    }
    // A path is shown as a whole, at its last step.
    if (!reference.isLastStep) continue;
    std::string path = nameText(reference);
    const Reference* first = &reference;
    for (; first->parent != noIndex; path = nameText(*first) + '.' + path) first = &names.references[first->parent];
    open[std::string(wordFor(reference.reason))].insert(path);
  }
  std::string out = std::to_string(names.declarations.size()) + " declarations, " + std::to_string(known) + " of " +
                    std::to_string(names.references.size()) + " references lead to them\n";
  for (const auto& [reason, paths] : open) {
    out += reason + ':';
    for (const std::string& path : paths) out += ' ' + path;
    out += '\n';
  }
  return out;
}

TEST(Names, OfSmallFiles) {
  test::GoldenFile(TESSARIN_TEST_DATA "/names/files.txt").check([](const test::GoldenCase& c) {
    return listing(namesIn(c.source, "m.tsn"));
  });
}

TEST(Names, OfTheModelsThatAreHere) {
  const std::filesystem::path root = TESSARIN_TEST_DATA "/../..";
  std::set<std::string> files;
  for (const char* folder : {"examples", "tests/data/models"}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
      // A file of statements declares nothing that others could name.
      if (entry.path().extension() == ".tsn" && entry.path().stem() != "schedule") {
        files.insert(std::filesystem::relative(entry.path(), root).generic_string());
      }
    }
  }
  test::GoldenFile golden(TESSARIN_TEST_DATA "/names/models.txt");
  std::set<std::string> cases;
  for (const test::GoldenCase& c : golden.cases()) cases.insert(c.title);
  EXPECT_EQ(cases, files);
  golden.check([&root](const test::GoldenCase& c) {
    std::ifstream file(root / c.title);
    std::stringstream text;
    text << file.rdbuf();
    return summary(namesIn(text.str(), std::filesystem::path(c.title).filename().string()));
  });
}

TEST(Names, AreFoundByPlaceAndByScope) {
  const Names names = namesIn("component m\n"
                              "  parameters\n"
                              "    R = 1;\n"
                              "  end\n"
                              "  equations\n"
                              "    let R = 2 in R == 1 end\n"
                              "  end\n"
                              "end\n"
                              "function y = f(x)\n"
                              "  definitions\n"
                              "    y = x;\n"
                              "  end\n"
                              "end\n",
                              "m.tsn");
  const Index use = names.referenceAt({5, 17});
  ASSERT_NE(use, noIndex);
  const Reference& inner = names.references[use];
  EXPECT_EQ(names.declarations[inner.target].begin, nvf::LineColumn(5, 8));
  EXPECT_EQ(names.lookup(inner.name, inner.scope), inner.target);
  EXPECT_EQ(names.referenceAt({5, 18}), use) << "right behind the name";
  EXPECT_EQ(names.referenceAt({5, 19}), noIndex);

  const Index outer = names.declarationAt({2, 4});
  ASSERT_NE(outer, noIndex);
  EXPECT_EQ(names.lookup(inner.name, names.model), outer);
  const Reference& x = names.references[names.referenceAt({10, 8})];
  EXPECT_EQ(names.lookup(inner.name, x.scope), noIndex) << "a function sees nothing of the model";
  EXPECT_NE(names.lookup(x.name, x.scope), noIndex);
}

std::string repeated(std::size_t count, const std::function<std::string(std::size_t)>& piece) {
  std::string out;
  for (std::size_t i = 0; i < count; ++i) out += piece(i);
  return out;
}

TEST(Names, DeepAndLargeFilesOnASmallStack) {
  test::onSmallStack([] {
    // `let` in `let`, each hiding the name of the one around.
    const std::size_t depth = 1000;
    const std::string lets = repeated(depth, [](std::size_t) { return "let x = x in "; });
    const std::string ends = repeated(depth, [](std::size_t) { return " end"; });
    const Names nested = namesIn("component m\nequations\n" + lets + "x == 1" + ends + "\nend\nend\n", "m.tsn");
    const Reference& innermost = nested.references.back();
    EXPECT_EQ(nested.declarations[innermost.target].scope, innermost.scope);
    EXPECT_EQ(nested.scopes.size(), depth + 2);

    // Sections in sections, whose members are all members of the model.
    const std::string sections = repeated(depth, [](std::size_t) { return "if 1\n"; });
    const std::string sectionEnds = repeated(depth, [](std::size_t) { return "end\n"; });
    const Names members = namesIn("component m\nequations\np == 1;\nend\n" + sections + "parameters\np = 1;\nend\n" +
                                      sectionEnds + "end\n",
                                  "m.tsn");
    EXPECT_NE(members.references.front().target, noIndex);

    // A sum of many names and a path of many steps.
    const Names wide = namesIn("component m\nequations\n" +
                                   repeated(20000, [](std::size_t i) { return "n" + std::to_string(i) + " + a.b."; }) +
                                   "c == 0;\nend\nend\n",
                               "m.tsn");
    EXPECT_EQ(wide.references.size(), 20000U + 40001U);
  });
}

} // namespace

} // namespace tessarin::ide
