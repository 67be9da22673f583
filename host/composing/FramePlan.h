// What a frame is to look like, and how many samples its parts need.
#pragma once

#include <optional>

#include "host/Frame.h"
#include "host/composing/TileTree.h"
#include "host/geometry/CoverageRegion.h"
#include "host/geometry/Homography.h"

namespace vantorel::host {

// Everything is in pixels of the frame's resolution, on the plane that the canvas is a part of.
struct FramePlan {
  Corners corners;  // where the outline of the layer goes
  RenderPath path = RenderPath::Perspective;
  Size layer;                     // pixels that there are, the last of each row and column whole
  std::optional<Homography> map;  // layer to canvas; on the perspective path only
  std::optional<Homography> inverse;
  ConvexPolygon outline;  // on the perspective path only
  CoverageRegion region;  // what the picture covers
  Edges edges = Edges::Crisp;
  int samples = 0;  // for every tile; 0: by rule

  // `layer_width` and `layer_height` are those of the layer's outline at the frame's resolution: whole numbers but when
  // it is reduced.
  FramePlan(const Corners& corners, double layer_width, double layer_height, Size layer, const FrameOptions& options);

  // Whether the picture is the layer moved by whole pixels: then the effect, counting from centres, gives it to the
  // bit.
  bool isWholeMove() const;

 private:
  void planPerspective(double layer_width, double layer_height);
};

// The edges that the options mean.
Edges edgesOf(const FrameOptions& options);

// Whether the options ask for more than the effect gives in one piece.
bool needsTiles(const FrameOptions& options, const FramePlan& plan);

// The samples of a plan's tiles.
class PlannedSamples final : public SampleRule {
 public:
  explicit PlannedSamples(const FramePlan& plan) : plan_(plan) {}
  int samplesFor(const Rect& part) const override;

 private:
  int neededIn(const ConvexPolygon& part) const;
  int neededByScan() const;

  const FramePlan& plan_;
};

}  // namespace vantorel::host
