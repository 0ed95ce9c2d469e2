// Immutable shared memory: a counted block, and the pointer that owns a share of one.
//
// Counts are atomic, so that owners on several threads may copy and release the same block. A block that dies on a
// thread while another one is being destroyed there waits in a list until that is done: trees of any depth and lists of
// any length are freed without recursion and without memory.
#pragma once

#include "tessarin/export.hpp"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace nvf {

/// A count that threads share. While the process has one thread only, where the system can tell, counting takes no
/// atomic operation, which would cost several times as much.
class OwnerCount {
public:
  /// With so many owners.
  explicit OwnerCount(std::uint32_t count) noexcept : count_(count) {}

  /// How many owners there are, which may have changed when the caller looks at it.
  [[nodiscard]] std::uint32_t value() const noexcept { return count_.load(std::memory_order_acquire); }
  /// One owner more.
  void increment() noexcept {
    if (isSingleThreaded()) {
      count_.store(count_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    } else {
      count_.fetch_add(1, std::memory_order_relaxed);
    }
  }
  /// The count that is left. Whoever is told 0 sees all that the other threads have written before they subtracted.
  std::uint32_t subtract(std::uint32_t n) noexcept {
    if (!isSingleThreaded()) return count_.fetch_sub(n, std::memory_order_acq_rel) - n;
    const std::uint32_t left = count_.load(std::memory_order_relaxed) - n;
    count_.store(left, std::memory_order_relaxed);
    return left;
  }

private:
  static bool isSingleThreaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
  }

  std::atomic<std::uint32_t> count_;
};

/// The head of a block: the number of its owners, 2^32 - 1 at the most, and the hash of its contents once that has been
/// asked for.
class TESSARIN_EXPORT SharedBlock { // NOLINT(cppcoreguidelines-virtual-class-destructor): only `destroy` deletes one
public:
  SharedBlock& operator=(const SharedBlock&) = delete;

  /// Takes and gives back a share; the last one given back destroys the block.
  /// @{
  void retain() noexcept { owners_.increment(); }
  void release() noexcept {
    if (owners_.subtract(1) == 0) destroy(this);
  }
  /// @}
  /// Whether the caller, who owns a share, is the only owner.
  [[nodiscard]] bool isUnique() const noexcept { return owners_.value() == 1; }

  /// The hash of the contents, 0 where it is not known. Threads that compute it at the same time store the same value.
  [[nodiscard]] std::size_t cachedHash() const noexcept { return hash_.load(std::memory_order_relaxed); }
  /// Remembers the hash; 0 forgets it.
  void cacheHash(std::size_t hash) const noexcept { hash_.store(hash, std::memory_order_relaxed); }

protected:
  SharedBlock() noexcept = default;
  /// A copy has one owner and the hash of the original.
  SharedBlock(const SharedBlock& other) noexcept : hash_(other.cachedHash()) {}
  virtual ~SharedBlock();

private:
  static void destroy(SharedBlock* block) noexcept;

  mutable std::atomic<std::size_t> hash_ = 0; // of a dead block: the address of the next one in the list
  OwnerCount owners_{1};                      // last, so that small members of derived classes fit in behind it
};

/// Owns a share of a block of type `Block`, which is derived from `SharedBlock` and may be incomplete until its members
/// are used. Empty after it has been moved from.
template <class Block>
class SharedPtr {
public:
  constexpr SharedPtr() noexcept = default;
  /// Takes the share that `new` gave to the caller.
  explicit SharedPtr(SharedBlock* block) noexcept : block_(block) {}
  /// Copies take a share, and moves hand it over.
  /// @{
  SharedPtr(const SharedPtr& other) noexcept : block_(other.block_) {
    if (block_ != nullptr) block_->retain();
  }
  SharedPtr(SharedPtr&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  SharedPtr& operator=(SharedPtr other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  /// @}
  ~SharedPtr() {
    if (block_ != nullptr) block_->release();
  }

  /// The block, which is read only here; whether there is one.
  /// @{
  [[nodiscard]] const Block& operator*() const noexcept { return *static_cast<const Block*>(block_); }
  [[nodiscard]] const Block* operator->() const noexcept { return static_cast<const Block*>(block_); }
  [[nodiscard]] explicit operator bool() const noexcept { return block_ != nullptr; }
  /// @}

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
