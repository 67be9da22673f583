// Sampling an input at fractional positions, written once for every pixel depth.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "effect/FixedPoint.h"
#include "effect/bilinear/PixelTraits.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The input world of the samplers; its size is positive.
struct InputView {
  const std::byte* data;
  std::int32_t row_bytes;
  std::int32_t width;
  std::int32_t height;
};

// `p` moved by a number of bytes. The result may lie outside the input, where pointer arithmetic would be undefined, so
// the sum is formed on the address.
inline const std::byte* moveAddress(const void* p, std::ptrdiff_t bytes) {
  return std::bit_cast<const std::byte*>(std::bit_cast<std::uintptr_t>(p) + static_cast<std::uintptr_t>(bytes));
}

// ---- Along one axis ------------------------------------------------------------------------------------------------

// The filter along an axis, chosen by the step between samples. It has two taps, `second_tap` pixels apart:
// neighbouring pixels mixed by the position's fraction or, for steps of 2.0 and above, pixels half a step apart that
// are averaged.
struct AxisFilter {
  bool box_filter;
  std::int32_t second_tap;
};

constexpr AxisFilter filterForStep(std::int32_t step) {
  return step < 2 * kFixedOne ? AxisFilter{false, 1} : AxisFilter{true, fixedFloor(step) / 2};
}

// Where the taps of a position lie along an axis of `size` pixels. The first is clamped to the axis. There is only one
// at a whole position, and where the second would lie outside.
struct AxisTaps {
  std::int32_t first;
  bool one_tap;
};

constexpr AxisTaps tapsAt(std::int32_t position, const AxisFilter& filter, std::int32_t size) {
  const std::int32_t index = fixedFloor(position);
  if (index < 0) {
    return {0, true};
  }
  const std::int32_t first = index < size ? index : size - 1;
  return {first, fixedFraction(position) == 0 || filter.second_tap >= size - first};
}

template <typename Traits>
typename Traits::Unpacked combineTaps(const AxisFilter& filter, const typename Traits::Unpacked& first,
                                      const typename Traits::Unpacked& second, std::int32_t position) {
  return filter.box_filter ? Traits::average(first, second) : Traits::mix(first, second, position);
}

// ---- Anywhere, clamped to the input --------------------------------------------------------------------------------

// The sample of one row, `row` being the address of its column 0.
template <typename Traits>
typename Traits::Unpacked sampleRow(const std::byte* row, std::int32_t u, const AxisFilter& filter,
                                    std::int32_t width) {
  const AxisTaps column = tapsAt(u, filter, width);
  const std::byte* const address = row + column.first * Traits::kPixelBytes;
  const typename Traits::Unpacked first = Traits::load(address);
  if (column.one_tap) {
    return first;
  }
  return combineTaps<Traits>(filter, first, Traits::load(address + filter.second_tap * Traits::kPixelBytes), u);
}

// The sample of the input at (u, v), with the filters of both axes.
template <typename Traits>
typename Traits::Unpacked sampleInput(const InputView& input, std::int32_t u, std::int32_t v,
                                      const AxisFilter& filter_u, const AxisFilter& filter_v) {
  const AxisTaps row = tapsAt(v, filter_v, input.height);
  const std::byte* const address = input.data + std::ptrdiff_t{row.first} * input.row_bytes;
  const typename Traits::Unpacked first = sampleRow<Traits>(address, u, filter_u, input.width);
  if (row.one_tap) {
    return first;
  }
  const std::byte* const second = address + Traits::rowStep(input.row_bytes) * filter_v.second_tap;
  return combineTaps<Traits>(filter_v, first, sampleRow<Traits>(second, u, filter_u, input.width), v);
}

// The pixel at (u, v), clamped to the input, without any filtering.
template <typename Traits>
typename Traits::Unpacked readInput(const InputView& input, std::int32_t u, std::int32_t v) {
  const auto clamp = [](std::int32_t index, std::int32_t size) {
    return index < 0 ? 0 : index < size ? index : size - 1;
  };
  return Traits::load(input.data + std::ptrdiff_t{clamp(fixedFloor(v), input.height)} * input.row_bytes +
                      clamp(fixedFloor(u), input.width) * Traits::kPixelBytes);
}

// ---- Inside the input: bilinear interpolation of four neighbours, the most common case -----------------------------

// The texels at `top` and `bottom` and their right neighbours, mixed by u within a row and by v between the rows. The
// specialisations below use SSE2, which every x86-64 processor has, and give the same bits.
template <typename Traits>
typename Traits::Packed bilerpTexels(const std::byte* top, const std::byte* bottom, std::int32_t u, std::int32_t v) {
  const auto mix_row = [u](const std::byte* row) {
    return Traits::mix(Traits::load(row), Traits::load(row + Traits::kPixelBytes), u);
  };
  return Traits::pack(Traits::mix(mix_row(top), mix_row(bottom), v));
}

#if defined(__SSE2__)

// The blend weights of a first and a second texel, in 256ths, in the lanes of a vector.
struct alignas(16) WeightLanes {
  std::int16_t lane[8];
};
using WeightTable = std::array<WeightLanes, 256>;  // one for every mix factor

// `is_second(lane)` says whether a lane holds the second texel.
template <typename IsSecond>
constexpr WeightTable weightTable(IsSecond is_second) {
  WeightTable table{};
  for (int factor = 0; factor < 256; ++factor) {
    const auto second = static_cast<std::int16_t>(blendWeight(factor << 8));
    for (int lane = 0; lane < 8; ++lane) {
      table[static_cast<std::size_t>(factor)].lane[lane] =
          is_second(lane) ? second : static_cast<std::int16_t>(256 - second);
    }
  }
  return table;
}

inline constexpr WeightTable kHalfWeights = weightTable([](int lane) { return lane >= 4; });
inline constexpr WeightTable kAlternatingWeights = weightTable([](int lane) { return lane % 2 == 1; });

inline __m128i loadWeights(const WeightTable& table, std::int32_t weight) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(table[mixFactor(weight)].lane));
}

// Two texels of 16-bit lanes, one in each half, mixed into the low half. No sum leaves its lane: 255 * 256 fits.
inline __m128i mixHalves(__m128i texels, __m128i weights) {
  const __m128i products = _mm_mullo_epi16(texels, weights);
  return _mm_srli_epi16(_mm_add_epi16(products, _mm_srli_si128(products, 8)), 8);
}

template <>
inline PixelTraits8::Packed bilerpTexels<PixelTraits8>(const std::byte* top, const std::byte* bottom, std::int32_t u,
                                                       std::int32_t v) {
  const __m128i zero = _mm_setzero_si128();
  const auto load_pair = [zero](const std::byte* row) {
    return _mm_unpacklo_epi8(_mm_cvtsi64_si128(loadAs<long long>(row)), zero);
  };
  const __m128i weights_u = loadWeights(kHalfWeights, u);
  const __m128i rows =
      _mm_unpacklo_epi64(mixHalves(load_pair(top), weights_u), mixHalves(load_pair(bottom), weights_u));
  const __m128i mixed = mixHalves(rows, loadWeights(kHalfWeights, v));
  return static_cast<PixelTraits8::Packed>(_mm_cvtsi128_si32(_mm_packus_epi16(mixed, mixed)));
}

// The multiply-add of 16-bit lanes is signed, so 32768 is subtracted from 16-bit channels while they are mixed. The
// result stays exact: the weights sum to 256, so the bias comes out of the shift by 8 unchanged.
template <>
inline PixelTraits16::Packed bilerpTexels<PixelTraits16>(const std::byte* top, const std::byte* bottom, std::int32_t u,
                                                         std::int32_t v) {
  const __m128i bias = _mm_set1_epi16(-32768);
  const __m128i weights_u = loadWeights(kAlternatingWeights, u);
  const auto mix_row = [bias, weights_u](const std::byte* row) {
    const __m128i pair = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row)), bias);
    const __m128i lanes = _mm_unpacklo_epi16(pair, _mm_srli_si128(pair, 8));
    return _mm_srai_epi32(_mm_madd_epi16(lanes, weights_u), 8);
  };
  const __m128i rows = _mm_packs_epi32(mix_row(top), mix_row(bottom));
  const __m128i lanes = _mm_unpacklo_epi16(rows, _mm_srli_si128(rows, 8));
  const __m128i mixed = _mm_srai_epi32(_mm_madd_epi16(lanes, loadWeights(kAlternatingWeights, v)), 8);
  const __m128i packed = _mm_xor_si128(_mm_packs_epi32(mixed, mixed), bias);
  return static_cast<PixelTraits16::Packed>(_mm_cvtsi128_si64(packed));
}

#endif
