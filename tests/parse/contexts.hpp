// The golden files of the parser, and what their sources stand in.
#pragma once

#include "support/golden.hpp"
#include "support/parsing.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin::test {

/// The names of the golden files.
inline constexpr std::string_view goldenNames[] = {"eqn_expressions", "eqn_items",   "stmt_expressions", "statements",
                                                   "sections",        "modecharts",  "models",           "functions",
                                                   "faults_eqn",      "faults_stmt", "faults_file"};

inline GoldenFile goldenFile(std::string_view name) {
  return GoldenFile(std::string(TESSARIN_TEST_DATA "/parse/") + std::string(name) + ".txt");
}

/// What stands around a source, and where in the tree of the whole the trees to be shown are: the children of the node
/// at `path`, from the number `first` on.
struct Context {
  std::string_view name;
  std::string_view before;
  std::string_view after;
  std::vector<std::size_t> path;
  std::size_t first = 0;

  [[nodiscard]] std::string fileOf(std::string_view source) const {
    return std::string(before) + std::string(source) + std::string(after);
  }
};

inline const Context& contextOf(std::string_view name) {
  static const std::vector<Context> contexts{
      {"file", "", "", {}, 0},
      {"statements", "", "", {0}, 0},
      {"sections", "component c\n", "\nend\n", {1}, 4},
      {"equations", "component c\nequations\n", "\nend\nend\n", {1, 4, 2}, 0},
  };
  for (const Context& context : contexts) {
    if (context.name == name) return context;
  }
  throw std::runtime_error("no such context: " + std::string(name));
}

} // namespace tessarin::test
