#include "tracks/Plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "tracks/Quadrilaterals.h"
#include "tracks/Text.h"
#include "tracks/WholeFrames.h"

namespace vantorel::tracks {

namespace {

constexpr std::size_t kMaxPoints = 2000;
constexpr double kMaxDrawnFrames = 1e6;  // longer tracks are drawn with straight lines between keys
constexpr double kWidth = 960.0;
constexpr double kPathHeight = 540.0;
constexpr double kSpeedHeight = 200.0;
constexpr double kMargin = 40.0;
constexpr std::array<const char*, kCornerCount> kColours{"#d62728", "#1f77b4", "#2ca02c", "#9467bd"};

// A rectangle, in the data's or the drawing's coordinates.
struct Box {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;

  void include(const Point& point) {
    left = std::min(left, point.x);
    top = std::min(top, point.y);
    right = std::max(right, point.x);
    bottom = std::max(bottom, point.y);
  }
};

// Maps the data's centre to the drawing's centre, with the same scale for x and y.
class Projection {
 public:
  Projection(const Box& data, const Box& drawing)
      : data_{(data.left + data.right) / 2.0, (data.top + data.bottom) / 2.0},
        drawing_{(drawing.left + drawing.right) / 2.0, (drawing.top + drawing.bottom) / 2.0},
        scale_(std::min((drawing.right - drawing.left) / std::max(1.0, data.right - data.left),
                        (drawing.bottom - drawing.top) / std::max(1.0, data.bottom - data.top))) {}

  Point operator()(const Point& point) const {
    return {drawing_.x + (point.x - data_.x) * scale_, drawing_.y + (point.y - data_.y) * scale_};
  }

 private:
  Point data_;
  Point drawing_;
  double scale_;
};

void addPoint(std::string& svg, const Point& point) {
  svg += ' ' + printed(point.x, 2) + ',' + printed(point.y, 2);
}

std::size_t strideOf(const CornerTrack& track) {
  return (track.keys.size() + kMaxPoints - 1) / kMaxPoints;
}

void addOutline(std::string& svg, const Projection& projection, const Quadrilateral& q, const char* style) {
  svg += "<polygon points=\"";
  for (const Corner corner : kAround) {
    addPoint(svg, projection(q[corner]));
  }
  fmt::format_to(std::back_inserter(svg), "\" fill=\"none\" {}/>\n", style);
}

void addPaths(std::string& svg, const CornerTrack& track, Size frame) {
  const double width = frame.width;
  const double height = frame.height;
  const Point& start = track.keys.front().points[0];
  Box data{start.x, start.y, start.x, start.y};
  for (const CornerKey& key : track.keys) {
    std::for_each(key.points.begin(), key.points.end(), [&](const Point& point) { data.include(point); });
  }
  if (width > 0.0 && height > 0.0) {
    data.include({0.0, 0.0});
    data.include({width, height});
  }
  const Projection projection(data, {kMargin, kMargin, kWidth - kMargin, kPathHeight - kMargin});
  if (width > 0.0 && height > 0.0) {
    addOutline(svg, projection, {{{0.0, 0.0}, {width, 0.0}, {0.0, height}, {width, height}}}, "stroke=\"#999\"");
  }
  addOutline(svg, projection, track.keys.front().points, "stroke=\"#333\"");
  addOutline(svg, projection, track.keys.back().points, "stroke=\"#333\" stroke-dasharray=\"4 3\"");
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    svg += "<polyline points=\"";
    for (std::size_t k = 0; k < track.keys.size(); k += strideOf(track)) {
      addPoint(svg, projection(track.keys[k].points[c]));
    }
    addPoint(svg, projection(track.keys.back().points[c]));
    const Point label = projection(track.keys.front().points[c]);
    fmt::format_to(
        std::back_inserter(svg),
        "\" fill=\"none\" stroke=\"{}\" stroke-width=\"1.5\"/>\n<text x=\"{}\" y=\"{}\" fill=\"{}\">{}</text>\n",
        kColours[c], printed(label.x + 4.0, 2), printed(label.y - 4.0, 2), kColours[c], kCornerNames[c]);
  }
}

// The largest speed at which the corner reaches the keys [first, end), in pixels a frame.
double fastest(const CornerTrack& track, std::size_t corner, std::size_t first, std::size_t end) {
  double most = 0.0;
  for (std::size_t k = std::max<std::size_t>(first, 1); k < end; ++k) {
    const CornerKey& before = track.keys[k - 1];
    const CornerKey& after = track.keys[k];
    most = std::max(most, distance(before.points[corner], after.points[corner]) / (after.frame - before.frame));
  }
  return most;
}

void addSpeeds(std::string& svg, const CornerTrack& track) {
  const std::size_t stride = strideOf(track);
  const double first = track.keys.front().frame;
  const double frames = std::max(1e-9, track.keys.back().frame - first);
  double most = 0.0;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    most = std::max(most, fastest(track, c, 1, track.keys.size()));
  }
  const double base = kPathHeight + kSpeedHeight - kMargin;
  const double scale = (kSpeedHeight - 2.0 * kMargin) / std::max(1e-9, most);
  fmt::format_to(std::back_inserter(svg),
                 "<path d=\"M{0} {1}V{2}H{3}\" fill=\"none\" stroke=\"#999\"/>\n"
                 "<text x=\"{0}\" y=\"{4}\">up to {5} pixels a frame</text>\n"
                 "<text x=\"{0}\" y=\"{6}\">frame {7}</text>\n"
                 "<text x=\"{3}\" y=\"{6}\" text-anchor=\"end\">frame {8}</text>\n",
                 kMargin, kPathHeight + kMargin, base, kWidth - kMargin, kPathHeight + kMargin - 6.0, printed(most, 2),
                 base + 16.0, printed(first, 3), printed(track.keys.back().frame, 3));
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    svg += "<polyline points=\"";
    for (std::size_t k = 1; k < track.keys.size(); k += stride) {
      const double speed = fastest(track, c, k, std::min(k + stride, track.keys.size()));
      addPoint(svg,
               {kMargin + (track.keys[k].frame - first) / frames * (kWidth - 2.0 * kMargin), base - speed * scale});
    }
    fmt::format_to(std::back_inserter(svg), "\" fill=\"none\" stroke=\"{}\"/>\n", kColours[c]);
  }
}

}  // namespace

std::string plotSvg(const CornerTrack& track, Size frame) {
  std::string svg = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" "
      "font-family=\"sans-serif\" font-size=\"12\">\n<rect width=\"{0}\" height=\"{1}\" fill=\"white\"/>\n",
      kWidth, kPathHeight + kSpeedHeight);
  const bool is_straight = track.interpolation == host::Interpolation::Linear ||
                           track.keys.back().frame - track.keys.front().frame > kMaxDrawnFrames;
  const CornerTrack drawn = is_straight ? track : withWholeFrames(track);
  addPaths(svg, drawn, frame);
  addSpeeds(svg, drawn);
  return svg + "</svg>\n";
}

}  // namespace vantorel::tracks
