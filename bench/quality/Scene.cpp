#include "bench/quality/Scene.h"

#include <cmath>
#include <numbers>

namespace vantorel::quality {

namespace {

using host::Corners;
using host::Point;
using host::RenderPath;
using host::Size;

constexpr Size kHd{1920, 1080};
constexpr Size kSmallLayer{400, 225};
constexpr Point kMiddle{960.3, 540.6};

// Nothing is placed on whole pixels, which would hide placement errors.
Corners upright(Size layer, double scale) {
  return turned(layer, scale, 0.0, kMiddle);
}

// A concave quadrilateral, its upper right corner pulled in, inside the box of the layer shrunk by `times`. Both chains
// of its edges run downwards.
Corners dented(Size layer, double times) {
  const double width = layer.width / times;
  const double height = layer.height / times;
  const double left = kMiddle.x - width / 2;
  const double top = kMiddle.y - height / 2;
  return {
      {left, top}, {left + 0.45 * width, top + 0.6 * height}, {left, top + 0.9 * height}, {left + width, top + height}};
}

// A square whose lower left corner is moved almost onto the diagonal, leaving a bend of a few degrees.
Corners nearlyStraight(double side, Point at) {
  return {at, {at.x + side, at.y}, {at.x + 0.48 * side, at.y + 0.5 * side}, {at.x + side, at.y + side}};
}

std::string timesText(int times) {
  return std::to_string(times) + " times";
}

}  // namespace

Mapping mappingOf(const Scene& scene) {
  if (scene.path == RenderPath::Perspective) {
    return ProjectiveMap(scene.layer, ringOf(scene.corners));
  }
  return ScanMap(scene.layer, ringOf(scene.corners));
}

Corners turned(Size layer, double scale, double degrees, Point middle) {
  const double angle = degrees * std::numbers::pi / 180;
  const double cosine = degrees == 0 ? 1.0 : std::cos(angle);
  const double sine = degrees == 0 ? 0.0 : std::sin(angle);
  const double half_width = layer.width * scale / 2;
  const double half_height = layer.height * scale / 2;
  const auto corner = [&](double x, double y) {
    return Point{middle.x + x * cosine - y * sine, middle.y + x * sine + y * cosine};
  };
  return {corner(-half_width, -half_height), corner(half_width, -half_height), corner(-half_width, half_height),
          corner(half_width, half_height)};
}

std::vector<Scene> pictureScenes() {
  return {
      {"enlarged 4 times", kSmallLayer, kHd, upright(kSmallLayer, 4)},
      {"mild perspective, three quarters of the canvas",
       kHd,
       kHd,
       {{150.3, 90.6}, {1780.7, 50.4}, {90.2, 1020.9}, {1840.4, 1000.3}}},
      {"shrunk 4 times, upright", kHd, kHd, upright(kHd, 1.0 / 4)},
      {"shrunk 8 times, upright", kHd, kHd, upright(kHd, 1.0 / 8)},
      {"turned by 30 degrees, shrunk 2 times", kHd, kHd, turned(kHd, 1.0 / 2, 30, kMiddle)},
      {"turned by 45 degrees, shrunk 3 times", kHd, kHd, turned(kHd, 1.0 / 3, 45, kMiddle)},
      {"turned by 30 degrees, shrunk 6 times", kHd, kHd, turned(kHd, 1.0 / 6, 30, kMiddle)},
      {"near horizon", kHd, kHd, {{760.3, 200.6}, {1160.7, 200.4}, {-200.2, 1060.3}, {2120.6, 1060.8}}},
      {"near horizon, most of it beyond the canvas",
       kHd,
       kHd,
       {{900.3, 300.6}, {1020.7, 300.4}, {-1500.2, 1080.3}, {3420.6, 1080.8}}},
      {"concave, shrunk 4 times", kHd, kHd, dented(kHd, 4), RenderPath::Bilinear},
      {"concave, shrunk 8 times", kHd, kHd, dented(kHd, 8), RenderPath::Bilinear},
  };
}

std::vector<EnlargedScene> enlargedScenes() {
  constexpr Size kLayer{8, 8};
  std::vector<EnlargedScene> scenes;
  for (const int times : {10, 40, 100}) {
    // A margin of a layer pixel on every side, for edges that fade out.
    const int side = kLayer.width * times;
    const int canvas_side = side + 2 * times + 10;
    const Size canvas{canvas_side, canvas_side};
    const Point at{times + 4.3, times + 5.6};
    scenes.push_back({{"enlarged " + timesText(times), kLayer, canvas,
                       turned(kLayer, times, 0, {at.x + side / 2.0, at.y + side / 2.0})},
                      times});
    scenes.push_back({{"enlarged " + timesText(times) + ", nearly straight corner", kLayer, canvas,
                       nearlyStraight(side, at), RenderPath::Bilinear},
                      times});
  }
  return scenes;
}

std::vector<Scene> squareScenes() {
  constexpr Size kLayer{64, 64};
  constexpr Size kCanvas{160, 160};
  constexpr Point kSquareMiddle{80.3, 79.6};
  return {
      {"square, upright", kLayer, kCanvas, turned(kLayer, 1.2, 0, kSquareMiddle)},
      {"square, turned by 20 degrees", kLayer, kCanvas, turned(kLayer, 1.2, 20, kSquareMiddle)},
      {"square, turned by 45 degrees, shrunk 2 times", kLayer, kCanvas, turned(kLayer, 0.5, 45, kSquareMiddle)},
      {"square, perspective", kLayer, kCanvas, {{20.3, 30.6}, {140.7, 15.2}, {35.4, 120.9}, {120.8, 145.3}}},
  };
}

}  // namespace vantorel::quality
