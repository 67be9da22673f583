// The frames of the example host against those of the embedded host.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include "host/Instance.h"

namespace vantorel::host {

namespace {

constexpr Size kLayerSize{40, 24};
constexpr int kMissingModule = 1;

class MinimalHost : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  // Runs the program and returns its exit code.
  int run(const std::string& module, const Corners& corners) const {
    std::ostringstream command;
    command << VANTOREL_MINIMAL_HOST << ' ' << module << ' ' << path("layer.ppm") << ' ' << path("out.ppm");
    for (const Point& point : {corners.upper_left, corners.upper_right, corners.lower_left, corners.lower_right}) {
      command << ' ' << point.x << ' ' << point.y;
    }
    command << " >" << path("log") << " 2>&1";
    return WEXITSTATUS(std::system(command.str().c_str()));
  }

  std::string contents(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("minimal-host-" + std::to_string(::getpid()));
};

// The picture as a PPM: its colours without alpha, which comes first.
std::string ppmOf(const Image& image) {
  const ConstImageView view = image.view();
  std::string text = "P6\n" + std::to_string(view.size.width) + ' ' + std::to_string(view.size.height) + "\n255\n";
  for (int y = 0; y < view.size.height; ++y) {
    for (int x = 0; x < view.size.width; ++x) {
      text.append(reinterpret_cast<const char*>(view.pixel(x, y)) + 1, 3);
    }
  }
  return text;
}

Image opaqueNoise() {
  Image layer = *Image::create(kLayerSize, Depth::Bits8);
  std::uint32_t state = 1;
  for (int y = 0; y < kLayerSize.height; ++y) {
    for (int i = 0; i < 4 * kLayerSize.width; ++i) {
      state = state * 1664525U + 1013904223U;
      layer.view().row(y)[i] = i % 4 == 0 ? std::byte{255} : static_cast<std::byte>(state >> 24);
    }
  }
  return layer;
}

std::string embeddedFrame(const Image& layer, const Corners& corners) {
  Instance instance(*Module::load(VANTOREL_MODULE_PATH));
  EXPECT_TRUE(instance.setCorners(corners));
  const Rect canvas = *instance.boundingBox(layer.size(), {});
  Image output = *Image::create({canvas.width(), canvas.height()}, Depth::Bits8);
  EXPECT_TRUE(instance.render(layer.view(), canvas, output.view(), {}));
  return ppmOf(output);
}

TEST_F(MinimalHost, DrawsWhatTheEmbeddedHostDraws) {
  const Image layer = opaqueNoise();
  std::ofstream(path("layer.ppm"), std::ios::binary) << ppmOf(layer);
  const std::pair<const char*, Corners> quads[] = {
      {"mild perspective", {{-3.5, 2.25}, {61, -7}, {4, 40}, {70.75, 33}}},
      {"reduction", {{0, 0}, {8, 0.5}, {-0.5, 4}, {9, 5}}},
      {"mirrored", {{50, 3}, {6, 0}, {55, 30}, {0, 36}}},
      {"concave", {{0, 0}, {60, 0}, {0, 40}, {20, 15}}},
  };
  for (const auto& [name, corners] : quads) {
    ASSERT_EQ(run(VANTOREL_MODULE_PATH, corners), 0) << name << ": " << contents("log");
    EXPECT_TRUE(contents("out.ppm") == embeddedFrame(layer, corners)) << name;
  }
  EXPECT_NE(contents("log").find("parameter: Lower Right\n"), std::string::npos) << contents("log");
}

TEST_F(MinimalHost, ReportsAMissingModule) {
  std::ofstream(path("layer.ppm"), std::ios::binary) << ppmOf(opaqueNoise());
  EXPECT_EQ(run(path("none.so"), {}), kMissingModule);
  EXPECT_NE(contents("log").find("none.so"), std::string::npos) << contents("log");
}

}  // namespace

}  // namespace vantorel::host
