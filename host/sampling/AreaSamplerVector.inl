// The vector area samplers. AreaSamplerAvx2.cpp and AreaSamplerAvx512.cpp each define the means of small boxes of
// integer pixels for their instruction set and then include this body:
//   meanOfTwoByTwo<Pixels>      for boxes of one pixel's size
//   meanOfThreeByThree<Pixels>  for boxes of up to two pixels a side
//   meanOfFourByFour<Pixels>    for boxes of up to three pixels a side
//
// These are used well inside the world. Other boxes of up to 17 by 17 pixels are summed column by column if their loads
// stay inside a row; all others are left to the scalar samplers.
#include "host/sampling/ClippedBoxes.inl"
#include "host/sampling/FloatBoxes.inl"

namespace vantorel::host {

namespace {

constexpr std::int32_t kMaxRadius = 8 << 16;

// Samples any box: column by column if it is small and its loads stay inside a row, else with the scalar sampler.
template <typename Pixels>
[[gnu::noinline]] std::int32_t sampleAnyBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                            const PF_SampleParams* params, typename Pixels::Pixel* out) {
  if (!isSampleable(params) || params->x_radius > kMaxRadius || params->y_radius > kMaxRadius) {
    return Pixels::scalar()(effect_ref, x, y, params, out);
  }
  const PF_LayerDef& world = *params->source;
  const SampleSpan columns(x, params->x_radius);
  const SampleSpan rows(y, params->y_radius);
  const std::int64_t left = columns.firstPixel();
  const std::int64_t top = rows.firstPixel();
  const std::int64_t column_count = columns.endPixel(world.width) - left;
  const std::int64_t row_count = rows.endPixel(world.height) - top;
  const std::int64_t loaded =
      (column_count + Pixels::kColumnsPerLoad - 1) / Pixels::kColumnsPerLoad * Pixels::kColumnsPerLoad;
  if (column_count <= 0 || row_count <= 0) {
    *out = typename Pixels::Pixel{};
    return ERR_NONE;
  }
  if (left + loaded > world.width || (columns.inOnePixel() && rows.inOnePixel())) {
    return Pixels::scalar()(effect_ref, x, y, params, out);
  }
  const ClippedBox box{worldRow<const std::byte>(world, top) + left * Pixels::kPixelBytes,
                       world.row_bytes,
                       static_cast<int>(column_count),
                       static_cast<int>(row_count),
                       static_cast<std::uint32_t>(columns.overlap(left)),
                       static_cast<std::uint32_t>(columns.overlap(left + column_count - 1)),
                       static_cast<std::uint32_t>(rows.overlap(top)),
                       static_cast<std::uint32_t>(rows.overlap(top + row_count - 1))};
  meanOfBox(box, columns.length() * rows.length(), out);
  return ERR_NONE;
}

// Whether a span of that centre and radius overlaps none of the `size` pixels along an axis.
inline bool isOutside(std::int32_t centre, std::int32_t radius, std::int32_t size) {
  const std::int64_t middle = std::int64_t{centre} + kHalfPixel;
  return middle + radius <= 0 || middle - radius >= std::int64_t{size} << 16;
}

inline bool isInside(std::int32_t centre, std::int32_t radius, std::int32_t size) {
  const std::int64_t middle = std::int64_t{centre} + kHalfPixel;
  return middle >= radius && middle + radius <= std::int64_t{size} << 16;
}

// Samples a box that crosses the border, clipped to the world. A separate function, because copying the parameters
// would slow down the other cases.
template <typename Pixels>
[[gnu::noinline]] std::int32_t sampleExtended(void* effect_ref, std::int32_t x, std::int32_t y,
                                              const PF_SampleParams* params, typename Pixels::Pixel* out) {
  if (liesOutOfReach(x, params->x_radius, params->source->width) ||
      liesOutOfReach(y, params->y_radius, params->source->height)) {
    *out = typename Pixels::Pixel{};
    return ERR_NONE;
  }
  PF_SampleParams cut = *params;
  cutToWorld(&x, &cut.x_radius, cut.source->width);
  cutToWorld(&y, &cut.y_radius, cut.source->height);
  return sampleAnyBox<Pixels>(effect_ref, x, y, &cut, out);
}

// Samples a box that is not small or not well inside the world. Boxes completely outside are checked first: most pixels
// around a quadrilateral have one.
template <typename Pixels, SampleSpace kSpace>
[[gnu::noinline]] std::int32_t sampleClippedBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                                const PF_SampleParams* params, typename Pixels::Pixel* out) {
  if (kSpace == SampleSpace::OutlineExtended && isSampleable(params) &&
      !(isInside(x, params->x_radius, params->source->width) &&
        isInside(y, params->y_radius, params->source->height))) {
    return sampleExtended<Pixels>(effect_ref, x, y, params, out);
  }
  if (isSampleable(params) && (isOutside(x, params->x_radius, params->source->width) ||
                               isOutside(y, params->y_radius, params->source->height))) {
    *out = typename Pixels::Pixel{};
    return ERR_NONE;
  }
  return sampleAnyBox<Pixels>(effect_ref, x, y, params, out);
}

// Prefetches the pixel `bytes` bytes further on, which the next output row will need: in a rotated layer, consecutive
// samples change rows too often for the processor's own prefetching. The address may be outside the world; prefetching
// does not fault.
inline void prefetchBelow(const std::byte* pixel, std::ptrdiff_t bytes) {
  const std::uintptr_t address = __builtin_bit_cast(std::uintptr_t, pixel) + static_cast<std::uintptr_t>(bytes);
  __builtin_prefetch(__builtin_bit_cast(const void*, address));
}

// Whether the radius is that of a box of one to `pixels` pixels a side.
inline bool isOfPixels(int pixels, std::int32_t radius) {
  const auto more_than_one = static_cast<std::uint32_t>((pixels - 1) * kHalfPixel);
  return static_cast<std::uint32_t>(radius) - kHalfPixel <= more_than_one;
}

inline std::int32_t beginOf(std::int32_t centre, std::int32_t radius) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(centre) - static_cast<std::uint32_t>(radius) +
                                   kHalfPixel);
}

// Samples any box except one of one pixel's size. kSide is 3 or 4: a box of up to kSide - 1 pixels a side overlaps at
// most kSide by kSide pixels. Its position is computed separately from its weights, so that loading the pixels need not
// wait for the weights.
template <typename Pixels, SampleSpace kSpace, int kSide>
[[gnu::noinline]] std::int32_t sampleSmallBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                              const PF_SampleParams* params, typename Pixels::Pixel* out) {
  constexpr auto kOtherBox = kSide == 3 ? sampleSmallBox<Pixels, kSpace, 4> : sampleClippedBox<Pixels, kSpace>;
  const std::int32_t x_radius = params->x_radius;
  const std::int32_t y_radius = params->y_radius;
  const std::int32_t left = beginOf(x, x_radius);
  const std::int32_t top = beginOf(y, y_radius);
  if (!isOfPixels(kSide - 1, x_radius) || !isOfPixels(kSide - 1, y_radius)) {
    return kOtherBox(effect_ref, x, y, params, out);
  }
  // If none of these is negative, the radii are too small for left and top to have overflowed.
  if ((x | y | left | top) < 0 || params->source == nullptr) {
    return sampleClippedBox<Pixels, kSpace>(effect_ref, x, y, params, out);
  }
  const PF_LayerDef& world = *params->source;
  const std::int32_t column = left >> 16;
  const std::int32_t row = top >> 16;
  if (world.width < column + kSide || world.height < row + kSide || world.data == nullptr) {
    return sampleClippedBox<Pixels, kSpace>(effect_ref, x, y, params, out);
  }
  const std::ptrdiff_t row_bytes = world.row_bytes;
  const std::byte* const pixel =
      static_cast<const std::byte*>(world.data) + row * row_bytes + column * Pixels::kPixelBytes;
  constexpr int kRowsBelow = kSide == 3 ? 1 : 3;  // to prefetch for the next output row; chosen by measurement
  for (int i = 0; i < kRowsBelow; ++i) {
    prefetchBelow(pixel, (kSide + i) * row_bytes);
  }
  if constexpr (kSide == 3) {
    meanOfThreeByThree<Pixels>(pixel, row_bytes, x, y, *params, out);
  } else {
    meanOfFourByFour<Pixels>(pixel, row_bytes, x, y, *params, out);
  }
  return ERR_NONE;
}

// Boxes of one pixel's size are the most frequent: they are checked first and sampled here, without calls or a stack
// frame.
template <typename Pixels, SampleSpace kSpace>
std::int32_t sample(void* effect_ref, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                    typename Pixels::Pixel* out) {
  x = fromCentres<kSpace>(x);
  y = fromCentres<kSpace>(y);
  if (params == nullptr) {
    return sampleClippedBox<Pixels, kSpace>(effect_ref, x, y, params, out);
  }
  if (params->x_radius != kHalfPixel || params->y_radius != kHalfPixel) {
    return sampleSmallBox<Pixels, kSpace, 3>(effect_ref, x, y, params, out);
  }
  if ((x | y) < 0 || params->source == nullptr) {
    return sampleClippedBox<Pixels, kSpace>(effect_ref, x, y, params, out);
  }
  const PF_LayerDef& world = *params->source;
  const std::uint32_t column = static_cast<std::uint32_t>(x) >> 16;
  const std::uint32_t row = static_cast<std::uint32_t>(y) >> 16;
  if (world.width < static_cast<std::int32_t>(column + 2) || world.height < static_cast<std::int32_t>(row + 2) ||
      world.data == nullptr) {
    return sampleClippedBox<Pixels, kSpace>(effect_ref, x, y, params, out);
  }
  const std::ptrdiff_t row_bytes = world.row_bytes;
  const std::byte* const pixel =
      static_cast<const std::byte*>(world.data) + row * row_bytes + column * Pixels::kPixelBytes;
  prefetchBelow(pixel, 2 * row_bytes);
  if (!Pixels::kOnePixelIsMean && ((x | y) & (kFixedOne - 1)) == 0) {
    __builtin_memcpy(out, pixel, Pixels::kPixelBytes);
  } else {
    meanOfTwoByTwo<Pixels>(pixel, row_bytes, x & 65535, y & 65535, out);
  }
  return ERR_NONE;
}

// The table of samplers for each sample space.
template <SampleSpace kSpace>
inline constexpr AreaSamplers kSamplersIn{sample<Pixels8, kSpace>, sample<Pixels16, kSpace>,
                                          sample<PixelsFloat, kSpace>};
inline constexpr AreaSamplerTables kSamplerTables{
    {kSamplersIn<SampleSpace::Centres>, kSamplersIn<SampleSpace::Outline>, kSamplersIn<SampleSpace::OutlineExtended>}};

}  // namespace

}  // namespace vantorel::host
