#include "tessarin/foundation/shared_block.hpp"

#include <cstdint>

namespace nvf {

namespace {

/// The blocks of this thread that are dead and not yet destroyed.
struct DeadBlocks {
  SharedBlock* first = nullptr;
  bool atWork = false;
};
// The initial-exec model reads it without a call. A library that is loaded later takes such variables from a small
// reserve that the system keeps for them; two words are welcome there.
[[gnu::tls_model("initial-exec")]] constinit thread_local DeadBlocks dead;

} // namespace

SharedBlock::~SharedBlock() = default;

void SharedBlock::destroy(SharedBlock* block) noexcept {
  block->hash_.store(reinterpret_cast<std::uintptr_t>(dead.first), std::memory_order_relaxed);
  dead.first = block;
  if (dead.atWork) return;
  dead.atWork = true;
  while (dead.first != nullptr) {
    SharedBlock* next = dead.first;
    dead.first = reinterpret_cast<SharedBlock*>(next->hash_.load(std::memory_order_relaxed));
    delete next;
  }
  dead.atWork = false;
}

} // namespace nvf
