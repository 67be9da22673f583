#include "bench/quality/Measurements.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "bench/quality/FrameTime.h"

namespace vantorel::quality {

namespace {

// The scene in which the slow peers are measured too.
constexpr const char* kSlowPeersScene = "turned by 30 degrees, shrunk 6 times";

host::Image transparent(host::Size size, host::Depth depth) {
  host::Result<host::Image> image = host::Image::create(size, depth);
  if (!image) {
    throw std::runtime_error(image.error().message);
  }
  image->clear();
  return std::move(*image);
}

bool isJudged(const Renderer& renderer, const Scene& scene) {
  if (scene.path == host::RenderPath::Bilinear) {
    return renderer.own;
  }
  return renderer.judged_everywhere || scene.name == kSlowPeersScene;
}

// Also prints selected scenes, since some take minutes.
bool isSelected(const Scene& scene, const Selection& selection) {
  const bool selected = scene.name.find(selection.row) != std::string::npos;
  if (selected) {
    std::fprintf(stderr, "measuring: %s\n", scene.name.c_str());
  }
  return selected;
}

// A frame, and the picture that it draws.
class Drawing {
 public:
  Drawing(const Renderer& renderer, const Scene& scene, const Layer& layer, host::Depth depth)
      : layer_(imageOf(layer, depth)),
        output_(transparent(scene.canvas, depth)),
        frame_(renderer.prepare(scene, std::as_const(layer_).view(), output_.view())) {}

  void draw() const { frame_.draw(); }
  // Draws the frame and returns the processor seconds.
  double time() const { return drawingSeconds(frame_); }
  // What was drawn last.
  host::ConstImageView picture() const {
    if (frame_.deliver) {
      frame_.deliver();
    }
    return output_.view();
  }

 private:
  host::Image layer_;
  host::Image output_;
  Frame frame_;
};

PictureFigure pictureFigure(const Renderer& renderer, const Scene& scene, const std::vector<Layer>& layers,
                            const Truth& truth, bool timed) {
  PictureFigure figure;
  for (std::size_t i = 0; i < layers.size(); ++i) {
    const Drawing drawing(renderer, scene, layers[i], host::Depth::Bits8);
    if (timed && i == 0) {
      figure.seconds = drawing.time();
    } else {
      drawing.draw();
    }
    figure.error.add(compare(drawing.picture(), truth, i));
  }
  return figure;
}

Row<PictureFigure> pictureRow(const std::vector<Renderer>& renderers, const TruthCache& truths, const Scene& scene,
                              bool timed) {
  const std::vector<Layer> layers = {zonePlate(scene.layer), barsAndChecks(scene.layer)};
  const Truth truth = truths.truth(scene, layers);
  Row<PictureFigure> row{scene.name, {}};
  for (const Renderer& renderer : renderers) {
    if (isJudged(renderer, scene)) {
      row.figures[renderer.name] = pictureFigure(renderer, scene, layers, truth, timed);
    }
  }
  return row;
}

Row<PlacementFigure> placementRow(const std::vector<Renderer>& renderers, const TruthCache& truths,
                                  const EnlargedScene& enlarged) {
  const Scene& scene = enlarged.scene;
  const std::vector<Layer> layers = {white(scene.layer), checks(scene.layer, 2)};
  const Truth truth = truths.truth(scene, layers);
  Row<PlacementFigure> row{scene.name, {}};
  for (const Renderer& renderer : renderers) {
    if (!isJudged(renderer, scene)) {
      continue;
    }
    const auto placement = [&](std::size_t layer) {
      const Drawing drawing(renderer, scene, layers[layer], host::Depth::Bits8);
      drawing.draw();
      return edgePlacement(drawing.picture(), truth, layer, enlarged.times);
    };
    row.figures[renderer.name] = {placement(0), placement(1)};
  }
  return row;
}

double largestCoverageError(const host::ConstImageView& picture, const Ring& ring) {
  double largest = 0;
  for (int y = 0; y < picture.size.height; ++y) {
    const auto* row = reinterpret_cast<const float*>(picture.row(y));
    for (int x = 0; x < picture.size.width; ++x) {
      largest = std::max(largest, std::abs(static_cast<double>(row[4 * x]) - coverage(ring, x, y)));
    }
  }
  return largest * 255;
}

// In float, where values are linear light.
Row<double> coverageRow(const std::vector<Renderer>& renderers, const Scene& scene) {
  Row<double> row{scene.name, {}};
  for (const Renderer& renderer : renderers) {
    if (renderer.own) {
      const Drawing drawing(renderer, scene, white(scene.layer), host::Depth::Float);
      drawing.draw();
      row.figures[renderer.name] = largestCoverageError(drawing.picture(), ringOf(scene.corners));
    }
  }
  return row;
}

}  // namespace

Measurements measure(const std::vector<Renderer>& renderers, const TruthCache& truths, const Selection& selection) {
  Measurements measurements;
  for (const Renderer& renderer : renderers) {
    measurements.columns.push_back(renderer.name);
  }
  for (const Scene& scene : pictureScenes()) {
    if (isSelected(scene, selection)) {
      measurements.pictures.push_back(pictureRow(renderers, truths, scene, selection.times));
    }
  }
  for (const EnlargedScene& enlarged : enlargedScenes()) {
    if (isSelected(enlarged.scene, selection)) {
      measurements.placements.push_back(placementRow(renderers, truths, enlarged));
    }
  }
  for (const Scene& scene : squareScenes()) {
    if (isSelected(scene, selection)) {
      measurements.coverage.push_back(coverageRow(renderers, scene));
    }
  }
  return measurements;
}

}  // namespace vantorel::quality
