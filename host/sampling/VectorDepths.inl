// The pixel depths of the area samplers that use vectors: how pixels are loaded and stored, and the sum of a box of up
// to 17 by 17 pixels. Included by the small boxes of float pixels.
#include <immintrin.h>

#include <cstddef>

#include "host/sampling/AreaSamplerVariants.h"
#include "host/sampling/SampleBox.h"
#include "host/sampling/SmallBoxConstants.h"

namespace vantorel::host {

namespace {

constexpr std::int64_t kOne = 65536;
constexpr int kMostColumns = 17;  // what a radius of 8 pixels meets at most

inline __m128i loadBytes4(const void* address) {
  int word;
  __builtin_memcpy(&word, address, 4);
  return _mm_cvtsi32_si128(word);
}

inline __m128i loadBytes8(const void* address) {
  return _mm_loadl_epi64(static_cast<const __m128i*>(address));
}

inline __m128i loadBytes16(const void* address) {
  return _mm_loadu_si128(static_cast<const __m128i*>(address));
}

template <typename Lane>
inline __m128i constant128(const Lane* lanes) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes));
}

// The columns and rows of a box that lie in the world, and the weights of the outermost ones; those between weigh kOne.
struct BoxPart {
  const std::byte* first;  // the upper left pixel
  std::ptrdiff_t row_bytes;
  int columns;
  int rows;
  std::uint32_t left;
  std::uint32_t right;
  std::uint32_t top;
  std::uint32_t bottom;
};

// A box of one to two pixels' size: where in its first pixel it begins and how long it is, in 1/65536 pixel, x in lane
// 0 and y in lane 1 of 32 bits; the other lanes are 0.
struct SmallBox {
  __m128i begin;
  __m128i length;
};

// The radii stand side by side; a caller had better store them at once, for a load across two stores waits for both.
inline SmallBox smallBox(std::int32_t x, std::int32_t y, const PF_SampleParams& params) {
  static_assert(offsetof(PF_SampleParams, y_radius) == offsetof(PF_SampleParams, x_radius) + 4);
  const __m128i centre = _mm_insert_epi32(_mm_cvtsi32_si128(x), y, 1);
  const __m128i radius = loadBytes8(&params.x_radius);
  const __m128i begin = _mm_add_epi32(_mm_sub_epi32(centre, radius), constant128(kSmallBoxConstants.narrow_half));
  return {_mm_and_si128(begin, constant128(kSmallBoxConstants.narrow_fraction)), _mm_add_epi32(radius, radius)};
}

// ---- 8 bit ---------------------------------------------------------------------------------------------------------

struct Depth8 {
  using Pixel = PF_Pixel8;
  static constexpr std::ptrdiff_t kPixelBytes = 4;
  static constexpr int kColumnsPerLoad = 4;
  static constexpr bool kOnePixelIsMean = true;  // the mean over a box in one pixel is that pixel to the bit

  static PF_AreaSampler<Pixel> plain() { return plainAreaSamplers().sample8; }

  // Two pixels side by side, in 32-bit lanes.
  static __m256i widenPair(const std::byte* pixels) { return _mm256_cvtepu8_epi32(loadBytes8(pixels)); }

  static __m256d widen(const std::byte* pixel) { return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(loadBytes4(pixel))); }

  static constexpr int kSignFlip = 0;
  static constexpr double kSignedZero = 0.0;

  static void storeLanes(__m128i lanes, Pixel* out) {
    const __m128i words = _mm_packus_epi32(lanes, lanes);
    const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    __builtin_memcpy(out, &bytes, 4);
  }

  // Adds a row's pixels times a weight below 2^16 to four pixels' sums.
  static void addWeighted(const std::byte* pixels, __m256i weight, __m256i* low, __m256i* high) {
    const __m256i channels = _mm256_cvtepu8_epi16(loadBytes16(pixels));
    const __m256i product_low = _mm256_mullo_epi16(channels, weight);
    const __m256i product_high = _mm256_mulhi_epu16(channels, weight);
    *low = _mm256_add_epi32(*low, _mm256_unpacklo_epi16(product_low, product_high));
    *high = _mm256_add_epi32(*high, _mm256_unpackhi_epi16(product_low, product_high));
  }

  // The sums of `kMostColumns` pixels' columns, in 32-bit lanes: 16 rows of weight 65536 and channels up to 255.
  static void sumColumns(const BoxPart& box, __m128i* sums) {
    for (int column = 0; column < box.columns; column += kColumnsPerLoad) {
      const std::byte* pixels = box.first + column * kPixelBytes;
      __m256i whole = _mm256_setzero_si256();
      const std::byte* row = pixels + box.row_bytes;
      for (int i = 1; i < box.rows - 1; ++i, row += box.row_bytes) {
        whole = _mm256_add_epi16(whole, _mm256_cvtepu8_epi16(loadBytes16(row)));
      }
      __m256i low = _mm256_unpacklo_epi16(_mm256_setzero_si256(), whole);
      __m256i high = _mm256_unpackhi_epi16(_mm256_setzero_si256(), whole);
      addBorderRow(pixels, box.top, &low, &high);
      if (box.rows > 1) {
        addBorderRow(row, box.bottom, &low, &high);
      }
      _mm_store_si128(sums + column, _mm256_castsi256_si128(low));
      _mm_store_si128(sums + column + 1, _mm256_castsi256_si128(high));
      _mm_store_si128(sums + column + 2, _mm256_extracti128_si256(low, 1));
      _mm_store_si128(sums + column + 3, _mm256_extracti128_si256(high, 1));
    }
  }

  static void addBorderRow(const std::byte* pixels, std::uint32_t weight, __m256i* low, __m256i* high) {
    if (weight == kOne) {
      const __m256i channels = _mm256_cvtepu8_epi16(loadBytes16(pixels));
      *low = _mm256_add_epi32(*low, _mm256_unpacklo_epi16(_mm256_setzero_si256(), channels));
      *high = _mm256_add_epi32(*high, _mm256_unpackhi_epi16(_mm256_setzero_si256(), channels));
    } else {
      addWeighted(pixels, _mm256_set1_epi16(static_cast<short>(weight)), low, high);
    }
  }

  static void sampleBox(const BoxPart& box, std::int64_t area, Pixel* out) {
    alignas(32) __m128i sums[kMostColumns + kColumnsPerLoad];
    sumColumns(box, sums);
    __m128i whole = _mm_setzero_si128();
    for (int i = 1; i < box.columns - 1; ++i) {
      whole = _mm_add_epi32(whole, sums[i]);  // 255 * 2^20 * 16 at most
    }
    __m256i total = _mm256_slli_epi64(_mm256_cvtepu32_epi64(whole), 16);
    total = _mm256_add_epi64(total, _mm256_mul_epu32(_mm256_cvtepu32_epi64(sums[0]), _mm256_set1_epi64x(box.left)));
    if (box.columns > 1) {
      total = _mm256_add_epi64(
          total, _mm256_mul_epu32(_mm256_cvtepu32_epi64(sums[box.columns - 1]), _mm256_set1_epi64x(box.right)));
    }
    // The sums are below 2^48, so doubles hold them exactly, and a quotient below a whole number lies at least 2^-40
    // below it, farther than the division rounds: the truncated quotient is exact.
    const __m256i rounded = _mm256_add_epi64(total, _mm256_set1_epi64x(area / 2));
    const __m256d magic = _mm256_set1_pd(0x1p52);
    const __m256d numbers =
        _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(rounded, _mm256_castpd_si256(magic))), magic);
    storeLanes(_mm256_cvttpd_epi32(_mm256_div_pd(numbers, _mm256_set1_pd(static_cast<double>(area)))), out);
  }
};

// ---- 16 bit --------------------------------------------------------------------------------------------------------

struct Depth16 {
  using Pixel = PF_Pixel16;
  static constexpr std::ptrdiff_t kPixelBytes = 8;
  static constexpr int kColumnsPerLoad = 2;
  static constexpr bool kOnePixelIsMean = true;

  static PF_AreaSampler<Pixel> plain() { return plainAreaSamplers().sample16; }

  static __m256i widenPair(const std::byte* pixels) { return _mm256_cvtepu16_epi32(loadBytes16(pixels)); }

  static __m256d widen(const std::byte* pixel) { return _mm256_cvtepi32_pd(_mm_cvtepu16_epi32(loadBytes8(pixel))); }

  // A channel times 65536 takes all 32 bits: the conversion to double, which is signed, sees it less 2^31.
  static constexpr int kSignFlip = -2147483648;
  static constexpr double kSignedZero = 32768.0;

  static void storeLanes(__m128i lanes, Pixel* out) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi32(lanes, lanes));
  }

  static __m256i weighted(const std::byte* pixels, std::uint32_t weight) {
    return _mm256_mullo_epi32(_mm256_cvtepu16_epi32(loadBytes16(pixels)), _mm256_set1_epi32(static_cast<int>(weight)));
  }

  static __m256i lowLanes(__m256i lanes) { return _mm256_cvtepu32_epi64(_mm256_castsi256_si128(lanes)); }
  static __m256i highLanes(__m256i lanes) { return _mm256_cvtepu32_epi64(_mm256_extracti128_si256(lanes, 1)); }

  // The sums of the columns in 64-bit lanes.
  static void sumColumns(const BoxPart& box, __m256i* sums) {
    for (int column = 0; column < box.columns; column += kColumnsPerLoad) {
      const std::byte* row = box.first + column * kPixelBytes;
      const __m256i top = weighted(row, box.top);
      row += box.row_bytes;
      __m256i whole = _mm256_setzero_si256();
      for (int i = 1; i < box.rows - 1; ++i, row += box.row_bytes) {
        whole = _mm256_add_epi32(whole, _mm256_cvtepu16_epi32(loadBytes16(row)));
      }
      const __m256i bottom = box.rows > 1 ? weighted(row, box.bottom) : _mm256_setzero_si256();
      sums[column] =
          _mm256_add_epi64(_mm256_slli_epi64(lowLanes(whole), 16), _mm256_add_epi64(lowLanes(top), lowLanes(bottom)));
      sums[column + 1] = _mm256_add_epi64(_mm256_slli_epi64(highLanes(whole), 16),
                                          _mm256_add_epi64(highLanes(top), highLanes(bottom)));
    }
  }

  // 64-bit lanes times a weight of up to 2^16.
  static __m256i times(__m256i lanes, std::uint32_t weight) {
    const __m256i factor = _mm256_set1_epi64x(weight);
    const __m256i high = _mm256_mul_epu32(_mm256_srli_epi64(lanes, 32), factor);
    return _mm256_add_epi64(_mm256_mul_epu32(lanes, factor), _mm256_slli_epi64(high, 32));
  }

  static void sampleBox(const BoxPart& box, std::int64_t area, Pixel* out) {
    __m256i sums[kMostColumns + kColumnsPerLoad];
    sumColumns(box, sums);
    __m256i whole = _mm256_setzero_si256();
    for (int i = 1; i < box.columns - 1; ++i) {
      whole = _mm256_add_epi64(whole, sums[i]);
    }
    __m256i total = _mm256_add_epi64(_mm256_slli_epi64(whole, 16), times(sums[0], box.left));
    if (box.columns > 1) {
      total = _mm256_add_epi64(total, times(sums[box.columns - 1], box.right));
    }
    alignas(32) std::uint64_t channel[4];
    _mm256_store_si256(reinterpret_cast<__m256i*>(channel), _mm256_add_epi64(total, _mm256_set1_epi64x(area / 2)));
    const auto divisor = static_cast<std::uint64_t>(area);
    *out = {static_cast<std::uint16_t>(channel[0] / divisor), static_cast<std::uint16_t>(channel[1] / divisor),
            static_cast<std::uint16_t>(channel[2] / divisor), static_cast<std::uint16_t>(channel[3] / divisor)};
  }
};

// ---- float ---------------------------------------------------------------------------------------------------------

// A weight times a float is exact in a double, so a fused multiply-add rounds as the product and the sum would.
struct DepthFloat {
  using Pixel = PF_PixelFloat;
  static constexpr std::ptrdiff_t kPixelBytes = 16;
  static constexpr int kColumnsPerLoad = 1;
  static constexpr bool kOnePixelIsMean = false;  // it may be NaN or -0

  static PF_AreaSampler<Pixel> plain() { return plainAreaSamplers().sample_float; }

  static __m256d widen(const std::byte* pixel) {
    return _mm256_cvtps_pd(_mm_loadu_ps(reinterpret_cast<const float*>(pixel)));
  }

  static void store(__m256d mean, Pixel* out) { _mm_storeu_ps(&out->alpha, _mm256_cvtpd_ps(mean)); }

  // The sums of `kRows` rows, side by side so that their chains of additions overlap.
  template <int kRows>
  static void sumRows(const BoxPart& box, const std::byte* row, __m256d* sums) {
    const __m256d left = _mm256_set1_pd(box.left);
    for (int i = 0; i < kRows; ++i) {
      sums[i] = _mm256_fmadd_pd(left, widen(row + i * box.row_bytes), _mm256_setzero_pd());
    }
    const __m256d one = _mm256_set1_pd(65536.0);
    const std::byte* pixel = row + kPixelBytes;
    for (int column = 1; column < box.columns - 1; ++column, pixel += kPixelBytes) {
      for (int i = 0; i < kRows; ++i) {
        sums[i] = _mm256_fmadd_pd(one, widen(pixel + i * box.row_bytes), sums[i]);
      }
    }
    if (box.columns > 1) {
      const __m256d right = _mm256_set1_pd(box.right);
      for (int i = 0; i < kRows; ++i) {
        sums[i] = _mm256_fmadd_pd(right, widen(pixel + i * box.row_bytes), sums[i]);
      }
    }
  }

  static __m256d rowWeight(const BoxPart& box, int row) {
    return _mm256_set1_pd(row == 0 ? box.top : row == box.rows - 1 ? box.bottom : 65536);
  }

  static void sampleBox(const BoxPart& box, std::int64_t area, Pixel* out) {
    constexpr int kRowsAtOnce = 4;
    __m256d total = _mm256_setzero_pd();
    const std::byte* row = box.first;
    int y = 0;
    for (; y + kRowsAtOnce <= box.rows; y += kRowsAtOnce, row += kRowsAtOnce * box.row_bytes) {
      __m256d sums[kRowsAtOnce];
      sumRows<kRowsAtOnce>(box, row, sums);
      for (int i = 0; i < kRowsAtOnce; ++i) {
        total = _mm256_add_pd(total, _mm256_mul_pd(rowWeight(box, y + i), sums[i]));
      }
    }
    for (; y < box.rows; ++y, row += box.row_bytes) {
      __m256d sum;
      sumRows<1>(box, row, &sum);
      total = _mm256_add_pd(total, _mm256_mul_pd(rowWeight(box, y), sum));
    }
    store(_mm256_mul_pd(total, _mm256_set1_pd(1.0 / static_cast<double>(area))), out);
  }
};

}  // namespace

}  // namespace vantorel::host
