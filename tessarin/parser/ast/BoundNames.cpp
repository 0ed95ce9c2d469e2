#include "tessarin/parser/ast/BoundNames.hpp"

#include <cstdint>

namespace tessarin::compiler::core {

namespace {

std::uintptr_t keyOf(const nvf::CxId& name) noexcept {
  return reinterpret_cast<std::uintptr_t>(name.view().data());
}

} // namespace

/// A leaf, whose `bit` is 0, has a key and its place. A branch parts its keys by one bit; they agree in the bits below,
/// which are those of its own key.
struct BoundNames::Node final : nvf::SharedBlock {
  std::uintptr_t key;
  std::uintptr_t bit = 0;
  Place place{};
  NodePtr zero;
  NodePtr one;

  Node(std::uintptr_t k, const Place& p) noexcept : key(k), place(p) {}
  Node(std::uintptr_t k, std::uintptr_t b, NodePtr z, NodePtr o) noexcept
      : key(k), bit(b), zero(std::move(z)), one(std::move(o)) {}

  [[nodiscard]] bool agrees(std::uintptr_t other) const noexcept { return (other & (bit - 1)) == key; }
};

const BoundNames::Place* BoundNames::find(const nvf::CxId& name) const noexcept {
  const std::uintptr_t key = keyOf(name);
  const NodePtr* tree = &root_;
  while (*tree && (*tree)->bit != 0) tree = (key & (*tree)->bit) == 0 ? &(*tree)->zero : &(*tree)->one;
  return *tree && (*tree)->key == key ? &(*tree)->place : nullptr;
}

void BoundNames::bind(const nvf::CxId& name, const Place& place) {
  root_ = insert(root_, NodePtr(new Node(keyOf(name), place)));
}

/// Two trees whose keys differ below the bits that part either of them.
BoundNames::NodePtr BoundNames::join(const NodePtr& a, const NodePtr& b) {
  const std::uintptr_t difference = a->key ^ b->key;
  const std::uintptr_t bit = difference & (~difference + 1);
  const bool aIsZero = (a->key & bit) == 0;
  return NodePtr(new Node(a->key & (bit - 1), bit, aIsZero ? a : b, aIsZero ? b : a));
}

BoundNames::NodePtr BoundNames::insert(const NodePtr& tree, const NodePtr& leaf) {
  if (!tree) return leaf;
  if (tree->bit == 0) return tree->key == leaf->key ? leaf : join(tree, leaf);
  if (!tree->agrees(leaf->key)) return join(tree, leaf);
  const bool isZero = (leaf->key & tree->bit) == 0;
  return NodePtr(new Node(tree->key, tree->bit, isZero ? insert(tree->zero, leaf) : tree->zero,
                          isZero ? tree->one : insert(tree->one, leaf)));
}

} // namespace tessarin::compiler::core
