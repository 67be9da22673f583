// Pictures through the plug-in are those of the embedded host, to the bit, however the host lays out its memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <thread>

#include "bridges/ofx/Half.h"
#include "host/Alpha.h"
#include "tests/bridges/ofx/Session.h"
#include "tests/host/HostTesting.h"

namespace vantorel::ofx {
namespace {

constexpr RectI kFrame{0, 0, 64, 48};
constexpr RectI kEndless{-2147483647, -2147483647, 2147483647, 2147483647};
constexpr host::Corners kTrapezoid{{12.0, 4.25}, {50.5, 8.0}, {-6.5, 45.0}, {66.75, 40.0}};
constexpr host::Corners kNotched{{2.0, 3.0}, {60.0, 9.5}, {5.0, 44.0}, {22.0, 20.0}};

struct Kind {
  const char* name;
  host::Depth drawn;
  bool is_half = false;
};
constexpr Kind kKinds[] = {{"OfxBitDepthByte", host::Depth::Bits8},
                           {"OfxBitDepthShort", host::Depth::Bits16},
                           {"OfxBitDepthHalf", host::Depth::Float, true},
                           {"OfxBitDepthFloat", host::Depth::Float}};

// A part of a picture that is the same wherever it lies, as the embedded host takes it: rows from the top.
host::Image layerOf(const Kind& kind, const RectI& frame) {
  host::Image layer = host::testing::dirty({frame.width(), frame.height()}, kind.drawn);
  for (int i = 0; i < frame.width() * frame.height() * 4; ++i) {
    const int column = i / 4 % frame.width();
    const int row = i / 4 / frame.width();
    const auto x = static_cast<unsigned>(frame.x1 + column);
    const auto y = static_cast<unsigned>(frame.y2 - 1 - row);
    const unsigned bits = (x * 7919U + y * 104729U + static_cast<unsigned>(i % 4) * 31U + 77U) * 2654435761U >> 16;
    const double value = (bits & 0xFFFFU) / 65535.0;
    host::testing::setChannel(layer.view(), column, row, i % 4,
                              kind.is_half ? double{floatFromHalf(halfFromFloat(static_cast<float>(value)))} : value);
  }
  return layer;
}

std::size_t storedPixelBytes(const Kind& kind) {
  return kind.is_half ? 8 : host::bytesPerPixel(kind.drawn);
}

// A pixel of the embedded host's as the plug-in's host holds it.
std::vector<std::byte> storedPixel(const Kind& kind, const std::byte* pixel) {
  if (!kind.is_half) {
    return {pixel, pixel + host::bytesPerPixel(kind.drawn)};
  }
  std::vector<std::byte> stored(8);
  for (std::size_t c = 0; c < 4; ++c) {
    const std::uint16_t half = halfFromFloat(reinterpret_cast<const float*>(pixel)[c]);
    std::memcpy(stored.data() + 2 * c, &half, sizeof half);
  }
  return stored;
}

void fill(PropertySetRecord& image, const Kind& kind, const RectI& bounds) {
  const host::Image picture = layerOf(kind, bounds);
  for (int y = bounds.y1; y < bounds.y2; ++y) {
    for (int x = bounds.x1; x < bounds.x2; ++x) {
      std::ranges::copy(storedPixel(kind, picture.view().pixel(x - bounds.x1, bounds.y2 - 1 - y)),
                        pixelOf(image, x, y));
    }
  }
}

template <typename Function>
void forRows(host::Image& image, const Function& function) {
  for (int y = 0; y < image.size().height; ++y) {
    std::byte* const row = image.view().row(y);
    switch (image.depth()) {
      case host::Depth::Bits8:
        function(reinterpret_cast<std::uint8_t*>(row), image.size().width);
        break;
      case host::Depth::Bits16:
        function(reinterpret_cast<std::uint16_t*>(row), image.size().width);
        break;
      case host::Depth::Float:
        function(reinterpret_cast<float*>(row), image.size().width);
        break;
    }
  }
}

host::Image drawn(host::Image& layer, const host::Corners& corners, const RectI& frame, const RectI& window,
                  int quality) {
  host::Instance instance = host::testing::instanceWith(host::testing::checkedEffect(), corners);
  return host::testing::renderFrame(
             instance, layer, {window.x1 - frame.x1, frame.y2 - window.y2, window.x2 - frame.x1, frame.y2 - window.y1},
             {.quality = host::Quality(quality), .canvas_independent = true})
      .pixels;
}

// The window's pixels are the expected ones, and what lies beside it in the image is untouched.
::testing::AssertionResult holds(const Kind& kind, PropertySetRecord& image, const RectI& bounds, const RectI& window,
                                 const host::Image& expected) {
  const int bytes = image.get<int>("test pixel bytes");
  for (int y = bounds.y1; y < bounds.y2; ++y) {
    for (int x = bounds.x1; x < bounds.x2; ++x) {
      const bool is_inside = x >= window.x1 && x < window.x2 && y >= window.y1 && y < window.y2;
      const std::byte* const at = pixelOf(image, x, y);
      const std::vector<std::byte> right =
          is_inside ? storedPixel(kind, expected.view().pixel(x - window.x1, window.y2 - 1 - y))
                    : std::vector(static_cast<std::size_t>(bytes), std::byte{0xA7});
      if (!std::equal(right.begin(), right.end(), at)) {
        return ::testing::AssertionFailure() << (is_inside ? "inside, at " : "outside, at ") << x << ", " << y;
      }
    }
  }
  return ::testing::AssertionSuccess();
}

TEST(OfxPictureTest, AreTheEmbeddedHostsInEveryLayoutAtEveryDepth) {
  const struct {
    RectI source_bounds;
    RectI source_frame;
    RectI output_bounds;
    RectI window;
    bool source_upper_first;
    bool output_upper_first;
    int spare;  // channels
    bool is_endless = false;
  } layouts[] = {{kFrame, kFrame, kFrame, kFrame, false, false, 0},
                 {kFrame, kFrame, kFrame, kFrame, true, true, 1},
                 {{-5, -3, 70, 51}, kFrame, kFrame, kFrame, true, false, 7, true},
                 {{-5, -3, 70, 51}, kFrame, {-20, -9, 90, 77}, {-11, -9, 83, 60}, false, true, 3},
                 {{13, -7, 77, 41}, {13, -7, 77, 41}, {3, 5, 40, 30}, {4, 7, 39, 29}, true, false, 2}};
  for (const Kind& kind : kKinds) {
    for (const auto& layout : layouts) {
      Session session;
      ASSERT_EQ(session.open(), Status::Ok);
      const int spare_bytes = layout.spare * static_cast<int>(storedPixelBytes(kind)) / 4;
      fill(session.connect("Source", {.bounds = layout.source_bounds,
                                      .full_frame = layout.is_endless ? kEndless : layout.source_frame,
                                      .depth = kind.name,
                                      .spare_bytes = spare_bytes,
                                      .upper_first = layout.source_upper_first}),
           kind, layout.source_bounds);
      host::Image layer = layerOf(kind, layout.source_frame);
      for (const host::Corners& corners : {kTrapezoid, kNotched}) {
        session.setCorners(corners, layout.source_frame);
        for (int quality = 0; quality < 3; ++quality) {
          session.setParam("quality", {static_cast<double>(quality)});
          PropertySetRecord& output = session.connect("Output", {.bounds = layout.output_bounds,
                                                                 .depth = kind.name,
                                                                 .spare_bytes = spare_bytes,
                                                                 .upper_first = layout.output_upper_first});
          ASSERT_EQ(session.render(layout.window), Status::Ok) << session.host.message;
          EXPECT_TRUE(holds(kind, output, layout.output_bounds, layout.window,
                            drawn(layer, corners, layout.source_frame, layout.window, quality)))
              << kind.name << " layout " << (&layout - layouts) << " quality " << quality;
          EXPECT_EQ(session.host.images_out, 0);
        }
      }
    }
  }
}

TEST(OfxPictureTest, AlphaStaysAsTheHostHasIt) {
  for (const Kind& kind : kKinds) {
    Session session;
    ASSERT_EQ(session.open(), Status::Ok);
    fill(session.connect("Source",
                         {.bounds = kFrame, .depth = kind.name, .premultiplication = "OfxImageAlphaUnPremultiplied"}),
         kind, kFrame);
    session.setCorners(kTrapezoid, kFrame);
    PropertySetRecord out;
    ASSERT_EQ(session.action("OfxImageEffectActionGetClipPreferences", nullptr, &out), Status::Ok);
    EXPECT_EQ(out.get<std::string>("OfxImageEffectPropPreMultiplication"), "OfxImageAlphaUnPremultiplied");
    PropertySetRecord& output = session.connect(
        "Output", {.bounds = kFrame, .depth = kind.name, .premultiplication = "OfxImageAlphaUnPremultiplied"});
    ASSERT_EQ(session.render(kFrame), Status::Ok);
    host::Image layer = layerOf(kind, kFrame);
    forRows(layer, [](auto* row, int width) { host::premultiplyRow(row, width); });
    host::Image expected = drawn(layer, kTrapezoid, kFrame, kFrame, 2);
    forRows(expected, [](auto* row, int width) { host::unpremultiplyRow(row, width); });
    EXPECT_TRUE(holds(kind, output, kFrame, kFrame, expected)) << kind.name;
  }
}

TEST(OfxPictureTest, ScaleAspectAndFieldPlaceTheCornersInPixels) {
  const struct {
    PointD scale;
    double aspect;
    const char* field;
    double x;  // pixels per canonical unit
    double y;
  } cases[] = {{{0.5, 0.5}, 1.0, "OfxFieldNone", 0.5, 0.5},
               {{1.0, 1.0}, 2.0, "OfxFieldBoth", 0.5, 1.0},
               {{1.0, 1.0}, 1.0, "OfxFieldLower", 1.0, 0.5},
               {{1.0, 1.0}, 1.0, "OfxFieldLower", 1.0, 1.0},
               {{0.25, 0.5}, 0.5, "OfxFieldUpper", 0.5, 0.25}};
  for (const auto& c : cases) {
    const RectI frame{0, 0, static_cast<int>(64 * c.x), static_cast<int>(48 * c.y)};
    const Layout layout{.bounds = frame, .pixel_aspect = c.aspect, .field = c.field};
    Session session;
    ASSERT_EQ(session.open(kFilter), Status::Ok);
    fill(session.connect("Source", layout), kKinds[3], frame);
    PropertySetRecord& output = session.connect("Output", layout);
    session.instance.clips.at("Output").region.y2 = 48.0;
    session.setCorners(kTrapezoid, kFrame);
    ASSERT_EQ(session.render(frame, c.scale), Status::Ok);
    host::Image layer = layerOf(kKinds[3], frame);
    host::Corners scaled = kTrapezoid;
    for (host::Point* p : {&scaled.upper_left, &scaled.upper_right, &scaled.lower_left, &scaled.lower_right}) {
      *p = {p->x * c.x, p->y * c.y};
    }
    EXPECT_TRUE(holds(kKinds[3], output, frame, frame, drawn(layer, scaled, frame, frame, 2))) << c.field;
  }
}

TEST(OfxPictureTest, TilesOnEightThreadsAreTheWholeFrame) {
  constexpr RectI kLarge{-7, 5, 413, 290};
  for (const int quality : {0, 1, 2}) {
    for (const host::Corners& corners : {host::Corners{{40, 30}, {380, -20}, {-30, 260}, {430, 300}},
                                         host::Corners{{2, 3}, {400, 60}, {5, 280}, {90, 90}}}) {
      Session session({420.0, 285.0});
      ASSERT_EQ(session.open(), Status::Ok);
      fill(session.connect("Source", {.bounds = kLarge}), kKinds[3], kLarge);
      session.setCorners(corners, kLarge);
      session.setParam("quality", {static_cast<double>(quality)});
      PropertySetRecord& output = session.connect("Output", {.bounds = kLarge});
      std::vector<RectI> tiles;
      for (int y = kLarge.y1; y < kLarge.y2; y += 64) {
        for (int x = kLarge.x1; x < kLarge.x2; x += 64) {
          tiles.push_back({x, y, std::min(x + 64, kLarge.x2), std::min(y + 64, kLarge.y2)});
        }
      }
      std::shuffle(tiles.begin(), tiles.end(), std::mt19937(3));
      std::atomic<std::size_t> next = 0;
      std::vector<std::jthread> threads;
      threads.reserve(8);
      for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
          for (std::size_t i = next++; i < tiles.size(); i = next++) {
            EXPECT_EQ(session.render(tiles[i]), Status::Ok);
          }
        });
      }
      threads.clear();
      host::Image layer = layerOf(kKinds[3], kLarge);
      EXPECT_TRUE(holds(kKinds[3], output, kLarge, kLarge, drawn(layer, corners, kLarge, kLarge, quality))) << quality;
    }
  }
}

// A host that hands over no more than it was asked for. What the plug-in keeps from window to window holds another
// picture before each of them.
TEST(OfxPictureTest, WindowsFromTheNeededPartOfTheSourceAreThoseOfTheWholeFrame) {
  constexpr RectI kSource{-9, 4, 191, 144};
  std::mt19937 random(11);
  const auto between = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low));
  };
  std::int64_t fetched = 0;
  int windows = 0;
  for (const Kind& kind : kKinds) {
    host::Image layer = layerOf(kind, kSource);
    Session session({200.0, 140.0});
    ASSERT_EQ(session.open(), Status::Ok);
    for (const host::Corners& corners : {host::Corners{{12, 4}, {150, 20}, {-16, 145}, {266, 140}},
                                         host::Corners{{-300, -90}, {500, -60}, {-200, 450}, {420, 300}},
                                         host::Corners{{2, 3}, {190, 20}, {15, 144}, {52, 50}}}) {
      session.setCorners(corners, kSource);
      for (int i = 0; i < 12; ++i, ++windows) {
        const int quality = i % 3;
        session.setParam("quality", {static_cast<double>(quality)});
        const int x = between(kSource.x1, kSource.x2 - 1);
        const int y = between(kSource.y1, kSource.y2 - 1);
        const RectI window{x, y, between(x + 1, kSource.x2), between(y + 1, kSource.y2)};
        session.connect("Output", {.bounds = kSource, .depth = kind.name});
        PropertySetRecord& other =
            session.connect("Source", {.bounds = {kSource.x1, kSource.y1, kSource.x2 - 1, kSource.y2},
                                       .full_frame = kSource,
                                       .depth = kind.name});
        std::fill(other.pixels.begin(), other.pixels.end(), std::byte{0xFF});
        ASSERT_EQ(session.render(kSource), Status::Ok);

        PropertySetRecord in = renderArguments(window);
        PropertySetRecord out;
        in.put("OfxImageEffectPropRegionOfInterest", 1.0 * window.x1, 1.0 * window.y1, 1.0 * window.x2,
               1.0 * window.y2);
        ASSERT_EQ(session.action("OfxImageEffectActionGetRegionsOfInterest", &in, &out), Status::Ok);
        const auto edge = [&](std::size_t k) {
          return static_cast<int>(out.get<double>("OfxImageClipPropRoI_Source", k));
        };
        const RectI part{edge(0), edge(1), edge(2), edge(3)};
        fetched += std::int64_t{part.width()} * part.height();
        fill(session.connect("Source", {.bounds = part,
                                        .full_frame = kSource,
                                        .depth = kind.name,
                                        .spare_bytes = 8,
                                        .upper_first = i % 2 == 0}),
             kind, part);
        PropertySetRecord& output =
            session.connect("Output", {.bounds = kSource, .depth = kind.name, .upper_first = i % 4 > 1});
        ASSERT_EQ(session.render(window), Status::Ok) << session.host.message;
        EXPECT_TRUE(holds(kind, output, kSource, window, drawn(layer, corners, kSource, window, quality)))
            << kind.name << " window " << window.x1 << ' ' << window.y1 << ' ' << window.x2 << ' ' << window.y2
            << " quality " << quality;
      }
    }
  }
  EXPECT_LT(fetched, std::int64_t{windows} * kSource.width() * kSource.height() / 2);
}

TEST(OfxPictureTest, OtherClipsHideAndLieBelow) {
  const auto paint = [](PropertySetRecord& image, const std::vector<float>& pixel) {
    for (std::size_t i = 0; i < image.pixels.size(); i += pixel.size() * sizeof(float)) {
      std::memcpy(image.pixels.data() + i, pixel.data(), pixel.size() * sizeof(float));
    }
  };
  Session session;
  ASSERT_EQ(session.open(), Status::Ok);
  paint(session.connect("Source", {.bounds = kFrame, .components = "OfxImageComponentRGB"}), {1.0F, 0.5F, 0.25F});
  PropertySetRecord& output = session.connect("Output", {.bounds = kFrame});
  session.setCorners({{0, 0}, {32, 0}, {0, 48}, {32, 48}}, kFrame);
  const auto expect_pixel = [&](int x, std::initializer_list<float> pixel) {
    ASSERT_EQ(session.render(kFrame), Status::Ok) << session.host.message;
    for (std::size_t c = 0; c < 4; ++c) {
      EXPECT_NEAR(reinterpret_cast<const float*>(pixelOf(output, x, 20))[c], pixel.begin()[c], 1e-6) << x << " " << c;
    }
  };
  expect_pixel(10, {1.0F, 0.5F, 0.25F, 1.0F});
  expect_pixel(50, {0.0F, 0.0F, 0.0F, 0.0F});
  session.setParam("opacity", {0.5});
  expect_pixel(10, {0.5F, 0.25F, 0.125F, 0.5F});
  paint(session.connect("Background", {.bounds = kFrame, .premultiplication = "OfxImageAlphaUnPremultiplied"}),
        {0.0F, 1.0F, 0.0F, 0.5F});
  expect_pixel(10, {0.5F, 0.5F, 0.125F, 0.75F});
  expect_pixel(50, {0.0F, 0.5F, 0.0F, 0.5F});
  paint(session.connect("Matte", {.bounds = kFrame, .components = "OfxImageComponentAlpha"}), {0.75F});
  expect_pixel(10, {0.125F, 0.5F, 0.03125F, 0.5625F});
  session.setParam("opacity", {std::nan("")});
  expect_pixel(10, {0.0F, 0.5F, 0.0F, 0.5F});
  // What a matte or a background does not reach is neither hidden nor covered, nor is a frame that lacks one.
  session.setParam("opacity", {1.0});
  paint(session.connect("Matte", {.bounds = {8, 15, 12, 30}}), {0.0F, 0.0F, 0.0F, 1.0F});
  expect_pixel(10, {0.0F, 0.5F, 0.0F, 0.5F});
  expect_pixel(12, {1.0F, 0.5F, 0.25F, 1.0F});
  session.instance.clips.at("Matte").image.reset();
  expect_pixel(10, {1.0F, 0.5F, 0.25F, 1.0F});
  paint(session.connect("Background", {.bounds = {70, -40, 90, 8}}), {1.0F, 1.0F, 1.0F, 1.0F});
  expect_pixel(50, {0.0F, 0.0F, 0.0F, 0.0F});
}

TEST(OfxPictureTest, APartOfTheSourceGoesOntoTheCorners) {
  constexpr host::Corners kPart{{10.0, 5.0}, {55.0, 8.0}, {12.5, 40.0}, {50.0, 44.0}};
  Session session;
  ASSERT_EQ(session.open(), Status::Ok);
  fill(session.connect("Source", {.bounds = kFrame}), kKinds[3], kFrame);
  PropertySetRecord& output = session.connect("Output", {.bounds = kFrame});
  session.setCorners(kTrapezoid, kFrame);
  session.setCorners(kPart, kFrame, "from");
  session.setParam("useFrom", {1.0});
  session.setParam("samples", {2.0});
  ASSERT_EQ(session.render(kFrame), Status::Ok);
  host::Image layer = layerOf(kKinds[3], kFrame);
  host::Instance instance = host::testing::instanceWith(host::testing::checkedEffect(), kTrapezoid);
  ASSERT_TRUE(instance.setSource(kPart));
  const auto expected =
      host::testing::renderFrame(instance, layer, {0, 0, 64, 48}, {.quality = host::Quality::Best, .samples = 2});
  EXPECT_TRUE(holds(kKinds[3], output, kFrame, kFrame, expected.pixels));
}

}  // namespace
}  // namespace vantorel::ofx
