// The mix of four neighbouring pixels, by the fractions of a position: the inner loop of the bilinear renderer.
//
// mixSquare<Family> is the plain form over a family's mixing; the overloads beside it give the same bits with vector
// instructions that every x86-64 machine has.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "effect/bilinear/PixelTraits.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The pixels at `top` and `bottom` and their right neighbours, mixed by u within a row and by v between the rows. In
// memory's form.
template <typename Family>
typename Family::Word mixSquare(const std::byte* top, const std::byte* bottom, std::int32_t u, std::int32_t v) {
  const auto mix_row = [u](const std::byte* row) {
    return Family::mix(Family::load(row), Family::load(row + Family::kPixelBytes), u);
  };
  return Family::gather(Family::mix(mix_row(top), mix_row(bottom), v));
}

#if defined(__SSE2__)

// For every mix factor the shares of the first and the second pixel, in the lanes of a vector.
struct alignas(16) ShareLanes {
  std::int16_t lane[8];
};

// First pixel in the low half, second in the high half.
constexpr std::array<ShareLanes, 256> kHalvesShares = [] {
  std::array<ShareLanes, 256> table{};
  for (int factor = 0; factor < 256; ++factor) {
    const auto second = static_cast<std::int16_t>(mixShare(factor << 8));
    for (int lane = 0; lane < 8; ++lane) {
      table[static_cast<std::size_t>(factor)].lane[lane] = lane < 4 ? static_cast<std::int16_t>(256 - second) : second;
    }
  }
  return table;
}();

// First and second pixel in alternating lanes.
constexpr std::array<ShareLanes, 256> kPairsShares = [] {
  std::array<ShareLanes, 256> table{};
  for (int factor = 0; factor < 256; ++factor) {
    const auto second = static_cast<std::int16_t>(mixShare(factor << 8));
    for (int lane = 0; lane < 8; ++lane) {
      table[static_cast<std::size_t>(factor)].lane[lane] =
          lane % 2 == 0 ? static_cast<std::int16_t>(256 - second) : second;
    }
  }
  return table;
}();

inline __m128i loadShares(const std::array<ShareLanes, 256>& table, std::int32_t weight) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(table[mixFactor(weight)].lane));
}

// Two pixels of 16-bit lanes, one in each half, mixed into the low half. No sum leaves its lane: 255 * 256 fits.
inline __m128i mixHalves(__m128i pixels, __m128i shares) {
  const __m128i products = _mm_mullo_epi16(pixels, shares);
  return _mm_srli_epi16(_mm_add_epi16(products, _mm_srli_si128(products, 8)), 8);
}

template <>
inline PixelFamily8::Word mixSquare<PixelFamily8>(const std::byte* top, const std::byte* bottom, std::int32_t u,
                                                  std::int32_t v) {
  const __m128i zero = _mm_setzero_si128();
  const auto load_pair = [zero](const std::byte* row) {
    return _mm_unpacklo_epi8(_mm_cvtsi64_si128(loadAs<long long>(row)), zero);
  };
  const __m128i shares_u = loadShares(kHalvesShares, u);
  const __m128i rows = _mm_unpacklo_epi64(mixHalves(load_pair(top), shares_u), mixHalves(load_pair(bottom), shares_u));
  const __m128i mixed = mixHalves(rows, loadShares(kHalvesShares, v));
  return static_cast<PixelFamily8::Word>(_mm_cvtsi128_si32(_mm_packus_epi16(mixed, mixed)));
}

// The multiply-and-add of 16-bit lanes is signed, so 16-bit channels are mixed with 32768 subtracted, which the shift
// by 8 leaves exact: the shares sum to 256.
template <>
inline PixelFamily16::Word mixSquare<PixelFamily16>(const std::byte* top, const std::byte* bottom, std::int32_t u,
                                                    std::int32_t v) {
  const __m128i bias = _mm_set1_epi16(-32768);
  const __m128i shares_u = loadShares(kPairsShares, u);
  const auto mix_row = [bias, shares_u](const std::byte* row) {
    const __m128i pair = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row)), bias);
    const __m128i lanes = _mm_unpacklo_epi16(pair, _mm_srli_si128(pair, 8));
    return _mm_srai_epi32(_mm_madd_epi16(lanes, shares_u), 8);
  };
  const __m128i rows = _mm_packs_epi32(mix_row(top), mix_row(bottom));
  const __m128i lanes = _mm_unpacklo_epi16(rows, _mm_srli_si128(rows, 8));
  const __m128i mixed = _mm_srai_epi32(_mm_madd_epi16(lanes, loadShares(kPairsShares, v)), 8);
  const __m128i packed = _mm_xor_si128(_mm_packs_epi32(mixed, mixed), bias);
  return static_cast<PixelFamily16::Word>(_mm_cvtsi128_si64(packed));
}

#endif
