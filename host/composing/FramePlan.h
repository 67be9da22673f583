// The geometry of a frame, and how many samples its parts need.
#pragma once

#include <optional>
#include <span>

#include "host/Frame.h"
#include "host/composing/TileTree.h"
#include "host/geometry/CoverageRegion.h"
#include "host/geometry/Homography.h"

namespace vantorel::host {

// All coordinates are in pixels of the frame's resolution, in the plane that contains the canvas.
struct FramePlan {
  Corners corners;  // where the layer's outline, or the source, is drawn
  RenderPath path = RenderPath::Perspective;
  Size layer;                     // in whole pixels, including a partial last row and column
  std::optional<Homography> map;  // layer to canvas; on the perspective path only
  std::optional<Homography> inverse;
  ConvexPolygon outline;  // on the perspective path only
  CoverageRegion region;  // the area that the picture covers
  Edges edges = Edges::Crisp;
  bool has_source = false;
  // Whether the picture is the layer moved by whole pixels: the effect then reproduces it to the bit with positions
  // measured from pixel centres.
  bool is_whole_move = false;
  int samples = 0;  // for every tile; 0: automatic

  std::optional<Corners> whole;  // where the whole layer's outline is drawn; empty if the horizon crosses it

  // `layer_width` and `layer_height` are the size of the layer's outline at the frame's resolution, which can be
  // fractional if the layer is reduced. `source` is the quadrilateral of the layer that is drawn onto the corners, in
  // pixels of that resolution; empty for the layer's outline.
  FramePlan(const Corners& corners, const std::optional<Corners>& source, double layer_width, double layer_height,
            Size layer, const FrameOptions& options);

  // False if there is a source but no map from it onto the corners, because one of the two is not strictly convex.
  bool hasMap() const { return !has_source || inverse.has_value(); }

 private:
  void planPerspective(const Box& layer_outline, const std::optional<Corners>& source);
};

// The edges that the options result in.
Edges edgesOf(const FrameOptions& options);

// Whether the frame has to be drawn in tiles, because the effect cannot draw it as requested in one piece.
bool needsTiles(const FrameOptions& options, const FramePlan& plan);

// How many samples per axis the pixels of a part of the plane need; 0 if nothing is drawn there.
int samplesFor(const FramePlan& plan, const Rect& part);

// Whether so many samples per axis, in a part of the plane, all take the effect's smallest box, so that standard
// quality does for high.
bool isStandardEnough(const FramePlan& plan, const Rect& part, int samples);

// The most samples, per axis, that the pixels of any part need, for a plan on the bilinear path.
int mostSamplesOfScan(const FramePlan& plan);

// The samples of a frame's tiles: the most that any of its moments needs.
class PlannedSamples final : public SampleRule {
 public:
  explicit PlannedSamples(std::span<const FramePlan> moments) : moments_(moments) {}
  int samplesFor(const Rect& part) const override;

 private:
  std::span<const FramePlan> moments_;
};

}  // namespace vantorel::host
