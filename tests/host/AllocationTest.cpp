// What the host allocates: nothing after an instance's first frame of a size, so that a player does not stutter;
// nothing that stays; and an allocation that fails is an error like any other.
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <tuple>

#include "tests/CountedAllocations.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

using vantorel::testing::allocations;
using vantorel::testing::allocations_left;

constexpr Corners kConcave{{3, 2}, {60, 5}, {1, 44}, {20, 12}};

TEST(AllocationTest, AFrameAfterTheFirstAllocatesNothing) {
  for (const Depth depth : kDepths) {
    const Image layer = noise({64, 48}, depth);
    for (const Corners& quad : {Corners{{3, 2}, {60, 5}, {1, 44}, {57, 40}}, kConcave}) {
      for (const auto& [protocol, quality, n] :
           {std::tuple(Protocol::Smart, Quality::High, 1), std::tuple(Protocol::Plain, Quality::High, 2),
            std::tuple(Protocol::Smart, Quality::Best, 1)}) {
        Image output = dirty(downsampled(layer.size(), n), depth);
        Instance instance = instanceWith(effect(), quad);
        double share = 0;
        FrameOptions options{
            .quality = quality, .protocol = protocol, .downsample = n, .progress = [&](double s) { share = s; }};
        ASSERT_TRUE(instance.render(layer.view(), {0, 0, 64, 48}, output.view(), options));
        const long before = allocations;
        for (int frame = 1; frame < 4; ++frame) {
          options.time.time = frame;
          ASSERT_TRUE(instance.render(layer.view(), {0, 0, 64, 48}, output.view(), options));
        }
        EXPECT_EQ(before, allocations);
      }
    }
  }
}

Result<FrameResult> loadAndRender(const Image& layer, Image& output, Quality quality) {
  return Module::load(kEffectPath).and_then([&](const std::shared_ptr<const Module>& module) {
    Instance instance(module);
    return instance.setCorners(kConcave).and_then([&] {
      return instance.render(layer.view(), {0, 0, 64, 48}, output.view(), {.quality = quality, .downsample = 2});
    });
  });
}

TEST(AllocationTest, AnAllocationThatFailsIsAnErrorAndLeavesNothingBroken) {
  const Image layer = noise({64, 48}, Depth::Bits8);
  Image output = dirty({32, 24}, Depth::Bits8);
  for (const Quality quality : {Quality::High, Quality::Best}) {
    const long before = allocations;
    ASSERT_TRUE(loadAndRender(layer, output, quality));
    const long count = allocations - before;
    long errors = 0;
    for (long i = 0; i < count; ++i) {
      allocations_left = i;
      const auto result = loadAndRender(layer, output, quality);
      allocations_left = vantorel::testing::kUnlimited;
      // Threads that cannot be started are no error.
      if (!result) {
        EXPECT_EQ(ErrorKind::OutOfMemory, result.error().kind) << i << ": " << errorText(result.error());
        ++errors;
      }
      ASSERT_TRUE(loadAndRender(layer, output, quality)) << "after allocation " << i << " had failed";
    }
    EXPECT_GT(errors, count / 2);
  }
}

// The process's resident memory in kilobytes.
long residentSize() {
  std::ifstream statm("/proc/self/statm");
  long whole = 0;
  long resident = 0;
  statm >> whole >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// Small frames of every depth, by both renderers, on different numbers of threads.
TEST(AllocationTest, ManyFramesAndInstancesLeaveNothingBehind) {
#ifdef VANTOREL_SANITIZED
  constexpr long kCount = 3000;
#else
  constexpr long kCount = 100000;
#endif
  constexpr Size kSize{16, 12};
  const Image layers[] = {noise(kSize, Depth::Bits8), noise(kSize, Depth::Bits16), noise(kSize, Depth::Float)};
  Image outputs[] = {dirty(kSize, Depth::Bits8), dirty(kSize, Depth::Bits16), dirty(kSize, Depth::Float)};
  const auto new_instance = [](long number) {
    return instanceWith(effect(), number % 2 == 0 ? kConcave : Corners{{3, 2}, {15, 1}, {1, 9}, {14, 11}});
  };
  const auto expect_renders = [&](Instance& instance, long kind) {
    EXPECT_TRUE(instance.render(layers[kind % 3].view(), {0, 0, 16, 12}, outputs[kind % 3].view(),
                                {.threads = static_cast<unsigned>(1 + kind / 3 % 2)}));
  };
  const auto expect_flat = [&](const char* what, const auto& render) {
    const long start = residentSize();
    long number = 0;
    for (; number < kCount / 10; ++number) {
      render(number);
    }
    const long warm = residentSize();
    const long blocks = vantorel::testing::blocks_held;
    for (; number < kCount; ++number) {
      render(number);
    }
    const long end = residentSize();
    EXPECT_EQ(blocks, vantorel::testing::blocks_held) << what;
#ifndef VANTOREL_SANITIZED
    EXPECT_LT(end, warm + 512) << what;
#endif
    std::cout << kCount << ' ' << what << ": " << start << " kB before, " << warm << " after a tenth, " << end
              << " after all\n";
  };
  Instance kept[] = {new_instance(0), new_instance(1)};
  expect_flat("frames", [&](long number) { expect_renders(kept[number % 2], number / 2); });
  expect_flat("instances", [&](long number) {
    Instance instance = new_instance(number);
    expect_renders(instance, number / 2);
  });
}

}  // namespace
}  // namespace vantorel::host
