// The scenes: a layer's size, the canvas, and the quadrilateral.
#pragma once

#include <string>
#include <vector>

#include "bench/quality/Mapping.h"
#include "host/Instance.h"

namespace vantorel::quality {

struct Scene {
  std::string name;
  host::Size layer;
  host::Size canvas;
  host::Corners corners;
  host::RenderPath path = host::RenderPath::Perspective;  // the renderer that draws the quadrilateral
};

// The mapping of the scene's path.
Mapping mappingOf(const Scene& scene);

// The corners of the layer's rectangle, enlarged by `scale`, turned clockwise by `degrees` about its middle, which is
// placed at `middle`.
host::Corners turned(host::Size layer, double scale, double degrees, host::Point middle);

// The quadrilaterals whose pictures are compared pixel by pixel.
std::vector<Scene> pictureScenes();

// An 8x8 layer enlarged.
struct EnlargedScene {
  Scene scene;
  int times;  // the largest side of a layer pixel, in canvas pixels
};

// Scenes for both paths.
std::vector<EnlargedScene> enlargedScenes();

// Outlines of a white square.
std::vector<Scene> squareScenes();

}  // namespace vantorel::quality
