// Threads, for the thread sanitizer above all: rows on many threads, instances that render at once, and modules that
// are set up and down meanwhile. Each picture is the one that a thread alone draws.
#include <atomic>
#include <thread>
#include <vector>

#include "effect/EffectMain.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr Rect kCanvas{0, 0, 40, 48};
constexpr Corners kQuad{{3, 2}, {35, 5}, {1, 44}, {38, 40}};

// Drawn in checking mode, which uses one thread.
Image drawnAlone(const Image& layer, const Corners& corners, Quality quality) {
  return renderFrame(corners, layer, kCanvas, {.quality = quality}).pixels;
}

bool drawsTheSame(const std::shared_ptr<const Module>& module, const Corners& corners, const Image& layer,
                  const Image& expected, const FrameOptions& options) {
  Instance instance = instanceWith(module, corners);
  const Frame frame = renderFrame(instance, layer, kCanvas, options);
  return frame.result.path == RenderPath::Perspective && samePixels(expected, frame.pixels);
}

TEST(ThreadTest, RowsOnManyThreadsGiveTheSamePicture) {
  for (const Depth depth : kDepths) {
    const Image layer = noise({31, 37}, depth);
    for (const Quality quality : {Quality::Standard, Quality::High}) {
      const Image alone = drawnAlone(layer, kQuad, quality);
      EXPECT_TRUE(drawsTheSame(effect(), kQuad, layer, alone, {.quality = quality, .threads = 8}));
    }
  }
}

TEST(ThreadTest, ModulesSetUpAndDownDisturbNoInstanceThatRenders) {
  const Image layer = noise({31, 37}, Depth::Float);
  std::atomic<bool> rendering = true;
  std::vector<std::jthread> loaders;
  loaders.reserve(2);
  std::vector<std::jthread> renderers;
  renderers.reserve(4);
  for (int i = 0; i < 2; ++i) {
    loaders.emplace_back([&, alone = drawnAlone(layer, kQuad, Quality::High)] {
      while (rendering) {
        const auto module = Module::fromEntry(&EffectMainExtra, "the effect").value();
        EXPECT_TRUE(drawsTheSame(module, kQuad, layer, alone, {}));
      }
    });
  }
  for (int i = 0; i < 4; ++i) {
    const Corners corners{{3.0 * i, 2}, {35, 5.0 + i}, {1, 44}, {38, 40}};
    const Quality quality = i % 2 == 0 ? Quality::High : Quality::Best;
    renderers.emplace_back([&, corners, quality, alone = drawnAlone(layer, corners, quality)] {
      for (int frame = 0; frame < 8; ++frame) {
        EXPECT_TRUE(drawsTheSame(effect(), corners, layer, alone, {.quality = quality, .threads = 2}));
      }
    });
  }
  renderers.clear();
  rendering = false;
}

}  // namespace
}  // namespace vantorel::host
