// The tiles that a supersampled frame is drawn in.
#pragma once

#include <vector>

#include "host/Image.h"
#include "host/geometry/ConvexPolygon.h"

namespace vantorel::host {

// A square part of the output that is drawn as a canvas of its own, with so many samples a pixel and axis.
struct Tile {
  Rect area;        // in output pixels
  int samples = 1;  // 0: nothing to draw
  bool operator==(const Tile&) const = default;
};

// A tile has at most so many samples a side, however many a pixel has: that bounds the memory.
constexpr int kTileSide = 256;

// What decides about the samples of a part of the output.
class SampleRule {
 public:
  // How many samples, per axis, the pixels of a part need: one of kSampleCounts; 0 where there is nothing to draw.
  virtual int samplesFor(const Rect& part) const = 0;

 protected:
  ~SampleRule() = default;
};

// Replaces `tiles` by those that meet the canvas. They are squares of a fixed quadtree with
// the origin (0, 0), so that a pixel lies in the same tile whatever the canvas: 256 pixels a side for one sample a
// pixel, half of that for two, a quarter for three and four, and so on; a part of a square that needs fewer samples
// than the square is cut off as a tile of its own.
void collectTiles(const Rect& canvas, const SampleRule& rule, std::vector<Tile>* tiles);

}  // namespace vantorel::host
