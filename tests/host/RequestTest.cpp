// Frames that cannot be served are refused before anything is drawn, and the message names what is wrong.
#include <cmath>
#include <limits>

#include "host/frames/FrameRequest.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

struct Request {
  Image layer_image = noise({8, 8}, Depth::Float);
  Image output_image = dirty({8, 8}, Depth::Float);
  ConstImageView layer = asConst(layer_image.view());
  ImageView output = output_image.view();
  Rect canvas{0, 0, 8, 8};
  FrameOptions options;
};

FrameOptions& centres(Request& request) {
  request.options.placement = Placement::Centres;
  return request.options;
}

TEST(RequestTest, EachArgumentThatCannotBeServedIsNamed) {
  const struct {
    const char* input;
    void (*spoil)(Request&);
    bool needs_no_pixels = false;  // so that the box around the corners is refused too
  } cases[] = {
      {"layer", [](Request& r) { r.layer.size.width = 0; }},
      {"layer", [](Request& r) { r.layer.data = nullptr; }},
      {"layer", [](Request& r) { r.layer.row_bytes = 8 * 16 - 1; }},
      {"layer", [](Request& r) { r.layer.row_bytes = -(8 * 16 - 1); }},
      {"layer", [](Request& r) { r.layer.row_bytes = std::numeric_limits<std::ptrdiff_t>::min(); }},
      {"layer", [](Request& r) { r.layer.row_bytes = std::ptrdiff_t{1} << 31; }},
      {"layer", [](Request& r) { r.layer.row_bytes += 2; }},
      {"layer", [](Request& r) { r.layer.data += 1; }},
      {"layer",
       [](Request& r) {
         r.layer = ConstImageView{r.layer.data, 40000 * 16, {40000, 1}, Depth::Float};
       }},
      {"layer", [](Request& r) { r.layer.depth = static_cast<Depth>(24); }},
      {"output", [](Request& r) { r.output.size.height = -8; }},
      {"output", [](Request& r) { r.output.size.width = 7; }},
      {"output", [](Request& r) { r.output.depth = Depth::Bits16; }},
      {"output", [](Request& r) { r.layer.depth = Depth::Bits16; }},
      {"output", [](Request& r) { r.layer.data = r.output.row(1); }},
      // The layer's rows go up from the one below the output.
      {"output",
       [](Request& r) {
         r.layer = {r.output.row(8), -r.output.row_bytes, r.layer.size, r.layer.depth};
       }},
      {"canvas", [](Request& r) { r.canvas.right = -8; }},
      {"canvas", [](Request& r) { r.canvas.left = std::numeric_limits<int>::min(); }},
      {"downsample", [](Request& r) { r.options.downsample = 0; }},
      {"time scale", [](Request& r) { r.options.time.scale = 0; }},
      {"samples", [](Request& r) { r.options.samples = 3; }},
      {"samples", [](Request& r) { centres(r).samples = 2; }},
      {"edges", [](Request& r) { centres(r).edges = Edges::Crisp; }},
      {"canvas independence", [](Request& r) { centres(r).canvas_independent = true; }},
      {"shutter", [](Request& r) { centres(r).shutter.degrees = 180; }, true},
      {"shutter", [](Request& r) { r.options.shutter.degrees = -1; }, true},
      {"shutter", [](Request& r) { r.options.shutter.degrees = 721; }, true},
      {"shutter", [](Request& r) { r.options.shutter.degrees = std::nan(""); }, true},
      {"shutter samples", [](Request& r) { r.options.shutter = {.degrees = 180, .max_samples = 0}; }, true},
      {"shutter offset", [](Request& r) { r.options.shutter = {.degrees = 180, .offset = 1000}; }, true},
  };
  for (const auto& c : cases) {
    Request request;
    c.spoil(request);
    Instance instance(checkedEffect());
    const auto result = instance.render(request.layer, request.canvas, request.output, request.options);
    EXPECT_TRUE(isError(result, ErrorKind::InvalidArgument, c.input)) << "case " << (&c - cases);
    if (c.needs_no_pixels) {
      EXPECT_EQ(c.input, instance.boundingBox({8, 8}, request.options).error().input);
    }
  }
  EXPECT_EQ("layer", Instance(checkedEffect()).boundingBox({0, 3}, {}).error().input);
}

TEST(RequestTest, CornersMustBeNumbersThatFitSixteenSixteen) {
  Instance instance(checkedEffect());
  for (const double bad : {32768.0, -32768.001, std::nan(""), HUGE_VAL}) {
    const auto refused = instance.setCorners(Corners{{0, 0}, {1, 0}, {0, bad}, {1, 1}});
    EXPECT_TRUE(isError(refused, ErrorKind::InvalidArgument, "lower left corner")) << bad;
  }
  EXPECT_FALSE(instance.setCorners({AnimatedPoint({{std::nan(""), {}}}, Interpolation::Linear), {}, {}, {}}));
  EXPECT_TRUE(instance.setCorners(Corners{{-32768, 32767.999}, {1, 0}, {0, 0}, {1, 1}}));
}

TEST(RequestTest, WhatTheBilinearRendererCannotReachIsRefused) {
  const Image layer = noise({8, 8}, Depth::Bits8);
  Instance concave = instanceWith({{20000, 0}, {20100, 0}, {20000, 100}, {20010, 10}});
  renderFrame(concave, layer, {-20000, 0, -19992, 8});  // nothing of it is there to be drawn wrong
  renderFrame(concave, layer, {0, 0, 20200, 8});
  // In one piece, as the effect itself draws it; tiles are near enough.
  const Rect far{-20000, 0, 20200, 8};
  renderFrame(concave, layer, far);
  Image wider = dirty({40200, 8}, Depth::Bits8);
  const FrameOptions whole{.placement = Placement::Centres};
  EXPECT_EQ("canvas", concave.render(layer.view(), far, wider.view(), whole).error().input);
}

TEST(RequestTest, AnInstanceWithoutAModuleIsRefused) {
  Request request;
  Instance instance(nullptr);
  EXPECT_EQ("module", instance.setCorners(Corners{}).error().input);
  EXPECT_EQ("module", instance.render(request.layer, request.canvas, request.output, {}).error().input);
  EXPECT_EQ("module", instance.boundingBox({8, 8}, {}).error().input);
  EXPECT_EQ(Corners{}, instance.defaultCorners({8, 8}));
}

TEST(RequestTest, ReducedCanvasesBeginAtTheWholePixelThatHoldsTheirCorner) {
  EXPECT_EQ((Rect{-2, 1, 2, 3}), canvasAtResolution({-4, 5, 7, 11}, {4, 2}, 3));
  EXPECT_EQ((Rect{-1, 0, 0, 1}), canvasAtResolution({-3, 0, 0, 1}, {1, 1}, 3));
}

}  // namespace
}  // namespace vantorel::host
