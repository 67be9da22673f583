// The example host's frames against positions that are computed here.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>

#include "host/geometry/Homography.h"
#include "tests/TestFolder.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

using Colour = std::array<int, 3>;

constexpr int kWidth = 40;
constexpr int kHeight = 24;

// The layer rises linearly, so that the mean of a box is the colour of its middle.
Colour layerColour(double x, double y) {
  return {static_cast<int>(std::lround(20 + 5 * x)), static_cast<int>(std::lround(10 + 9 * y)), 128};
}

class MinimalHost : public ::testing::Test {
 protected:
  MinimalHost() {
    std::string pixels;
    for (const auto [x, y] : pixelsOf(kWidth, kHeight)) {
      for (const int channel : layerColour(x, y)) {
        pixels.push_back(static_cast<char>(channel));
      }
    }
    folder_.write("layer.ppm", "P6\n" + std::to_string(kWidth) + ' ' + std::to_string(kHeight) + "\n255\n" + pixels);
  }

  // Runs the program and returns its exit code; after success the output is read.
  int run(const std::string& module, const Corners& corners) {
    std::ostringstream command;
    command << VANTOREL_MINIMAL_HOST << ' ' << module << ' ' << (folder_ / "layer.ppm") << ' ' << (folder_ / "out.ppm");
    for (std::size_t i = 0; i < kCornerCount; ++i) {
      command << ' ' << corners[i].x << ' ' << corners[i].y;
    }
    command << " >" << (folder_ / "log") << " 2>&1";
    const int code = WEXITSTATUS(std::system(command.str().c_str()));
    const std::string line = log().substr(std::min(log().find("output: "), log().size()));
    if (code == 0) {
      EXPECT_EQ(std::sscanf(line.c_str(), "output: %dx%d from %d,%d", &width_, &height_, &left_, &top_), 4) << log();
      output_ = contents(folder_ / "out.ppm");
      output_.erase(0, output_.size() - static_cast<std::size_t>(width_) * height_ * 3);
    }
    return code;
  }

  // The output's colour at a position of the layer's coordinates; nothing outside the output.
  std::optional<Colour> colourAt(int x, int y) const {
    if (x < left_ || x >= left_ + width_ || y < top_ || y >= top_ + height_) {
      return std::nullopt;
    }
    const auto* pixel = reinterpret_cast<const unsigned char*>(output_.data()) + 3 * ((y - top_) * width_ + x - left_);
    return Colour{pixel[0], pixel[1], pixel[2]};
  }

  std::string log() const { return contents(folder_ / "log"); }

  const TestFolder folder_;

 private:
  std::string output_;
  int width_ = 0;
  int height_ = 0;
  int left_ = 0;
  int top_ = 0;
};

TEST_F(MinimalHost, MovesALayerByWholePixelsUnchanged) {
  ASSERT_EQ(run(kEffectPath, {{3, -5}, {43, -5}, {3, 19}, {43, 19}}), 0) << log();
  for (const auto [x, y] : pixelsOf(kWidth, kHeight)) {
    ASSERT_EQ(colourAt(x + 3, y - 5), layerColour(x, y)) << x << ", " << y;
  }
  EXPECT_EQ(colourAt(2, -6), (Colour{0, 0, 0}));
  EXPECT_NE(log().find("parameter: Lower Right\n"), std::string::npos) << log();
}

TEST_F(MinimalHost, DrawsInPerspective) {
  const Corners quads[] = {{{-3.5, 2.25}, {161, -7}, {4, 90}, {170.75, 63}},
                           {{120, 3}, {6, 10}, {135, 70}, {0, 86}},
                           {{0, 0}, {19, 1}, {-1, 12}, {22, 13}}};
  const Corners layer = rectangle(0, 0, kWidth, kHeight);
  constexpr double kMargin = 3.0;  // layer pixels: boxes that reach over the layer's edge are darker
  for (const Corners& quad : quads) {
    ASSERT_EQ(run(kEffectPath, quad), 0) << log();
    const Homography back = Homography::ofQuadrilateral(quad, layer).value();
    int seen = 0;
    for (const auto [x, y] : pixelsOf(Rect{-10, -10, 180, 100})) {
      const Point at = back(Point{static_cast<double>(x), static_cast<double>(y)});
      if (at.x > kMargin && at.x < kWidth - kMargin && at.y > kMargin && at.y < kHeight - kMargin) {
        const std::optional<Colour> drawn = colourAt(x, y);
        ASSERT_TRUE(drawn) << x << ", " << y;
        const Colour expected = layerColour(at.x, at.y);
        EXPECT_NEAR((*drawn)[0], expected[0], 2) << x << ", " << y;
        EXPECT_NEAR((*drawn)[1], expected[1], 2) << x << ", " << y;
        ++seen;
      } else if (at.x < -kMargin || at.x > kWidth + kMargin || at.y < -kMargin || at.y > kHeight + kMargin) {
        EXPECT_EQ(colourAt(x, y).value_or(Colour{}), Colour{}) << x << ", " << y;
      }
    }
    EXPECT_GT(seen, 50);
  }
}

TEST_F(MinimalHost, DrawsAConcaveQuadrilateral) {
  ASSERT_EQ(run(kEffectPath, {{0, 0}, {60, 0}, {0, 40}, {20, 15}}), 0) << log();
  EXPECT_EQ(colourAt(10, 10).value_or(Colour{})[2], 128);
  EXPECT_EQ(colourAt(50, 30).value_or(Colour{}), Colour{});
}

TEST_F(MinimalHost, ReportsAMissingModule) {
  EXPECT_EQ(run((folder_ / "none.so"), {}), 1);
  EXPECT_NE(log().find("none.so"), std::string::npos) << log();
}

}  // namespace
}  // namespace vantorel::host
