#include "tracks/SourcePoints.h"

#include <fmt/format.h>

#include <cmath>

#include "host/geometry/Homography.h"
#include "tracks/Text.h"

namespace vantorel::tracks {

namespace {

Quadrilateral cornersOf(Size layer) {
  const double width = layer.width;
  const double height = layer.height;
  return {{{0.0, 0.0}, {width, 0.0}, {0.0, height}, {width, height}}};
}

Quadrilateral pixelsOf(const SourceCorners& corners, Size layer, bool upwards) {
  Quadrilateral points;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    const auto& [x, y] = corners[c];
    points[c] = {x.is_share ? x.value * layer.width : x.value, y.is_share ? y.value * layer.height : y.value};
    points[c].y = upwards ? layer.height - points[c].y : points[c].y;
  }
  return points;
}

host::Corners asCorners(const Quadrilateral& q) {
  return {q[kUpperLeft], q[kUpperRight], q[kLowerLeft], q[kLowerRight]};
}

// Empty if the point is on or beyond the horizon.
std::optional<Point> imageOf(const host::Homography& map, const Point& point) {
  const Point image = map(point);
  if (!(map.weight(point) > 0.0) || !std::isfinite(image.x) || !std::isfinite(image.y)) {
    return std::nullopt;
  }
  return image;
}

void moveKey(CornerKey& key, const CornerTrack& track, const Quadrilateral& source, Size layer) {
  const host::Corners points = asCorners(key.points);
  const auto map = track.inverted ? host::Homography::ofQuadrilateral(points, asCorners(source))
                                  : host::Homography::ofQuadrilateral(asCorners(source), points);
  if (!map) {
    fail(track.source, key.line, fmt::format("frame {}", printed(key.frame, 3)),
         "does not form a convex quadrilateral, so the layer's own corners are unknown; correct its points");
  }
  const Quadrilateral corners = cornersOf(layer);
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    const auto image = imageOf(*map, corners[c]);
    if (!image) {
      fail(track.source, key.line, fmt::format("frame {}: {}", printed(key.frame, 3), kCornerNames[c]),
           "is beyond the horizon of the source corners' map; choose source corners nearer to the layer's own");
    }
    key.points[c] = *image;
  }
}

}  // namespace

bool isWholeLayer(const SourceCorners& corners) {
  const auto is_at = [&](std::size_t corner, double x, double y) {
    const auto matches = [](const SourceCoordinate& c, double share) {
      return share == 0.0 ? c.value == 0.0 : c.is_share && c.value == 1.0;
    };
    return matches(corners[corner][0], x) && matches(corners[corner][1], y);
  };
  return is_at(kUpperLeft, 0, 1) && is_at(kUpperRight, 1, 1) && is_at(kLowerLeft, 0, 0) && is_at(kLowerRight, 1, 0);
}

void applySourceCorners(CornerTrack& track, Size layer) {
  if (!track.from) {
    return;
  }
  const bool upwards = track.conventions.origin == Origin::LowerLeft;
  if (!isWholeLayer(*track.from) || track.inverted) {
    if (layer.width <= 0 || layer.height <= 0) {
      fail(track.source, 0, "from1", "needs the layer's size, as the points are not the layer's own corners; give it");
    }
    const Quadrilateral source = pixelsOf(*track.from, layer, upwards);
    if (track.inverted || source != cornersOf(layer)) {
      for (CornerKey& key : track.keys) {
        moveKey(key, track, source, layer);
      }
    }
  }
  track.from.reset();
  track.inverted = false;
}

}  // namespace vantorel::tracks
