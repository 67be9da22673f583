#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/effect/ScriptedHost.h"

namespace {

bool same(const M_LRect& r, const M_LRect& s) {
  return std::memcmp(&r, &s, sizeof r) == 0;
}

}  // namespace

TEST(FrameSetup, SizesTheOutputToTheWidenedCorners) {
  struct {
    double corners[4][2];
    M_LRect hint;
    M_LPoint outputOrigin;
    std::int32_t width, height, originX, originY;
  } const cases[] = {
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}}, {-1, -1, 101, 81}, {0, 0}, 102, 82, 1, 1},
      {{{0.25, 0}, {10.5, 0}, {10.5, 8}, {0.25, 8}}, {-99, -99, 99, 99}, {0, 0}, 13, 10, 1, 1},  // -0.75 .. 11.5
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
    host.in.output_origin_x = c.outputOrigin.x;
    host.in.output_origin_y = c.outputOrigin.y;
    EXPECT_EQ(host.run(CMD_FRAME_SETUP), 0);
    const bool bilinear = c.corners[0][0] > c.corners[1][0];
    EXPECT_EQ(host.log, bilinear ? kReadCorners : kReadCorners + kReadCorners);
    EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
      out.width = c.width;
      out.height = c.height;
      out.origin_x = c.originX;
      out.origin_y = c.originY;
    })) << host.out.width
        << "x" << host.out.height << " at " << host.out.origin_x << ", " << host.out.origin_y;
  }
}

TEST(FrameSetup, RefusesMoreThanTheLimit) {
  for (const bool tall : {false, true}) {
    for (const std::int32_t size : {30000, 30001}) {
      ScriptedHost host(8, {4, 4});
      const double w = tall ? 10 : size - 2;
      const double h = tall ? size - 2 : 10;
      host.setCorners({{0, 0}, {w, 0}, {w, h}, {0, h}});
      host.output.world.extent_hint = {-40000, -40000, 40000, 40000};
      EXPECT_EQ(host.run(CMD_FRAME_SETUP), size == 30000 ? 0 : ERR_FAILED);
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
      const Log refusal = {"lookup_string table 5 0 null", "sprintf Limit %d"};
      EXPECT_EQ(host.log, kReadCorners + kReadCorners + (size == 30000 ? Log{} : refusal));
    }
  }
}

TEST(FrameSetup, FailedReads) {
  // A failure while the path is chosen selects the bilinear path, which reads no parameters here.
  for (std::size_t n = 0; n < 16; ++n) {
    ScriptedHost host;
    host.fail(n % 2 == 0 ? "checkout_param" : "checkin_param", static_cast<int>(n / 2) + 1, 60);
    const Log all = kReadCorners + kReadCorners;
    EXPECT_EQ(host.run(CMD_FRAME_SETUP), n < 8 ? 0 : 60);
    EXPECT_EQ(host.log, Log(all.begin(), all.begin() + static_cast<int>(n) + 1));
    EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
      if (n < 8) {
        out.width = 8;  // cut to the output's hint
        out.height = 6;
        out.origin_x = out.origin_y = 0;
      }
    }));
  }
}

TEST(FrameSetup, SizesThatAreNotNumbersCountAsOne) {
  ScriptedHost host;
  host.utilities.ceil = [](double) { return std::nan(""); };
  EXPECT_EQ(host.run(CMD_FRAME_SETUP), 0);
  EXPECT_TRUE(host.outIs([](PF_OutData& out) {
    out.width = out.height = 1;
    out.origin_x = out.origin_y = INT32_MIN;
  }));
}

namespace {

const Log kCheckoutLayer = {"checkout_layer fx 0 0 [0 0 100 80] 5 2 24"};

// A pre-render's answer, {1, 2, 3, 4} and {5, 6, 7, 8} where it was left alone.
struct Answer {
  std::int32_t code;
  M_LRect rect, largest;
  Log log;
};

Answer preRender(ScriptedHost& host) {
  host.result = {{1, 2, 3, 4}, {5, 6, 7, 8}};
  const std::int32_t code = host.run(CMD_PRE_RENDER);
  EXPECT_TRUE(host.outIs());
  return {code, host.result.result_rect, host.result.max_result_rect, host.log};
}

}  // namespace

TEST(PreRender, UnitesTheCheckoutWithTheCornersInsideTheRequest) {
  struct {
    double corners[4][2];
    M_LRect request, delivered, largest, expected, expectedLargest;
  } const cases[] = {
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}},
       {-9, -9, 200, 200},
       {0, 0, 100, 80},
       {0, 0, 100, 80},
       {-1, -1, 101, 81},
       {-1, -1, 101, 81}},
      // Cut to the host's own request, not to the whole layer.
      {{{10, 10}, {60, 10}, {60, 50}, {10, 50}},
       {20, -5, 120, 30},
       {0, 0, 100, 80},
       {0, 0, 150, 90},
       {20, 0, 100, 30},
       {0, 0, 150, 90}},
      // Nothing delivered: the first rectangle is left alone.
      {{{0, 0}, {100, 0}, {100, 80}, {0, 80}},
       {0, 0, 50, 50},
       {40, 0, 40, 80},
       {0, 0, 0, 0},
       {1, 2, 3, 4},
       {-1, -1, 101, 81}},
      // Bounds truncate toward zero: -3.5 becomes -3, 8.9 becomes 8. One point is bilinear, and widened.
      {{{-2.5, 0}, {7.9, 0}, {7.9, 3}, {-2.5, 3}},
       {-99, -99, 99, 99},
       {1, 1, 1, 2},
       {0, 0, 0, 0},
       {1, 2, 3, 4},
       {-3, -1, 8, 4}},
      {{{5, 5}, {5, 5}, {5, 5}, {5, 5}}, {-99, -99, 99, 99}, {1, 1, 1, 2}, {0, 0, 0, 0}, {1, 2, 3, 4}, {4, 4, 6, 6}},
      {{{5, 5}, {5, 5}, {5, 5}, {5, 5}}, {-99, -99, 99, 99}, {0, 0, 3, 3}, {0, 0, 0, 0}, {0, 0, 6, 6}, {4, 4, 6, 6}},
  };
  for (const auto& c : cases) {
    ScriptedHost host(8, {100, 80});
    host.setCorners(c.corners);
    host.request.rect = c.request;
    host.checkout = {c.delivered, c.largest};
    const Answer answer = preRender(host);
    EXPECT_EQ(answer.code, 0);
    EXPECT_TRUE(same(answer.rect, c.expected))
        << answer.rect.left << " " << answer.rect.top << " " << answer.rect.right << " " << answer.rect.bottom;
    EXPECT_TRUE(same(answer.largest, c.expectedLargest)) << answer.largest.left << " " << answer.largest.right;
    EXPECT_EQ(answer.log, kCheckoutLayer + kReadCorners + kReadCorners);
    EXPECT_TRUE(same(host.request.rect, c.request));
  }
}

TEST(PreRender, EveryFailureLeavesTheAnswerAlone) {
  const Log all = kCheckoutLayer + kReadCorners + kReadCorners;
  for (std::size_t n = 0; n < all.size(); ++n) {
    ScriptedHost host(8, {100, 80});
    const std::string callback = all[n].substr(0, all[n].find(' '));
    host.fail(callback, n == 0 ? 1 : static_cast<int>(n + 1) / 2, 61);
    const Answer answer = preRender(host);
    // A failing read while the path is chosen selects the bilinear path, whose own reads then succeed.
    const bool pathChoice = n >= 1 && n <= 8;
    EXPECT_EQ(answer.code, pathChoice ? 0 : 61) << all[n];
    EXPECT_TRUE(same(answer.rect, pathChoice ? M_LRect(0, 0, 100, 80) : M_LRect(1, 2, 3, 4)));
    EXPECT_TRUE(same(answer.largest, pathChoice ? M_LRect(-1, -1, 101, 81) : M_LRect(5, 6, 7, 8)));
    const Log upTo(all.begin(), all.begin() + static_cast<int>(n) + 1);
    EXPECT_EQ(answer.log, pathChoice ? upTo + kReadCorners : upTo);
  }
}

TEST(PreRender, WorksFromTheScaledLayer) {
  ScriptedHost host(8, {100, 80});
  host.in.downsample_x_den = host.in.downsample_y_den = 2;
  host.in.output_origin_x = 10;  // counts on the perspective path alone
  host.setCorners({{0, 0}, {50, 0}, {50, 40}, {0, 40}});
  host.checkout = {{0, 0, 50, 40}, {0, 0, 50, 40}};
  host.request.rect = {-99, -99, 99, 99};
  const Answer answer = preRender(host);
  EXPECT_TRUE(same(answer.rect, {0, -1, 61, 41})) << answer.rect.left << " " << answer.rect.right;
}
