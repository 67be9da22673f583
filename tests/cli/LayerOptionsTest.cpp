// What an artist asks of the layer and of how it joins the plate, as pixels of written files.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <string>

#include "CommandRunner.h"
#include "PixelFile.h"

namespace vantorel::cli {
namespace {

TEST(LayerOptions, ACroppedLayerIsThePartThatIsLeft) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.png --size 200x150");
  runWell(folder, "render card.png -o part.png --crop 20,10%,40,15");
  const PixelFile card = PixelFile::read(folder / "card.png");
  const PixelFile part = PixelFile::read(folder / "part.png");
  ASSERT_EQ(part.size(), (host::Size{140, 120}));
  for (int y = 0; y < 120; ++y) {
    for (int x = 0; x < 140; ++x) {
      ASSERT_EQ(part.at(x, y), card.at(x + 20, y + 15)) << x << ", " << y;
    }
  }
  // The part that is cut off shows nowhere, whatever the mapping.
  const std::string corners = " --ul 10,5 --ur 120,20 --ll 0,110 --lr 135,100 --size 150x120";
  runWell(folder, "render card.png -o cropped.png --crop 20,10%,40,15" + corners);
  runWell(folder, "render part.png -o same.png" + corners);
  EXPECT_EQ(difference(folder / "cropped.png", folder / "same.png"), 0.0);
}

TEST(LayerOptions, AlphaIsReadAsAskedFor) {
  const TestFolder folder;
  PixelFile::filled({4, 4}, {200, 100, 40, 128}).write(folder / "soft.png");
  const auto rendered = [&](const std::string& options) {
    runWell(folder, "render soft.png -o out.exr --depth float " + options);
    return PixelFile::read(folder / "out.exr").at(1, 1);
  };
  const double alpha = 128 / 255.0;
  expectNear(rendered(""), {200 / 255.0 * alpha, 100 / 255.0 * alpha, 40 / 255.0 * alpha, alpha}, 1e-3);
  expectNear(rendered("--alpha straight"), rendered(""), 0.0);
  expectNear(rendered("--alpha premultiplied"), {200 / 255.0, 100 / 255.0, 40 / 255.0, alpha}, 1e-3);
  expectNear(rendered("--alpha ignore"), {200 / 255.0, 100 / 255.0, 40 / 255.0, 1.0}, 1e-3);
  // OpenEXR states premultiplied colours.
  runWell(folder, "render soft.png -o soft.exr --depth float");
  runWell(folder, "render soft.exr -o twice.exr --alpha straight");
  expectNear(PixelFile::read(folder / "twice.exr").at(1, 1),
             {200 / 255.0 * alpha * alpha, 100 / 255.0 * alpha * alpha, 40 / 255.0 * alpha * alpha, alpha}, 1e-3);
}

TEST(LayerOptions, OpacityMixesLayerAndPlate) {
  const TestFolder folder;
  PixelFile::filled({8, 8}, {255, 0, 100, 255}).write(folder / "layer.png");
  PixelFile::filled({8, 8}, {0, 255, 200}).write(folder / "plate.png");
  for (const std::string depth : {"8", "16", "float"}) {
    for (const std::string opacity : {"0.25", "25%"}) {
      runWell(folder, "render layer.png --over plate.png -o mix.tif --opacity " + opacity + " --depth " + depth);
      expectNear(PixelFile::read(folder / "mix.tif").at(3, 3), {0.25, 0.75, (25 + 150) / 255.0}, 1.5 / 255);
    }
  }
  // Alone, a faint layer keeps its colours to the last of 8 bits.
  runWell(folder, "render layer.png -o faint.png --opacity 2%");
  EXPECT_EQ(PixelFile::read(folder / "faint.png").at(3, 3)[2], PixelFile::read(folder / "layer.png").at(3, 3)[2]);
  runWell(folder, "render layer.png -o none.png --opacity 0");
  expectNear(PixelFile::read(folder / "none.png").at(3, 3), {0, 0, 0, 0}, 0.0);
}

TEST(LayerOptions, AMatteHidesTheLayerWhereItIsWhite) {
  const TestFolder folder;
  PixelFile::filled({8, 8}, {255, 0, 0, 255}).write(folder / "layer.png");
  PixelFile::filled({8, 8}, {0, 0, 255}).write(folder / "plate.png");
  for (const bool by_alpha : {false, true}) {
    PixelFile matte = by_alpha ? PixelFile::filled({8, 8}, {0, 0, 0, 0}) : PixelFile::filled({8, 8}, {0});
    matte.set(2, 5, by_alpha ? std::vector<int>{10, 20, 30, 255} : std::vector<int>{255});
    matte.set(3, 5, by_alpha ? std::vector<int>{10, 20, 30, 51} : std::vector<int>{51});
    matte.write(folder / "matte.7.png");
    runWell(folder, "render layer.png --over plate.png --matte matte.#.png -o out.#.png --frames 7-7");
    const PixelFile over = PixelFile::read(folder / "out.7.png");
    expectNear(over.at(2, 5), {0, 0, 1}, 0.0);
    expectNear(over.at(3, 5), {0.8, 0, 0.2}, 1e-6);
    expectNear(over.at(4, 5), {1, 0, 0}, 0.0);
    runWell(folder, "render layer.png --matte matte.7.png -o alone.png");
    EXPECT_EQ(PixelFile::read(folder / "alone.png").at(2, 5)[3], 0.0);
    expectNear(PixelFile::read(folder / "alone.png").at(3, 5), {1, 0, 0, 0.8}, 1e-6);
    // A proxy reduces the matte with the plate: one white pixel and one of a fifth in four.
    runWell(folder, "render layer.png --over plate.png --matte matte.7.png -o half.png --downsample 2");
    expectNear(PixelFile::read(folder / "half.png").at(1, 2), {0.7, 0, 0.3}, 1.5 / 255);
  }
}

TEST(LayerOptions, AChangedMatteMakesAFrameOld) {
  const TestFolder folder;
  PixelFile::filled({8, 8}, {255, 0, 0, 255}).write(folder / "layer.png");
  PixelFile::filled({8, 8}, {0}).write(folder / "matte.png");
  const std::string shot = "render layer.png --matte matte.png -o out.#.png --frames 1-1";
  runWell(folder, shot);
  EXPECT_EQ(run(folder, shot + " --resume --json").out, "");
  const auto later = std::filesystem::last_write_time(folder / "out.1.png") + std::chrono::seconds(1);
  std::filesystem::last_write_time(folder / "matte.png", later);
  EXPECT_EQ(run(folder, shot + " --resume --json").lines().size(), 1u);
}

}  // namespace
}  // namespace vantorel::cli
