// The example host's frames against positions that are computed here.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace {

struct Point {
  double x;
  double y;
};
using Quad = std::array<Point, 4>;  // upper left, upper right, lower left, lower right
using Colour = std::array<int, 3>;

constexpr int kWidth = 40;
constexpr int kHeight = 24;

// The layer rises linearly, so that the mean of a box is the colour of its middle.
Colour layerColour(double x, double y) {
  return {static_cast<int>(std::lround(20 + 5 * x)), static_cast<int>(std::lround(10 + 9 * y)), 128};
}

// The position in the layer that a projective map of the layer onto the quadrilateral takes to `target`.
Point mapBack(const Quad& quad, Point target) {
  const auto& [ul, ur, ll, lr] = quad;
  const Point sum{ul.x - ur.x + lr.x - ll.x, ul.y - ur.y + lr.y - ll.y};
  const Point d1{ur.x - lr.x, ur.y - lr.y};
  const Point d2{ll.x - lr.x, ll.y - lr.y};
  const double g = (sum.x * d2.y - d2.x * sum.y) / (d1.x * d2.y - d1.y * d2.x);
  const double h = (d1.x * sum.y - d1.y * sum.x) / (d1.x * d2.y - d1.y * d2.x);
  // target = (column_u * u + column_v * v + ul) / (g * u + h * v + 1), solved for u and v.
  const Point along_u{ur.x - ul.x + g * (ur.x - target.x), ur.y - ul.y + g * (ur.y - target.y)};
  const Point along_v{ll.x - ul.x + h * (ll.x - target.x), ll.y - ul.y + h * (ll.y - target.y)};
  const Point offset{target.x - ul.x, target.y - ul.y};
  const double determinant = along_u.x * along_v.y - along_u.y * along_v.x;
  return {kWidth * (offset.x * along_v.y - offset.y * along_v.x) / determinant,
          kHeight * (along_u.x * offset.y - along_u.y * offset.x) / determinant};
}

class MinimalHost : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder_);
    std::ofstream file(path("layer.ppm"), std::ios::binary);
    file << "P6\n" << kWidth << ' ' << kHeight << "\n255\n";
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        for (const int channel : layerColour(x, y)) {
          file.put(static_cast<char>(channel));
        }
      }
    }
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  // Runs the program and returns its exit code; after success the output is read.
  int run(const std::string& module, const Quad& quad) {
    std::ostringstream command;
    command << VANTOREL_MINIMAL_HOST << ' ' << module << ' ' << path("layer.ppm") << ' ' << path("out.ppm");
    for (const Point& corner : quad) {
      command << ' ' << corner.x << ' ' << corner.y;
    }
    command << " >" << path("log") << " 2>&1";
    const int code = WEXITSTATUS(std::system(command.str().c_str()));
    const std::string line = log().substr(std::min(log().find("output: "), log().size()));
    if (code == 0) {
      EXPECT_EQ(std::sscanf(line.c_str(), "output: %dx%d from %d,%d", &width_, &height_, &left_, &top_), 4) << log();
      output_ = contents("out.ppm");
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

  std::string log() const { return contents("log"); }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

 private:
  std::string contents(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("minimal-host-" + std::to_string(::getpid()));
  std::string output_;
  int width_ = 0;
  int height_ = 0;
  int left_ = 0;
  int top_ = 0;
};

TEST_F(MinimalHost, MovesALayerByWholePixelsUnchanged) {
  ASSERT_EQ(run(VANTOREL_MODULE_PATH, {{{3, -5}, {43, -5}, {3, 19}, {43, 19}}}), 0) << log();
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      ASSERT_EQ(colourAt(x + 3, y - 5), layerColour(x, y)) << x << ", " << y;
    }
  }
  EXPECT_EQ(colourAt(2, -6), (Colour{0, 0, 0}));
  EXPECT_NE(log().find("parameter: Lower Right\n"), std::string::npos) << log();
}

TEST_F(MinimalHost, DrawsInPerspective) {
  const Quad quads[] = {{{{-3.5, 2.25}, {161, -7}, {4, 90}, {170.75, 63}}},
                        {{{120, 3}, {6, 10}, {135, 70}, {0, 86}}},
                        {{{0, 0}, {19, 1}, {-1, 12}, {22, 13}}}};
  constexpr double kMargin = 3.0;  // layer pixels: boxes that reach over the layer's edge are darker
  for (const Quad& quad : quads) {
    ASSERT_EQ(run(VANTOREL_MODULE_PATH, quad), 0) << log();
    int seen = 0;
    for (int y = -10; y < 100; ++y) {
      for (int x = -10; x < 180; ++x) {
        const Point at = mapBack(quad, {static_cast<double>(x), static_cast<double>(y)});
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
    }
    EXPECT_GT(seen, 50);
  }
}

TEST_F(MinimalHost, DrawsAConcaveQuadrilateral) {
  ASSERT_EQ(run(VANTOREL_MODULE_PATH, {{{0, 0}, {60, 0}, {0, 40}, {20, 15}}}), 0) << log();
  EXPECT_EQ(colourAt(10, 10).value_or(Colour{})[2], 128);
  EXPECT_EQ(colourAt(50, 30).value_or(Colour{}), Colour{});
}

TEST_F(MinimalHost, ReportsAMissingModule) {
  EXPECT_EQ(run(path("none.so"), {}), 1);
  EXPECT_NE(log().find("none.so"), std::string::npos) << log();
}

}  // namespace
