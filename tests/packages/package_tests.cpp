#include "packages/entities.hpp"
#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

TEST(Packages, PrintedForm) {
  // Local functions stand in the order of their names, whatever the map's own order is.
  const Entity model = modelFile("m", {import("a.b"), import("c", true)}, {"g", "f", "k"});
  const auto text = [](std::u16string_view name) {
    return u"  function [ y ] = " + std::u16string(name) +
           u"( )\n    definitions \n        y = 1\n    end \n  end \n\n";
  };
  EXPECT_EQ(model->string(2, 2), u"  % m.tsn\n"
                                 u"  import a.b;\n"
                                 u"  import c.*;\n"
                                 u"  component m\n"
                                 u"  end \n"
                                 u"\n" +
                                     text(u"f") + text(u"g") + text(u"k"));
  const Entity file = functionFile("f", {import("a")}, {"b"});
  EXPECT_EQ(file->string(2, 2), u"  % f.tsn\n  import a;\n" + text(u"f") + text(u"b"));
  EXPECT_EQ(directory(u"p", {directory(u"q q", {}), modelFile("m")})->string(1, 2), u" p\n"
                                                                                    u"\n"
                                                                                    u"   q q\n"
                                                                                    u"\n"
                                                                                    u"\n"
                                                                                    u"   % m.tsn\n"
                                                                                    u"   component m\n"
                                                                                    u"   end \n"
                                                                                    u"\n"
                                                                                    u"\n");
  std::ostringstream stream;
  stream << *directory(u"\u20ac", {});
  EXPECT_EQ(stream.str(), "\xe2\x82\xac\n\n");
}

TEST(Packages, Equivalence) {
  // Each differs from all others in one thing.
  const auto all = [] {
    return std::vector<Entity>{
        directory(u"p", {}),
        directory(u"q", {}),
        directory(u"p", {modelFile("m")}),
        directory(u"p", {modelFile("m"), modelFile("n")}),
        directory(u"p", {modelFile("n"), modelFile("m")}),
        directory(u"p", {directory(u"m.tsn", {})}),
        modelFile("f"),
        modelFile("g"),
        modelFile("f", {import("a")}),
        modelFile("f", {}, {"a", "b"}),
        modelFile("f", {}, {"a", "c"}),
        functionFile("f"),
        functionFile("g"),
        functionFile("f", {import("a")}),
        functionFile("f", {}, {"a", "b"}),
        functionFile("f", {}, {"a", "c"}),
    };
  };
  const std::vector<Entity> a = all();
  const std::vector<Entity> b = all();
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) {
      EXPECT_EQ(a[i]->isEquivalent(*b[j]), i == j) << i << " and " << j;
    }
  }
}

TEST(Packages, NestedDirectoriesNeedNoStack) {
  constexpr std::size_t depth = 10'000;
  onSmallStack([] {
    const auto nested = [] {
      Entity entity = modelFile("m");
      for (std::size_t i = 0; i < depth; ++i) entity = directory(u"d", {entity, functionFile("f")});
      return entity;
    };
    const Entity a = nested();
    const Entity b = nested();
    EXPECT_TRUE(a->isEquivalent(*b));
    EXPECT_EQ(a->string(0, 0), b->string(0, 0));
    // A directory that somebody else still holds keeps what it has.
    Entity inner = static_cast<const Directory&>(*a).entities().front();
    const Entity copy = std::make_shared<Directory>(static_cast<const Directory&>(*inner));
    inner.reset();
    EXPECT_TRUE(copy->isEquivalent(*static_cast<const Directory&>(*b).entities().front()));
  });
}

TEST(Packages, DyingDirectoriesLeaveSharedOnesAlone) {
  const Entity shared = directory(u"s", {modelFile("m")});
  directory(u"p", {directory(u"q", {shared}), shared});
  EXPECT_EQ(static_cast<const Directory&>(*shared).numberEntities(), 1U);
}

} // namespace
