// Walks over whole files: what `ast/Walk.hpp` offers for a node, for all that a file holds.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/Walk.hpp"

#include <algorithm>
#include <concepts>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace tessarin::compiler::core {

/// What a file holds: its imports in the order of the text, its model or function, and its local functions in order of
/// name. The nodes live as long as the file does at its place.
/// @{
[[nodiscard]] TESSARIN_EXPORT std::vector<AstNode> nodesOf(const ModelFile& file);
[[nodiscard]] TESSARIN_EXPORT std::vector<AstNode> nodesOf(const TSNFunctionFile& file);
[[nodiscard]] TESSARIN_EXPORT std::vector<AstNode> nodesOf(const std::variant<ModelFile, TSNFunctionFile>& file);
/// @}

/// A file of either sort.
template <class T>
concept IsFile = requires(const T& file) {
  { nodesOf(file) } -> std::same_as<std::vector<AstNode>>;
};

/// Walks over what a file holds, see `walk` of a node. `visitor` is a `NodeVisitor` or a function on nodes.
template <IsFile File, class Visitor>
requires(std::derived_from<std::remove_cvref_t<Visitor>, NodeVisitor> ||
         NodeFunction<Visitor>) bool walk(const File& file, Visitor&& visitor) {
  const std::vector<AstNode> nodes = nodesOf(file);
  return std::all_of(nodes.begin(), nodes.end(), [&visitor](AstNode node) { return walk(node, visitor); });
}

/// The nodes that enclose a place, see `find` of a node.
template <IsFile File>
[[nodiscard]] std::vector<AstNode> find(const File& file, const nvf::LineColumn& place) {
  for (const AstNode node : nodesOf(file)) {
    if (std::vector<AstNode> path = find(node, place); !path.empty()) return path;
  }
  return {};
}
/// Nodes of a file that is gone would be left.
template <IsFile File>
std::vector<AstNode> find(const File&& file, const nvf::LineColumn& place) = delete;

} // namespace tessarin::compiler::core
