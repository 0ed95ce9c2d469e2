#include "tessarin/parser/parse/NodePool.hpp"

#include <algorithm>
#include <new>

namespace tessarin::compiler::core {

void NodePool::nextChunk() {
  const std::size_t size = std::clamp(2 * size_, smallestChunk, largestChunk);
  void* memory = ::operator new(size * sizeof(Word));
  close();
  chunk_ = ::new (memory) Chunk{nvf::OwnerCount(open)};
  size_ = size;
  used_ = 1;
  taken_ = 0;
}

void NodePool::close() noexcept {
  if (chunk_ != nullptr && chunk_->live.subtract(open - taken_) == 0) ::operator delete(chunk_);
  chunk_ = nullptr;
  used_ = size_;
}

} // namespace tessarin::compiler::core
