#include "host/geometry/AspectEstimate.h"

#include <cmath>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr Size kPicture{4000, 3000};

// The picture of a rectangle of the given proportions, turned about all three axes, with a pinhole camera.
Corners photograph(double aspect, double focal_length, double pitch, double yaw, double roll) {
  const auto project = [&](double x, double y) {
    const double x1 = x * std::cos(roll) - y * std::sin(roll);
    const double y1 = x * std::sin(roll) + y * std::cos(roll);
    const double y2 = y1 * std::cos(pitch);
    const double z2 = y1 * std::sin(pitch);
    const double x3 = x1 * std::cos(yaw) + z2 * std::sin(yaw);
    const double z3 = -x1 * std::sin(yaw) + z2 * std::cos(yaw) + 4.0;
    return Point{kPicture.width / 2.0 + focal_length * (x3 + 0.2) / z3,
                 kPicture.height / 2.0 + focal_length * (y2 - 0.1) / z3};
  };
  return {project(-aspect / 2, -0.5), project(aspect / 2, -0.5), project(-aspect / 2, 0.5), project(aspect / 2, 0.5)};
}

TEST(AspectEstimateTest, FindsTheProportionsOfARectangleSeenAskew) {
  for (const double aspect : {0.5, 0.7071, 1.0, 1.7778, 3.0}) {
    for (const double focal_length : {2500.0, 5000.0}) {
      const AspectEstimate found = estimateAspect(photograph(aspect, focal_length, 0.6, -0.5, 0.1), kPicture);
      EXPECT_TRUE(found.is_reliable);
      EXPECT_NEAR(aspect, found.aspect, 1e-9 * aspect);
      EXPECT_NEAR(focal_length, found.focal_length, 1e-6 * focal_length);
    }
  }
}

TEST(AspectEstimateTest, SaysWhereThePictureDoesNotDetermineIt) {
  const AspectEstimate straight = estimateAspect({{100, 100}, {1300, 100}, {100, 700}, {1300, 700}}, kPicture);
  EXPECT_TRUE(straight.is_reliable);
  EXPECT_DOUBLE_EQ(2.0, straight.aspect);
  // Tilted about a horizontal axis alone, so that its upper and lower sides stay parallel.
  EXPECT_FALSE(estimateAspect(photograph(1.5, 3000, 0.7, 0.0, 0.0), kPicture).is_reliable);
  // A slanted parallelogram is no rectangle seen through any lens.
  EXPECT_FALSE(estimateAspect({{100, 100}, {1300, 400}, {400, 700}, {1600, 1000}}, kPicture).is_reliable);
  const AspectEstimate nothing = estimateAspect({{5, 5}, {5, 5}, {5, 5}, {5, 5}}, kPicture);
  EXPECT_FALSE(nothing.is_reliable);
  EXPECT_EQ(1.0, nothing.aspect);
}

}  // namespace
}  // namespace vantorel::host
