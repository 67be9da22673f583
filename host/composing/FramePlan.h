// What a frame is to look like, and how many samples its parts need.
#pragma once

#include <optional>
#include <span>

#include "host/Frame.h"
#include "host/composing/TileTree.h"
#include "host/geometry/CoverageRegion.h"
#include "host/geometry/Homography.h"

namespace vantorel::host {

// Everything is in pixels of the frame's resolution, on the plane that the canvas is a part of.
struct FramePlan {
  Corners corners;  // where the layer's outline goes, or the source
  RenderPath path = RenderPath::Perspective;
  Size layer;                     // pixels that there are, the last of each row and column whole
  std::optional<Homography> map;  // layer to canvas; on the perspective path only
  std::optional<Homography> inverse;
  ConvexPolygon outline;  // on the perspective path only
  CoverageRegion region;  // what the picture covers
  Edges edges = Edges::Crisp;
  bool has_source = false;
  // Whether the picture is the layer moved by whole pixels: then the effect, counting from centres, gives it to the
  // bit.
  bool is_whole_move = false;
  int samples = 0;  // for every tile; 0: by rule

  std::optional<Corners> whole;  // where the outline of the whole layer goes; none where the horizon runs through it

  // `layer_width` and `layer_height` are those of the layer's outline at the frame's resolution: whole numbers but when
  // it is reduced. `source` is the quadrilateral in the layer that goes onto the corners, in pixels of that resolution;
  // none for the layer's outline.
  FramePlan(const Corners& corners, const std::optional<Corners>& source, double layer_width, double layer_height,
            Size layer, const FrameOptions& options);

  // False when there is a source and no map from it onto the corners, since one of both is not strictly convex.
  bool hasMap() const { return !has_source || inverse.has_value(); }

 private:
  void planPerspective(const Box& layer_outline, const std::optional<Corners>& source);
};

// The edges that the options mean.
Edges edgesOf(const FrameOptions& options);

// Whether the options ask for more than the effect gives in one piece.
bool needsTiles(const FrameOptions& options, const FramePlan& plan);

// How many samples, per axis, the pixels of a part of the plane need; 0 where the plan draws nothing.
int samplesFor(const FramePlan& plan, const Rect& part);

// Whether so many samples per axis, in a part of the plane, all take the effect's smallest box, so that standard
// quality does for high.
bool isStandardEnough(const FramePlan& plan, const Rect& part, int samples);

// The most samples, per axis, that the pixels of any part need, for a plan on the bilinear path.
int mostSamplesOfScan(const FramePlan& plan);

// The samples of a frame's tiles: as many as the moment needs that needs most.
class PlannedSamples final : public SampleRule {
 public:
  explicit PlannedSamples(std::span<const FramePlan> moments) : moments_(moments) {}
  int samplesFor(const Rect& part) const override;

 private:
  std::span<const FramePlan> moments_;
};

}  // namespace vantorel::host
