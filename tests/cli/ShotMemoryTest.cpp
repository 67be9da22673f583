// How many frames are worked on at the same time.
#include "cli/shots/ShotMemory.h"

#include <gtest/gtest.h>

#include "cli/base/Memory.h"

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

}  // namespace
}  // namespace vantorel::cli
