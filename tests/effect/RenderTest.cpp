#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "effect/HighQualitySampler.h"
#include "effect/PerspectiveInfo.h"
#include "effect/StandardSampler.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr double kCrossed[4][2] = {{6, 1}, {1, 1}, {6, 5}, {1, 5}};  // goes to the bilinear renderer

// The end of the log of a frame that the iterator of this depth draws.
Log iteration(int depth, const std::string& rows, const std::string& sampler) {
  const std::string suffix = depth == 8 ? "8" : depth == 16 ? "16" : "float";
  const Log call = {"iterate_" + suffix + " in 0 6 null [0 " + rows + "] " + sampler + " output"};
  if (depth != 32) {
    return call;
  }
  return Log{"acquire PF SamplingFloat Suite/1", "acquire PF iterateFloat Suite/1"} + call +
         Log{"release PF iterateFloat Suite/1", "release PF SamplingFloat Suite/1"};
}

const Log kCheckOutWorlds = {"checkout_layer_pixels fx 0", "checkout_output fx"};

void nameSamplers(ScriptedHost& host) {
  const auto name = [&host](auto* function, const char* text) {
    host.names[reinterpret_cast<const void*>(function)] = text;
  };
  name(KZFX_TracePointHi, "high");
  name(KZFX_TracePointHi16, "high");
  name(KZFX_TracePointHiFloat, "high");
  name(KZFX_TracePointFPU, "standard");
  name(KZFX_TracePointFPU16, "standard");
  name(KZFX_TracePointFPUFloat, "standard");
}

// One more than the number of earlier lines of the same callback.
int occurrence(const Log& log, std::size_t n, const std::string& callback) {
  return 1 + static_cast<int>(std::count_if(log.begin(), log.begin() + static_cast<int>(n), [&](const std::string& s) {
           return s.substr(0, s.find(' ')) == callback;
         }));
}

}  // namespace

TEST(Render, CallsTheHostInOrderAtEveryDepthQualityAndProtocol) {
  for (const int depth : {8, 16, 32}) {
    for (const std::int32_t quality : {1, 0, 2, -1}) {
      for (const std::int32_t command : {CMD_RENDER, CMD_SMART_RENDER}) {
        ScriptedHost host(depth);
        nameSamplers(host);
        host.in.quality = quality;
        EXPECT_EQ(host.run(command), 0);
        EXPECT_EQ(host.log, (command == CMD_RENDER ? Log{} : kCheckOutWorlds) + kReadCorners + kReadCorners +
                                kAskDepth + iteration(depth, "0 1 6", quality == 1 ? "high" : "standard"));
        EXPECT_TRUE(host.outIs());
        EXPECT_TRUE(host.output.guardsIntact());

        host.log.clear();
        host.setCorners(kCrossed);
        EXPECT_EQ(host.run(command), 0);
        EXPECT_EQ(host.log, (command == CMD_RENDER ? Log{} : kCheckOutWorlds) + kReadCorners + kReadCorners +
                                Log{"fill fx null null output"} + kAskDepth);
      }
    }
  }
}

// Fails every call of every frame in turn: what the effect returns, what it still calls, and that nothing else changes.
TEST(Render, EveryFailureEndsTheFrameInOrder) {
  const std::string noSuite = "Not able to acquire KZFX Suite.";
  for (const int depth : {8, 16, 32}) {
    for (const bool bilinear : {false, true}) {
      const Log bilinearEnd = kReadCorners + Log{"fill fx null null output"} + kAskDepth;
      const Log all = kCheckOutWorlds + kReadCorners +
                      (bilinear ? bilinearEnd : kReadCorners + kAskDepth + iteration(depth, "0 1 6", "high"));
      for (std::size_t n = 0; n < all.size(); ++n) {
        ScriptedHost host(depth);
        nameSamplers(host);
        if (bilinear) {
          host.setCorners(kCrossed);
        }
        const std::string callback = all[n].substr(0, all[n].find(' '));
        const bool missingSuite = callback == "acquire";
        if (missingSuite) {
          host.suites.erase(all[n].substr(all[n].find(' ') + 1));
        } else {
          host.fail(callback, occurrence(all, n, callback), 62);
        }
        const std::int32_t code = host.run(CMD_SMART_RENDER);

        Log expected(all.begin(), all.begin() + static_cast<int>(n) + 1);
        std::int32_t expectedCode = 62;
        bool messageShown = false;
        if (n >= 2 && n < 10) {  // while the path is chosen: drawn by the bilinear renderer
          expected = expected + bilinearEnd;
          expectedCode = 0;
        } else if (callback == "release" || callback == "fill") {  // ignored
          expected = all;
          expectedCode = 0;
        } else if (all[n] == "acquire PF iterateFloat Suite/1") {
          expected.push_back("release PF SamplingFloat Suite/1");
          expectedCode = ERR_SUITE_UNAVAILABLE;
        } else if (missingSuite) {
          expected.push_back("sprintf " + noSuite);
          expectedCode = ERR_FAILED;
          messageShown = true;
        } else if (callback == "get_pixel_format") {
          expected.push_back("release PF World Suite/2");
        } else if (callback == "iterate_float") {
          expected = all;
        }
        EXPECT_EQ(code, expectedCode) << depth << " " << all[n];
        EXPECT_EQ(host.log, expected) << depth << " " << all[n];
        EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
          if (messageShown) {
            out.out_flags |= OUT_FLAG_SHOW_MESSAGE;
            std::strcpy(out.return_msg, noSuite.c_str());
          }
        }));
      }
    }
  }
}

TEST(Render, ReadsThatKeepFailingLeaveTheOutputAlone) {
  for (const std::int32_t command : {CMD_RENDER, CMD_SMART_RENDER}) {
    ScriptedHost host;
    host.output.fillBytes(0x11);
    host.fail("checkout_param", 1, 63, true);
    EXPECT_EQ(host.run(command), 63);
    EXPECT_EQ(host.output.at<PF_Pixel8>(0, 0).alpha, 0x11);
  }
  ScriptedHost host;
  host.handsBackWorlds = false;
  EXPECT_EQ(host.run(CMD_SMART_RENDER), 0);
  EXPECT_EQ(host.log, kCheckOutWorlds);
}

TEST(Render, FillsTheRecordBeforeTheIteration) {
  ScriptedHost host(8, {100, 50}, {200, 100});
  host.setCorners({{10, 20}, {110, 20}, {110, 70}, {10, 70}});
  bool seen = false;
  host.onIterate = [&](void* refcon) {
    const auto& r = *static_cast<const KZFX_PerspectiveInfo*>(refcon);
    seen = true;
    EXPECT_EQ(r.out_width_d, 200.0);
    EXPECT_EQ(r.out_height_d, 100.0);
    EXPECT_EQ(r.out_width, 200);
    EXPECT_EQ(r.out_height, 100);
    EXPECT_EQ(r.bound_left, 6.0);
    EXPECT_EQ(r.bound_right, 116.0);
    EXPECT_EQ(r.bound_top, 15.0);
    EXPECT_EQ(r.bound_bottom, 75.0);
    EXPECT_EQ(r.x_scale, 0.5);
    EXPECT_EQ(r.y_scale, 0.5);
    EXPECT_EQ(r.input_world, &host.input.world);
    EXPECT_EQ(r.effect_ref, host.in.effect_ref);
    EXPECT_EQ(r.sample_8, host.utilities.sample_area_8);
    const double rows[3][3] = {{0.01, 0, 0}, {0, 0.02, 0}, {-0.11, -0.4, 1}};
    for (int i = 0; i < 9; ++i) {
      EXPECT_NEAR(r.quad_to_unit.m[i / 3][i % 3], rows[i / 3][i % 3], 1e-15);
    }
  };
  EXPECT_EQ(host.run(CMD_SMART_RENDER), 0);
  EXPECT_TRUE(seen);
}

TEST(Render, DrawsTheRowsOfTheExtentOnly) {
  struct {
    M_LRect hint;
    const char* area;
    int top, bottom;
  } const cases[] = {{{3, -5, 4, 99}, "0 1 6", 0, 6},
                     {{0, 2, 0, 4}, "2 1 4", 2, 4},
                     {{0, 5, 8, 3}, "5 1 3", 0, 0},
                     {{0, 9, 8, 12}, "9 1 6", 0, 0}};
  for (const auto& c : cases) {
    ScriptedHost host;
    nameSamplers(host);
    host.output.world.extent_hint = c.hint;
    host.output.fillBytes(0x11);
    EXPECT_EQ(host.run(CMD_RENDER), 0);
    EXPECT_EQ(host.log.back(), iteration(8, c.area, "high")[0]);
    for (int y = 0; y < 6; ++y) {
      for (int x = 0; x < 8; ++x) {
        const bool drawn = host.output.at<PF_Pixel8>(x, y).alpha != 0x11 || host.output.at<PF_Pixel8>(x, y).red != 0x11;
        EXPECT_EQ(drawn, y >= c.top && y < c.bottom) << x << " " << y;
      }
    }
    EXPECT_TRUE(host.output.guardsIntact());
  }
}

TEST(Render, AQuadWithoutAMapIsTransparent) {
  // The sides meet in the origin once the corners are shifted by a pixel, so that there is no inverse to normalise.
  ScriptedHost host;
  host.setCorners({{-2, 1}, {0, 1}, {1, 2}, {-3, 2}});
  host.output.fillBytes(0x11);
  EXPECT_EQ(host.run(CMD_RENDER), 0);
  EXPECT_TRUE(host.samples.empty());
  EXPECT_TRUE(samePixel(host.output.at<PF_Pixel8>(0, 0), PF_Pixel8{}));
}

// Any corner values, also the ends of the 16.16 range: a frame comes back and nothing outside the world is written.
RC_GTEST_PROP(Render, AnyCornersStayInsideTheWorld, ()) {
  const int depth = *rc::gen::element(8, 16, 32);
  const M_LPoint inputSize = {*rc::gen::inRange(1, 9), *rc::gen::inRange(1, 9)};
  const M_LPoint outputSize = {*rc::gen::inRange(1, 40), *rc::gen::inRange(1, 40)};
  ScriptedHost host(depth, inputSize, outputSize);
  const auto coordinate = [] {
    return *rc::gen::oneOf(rc::gen::inRange(-8 * 65536, 48 * 65536), rc::gen::arbitrary<std::int32_t>(),
                           rc::gen::element(INT32_MIN, INT32_MAX, 0, INT32_MIN + 65535, INT32_MAX - 65535, 65536));
  };
  for (int i = 1; i <= 4; ++i) {
    host.values[i].value.point.point_x = coordinate();
    host.values[i].value.point.point_y = coordinate();
  }
  host.in.quality = *rc::gen::inRange(0, 2);
  host.in.source_origin_x = *rc::gen::inRange(-3, 4);
  host.in.output_origin_y = *rc::gen::inRange(-3, 4);
  RC_ASSERT(host.run(CMD_SMART_RENDER) == 0);
  RC_ASSERT(host.output.guardsIntact() && host.input.guardsIntact());
  RC_ASSERT(host.outIs());
}
