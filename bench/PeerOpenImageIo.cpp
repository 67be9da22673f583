// OpenImageIO: warps that filter over the pixel's footprint.
#include <Imath/ImathMatrix.h>
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <memory>
#include <stdexcept>

#include "bench/Peers.h"
#include "bench/Pictures.h"
#include "effect/ProjectiveMap.h"

namespace vantorel::bench {

namespace {

OIIO::ImageSpec specOf(host::Size size, host::Depth depth) {
  constexpr int kChannels = 4;
  switch (depth) {
    case host::Depth::Bits8:
      return {size.width, size.height, kChannels, OIIO::TypeDesc::UINT8};
    case host::Depth::Bits16:
      return {size.width, size.height, kChannels, OIIO::TypeDesc::UINT16};
    default:
      return {size.width, size.height, kChannels, OIIO::TypeDesc::FLOAT};
  }
}

// A buffer over existing pixels, which are not copied.
std::shared_ptr<OIIO::ImageBuf> bufferOver(const std::byte* pixels, host::Size size, host::Depth depth) {
  return std::make_shared<OIIO::ImageBuf>(specOf(size, depth), const_cast<std::byte*>(pixels));
}

// Layer to canvas, for row vectors. Here pixel centres lie at half-integers, those of the effect and of OpenCV at
// integers: hence the shifts by half a pixel on both sides.
Imath::M33f layerToCanvas(const Workload& workload) {
  const auto& [upper_left, upper_right, lower_left, lower_right] = workload.corners;
  M_Vector2T<double> quad[] = {{upper_left.x, upper_left.y},
                               {upper_right.x, upper_right.y},
                               {lower_right.x, lower_right.y},
                               {lower_left.x, lower_left.y}};
  M_Matrix3 unit_to_quad(false);
  KZFX_MapUnitSquareToFromQuad(quad, &unit_to_quad, 1);
  Imath::M33d map;
  for (int row = 0; row < 3; ++row) {
    const double scale = row == 0 ? workload.layer.width : row == 1 ? workload.layer.height : 1;
    for (int column = 0; column < 3; ++column) {
      map[row][column] = unit_to_quad.m[row][column] / scale;
    }
  }
  const Imath::M33d before = Imath::M33d().translate(Imath::V2d(-0.5, -0.5));
  const Imath::M33d after = Imath::M33d().translate(Imath::V2d(0.5, 0.5));
  return Imath::M33f(before * map * after);
}

Drawing prepareWarp(const Workload& workload, host::Depth depth, int threads, const char* filter) {
  const auto layer = bufferOver(picture(workload.layer, depth).data, workload.layer, depth);
  const auto output = bufferOver(canvas(workload.canvas, depth).data, workload.canvas, depth);
  return {[=, map = layerToCanvas(workload)] {
            if (!OIIO::ImageBufAlgo::warp(*output, *layer, map, filter, 0.0F, false, OIIO::ImageBuf::WrapBlack, {},
                                          threads)) {
              throw std::runtime_error(output->geterror());
            }
          },
          {}};
}

}  // namespace

std::vector<Peer> openImageIoPeers() {
  const std::vector<host::Depth> depths(std::begin(kDepths), std::end(kDepths));
  const std::vector<std::string> workloads{"a", "c"};
  return {
      {"oiio-default",
       workloads,
       {},
       depths,
       false,
       true,
       [](const Workload& workload, host::Depth depth, int threads) {
         return prepareWarp(workload, depth, threads, "");
       }},
      {"oiio-triangle",
       workloads,
       {},
       depths,
       false,
       true,
       [](const Workload& workload, host::Depth depth, int threads) {
         return prepareWarp(workload, depth, threads, "triangle");
       }},
  };
}

}  // namespace vantorel::bench
