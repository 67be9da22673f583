#include "host/frames/WorldStore.h"

#include <utility>

namespace vantorel::host {

std::optional<Depth> depthOfPixelFormat(std::int32_t pixel_format) {
  switch (pixel_format) {
    case PF_PIXEL_FORMAT_ARGB8:
      return Depth::Bits8;
    case PF_PIXEL_FORMAT_ARGB16:
      return Depth::Bits16;
    case PF_PIXEL_FORMAT_ARGB32F:
      return Depth::Float;
    default:
      return std::nullopt;
  }
}

std::int32_t pixelFormatOfDepth(Depth depth) {
  switch (depth) {
    case Depth::Bits8:
      return PF_PIXEL_FORMAT_ARGB8;
    case Depth::Bits16:
      return PF_PIXEL_FORMAT_ARGB16;
    case Depth::Float:
      break;
  }
  return PF_PIXEL_FORMAT_ARGB32F;
}

PF_LayerDef worldOf(const ImageView& view) {
  PF_LayerDef world{};
  world.data = view.data;
  world.row_bytes = static_cast<std::int32_t>(view.row_bytes);
  world.width = view.size.width;
  world.height = view.size.height;
  world.extent_hint = M_LRect(0, 0, view.size.width, view.size.height);
  return world;
}

std::size_t rowPixelBytes(const PF_LayerDef& world, Depth depth) {
  return bytesPerPixel(depth) * static_cast<std::size_t>(world.width);
}

std::int32_t WorldStore::create(Size size, Depth depth, bool clear, PF_LayerDef* world) {
  Result<Image> image = Image::create(size, depth);
  if (!image) {
    return ERR_OUT_OF_MEMORY;
  }
  if (clear) {
    image->clear();
  }
  *world = worldOf(image->view());
  images_.push_back(std::move(*image));
  return ERR_NONE;
}

std::optional<Depth> WorldStore::depthOf(const PF_LayerDef& world) const {
  for (const Image& image : images_) {
    if (image.view().data == world.data) {
      return image.depth();
    }
  }
  return std::nullopt;
}

}  // namespace vantorel::host
