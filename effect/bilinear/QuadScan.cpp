#include "effect/bilinear/QuadScan.h"

#include "effect/bilinear/PixelTraits.h"
#include "effect/bilinear/QuadEdges.h"
#include "effect/bilinear/SpanFill.h"

namespace {

template <typename Traits>
void scanQuad(const PF_LayerDef& input, const M_FixedPoint* source, const M_FixedPoint* corners,
              const PF_LayerDef& output) {
  if (input.width <= 0 || input.height <= 0 || output.width <= 0) {
    return;
  }
  const InputView view{static_cast<const std::byte*>(input.data), input.row_bytes, input.width, input.height};
  const std::int64_t world_bottom = std::int64_t{output.height} * kFixedOne;
  EdgeWalker walker;
  QuadSpan before{};
  for (bool has_row = startAtTop(corners, &walker); has_row; has_row = nextRow(&walker)) {
    if (walker.y >= world_bottom) {
      return;
    }
    if (walker.y < 0) {
      skipRowsAbove(0, &walker);
      continue;
    }
    QuadSpan span;
    if (!rowSpan(walker, source, &span)) {
      continue;
    }
    const OutputRow row{static_cast<std::byte*>(output.data) + (walker.y >> 16) * output.row_bytes, output.width,
                        walker.coverage};
    drawLeftEnd<Traits>(view, span, row);
    const PixelSpan pixels = wholePixels(span, row.width, rowsAhead(before, span));
    fillSpan<Traits>(view, pixels, row);
    if (endsInside(span, row.width)) {
      drawRightEnd<Traits>(view, span, stepSpan(pixels, pixels.count), row);
    }
    before = span;
  }
}

}  // namespace

void FixedToFixed(PF_InData* /*in_data*/, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                  PF_LayerDef* output) {
  scanQuad<PixelTraits8>(*input, source, corners, *output);
}

void FixedToFixed16(PF_InData* /*in_data*/, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                    PF_LayerDef* output) {
  scanQuad<PixelTraits16>(*input, source, corners, *output);
}

void FixedToFixedFloat(PF_InData* /*in_data*/, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                       PF_LayerDef* output) {
  scanQuad<PixelTraitsFloat>(*input, source, corners, *output);
}
