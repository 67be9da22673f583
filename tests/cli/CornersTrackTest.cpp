// Corners from options and from trackers' files, as the host's parameters.
#include "cli/corners/CornersTrack.h"

#include <gtest/gtest.h>

#include "TestFolder.h"
#include "cli/base/CommandError.h"

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

TEST(CornersTrack, FaultsAreFileFailures) {
  const TestFolder folder;
  const auto faultOf = [&](const std::string& files) -> std::string {
    TrackOptions options;
    options.files = files;
    try {
      resolveCorners(readCorners(options, {}), {100, 100}, kFrame);
    } catch (const CommandError& error) {
      EXPECT_EQ(error.code(), ExitCode::FileFailed) << error.text();
      return error.text();
    }
    return "no fault";
  };
  const std::string path = folder / "a,b.csv";  // a comma of the name's own
  folder.write("a,b.csv", "1,10000%,0,9,0,0,9,9,9\n");
  EXPECT_EQ(faultOf(path), "no fault");
  folder.write("a,b.csv", "1,100000%,0,9,0,0,9,9,9\n");
  EXPECT_NE(faultOf(path).find("a,b.csv: line 1: frame 1: "), std::string::npos) << faultOf(path);
  EXPECT_NE(faultOf(folder / "none.csv").find("does not exist"), std::string::npos);
  EXPECT_NE(faultOf(folder.path()).find("a folder"), std::string::npos);
}

}  // namespace
}  // namespace vantorel::cli
