// The area samplers pixel by pixel: for processors without AVX2, for boxes that the vector code does not handle, and as
// the reference that the vector code must match to the bit.
#include <type_traits>

#include "host/callbacks/CallContext.h"
#include "host/sampling/AreaSamplerVariants.h"
#include "host/sampling/SampleBox.h"

namespace vantorel::host {

namespace {

__extension__ using Uint128 = unsigned __int128;

// Up to this radius, 32 pixels, the sums of 16-bit channels fit into 64 bits: (2 * 2^21)^2 * 2^16 = 2^60.
constexpr std::int32_t kMaxRadiusIn64Bits = 1 << 21;

// The pixels that a box overlaps along an axis (at least one), and the overlaps of the first and the last one; those in
// between overlap fully.
struct AxisWeights {
  std::int64_t first;
  std::int64_t last;
  std::int64_t first_weight;
  std::int64_t last_weight;

  AxisWeights(const SampleSpan& span, std::int32_t size, bool is_pixel_sized)
      : first(span.firstPixel()), last(span.endPixel(size) - 1) {
    if (is_pixel_sized) {
      const std::int64_t fraction = span.begin & (kOnePixel - 1);
      first_weight = first == span.begin >> 16 ? kOnePixel - fraction : fraction;
      last_weight = fraction;
    } else {
      first_weight = span.overlap(first);
      last_weight = span.overlap(last);
    }
  }

  std::int64_t weight(std::int64_t pixel) const {
    return pixel == first ? first_weight : pixel == last ? last_weight : kOnePixel;
  }
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

// A box of one pixel's size overlaps at most two columns, so there are none in between.
template <typename Channel, typename Sum, bool kIsPixelSized>
ChannelSums<Sum> sumOfBox(const PF_LayerDef& world, const AxisWeights& columns, const AxisWeights& rows) {
  ChannelSums<Sum> box;
  for (std::int64_t row = rows.first; row <= rows.last; ++row) {
    const auto* const channels = worldRow<const Channel>(world, row);
    ChannelSums<Sum> sum;
    sum.add(channels + columns.first * 4, columns.first_weight);
    for (std::int64_t column = columns.first + 1; !kIsPixelSized && column < columns.last; ++column) {
      sum.add(channels + column * 4, kOnePixel);
    }
    if (columns.last != columns.first) {
      sum.add(channels + columns.last * 4, columns.last_weight);
    }
    box.add(sum.total, rows.weight(row));
  }
  return box;
}

template <typename Channel, typename Sum>
Channel quotient(Sum sum, Sum area) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return static_cast<Channel>(sum * (1 / area));
  } else {
    return static_cast<Channel>((sum + area / 2) / area);
  }
}

// The mean over a box that overlaps pixels of the world. For a box of one pixel's size the area is a constant, which
// lets the compiler replace the division.
template <typename Sum, bool kIsPixelSized, typename Pixel>
void sampleBox(const PF_LayerDef& world, const SampleSpan& columns, const SampleSpan& rows, Pixel* out) {
  using Channel = decltype(Pixel::alpha);
  const auto box = sumOfBox<Channel, Sum, kIsPixelSized>(world, AxisWeights(columns, world.width, kIsPixelSized),
                                                         AxisWeights(rows, world.height, kIsPixelSized));
  const Sum area = kIsPixelSized ? static_cast<Sum>(kOnePixel * kOnePixel)
                                 : static_cast<Sum>(columns.length()) * static_cast<Sum>(rows.length());
  const auto mean = [&](int c) { return quotient<Channel>(box.total[c], area); };
  *out = {mean(0), mean(1), mean(2), mean(3)};
}

template <typename Pixel>
std::int32_t sampleFromCentres(std::int32_t x, std::int32_t y, const PF_SampleParams* params, Pixel* out) {
  constexpr bool kIsFloat = std::is_floating_point_v<decltype(Pixel::alpha)>;
  using Sum = std::conditional_t<kIsFloat, double, std::uint64_t>;
  using WideSum = std::conditional_t<kIsFloat, double, Uint128>;
  if (!isSampleable(params)) {
    *out = Pixel{};
    return kCodeBadArgument;
  }
  const PF_LayerDef& world = *params->source;
  const SampleSpan columns(x, params->x_radius);
  const SampleSpan rows(y, params->y_radius);
  if (columns.firstPixel() >= columns.endPixel(world.width) || rows.firstPixel() >= rows.endPixel(world.height)) {
    *out = Pixel{};
  } else if (columns.inOnePixel() && rows.inOnePixel()) {
    *out = worldRow<const Pixel>(world, rows.firstPixel())[columns.firstPixel()];
  } else if (params->x_radius == kHalfPixel && params->y_radius == kHalfPixel) {
    sampleBox<Sum, true>(world, columns, rows, out);
  } else if (kIsFloat || (params->x_radius <= kMaxRadiusIn64Bits && params->y_radius <= kMaxRadiusIn64Bits)) {
    sampleBox<Sum, false>(world, columns, rows, out);
  } else {
    sampleBox<WideSum, false>(world, columns, rows, out);
  }
  return ERR_NONE;
}

template <typename Pixel, SampleSpace kSpace>
std::int32_t sample(void* /*effect_ref*/, std::int32_t x, std::int32_t y, const PF_SampleParams* params, Pixel* out) {
  x = fromCentres<kSpace>(x);
  y = fromCentres<kSpace>(y);
  if (kSpace == SampleSpace::OutlineExtended && isSampleable(params)) {
    if (liesOutOfReach(x, params->x_radius, params->source->width) ||
        liesOutOfReach(y, params->y_radius, params->source->height)) {
      *out = Pixel{};
      return ERR_NONE;
    }
    PF_SampleParams cut = *params;
    cutToWorld(&x, &cut.x_radius, cut.source->width);
    cutToWorld(&y, &cut.y_radius, cut.source->height);
    return sampleFromCentres(x, y, &cut, out);
  }
  return sampleFromCentres(x, y, params, out);
}

template <SampleSpace kSpace>
constexpr AreaSamplers kSamplersIn{sample<PF_Pixel8, kSpace>, sample<PF_Pixel16, kSpace>,
                                   sample<PF_PixelFloat, kSpace>};

}  // namespace

const AreaSamplerTables kScalarAreaSamplers{
    {kSamplersIn<SampleSpace::Centres>, kSamplersIn<SampleSpace::Outline>, kSamplersIn<SampleSpace::OutlineExtended>}};

}  // namespace vantorel::host
