#include <vector>

#include "bench/Components.h"
#include "effect/ProjectiveMap.h"
#include "effect/perspective/PerspectiveInfo.h"
#include "effect/perspective/RowSamplers.h"

namespace vantorel::bench {

namespace {

template <typename Pixel>
std::int32_t sampleNothing(void* /*effect_ref*/, std::int32_t /*x*/, std::int32_t /*y*/,
                           const PF_SampleParams* /*params*/, Pixel* /*out*/) {
  return ERR_NONE;
}

// The record that the render driver would fill for the workload. The row samplers step before they evaluate, hence the
// shift by a pixel.
KZFX_PerspectiveInfo infoFor(const Workload& workload, PF_LayerDef* layer) {
  KZFX_PerspectiveInfo info;
  info.out_width_d = info.out_width = workload.canvas.width;
  info.out_height_d = info.out_height = workload.canvas.height;
  const auto& [upper_left, upper_right, lower_left, lower_right] = workload.corners;
  M_Vector2T<double> quad[] = {{upper_left.x + 1, upper_left.y},
                               {upper_right.x + 1, upper_right.y},
                               {lower_right.x + 1, lower_right.y},
                               {lower_left.x + 1, lower_left.y}};
  KZFX_MapUnitSquareToFromQuad(quad, &info.quad_to_unit, 0);
  info.bound_left = info.bound_top = 0;
  info.bound_right = workload.canvas.width;
  info.bound_bottom = workload.canvas.height;
  info.x_scale = static_cast<double>(workload.layer.width) / workload.canvas.width;
  info.y_scale = static_cast<double>(workload.layer.height) / workload.canvas.height;
  info.input_world = layer;
  info.effect_ref = nullptr;
  info.sample_8 = sampleNothing<PF_Pixel8>;
  info.sample_16 = sampleNothing<PF_Pixel16>;
  info.sample_float = sampleNothing<PF_PixelFloat>;
  return info;
}

template <SamplingQuality kQuality>
void addTrace(const Effort& effort, const Labels& labels, InstructionSet set) {
  const Workload workload = hdWorkload(labels.workload);
  add(effort, {labels,
               [=, row = std::vector<PF_Pixel8>(static_cast<std::size_t>(workload.canvas.width))]() mutable {
                 PF_LayerDef layer{};
                 const KZFX_PerspectiveInfo info = infoFor(workload, &layer);
                 for (int y = 0; y < workload.canvas.height; ++y) {
                   traceRow<kQuality>(info, 0, y, row.data(), set);
                 }
               },
               std::int64_t{workload.canvas.width} * workload.canvas.height});
}

}  // namespace

void addRowSamplers(const Effort& effort) {
  for (const InstructionSet set : kInstructionSets) {
    if (isAvailable(set)) {
      Labels labels{"row-sampler", "a", sizeText(kHd), "", "standard", instructionSetName(set)};
      addTrace<SamplingQuality::Standard>(effort, labels, set);
      labels.quality = "high";
      addTrace<SamplingQuality::High>(effort, labels, set);
    }
  }
}

}  // namespace vantorel::bench
