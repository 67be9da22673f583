// Sampling an input at fractional positions, written once for every pixel family.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "effect/FixedPoint.h"
#include "effect/bilinear/PixelTraits.h"

// A step of this size or more averages two pixels instead of interpolating between neighbours.
constexpr std::int32_t kAveragingStep = 2 * kFixedOne;

// Half a step, in whole pixels.
constexpr std::int32_t halfStep(std::int32_t step) {
  return step >> 17;
}

// An input world as the samplers see it; its size is positive.
struct InputView {
  const std::byte* data;
  std::int32_t row_bytes;
  std::int32_t width;
  std::int32_t height;
};

// `p` moved by a number of bytes. It may lie outside the input, so the sum is done on the address.
inline const std::byte* moveAddress(const void* p, std::ptrdiff_t bytes) {
  return std::bit_cast<const std::byte*>(std::bit_cast<std::uintptr_t>(p) + static_cast<std::uintptr_t>(bytes));
}

// How a sample is made along an axis for a step: from a pixel and its partner so many pixels on, which are either mixed
// by the position's fraction or averaged.
struct AxisFilter {
  bool averages;
  std::int32_t partner;
};

constexpr AxisFilter filterForStep(std::int32_t step) {
  return step < kAveragingStep ? AxisFilter{false, 1} : AxisFilter{true, halfStep(step)};
}

// What a position selects along an axis of `size` pixels: the first pixel, and whether its partner takes part, which it
// does not at a whole position nor where it would lie outside. Positions outside are clamped to the border pixel.
struct AxisSample {
  std::int32_t first;
  bool single;
};

constexpr AxisSample selectAlongAxis(std::int32_t position, const AxisFilter& filter, std::int32_t size) {
  const std::int32_t index = fixedFloor(position);
  if (index < 0) {
    return {0, true};
  }
  const std::int32_t first = index < size ? index : size - 1;
  return {first, fixedFraction(position) == 0 || filter.partner >= size - first};
}

template <typename Family>
typename Family::Wide combine(const AxisFilter& filter, const typename Family::Wide& first,
                              const typename Family::Wide& second, std::int32_t position) {
  return filter.averages ? Family::average(first, second) : Family::mix(first, second, position);
}

// The sample of one row, `row` being the address of its column 0.
template <typename Family>
typename Family::Wide sampleRow(const std::byte* row, std::int32_t u, const AxisFilter& filter, std::int32_t width) {
  const AxisSample column = selectAlongAxis(u, filter, width);
  const std::byte* const address = row + column.first * Family::kPixelBytes;
  const typename Family::Wide first = Family::load(address);
  if (column.single) {
    return first;
  }
  return combine<Family>(filter, first, Family::load(address + filter.partner * Family::kPixelBytes), u);
}

// The sample of the input at (u, v), with the filters of both axes.
template <typename Family>
typename Family::Wide sampleInput(const InputView& input, std::int32_t u, std::int32_t v, const AxisFilter& filter_u,
                                  const AxisFilter& filter_v) {
  const AxisSample row = selectAlongAxis(v, filter_v, input.height);
  const std::byte* const address = input.data + std::ptrdiff_t{row.first} * input.row_bytes;
  const typename Family::Wide first = sampleRow<Family>(address, u, filter_u, input.width);
  if (row.single) {
    return first;
  }
  const std::byte* const second = address + Family::rowStep(input.row_bytes) * filter_v.partner;
  return combine<Family>(filter_v, first, sampleRow<Family>(second, u, filter_u, input.width), v);
}

// The pixel at (u, v), clamped to the input, without any filtering.
template <typename Family>
typename Family::Wide readInput(const InputView& input, std::int32_t u, std::int32_t v) {
  const auto clamp = [](std::int32_t index, std::int32_t size) {
    return index < 0 ? 0 : index < size ? index : size - 1;
  };
  return Family::load(input.data + std::ptrdiff_t{clamp(fixedFloor(v), input.height)} * input.row_bytes +
                      clamp(fixedFloor(u), input.width) * Family::kPixelBytes);
}
