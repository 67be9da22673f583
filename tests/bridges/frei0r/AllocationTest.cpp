// What the filter allocates: nothing after an instance's first frame of a kind, whatever its corners.
#include "tests/CountedAllocations.h"
#include "tests/bridges/frei0r/PluginTesting.h"

namespace vantorel::frei0r {
namespace {

using vantorel::testing::allocations;

TEST(Frei0rAllocation, FramesAfterTheFirstAllocateNothing) {
  const Plugin plugin;
  for (const char* quality : {"standard", "high", "best"}) {
    for (const std::uint32_t alpha : {0xFF000000u, 0x80000000u}) {
      const Pixels layer(std::size_t{96} * 64, alpha | 0x00204060u);
      Pixels out(layer.size());
      const long at_first = allocations;
      Instance instance(plugin, {96, 64});
      instance.setQuality(quality);
      instance.update(layer.data(), out.data());
      EXPECT_GT(allocations, at_first) << "the filter's allocations are not counted";
      const long before = allocations;
      for (int frame = 1; frame < 5; ++frame) {
        instance.setNumber(0, 0.3 + 0.01 * frame);
        instance.setNumber(9, 1.0 - 0.1 * frame);
        instance.update(layer.data(), out.data());
      }
      EXPECT_EQ(allocations, before) << quality << " alpha " << alpha;
    }
  }
}

}  // namespace
}  // namespace vantorel::frei0r
