// The example host draws what the embedded host draws, to the bit.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "tests/TestFolder.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

constexpr Size kSize{40, 24};

std::string ppmOf(const Image& image) {
  std::string text =
      "P6\n" + std::to_string(image.size().width) + ' ' + std::to_string(image.size().height) + "\n255\n";
  for (const auto [x, y] : pixelsOf(image.size().width, image.size().height)) {
    text.append(reinterpret_cast<const char*>(image.view().pixel(x, y)) + 1, 3);  // without alpha
  }
  return text;
}

// A program's run in a folder of its own.
struct ProgramRun {
  TestFolder folder;
  int code = 0;
  std::string log;

  ProgramRun(const std::string& module, const Image& layer, const Corners& corners) {
    folder.write("layer.ppm", ppmOf(layer));
    std::ostringstream command;
    command << VANTOREL_MINIMAL_HOST << ' ' << module << ' ' << (folder / "layer.ppm") << ' ' << (folder / "out.ppm");
    for (std::size_t i = 0; i < kCornerCount; ++i) {
      command << ' ' << corners[i].x << ' ' << corners[i].y;
    }
    command << " >" << (folder / "log") << " 2>&1";
    code = WEXITSTATUS(std::system(command.str().c_str()));
    log = contents(folder / "log");
  }
};

TEST(MinimalHost, DrawsWhatTheEmbeddedHostDraws) {
  Image layer = noise(kSize, Depth::Bits8);
  for (const auto [x, y] : pixelsOf(kSize.width, kSize.height)) {
    setChannel(layer.view(), x, y, 0, 1.0);
  }
  for (const Corners& quad :
       {rectangle(3, -5, 43, 19),  // moved by whole pixels
        Corners{{-3.5, 2.25}, {161, -7}, {4, 90}, {170.75, 63}}, Corners{{120, 3}, {6, 10}, {135, 70}, {0, 86}},
        Corners{{0, 0}, {19, 1}, {-1, 12}, {22, 13}}, Corners{{0, 0}, {60, 0}, {0, 40}, {20, 15}}}) {  // concave
    const ProgramRun run(kEffectPath, layer, quad);
    ASSERT_EQ(run.code, 0) << run.log;
    EXPECT_NE(run.log.find("parameter: Lower Right\n"), std::string::npos) << run.log;
    Rect canvas;
    int width = 0;
    int height = 0;
    const std::string line = run.log.substr(std::min(run.log.find("output: "), run.log.size()));
    ASSERT_EQ(std::sscanf(line.c_str(), "output: %dx%d from %d,%d", &width, &height, &canvas.left, &canvas.top), 4);
    canvas.right = canvas.left + width;
    canvas.bottom = canvas.top + height;
    EXPECT_EQ(canvas, instanceWith(quad).boundingBox(kSize, {}).value());
    const Frame expected = renderFrame(quad, layer, canvas, {.placement = Placement::Centres});
    EXPECT_EQ(contents(run.folder / "out.ppm"), ppmOf(expected.pixels)) << run.log;
  }
}

TEST(MinimalHost, ReportsAMissingModule) {
  const ProgramRun run("none.so", noise(kSize, Depth::Bits8), rectangle(0, 0, 40, 24));
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.log.find("none.so"), std::string::npos) << run.log;
}

}  // namespace
}  // namespace vantorel::host
