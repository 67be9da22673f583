// What the host allocates: nothing after an instance's first frame of a size, so that a player does not stutter;
// nothing that stays; and an allocation that fails is an error like any other.
#include <unistd.h>

#include <array>
#include <fstream>
#include <iostream>
#include <tuple>
#include <vector>

#include "tests/CountedAllocations.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

using vantorel::testing::allocations;
using vantorel::testing::allocations_left;

constexpr Corners kConcave{{3, 2}, {60, 5}, {1, 44}, {20, 12}};

TEST(AllocationTest, AFrameAfterTheFirstAllocatesNothing) {
  const auto module = testing::loadModule("vantorel");
  for (const Depth depth : testing::kDepths) {
    Image layer = testing::noise({64, 48}, depth);
    for (const Corners& quad : {Corners{{3, 2}, {60, 5}, {1, 44}, {57, 40}}, kConcave}) {
      for (const auto& [protocol, quality, n] :
           {std::tuple(Protocol::Smart, Quality::High, 1), std::tuple(Protocol::Plain, Quality::High, 2),
            std::tuple(Protocol::Smart, Quality::Best, 1)}) {
        Image output = testing::dirty(downsampled(layer.size(), n), depth);
        Instance instance = testing::instanceWith(module, quad);
        double share = 0;
        FrameOptions options{
            .quality = quality, .protocol = protocol, .downsample = n, .progress = [&](double s) { share = s; }};
        ASSERT_TRUE(instance.render(asConst(layer.view()), {0, 0, 64, 48}, output.view(), options));
        const long before = allocations;
        for (int frame = 1; frame < 4; ++frame) {
          options.time.time = frame;
          ASSERT_TRUE(instance.render(asConst(layer.view()), {0, 0, 64, 48}, output.view(), options));
        }
        EXPECT_EQ(before, allocations);
      }
    }
  }
}

Result<FrameResult> loadAndRender(const std::string& path, Image& layer, Image& output, Quality quality) {
  return Module::load(path).and_then([&](const std::shared_ptr<const Module>& module) {
    Instance instance(module);
    return instance.setCorners(kConcave).and_then([&] {
      return instance.render(asConst(layer.view()), {0, 0, 64, 48}, output.view(),
                             {.quality = quality, .downsample = 2});
    });
  });
}

TEST(AllocationTest, AnAllocationThatFailsIsAnErrorAndLeavesNothingBroken) {
  const std::string path = testing::modulePath("vantorel");
  Image layer = testing::noise({64, 48}, Depth::Bits8);
  Image output = testing::dirty({32, 24}, Depth::Bits8);
  for (const Quality quality : {Quality::High, Quality::Best}) {
    const long before = allocations;
    ASSERT_TRUE(loadAndRender(path, layer, output, quality));
    const long count = allocations - before;
    long errors = 0;
    for (long i = 0; i < count; ++i) {
      allocations_left = i;
      const auto result = loadAndRender(path, layer, output, quality);
      allocations_left = vantorel::testing::kUnlimited;
      // Threads that cannot be started are no error.
      if (!result) {
        EXPECT_EQ(ErrorKind::OutOfMemory, result.error().kind) << i << ": " << errorText(result.error());
        ++errors;
      }
      ASSERT_TRUE(loadAndRender(path, layer, output, quality)) << "after allocation " << i << " had failed";
    }
    EXPECT_GT(errors, count / 2);
  }
}

// Kilobytes of the process that are in memory.
long residentSize() {
  std::ifstream statm("/proc/self/statm");
  long whole = 0;
  long resident = 0;
  statm >> whole >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// Small frames of every depth, of both paths, on different numbers of threads.
class Soak {
 public:
  // Frames of a few instances that live on.
  void renderFrame(long number) {
    if (instances_.empty()) {
      instances_.push_back(newInstance(0));
      instances_.push_back(newInstance(1));
    }
    expectRenders(instances_[static_cast<std::size_t>(number % 2)], number / 2);
  }

  // A new one for a frame.
  void renderInstance(long number) {
    Instance instance = newInstance(number);
    expectRenders(instance, number / 2);
  }

 private:
  Instance newInstance(long number) const {
    return testing::instanceWith(module_, number % 2 == 0 ? kConcave : Corners{{3, 2}, {15, 1}, {1, 9}, {14, 11}});
  }

  void expectRenders(Instance& instance, long kind) {
    const auto depth = static_cast<std::size_t>(kind % 3);
    const Image& layer = layers_[depth];
    EXPECT_TRUE(instance.render(layer.view(), {0, 0, 16, 12}, outputs_[depth].view(),
                                {.threads = static_cast<unsigned>(1 + kind / 3 % 2)}));
  }

  std::shared_ptr<const Module> module_ = testing::loadModule("vantorel");
  std::array<Image, 3> layers_{testing::noise({16, 12}, Depth::Bits8), testing::noise({16, 12}, Depth::Bits16),
                               testing::noise({16, 12}, Depth::Float)};
  std::array<Image, 3> outputs_{testing::dirty({16, 12}, Depth::Bits8), testing::dirty({16, 12}, Depth::Bits16),
                                testing::dirty({16, 12}, Depth::Float)};
  std::vector<Instance> instances_;
};

TEST(AllocationTest, ManyFramesAndInstancesLeaveNothingBehind) {
#ifdef VANTOREL_SANITIZED
  constexpr long kCount = 3000;
#else
  constexpr long kCount = 100000;
#endif
  Soak soak;
  const auto expect_flat = [&](const char* what, void (Soak::*render)(long)) {
    const long start = residentSize();
    long number = 0;
    for (; number < kCount / 10; ++number) {
      (soak.*render)(number);
    }
    const long warm = residentSize();
    const long blocks = vantorel::testing::blocks_held;
    for (; number < kCount; ++number) {
      (soak.*render)(number);
    }
    const long end = residentSize();
    EXPECT_EQ(blocks, vantorel::testing::blocks_held) << what;
#ifndef VANTOREL_SANITIZED
    EXPECT_LT(end, warm + 512) << what;
#endif
    std::cout << kCount << ' ' << what << ": " << start << " kB before, " << warm << " after a tenth, " << end
              << " after all\n";
  };
  expect_flat("frames", &Soak::renderFrame);
  expect_flat("instances", &Soak::renderInstance);
}

}  // namespace
}  // namespace vantorel::host
