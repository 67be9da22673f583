#include "host/composing/TileTree.h"

#include <algorithm>

namespace vantorel::host {

namespace {

bool meets(const Rect& a, const Rect& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

int floorToTile(int value) {
  return value & ~(kTileSide - 1);
}

// Adds the tiles of a square that is small enough for `fitting` samples per pixel.
void addTiles(const Rect& square, int fitting, const Rect& canvas, const SampleRule& rule, std::vector<Tile>* tiles) {
  if (!meets(square, canvas)) {
    return;
  }
  const int needed = rule.samplesFor(square);
  if (needed <= fitting) {
    tiles->push_back({square, needed});
    return;
  }
  const int half = square.width() / 2;
  for (const int top : {square.top, square.top + half}) {
    for (const int left : {square.left, square.left + half}) {
      addTiles({left, top, left + half, top + half}, 2 * fitting, canvas, rule, tiles);
    }
  }
}

}  // namespace

void collectTiles(const Rect& canvas, const SampleRule& rule, std::vector<Tile>* tiles) {
  tiles->clear();
  for (int top = floorToTile(canvas.top); top < canvas.bottom; top += kTileSide) {
    for (int left = floorToTile(canvas.left); left < canvas.right; left += kTileSide) {
      addTiles({left, top, left + kTileSide, top + kTileSide}, 1, canvas, rule, tiles);
    }
  }
}

}  // namespace vantorel::host
