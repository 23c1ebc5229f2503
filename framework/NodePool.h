#pragma once

#include <cstddef>

namespace vx {

/// Memory for the nodes of XML trees, which come and go by the million: blocks of one size from
/// slabs that go back to the system as soon as they are empty (but for one), so that a large state
/// leaves nothing behind when its tree is gone. From one thread only.
///
/// Each slab is aligned to its size, so that a block finds its slab by its address; free blocks of
/// a slab are chained through themselves.
class NodePool {
 public:
  /// Blocks of `blockSize` bytes, aligned for pointers.
  explicit NodePool(std::size_t blockSize);
  NodePool(const NodePool&) = delete;
  NodePool& operator=(const NodePool&) = delete;

  /// A block. Throws std::bad_alloc where the system has no memory left.
  void* Take();
  /// Gives a block back that `Take` gave.
  void Return(void* block);

 private:
  struct Slab;
  struct FreeBlock {
    FreeBlock* next;
  };

  Slab* MakeSlab();
  void Link(Slab* slab);
  void Unlink(Slab* slab);

  std::size_t blockSize_;
  std::size_t blocksInSlab_;
  std::size_t slabs_ = 0;
  Slab* open_ = nullptr;   // slabs that have free blocks
  Slab* spare_ = nullptr;  // an empty one, kept for the next tree; it is among the open ones
};

}  // namespace vx
