#include "host/Fill.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>

#include "host/CallContext.h"
#include "host/Suites.h"

namespace vantorel::host {

namespace {

void fillRow(std::byte* row, std::size_t pixels, std::size_t pixel_bytes, const void* color) {
  if (color == nullptr) {
    std::memset(row, 0, pixels * pixel_bytes);
    return;
  }
  for (std::size_t i = 0; i < pixels; ++i) {
    std::memcpy(row + i * pixel_bytes, color, pixel_bytes);
  }
}

}  // namespace

std::int32_t fillWorld(void* effect_ref, const void* color, const M_LRect* rect, PF_LayerDef* world) {
  const CallContext* const context = contextOf(effect_ref);
  const std::optional<Depth> depth =
      world != nullptr && context != nullptr ? depthOfWorld(*context, *world) : std::nullopt;
  if (!depth || world->data == nullptr) {
    return kCodeBadArgument;
  }
  const std::int32_t left = rect != nullptr ? std::max(rect->left, 0) : 0;
  const std::int32_t top = rect != nullptr ? std::max(rect->top, 0) : 0;
  const std::int32_t right = rect != nullptr ? std::min(rect->right, world->width) : world->width;
  const std::int32_t bottom = rect != nullptr ? std::min(rect->bottom, world->height) : world->height;
  if (left >= right) {
    return ERR_NONE;
  }
  const std::size_t pixel_bytes = bytesPerPixel(*depth);
  const std::size_t pixels = static_cast<std::size_t>(right) - static_cast<std::size_t>(left);
  for (std::int32_t y = top; y < bottom; ++y) {
    std::byte* const row = static_cast<std::byte*>(world->data) + std::ptrdiff_t{world->row_bytes} * y;
    fillRow(row + pixel_bytes * static_cast<std::size_t>(left), pixels, pixel_bytes, color);
  }
  return ERR_NONE;
}

}  // namespace vantorel::host
