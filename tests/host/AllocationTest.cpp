// What the host allocates: nothing after an instance's first frame of a size, so that a player does not stutter;
// nothing that stays; and an allocation that fails is an error like any other.
#include <malloc.h>

#include <tuple>

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

TEST(AllocationTest, InstancesAndChangesOfTheirThreadsLeaveNothingBehind) {
  const auto module = testing::loadModule("vantorel");
  Image layer = testing::noise({8, 8}, Depth::Bits8);
  Image output = testing::dirty({8, 8}, Depth::Bits8);
  const auto allocated_after = [&](int instances) {
    for (int i = 0; i < instances; ++i) {
      Instance instance = testing::instanceWith(module, {{0, 0}, {8, 0}, {0, 8}, {8, 8}});
      for (const unsigned threads : {2u, 1u, 0u}) {
        EXPECT_TRUE(instance.render(asConst(layer.view()), {0, 0, 8, 8}, output.view(), {.threads = threads}));
      }
    }
    return mallinfo2().uordblks;
  };
  const std::size_t before = allocated_after(100);
  EXPECT_LT(allocated_after(2000), before + 64 * 1024);
}

}  // namespace
}  // namespace vantorel::host
