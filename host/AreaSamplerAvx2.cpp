// The area samplers with AVX2 and FMA; called only where the machine has them. Everything stands in unnamed namespaces
// and uses nothing of the standard library's functions, so that no code for AVX2 can stand in for another file's.
//
// Well inside the world, boxes of one pixel's size and of up to two pixels' size have code of their own; other boxes of
// up to 17 by 17 pixels go to the depth's loops where their loads stay inside a row, and all others to the plain
// samplers.
#if defined(__AVX2__) && defined(__FMA__)

#include "host/Avx2SmallBoxes.inl"

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

// Whether pixels [first, first + count) lie inside an axis of `size` pixels.
inline bool liesInside(std::int64_t first, std::int64_t count, std::int32_t size) {
  return first >= 0 && first + count <= size;
}

inline const std::byte* pixelAddress(const PF_LayerDef& world, std::int64_t column, std::int64_t row,
                                     std::int64_t pixel_bytes) {
  return static_cast<const std::byte*>(world.data) + row * world.row_bytes + column * pixel_bytes;
}

// A box of one pixel's size.
template <typename Depth>
inline bool trySquare(const PF_LayerDef& world, std::int32_t x, std::int32_t y, typename Depth::Pixel* out) {
  const std::int64_t column = x >> 16;
  const std::int64_t row = y >> 16;
  if (!liesInside(column, 2, world.width) || !liesInside(row, 2, world.height)) {
    return false;
  }
  const std::byte* const pixel = pixelAddress(world, column, row, Depth::kPixelBytes);
  const std::int32_t right = x & 65535;
  const std::int32_t below = y & 65535;
  if ((right | below) == 0) {
    __builtin_memcpy(out, pixel, Depth::kPixelBytes);
    return true;
  }
  if (!Depth::kZeroWeightsVanish && (right == 0 || below == 0)) {
    return false;
  }
  sampleSquare<Depth>(pixel, world.row_bytes, right, below, out);
  return true;
}

// A box of one to two pixels' size that lies within three by three pixels of the world; no position so far inside
// overflows. The address is computed apart from the weights, which the pixels' arrival does not wait for.
template <typename Depth>
[[gnu::noinline]] std::int32_t sampleSmallBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                              const PF_SampleParams* params, typename Depth::Pixel* out) {
  const PF_LayerDef& world = *params->source;
  const std::int64_t left = std::int64_t{x} - params->x_radius + kHalfPixel;
  const std::int64_t top = std::int64_t{y} - params->y_radius + kHalfPixel;
  if (!liesInside(left >> 16, 3, world.width) || !liesInside(top >> 16, 3, world.height)) {
    return sampleAnyBox<Depth>(effect_ref, x, y, params, out);
  }
  const std::byte* const pixel = pixelAddress(world, left >> 16, top >> 16, Depth::kPixelBytes);
  const ThreeWeights weights =
      threeWeights(static_cast<std::int32_t>(left), static_cast<std::int32_t>(top), params->x_radius, params->y_radius);
  sampleThreeByThree<Depth>(pixel, world.row_bytes, weights, out);
  return ERR_NONE;
}

// Whether a span of that centre and radius meets none of an axis's `size` pixels.
inline bool liesOutside(std::int32_t centre, std::int32_t radius, std::int32_t size) {
  const std::int64_t middle = std::int64_t{centre} + kHalfPixel;
  return middle + radius <= 0 || middle - radius >= std::int64_t{size} << 16;
}

// Any box. Those wholly outside, which the surroundings of a quadrilateral are full of, come first.
template <typename Depth>
[[gnu::noinline]] std::int32_t sampleBox(void* effect_ref, std::int32_t x, std::int32_t y,
                                         const PF_SampleParams* params, typename Depth::Pixel* out) {
  const auto is_small = [](std::int32_t radius) { return radius >= kHalfPixel && radius <= 2 * kHalfPixel; };
  if (!isSampleable(params)) {
    return sampleAnyBox<Depth>(effect_ref, x, y, params, out);
  }
  if (liesOutside(x, params->x_radius, params->source->width) ||
      liesOutside(y, params->y_radius, params->source->height)) {
    *out = typename Depth::Pixel{};
    return ERR_NONE;
  }
  return is_small(params->x_radius) && is_small(params->y_radius) ? sampleSmallBox<Depth>(effect_ref, x, y, params, out)
                                                                  : sampleAnyBox<Depth>(effect_ref, x, y, params, out);
}

// Whether both radii are half a pixel. Said in a way that compilers do not turn into one load of both: the module has
// just written them one by one, and a load across two stores in flight waits for both to be done.
inline bool hasPixelSize(const PF_SampleParams& params) {
  return ((params.x_radius ^ kHalfPixel) | (params.y_radius ^ kHalfPixel)) == 0;
}

// The box of one pixel's size comes first and calls nothing, so that it needs no stack.
template <typename Depth>
std::int32_t sample(void* effect_ref, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                    typename Depth::Pixel* out) {
  if (params != nullptr && hasPixelSize(*params) && params->source != nullptr && params->source->data != nullptr &&
      trySquare<Depth>(*params->source, x, y, out)) {
    return ERR_NONE;
  }
  return sampleBox<Depth>(effect_ref, x, y, params, out);
}

}  // namespace

const AreaSamplers& avx2AreaSamplers() {
  static constexpr AreaSamplers kSamplers{sample<Depth8>, sample<Depth16>, sample<DepthFloat>};
  return kSamplers;
}

}  // namespace vantorel::host

#endif
