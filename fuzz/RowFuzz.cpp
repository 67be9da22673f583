// Fuzzes what draws rows, alone: the scan renderers and the pixel helpers, from any corners and at any position, and
// the row samplers, whose instruction sets must agree to the bit for any map.
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "effect/bilinear/PixelHelpers.h"
#include "effect/bilinear/QuadScan.h"
#include "effect/perspective/RowSamplers.h"
#include "fuzz/Input.h"
#include "tests/InstructionSets.h"
#include "tests/effect/ScriptedHost.h"

namespace {

using vantorel::fuzz::Input;
using vantorel::fuzz::require;

constexpr int kMaxSide = 24;
constexpr int kMaxRow = 200;  // more than three batches of pixels

// Rows of 8-bit pixels are whole pixels apart.
int somePadding(Input& input, int depth) {
  return input.inRange(0, 5) * (depth == 8 ? 4 : 1);
}

GuardedWorld someWorld(Input& input, int depth) {
  return {depth,
          WorldShape{input.inRange(0, kMaxSide), input.inRange(0, kMaxSide), somePadding(input, depth), input.flag()}};
}

void fuzzScan(Input& input) {
  const int depth = 8 << input.inRange(0, 2);
  GuardedWorld layer = someWorld(input, depth);
  GuardedWorld output = someWorld(input, depth);
  layer.protectGuards();
  output.protectGuards();
  std::array<M_FixedPoint, 4> source;
  std::array<M_FixedPoint, 4> corners;
  for (int i = 0; i < 4; ++i) {
    source[static_cast<std::size_t>(i)] = {input.fixed(), input.fixed()};
    corners[static_cast<std::size_t>(i)] = {input.fixed(), input.fixed()};
  }
  const auto draw = depth == 8 ? FixedToFixed : depth == 16 ? FixedToFixed16 : FixedToFixedFloat;
  draw(nullptr, &layer.world, source.data(), corners.data(), &output.world);
  require(layer.guardsIntact() && output.guardsIntact(), "pixels alone are written");
}

// One pixel of a layer, through a position that may lie anywhere.
template <typename Pixel, typename Mix, typename Average, typename Row, typename Area>
void fuzzHelpers(Input& input, int depth, Mix mix, Average average, Row sample_row, Area sample_area) {
  const int width = input.inRange(1, kMaxSide);
  const int height = input.inRange(1, kMaxSide);
  GuardedWorld world(depth, WorldShape{width, height, somePadding(input, depth), false});
  world.protectGuards();
  const Pixel a = input.take<Pixel>();
  world.at<Pixel>(width - 1, height - 1) = a;
  const int u = input.fixed();
  const int v = input.fixed();
  const int du = input.fixed();
  const int dv = input.fixed();
  const auto address = [&](std::int64_t row) {
    const auto first = reinterpret_cast<std::intptr_t>(world.world.data);
    return reinterpret_cast<Pixel*>(first + row * world.world.row_bytes +
                                    (u >> 16) * static_cast<std::intptr_t>(sizeof(Pixel)));
  };
  const Pixel sampled = sample_row(address(0), u, du, width);
  const Pixel area = sample_area(address(v >> 16), world.world.row_bytes, u, v, du, dv, width, height);
  average(mix(a, sampled, du), area);
}

void fuzzAllHelpers(Input& input) {
  switch (input.inRange(0, 2)) {
    case 0:
      return fuzzHelpers<int>(
          input, 8,
          [](int a, int b, int w) {
            return std::bit_cast<int>(MixPixels(std::bit_cast<unsigned>(a), std::bit_cast<unsigned>(b), w));
          },
          PixAverage, GetHSeg, GetAPixel);
    case 1:
      return fuzzHelpers<PF_Pixel16>(input, 16, MixPixels16, PixAverage16, GetHSeg16, GetAPixel16);
    default:
      return fuzzHelpers<PF_PixelFloat>(input, 32, MixPixelsFloat, PixAverageFloat, GetHSegFloat, GetAPixelFloat);
  }
}

template <SamplingQuality kQuality>
void compareSets(ScriptedHost& host, const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y) {
  const auto row = [&](InstructionSet set) {
    host.samples.clear();
    std::vector<PF_Pixel8> pixels(static_cast<std::size_t>(info.out_width));
    traceRow<kQuality>(info, x, y, pixels.data(), set);
    return pixels;
  };
  const std::vector<PF_Pixel8> expected = row(InstructionSet::Scalar);
  const std::vector<Sample> expected_samples = host.samples;
  for (const InstructionSet set : availableSets()) {
    const std::vector<PF_Pixel8> pixels = row(set);
    require(host.samples == expected_samples, "every instruction set samples the same positions");
    require(std::equal(pixels.begin(), pixels.end(), expected.begin(), samePixel<PF_Pixel8>),
            "every instruction set draws the same row");
  }
}

void fuzzRows(Input& input) {
  ScriptedHost host;
  const int width = input.inRange(0, kMaxRow);
  KZFX_PerspectiveInfo info = perspectiveInfo(host, width, input.inRange(1, kMaxRow));
  for (auto& row : info.quad_to_unit.m) {
    for (double& entry : row) {
      entry = input.real();
    }
  }
  info.bound_left = input.real();
  info.bound_right = input.real();
  info.bound_top = input.real();
  info.bound_bottom = input.real();
  info.x_scale = input.real();
  info.y_scale = input.real();
  const std::int32_t x = input.inRange(0, 200) - 100;
  const std::int32_t y = input.inRange(0, 200) - 100;
  compareSets<SamplingQuality::Standard>(host, info, x, y);
  compareSets<SamplingQuality::High>(host, info, x, y);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  switch (input.inRange(0, 2)) {
    case 0:
      fuzzScan(input);
      break;
    case 1:
      fuzzAllHelpers(input);
      break;
    default:
      fuzzRows(input);
      break;
  }
  return 0;
}
