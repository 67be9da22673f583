#include <gtest/gtest.h>

#include <cmath>

#include "tests/effect/ScriptedHost.h"

TEST(FrameSetup, SizesTheOutputToTheWidenedCorners) {
  struct {
    double corners[4][2];
    M_LRect hint;
    M_LPoint output_origin;
    std::int32_t width, height, origin_x, origin_y;
  } const cases[] = {
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}, {-1, -1, 101, 81}, {0, 0}, 102, 82, 1, 1},
      {{{0.25, 0}, {10.5, 0}, {10.5, 8}, {0.25, 8}}, {-99, -99, 99, 99}, {0, 0}, 13, 10, 1, 1},
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}, {10, 20, 60, 50}, {0, 0}, 50, 30, -10, -20},      // cut to the hint
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}, {0, 0, 500, 500}, {-7, 5}, 94, 82, 0, -4},        // shifted
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}, {500, 500, 600, 600}, {0, 0}, 1, 1, -500, -500},  // wholly outside
      // Bilinear: straight from the values passed with the command, here self-crossing.
      {{{30.5, 2}, {-4, 2}, {25, 40}, {0, 8}}, {-99, -99, 99, 99}, {3, 0}, 37, 40, 2, -1},
  };
  for (const auto& c : cases) {
    ScriptedHost host(8, {100, 80});
    host.setCorners(c.corners);
    host.output.world.extent_hint = c.hint;
    host.in.output_origin_x = c.output_origin.x;
    host.in.output_origin_y = c.output_origin.y;
    EXPECT_EQ(host.run(CMD_FRAME_SETUP), 0);
    const bool bilinear = c.corners[0][0] > c.corners[1][0];
    EXPECT_EQ(host.log, bilinear ? kReadCorners : kReadCorners + kReadCorners);
    EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
      out.width = c.width;
      out.height = c.height;
      out.origin_x = c.origin_x;
      out.origin_y = c.origin_y;
    })) << host.out.width
        << "x" << host.out.height << " at " << host.out.origin_x << ", " << host.out.origin_y;
  }
}

TEST(FrameSetup, RefusesMoreThanTheLimit) {
  const Log refusal = {"lookup_string table 5 0 null", "sprintf Limit %d"};
  for (const bool tall : {false, true}) {
    for (const std::int32_t size : {30000, 30001}) {
      ScriptedHost host(8, {4, 4});
      const double w = tall ? 10 : size - 2;
      const double h = tall ? size - 2 : 10;
      host.setCorners({{0, 0}, {w, 0}, {w, h}, {0, h}});
      host.output.world.extent_hint = {-40000, -40000, 40000, 40000};
      EXPECT_EQ(host.run(CMD_FRAME_SETUP), size == 30000 ? 0 : ERR_FAILED);
      EXPECT_EQ(host.log, kReadCorners + kReadCorners + (size == 30000 ? Log{} : refusal));
      EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
        out.origin_x = out.origin_y = 1;
        if (size == 30000) {
          out.width = tall ? 12 : size;
          out.height = tall ? size : 12;
        } else {
          out.out_flags |= OUT_FLAG_SHOW_MESSAGE;
          std::strcpy(out.return_msg, "Limit 30000");
        }
      }));
    }
  }
  ScriptedHost host;
  host.utilities.ceil = [](double) { return std::nan(""); };  // counts as -2147483648
  EXPECT_EQ(host.run(CMD_FRAME_SETUP), 0);
  EXPECT_EQ(host.out.width, 1);
  EXPECT_EQ(host.out.origin_x, INT32_MIN);
}

TEST(PreRender, UnitesTheCheckoutWithTheCornersInsideTheRequest) {
  constexpr M_LRect kAlone = {1, 2, 3, 4};  // what the answer held before
  constexpr M_LRect kNo = {0, 0, 0, 0};
  constexpr M_LRect kWide = {-99, -99, 200, 200};
  constexpr M_LRect kLayer = {0, 0, 100, 80};
  constexpr M_LRect kAround = {-1, -1, 101, 81};
  struct {
    M_FloatRect corners;
    M_LRect request, delivered, largest, expected, expected_largest;
    std::uint32_t downsample;
    int output_origin;                // counts on the perspective path alone
    M_LPoint source_origin = {0, 0};  // where the layer lies in its buffer
  } const cases[] = {
      {{0, 0, 100, 80}, kWide, kLayer, kNo, kAround, kAround, 1, 0},
      // Cut to the host's own request, not to the whole layer.
      {{10, 10, 60, 50}, {20, -5, 120, 30}, kLayer, {0, 0, 150, 90}, {20, 0, 100, 30}, {0, 0, 150, 90}, 1, 0},
      // Nothing delivered: the first rectangle is left alone. Equal columns alone count, not equal rows.
      {{0, 0, 100, 80}, kWide, {40, 0, 40, 80}, kNo, kAlone, kAround, 1, 0},
      {{0, 0, 100, 80}, kWide, {0, 5, 9, 5}, kNo, kAround, kAround, 1, 0},
      // Bounds truncate toward zero. The corners are those of the scaled layer. One point is bilinear.
      {{-2.5, 0, 7.9, 3}, kWide, kNo, kNo, kAlone, {-3, -1, 8, 4}, 1, 0},
      {{0, 0, 50, 40}, kWide, kNo, kNo, kAlone, {4, -1, 56, 41}, 2, 5},
      {{0, 0, 51, 40}, kWide, kNo, kNo, kAlone, {4, -1, 58, 41}, 3, 5},  // in a buffer of whole pixels, 34 x 27
      {{0, 0, 50, 40}, kWide, {0, 0, 50, 40}, kNo, {0, -1, 56, 41}, {4, -1, 56, 41}, 2, 5},
      {{5, 5, 5, 5}, kWide, {0, 0, 3, 3}, kNo, {0, 0, 6, 6}, {4, 4, 6, 6}, 1, 5},
      // A larger buffer that the layer is offset in, and parts of the layer, whose buffer is taken to have its size.
      {{0, 0, 100, 80}, kWide, {-10, -5, 130, 90}, kNo, {-11, -6, 131, 91}, {-11, -6, 131, 91}, 1, 0, {10, 5}},
      {{0, 0, 100, 80}, kWide, {-10, -5, 50, 40}, kNo, {-11, -6, 91, 76}, {-11, -6, 91, 76}, 1, 0, {10, 5}},
      {{0, 0, 100, 80}, kWide, {-10, -5, 130, 40}, kNo, {-11, -6, 130, 76}, {-11, -6, 91, 76}, 1, 0, {10, 5}},
      {{0, 0, 100, 80}, kWide, {-10, -5, 50, 90}, kNo, {-11, -6, 91, 90}, {-11, -6, 91, 76}, 1, 0, {10, 5}},
  };
  for (const auto& c : cases) {
    ScriptedHost host(8, {100, 80});
    host.in.downsample_x_den = host.in.downsample_y_den = c.downsample;
    host.in.output_origin_x = c.output_origin;
    host.in.source_origin_x = c.source_origin.x;
    host.in.source_origin_y = c.source_origin.y;
    const M_FloatRect& q = c.corners;
    host.setCorners({{q.left, q.top}, {q.right, q.top}, {q.right, q.bottom}, {q.left, q.bottom}});
    host.request.rect = c.request;
    host.checkout = {c.delivered, c.largest};
    host.result = {kAlone, kAlone};
    EXPECT_EQ(host.run(CMD_PRE_RENDER), 0);
    EXPECT_EQ(host.log[0], "checkout_layer fx 0 0 [0 0 100 80] 5 2 24");  // the whole layer, whatever is requested
    EXPECT_TRUE(std::memcmp(&host.result.result_rect, &c.expected, sizeof c.expected) == 0) << &c - cases;
    EXPECT_TRUE(std::memcmp(&host.result.max_result_rect, &c.expected_largest, sizeof c.expected) == 0) << &c - cases;
  }
}
