// Corners that stand in any order are put where they belong.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tracks/CornerNames.h"
#include "tracks/CornerOrder.h"
#include "tracks/Quadrilaterals.h"

namespace vantorel::tracks {
namespace {

// A convex quadrilateral that drifts and turns by less than 40 degrees from upright on each of a few frames.
class RandomTracks {
 public:
  std::vector<CornerKey> next() {
    std::vector<CornerKey> keys;
    const double turn_start = between(-0.6, 0.6);
    const double turn_end = between(-0.6, 0.6);
    const Quadrilateral shape = convex();
    const Point drift{between(-50, 50), between(-50, 50)};
    constexpr int kFrames = 6;
    for (int f = 0; f < kFrames; ++f) {
      const double share = f / (kFrames - 1.0);
      const double angle = turn_start + (turn_end - turn_start) * share;
      CornerKey key{static_cast<double>(f), {}, kAllCorners, 0, 0};
      for (std::size_t c = 0; c < kCornerCount; ++c) {
        key.points[c] = {shape[c].x * std::cos(angle) - shape[c].y * std::sin(angle) + drift.x * share,
                         shape[c].x * std::sin(angle) + shape[c].y * std::cos(angle) + drift.y * share};
      }
      keys.push_back(key);
    }
    return keys;
  }

 private:
  double between(double least, double most) { return std::uniform_real_distribution<double>(least, most)(random_); }

  Quadrilateral convex() {
    while (true) {
      const Quadrilateral q{{{-100 + between(-30, 30), -100 + between(-30, 30)},
                             {100 + between(-30, 30), -100 + between(-30, 30)},
                             {-100 + between(-30, 30), 100 + between(-30, 30)},
                             {100 + between(-30, 30), 100 + between(-30, 30)}}};
      if (isConvexClockwise(q)) {
        return q;
      }
    }
  }

  std::mt19937 random_{15};
};

TEST(CornerOrder, All24OrdersOfAThousandTracksAreRepaired) {
  RandomTracks tracks;
  for (int t = 0; t < 1000; ++t) {
    const std::vector<CornerKey> right = tracks.next();
    CornerOrder shuffle = kAsWritten;
    do {
      std::vector<CornerKey> keys = right;
      for (CornerKey& key : keys) {
        for (std::size_t c = 0; c < kCornerCount; ++c) {
          key.points[shuffle[c]] = right[&key - keys.data()].points[c];
        }
      }
      const CornerOrder found = bestOrder(keys);
      ASSERT_EQ(found, shuffle) << "track " << t;
      reorder(keys, found);
      ASSERT_TRUE(keys[0].points == right[0].points && keys[5].points == right[5].points);
    } while (std::next_permutation(shuffle.begin(), shuffle.end()));
  }
}

TEST(CornerOrder, ATrackThatTurnsOverKeepsItsCorners) {
  std::vector<CornerKey> keys;
  for (int f = 0; f <= 180; ++f) {
    const double angle = f * 0.0174532925;
    CornerKey key{static_cast<double>(f), {}, kAllCorners, 0, 0};
    const Quadrilateral square{{{-10, -10}, {10, -10}, {-10, 10}, {10, 10}}};
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      key.points[c] = {square[c].x * std::cos(angle) - square[c].y * std::sin(angle),
                       square[c].x * std::sin(angle) + square[c].y * std::cos(angle)};
    }
    keys.push_back(key);
  }
  EXPECT_EQ(bestOrder(keys), kAsWritten);
}

TEST(CornerOrder, IsReadAndPrinted) {
  const auto order = parseCornerOrder("ll,lr,UR,ul");
  ASSERT_TRUE(order);
  EXPECT_EQ(orderText(*order), "ll,lr,ur,ul");
  std::vector<CornerKey> keys{{1.0, {{{0, 9}, {9, 9}, {9, 0}, {0, 0}}}, 0b0111, 0, 0}};
  reorder(keys, *order);
  EXPECT_EQ(keys[0].points, (Quadrilateral{{{0, 0}, {9, 0}, {0, 9}, {9, 9}}}));
  EXPECT_FALSE(keys[0].has(kUpperLeft));
  EXPECT_TRUE(keys[0].has(kUpperRight) && keys[0].has(kLowerLeft) && keys[0].has(kLowerRight));
  EXPECT_EQ(parseCornerOrder("as-written"), kAsWritten);
  for (const char* wrong : {"", "ul,ur,ll", "ul,ul,ll,lr", "ul,ur,ll,lr,ul", "up,ur,ll,lr"}) {
    EXPECT_FALSE(parseCornerOrder(wrong)) << wrong;
  }
}

TEST(CornerNames, AreTwoWordsOrTheirFirstLettersInEitherOrder) {
  for (const std::string height : {"upper", "top", "lower", "bottom"}) {
    for (const std::string side : {"left", "right"}) {
      const bool is_upper = height == "upper" || height == "top";
      const Corner corner =
          is_upper ? (side == "left" ? kUpperLeft : kUpperRight) : (side == "left" ? kLowerLeft : kLowerRight);
      const std::string letters{height[0], side[0]};
      for (const std::string& name : {height + side, side + height, height + "_" + side, "Plate " + side + "-" + height,
                                      letters, std::string{side[0], height[0]}, "track." + letters + ".2"}) {
        EXPECT_EQ(corner, cornerOfName(name)) << name;
      }
    }
  }
  for (const char* name : {"", "left", "plate", "upper left lower right", "ul ur"}) {
    EXPECT_EQ(std::nullopt, cornerOfName(name)) << name;
  }
}

TEST(Quadrilaterals, AreToldConvexCrossingFlatAndBilinear) {
  const Quadrilateral square{{{0, 0}, {100, 0}, {0, 100}, {100, 100}}};
  EXPECT_TRUE(isConvexClockwise(square) && !isCrossing(square) && !isDegenerate(square) && !isDrawnBilinearly(square));
  const Quadrilateral mirrored{{{100, 0}, {0, 0}, {100, 100}, {0, 100}}};
  EXPECT_TRUE(isConvex(mirrored) && !isConvexClockwise(mirrored) && !isDrawnBilinearly(mirrored));
  const Quadrilateral bow_tie{{{0, 0}, {100, 0}, {100, 100}, {0, 100}}};
  EXPECT_TRUE(isCrossing(bow_tie) && isDrawnBilinearly(bow_tie) && !isDegenerate(bow_tie));
  const Quadrilateral dart{{{0, 0}, {100, 0}, {0, 100}, {30, 30}}};
  EXPECT_TRUE(!isConvex(dart) && !isCrossing(dart) && isDrawnBilinearly(dart));
  EXPECT_TRUE(isDegenerate({{{0, 0}, {10, 10}, {20, 20}, {5, 5}}}));
  // A corner that turns by 7 degrees is nearly straight, one that turns by 9 degrees is not.
  const auto bent = [](double degrees) {
    const double half = degrees / 2.0 * 0.017453292519943295;
    return Quadrilateral{{{-100, 100 * std::tan(half)}, {0, 0}, {0, 200}, {100, 100 * std::tan(half)}}};
  };
  EXPECT_TRUE(isDrawnBilinearly(bent(7.0)));
  EXPECT_FALSE(isDrawnBilinearly(bent(9.0)));
}

}  // namespace
}  // namespace vantorel::tracks
