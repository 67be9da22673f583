#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "effect/perspective/RowSamplers.h"
#include "tests/Pixels.h"
#include "tests/effect/ScriptedHost.h"

namespace {

void nameSamplers(ScriptedHost& host) {
  const auto name = [&host](auto* sampler, const char* text) { host.names[reinterpret_cast<void*>(sampler)] = text; };
  name(KZFX_TracePointHi, "high");
  name(KZFX_TracePointHi16, "high");
  name(KZFX_TracePointHiFloat, "high");
  name(KZFX_TracePointFPU, "standard");
  name(KZFX_TracePointFPU16, "standard");
  name(KZFX_TracePointFPUFloat, "standard");
}

}  // namespace

TEST(Render, IteratesTheExtentsRowsAtEveryDepthAndQuality) {
  struct {
    M_LRect hint;
    std::string area;
    int top, bottom;
  } const cases[] = {{{3, -5, 4, 99}, "[0 0 1 6]", 0, 6},
                     {{0, 2, 0, 4}, "[0 2 1 4]", 2, 4},
                     {{0, 5, 8, 3}, "[0 5 1 3]", 0, 0},
                     {{0, 9, 8, 12}, "[0 9 1 6]", 0, 0}};
  for (const auto& c : cases) {
    for (const int depth : {8, 16, 32}) {
      for (const std::int32_t quality : {1, 0, 2, -1}) {
        ScriptedHost host(depth);
        nameSamplers(host);
        host.in.quality = quality;
        host.output.world.extent_hint = c.hint;
        host.output.fillBytes(0x11);
        EXPECT_EQ(host.run(CMD_RENDER), 0);
        const std::string call = "iterate_" + (depth == 32 ? "float" : std::to_string(depth)) + " in 0 6 null " +
                                 c.area + (quality == 1 ? " high output" : " standard output");
        EXPECT_EQ(host.log[host.log.size() - (depth == 32 ? 3 : 1)], call);
        for (const auto [x, y] : pixelsOf(depth, 6)) {  // every 4 bytes of the rows
          EXPECT_EQ(host.output.at<std::uint32_t>(x, y) != 0x11111111, y >= c.top && y < c.bottom) << x << " " << y;
        }
        EXPECT_TRUE(host.output.guardsIntact());
      }
    }
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

TEST(Render, APixelThatTheHostDoesNotWriteIsTransparent) {
  ScriptedHost host;
  host.sampler_writes = false;
  host.output.fillBytes(0x11);
  EXPECT_EQ(host.run(CMD_RENDER), 0);
  EXPECT_EQ(host.samples.size(), 48u);
  EXPECT_EQ(host.output.at<std::uint32_t>(7, 5), 0u);
}

// Any corner values, also the ends of the 16.16 range: a frame comes back and nothing outside the world is written.
RC_GTEST_PROP(Render, AnyCornersStayInsideTheWorld, ()) {
  ScriptedHost host(*rc::gen::element(8, 16, 32), {*rc::gen::inRange(1, 9), *rc::gen::inRange(1, 9)},
                    {*rc::gen::inRange(1, 40), *rc::gen::inRange(1, 40)});
  const auto coordinate =
      rc::gen::oneOf(rc::gen::inRange(-8 * 65536, 48 * 65536), rc::gen::arbitrary<std::int32_t>(),
                     rc::gen::element(INT32_MIN, INT32_MAX, 0, INT32_MIN + 65535, INT32_MAX - 65535, 65536));
  for (int i = 1; i <= 4; ++i) {
    host.values[i].value.point.point_x = *coordinate;
    host.values[i].value.point.point_y = *coordinate;
  }
  host.in.quality = *rc::gen::inRange(0, 2);
  host.in.source_origin_x = *rc::gen::inRange(-3, 4);
  host.in.output_origin_y = *rc::gen::inRange(-3, 4);
  RC_ASSERT(host.run(CMD_SMART_RENDER) == 0);
  RC_ASSERT(host.output.guardsIntact() && host.input.guardsIntact() && host.outIs());
}
