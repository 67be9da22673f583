// Divides a supersampled frame into tiles.
#pragma once

#include <vector>

#include "host/Image.h"
#include "host/geometry/ConvexPolygon.h"

namespace vantorel::host {

// A square part of the output that is drawn on a canvas of its own, with `samples` samples per pixel and axis.
struct Tile {
  Rect area;        // in output pixels
  int samples = 1;  // 0: nothing to draw
  bool operator==(const Tile&) const = default;
};

// The most samples that a tile has along each side, however many a pixel has. This limits the memory.
constexpr int kTileSide = 256;

// Decides how many samples a part of the output needs.
class SampleRule {
 public:
  // The samples per axis for the pixels of a part: one of kSampleCounts, or 0 if there is nothing to draw.
  virtual int samplesFor(const Rect& part) const = 0;

 protected:
  ~SampleRule() = default;
};

// Replaces `tiles` by those that overlap the canvas. They are squares of a fixed quadtree with the origin (0, 0), so
// that a pixel is in the same tile on every canvas: 256 pixels a side for one sample per pixel, half of that for two, a
// quarter for three and four, and so on. Quarters of a divided square that need fewer samples become larger tiles of
// their own.
void collectTiles(const Rect& canvas, const SampleRule& rule, std::vector<Tile>* tiles);

}  // namespace vantorel::host
