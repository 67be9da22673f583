// The means of boxes of up to 17 by 17 pixels, clipped to the world: first the column sums, then the sum of the box.
// Included only by AreaSamplerVector.inl.

namespace vantorel::host {

namespace {

constexpr int kMaxColumns = 17;  // the most that a box with a radius of 8 pixels overlaps

// The columns and rows of a box inside the world, and the weights of the first and last ones; those in between have the
// weight kOnePixel.
struct ClippedBox {
  const std::byte* first;  // the upper left pixel
  std::ptrdiff_t row_bytes;
  int columns;
  int rows;
  std::uint32_t left;
  std::uint32_t right;
  std::uint32_t top;
  std::uint32_t bottom;
};

// ---- 8 bit ----------------------------------------------------------------------------------------------------------

// Adds four pixels of a row, times a weight below 2^16, to their column sums.
inline void addWeighted(const std::byte* pixels, __m256i weight, __m256i* low, __m256i* high) {
  const __m256i channels = _mm256_cvtepu8_epi16(loadBytes16(pixels));
  const __m256i product_low = _mm256_mullo_epi16(channels, weight);
  const __m256i product_high = _mm256_mulhi_epu16(channels, weight);
  *low = _mm256_add_epi32(*low, _mm256_unpacklo_epi16(product_low, product_high));
  *high = _mm256_add_epi32(*high, _mm256_unpackhi_epi16(product_low, product_high));
}

inline void addBorderRow(const std::byte* pixels, std::uint32_t weight, __m256i* low, __m256i* high) {
  if (weight == kOnePixel) {
    const __m256i channels = _mm256_cvtepu8_epi16(loadBytes16(pixels));
    *low = _mm256_add_epi32(*low, _mm256_unpacklo_epi16(_mm256_setzero_si256(), channels));
    *high = _mm256_add_epi32(*high, _mm256_unpackhi_epi16(_mm256_setzero_si256(), channels));
  } else {
    addWeighted(pixels, _mm256_set1_epi16(static_cast<short>(weight)), low, high);
  }
}

// The column sums, in 32-bit lanes: enough for 16 rows of weight 65536 and channels up to 255.
inline void sumColumns(const ClippedBox& box, __m128i* sums) {
  for (int column = 0; column < box.columns; column += Pixels8::kColumnsPerLoad) {
    const std::byte* pixels = box.first + column * Pixels8::kPixelBytes;
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

inline void meanOfBox(const ClippedBox& box, std::int64_t area, PF_Pixel8* out) {
  alignas(32) __m128i sums[kMaxColumns + Pixels8::kColumnsPerLoad];
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
  // The sums are below 2^48, so doubles hold them exactly. A quotient that is not a whole number is at least 2^-40
  // below the next one, more than the division's rounding error, so the truncated quotient is exact.
  const __m256i rounded = _mm256_add_epi64(total, _mm256_set1_epi64x(area / 2));
  const __m256d magic = _mm256_set1_pd(0x1p52);
  const __m256d numbers =
      _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(rounded, _mm256_castpd_si256(magic))), magic);
  Pixels8::storeLanes(_mm256_cvttpd_epi32(_mm256_div_pd(numbers, _mm256_set1_pd(static_cast<double>(area)))), out);
}

// ---- 16 bit ---------------------------------------------------------------------------------------------------------

inline __m256i weighted(const std::byte* pixels, std::uint32_t weight) {
  return _mm256_mullo_epi32(_mm256_cvtepu16_epi32(loadBytes16(pixels)), _mm256_set1_epi32(static_cast<int>(weight)));
}

inline __m256i lowLanes(__m256i lanes) {
  return _mm256_cvtepu32_epi64(_mm256_castsi256_si128(lanes));
}
inline __m256i highLanes(__m256i lanes) {
  return _mm256_cvtepu32_epi64(_mm256_extracti128_si256(lanes, 1));
}

// The column sums, in 64-bit lanes.
inline void sumColumns(const ClippedBox& box, __m256i* sums) {
  for (int column = 0; column < box.columns; column += Pixels16::kColumnsPerLoad) {
    const std::byte* row = box.first + column * Pixels16::kPixelBytes;
    const __m256i top = weighted(row, box.top);
    row += box.row_bytes;
    __m256i whole = _mm256_setzero_si256();
    for (int i = 1; i < box.rows - 1; ++i, row += box.row_bytes) {
      whole = _mm256_add_epi32(whole, _mm256_cvtepu16_epi32(loadBytes16(row)));
    }
    const __m256i bottom = box.rows > 1 ? weighted(row, box.bottom) : _mm256_setzero_si256();
    sums[column] =
        _mm256_add_epi64(_mm256_slli_epi64(lowLanes(whole), 16), _mm256_add_epi64(lowLanes(top), lowLanes(bottom)));
    sums[column + 1] =
        _mm256_add_epi64(_mm256_slli_epi64(highLanes(whole), 16), _mm256_add_epi64(highLanes(top), highLanes(bottom)));
  }
}

// 64-bit lanes times a weight of up to 2^16.
inline __m256i times(__m256i lanes, std::uint32_t weight) {
  const __m256i factor = _mm256_set1_epi64x(weight);
  const __m256i high = _mm256_mul_epu32(_mm256_srli_epi64(lanes, 32), factor);
  return _mm256_add_epi64(_mm256_mul_epu32(lanes, factor), _mm256_slli_epi64(high, 32));
}

inline void meanOfBox(const ClippedBox& box, std::int64_t area, PF_Pixel16* out) {
  __m256i sums[kMaxColumns + Pixels16::kColumnsPerLoad];
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

// ---- Float ----------------------------------------------------------------------------------------------------------

// The sums of `kRows` rows, computed together so that their dependent additions overlap.
template <int kRows>
inline void sumRows(const ClippedBox& box, const std::byte* row, __m256d* sums) {
  const __m256d left = _mm256_set1_pd(box.left);
  for (int i = 0; i < kRows; ++i) {
    sums[i] = _mm256_fmadd_pd(left, PixelsFloat::widen(row + i * box.row_bytes), _mm256_setzero_pd());
  }
  const __m256d one = _mm256_set1_pd(kFixedOne);
  const std::byte* pixel = row + PixelsFloat::kPixelBytes;
  for (int column = 1; column < box.columns - 1; ++column, pixel += PixelsFloat::kPixelBytes) {
    for (int i = 0; i < kRows; ++i) {
      sums[i] = _mm256_fmadd_pd(one, PixelsFloat::widen(pixel + i * box.row_bytes), sums[i]);
    }
  }
  if (box.columns > 1) {
    const __m256d right = _mm256_set1_pd(box.right);
    for (int i = 0; i < kRows; ++i) {
      sums[i] = _mm256_fmadd_pd(right, PixelsFloat::widen(pixel + i * box.row_bytes), sums[i]);
    }
  }
}

inline __m256d rowWeight(const ClippedBox& box, int row) {
  return _mm256_set1_pd(row == 0 ? box.top : row == box.rows - 1 ? box.bottom : kFixedOne);
}

inline void meanOfBox(const ClippedBox& box, std::int64_t area, PF_PixelFloat* out) {
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
  PixelsFloat::store(_mm256_mul_pd(total, _mm256_set1_pd(1.0 / static_cast<double>(area))), out);
}

}  // namespace

}  // namespace vantorel::host
