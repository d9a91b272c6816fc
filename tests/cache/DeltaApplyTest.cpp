#include "cache/DeltaApply.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

using namespace postblend;

namespace {

// The arithmetic as written, one word at a time.
void reference(const lut3d_info& base, lut3d_info& target, const int32_t* d, uint32_t w) {
  for (uint32_t i = 0; i < kLut3dEntries; ++i)
    for (int c = 0; c < 3; ++c) {
      int32_t p = static_cast<int32_t>(static_cast<uint32_t>(d[c * kLut3dEntries + i]) * w);
      target.entries[i].out[c] = base.entries[i].out[c] + static_cast<uint32_t>(p >> 12);
    }
}

TEST(DeltaApply, MatchesTheWordByWordArithmeticAndLeavesInputsAlone) {
  std::mt19937 rng(7);
  auto base = std::make_unique<lut3d_info>();
  auto fast = std::make_unique<lut3d_info>();
  auto slow = std::make_unique<lut3d_info>();
  uint32_t* words[] = {&base->flags, &fast->flags};
  for (uint32_t* w : words)
    for (size_t k = 0; k < sizeof(lut3d_info) / 4; ++k) w[k] = rng();
  std::vector<int32_t> deltas(3 * kLut3dEntries);
  for (auto& d : deltas) d = static_cast<int32_t>(rng());
  for (uint32_t w : {0u, 1u, 2048u, 4096u, 4097u, 0xFFFFFFFFu}) {
    std::memcpy(slow.get(), fast.get(), sizeof(lut3d_info));
    reference(*base, *slow, deltas.data(), w);
    applyDeltaQ12(*base, *fast, deltas.data(), w);
    ASSERT_EQ(std::memcmp(fast.get(), slow.get(), sizeof(lut3d_info)), 0) << "w " << w;
  }
}

}  // namespace
