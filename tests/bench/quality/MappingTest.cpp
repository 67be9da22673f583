#include "bench/quality/Mapping.h"

#include <gtest/gtest.h>

namespace vantorel::quality {
namespace {

constexpr host::Size kLayer{40, 20};
constexpr Ring kTrapezoid = {{{30, 10}, {50, 10}, {80, 70}, {0, 70}}};

void expectAt(const host::Point& position, double x, double y) {
  EXPECT_NEAR(position.x, x, 1e-9);
  EXPECT_NEAR(position.y, y, 1e-9);
}

TEST(ProjectiveMap, TakesCornersToCornersAndTheDiagonalsCrossingToTheMiddle) {
  const ProjectiveMap map(kLayer, kTrapezoid);
  const Ring layer = ringOf(kLayer);
  for (std::size_t i = 0; i < 4; ++i) {
    expectAt(map.row(kTrapezoid[i].y).position(kTrapezoid[i].x), layer[i].x, layer[i].y);
  }
  // The diagonals of a trapezoid with sides 20 and 80 cross at a fifth of its height.
  expectAt(map.row(22).position(40), 20, 10);
}

TEST(ProjectiveMap, CoversWhatLiesBetweenTheSidesInEitherWinding) {
  Ring mirrored = kTrapezoid;
  std::swap(mirrored[0], mirrored[1]);
  std::swap(mirrored[2], mirrored[3]);
  for (const Ring& ring : {kTrapezoid, mirrored}) {
    const ProjectiveMap map(kLayer, ring);
    EXPECT_TRUE(map.row(40).covers(15.1));
    EXPECT_FALSE(map.row(40).covers(14.9));
    EXPECT_FALSE(map.row(9.9).covers(40));
    // The sides meet 20 above the top side: beyond lies the horizon's other side.
    EXPECT_FALSE(map.row(-40).covers(40));
  }
}

TEST(ScanMap, IsAffineOnAParallelogram) {
  const ScanMap map(kLayer, {{{10, 5}, {90, 15}, {80, 55}, {0, 45}}});
  for (const auto& [u, v] : {std::pair{0.25, 0.5}, std::pair{0.9, 0.125}}) {
    expectAt(map.row(5 + 10 * u + 40 * v).position(10 + 80 * u - 10 * v), kLayer.width * u, kLayer.height * v);
  }
}

TEST(ScanMap, RunsAlongBothChainsOfAConcaveQuadrilateral) {
  const ScanMap map(kLayer, {{{0, 0}, {20, 60}, {100, 100}, {0, 80}}});
  const ScanRow row = map.row(30);  // half way down the upper right edge, three eighths down the left one
  EXPECT_DOUBLE_EQ(row.left, 0);
  EXPECT_DOUBLE_EQ(row.right, 10);
  expectAt(row.position(0), 0, 20 * 0.375);
  expectAt(row.position(10), 20, 0);
  expectAt(row.position(5), 10, 20 * 0.1875);
  for (const double outside : {-0.1, 100.1}) {
    EXPECT_FALSE(map.row(outside).covers(0));
  }
}

TEST(ScanMap, RefusesChainsThatRunUpwards) {
  EXPECT_THROW(ScanMap(kLayer, {{{0, 0}, {50, 60}, {100, 10}, {50, 100}}}), std::invalid_argument);
}

}  // namespace
}  // namespace vantorel::quality
