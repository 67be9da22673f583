#include "host/composing/TileTree.h"

#include <algorithm>
#include <map>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

// More samples the nearer a part is to the origin; nothing to draw far to the left.
class NearOrigin final : public SampleRule {
 public:
  int samplesFor(const Rect& part) const override {
    if (part.right <= -600) {
      return 0;
    }
    const int x = std::clamp(0, part.left, part.right - 1);
    const int y = std::clamp(0, part.top, part.bottom - 1);
    const int distance = std::max(std::abs(x), std::abs(y));
    return distance < 10 ? 8 : distance < 60 ? 4 : distance < 200 ? 2 : 1;
  }
};

TEST(TileTreeTest, CoversTheCanvasOnceWithSquaresThatHaveRoomForTheirSamples) {
  const Rect canvas{-900, -300, 500, 777};
  const NearOrigin rule;
  std::vector<Tile> tiles;
  collectTiles(canvas, rule, &tiles);
  std::map<std::pair<int, int>, int> times;
  for (const Tile& tile : tiles) {
    EXPECT_EQ(tile.area.width(), tile.area.height());
    EXPECT_LE(tile.area.width() * tile.samples, kTileSide);
    EXPECT_EQ(0, tile.area.left % tile.area.width());
    EXPECT_EQ(0, tile.area.top % tile.area.height());
    EXPECT_EQ(rule.samplesFor(tile.area), tile.samples);
    for (int y = tile.area.top; y < tile.area.bottom; y += 8) {
      for (int x = tile.area.left; x < tile.area.right; x += 8) {
        ++times[{x, y}];
      }
    }
  }
  for (int y = -296; y < 777; y += 8) {
    for (int x = -896; x < 500; x += 8) {
      ASSERT_EQ(1, (times[{x, y}])) << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace vantorel::host
