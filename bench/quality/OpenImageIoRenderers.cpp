// OpenImageIO's warp, which filters over the pixel's footprint.
#include <Imath/ImathMatrix.h>
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <stdexcept>

#include "bench/quality/Renderer.h"

namespace vantorel::quality {

namespace {

// A buffer that refers to existing pixels, whose rows must not be padded.
std::shared_ptr<OIIO::ImageBuf> bufferOver(const std::byte* pixels, std::ptrdiff_t row_bytes, host::Size size) {
  if (row_bytes != std::ptrdiff_t{4} * size.width) {
    throw std::runtime_error("OpenImageIO: rows with padding; choose a width that is a multiple of 16");
  }
  const OIIO::ImageSpec spec(size.width, size.height, 4, OIIO::TypeDesc::UINT8);
  return std::make_shared<OIIO::ImageBuf>(spec, const_cast<std::byte*>(pixels));
}

// Layer to canvas, for row vectors. Pixel k covers [k, k + 1) here too. Computed as the inverse of canvas to layer,
// which the scene's mapping gives.
Imath::M33f layerToCanvas(const Scene& scene) {
  const ProjectiveMap map(scene.layer, ringOf(scene.corners));
  const ProjectiveRow first = map.row(0);
  const ProjectiveRow second = map.row(1);
  const Imath::M33d canvas_to_layer(first.x_step, first.y_step, first.w_step,  //
                                    second.x_at_0 - first.x_at_0, second.y_at_0 - first.y_at_0,
                                    second.w_at_0 - first.w_at_0,  //
                                    first.x_at_0, first.y_at_0, first.w_at_0);
  return Imath::M33f(canvas_to_layer.inverse());
}

}  // namespace

std::vector<Renderer> openImageIoRenderers() {
  return {{"OpenImageIO warp", false, false,
           [](const Scene& scene, const host::ConstImageView& layer, const host::ImageView& output) -> Frame {
             const auto from = bufferOver(layer.data, layer.row_bytes, layer.size);
             const auto to = bufferOver(output.data, output.row_bytes, output.size);
             return {
                 [=, map = layerToCanvas(scene)] {
                   if (!OIIO::ImageBufAlgo::warp(*to, *from, map, "", 0.0F, false, OIIO::ImageBuf::WrapBlack, {}, 1)) {
                     throw std::runtime_error(to->geterror());
                   }
                 },
                 {}};
           }}};
}

}  // namespace vantorel::quality
