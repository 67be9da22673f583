// The area samplers that use vectors, from one text for each instruction set: included by the AreaSamplerAvx*.cpp
// files, after the small boxes of their set. Everything stands in an unnamed namespace and uses nothing of the standard
// library's functions, so that no code of a set that a machine lacks can stand in for another file's.
//
// Well inside the world, boxes of one pixel's size and of up to two pixels' size have code of their own; other boxes of
// up to 17 by 17 pixels go to the depth's loops where their loads stay inside a row, and all others to the plain
// samplers.

namespace vantorel::host {

namespace {

constexpr std::int32_t kHalfPixel = 32768;
constexpr std::int32_t kLargestRadius = 8 << 16;

// Any box: here where it is small and its loads stay inside a row, else plainly.
template <typename Depth>
[[gnu::noinline]] std::int32_t sampleAnyBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                            const PF_SampleParams* params, typename Depth::Pixel* out) {
  if (!isSampleable(params) || params->x_radius > kLargestRadius || params->y_radius > kLargestRadius) {
    return Depth::plain()(effect_ref, x, y, params, out);
  }
  const PF_LayerDef& world = *params->source;
  const SampleSpan columns(x, params->x_radius);
  const SampleSpan rows(y, params->y_radius);
  const std::int64_t left = columns.firstPixel();
  const std::int64_t top = rows.firstPixel();
  const std::int64_t column_count = columns.endPixel(world.width) - left;
  const std::int64_t row_count = rows.endPixel(world.height) - top;
  const std::int64_t loaded =
      (column_count + Depth::kColumnsPerLoad - 1) / Depth::kColumnsPerLoad * Depth::kColumnsPerLoad;
  if (column_count <= 0 || row_count <= 0) {
    *out = typename Depth::Pixel{};
    return ERR_NONE;
  }
  if (left + loaded > world.width || (columns.inOnePixel() && rows.inOnePixel())) {
    return Depth::plain()(effect_ref, x, y, params, out);
  }
  const BoxPart box{sampleRow<std::byte>(world, top) + left * Depth::kPixelBytes,
                    world.row_bytes,
                    static_cast<int>(column_count),
                    static_cast<int>(row_count),
                    static_cast<std::uint32_t>(columns.overlap(left)),
                    static_cast<std::uint32_t>(columns.overlap(left + column_count - 1)),
                    static_cast<std::uint32_t>(rows.overlap(top)),
                    static_cast<std::uint32_t>(rows.overlap(top + row_count - 1))};
  Depth::sampleBox(box, columns.length() * rows.length(), out);
  return ERR_NONE;
}

// Whether a span of that centre and radius meets none of an axis's `size` pixels.
inline bool liesOutside(std::int32_t centre, std::int32_t radius, std::int32_t size) {
  const std::int64_t middle = std::int64_t{centre} + kHalfPixel;
  return middle + radius <= 0 || middle - radius >= std::int64_t{size} << 16;
}

// A box that is not small or not well inside the world. Those wholly outside, which the surroundings of a quadrilateral
// are full of, come first.
template <typename Depth>
[[gnu::noinline]] std::int32_t sampleOtherBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                              const PF_SampleParams* params, typename Depth::Pixel* out) {
  if (isSampleable(params) && (liesOutside(x, params->x_radius, params->source->width) ||
                               liesOutside(y, params->y_radius, params->source->height))) {
    *out = typename Depth::Pixel{};
    return ERR_NONE;
  }
  return sampleAnyBox<Depth>(effect_ref, x, y, params, out);
}

// Whether pixels [first, first + count) lie inside an axis of `size` pixels: a first pixel below 0 counts as one far
// beyond the end, which saves a comparison.
inline bool liesInside(std::int32_t first, std::int32_t count, std::int32_t size) {
  return std::int64_t{static_cast<std::uint32_t>(first)} + count <= size;
}

inline bool isSmall(std::int32_t radius) {
  return static_cast<std::uint32_t>(radius) - kHalfPixel <= kHalfPixel;
}

inline const std::byte* pixelAddress(const PF_LayerDef& world, std::int32_t column, std::int32_t row,
                                     std::int64_t pixel_bytes) {
  return static_cast<const std::byte*>(world.data) + std::int64_t{row} * world.row_bytes + column * pixel_bytes;
}

// A box of one to two pixels' size, which meets three by three pixels at most.
template <typename Depth>
[[gnu::noinline]] std::int32_t sampleSmallBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                              const PF_SampleParams* params, typename Depth::Pixel* out) {
  const PF_LayerDef& world = *params->source;
  const std::int64_t left = std::int64_t{x} - params->x_radius + kHalfPixel;
  const std::int64_t top = std::int64_t{y} - params->y_radius + kHalfPixel;
  const std::int32_t column = static_cast<std::int32_t>(left >> 16);
  const std::int32_t row = static_cast<std::int32_t>(top >> 16);
  if (!liesInside(column, 3, world.width) || !liesInside(row, 3, world.height)) {
    return sampleOtherBox<Depth>(effect_ref, x, y, params, out);
  }
  const SmallBox box{static_cast<std::int32_t>(left) & 65535, static_cast<std::int32_t>(top) & 65535,
                     params->x_radius * 2, params->y_radius * 2};
  const std::byte* const pixel = pixelAddress(world, column, row, Depth::kPixelBytes);
  __builtin_prefetch(pixel + 3 * std::ptrdiff_t{world.row_bytes});
  sampleThreeByThree<Depth>(pixel, world.row_bytes, box, out);
  return ERR_NONE;
}

// A box of no pixel's size, or not well inside the world.
template <typename Depth>
[[gnu::noinline]] std::int32_t sampleBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                         const PF_SampleParams* params, typename Depth::Pixel* out) {
  if (isSampleable(params) && isSmall(params->x_radius) && isSmall(params->y_radius)) {
    return sampleSmallBox<Depth>(effect_ref, x, y, params, out);
  }
  return sampleOtherBox<Depth>(effect_ref, x, y, params, out);
}

// The box of one pixel's size comes first and calls nothing, so that it needs no stack.
template <typename Depth>
std::int32_t sample(void* effect_ref, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                    typename Depth::Pixel* out) {
  if (params == nullptr || params->x_radius != kHalfPixel || params->y_radius != kHalfPixel ||
      params->source == nullptr || params->source->data == nullptr || (x | y) < 0) {
    return sampleBox<Depth>(effect_ref, x, y, params, out);
  }
  const PF_LayerDef& world = *params->source;
  const std::uint32_t column = static_cast<std::uint32_t>(x) >> 16;
  const std::uint32_t row = static_cast<std::uint32_t>(y) >> 16;
  if (world.width < static_cast<std::int32_t>(column + 2) || world.height < static_cast<std::int32_t>(row + 2)) {
    return sampleBox<Depth>(effect_ref, x, y, params, out);
  }
  const std::byte* const pixel = static_cast<const std::byte*>(world.data) + std::int64_t{row} * world.row_bytes +
                                 std::int64_t{column} * Depth::kPixelBytes;
  __builtin_prefetch(pixel + 2 * std::ptrdiff_t{world.row_bytes});
  if (!Depth::kOnePixelIsMean && ((x | y) & 65535) == 0) {
    __builtin_memcpy(out, pixel, Depth::kPixelBytes);
  } else {
    sampleSquare<Depth>(pixel, world.row_bytes, x & 65535, y & 65535, out);
  }
  return ERR_NONE;
}

}  // namespace

}  // namespace vantorel::host
