// OpenCV: linear warps, which do not antialias, and resizing by area, which does but cannot do perspective.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/Peers.h"
#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

int matType(host::Depth depth) {
  switch (depth) {
    case host::Depth::Bits8:
      return CV_8UC4;
    case host::Depth::Bits16:
      return CV_16UC4;
    default:
      return CV_32FC4;
  }
}

cv::Mat matOf(const host::ImageView& view) {
  return {view.size.height, view.size.width, matType(view.depth), view.data, static_cast<std::size_t>(view.row_bytes)};
}

cv::Mat matOf(const host::ConstImageView& view) {
  return matOf(host::ImageView{const_cast<std::byte*>(view.data), view.row_bytes, view.size, view.depth});
}

cv::Point2f pointOf(const host::Point& point) {
  return {static_cast<float>(point.x), static_cast<float>(point.y)};
}

cv::Mat layerToCanvas(const Workload& workload) {
  const auto width = static_cast<float>(workload.layer.width);
  const auto height = static_cast<float>(workload.layer.height);
  const cv::Point2f from[] = {{0, 0}, {width, 0}, {0, height}, {width, height}};
  const cv::Point2f to[] = {pointOf(workload.corners.upper_left), pointOf(workload.corners.upper_right),
                            pointOf(workload.corners.lower_left), pointOf(workload.corners.lower_right)};
  return cv::getPerspectiveTransform(from, to);
}

template <int Interpolation>
Drawing prepareWarp(const Workload& workload, host::Depth depth, int threads) {
  const cv::Mat layer = matOf(picture(workload.layer, depth));
  return {[=, output = matOf(canvas(workload.canvas, depth)), map = layerToCanvas(workload)]() mutable {
            cv::setNumThreads(threads);
            cv::warpPerspective(layer, output, map, output.size(), Interpolation, cv::BORDER_CONSTANT);
          },
          {}};
}

Drawing prepareResize(const Workload& workload, host::Depth depth, int threads) {
  const cv::Mat layer = matOf(picture(workload.layer, depth));
  return {[=, output = matOf(canvas(workload.canvas, depth))]() mutable {
            cv::setNumThreads(threads);
            cv::resize(layer, output, output.size(), 0, 0, cv::INTER_AREA);
          },
          {}};
}

}  // namespace

std::vector<Peer> openCvPeers() {
  const std::vector<host::Depth> depths(std::begin(kDepths), std::end(kDepths));
  const std::vector<std::string> all{"a", "b", "c", "d", "e", "f", "g"};
  return {
      {"opencv-linear", all, {"a", "f", "g"}, depths, true, false, prepareWarp<cv::INTER_LINEAR>},
      {"opencv-area", {"c"}, {}, depths, false, false, prepareWarp<cv::INTER_AREA>},
      {"opencv-resize", {"c"}, {"c"}, depths, false, false, prepareResize},
  };
}

}  // namespace vantorel::bench
