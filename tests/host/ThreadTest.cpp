// Threads, for the thread sanitizer above all: rows that many threads draw in no order, instances that render at once,
// and modules that are set up and down meanwhile. Each picture is the one that a thread alone draws.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <numeric>
#include <random>
#include <thread>
#include <vector>

#include "effect/EffectMain.h"
#include "host/frames/WorldRow.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr int kThreads = 8;
constexpr Rect kCanvas{0, 0, 40, 48};
constexpr Corners kQuad{{3, 2}, {35, 5}, {1, 44}, {38, 40}};

template <typename Pixel>
using PixelFunction = std::int32_t (*)(void* refcon, std::int32_t x, std::int32_t y, Pixel* in, Pixel* out);

// The host's own iterator, of the command that this thread carries out.
template <typename Pixel>
thread_local PF_IterateCallback<PixelFunction<Pixel>> host_iterate = nullptr;
thread_local const PF_SuiteProvider* host_suites = nullptr;

// An iterator whose threads take the rows in a random order.
template <typename Pixel>
std::int32_t iterateShuffled(PF_InData* in_data, std::int32_t base, std::int32_t total, PF_LayerDef* source,
                             const M_LRect* area, void* refcon, PixelFunction<Pixel> function,
                             PF_LayerDef* destination) {
  // An empty area: the host learns that the output is iterated over.
  const M_LRect nothing(0, 0, 0, 0);
  const std::int32_t code = host_iterate<Pixel>(in_data, base, total, source, &nothing, refcon, function, destination);
  std::vector<std::int32_t> rows(static_cast<std::size_t>(std::max(area->bottom - area->top, 0)));
  std::iota(rows.begin(), rows.end(), area->top);
  std::shuffle(rows.begin(), rows.end(), std::mt19937(static_cast<unsigned>(rows.size())));
  std::atomic<std::size_t> next = 0;
  std::vector<std::jthread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (std::size_t at = next++; at < rows.size(); at = next++) {
        function(refcon, area->left, rows[at], nullptr, worldRow<Pixel>(*destination, rows[at]) + area->left);
      }
    });
  }
  return code;
}

std::int32_t acquireSuite(const char* name, std::int32_t version, const void** suite) {
  static const PF_iterateFloatSuite1 kShuffled{iterateShuffled<PF_PixelFloat>, nullptr, nullptr};
  const std::int32_t code = host_suites->acquire(name, version, suite);
  if (code == 0 && std::strcmp(name, PF_ITERATE_FLOAT_SUITE) == 0) {
    host_iterate<PF_PixelFloat> = static_cast<const PF_iterateFloatSuite1*>(*suite)->iterate;
    *suite = &kShuffled;
  }
  return code;
}

// The effect under a host whose iterators shuffle.
std::int32_t shuffledEffect(std::int32_t command, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params,
                            PF_LayerDef* output, void* extra) {
  PF_InData in = *in_data;
  PF_UtilityCallbacks utilities = *in.utility_callbacks;
  PF_SuiteProvider suites{acquireSuite, in.suite_provider->release};
  host_iterate<PF_Pixel8> = utilities.iterate_8;
  host_iterate<PF_Pixel16> = utilities.iterate_16;
  host_suites = in.suite_provider;
  utilities.iterate_8 = iterateShuffled<PF_Pixel8>;
  utilities.iterate_16 = iterateShuffled<PF_Pixel16>;
  in.utility_callbacks = &utilities;
  in.suite_provider = &suites;
  return EffectMainExtra(command, &in, out_data, params, output, extra);
}

// What one thread alone draws.
Image expected(Image& layer, Quality quality) {
  Instance instance = testing::instanceWith(testing::checkedEffect(), kQuad);
  return testing::renderFrame(instance, layer, kCanvas, {.quality = quality, .threads = 1}).pixels;
}

std::shared_ptr<const Module> loaded(EffectEntry entry) {
  auto module = Module::fromEntry(entry, "the effect");
  EXPECT_TRUE(module);
  return module.value();
}

TEST(ThreadTest, RowsInAnyOrderOnManyThreadsGiveTheSamePicture) {
  const auto module = loaded(&shuffledEffect);
  for (const Depth depth : testing::kDepths) {
    Image layer = testing::noise({31, 37}, depth);
    for (const Quality quality : {Quality::Standard, Quality::High}) {
      Instance instance = testing::instanceWith(module, kQuad);
      const testing::Frame frame = testing::renderFrame(instance, layer, kCanvas, {.quality = quality});
      EXPECT_EQ(frame.result.path, RenderPath::Perspective);
      EXPECT_TRUE(testing::samePixels(asConst(expected(layer, quality).view()), frame.pixels.view()));
    }
  }
}

TEST(ThreadTest, ModulesSetUpAndDownDisturbNoInstanceThatRenders) {
  Image layer = testing::noise({31, 37}, Depth::Float);
  Image alone = expected(layer, Quality::High);
  const auto module = loaded(&shuffledEffect);
  std::atomic<bool> rendering = true;
  std::vector<std::jthread> threads;
  threads.reserve(2);
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] {
      while (rendering) {
        Instance instance = testing::instanceWith(loaded(&EffectMainExtra), kQuad);
        Image mine = testing::noise({31, 37}, Depth::Float);
        EXPECT_TRUE(testing::samePixels(
            asConst(alone.view()),
            asConst(testing::renderFrame(instance, mine, kCanvas, {.quality = Quality::High}).pixels.view())));
      }
    });
  }
  std::vector<std::jthread> renderers;
  renderers.reserve(4);
  for (int i = 0; i < 4; ++i) {
    renderers.emplace_back([&, quality = i % 2 == 0 ? Quality::High : Quality::Best] {
      Image mine = testing::noise({31, 37}, Depth::Float);
      for (int frame = 0; frame < 4; ++frame) {
        Instance instance = testing::instanceWith(module, kQuad);
        const testing::Frame drawn = testing::renderFrame(instance, mine, kCanvas, {.quality = quality, .threads = 2});
        EXPECT_TRUE(quality == Quality::Best || testing::samePixels(asConst(alone.view()), drawn.pixels.view()));
      }
    });
  }
  renderers.clear();
  rendering = false;
}

}  // namespace
}  // namespace vantorel::host
