// How many frames are worked on at the same time, and how large a layer is made before the effect.
#include "cli/shots/ShotMemory.h"

#include <gtest/gtest.h>

#include "cli/base/Memory.h"
#include "cli/shots/Enlargement.h"

namespace vantorel::cli {
namespace {

constexpr unsigned kThreads = 40;
constexpr int kMost = 16;

// With frames whose layer takes that share of the memory that is free, and is all that they take.
int framesOfShare(double share, int frames = 100, unsigned threads = kThreads) {
  constexpr int kWidth = 1 << 14;
  const double row = pictureBytes({kWidth, 1}, host::Depth::Bits8);
  Shot shot;
  shot.options.threads = threads;
  shot.frames = {1, frames, 1};
  FrameHeads heads;
  heads.layer.size = {kWidth, static_cast<int>(availableMemory().value_or(0.0) * share / row)};
  return framesInFlight(shot, heads);
}

TEST(ShotMemory, FramesTakeHalfOfWhatIsFreeAndNoMoreThanThreads) {
  if (!availableMemory()) {
    GTEST_SKIP() << "the system does not say how much memory is free";
  }
  EXPECT_EQ(1, framesOfShare(0.7));
  EXPECT_EQ(1, framesOfShare(0.35));
  EXPECT_NEAR(5, framesOfShare(0.1), 2);  // other processes take and free memory too
  EXPECT_EQ(kMost, framesOfShare(1e-4));
  EXPECT_EQ(3, framesOfShare(1e-4, 3));
  EXPECT_EQ(2, framesOfShare(1e-4, 100, 2));
}

TEST(Enlargement, IsAsLargeAsMemoryAndTheLargestSideAllow) {
  constexpr host::Size kLayer{1000, 500};
  const auto limit = [&](int x, int y, double most_bytes) {
    const Enlargement limited_to = limited({x, y}, kLayer, host::Depth::Float, most_bytes);
    return std::pair(limited_to.x, limited_to.y);
  };
  const double bytes = pictureBytes({4000, 1500}, host::Depth::Float);
  EXPECT_EQ(std::pair(4, 3), limit(4, 3, bytes));
  EXPECT_EQ(std::pair(3, 3), limit(4, 3, bytes - 1));
  EXPECT_EQ(std::pair(1, 1), limit(4, 3, 1));
  EXPECT_EQ(std::pair(16, 8), limit(20, 8, 1e18));
}

}  // namespace
}  // namespace vantorel::cli
