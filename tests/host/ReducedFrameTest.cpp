// Frames at reduced resolution whose corners are counted from pixel centres.
#include <gtest/gtest.h>

#include "host/Downsample.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(ReducedFrameTest, CornersFromCentresAreThoseOfTheReducedLayer) {
  Image layer = testing::noise({30, 18}, Depth::Bits16);
  Image reduced = testing::dirty({10, 6}, Depth::Bits16);
  downsample(asConst(layer.view()), 3, BlockEdges::Transparent, reduced.view());
  for (const Point& lower_right : {Point{33, 18}, Point{9, 9}}) {  // by the perspective and the bilinear renderer
    Instance instance = testing::instanceWith(testing::checkedEffect(), {{3, 6}, {27, 0}, {-6, 21}, lower_right});
    const testing::Frame frame =
        testing::renderFrame(instance, layer, {-6, -3, 36, 24}, {.placement = Placement::Centres, .downsample = 3});
    Instance whole = testing::instanceWith(testing::checkedEffect(),
                                           {{1, 2}, {9, 0}, {-2, 7}, {lower_right.x / 3, lower_right.y / 3}});
    const testing::Frame expected =
        testing::renderFrame(whole, reduced, {-2, -1, 12, 8}, {.placement = Placement::Centres});
    EXPECT_TRUE(testing::samePixels(expected.pixels.view(), frame.pixels.view())) << lower_right.x;
  }
}

}  // namespace
}  // namespace vantorel::host
