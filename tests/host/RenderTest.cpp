// The effect's pictures through the host: what must be the same, and what must never happen.
#include <gtest/gtest.h>

// After googletest, whose names it uses.
#include <rapidcheck/gtest.h>

#include <cstring>

#include "host/Downsample.h"
#include "tests/effect/GuardedWorld.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

// Quadrilaterals with fractions, below zero, magnified, shrunk, concave, crossed and degenerate.
const Corners kQuads[] = {
    {{-3.3, -2.6}, {40.2, 5.1}, {3.9, 28.7}, {35.5, 22.2}},
    {{5.5, 4.25}, {8.75, 4.5}, {5.0, 7.5}, {8.5, 7.0}},
    {{-300.5, -200.5}, {300.5, -250}, {-310, 400}, {420, 300.5}},
    {{2, 2}, {38, 2}, {2, 28}, {12, 9}},
    {{38, 2}, {2, 2}, {2, 28}, {38, 28}},
    {{10, 10}, {10, 10}, {10, 10}, {10, 10}},
    {{-12.75, -9.25}, {5, -9.25}, {-12.75, -1.5}, {5, -1.5}},
    {{40.5, 30.5}, {4000, 30.5}, {40.5, 3000}, {4000, 3000}},
    {{-500, 35}, {500, 36}, {-500, 400}, {500, 401}},
};

TEST(RenderTest, BothProtocolsGiveTheSamePixels) {
  int bilinear = 0;
  for (const Depth depth : kDepths) {
    Image layer = noise({31, 17}, depth);
    for (const Corners& quad : kQuads) {
      for (const Quality quality : {Quality::Standard, Quality::High}) {
        for (const int downsample : {1, 3}) {
          for (const Rect& canvas : {Rect{0, 0, 40, 30}, Rect{-14, -11, 20, 9}, Rect{-60, -70, -8, -5}}) {
            FrameOptions options{.quality = quality, .downsample = downsample};
            const auto smart = renderFrame(quad, layer, canvas, options);
            options.protocol = Protocol::Plain;
            EXPECT_TRUE(samePixels(smart.pixels, renderFrame(quad, layer, canvas, options).pixels))
                << quad.upper_left.x << " canvas " << canvas.left;
            bilinear += smart.result.path == RenderPath::Bilinear;
          }
        }
      }
    }
  }
  EXPECT_GT(bilinear, 0);
}

RC_GTEST_PROP(RenderPropertyTest, AnyCornersDrawInsideTheOutputAlone, ()) {
  const auto coordinate = [] {
    return *rc::gen::oneOf(rc::gen::map(rc::gen::inRange(-2000, 3000), [](int v) { return v / 50.0; }),
                           rc::gen::map(rc::gen::inRange(-32768, 32768), [](int v) { return v + 0.0; }),
                           rc::gen::element(-32768.0, 32767.99999, 0.0, 16.0));
  };
  const auto point = [&] {
    const double x = coordinate();
    return Point{x, coordinate()};
  };
  const Corners corners{point(), point(), point(), point()};
  Image layer = noise({16, 16}, *rc::gen::element(Depth::Bits8, Depth::Bits16, Depth::Float));
  Instance instance = instanceWith(corners);
  const FrameOptions options{.quality = *rc::gen::element(Quality::Standard, Quality::High, Quality::Best),
                             .edges = *rc::gen::element(Edges::Soft, Edges::Crisp),
                             .samples = *rc::gen::element(0, 1, 2),
                             .protocol = *rc::gen::element(Protocol::Smart, Protocol::Plain),
                             .downsample = *rc::gen::inRange(1, 4)};
  const int left = *rc::gen::inRange(-40, 40);
  const Rect canvas{left, -7, left + *rc::gen::inRange(1, 40), 20};
  Image output = dirty(downsampled({canvas.width(), canvas.height()}, options.downsample), layer.depth());
  const auto result = instance.render(asConst(layer.view()), canvas, output.view(), options);
  // What the bilinear renderer cannot reach is the only reason for which a frame may be refused.
  const bool drawn_or_refused = result.has_value() || result.error().input == "canvas";
  RC_ASSERT(drawn_or_refused);
}

TEST(RenderTest, AReducedFrameIsThatOfTheReducedLayer) {
  const Image layer = noise({30, 18}, Depth::Bits16);
  const Image larger = noise({60, 45}, Depth::Bits16);
  Image reduced = dirty({10, 6}, Depth::Bits16);
  downsample(layer.view(), 3, BlockEdges::Transparent, reduced.view());
  for (const Placement placement : {Placement::Outline, Placement::Centres}) {
    for (const Point& lower_right : {Point{33, 18}, Point{9, 9}}) {  // by the perspective and the bilinear renderer
      const FrameOptions options{.placement = placement, .downsample = 3};
      Instance instance = instanceWith(effect(), {{3, 6}, {27, 0}, {-6, 21}, lower_right});
      // What the instance keeps of a layer of another size does not show.
      renderFrame(instance, larger, {-6, -3, 36, 24}, options);
      const auto frame = renderFrame(instance, layer, {-6, -3, 36, 24}, options);
      const Corners third{{1, 2}, {9, 0}, {-2, 7}, {lower_right.x / 3, lower_right.y / 3}};
      const auto expected = renderFrame(third, reduced, {-2, -1, 12, 8}, {.placement = placement});
      EXPECT_TRUE(samePixels(expected.pixels, frame.pixels)) << lower_right.x << " placement " << int(placement);
    }
  }
}

// The two sides meet at (50, 0), so that the map's horizon runs along the output's first row and through its corner.
TEST(RenderTest, AHorizonThroughTheOutputsCornerIsDrawnAsFromAnyOther) {
  Instance instance = instanceWith(effect(), {{47.5, 10}, {52.5, 10}, {37.5, 50}, {62.5, 50}});
  const Image layer = waves({64, 48}, Depth::Bits8, 16);
  for (const Quality quality : {Quality::Standard, Quality::High}) {
    // The outline's corners lie half a pixel off, and so does the horizon.
    const FrameOptions options{.quality = quality, .placement = Placement::Centres};
    const Frame frame = renderFrame(instance, layer, {0, 0, 100, 60}, options);
    const Frame moved = renderFrame(instance, layer, {-7, -3, 100, 60}, options);
    for (const auto [x, y, c] : channelsOf(100, 60)) {
      ASSERT_NEAR(channelAt(frame.pixels, x, y, c), channelAt(moved.pixels, x + 7, y + 3, c), 1) << x << ' ' << y;
    }
    EXPECT_EQ(channelAt(frame.pixels, 50, 30, 0), 255);
  }
}

ImageView viewOf(const GuardedWorld& guarded, Depth depth) {
  const PF_LayerDef& world = guarded.world;
  return {static_cast<std::byte*>(world.data), world.row_bytes, {world.width, world.height}, depth};
}

TEST(RenderTest, BoundingBoxIsAPixelWiderThanTheCornersInEitherProtocol) {
  for (const Protocol protocol : {Protocol::Smart, Protocol::Plain}) {
    Instance instance = instanceWith({{-3, 5}, {40, 2}, {0, 30}, {35, 33}});
    EXPECT_EQ((Rect{-4, 1, 41, 34}), instance.boundingBox({20, 20}, {.protocol = protocol, .downsample = 4}).value());
    EXPECT_TRUE(instance.setCorners(Corners{{-16000, 0}, {16000, 0}, {-16000, 10}, {16000, 10}}));
    EXPECT_TRUE(isError(instance.boundingBox({20, 20}, {.protocol = protocol}), ErrorKind::EffectFailed, "frame setup",
                        "Vantorel cannot allocate a buffer larger than 30000 pixels in either dimension."));
  }
}

TEST(RenderTest, LayerAndOutputMayHaveAnyStrideThatTheirChannelsAllow) {
  const struct {
    int layer_spare;
    bool layer_lower_first;
    int output_spare;
    bool output_lower_first;
  } layouts[] = {
      {1, false, 0, false}, {0, true, 0, true}, {3, true, 4, false}, {0, false, 8, true}, {5, true, 8, true}};
  constexpr Size kLayer{13, 9};
  for (const std::shared_ptr<const Module>& module : {effect(), checkedEffect()}) {
    for (const Depth depth : kDepths) {
      Image layer = noise(kLayer, depth);
      // In perspective; concave, so that the renderer is the one that reads rows as words; and moved by whole pixels.
      for (const Corners& quad : {Corners{{4, 3}, {38, 8}, {1, 28}, {29, 25}},
                                  Corners{{0, 0}, {38, 2}, {2, 28}, {12, 9}}, rectangle(5, 6, 18, 15)}) {
        Instance instance = instanceWith(module, quad);
        for (const FrameOptions& options :
             {FrameOptions{.quality = Quality::Standard}, FrameOptions{.quality = Quality::High},
              FrameOptions{.quality = Quality::Best}, FrameOptions{.quality = Quality::High, .downsample = 2}}) {
          const Rect canvas{0, 0, 40, 30};
          const auto expected = renderFrame(instance, layer, canvas, options);
          for (const auto& layout : layouts) {
            const int bits = static_cast<int>(depth);
            const GuardedWorld in(bits, {kLayer.width, kLayer.height, layout.layer_spare, layout.layer_lower_first});
            const ImageView in_view = viewOf(in, depth);
            for (int y = 0; y < kLayer.height; ++y) {
              std::memcpy(in_view.row(y), layer.view().row(y), bytesPerPixel(depth) * kLayer.width);
            }
            const Size size = expected.pixels.size();
            const GuardedWorld out(bits, {size.width, size.height, layout.output_spare, layout.output_lower_first});
            ASSERT_TRUE(instance.render(asConst(in_view), canvas, viewOf(out, depth), options));
            EXPECT_TRUE(samePixels(expected.pixels.view(), asConst(viewOf(out, depth)))) << (&layout - layouts);
            EXPECT_TRUE(out.guardsIntact());
          }
        }
      }
    }
  }
}

TEST(RenderTest, CornersFollowTheFramesTime) {
  Image layer = noise({8, 8}, Depth::Bits8);
  Instance instance(checkedEffect());
  ASSERT_TRUE(instance.setCorners(moving(rectangle(0, 0, 8, 8), rectangle(24, 0, 32, 8))));
  for (const Protocol protocol : {Protocol::Smart, Protocol::Plain}) {
    const auto frame = renderFrame(instance, layer, {6, 0, 14, 8},
                                   {.time = {.time = 6, .step = 1, .scale = 24}, .protocol = protocol});
    EXPECT_TRUE(samePixels(layer, frame.pixels));
  }
}

TEST(RenderTest, ProgressRisesToOneAndTheStopTokenEndsTheFrame) {
  const Image layer = noise({32, 400}, Depth::Bits8);
  Image output = dirty({32, 400}, Depth::Bits8);
  Instance instance = instanceWith(effect(), rectangle(0, 0, 32, 400));
  const auto render = [&](const FrameOptions& options) {
    return instance.render(layer.view(), {0, 0, 32, 400}, output.view(), options);
  };
  for (const unsigned threads : {1u, 4u}) {
    std::vector<double> shares;
    ASSERT_TRUE(render({.threads = threads, .progress = [&](double share) { shares.push_back(share); }}));
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(1.0, shares.back());

    std::stop_source stop;
    double last = 0;
    const auto stop_at_a_quarter = [&](double share) {
      last = share;
      if (share > 0.25) {
        stop.request_stop();
      }
    };
    const auto stopped = render({.threads = threads, .progress = stop_at_a_quarter, .stop = stop.get_token()});
    EXPECT_TRUE(isError(stopped, ErrorKind::Interrupted, "smart render"));
    EXPECT_LT(last, 0.5);

    const auto fail = [](double) { throw std::string("from the callback"); };
    EXPECT_THROW(static_cast<void>(render({.threads = threads, .progress = fail})), std::string);
  }
}

TEST(RenderTest, WorldsWiderThanSixteenBitsAreDrawnToTheirEnd) {
  const Image layer = noise({16, 4}, Depth::Bits8);
  Instance instance = instanceWith(effect(), rectangle(32740, 0, 32756, 4));
  const Frame frame = renderFrame(instance, layer, {0, 0, 40000, 4});
  EXPECT_TRUE(samePixels(layer.view(), partOf(frame.pixels.view(), {32740, 0, 32756, 4})));
}

}  // namespace
}  // namespace vantorel::host
