#include "effect/bilinear/QuadScan.h"

#include "effect/bilinear/PixelTraits.h"
#include "effect/bilinear/QuadEdges.h"
#include "effect/bilinear/SpanFill.h"

namespace {

template <typename Family>
void scanQuad(const PF_LayerDef& input, const M_FixedPoint* source, const M_FixedPoint* corners,
              const PF_LayerDef& output) {
  if (input.width <= 0 || input.height <= 0 || output.width <= 0) {
    return;
  }
  const InputView view{static_cast<const std::byte*>(input.data), input.row_bytes, input.width, input.height};
  const std::int64_t world_bottom = std::int64_t{output.height} * kFixedOne;
  QuadWalk walk;
  if (!beginWalk(corners, &walk)) {
    return;
  }
  QuadSpan before{};
  for (; hasRow(walk); leaveRow(&walk)) {
    enterRow(&walk);
    QuadSpan span;
    if (walk.y < 0 || walk.y >= world_bottom || !rowSpan(walk, source, &span)) {
      continue;
    }
    std::byte* const row = static_cast<std::byte*>(output.data) + (walk.y >> 16) * output.row_bytes;
    drawSpan<Family>(view, span, rowsAhead(before, span), walk.cover, row, output.width);
    before = span;
  }
}

}  // namespace

void FixedToFixed(PF_InData* /*in_data*/, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                  PF_LayerDef* output) {
  scanQuad<PixelFamily8>(*input, source, corners, *output);
}

void FixedToFixed16(PF_InData* /*in_data*/, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                    PF_LayerDef* output) {
  scanQuad<PixelFamily16>(*input, source, corners, *output);
}

void FixedToFixedFloat(PF_InData* /*in_data*/, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                       PF_LayerDef* output) {
  scanQuad<PixelFamilyFloat>(*input, source, corners, *output);
}
