// The worlds that a module allocates while it draws a frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/Image.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Conversion between pixel-format codes and depths; empty for an unknown code.
std::optional<Depth> depthOfPixelFormat(std::int32_t pixel_format);
std::int32_t pixelFormatOfDepth(Depth depth);

// The record of a view for the module, with the whole view as extent hint. Its stride must fit into 32 bits.
PF_LayerDef worldOf(const ImageView& view);

// The size of a row's pixels in bytes, without padding.
std::size_t rowPixelBytes(const PF_LayerDef& world, Depth depth);

class WorldStore {
 public:
  // Allocates a world and describes it in *world. ERR_OUT_OF_MEMORY if memory runs out or Image refuses the size.
  std::int32_t create(Size size, Depth depth, bool clear, PF_LayerDef* world);

  // The depth of a world in this store, identified by its pixels' address.
  std::optional<Depth> depthOf(const PF_LayerDef& world) const;

  // Frees every world.
  void clear() { images_.clear(); }

 private:
  std::vector<Image> images_;
};

}  // namespace vantorel::host
