// The worlds that a module asks for while it draws a frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/Image.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

// The depth of a pixel-format code, or nothing for one that is unknown; and the other way.
std::optional<Depth> depthOfPixelFormat(std::int32_t pixel_format);
std::int32_t pixelFormatOfDepth(Depth depth);

// A view as the module sees it: all of it is needed. Its stride must fit 32 bits.
PF_LayerDef worldOf(const ImageView& view);

// The bytes of a row's pixels.
std::size_t rowPixelBytes(const PF_LayerDef& world, Depth depth);

class WorldStore {
 public:
  // Allocates a world and describes it in *world. ERR_OUT_OF_MEMORY without memory or for a size that
  // Image refuses.
  std::int32_t create(Size size, Depth depth, bool clear, PF_LayerDef* world);

  // The depth of a world of the store's, by its pixels.
  std::optional<Depth> depthOf(const PF_LayerDef& world) const;

  // Frees every world.
  void clear() { images_.clear(); }

 private:
  std::vector<Image> images_;
};

}  // namespace vantorel::host
