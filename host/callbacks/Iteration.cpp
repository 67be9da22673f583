#include "host/callbacks/Iteration.h"

#include <algorithm>
#include <cstddef>

#include "host/callbacks/CallContext.h"
#include "host/frames/WorldRow.h"

namespace vantorel::host {

namespace {

template <typename Pixel>
using PixelFunction = std::int32_t (*)(void* refcon, std::int32_t x, std::int32_t y, Pixel* in, Pixel* out);

// Clips [*begin, *end) to [low, high).
void cut(std::int32_t* begin, std::int32_t* end, std::int64_t low, std::int64_t high) {
  *begin = static_cast<std::int32_t>(std::clamp<std::int64_t>(*begin, low, std::max(low, high)));
  *end = static_cast<std::int32_t>(std::clamp<std::int64_t>(*end, *begin, std::max<std::int64_t>(*begin, high)));
}

// Everything that a row of an iteration needs.
template <typename Pixel>
struct Iteration {
  CallContext& context;
  const PF_LayerDef* source;
  const PF_LayerDef& destination;
  M_LRect area;
  M_LPoint origin;
  void* refcon;
  PixelFunction<Pixel> function;
  bool watched;  // the destination is the output inside the row guard

  void cutArea(bool clip_to_source) {
    cut(&area.left, &area.right, 0, destination.width);
    cut(&area.top, &area.bottom, 0, destination.height);
    if (clip_to_source && source != nullptr) {
      const std::int64_t left = std::max(origin.x, 0);
      const std::int64_t top = std::max(origin.y, 0);
      cut(&area.left, &area.right, left,
          std::min<std::int64_t>(destination.width, origin.x + std::int64_t{source->width}));
      cut(&area.top, &area.bottom, top,
          std::min<std::int64_t>(destination.height, origin.y + std::int64_t{source->height}));
    }
  }

  // Narrow rows of a wide picture begin a page each, which the processor's own prefetching does not cross. A page's
  // address is looked up some rows earlier, as its lines would have to wait for that. Always inlined: GCC drops calls
  // of functions that do nothing else.
  [[gnu::always_inline]] void prefetchBelow(std::int32_t y) const {
    constexpr std::size_t kCacheLine = 64;
    constexpr std::size_t kNarrow = 4096;
    constexpr std::int32_t kRowsToPage = 3;
    const std::size_t bytes = sizeof(Pixel) * static_cast<std::size_t>(destination.width);
    const std::int32_t rows_left = area.bottom - 1 - y;
    if (bytes > kNarrow || rows_left < 1) {
      return;
    }
    const auto row_below = [&](std::int64_t rows) {
      return reinterpret_cast<const std::byte*>(worldRow<Pixel>(destination, y + rows));
    };
    const std::byte* const below = row_below(1);
    for (std::size_t i = 0; i < bytes; i += kCacheLine) {
      __builtin_prefetch(below + i, 1);
    }
    __builtin_prefetch(row_below(std::min(kRowsToPage, rows_left)), 1);
  }

  std::int32_t runRow(std::int32_t y) const {
    Pixel* const out = worldRow<Pixel>(destination, y);
    const std::int64_t source_y = std::int64_t{y} - origin.y;
    const bool row_has_source = source != nullptr && source_y >= 0 && source_y < source->height;
    Pixel* const in = row_has_source ? worldRow<Pixel>(*source, source_y) : nullptr;
    prefetchBelow(y);
    for (std::int32_t x = area.left; x < area.right; ++x) {
      const std::int64_t source_x = std::int64_t{x} - origin.x;
      Pixel transparent{};
      Pixel* const source_pixel =
          row_has_source && source_x >= 0 && source_x < source->width ? in + source_x : &transparent;
      const std::int32_t code = function(refcon, x, y, source_pixel, out + x);
      if (code != 0) {
        return code;
      }
    }
    if (watched) {
      context.frame->guard->rowWritten(y, *context.ledger);
    }
    return ERR_NONE;
  }

  std::int32_t run(std::int32_t progress_base, std::int32_t progress_final) {
    if (area.IsEmpty()) {
      return ERR_NONE;
    }
    const double total = std::max(progress_final, 1);
    const RowFunction task{
        [](const void* data, std::int32_t y) { return static_cast<const Iteration*>(data)->runRow(y); }, this};
    return context.frame->rows.run(context, area.top, area.bottom, progress_base / total, progress_final / total, task);
  }
};

template <typename Pixel>
std::int32_t iterateFrom(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                         PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, bool clip_to_source,
                         void* refcon, PixelFunction<Pixel> function, PF_LayerDef* destination) {
  CallContext* const context = contextOf(in_data != nullptr ? in_data->effect_ref : nullptr);
  if (context == nullptr || context->frame == nullptr || function == nullptr || destination == nullptr ||
      destination->data == nullptr || (source != nullptr && source->data == nullptr)) {
    return kCodeBadArgument;
  }
  return guarded([&] {
    FrameState& frame = *context->frame;
    const bool is_output = destination->data == frame.output.data;
    frame.iterated = frame.iterated || is_output;
    const M_LRect whole(0, 0, destination->width, destination->height);
    Iteration<Pixel> iteration{*context,
                               source,
                               *destination,
                               area != nullptr ? *area : whole,
                               origin != nullptr ? *origin : M_LPoint{0, 0},
                               refcon,
                               function,
                               is_output && frame.guard.has_value()};
    iteration.cutArea(clip_to_source);
    return iteration.run(progress_base, progress_final);
  });
}

template <typename Pixel>
std::int32_t iterate(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final, PF_LayerDef* source,
                     const M_LRect* area, void* refcon, PixelFunction<Pixel> function, PF_LayerDef* destination) {
  return iterateFrom<Pixel>(in_data, progress_base, progress_final, source, area, nullptr, true, refcon, function,
                            destination);
}

template <typename Pixel>
std::int32_t iterateOrigin(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                           PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                           PixelFunction<Pixel> function, PF_LayerDef* destination) {
  return iterateFrom<Pixel>(in_data, progress_base, progress_final, source, area, origin, true, refcon, function,
                            destination);
}

template <typename Pixel>
std::int32_t iterateOriginNonClipSrc(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                     PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                                     PixelFunction<Pixel> function, PF_LayerDef* destination) {
  return iterateFrom<Pixel>(in_data, progress_base, progress_final, source, area, origin, false, refcon, function,
                            destination);
}

}  // namespace

void installIterators(PF_UtilityCallbacks* utilities) {
  utilities->iterate_8 = iterate<PF_Pixel8>;
  utilities->iterate_16 = iterate<PF_Pixel16>;
  utilities->iterate_origin_8 = iterateOrigin<PF_Pixel8>;
  utilities->iterate_origin_16 = iterateOrigin<PF_Pixel16>;
  utilities->iterate_origin_non_clip_src_8 = iterateOriginNonClipSrc<PF_Pixel8>;
  utilities->iterate_origin_non_clip_src_16 = iterateOriginNonClipSrc<PF_Pixel16>;
}

const PF_iterateFloatSuite1* iterateFloatSuite() {
  static constexpr PF_iterateFloatSuite1 kSuite{iterate<PF_PixelFloat>, iterateOrigin<PF_PixelFloat>,
                                                iterateOriginNonClipSrc<PF_PixelFloat>};
  return &kSuite;
}

}  // namespace vantorel::host
