#include "host/sampling/AreaSampler.h"

#include "bench/Components.h"
#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

constexpr int kHalfPixel = 32768;  // 16.16
constexpr int kMargin = 16;        // pixels between the positions and the picture's edge

// Samples boxes along the picture's rows, at fractional positions.
template <typename Pixel>
void sampleRows(PF_AreaSampler<Pixel> sample, PF_LayerDef* layer, int radius, int rows) {
  PF_SampleParams params{};
  params.x_radius = params.y_radius = radius;
  params.area = static_cast<std::int32_t>(std::int64_t{4} * radius * radius / 65536);
  params.source = layer;
  Pixel out{};
  for (int y = 0; y < rows; ++y) {
    for (int x = kMargin; x < layer->width - kMargin; ++x) {
      sample(nullptr, x * 65536 + 20000, (kMargin + y) * 65536 + 9000, &params, &out);
    }
  }
}

template <typename Pixel>
void addSampler(const Effort& effort, const char* variant, PF_AreaSampler<Pixel> sample, host::Depth depth) {
  struct Box {
    const char* name;
    int radius;  // 16.16
    int rows;
  };
  constexpr Box kBoxes[] = {
      {"0.5", kHalfPixel, 64}, {"1", 2 * kHalfPixel, 32}, {"4", 8 * kHalfPixel, 4}, {"8", 16 * kHalfPixel, 2}};
  for (const Box& box : kBoxes) {
    const Labels labels{"area-sampler", "", sizeText(kHd), depthText(depth), box.name, variant};
    const int columns = kHd.width - 2 * kMargin;
    add(effort, {labels,
                 [=, box = box] {
                   const host::ConstImageView view = picture(kHd, depth);
                   PF_LayerDef layer{};
                   layer.data = const_cast<std::byte*>(view.data);
                   layer.row_bytes = static_cast<std::int32_t>(view.row_bytes);
                   layer.width = view.size.width;
                   layer.height = view.size.height;
                   sampleRows(sample, &layer, box.radius, box.rows);
                 },
                 std::int64_t{columns} * box.rows});
  }
}

}  // namespace

void addAreaSamplers(const Effort& effort) {
  for (const InstructionSet set : kInstructionSets) {
    if (isAvailable(set)) {
      const host::AreaSamplers& samplers = host::areaSamplers(set);
      const char* const name = instructionSetName(set);
      addSampler(effort, name, samplers.sample8, host::Depth::Bits8);
      addSampler(effort, name, samplers.sample16, host::Depth::Bits16);
      addSampler(effort, name, samplers.sample_float, host::Depth::Float);
    }
  }
}

}  // namespace vantorel::bench
