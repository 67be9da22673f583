// A part of a picture is drawn as that part of the whole, to the bit, on any threads.
#include <cstring>
#include <random>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr Rect kWhole{-30, -20, 271, 170};

struct Scene {
  const char* name;
  Corners from;
  Corners to;  // at the next frame; the same for what stands still
  std::optional<Corners> source;
  int downsample = 1;
};

const Scene kScenes[] = {
    {"perspective", {{20, 10}, {300, 60}, {-20, 250}, {340, 200}}, {}, {}},
    {"enlarged, reduced", {{-200, -90}, {900, -200}, {-300, 800}, {700, 500}}, {}, {}, 3},
    {"moved by whole pixels", rectangle(31, -7, 131, 83), {}, {}},
    {"horizon through tiles", {{0, 0}, {256, 0}, {-20000, 30000}, {30000, 30000}}, {}, {}},
    {"far corners", {{-30000, -20000}, {32000, -1000}, {-200, 31000}, {32000, 32000}}, {}, {}},
    {"notched", {{20, 10}, {300, 60}, {-20, 250}, {90, 90}}, {}, {}},
    {"crossed", {{20, 10}, {300, 250}, {-20, 250}, {310, 20}}, {}, {}, 2},
    {"nearly straight", {{-2000, 5}, {150, 3}, {-2000.5, 4000}, {2300, 4}}, {}, {}},
    {"wider than the scan's numbers", {{-20000, 5}, {150, 3}, {-20000.5, 4000}, {23000, 4}}, {}, {}},
    {"a source", {{20, 10}, {300, 60}, {-20, 250}, {340, 200}}, {}, Corners{{5, 5}, {90, 9}, {12, 80}, {110, 85}}},
    {"moving", {{20, 10}, {300, 60}, {-20, 250}, {340, 200}}, {{60, 0}, {310, 60}, {40, 200}, {90, 90}}, {}},
};

Instance instanceOf(const Scene& scene) {
  Instance instance(effect());
  EXPECT_TRUE(instance.setCorners(moving(scene.from, scene.to == Corners{} ? scene.from : scene.to)));
  if (scene.source) {
    EXPECT_TRUE(instance.setSource(*scene.source));
  }
  return instance;
}

FrameOptions optionsOf(const Scene& scene, int quality, int samples) {
  FrameOptions options{
      .quality = Quality(quality), .samples = samples, .canvas_independent = true, .downsample = scene.downsample};
  options.threads = 1;
  options.time.scale = 1;
  options.shutter = {.degrees = scene.to == Corners{} ? 0.0 : 360.0, .max_samples = 5};
  return options;
}

// The layer with every bit set outside a part, which in float is not a number.
Image poisonedOutside(const Rect& part, const Image& layer) {
  Image poisoned = *Image::create(layer.size(), layer.depth());
  const std::size_t pixel = bytesPerPixel(layer.depth());
  for (int y = 0; y < layer.size().height; ++y) {
    std::memset(poisoned.view().row(y), 0xFF, pixel * static_cast<std::size_t>(layer.size().width));
    if (y >= part.top && y < part.bottom) {
      std::memcpy(poisoned.view().pixel(part.left, y), layer.view().pixel(part.left, y),
                  pixel * static_cast<std::size_t>(part.width()));
    }
  }
  return poisoned;
}

TEST(PartTest, IsThatPartOfTheWholeAndNeedsAPartOfTheLayer) {
  std::int64_t needed_pixels = 0;
  std::int64_t all_pixels = 0;
  std::mt19937 random(7);
  const auto up_to = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (const Scene& scene : kScenes) {
    for (int i = 0; i < 9; ++i) {
      const Depth depth = kDepths[i % 3];
      const int n = scene.downsample;
      FrameOptions options = optionsOf(scene, i / 3, i == 5 ? 2 : i == 7 ? 8 : 0);
      const Image layer = noise({120, 90}, depth);
      Instance instance = instanceOf(scene);
      const Image whole = renderFrame(instance, layer, kWhole, options).pixels;
      options.threads = 4;
      // Neither what an instance keeps of another layer nor what a part does not need may show.
      Image other = noise({120, 90}, depth, 2);
      Instance drawn_before = instanceOf(scene);
      renderFrame(drawn_before, other, kWhole, options);
      for (int k = 0; k < 5; ++k) {
        const int left = up_to(whole.size().width - 1);
        const int top = up_to(whole.size().height - 1);
        const int right = std::min(left + 1 + up_to(70), whole.size().width - 1);
        const int bottom = std::min(top + 1 + up_to(70), whole.size().height - 1);
        const int x = kWhole.left / n;  // where the whole's first pixel lies
        const int y = (kWhole.top - n + 1) / n;
        const Rect part{(x + left) * n, (y + top) * n, (x + right) * n, (y + bottom) * n};
        const Rect needed = drawn_before.neededPart(layer.size(), part, options).value();
        needed_pixels += std::int64_t{needed.width()} * needed.height();
        all_pixels += std::int64_t{layer.size().width} * layer.size().height;
        const Image poisoned = poisonedOutside(needed, layer);
        const auto picture = renderFrame(drawn_before, poisoned, part, options);
        ASSERT_TRUE(samePixels(partOf(whole.view(), {left, top, right, bottom}), picture.pixels.view()))
            << scene.name << ", quality " << i / 3 << ": " << left << ' ' << top << ' ' << right << ' ' << bottom;
      }
    }
  }
  EXPECT_LT(needed_pixels, all_pixels / 2);
}

// One corner alone is too far away for 16.16 numbers at 8 samples a pixel; at 2 it fits.
TEST(PartTest, OneCornerFarAwayIsDrawnWithManySamplesToo) {
  const Image layer = waves({120, 90}, Depth::Bits8, 30);
  constexpr Point kNear[] = {{-10, -8}, {70, -8}, {-10, 50}, {70, 50}};
  constexpr Point kFar[] = {{-6000, -5000}, {6000, -5000}, {-6000, 5000}, {6000, 5000}};
  for (int far = 0; far < 4; ++far) {
    const auto at = [&](int corner) { return corner == far ? kFar[corner] : kNear[corner]; };
    const Corners corners{at(0), at(1), at(2), at(3)};
    Instance instance = instanceWith(effect(), corners);
    const auto drawn = [&](int samples) {
      return renderFrame(instance, layer, {0, 0, 60, 40}, {.quality = Quality::Best, .samples = samples}).pixels;
    };
    EXPECT_GT(psnr(drawn(8), drawn(2)), 40.0) << "corner " << far;
  }
}

// Neither the layer nor a part of it fits into 16.16 numbers as seen from the tile, but the corners themselves do.
TEST(PartTest, APixelAsWideAsTheRangeIsDrawnFromEverywhere) {
  for (const Depth depth : kDepths) {
    Image layer = noise({1, 1}, depth);
    setChannel(layer.view(), 0, 0, 0, 1.0);
    Instance instance = instanceWith(effect(), rectangle(-32000, -32000, 32000, 32000));
    const Image drawn = renderFrame(instance, layer, {-900, -900, -890, -892}, {.quality = Quality::Best}).pixels;
    for (const auto [x, y] : pixelsOf(Rect{0, 0, 10, 8})) {
      ASSERT_TRUE(samePixels(partOf(drawn.view(), {x, y, x + 1, y + 1}), asConst(layer.view()))) << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace vantorel::host
