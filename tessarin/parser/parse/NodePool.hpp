// Memory for the nodes of a parse tree. Private to the parser.
//
// A parser makes its nodes one after the other and most of them die together, so they come out of chunks: making one
// moves an offset, and a chunk goes away with the last node in it. Nodes outlive the pool, and may die on any thread.
#pragma once

#include "tessarin/foundation/sanitizer.hpp"
#include "tessarin/foundation/shared_block.hpp"

#include <cstddef>
#include <cstdint>

namespace tessarin::compiler::core {

/// Hands out memory to one thread at a time.
class NodePool {
public:
  /// Where a piece of memory lies in its chunk, in words from the start; 0 for memory that is of no chunk.
  using Slot = std::uint16_t;
  struct Piece {
    void* memory;
    Slot slot;
  };

  NodePool() noexcept = default;
  NodePool(const NodePool&) = delete;
  NodePool& operator=(const NodePool&) = delete;
  ~NodePool() { close(); }

  /// Memory for one node; without a pool, memory of its own.
  static Piece allocate(NodePool* pool, std::size_t bytes) {
    if (pool == nullptr || bytes > largestPiece) return {::operator new(bytes), 0};
    return pool->take((bytes + sizeof(Word) - 1) / sizeof(Word));
  }
  static void release(void* memory, Slot slot) noexcept {
    if (slot == 0) return ::operator delete(memory);
    auto* chunk = reinterpret_cast<Chunk*>(static_cast<Word*>(memory) - slot);
    if (chunk->live.subtract(1) == 0) ::operator delete(chunk);
  }

private:
  using Word = std::uint64_t;
  /// The head of a chunk.
  struct Chunk {
    nvf::OwnerCount live; // pieces in use; while the pool may take more, `open` above that less those already taken
  };
  static_assert(sizeof(Chunk) <= sizeof(Word));

#if TESSARIN_ADDRESS_SANITIZER
  static constexpr std::size_t largestPiece = 0; // each node apart, so that a use of a dead one is seen
#else
  static constexpr std::size_t largestPiece = 4096;
#endif
  static constexpr std::size_t smallestChunk = 1024; // in words
  static constexpr std::size_t largestChunk = 8192;
  static constexpr std::uint32_t open = 1U << 30U;
  static_assert(largestPiece / sizeof(Word) < smallestChunk, "a fresh chunk has room for any piece behind its head");

  Piece take(std::size_t words) {
    if (words > size_ - used_) nextChunk();
    const Piece piece{reinterpret_cast<Word*>(chunk_) + used_, static_cast<Slot>(used_)};
    used_ += words;
    ++taken_;
    return piece;
  }
  void nextChunk();
  void close() noexcept;

  Chunk* chunk_ = nullptr;
  std::size_t size_ = 0; // in words, as the next one
  std::size_t used_ = 0;
  std::uint32_t taken_ = 0;
};

} // namespace tessarin::compiler::core
