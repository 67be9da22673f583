// OpenCV's warps, which do not antialias: with corners measured from pixel centres, as its own functions do, and with
// the layer's outline placed on the corners.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/quality/Renderer.h"

namespace vantorel::quality {

namespace {

cv::Mat matOf(const host::ImageView& view) {
  return {view.size.height, view.size.width, CV_8UC4, view.data, static_cast<std::size_t>(view.row_bytes)};
}

// `centre` is the position of the upper left pixel's centre.
cv::Mat layerToCanvas(const Scene& scene, float centre) {
  const Ring layer = ringOf(scene.layer);
  const Ring canvas = ringOf(scene.corners);
  std::array<cv::Point2f, 4> from;
  std::array<cv::Point2f, 4> to;
  for (std::size_t i = 0; i < 4; ++i) {
    from[i] = {static_cast<float>(layer[i].x) - centre, static_cast<float>(layer[i].y) - centre};
    to[i] = {static_cast<float>(canvas[i].x) - centre, static_cast<float>(canvas[i].y) - centre};
  }
  return cv::getPerspectiveTransform(from.data(), to.data());
}

Renderer warp(const char* name, bool judged_everywhere, float centre, int interpolation) {
  return {name, judged_everywhere, false,
          [=](const Scene& scene, const host::ConstImageView& layer, const host::ImageView& output) -> Frame {
            const cv::Mat from = matOf({const_cast<std::byte*>(layer.data), layer.row_bytes, layer.size, layer.depth});
            return {[=, to = matOf(output), map = layerToCanvas(scene, centre)]() mutable {
                      cv::setNumThreads(1);
                      cv::warpPerspective(from, to, map, to.size(), interpolation, cv::BORDER_CONSTANT);
                    },
                    {}};
          }};
}

}  // namespace

std::vector<Renderer> openCvRenderers() {
  return {
      warp("OpenCV linear", true, 0.0F, cv::INTER_LINEAR),
      warp("OpenCV linear, placed", true, 0.5F, cv::INTER_LINEAR),
      warp("OpenCV cubic, placed", false, 0.5F, cv::INTER_CUBIC),
  };
}

}  // namespace vantorel::quality
