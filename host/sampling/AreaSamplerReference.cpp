#include "host/callbacks/CallContext.h"
#include "host/sampling/AreaSampler.h"
#include "host/sampling/SampleBox.h"

namespace vantorel::host {

namespace {

__extension__ using Wide = unsigned __int128;  // a box of any radius sums exactly

// The sums of a box's channels and their mean, for integers and for floats.
template <typename Channel>
struct Sum {
  Wide total[4] = {};

  void add(const Channel* pixel, std::int64_t weight) {
    for (int c = 0; c < 4; ++c) {
      total[c] += Wide{pixel[c]} * static_cast<std::uint64_t>(weight);
    }
  }
  void addRow(const Sum& row, std::int64_t weight) {
    for (int c = 0; c < 4; ++c) {
      total[c] += row.total[c] * static_cast<std::uint64_t>(weight);
    }
  }
  Channel mean(int c, std::int64_t width, std::int64_t height) const {
    const Wide area = Wide{static_cast<std::uint64_t>(width)} * static_cast<std::uint64_t>(height);
    return static_cast<Channel>((total[c] + area / 2) / area);
  }
};

template <>
struct Sum<float> {
  double total[4] = {};

  void add(const float* pixel, std::int64_t weight) {
    for (int c = 0; c < 4; ++c) {
      total[c] += static_cast<double>(weight) * static_cast<double>(pixel[c]);
    }
  }
  void addRow(const Sum& row, std::int64_t weight) {
    for (int c = 0; c < 4; ++c) {
      total[c] += static_cast<double>(weight) * row.total[c];
    }
  }
  float mean(int c, std::int64_t width, std::int64_t height) const {
    return static_cast<float>(total[c] * (1.0 / (static_cast<double>(width) * static_cast<double>(height))));
  }
};

template <typename Pixel, typename Channel>
std::int32_t sample(void* /*effect_ref*/, std::int32_t x, std::int32_t y, const PF_SampleParams* params, Pixel* out) {
  *out = Pixel{};
  if (!isSampleable(params)) {
    return kCodeBadArgument;
  }
  const PF_LayerDef& world = *params->source;
  const SampleSpan columns(x, params->x_radius);
  const SampleSpan rows(y, params->y_radius);
  const std::int64_t right = columns.endPixel(world.width);
  const std::int64_t bottom = rows.endPixel(world.height);
  if (columns.firstPixel() >= right || rows.firstPixel() >= bottom) {
    return ERR_NONE;
  }
  if (columns.inOnePixel() && rows.inOnePixel()) {
    *out = worldRow<const Pixel>(world, rows.firstPixel())[columns.firstPixel()];
    return ERR_NONE;
  }
  Sum<Channel> box;
  for (std::int64_t row = rows.firstPixel(); row < bottom; ++row) {
    const Channel* const channels = worldRow<const Channel>(world, row);
    Sum<Channel> sum;
    for (std::int64_t column = columns.firstPixel(); column < right; ++column) {
      sum.add(channels + column * 4, columns.overlap(column));
    }
    box.addRow(sum, rows.overlap(row));
  }
  const auto mean = [&](int c) { return box.mean(c, columns.length(), rows.length()); };
  *out = {mean(0), mean(1), mean(2), mean(3)};
  return ERR_NONE;
}

}  // namespace

const AreaSamplers& referenceAreaSamplers() {
  static constexpr AreaSamplers kSamplers{sample<PF_Pixel8, std::uint8_t>, sample<PF_Pixel16, std::uint16_t>,
                                          sample<PF_PixelFloat, float>};
  return kSamplers;
}

}  // namespace vantorel::host
