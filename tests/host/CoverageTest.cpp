// Exact coverage against counting points.
#include <cmath>
#include <random>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr int kGrid = 24;
constexpr int kPoints = 128;  // per axis of a pixel, for those on a border
constexpr double kTolerance = 2.0 / kPoints;

bool isInside(const ConvexPolygon& polygon, double x, double y) {
  int left = 0;
  int right = 0;
  const auto points = polygon.points();
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& a = points[i];
    const Point& b = points[(i + 1) % points.size()];
    const double side = (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
    left += side < 0;
    right += side > 0;
  }
  return left == 0 || right == 0;
}

// The share of a pixel's points for which a predicate holds.
template <typename Predicate>
double countedShare(int x, int y, Predicate holds) {
  int count = 0;
  for (int i = 0; i < kPoints * kPoints; ++i) {
    const int row = i / kPoints;
    count += holds(x + (i % kPoints + 0.5) / kPoints, y + (row + 0.5) / kPoints);
  }
  return static_cast<double>(count) / (kPoints * kPoints);
}

template <typename Predicate>
void expectCounted(const CoverageRegion& region, Predicate holds) {
  for (const auto [x, y] : pixelsOf(Rect{-4, -1, kGrid, kGrid})) {
    ASSERT_NEAR(countedShare(x, y, holds), coverageOf(region, x, y), kTolerance) << "pixel " << x << ", " << y;
  }
  for (int y = -1; y < kGrid; ++y) {
    const RowCoverage row = region.row(y);
    ASSERT_TRUE(row.begin == row.end || (row.at(row.begin) > 0.0 && row.at(row.end - 1) > 0.0)) << "row " << y;
  }
}

TEST(CoverageTest, OfConvexPolygonsEqualsCountedPoints) {
  const Corners quads[] = {{{2.3, 1.6}, {20.1, 4.4}, {5.5, 21.2}, {17.9, 16.3}},  // any
                           {{-3.5, 1.6}, {20.1, 4.4}, {-1.2, 21.2}, {7, 16.3}},   // partly left of the first pixel
                           {{3, 4}, {11, 4}, {3, 9}, {11, 9}},                    // on pixel borders
                           {{3.25, 4.5}, {11.75, 4.5}, {3.25, 9.125}, {11.75, 9.125}},
                           {{12, 1}, {22, 11}, {2, 11}, {12, 21}},      // on a corner
                           {{2, 8.2}, {21, 8.6}, {2, 8.3}, {21, 8.9}},  // thinner than a row
                           {{20, 2}, {3, 3}, {18, 20}, {2, 17}}};       // mirrored
  for (const Corners& quad : quads) {
    const ConvexPolygon polygon(quad);
    expectCounted(CoverageRegion(polygon), [&](double x, double y) { return isInside(polygon, x, y); });
  }
  const ConvexPolygon cut = ConvexPolygon(quads[0]).cut({6.4, 3.3, 15.7, 18.8});
  EXPECT_EQ(6U, cut.points().size());
  expectCounted(CoverageRegion(cut), [&](double x, double y) {
    return isInside(ConvexPolygon(quads[0]), x, y) && x >= 6.4 && x < 15.7 && y >= 3.3 && y < 18.8;
  });
}

TEST(CoverageTest, ItsSumIsTheAreaAndOneInsideWhateverThePolygon) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> place(0.0, kGrid);
  for (int i = 0; i < 300; ++i) {
    ConvexPolygon polygon(Box{0, 0, kGrid, kGrid});
    for (int cuts = 0; cuts < 6; ++cuts) {
      const double angle = place(random);
      const Point p{8 + place(random) / 3, 8 + place(random) / 3};
      polygon = polygon.cut(std::cos(angle), std::sin(angle), 4.0 - std::cos(angle) * p.x - std::sin(angle) * p.y);
    }
    const CoverageRegion region(polygon);
    double sum = 0.0;
    for (int y = 0; y < kGrid; ++y) {
      const RowCoverage row = region.row(y);
      for (int x = row.begin; x < row.end; ++x) {
        sum += coverageOf(region, x, y);
        EXPECT_TRUE(x < row.solid_begin || x >= row.solid_end || row.at(x) > 1.0 - 1e-9);
      }
    }
    EXPECT_NEAR(polygon.area(), sum, 1e-9);
  }
}

TEST(CoverageTest, BetweenChainsFillsNotchAndCrossingRowByRow) {
  // A crossing: the span narrows to nothing and widens again.
  const CoverageRegion crossed = CoverageRegion::betweenChains({{4, 2}, {20, 2}, {20, 18}, {4, 18}});
  expectCounted(crossed, [](double x, double y) { return y >= 2 && y < 18 && std::abs(x - 12) <= std::abs(y - 10); });
  // An arrow that points up, its lower right corner drawn up to the middle: the span reaches from leg to leg, across
  // the notch, until the shorter leg ends.
  const CoverageRegion notched = CoverageRegion::betweenChains({{12, 2}, {22, 16}, {4, 20}, {12, 10}});
  expectCounted(notched, [](double x, double y) {
    const double left = 12 - (y - 2) * 8 / 18;
    const double right = y < 16 ? 12 + (y - 2) * 10 / 14 : 12 - (y - 10) * 8 / 10;
    return y >= 2 && y < 20 && (x - left) * (x - right) <= 0;
  });
  const Corners convex{{2.3, 1.6}, {20.1, 4.4}, {5.5, 21.2}, {17.9, 16.3}};
  const ConvexPolygon polygon(convex);
  expectCounted(CoverageRegion::betweenChains(convex), [&](double x, double y) { return isInside(polygon, x, y); });
  EXPECT_TRUE(CoverageRegion::betweenChains({{1, 3}, {5, 3}, {2, 3}, {9, 3}}).empty());
}

TEST(CoverageTest, CoversAPartIfEveryPixelIsSolid) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(0.0, kGrid);
  const auto point = [&] {
    return Point{std::round(4.0 * place(random)) / 4.0, std::round(2.0 * place(random)) / 2.0};
  };
  int covered = 0;
  for (int i = 0; i < 400; ++i) {
    const CoverageRegion region = CoverageRegion::betweenChains({point(), point(), point(), point()});
    for (const auto [x, y] : pixelsOf(Rect{0, 0, kGrid - 4, kGrid - 4})) {
      const Rect part{x, y, x + 1 + i % 3, y + 1 + i % 4};
      bool is_solid = true;
      for (int row = part.top; row < part.bottom; ++row) {
        is_solid &= region.row(row).solid_begin <= part.left && region.row(row).solid_end >= part.right;
      }
      ASSERT_EQ(is_solid, region.covers(part)) << "quadrilateral " << i << ", " << x << ", " << y;
      covered += is_solid;
    }
  }
  EXPECT_GT(covered, 1000);
}

TEST(CoverageTest, OnAFinerGridEveryPixelIsTheMeanOfItsParts) {
  const CoverageRegion region{ConvexPolygon(Corners{{2.3, 1.6}, {20.1, 4.4}, {5.5, 21.2}, {17.9, 16.3}})};
  const CoverageRegion fine = region.onGrid({3, 2}, 4);
  for (const auto [x, y] : pixelsOf(Rect{3, 2, kGrid, kGrid})) {
    double sum = 0.0;
    for (int i = 0; i < 16; ++i) {
      sum += coverageOf(fine, (x - 3) * 4 + i % 4, (y - 2) * 4 + i / 4);
    }
    EXPECT_NEAR(coverageOf(region, x, y), sum / 16, 1e-9);
  }
}

}  // namespace
}  // namespace vantorel::host
