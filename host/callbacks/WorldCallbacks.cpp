#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>

#include "host/callbacks/CallContext.h"
#include "host/callbacks/CallbackTables.h"
#include "host/frames/WorldRow.h"

namespace vantorel::host {

namespace {

// The depth of a world of the running frame; empty for an unknown world.
std::optional<Depth> depthOfWorld(const CallContext* context, const PF_LayerDef* world) {
  if (context == nullptr || context->frame == nullptr || world == nullptr) {
    return std::nullopt;
  }
  const FrameState& frame = *context->frame;
  if (world->data == frame.input.data || world->data == frame.output.data) {
    return frame.depth;
  }
  return frame.worlds.depthOf(*world);
}

std::int32_t newWorld(void* effect_ref, std::int32_t width, std::int32_t height, bool clear, std::int32_t pixel_format,
                      PF_LayerDef* world) {
  CallContext* const context = contextOf(effect_ref);
  const std::optional<Depth> depth = depthOfPixelFormat(pixel_format);
  if (context == nullptr || context->frame == nullptr || !depth || world == nullptr || width <= 0 || height <= 0) {
    return kCodeBadArgument;
  }
  return guarded([&] { return context->frame->worlds.create({width, height}, *depth, clear, world); });
}

std::int32_t getPixelFormat(PF_LayerDef* world, std::int32_t* pixel_format) {
  const std::optional<Depth> depth = depthOfWorld(currentCall(), world);
  if (!depth || pixel_format == nullptr) {
    return kCodeBadArgument;
  }
  *pixel_format = pixelFormatOfDepth(*depth);
  return ERR_NONE;
}

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

const PF_WorldSuite2* worldSuite() {
  static constexpr PF_WorldSuite2 kSuite{newWorld, nullptr, getPixelFormat};
  return &kSuite;
}

std::int32_t fillWorld(void* effect_ref, const void* color, const M_LRect* rect, PF_LayerDef* world) {
  const std::optional<Depth> depth = depthOfWorld(contextOf(effect_ref), world);
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
    fillRow(worldRow<std::byte>(*world, y) + pixel_bytes * static_cast<std::size_t>(left), pixels, pixel_bytes, color);
  }
  return ERR_NONE;
}

}  // namespace vantorel::host
