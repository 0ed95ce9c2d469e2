// The way between the flat tree and the public one. Private to the library.
#pragma once

#include "tessarin/parser/parse/FlatTree.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <memory>

namespace tessarin::compiler::core {

/// A public tree of which only the root is there so far: the rest is made when somebody looks at its children.
///
/// Used by any number of threads at once.
ParseTree fold(std::shared_ptr<const FlatTree> tree, NodeRef root);

/// The subtree as a public tree of its own, which keeps nothing of the rest.
ParseTree detach(NodeView subtree);

/// A public tree as the builder reads it. One that the parser has made and nobody has changed is there already; any
/// other is copied. Lives on its own.
class Flattened {
public:
  explicit Flattened(const ParseTree& tree);
  [[nodiscard]] NodeView root() const noexcept { return {*tree_, root_}; }

private:
  std::shared_ptr<const FlatTree> tree_;
  NodeRef root_;
};

} // namespace tessarin::compiler::core
