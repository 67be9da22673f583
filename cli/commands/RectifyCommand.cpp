#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cli/base/CommandError.h"
#include "cli/base/Console.h"
#include "cli/base/StandardStreams.h"
#include "cli/commands/Commands.h"
#include "cli/corners/CornersTrack.h"
#include "cli/pictures/ImageReader.h"
#include "host/geometry/AspectEstimate.h"
#include "host/geometry/Homography.h"

namespace vantorel::cli {

namespace {

double length(const host::Point& a, const host::Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

struct PageSize {
  host::Size size;
  std::optional<host::AspectEstimate> estimate;  // if the proportions were not given
};

void tell(const host::AspectEstimate& estimate) {
  fmt::print(console(), "vantorel: assuming that the page is {:.4f} times as wide as high{}\n", estimate.aspect,
             estimate.is_reliable
                 ? ", if the photo is not cropped"
                 : ", from its edge lengths, since its corners do not determine it; give --aspect or --size");
}

// The requested size or, by default, that of the longest edges, so that no detail of the photo is lost.
PageSize pageSize(const RectifyOptions& options, const host::Corners& page, host::Size photo) {
  if (options.size) {
    return {*options.size, std::nullopt};
  }
  const auto estimate = options.aspect ? std::nullopt : std::optional(host::estimateAspect(page, photo));
  const double aspect = options.aspect ? *options.aspect : estimate->aspect;
  const double across = std::max(length(page.upper_left, page.upper_right), length(page.lower_left, page.lower_right));
  const double down = std::max(length(page.upper_left, page.lower_left), length(page.upper_right, page.lower_right));
  const double width = std::max(across, down * aspect);
  constexpr double kMostPixels = 32767.0;  // the range of 16.16 positions
  if (width > kMostPixels || width / aspect > kMostPixels) {
    throw badArgument("--aspect", fmt::format("{:g} makes a page of {:.0f}x{:.0f} pixels; give a --size", aspect, width,
                                              width / aspect));
  }
  const auto whole = [](double pixels) { return std::max(1, static_cast<int>(std::lround(pixels))); };
  return {{whole(width), whole(width / aspect)}, estimate};
}

// The part of the photo around the page, with a margin for interpolation. Pixels further away may be beyond the horizon
// of the page's plane, where no corner can be placed.
host::Rect surroundings(const host::Corners& page, host::Size photo) {
  constexpr double kMargin = 2.0;
  const auto [left, right] =
      std::minmax({page.upper_left.x, page.upper_right.x, page.lower_left.x, page.lower_right.x});
  const auto [top, bottom] =
      std::minmax({page.upper_left.y, page.upper_right.y, page.lower_left.y, page.lower_right.y});
  return {static_cast<int>(std::max(0.0, std::floor(left - kMargin))),
          static_cast<int>(std::max(0.0, std::floor(top - kMargin))),
          static_cast<int>(std::min<double>(photo.width, std::ceil(right + kMargin))),
          static_cast<int>(std::min<double>(photo.height, std::ceil(bottom + kMargin)))};
}

host::Corners cornersOf(const host::Rect& rect) {
  const auto [left, top, right, bottom] =
      std::array<double, 4>{double(rect.left), double(rect.top), double(rect.right), double(rect.bottom)};
  return {{left, top}, {right, top}, {left, bottom}, {right, bottom}};
}

// Where the corners of a part of the photo are drawn if the page's corners are drawn at those of a picture of that
// size.
std::array<std::optional<CornerPosition>, kCornerCount> placed(const host::Rect& part, const host::Corners& page,
                                                               host::Size size) {
  const auto map = host::Homography::ofQuadrilateral(page, cornersOf({0, 0, size.width, size.height}));
  if (!map) {
    throw badArgument("--ul",
                      "the corners do not form a convex quadrilateral; give those of the page, each in its place");
  }
  const host::Corners outline = cornersOf(part);
  std::array<std::optional<CornerPosition>, kCornerCount> corners;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    const host::Point image = (*map)(outline[c]);
    if (map->weight(outline[c]) <= 0.0 || !host::isCoordinate(image.x) || !host::isCoordinate(image.y)) {
      throw badArgument(fmt::format("--{}", kCornerNames[c]),
                        "the page is seen at too flat an angle; give corners closer to a rectangle, or a "
                        "smaller --size");
    }
    corners[c] = CornerPosition{{image.x, false}, {image.y, false}};
  }
  return corners;
}

Crop cropTo(const host::Rect& part, host::Size photo) {
  const auto pixels = [](int count) { return Coordinate{static_cast<double>(count), false}; };
  return {pixels(part.left), pixels(part.top), pixels(photo.width - part.right), pixels(photo.height - part.bottom)};
}

}  // namespace

ExitCode runRectify(const RectifyOptions& options, const std::stop_token& stop) {
  if (options.size && options.aspect) {
    throw badArgument("--aspect", "cannot be given together with --size; omit one of them");
  }
  if (isStandardStream(options.photo)) {
    readStandardInput("a photo", stop);
  }
  const host::Size photo = probePicture(options.photo).size;
  const host::Corners page = toPixels(options.corners, photo, "--");
  const host::Rect part = surroundings(page, photo);
  if (part.empty()) {
    throw badArgument("--ul", "the corners lie outside the photo; give those of the page in the photo");
  }
  RenderOptions render;
  render.layer = options.photo;
  render.output = options.output;
  render.format = options.format;
  render.overwrite = options.overwrite;
  render.linear = options.linear;
  render.colour = options.colour;
  render.module = options.module;
  render.settings = options.settings;
  render.enlarge = options.enlarge;
  const PageSize page_size = pageSize(options, page, photo);
  render.size = page_size.size;
  render.crop = cropTo(part, photo);
  render.corners = placed(part, page, page_size.size);
  if (page_size.estimate) {
    tell(*page_size.estimate);
  }
  return runRender(render, stop);
}

}  // namespace vantorel::cli
