// Corners from options and from trackers' files, as the host's parameters.
#include "cli/corners/CornersTrack.h"

#include <gtest/gtest.h>

#include "tests/TestFolder.h"

namespace vantorel::cli {
namespace {

constexpr host::Size kFrame{1920, 1080};

TEST(CornersTrack, KeysAreHeldOutsideAndReachedExactly) {
  const TestFolder folder;
  const std::string path = folder / "track.csv";
  folder.write("track.csv", "10,0,0,9,0,0,9,9,9\n20,5,10,9,0,0,9,9,9\n");
  const FrameRate rate{24000, 1001};
  TrackOptions options;
  options.files = path;
  options.resolve.order = tracks::kAsWritten;
  const host::AnimatedPoint point = toAnimation(readCorners(options, rate), {100, 100}, kFrame, rate).upper_left;
  EXPECT_EQ(point.at(rate.seconds(1)), (host::Point{0.0, 0.0}));
  EXPECT_EQ(point.at(rate.seconds(20)), (host::Point{5.0, 10.0}));
  EXPECT_EQ(point.at(rate.seconds(99)), (host::Point{5.0, 10.0}));
  EXPECT_NEAR(point.at(rate.seconds(15)).y, 5.0, 1e-9);
}

}  // namespace
}  // namespace vantorel::cli
