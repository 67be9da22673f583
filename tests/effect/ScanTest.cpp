#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "effect/FixedPoint.h"
#include "effect/Parameters.h"
#include "effect/bilinear/BilinearDriver.h"
#include "effect/bilinear/PixelHelpers.h"
#include "effect/bilinear/QuadScan.h"
#include "tests/Pixels.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr int kOne = 65536;
constexpr int kWidth = 6;  // of the layer
constexpr int kHeight = 8;

using Corners = std::array<M_FixedPoint, 4>;
using Picture = std::vector<std::vector<int>>;

Corners rectangle(double left, double top, double right, double bottom) {
  const int l = int(left * kOne), t = int(top * kOne), r = int(right * kOne), b = int(bottom * kOne);
  return {{{l, t}, {r, t}, {r, b}, {l, b}}};
}

// Pictures of gray pixels of any depth, as their alpha channels.
template <typename Function>
void paint(int depth, GuardedWorld& world, Function gray) {
  for (const auto [x, y] : pixelsOf(world.world.width, world.world.height)) {
    const auto c = static_cast<std::uint16_t>(gray(x, y));
    if (depth == 8) {
      world.at<PF_Pixel8>(x, y) = pixelFromCode<PF_Pixel8>(c * 0x01010101u);
    } else if (depth == 16) {
      world.at<PF_Pixel16>(x, y) = {c, c, c, c};
    } else {
      world.at<PF_PixelFloat>(x, y) = {float(c), float(c), float(c), float(c)};
    }
  }
}

Picture pictureOf(int depth, GuardedWorld& world) {
  Picture picture(std::size_t(world.world.height));
  for (const auto [x, y] : pixelsOf(world.world.width, world.world.height)) {
    picture[std::size_t(y)].push_back(depth == 8    ? world.at<PF_Pixel8>(x, y).alpha
                                      : depth == 16 ? world.at<PF_Pixel16>(x, y).alpha
                                                    : int(world.at<PF_PixelFloat>(x, y).alpha + 0.5F));
  }
  return picture;
}

// Float mixing divides by 255 instead of 256 and does not round down, up to three times for a pixel.
constexpr int kFloatSlack = 4;

int largestDifference(const Picture& a, const Picture& b) {
  int largest = 0;
  for (std::size_t y = 0; y < a.size(); ++y) {
    for (std::size_t x = 0; x < a[y].size(); ++x) {
      largest = std::max(largest, std::abs(a[y][x] - b[y][x]));
    }
  }
  return largest;
}

// An output of 10 x 8 pixels that held `before`, with a layer of kWidth x kHeight pixels drawn over it.
template <typename Function>
Picture drawn(int depth, Function gray, Corners source, Corners corners, int before = 0) {
  GuardedWorld input(depth, kWidth, kHeight);
  GuardedWorld output(depth, 10, 8);
  paint(depth, input, gray);
  paint(depth, output, [before](int, int) { return before; });
  const auto draw = depth == 8 ? FixedToFixed : depth == 16 ? FixedToFixed16 : FixedToFixedFloat;
  draw(nullptr, &input.world, source.data(), corners.data(), &output.world);
  EXPECT_TRUE(output.guardsIntact() && input.guardsIntact());
  return pictureOf(depth, output);
}

int texel(int x, int y) {
  return 13 + 20 * x + 11 * y;
}

Picture solid(int depth, const Corners& corners) {
  return drawn(
      depth, [](int, int) { return 240; }, rectangle(0, 0, kWidth, kHeight), corners);
}

// What is left of 240 where `part` of a pixel is covered.
int covered(double part) {
  return int(MixPixels(240, 0, kOne - int(part * kOne)));
}

// ---- The scan renderer's definition over `texel`, in plain terms ---------------------------------------------------

struct ReferenceChain {
  int direction, from, to, x = 0, slope = 0, u = 0, v = 0;
  void step() { from = to, to = (to + direction) % 4; }
};

// Draws one row between two chains.
void referenceRow(const ReferenceChain& a, const ReferenceChain& b, int coverage, std::vector<int>& row) {
  int texels[kHeight][kWidth];
  for (int i = 0; i < kWidth * kHeight; ++i) {
    texels[i / kWidth][i % kWidth] = texel(i % kWidth, i / kWidth);
  }
  const auto mix = [](int p, int q, int w) { return int(MixPixels(unsigned(p), unsigned(q), w)); };
  const auto wrap = [](std::int64_t sum) { return static_cast<int>(sum); };
  const int du = FixedDiv(b.u - a.u, b.x - a.x), dv = FixedDiv(b.v - a.v, b.x - a.x);
  const ReferenceChain& left = b.x > a.x ? a : b;
  const int right = std::max(a.x, b.x);
  const int end = right < 10 * kOne ? right - kOne : 10 * kOne;
  int x = left.x, u = left.u, v = left.v;
  const auto draw_end = [&](int column, int covered, bool is_left_of_whole = false) {
    const int weight = kOne - (coverage == 0 ? covered : int(std::int64_t{covered} * coverage >> 16));
    if (column >= 0 && (weight != kOne || is_left_of_whole)) {
      int& d = row[std::size_t(column)];
      d = mix(texels[std::clamp(v >> 16, 0, kHeight - 1)][std::clamp(u >> 16, 0, kWidth - 1)], d, weight);
    }
  };
  const int last = (right - 1) >> 16;  // the column that holds the right end
  if (right < 10 * kOne && left.x >> 16 == last) {
    draw_end(last, right - left.x);
    return;
  }
  if (const int rest = kOne - (x & 65535); rest != kOne) {
    if (x < 10 * kOne) {
      draw_end(x >> 16, rest, x < end);
    }
    u = wrap(std::int64_t{u} + KZ_FixMulDiv(du, rest, kOne));
    v = wrap(std::int64_t{v} + KZ_FixMulDiv(dv, rest, kOne));
    x += rest;
  }
  for (; x < end; x += kOne, u += du, v += dv) {
    if (x >= 0) {
      const auto address = reinterpret_cast<std::intptr_t>(texels) + 4 * kWidth * (v >> 16) + 4 * (u >> 16);
      const int sample = GetAPixel(reinterpret_cast<int*>(address), 4 * kWidth, u, v, du, dv, kWidth, kHeight);
      int& d = row[std::size_t(x >> 16)];
      d = coverage == 0 ? sample : mix(d, sample, coverage);
    }
  }
  if (right < 10 * kOne) {
    draw_end(last, right - last * kOne);
  }
}

Picture referenceScan(const Corners& s, const Corners& q, int before) {
  Picture out(8, std::vector<int>(10, before));
  const auto at = [](const Corners& corners, int i) { return corners[std::size_t(i)]; };
  int top = 0, y_max = q[0].y;
  for (int i = 1; i < 4; ++i) {
    top = at(q, i).y < at(q, top).y ? i : top;
    y_max = std::max(y_max, at(q, i).y);
  }
  int y = at(q, top).y;
  ReferenceChain a{3, top, (top + 3) % 4}, b{1, top, (top + 1) % 4};
  const auto passed = [&](const ReferenceChain& c) { return a.to != b.to && y < y_max && y >= at(q, c.to).y; };
  for (ReferenceChain* c : {&a, &b}) {
    while (passed(*c)) {
      c->step();
    }
  }
  for (ReferenceChain* c : {&a, &b}) {
    const double run = at(q, c->to).x - at(q, c->from).x, rise = at(q, c->to).y - at(q, c->from).y;
    c->x = at(q, c->from).x;
    c->slope = rise == 0 ? 0 : int(run / rise * 65536);
  }
  bool last = false;
  for (int coverage = 0; y < y_max;) {
    coverage = (y & 65535) != 0 ? kOne - (y & 65535) : coverage;
    bool flat = false;
    for (ReferenceChain* c : {&a, &b}) {
      while (passed(*c)) {
        c->step();
        const int rise = at(q, c->to).y - at(q, c->from).y;
        c->slope = rise == 0 ? 0 : FixedDiv(at(q, c->to).x - at(q, c->from).x, rise);
        c->x = at(q, c->from).x + KZ_FixMulDiv(c->slope, y - at(q, c->from).y, kOne);
      }
    }
    for (ReferenceChain* c : {&a, &b}) {
      const M_FixedPoint from = at(s, c->from), to = at(s, c->to);
      const int below = y - at(q, c->from).y, length = at(q, c->to).y - at(q, c->from).y;
      flat = flat || length == 0;
      c->u = from.x + (length == 0 ? 0 : KZ_FixMulDiv(to.x - from.x, below, length));
      c->v = from.y + (length == 0 ? 0 : KZ_FixMulDiv(to.y - from.y, below, length));
    }
    if (y >= 0 && y < 8 * kOne && a.x != b.x && !flat) {
      referenceRow(a, b, coverage, out[std::size_t(y >> 16)]);
    }
    for (ReferenceChain* c : {&a, &b}) {
      c->x += coverage != 0 ? KZ_FixMulDiv(c->slope, coverage, kOne) : c->slope;
    }
    y += coverage == 0 || last ? kOne : coverage;
    coverage = y > y_max - kOne && !last ? y_max - y : 0;
    last = last || y > y_max - kOne;
  }
  return out;
}

// Corners on the 1/8 grid, often on the world's edges or in line with each other.
Corners someCorners(int low, int high) {
  const auto eighths = rc::gen::oneOf(rc::gen::inRange(low * 8, high * 8), rc::gen::element(0, 32, 64, 80));
  Corners corners;
  for (M_FixedPoint& corner : corners) {
    corner = {*eighths * (kOne / 8), *eighths * (kOne / 8)};
  }
  return corners;
}

}  // namespace

RC_GTEST_PROP(Scan, EqualsItsDefinition, ()) {
  const Corners corners = someCorners(-3, 13);
  const Corners source = *rc::gen::inRange(0, 2) == 0 ? rectangle(0, 0, kWidth, kHeight) : someCorners(-2, 11);
  const Picture expected = referenceScan(source, corners, 8);
  for (const int depth : {8, 16, 32}) {
    RC_ASSERT(largestDifference(drawn(depth, texel, source, corners, 8), expected) <= (depth == 32 ? kFloatSlack : 0));
  }
}

// What the property above draws too rarely: rows within a pixel or two, ends past the 16.16 range's half, and the
// weights themselves.
TEST(Scan, NarrowRowsAndPartialCoverage) {
  struct {
    double left, right;
    std::vector<int> row;
  } const cases[] = {{2.25, 2.75, {0, 0, covered(0.5), 0, 0, 0, 0, 0, 0, 0}},
                     {2.75, 3.25, {0, 0, covered(0.25), covered(0.25), 0, 0, 0, 0, 0, 0}},
                     {2.25, 3.25, {0, 0, covered(0.75), covered(0.25), 0, 0, 0, 0, 0, 0}},
                     {2.75, 4.25, {0, 0, covered(0.25), 240, covered(0.25), 0, 0, 0, 0, 0}},
                     {-20000, 20000, std::vector<int>(10, 240)}};
  for (const auto& c : cases) {
    EXPECT_EQ(solid(8, rectangle(c.left, 2, c.right, 4))[3], c.row) << c.left;
    EXPECT_EQ(solid(16, rectangle(c.right, 2, c.left, 4))[3], c.row) << c.left;
  }
  // Half a pixel wide in a row covered by 0.75: the weight of the old value is 0.625, its factor 160 of 256 or of 255.
  EXPECT_EQ(solid(8, rectangle(2.5, 1.25, 6.5, 3.5))[1][2], 90);
  EXPECT_EQ(solid(32, rectangle(2.5, 1.25, 6.5, 3.5))[1][6], 89);
  // Half of 1/65536 pixel: a covered area that rounds to nothing.
  EXPECT_EQ(solid(8, rectangle(2, 1, 4 + 1.0 / kOne, 3.5))[3][4], 0);
}

// A layer of 2 x 2 pixels inside a larger buffer: nothing that surrounds it is drawn, the row's right end included.
TEST(Scan, AnUnmirroredPictureReadsTheLayerAlone) {
  const auto gray = [](int x, int y) { return x > 0 && x < 3 && y > 0 && y < 3 ? 20 * x : 250; };
  for (const int depth : {8, 16, 32}) {
    for (const double left : {2.0, 2.25, 2.875}) {
      const Picture picture = drawn(depth, gray, rectangle(1, 1, 3, 3), rectangle(left, 1, left + 2, 3));
      for (const int row : {1, 2}) {
        EXPECT_LE(*std::max_element(picture[row].begin(), picture[row].end()), 40) << depth << " " << left;
        EXPECT_TRUE(left != 2.0 || picture[row] == (std::vector<int>{0, 0, 20, 40, 0, 0, 0, 0, 0, 0})) << depth;
      }
    }
  }
}

// Whole frames against pixels that are known by other means: where the bilinear renderer draws a crossed quadrilateral,
// those of the definition, and where the perspective renderer draws, the samples in their order.
TEST(Render, EveryDepthRendererQualityAndProtocol) {
  for (int combination = 0; combination < 24; ++combination) {
    const int depth = 8 << combination / 8;
    const bool is_crossed = (combination & 1) != 0;
    ScriptedHost host(depth, {kWidth, kHeight}, {10, 8});
    host.in.quality = combination >> 1 & 1;
    paint(depth, host.input, texel);
    paint(depth, host.output, [](int, int) { return 119; });
    const double right = is_crossed ? 0 : 10;
    host.setCorners({{10 - right, 0}, {right, 0}, {10, 8}, {0, 8}});
    EXPECT_EQ(host.run((combination & 4) != 0 ? CMD_SMART_RENDER : CMD_RENDER), 0);
    Picture expected = referenceScan(rectangle(0, 0, kWidth, kHeight),
                                     {{{10 * kOne, 0}, {0, 0}, {10 * kOne, 8 * kOne}, {0, 8 * kOne}}}, 0);
    for (int i = 0; i < 80 && !is_crossed; ++i) {  // from the last row up
      expected[std::size_t(7 - i / 10)][std::size_t(i % 10)] = i + 1;
    }
    EXPECT_LE(largestDifference(pictureOf(depth, host.output), expected), depth == 32 && is_crossed ? kFloatSlack : 0)
        << combination;
  }
}

TEST(BilinearDriver, CutsTheSourceAndShiftsTheCorners) {
  // Half resolution of a layer of 9 x 5 pixels, 4.5 x 2.5, is cut to 4 x 2. It stands at (1, 1) in the input.
  ScriptedHost host(8, {6, 4}, {10, 4});
  host.in.width = 9;
  host.in.height = 5;
  host.in.downsample_x_den = host.in.downsample_y_den = 2;
  host.in.source_origin_x = host.in.source_origin_y = 1;
  host.in.output_origin_x = 3;
  host.in.output_origin_y = -1;
  paint(8, host.input, [](int x, int y) { return 10 + 40 * x + 3 * y; });
  host.output.fillBytes(0x77);
  host.setCorners({{0, 2}, {4, 2}, {4, 4}, {0, 4}});
  EXPECT_EQ(TracePointBilinear(&host.in, &host.out, &host.input.world, &host.output.world), 0);
  const Picture picture = pictureOf(8, host.output);
  EXPECT_EQ(picture[0], std::vector<int>(10, 0));
  EXPECT_EQ(std::vector<int>(picture[1].begin(), picture[1].begin() + 6), (std::vector<int>{0, 0, 0, 53, 93, 133}));
  EXPECT_EQ(std::vector<int>(picture[2].begin(), picture[2].begin() + 6), (std::vector<int>{0, 0, 0, 56, 96, 136}));

  M_FixedPoint corners[4];
  EXPECT_EQ(GetCornerParamsFixed(&host.in, corners, 32767, -32768), 0);  // wraps
  EXPECT_EQ(corners[2].x, INT32_MIN + 3 * kOne);
  EXPECT_EQ(corners[3].y, 4 * kOne + INT32_MIN);
}
