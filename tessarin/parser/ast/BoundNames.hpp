// Names that are bound to places, in versions that share what they have in common.
#pragma once

#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/shared_block.hpp"

#include <cstddef>

namespace tessarin::compiler::core {

/// A map from names to where they are bound. A copy is a pointer; binding a name in it leaves the other copies as they
/// are and costs a step for each doubling of their size, as looking a name up does. So each of many scopes inside each
/// other may keep a map of all names around it.
///
/// It is a binary trie over the addresses of the interned names: texts cannot be made to collide in it.
class BoundNames {
public:
  /// Where a name is bound.
  struct Place {
    std::size_t scope;       ///< Which scope binds it.
    std::size_t declaration; ///< The index of its declaration there.
  };

  /// Where the name is bound, or null. It lives as long as this version.
  [[nodiscard]] const Place* find(const nvf::CxId& name) const noexcept;
  /// Binds the name, whatever it was bound to.
  void bind(const nvf::CxId& name, const Place& place);

private:
  struct Node;
  using NodePtr = nvf::SharedPtr<Node>;
  static NodePtr join(const NodePtr& a, const NodePtr& b);
  static NodePtr insert(const NodePtr& tree, const NodePtr& leaf);

  NodePtr root_;
};

} // namespace tessarin::compiler::core
