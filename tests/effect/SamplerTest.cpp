#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "effect/ProjectiveMap.h"
#include "effect/perspective/PerspectiveInfo.h"
#include "effect/perspective/RowSamplers.h"
#include "tests/InstructionSets.h"
#include "tests/effect/ScriptedHost.h"

namespace {

// ---- The row samplers' definition, a pixel at a time ---------------------------------------------------------------

// The samples of a row and, per pixel, the number of its sample, 0 for a transparent pixel.
struct Row {
  std::vector<Sample> samples;
  std::vector<std::uint32_t> codes;
};

std::int32_t toInt32(double value) {
  return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : INT32_MIN;
}

std::int32_t rounded(double value) {
  return toInt32(value * 65536.0 + (value < 0.0 ? -0.5 : 0.5));
}

std::int32_t radius(double extent) {
  return std::min(std::max(rounded(extent), 65536), 1048576) >> 1;
}

Row referenceRow(const KZFX_PerspectiveInfo& r, bool high, std::int32_t x, std::int32_t y) {
  const auto& m = r.quad_to_unit.m;
  const double unit = high ? 1.0 : 65536.0;
  const double dux = unit * (m[0][0] * r.out_width_d), dvx = unit * (m[0][1] * r.out_height_d), dwx = m[0][2];
  const double duy = m[1][0] * r.out_width_d, dvy = m[1][1] * r.out_height_d, dwy = m[1][2];
  double u = (unit * r.out_width_d) * (m[0][0] * x + m[1][0] * y + m[2][0]);
  double v = (unit * r.out_height_d) * (m[0][1] * x + m[1][1] * y + m[2][1]);
  double w = m[0][2] * x + m[1][2] * y + m[2][2];
  Row row;
  for (int px = x; px < r.out_width + x; ++px) {
    row.codes.push_back(0);
    if (y > r.bound_bottom || y < r.bound_top) {
      continue;
    }
    u += dux, v += dvx, w += dwx;
    if (px > r.bound_right || px < r.bound_left || w == 0.0) {
      continue;
    }
    Sample s = {0, 0, 32768, 32768, 65536, r.input_world};
    if (high) {
      if (w + dwy + dwx == 0.0 || w + dwx == 0.0 || w + dwy == 0.0) {
        continue;
      }
      const double cx = u / w, cy = v / w;
      double ex[3], ey[3];
      const auto measure = [&](int i) { ex[i] = std::abs(u / w - cx), ey[i] = std::abs(v / w - cy); };
      u += dux, v += dvx, w += dwx;
      measure(0);
      u += duy, v += dvy, w += dwy;
      measure(1);
      u -= dux, v -= dvx, w -= dwx;
      measure(2);
      u -= duy, v -= dvy, w -= dwy;
      s.x_radius = radius(std::max(std::max(ex[0], ex[1]), ex[2]) * r.x_scale);
      s.y_radius = radius(std::max(std::max(ey[0], ey[1]), ey[2]) * r.y_scale);
      s.area = toInt32(double(s.x_radius) * double(s.y_radius) / 65536.0) * 4;
      s.x = rounded(cx * r.x_scale);
      s.y = rounded(cy * r.y_scale);
    } else {
      s.x = toInt32(toInt32(u / w) * r.x_scale);
      s.y = toInt32(toInt32(v / w) * r.y_scale);
    }
    row.samples.push_back(s);
    row.codes.back() = static_cast<std::uint32_t>(row.samples.size());
  }
  return row;
}

// ---- The samplers under test ---------------------------------------------------------------------------------------

// Runs `trace` over a row and compares with the reference to the bit; nothing past the row is written.
template <typename Pixel, typename Trace>
void checkRow(ScriptedHost& host, const Row& expected, Trace trace) {
  const Pixel before = pixelFromCode<Pixel>(0x01010101);
  std::vector<Pixel> out(expected.codes.size() + 1, before);
  host.samples.clear();
  trace(out.data());
  RC_ASSERT(host.samples == expected.samples);
  for (std::size_t i = 0; i < expected.codes.size(); ++i) {
    RC_ASSERT(samePixel(out[i], pixelFromCode<Pixel>(expected.codes[i])));
  }
  RC_ASSERT(samePixel(out.back(), before));
}

void checkAllSamplers(ScriptedHost& host, KZFX_PerspectiveInfo info, std::int32_t x, std::int32_t y) {
  const Row standard = referenceRow(info, false, x, y);
  const Row high = referenceRow(info, true, x, y);
  const auto exported = [&]<typename Pixel>(std::int32_t (*sampler)(void*, std::int32_t, std::int32_t, Pixel*, Pixel*),
                                            const Row& row) {
    checkRow<Pixel>(host, row, [&](Pixel* out) { RC_ASSERT(sampler(&info, x, y, nullptr, out) == 0); });
  };
  exported(KZFX_TracePointFPU, standard);
  exported(KZFX_TracePointFPU16, standard);
  exported(KZFX_TracePointFPUFloat, standard);
  exported(KZFX_TracePointHi, high);
  exported(KZFX_TracePointHi16, high);
  exported(KZFX_TracePointHiFloat, high);
  for (const InstructionSet set : availableSets()) {
    const auto check = [&]<SamplingQuality kQuality>(const Row& row) {
      checkRow<PF_Pixel8>(host, row, [&](PF_Pixel8* out) { traceRow<kQuality>(info, x, y, out, set); });
    };
    check.operator()<SamplingQuality::Standard>(standard);
    check.operator()<SamplingQuality::High>(high);
  }
}

// A matrix entry: ordinary, on a coarse binary grid (so that divisors become exactly 0), or at the ends of what doubles
// hold.
double someEntry(int kind) {
  if (kind == 0) {
    return *rc::gen::arbitrary<std::int32_t>() / 2147483647.0;  // with all its bits, so that sums round
  }
  if (kind == 1) {
    return *rc::gen::inRange(-16, 17) / 16.0;
  }
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  return *rc::gen::element(0.0, -0.0, 1e-300, -1e300, 1e18, 3e9, kInfinity, -kInfinity, std::nan(""), 0.5);
}

}  // namespace

RC_GTEST_PROP(RowSamplers, EqualTheirDefinitionToTheBit, ()) {
  ScriptedHost host;
  KZFX_PerspectiveInfo info = perspectiveInfo(host, *rc::gen::inRange(0, 300), *rc::gen::inRange(1, 300));
  // Kinds 0 to 2 are those of the entries; kind 3 has any positions with divisors on the grid.
  const int kind = *rc::gen::inRange(0, 4);
  for (int i = 0; i < 9; ++i) {
    info.quad_to_unit.m[i / 3][i % 3] = kind < 3 ? someEntry(kind) : someEntry(i % 3 == 2 ? 1 : 0);
  }
  const auto bound = [](int low, int high) {
    return *rc::gen::oneOf(rc::gen::map(rc::gen::inRange(low, high), [](int b) { return b / 2.0; }),
                           rc::gen::element(-1e300, 1e300, std::nan("")));
  };
  info.bound_left = bound(-100, 100);
  info.bound_right = bound(100, 700);
  info.bound_top = bound(-100, 20);
  info.bound_bottom = bound(20, 300);
  info.x_scale = *rc::gen::inRange(1, 4000) / 100.0;
  info.y_scale = *rc::gen::inRange(1, 4000) / 100.0;
  checkAllSamplers(host, info, *rc::gen::element(0, 0, 0, 7, -9), *rc::gen::inRange(-3, 60));
}

// The maps of quadrilaterals, along whole rows: coordinates that keep their binary exponents for long, which vectors
// may rely on, and change them at times, which they must notice.
RC_GTEST_PROP(RowSamplers, EqualTheirDefinitionOnQuadrilaterals, ()) {
  ScriptedHost host;
  const int width = *rc::gen::inRange(300, 2000);
  const int height = *rc::gen::inRange(100, 1100);
  KZFX_PerspectiveInfo info = perspectiveInfo(host, width, height);
  // Corners on whole pixels, on fractions, or beside a rectangle; the map must exist.
  const double grid = *rc::gen::element(1.0, 65536.0, 10.0);
  const double spread = *rc::gen::element(0.0, 0.3, 2.0);
  M_Vector2T<double> quad[4];
  for (int i = 0; i < 4; ++i) {
    const auto place = [&](int low_end, int length) {
      const double at = low_end * length + *rc::gen::inRange(-1000, 1001) / 1000.0 * spread * length;
      return std::round(at * grid) / grid;
    };
    quad[i].x = place(i == 1 || i == 2, width);
    quad[i].y = place(i >= 2, height);
  }
  info.quad_to_unit = M_Matrix3(true);
  KZFX_MapUnitSquareToFromQuad(quad, &info.quad_to_unit, 0);
  info.x_scale = *rc::gen::element(1.0, 2.0, 1.0 / 3.0, 1920.0 / 1817.0, 12.0);
  info.y_scale = *rc::gen::element(1.0, 2.0, 1.0 / 3.0, 1080.0 / 1017.0, 12.0);
  checkAllSamplers(host, info, 0, *rc::gen::inRange(0, height));
}

// Millions of pixels, a few of which lie so near the half of 1/65536 pixel that only exact quotients are rounded
// correctly.
TEST(RowSamplers, WholeFramesEqualTheScalarComputation) {
  struct {
    M_Vector2T<double> quad[4];
    double scale;
  } frames[] = {{{{193, 108}, {1729, 54}, {1825, 1026}, {97, 972}}, 8.0},
                {{{801, 450}, {1101, 460}, {1121, 640}, {791, 650}}, 1.0},
                {{{-299.7, -200.1}, {5001.3, -2500.9}, {5501.1, 3000.7}, {-279.9, 330.1}}, 3.7}};
  for (auto& frame : frames) {
    ScriptedHost host;
    KZFX_PerspectiveInfo info = perspectiveInfo(host, 1920, 1080);
    ASSERT_EQ(KZFX_MapUnitSquareToFromQuad(frame.quad, &info.quad_to_unit, 0), 1);
    info.x_scale = info.y_scale = frame.scale;
    std::vector<PF_Pixel8> row(1920);
    for (int y = 0; y < 1080; ++y) {
      const auto samples = [&](InstructionSet set) {
        host.samples.clear();
        traceRow<SamplingQuality::High>(info, 0, y, row.data(), set);
        return host.samples;
      };
      const std::vector<Sample> expected = samples(InstructionSet::Scalar);
      for (const InstructionSet set : availableSets()) {
        ASSERT_TRUE(set == InstructionSet::Scalar || samples(set) == expected) << instructionSetName(set) << " " << y;
      }
    }
  }
}

TEST(RowSamplers, PixelsByTheVanishingLineVisitNoNeighbours) {
  ScriptedHost host;
  KZFX_PerspectiveInfo info = perspectiveInfo(host, 200, 100);
  // Divisors (x + 1) / 4 - 30 and, a row below, 1 / 4 more: pixels 117 to 119 have one that is 0. Stepping to the row
  // below and back loses digits of u.
  const double rows[3][3] = {{0.01 / 3, 0.02 / 3, 0.25}, {1e12 / 3, 1e12 / 7, 0.25}, {0.1 / 3, 0.1 / 7, -30}};
  std::memcpy(info.quad_to_unit.m, rows, sizeof rows);
  info.x_scale = info.y_scale = 20;
  checkAllSamplers(host, info, 0, 0);
  const Row row = referenceRow(info, true, 0, 0);
  for (std::size_t x = 0; x < 200; ++x) {
    EXPECT_EQ(row.codes[x] == 0, x >= 117 && x <= 119) << x;
  }
}

TEST(RowSamplers, WorkedPositionsAndBoxes) {
  struct {
    int input_width, input_height, quality, x, y;
    double sample_x, sample_y;
    std::int32_t radius, area;
  } const cases[] = {{100, 50, 0, 116, 45, 106, 25, 32768, 65536},
                     {100, 50, 1, 60, 45, 50, 25, 32768, 65536},
                     {400, 200, 1, 60, 45, 200, 100, 131072, 1048576},
                     {6400, 3200, 1, 60, 45, 3200, 1600, 524288, 16777216},
                     {25, 25, 1, 60, 45, 12.5, 12.5, 32768, 65536}};
  for (const auto& c : cases) {
    ScriptedHost host(8, {4, 4}, {200, 100});
    host.in.width = host.input.world.width = c.input_width;  // the scripted samplers read no pixels
    host.in.height = host.input.world.height = c.input_height;
    host.setCorners({{10, 20}, {110, 20}, {110, 70}, {10, 70}});
    host.in.quality = c.quality;
    ASSERT_EQ(host.run(CMD_SMART_RENDER), 0);
    ASSERT_EQ(host.samples.size(), 61u * 111u);  // rows 75 to 15, columns 6 to 116
    const Sample& s = host.samples[static_cast<std::size_t>((75 - c.y) * 111 + c.x - 6)];
    // The double truncation at standard quality may lose a unit of 1/65536.
    EXPECT_NEAR(s.x, c.sample_x * 65536, 1 - c.quality) << c.x;
    EXPECT_NEAR(s.y, c.sample_y * 65536, 1 - c.quality) << c.y;
    EXPECT_EQ(s, (Sample{s.x, s.y, c.radius, c.radius, c.area, &host.input.world}));
  }
}

// Beyond 32767 pixels neither the counters nor the positions overflow.
TEST(RowSamplers, WideAndTallWorlds) {
  for (const std::int32_t quality : {0, 1}) {
    ScriptedHost wide(8, {300, 2}, {40000, 2});
    wide.in.quality = quality;
    wide.in.output_origin_x = 10000;
    wide.setCorners({{0, 0}, {30000, 0}, {30000, 2}, {0, 2}});
    ASSERT_EQ(wide.run(CMD_RENDER), 0);
    ASSERT_EQ(wide.samples.size(), 2u * 30004u);
    EXPECT_NEAR(wide.samples[4].x, 0, 2);
    EXPECT_NEAR(wide.samples[30003].x, 299.99 * 65536, 2);
    EXPECT_TRUE(wide.output.guardsIntact());
    ScriptedHost tall(8, {4, 300}, {2, 40000});
    tall.in.quality = quality;
    tall.in.output_origin_y = 10000;
    tall.setCorners({{0, 0}, {2, 0}, {2, 30000}, {0, 30000}});
    ASSERT_EQ(tall.run(CMD_RENDER), 0);
    EXPECT_NEAR(tall.samples.front().y, 299.99 * 65536, 2);
  }
}
