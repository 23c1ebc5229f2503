#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "framework/NodePool.h"
#include "tests/vexalink_agent_scheduler/shortcuts/RandomInput.h"

namespace {

// Blocks that are out, each filled with a byte of its own until it goes back.
class Blocks {
 public:
  explicit Blocks(std::size_t size) : size_(size), pool_(size) {}
  ~Blocks() {
    for (const Block& block : out_) pool_.Return(block.memory);
  }
  std::size_t Count() const { return out_.size(); }

  void Take(unsigned char fill) {
    auto* const memory = static_cast<unsigned char*>(pool_.Take());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(void*), 0U);
    std::memset(memory, fill, size_);
    out_.push_back({memory, fill});
  }
  // Whether the block still holds what was written.
  bool Return(std::size_t index) {
    const Block block = out_[index];
    const bool whole = std::all_of(block.memory, block.memory + size_,
                                   [&](unsigned char byte) { return byte == block.fill; });
    out_[index] = out_.back();
    out_.pop_back();
    pool_.Return(block.memory);
    return whole;
  }
  bool AreApart() const {
    std::vector<unsigned char*> begins;
    for (const Block& block : out_) begins.push_back(block.memory);
    std::sort(begins.begin(), begins.end());
    for (std::size_t i = 1; i < begins.size(); ++i) {
      if (begins[i - 1] + size_ > begins[i]) return false;
    }
    return true;
  }

 private:
  struct Block {
    unsigned char* memory;
    unsigned char fill;
  };
  std::size_t size_;
  vx::NodePool pool_;
  std::vector<Block> out_;
};

}  // namespace

TEST(NodePool, GivesBlocksThatLieApartAndKeepWhatIsWritten) {
  Random random(31);
  for (const std::size_t size : {8U, 16U, 104U, 4096U, 600000U}) {
    SCOPED_TRACE(size);
    const long long most = size > 100000 ? 20 : size > 1000 ? 2000 : 50000;
    Blocks blocks(size);
    for (int wave = 0; wave < 12; ++wave) {
      const auto goal = static_cast<std::size_t>(random.OneIn(4) ? 0 : random.Between(0, most));
      while (blocks.Count() != goal) {
        const bool grow = random.OneIn(5) ? blocks.Count() == 0 : blocks.Count() < goal;
        if (grow) {
          blocks.Take(static_cast<unsigned char>(random.Between(0, 255)));
          continue;
        }
        const auto last = static_cast<long long>(blocks.Count()) - 1;
        ASSERT_TRUE(blocks.Return(static_cast<std::size_t>(random.Between(0, last))));
      }
      ASSERT_TRUE(blocks.AreApart());
    }
  }
}
