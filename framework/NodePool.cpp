#include "framework/NodePool.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace vx {
namespace {

constexpr std::size_t kSlabSize = 2 * 1024 * 1024;  // a power of two, and of a huge page

// Memory of a slab's size, aligned to it: twice as much is mapped, and what is too much goes back.
void* MapAligned() {
  void* const mapped =
      mmap(nullptr, 2 * kSlabSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  char* const begin = static_cast<char*>(mapped);
  const std::size_t past = reinterpret_cast<std::uintptr_t>(mapped) % kSlabSize;
  const std::size_t before = past == 0 ? 0 : kSlabSize - past;
  if (before != 0) munmap(begin, before);
  munmap(begin + before + kSlabSize, kSlabSize - before);
  return begin + before;
}

}  // namespace

struct NodePool::Slab {
  Slab* previous = nullptr;
  Slab* next = nullptr;
  FreeBlock* free = nullptr;
  std::size_t used = 0;
  std::size_t touched = 0;  // blocks handed out at least once; those beyond have never been written
  bool isOpen = false;

  char* Block(std::size_t index, std::size_t blockSize) {
    return reinterpret_cast<char*>(this) + sizeof(Slab) + index * blockSize;
  }
};

NodePool::NodePool(std::size_t blockSize)
    : blockSize_(std::max(blockSize, sizeof(FreeBlock))),
      blocksInSlab_((kSlabSize - sizeof(Slab)) / blockSize_) {}

NodePool::Slab* NodePool::MakeSlab() {
  void* const memory = MapAligned();
  // The first grows page by page; where one is not enough, whole huge pages spare the many faults.
  if (slabs_++ != 0) madvise(memory, kSlabSize, MADV_HUGEPAGE);
  Slab* const slab = new (memory) Slab;
  Link(slab);
  return slab;
}

void NodePool::Link(Slab* slab) {
  slab->isOpen = true;
  slab->previous = nullptr;
  slab->next = open_;
  if (open_ != nullptr) open_->previous = slab;
  open_ = slab;
}

void NodePool::Unlink(Slab* slab) {
  slab->isOpen = false;
  (slab->previous != nullptr ? slab->previous->next : open_) = slab->next;
  if (slab->next != nullptr) slab->next->previous = slab->previous;
}

void* NodePool::Take() {
  Slab* const slab = open_ != nullptr ? open_ : MakeSlab();
  if (slab == spare_) spare_ = nullptr;
  void* block = slab->free;
  if (block != nullptr) {
    slab->free = slab->free->next;
  } else {
    block = slab->Block(slab->touched++, blockSize_);
  }
  if (++slab->used == blocksInSlab_) Unlink(slab);
  return block;
}

void NodePool::Return(void* block) {
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  auto* const slab = reinterpret_cast<Slab*>(address - address % kSlabSize);
  slab->free = new (block) FreeBlock{slab->free};
  --slab->used;
  if (!slab->isOpen) Link(slab);
  if (slab->used != 0) return;
  if (spare_ == nullptr) {
    spare_ = slab;
    return;
  }
  Unlink(slab);
  munmap(slab, kSlabSize);
  --slabs_;
}

}  // namespace vx
