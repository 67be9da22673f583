#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <vector>

#include "effect/BilinearDriver.h"
#include "effect/PixelHelpers.h"
#include "effect/QuadScan.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr std::int32_t kOne = 65536;

using Corners = std::array<M_FixedPoint, 4>;

Corners fixed(const double (&points)[4][2]) {
  Corners corners;
  for (std::size_t i = 0; i < 4; ++i) {
    corners[i] = {static_cast<int>(points[i][0] * kOne), static_cast<int>(points[i][1] * kOne)};
  }
  return corners;
}

Corners rectangle(double left, double top, double right, double bottom) {
  return fixed({{left, top}, {right, top}, {right, bottom}, {left, bottom}});
}

void scan(int depth, GuardedWorld& input, Corners source, Corners corners, GuardedWorld& output) {
  const auto draw = depth == 8 ? FixedToFixed : depth == 16 ? FixedToFixed16 : FixedToFixedFloat;
  draw(nullptr, &input.world, source.data(), corners.data(), &output.world);
  EXPECT_TRUE(output.guardsIntact());
}

int channelOf(int depth, GuardedWorld& world, int x, int y) {
  return depth == 8    ? world.at<PF_Pixel8>(x, y).red
         : depth == 16 ? world.at<PF_Pixel16>(x, y).red
                       : static_cast<int>(world.at<PF_PixelFloat>(x, y).red + 0.5F);
}

void setPixel(int depth, GuardedWorld& world, int x, int y, int c) {
  const auto code = static_cast<std::uint32_t>(c) * 0x01010101u;
  if (depth == 8) {
    world.at<PF_Pixel8>(x, y) = pixelFromCode<PF_Pixel8>(code);
  } else if (depth == 16) {
    world.at<PF_Pixel16>(x, y) = pixelFromCode<PF_Pixel16>(code);
  } else {
    world.at<PF_PixelFloat>(x, y) = pixelFromCode<PF_PixelFloat>(code);
  }
}

// Sets the pixel at (x, y) to the channel value of `at(x, y)`.
template <typename Function>
void paint(int depth, GuardedWorld& world, Function at) {
  for (int y = 0; y < world.world.height; ++y) {
    for (int x = 0; x < world.world.width; ++x) {
      setPixel(depth, world, x, y, at(x, y));
    }
  }
}

// The 8-bit picture of one channel as rows of numbers.
using Picture = std::vector<std::vector<int>>;

Picture pictureOf(int depth, GuardedWorld& world) {
  Picture picture;
  for (int y = 0; y < world.world.height; ++y) {
    auto& row = picture.emplace_back();
    for (int x = 0; x < world.world.width; ++x) {
      row.push_back(channelOf(depth, world, x, y));
    }
  }
  return picture;
}

// What a solid layer of 240 leaves of an empty output of 10 x 8 pixels.
Picture solid(int depth, const Corners& corners) {
  GuardedWorld input(depth, 4, 4);
  GuardedWorld output(depth, 10, 8);
  paint(depth, input, [](int, int) { return 240; });
  scan(depth, input, rectangle(0, 0, 4, 4), corners, output);
  return pictureOf(depth, output);
}

// 240 mixed with 0, of which the weight (16.16) stays.
int shareOf240(std::int32_t weight) {
  return static_cast<int>(MixPixels(240, 0, weight));
}

}  // namespace

// From (2.5, 1.25) to (6.5, 3.5): the weights of both ends, of the first and the last row, over an old picture.
TEST(Scan, AnAxisAlignedQuadToTheBit) {
  constexpr std::int32_t kCover[] = {49152, 0, 32768};
  for (const int depth : {8, 16, 32}) {
    GuardedWorld input(depth, 4, 3);
    GuardedWorld output(depth, 10, 6);
    const auto texel = [](int x, int y) { return 40 + 50 * x + 10 * y; };
    paint(depth, input, texel);
    paint(depth, output, [](int, int) { return 8; });
    scan(depth, input, rectangle(0, 0, 4, 3), rectangle(2.5, 1.25, 6.5, 3.5), output);

    const auto mix = [depth](int a, int b, std::int32_t w) {
      const auto pixel = [](int c) { return PF_PixelFloat{0, float(c), 0, 0}; };
      return depth == 32 ? static_cast<int>(MixPixelsFloat(pixel(a), pixel(b), w).red + 0.5F)
                         : static_cast<int>(MixPixels(unsigned(a), unsigned(b), w));
    };
    // v is 0, 0.75 / 2.25 * 3 = 1, 1.75 / 2.25 * 3 = 2.33 at the rows' tops.
    const int rowOf[] = {0, 1, 2};
    for (int y = 0; y < 6; ++y) {
      for (int x = 0; x < 10; ++x) {
        int expected = 8;
        if (y >= 1 && y <= 3 && x >= 2 && x <= 6) {
          const std::int32_t cover = kCover[y - 1];
          const int v = rowOf[y - 1];
          if (x == 2 || x == 6) {  // half a pixel wide
            expected = mix(texel(x == 2 ? 0 : 3, v), 8, kOne - (cover == 0 ? 32768 : 32768 * (cover / 256) / 256));
          } else {
            const int p = mix(texel(x - 3, v), texel(x - 2, v), 32768);  // u = 0.5, 1.5, 2.5
            expected = cover == 0 ? p : mix(8, p, cover);
          }
        }
        EXPECT_NEAR(channelOf(depth, output, x, y), expected, depth == 32 ? 1 : 0) << depth << ": " << x << " " << y;
      }
    }
    // The exact weights where they differ by depth: pixel 2 of row 1 keeps 160/256 or 160/255 of the old value.
    if (depth == 32) {
      EXPECT_EQ((output.at<PF_PixelFloat>(2, 1).red), 40.0F + (8.0F - 40.0F) * (160.0F / 255.0F));
    }
  }
}

TEST(Scan, ATrapezoidStepsItsRowsFromTheirLeftEnds) {
  GuardedWorld input(8, 4, 4);
  GuardedWorld output(8, 10, 6);
  paint(8, input, [](int x, int y) { return 16 + 56 * x + 4 * y; });
  scan(8, input, rectangle(0, 0, 4, 4), fixed({{4, 0}, {8, 0}, {8, 4}, {0, 4}}), output);
  for (int y = 0; y < 4; ++y) {
    const int left = 4 - y;
    const double du = 4.0 / (8 - left);
    for (int x = 0; x < 10; ++x) {
      const int c = channelOf(8, output, x, y);
      if (x < left || x >= 8) {
        EXPECT_EQ(c, 0) << x << " " << y;
      } else {
        const double u = x == 7 ? 3 : (x - left) * du;  // the right end reads the last column
        EXPECT_NEAR(c, 16 + 56 * u + 4 * y, x == left || x == 7 ? 0 : 1.5) << x << " " << y;
      }
    }
  }
}

TEST(Scan, CoverOfTheFirstAndTheLastRow) {
  struct {
    double top, bottom;
    std::map<int, int> rows;  // what is left of 240 in each row
  } const cases[] = {
      {5.25, 5.75, {{5, shareOf240(kOne - 49152)}}},  // by its top alone
      {5.0, 5.5, {{5, 240}}},
      {5.0, 7.25, {{5, 240}, {6, 240}, {7, shareOf240(kOne - 16384)}}},
      {5.0, 7.0, {{5, 240}, {6, 240}}},
      {1.5, 3.75, {{1, 120}, {2, 240}, {3, shareOf240(kOne - 49152)}}},
      {3.0, 3.0, {}},
      {6.0, 90.0, {{6, 240}, {7, 240}}},
      {-0.5, 1.5, {{0, 240}, {1, 120}}},
      {-9.25, 1.0, {{0, 240}}},
      {-9.0, -2.0, {}},
      {8.0, 9.0, {}},
  };
  for (const auto& c : cases) {
    for (const int depth : {8, 16}) {
      const Picture picture = solid(depth, rectangle(2, c.top, 6, c.bottom));
      for (int y = 0; y < 8; ++y) {
        const auto row = c.rows.find(y);
        const int expected = row == c.rows.end() ? 0 : row->second;
        EXPECT_EQ(picture[std::size_t(y)][1], 0);
        EXPECT_EQ(picture[std::size_t(y)][6], 0);
        EXPECT_NEAR(picture[std::size_t(y)][3], expected, 1) << c.top << " " << c.bottom << " " << y;
        EXPECT_NEAR(picture[std::size_t(y)][5], expected, 1) << c.top << " " << c.bottom << " " << y;
      }
    }
  }
}

TEST(Scan, BothEndsOfARow) {
  const auto covered = [](double width) { return shareOf240(kOne - static_cast<int>(width * kOne)); };
  struct {
    double left, right;
    std::array<int, 10> row;
  } const cases[] = {
      {2, 6, {0, 0, 240, 240, 240, 240, 0, 0, 0, 0}},
      {2.25, 5.75, {0, 0, covered(0.75), 240, 240, covered(0.75), 0, 0, 0, 0}},
      {2, 3, {0, 0, 240, 0, 0, 0, 0, 0, 0, 0}},
      {2.25, 3, {0, 0, covered(0.75), 0, 0, 0, 0, 0, 0, 0}},
      {2, 2.5, {0, 0, covered(0.5), 0, 0, 0, 0, 0, 0, 0}},
      {2.25, 2.75, {0, 0, covered(0.5), 0, 0, 0, 0, 0, 0, 0}},  // within one pixel
      {2.75, 3.25, {0, 0, covered(0.25), covered(0.25), 0, 0, 0, 0, 0, 0}},
      {2.75, 4.25, {0, 0, covered(0.25), 240, covered(0.25), 0, 0, 0, 0, 0}},
      {-3.5, 1.25, {240, covered(0.25), 0, 0, 0, 0, 0, 0, 0, 0}},
      {-0.5, 0.5, {covered(0.5), 0, 0, 0, 0, 0, 0, 0, 0, 0}},
      {8.5, 30, {0, 0, 0, 0, 0, 0, 0, 0, covered(0.5), 240}},
      {9.25, 10, {0, 0, 0, 0, 0, 0, 0, 0, 0, covered(0.75)}},
      {10, 12, {}},
      {-8, 0, {}},
      {-20000, 20000, {240, 240, 240, 240, 240, 240, 240, 240, 240, 240}},
  };
  for (const auto& c : cases) {
    const std::vector<int> expected(c.row.begin(), c.row.end());
    for (const int depth : {8, 16}) {
      EXPECT_EQ(solid(depth, rectangle(c.left, 2, c.right, 4))[3], expected) << c.left << " " << c.right;
      // The chains swapped: the same span from the other side.
      EXPECT_EQ(solid(depth, rectangle(c.right, 2, c.left, 4))[3], expected) << c.left << " " << c.right;
    }
  }
}

// A row's right end is the mirror of its left end, whatever the quadrilateral: a solid layer's picture mirrors.
RC_GTEST_PROP(Scan, MirroredCornersGiveTheMirroredPicture, ()) {
  const int depth = *rc::gen::element(8, 16, 32);
  Corners corners;
  Corners mirrored;
  for (std::size_t i = 0; i < 4; ++i) {
    corners[i] = {*rc::gen::inRange(-3 * kOne, 13 * kOne), kOne * *rc::gen::inRange(-2, 10)};
    mirrored[i] = {10 * kOne - corners[i].x, corners[i].y};
  }
  Picture picture = solid(depth, mirrored);
  for (auto& row : picture) {
    std::reverse(row.begin(), row.end());
  }
  RC_ASSERT(solid(depth, corners) == picture);
}

TEST(Scan, TheRightEndReadsItsOwnSourcePixel) {
  for (const int depth : {8, 16, 32}) {
    GuardedWorld input(depth, 4, 1);
    GuardedWorld output(depth, 10, 1);
    paint(depth, input, [](int x, int) { return 10 + 60 * x; });
    scan(depth, input, rectangle(0, 0, 4, 1), rectangle(2, 0, 6, 1), output);
    EXPECT_EQ(pictureOf(depth, output)[0], (std::vector<int>{0, 0, 10, 70, 130, 190, 0, 0, 0, 0}));
    // Mirrored: the layer's left edge lies at the right end.
    output.fillBytes(0);
    scan(depth, input, rectangle(0, 0, 4, 1), rectangle(6.5, 0, 2, 1), output);
    EXPECT_EQ(channelOf(depth, output, 6, 0), 5);
    // Clipped at the left: the positions go on over the pixels that are not drawn.
    output.fillBytes(0);
    scan(depth, input, rectangle(0, 0, 4, 1), rectangle(-2, 0, 2, 1), output);
    EXPECT_EQ(channelOf(depth, output, 0, 0), 130);
    EXPECT_EQ(channelOf(depth, output, 1, 0), 190);
    // A source that starts left of the input is clamped to its first column.
    output.fillBytes(0);
    scan(depth, input, rectangle(-2, 0, 2, 1), rectangle(0, 0, 4, 1), output);
    EXPECT_EQ(channelOf(depth, output, 0, 0), 10);
    EXPECT_EQ(channelOf(depth, output, 1, 0), 10);
    EXPECT_EQ(channelOf(depth, output, 2, 0), 10);
  }
}

// The ends of the range end quickly and draw inside the world alone.
TEST(Scan, CornersAtTheEndsOfTheRange) {
  constexpr std::int32_t kEnds[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 5 * kOne, INT32_MAX - kOne + 1, INT32_MAX};
  std::srand(1);
  const auto end = [&kEnds] { return kEnds[std::rand() % 7]; };
  for (int i = 0; i < 100; ++i) {
    Corners corners;
    for (M_FixedPoint& corner : corners) {
      corner = {end(), end()};
    }
    solid(8, corners);
  }
  GuardedWorld empty(8, 0, 0);
  GuardedWorld output(8, 3, 3);
  scan(8, empty, rectangle(0, 0, 4, 4), rectangle(0, 0, 3, 3), output);
  EXPECT_EQ(pictureOf(8, output), Picture(3, std::vector<int>(3, 0)));
}

TEST(BilinearDriver, CutsTheSourceAndShiftsTheCorners) {
  // Half resolution of a layer of 9 pixels, 4.5, is cut to 4. It stands at an origin of 1 in the input.
  ScriptedHost host(8, {6, 2}, {10, 4});
  host.in.width = 9;
  host.in.height = 2;
  host.in.downsample_x_den = 2;
  host.in.source_origin_x = 1;
  host.in.output_origin_x = 3;
  host.in.output_origin_y = -1;
  paint(8, host.input, [](int x, int) { return 10 + 40 * x; });
  host.output.fillBytes(0x77);
  host.setCorners({{0, 2}, {4, 2}, {4, 4}, {0, 4}});
  EXPECT_EQ(TracePointBilinear(&host.in, &host.out, &host.input.world, &host.output.world), 0);
  EXPECT_EQ(host.log, kReadCorners + Log{"fill fx null null output"} + kAskDepth);
  EXPECT_EQ(pictureOf(8, host.output)[0], std::vector<int>(10, 0));
  const std::vector<int> row = pictureOf(8, host.output)[1];
  EXPECT_EQ(std::vector<int>(row.begin(), row.begin() + 6), (std::vector<int>{0, 0, 0, 50, 90, 130}));
  EXPECT_EQ(std::vector<int>(row.begin() + 7, row.end()), std::vector<int>(3, 0));

  M_FixedPoint corners[4];
  EXPECT_EQ(GetCornerParamsFixed(&host.in, corners, 10, -32768), 0);
  EXPECT_EQ(corners[2].x, 14 * kOne);
  EXPECT_EQ(corners[2].y, 4 * kOne + INT32_MIN);
  EXPECT_EQ(GetCornerParamsFixed(&host.in, corners, 32767, 0), 0);  // wraps
  EXPECT_EQ(corners[1].x, INT32_MIN + 3 * kOne);
}
