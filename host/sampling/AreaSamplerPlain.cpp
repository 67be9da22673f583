#include "host/callbacks/CallContext.h"
#include "host/sampling/AreaSamplerVariants.h"
#include "host/sampling/SampleBox.h"

namespace vantorel::host {

namespace {

constexpr std::int32_t kHalfPixel = 32768;
// Up to this radius (32 pixels) the sums of 16-bit channels fit 64 bits: (2 * 2^21)^2 * 2^16 = 2^60.
constexpr std::int32_t kLargestExactRadius = 1 << 21;

// How the channels of a depth are summed and averaged.
template <typename Channel>
struct Arithmetic {
  using Sum = std::uint64_t;
  static constexpr bool kLimitsRadius = true;

  Sum half_area;
  Sum area;

  Arithmetic(std::int64_t box_width, std::int64_t box_height)
      : half_area(static_cast<Sum>(box_width * box_height) / 2), area(static_cast<Sum>(box_width * box_height)) {}
  Channel mean(Sum sum) const { return static_cast<Channel>((sum + half_area) / area); }
  // The same for the area of one pixel, 2^32.
  static Channel meanOfPixel(Sum sum) { return static_cast<Channel>((sum + (Sum{1} << 31)) >> 32); }
};

template <>
struct Arithmetic<float> {
  using Sum = double;
  static constexpr bool kLimitsRadius = false;

  double reciprocal;

  // Radii without a limit have areas beyond 64 bits.
  Arithmetic(std::int64_t box_width, std::int64_t box_height)
      : reciprocal(1.0 / (static_cast<double>(box_width) * static_cast<double>(box_height))) {}
  float mean(Sum sum) const { return static_cast<float>(sum * reciprocal); }
  static float meanOfPixel(Sum sum) { return static_cast<float>(sum * 0x1p-32); }
};

template <typename Sum>
struct ChannelSums {
  Sum total[4] = {};

  template <typename Value>
  void add(const Value* values, std::int64_t weight) {
    for (int c = 0; c < 4; ++c) {
      total[c] += static_cast<Sum>(weight) * static_cast<Sum>(values[c]);
    }
  }
};

// The part of a box that lies in the world.
struct PixelRange {
  std::int64_t left;
  std::int64_t top;
  std::int64_t right;
  std::int64_t bottom;

  bool empty() const { return left >= right || top >= bottom; }
};

// A box of one pixel's size that meets more than one pixel of the world: two columns and two rows at most.
template <typename Channel, typename Sum>
void sumPixelBox(const PF_LayerDef& world, const SampleSpan& columns, const SampleSpan& rows, const PixelRange& range,
                 ChannelSums<Sum>* box) {
  const std::int64_t weight_right = columns.begin & 65535;
  const std::int64_t weight_below = rows.begin & 65535;
  const bool from_column = (columns.begin >> 16) == range.left;
  const bool from_row = (rows.begin >> 16) == range.top;
  for (std::int64_t row = range.top; row < range.bottom; ++row) {
    const Channel* const pixel = worldRow<const Channel>(world, row) + range.left * 4;
    ChannelSums<Sum> sum;
    sum.add(pixel, from_column ? 65536 - weight_right : weight_right);
    if (range.right - range.left == 2) {
      sum.add(pixel + 4, weight_right);
    }
    box->add(sum.total, from_row && row == range.top ? 65536 - weight_below : weight_below);
  }
}

template <typename Channel, typename Sum>
void sumBox(const PF_LayerDef& world, const SampleSpan& columns, const SampleSpan& rows, const PixelRange& range,
            ChannelSums<Sum>* box) {
  for (std::int64_t row = range.top; row < range.bottom; ++row) {
    const Channel* const channels = worldRow<const Channel>(world, row);
    ChannelSums<Sum> sum;
    for (std::int64_t column = range.left; column < range.right; ++column) {
      sum.add(channels + column * 4, columns.overlap(column));
    }
    box->add(sum.total, rows.overlap(row));
  }
}

template <typename Pixel, typename Channel>
std::int32_t sample(PF_AreaSampler<Pixel> reference, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                    Pixel* out) {
  using Numbers = Arithmetic<Channel>;
  if (!isSampleable(params)) {
    *out = Pixel{};
    return kCodeBadArgument;
  }
  const PF_LayerDef& world = *params->source;
  const SampleSpan columns(x, params->x_radius);
  const SampleSpan rows(y, params->y_radius);
  const PixelRange range{columns.firstPixel(), rows.firstPixel(), columns.endPixel(world.width),
                         rows.endPixel(world.height)};
  if (range.empty()) {
    *out = Pixel{};
    return ERR_NONE;
  }
  if (columns.inOnePixel() && rows.inOnePixel()) {
    *out = worldRow<const Pixel>(world, range.top)[range.left];
    return ERR_NONE;
  }
  ChannelSums<typename Numbers::Sum> box;
  if (params->x_radius == kHalfPixel && params->y_radius == kHalfPixel) {
    sumPixelBox<Channel>(world, columns, rows, range, &box);
    *out = {Numbers::meanOfPixel(box.total[0]), Numbers::meanOfPixel(box.total[1]), Numbers::meanOfPixel(box.total[2]),
            Numbers::meanOfPixel(box.total[3])};
    return ERR_NONE;
  }
  if (Numbers::kLimitsRadius && (params->x_radius > kLargestExactRadius || params->y_radius > kLargestExactRadius)) {
    return reference(nullptr, x, y, params, out);
  }
  sumBox<Channel>(world, columns, rows, range, &box);
  const Numbers numbers(columns.length(), rows.length());
  *out = {numbers.mean(box.total[0]), numbers.mean(box.total[1]), numbers.mean(box.total[2]),
          numbers.mean(box.total[3])};
  return ERR_NONE;
}

std::int32_t sample8(void* /*effect_ref*/, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                     PF_Pixel8* out) {
  return sample<PF_Pixel8, std::uint8_t>(referenceAreaSamplers().sample8, x, y, params, out);
}

std::int32_t sample16(void* /*effect_ref*/, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                      PF_Pixel16* out) {
  return sample<PF_Pixel16, std::uint16_t>(referenceAreaSamplers().sample16, x, y, params, out);
}

std::int32_t sampleFloat(void* /*effect_ref*/, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                         PF_PixelFloat* out) {
  return sample<PF_PixelFloat, float>(referenceAreaSamplers().sample_float, x, y, params, out);
}

}  // namespace

const AreaSamplers& plainAreaSamplers() {
  static constexpr AreaSamplers kSamplers{sample8, sample16, sampleFloat};
  return kSamplers;
}

}  // namespace vantorel::host
