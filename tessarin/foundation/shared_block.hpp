// Immutable shared memory: a counted block, and the pointer that owns a share of one.
//
// Counts are atomic, so that owners on several threads may copy and release the same block. A block that dies on a
// thread while another one is being destroyed there waits in a list until that is done: trees of any depth and lists of
// any length are freed without recursion and without memory.
#pragma once

#include "tessarin/export.hpp"

#include <atomic>
#include <cstddef>
#include <utility>

namespace nvf {

/// The head of a block: the number of its owners, and the hash of its contents once that has been asked for.
class TESSARIN_EXPORT SharedBlock {
public:
  SharedBlock& operator=(const SharedBlock&) = delete;

  void retain() noexcept { owners_.fetch_add(1, std::memory_order_relaxed); }
  void release() noexcept {
    if (owners_.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy(this);
  }
  /// Whether the caller, who owns a share, is the only owner.
  [[nodiscard]] bool isUnique() const noexcept { return owners_.load(std::memory_order_acquire) == 1; }

  /// The hash of the contents, 0 where it is not known. Threads that compute it at the same time store the same value.
  [[nodiscard]] std::size_t cachedHash() const noexcept { return hash_.load(std::memory_order_relaxed); }
  void cacheHash(std::size_t hash) const noexcept { hash_.store(hash, std::memory_order_relaxed); }

protected:
  SharedBlock() noexcept = default;
  /// A copy has one owner and the hash of the original.
  SharedBlock(const SharedBlock& other) noexcept : hash_(other.cachedHash()) {}
  virtual ~SharedBlock();

private:
  static void destroy(SharedBlock* block) noexcept;

  std::atomic<std::size_t> owners_ = 1;
  mutable std::atomic<std::size_t> hash_ = 0; // of a dead block: the address of the next one in the list
};

/// Owns a share of a block of type `Block`, which is derived from `SharedBlock` and may be incomplete until its members
/// are used. Empty after it has been moved from.
template <class Block>
class SharedPtr {
public:
  constexpr SharedPtr() noexcept = default;
  /// Takes the share that `new` gave to the caller.
  explicit SharedPtr(SharedBlock* block) noexcept : block_(block) {}
  SharedPtr(const SharedPtr& other) noexcept : block_(other.block_) {
    if (block_ != nullptr) block_->retain();
  }
  SharedPtr(SharedPtr&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  SharedPtr& operator=(SharedPtr other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  ~SharedPtr() {
    if (block_ != nullptr) block_->release();
  }

  [[nodiscard]] const Block& operator*() const noexcept { return *static_cast<const Block*>(block_); }
  [[nodiscard]] const Block* operator->() const noexcept { return static_cast<const Block*>(block_); }
  [[nodiscard]] explicit operator bool() const noexcept { return block_ != nullptr; }

  /// The block for changing it; the caller must be its only owner.
  [[nodiscard]] Block& exclusive() noexcept { return *static_cast<Block*>(block_); }
  /// The block for changing it: it is copied first where it has other owners.
  [[nodiscard]] Block& unshared() {
    if (!block_->isUnique()) *this = SharedPtr(new Block(**this));
    return exclusive();
  }

  friend bool operator==(const SharedPtr&, const SharedPtr&) noexcept = default;

private:
  SharedBlock* block_ = nullptr;
};

} // namespace nvf
