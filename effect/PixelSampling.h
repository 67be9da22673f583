// Sampling an input at fractional positions, written once for every pixel family.
#pragma once

#include <cstddef>
#include <cstdint>

#include "effect/FixedPoint.h"
#include "effect/PixelFamily.h"

// A step of this size or more averages two pixels instead of interpolating between neighbours.
constexpr std::int32_t kAveragingStep = 2 * kFixedOne;

// Half a step, in whole pixels.
constexpr std::int32_t HalfStep(std::int32_t step) {
  return step >> 17;
}

// An input world as the samplers see it; its size is positive.
struct InputView {
  const std::byte* data;
  std::int32_t row_bytes;
  std::int32_t width;
  std::int32_t height;
};

// One axis of a sample: the first pixel, clamped to the world, and how its partner, if any, takes part.
struct AxisSample {
  enum class Kind { Single, Mixed, Averaged };
  std::int32_t first;
  std::int32_t partner;  // distance of the second pixel from the first
  Kind kind;
};

// What a position and a step select along an axis of `size` pixels. Positions outside are clamped to the border pixel.
constexpr AxisSample SelectAlongAxis(std::int32_t position, std::int32_t step, std::int32_t size) {
  const std::int32_t index = FixedFloor(position);
  if (index < 0) {
    return {0, 0, AxisSample::Kind::Single};
  }
  const std::int32_t first = index < size ? index : size - 1;
  if (FixedFraction(position) == 0) {
    return {first, 0, AxisSample::Kind::Single};
  }
  if (step < kAveragingStep) {
    return first == size - 1 ? AxisSample{first, 0, AxisSample::Kind::Single}
                             : AxisSample{first, 1, AxisSample::Kind::Mixed};
  }
  const std::int32_t partner = HalfStep(step);
  return partner >= size - first ? AxisSample{first, 0, AxisSample::Kind::Single}
                                 : AxisSample{first, partner, AxisSample::Kind::Averaged};
}

template <typename Family>
typename Family::Pixel Combine(AxisSample::Kind kind, const typename Family::Pixel& first,
                               const typename Family::Pixel& second, std::int32_t position) {
  return kind == AxisSample::Kind::Mixed ? Family::Mix(first, second, position) : Family::Average(first, second);
}

// The sample of one row, `row` being the address of its column 0.
template <typename Family>
typename Family::Pixel SampleRow(const std::byte* row, const AxisSample& column, std::int32_t u) {
  using Pixel = typename Family::Pixel;
  const std::byte* const address = row + std::ptrdiff_t{column.first} * static_cast<std::ptrdiff_t>(sizeof(Pixel));
  const Pixel first = LoadPixel<Pixel>(address);
  if (column.kind == AxisSample::Kind::Single) {
    return first;
  }
  const Pixel second =
      LoadPixel<Pixel>(address + std::ptrdiff_t{column.partner} * static_cast<std::ptrdiff_t>(sizeof(Pixel)));
  return Combine<Family>(column.kind, first, second, u);
}

// The sample of the input at (u, v) for steps (du, dv).
template <typename Family>
typename Family::Pixel SampleInput(const InputView& input, std::int32_t u, std::int32_t v, std::int32_t du,
                                   std::int32_t dv) {
  const AxisSample column = SelectAlongAxis(u, du, input.width);
  const AxisSample row = SelectAlongAxis(v, dv, input.height);
  const std::byte* const address = input.data + std::ptrdiff_t{row.first} * input.row_bytes;
  const typename Family::Pixel first = SampleRow<Family>(address, column, u);
  if (row.kind == AxisSample::Kind::Single) {
    return first;
  }
  const typename Family::Pixel second =
      SampleRow<Family>(address + Family::RowStep(input.row_bytes) * row.partner, column, u);
  return Combine<Family>(row.kind, first, second, v);
}

// The pixel at (u, v), clamped to the input, without any filtering.
template <typename Family>
typename Family::Pixel ReadInput(const InputView& input, std::int32_t u, std::int32_t v) {
  const auto clamp = [](std::int32_t index, std::int32_t size) {
    return index < 0 ? 0 : index < size ? index : size - 1;
  };
  return LoadPixel<typename Family::Pixel>(
      input.data + std::ptrdiff_t{clamp(FixedFloor(v), input.height)} * input.row_bytes +
      std::ptrdiff_t{clamp(FixedFloor(u), input.width)} * static_cast<std::ptrdiff_t>(sizeof(typename Family::Pixel)));
}
