// What the root of a public tree holds whose inside has not been made yet. Private to the parse stage.
#pragma once

#include "tessarin/parser/parse/FlatTree.hpp"

#include <memory>
#include <mutex>
#include <utility>

namespace tessarin::compiler::core {

struct FoldedTree {
  FoldedTree(std::shared_ptr<const FlatTree> flatTree, NodeRef rootOfTree) noexcept
      : tree(std::move(flatTree)), root(rootOfTree) {}

  std::shared_ptr<const FlatTree> tree;
  NodeRef root;
  std::once_flag isUnfolded;
};

} // namespace tessarin::compiler::core
