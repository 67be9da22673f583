// What an artist asks of the layer and of how it joins the plate, as pixels of written files.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>

#include "CommandRunner.h"
#include "PixelFile.h"

namespace vantorel::cli {
namespace {

// What the command draws with these arguments after `render`, as floats.
PixelFile rendered(const TestFolder& folder, const std::string& arguments) {
  runWell(folder, "render " + arguments + " -o out.exr --depth float --overwrite");
  return PixelFile::read(folder / "out.exr");
}

TEST(LayerOptions, ACroppedLayerIsThePartThatIsLeft) {
  const FolderWithCard folder("200x150");
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
  const auto expect_pixel = [&](const std::string& arguments, double colour_factor, double alpha) {
    expectNear(rendered(folder, arguments).at(1, 1),
               {200 / 255.0 * colour_factor, 100 / 255.0 * colour_factor, 40 / 255.0 * colour_factor, alpha}, 1e-3);
  };
  const std::string layer = "soft.png --colorspace-layer linear ";
  const double alpha = 128 / 255.0;
  expect_pixel(layer, alpha, alpha);
  expect_pixel(layer + "--alpha straight", alpha, alpha);
  expect_pixel(layer + "--alpha premultiplied", 1.0, alpha);
  expect_pixel(layer + "--alpha ignore", 1.0, 1.0);
  // OpenEXR states premultiplied colours.
  runWell(folder, "render soft.png -o soft.exr --depth float --colorspace-layer linear");
  expect_pixel("soft.exr --alpha straight", alpha * alpha, alpha);
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

// The layer's alpha summed over a row, and where it lies on the average.
struct Spread {
  double sum = 0.0;
  double centre = 0.0;
};

Spread alphaSpread(const PixelFile& picture, int row) {
  Spread spread;
  for (int x = 0; x < picture.size().width; ++x) {
    spread.sum += picture.at(x, row)[3];
    spread.centre += picture.at(x, row)[3] * (x + 0.5);
  }
  spread.centre /= spread.sum;
  return spread;
}

TEST(LayerOptions, FeatheredEdgesFadeByTheirDistance) {
  const TestFolder folder;
  PixelFile::filled({40, 30}, {255, 128, 0, 255}).write(folder / "layer.png");
  const PixelFile out = rendered(folder, "layer.png --feather 8 --colorspace-layer linear");
  for (int x = 0; x < 20; ++x) {
    const double t = std::min(1.0, (x + 0.5) / 8);
    const double alpha = t * t * (3 - 2 * t);
    expectNear(out.at(x, 15), {alpha, alpha * 128 / 255, 0, alpha}, 1e-3);
    expectNear(out.at(39 - x, 15), out.at(x, 15), 1e-6);
  }
  EXPECT_NEAR(out.at(10, 29)[3], out.at(0, 10)[3], 1e-6);
  // A proxy fades over as much of the picture.
  const PixelFile half = rendered(folder, "layer.png --feather 8 --downsample 2");
  EXPECT_NEAR(half.at(1, 7)[3], 3 * 0.375 * 0.375 - 2 * 0.375 * 0.375 * 0.375, 1e-3);
}

TEST(LayerOptions, AnEnlargedLayerIsSmootherAndStaysInItsPlace) {
  const TestFolder folder;
  const auto truth = [](double x) { return 0.5 - 0.4 * std::cos(x * 0.9); };
  PixelFile layer = PixelFile::filled({24, 6}, {0, 0, 0, 255});
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 24; ++x) {
      const int value = static_cast<int>(std::lround(255 * truth(x + 0.5)));
      layer.set(x, y, {value, value, value, 255});
    }
  }
  layer.write(folder / "layer.png");
  const std::string corners = " --ul 0,0 --ur 240,0 --ll 0,60 --lr 240,60 --size 240x60";
  const auto error = [&](const std::string& options) {
    const PixelFile out = rendered(folder, "layer.png --colorspace-layer linear" + corners + options);
    double sum = 0.0;
    for (int x = 40; x < 200; ++x) {
      sum += std::pow(out.at(x, 30)[0] - truth((x + 0.5) / 10), 2);
      EXPECT_NEAR(out.at(x, 30)[3], 1.0, 1e-3);
    }
    expectNear(out.at(0, 0), layer.at(0, 0), 0.03);  // as opaque and in its place to the very corner
    return std::sqrt(sum / 160);
  };
  const double plain = error("");
  EXPECT_LT(error(" --enlarge bicubic"), plain / 2);
  EXPECT_LT(error(" --enlarge lanczos"), plain / 2);
  EXPECT_NEAR(error(" --enlarge bilinear"), plain, plain / 2);
  // Up to twice the size it does nothing.
  const std::string twice = " --ul 9,3 --ur 57,3 --ll 9,15 --lr 57,15 --size 64x20";
  runWell(folder, "render layer.png -o a.png" + twice);
  runWell(folder, "render layer.png -o b.png --enlarge lanczos" + twice);
  EXPECT_EQ(difference(folder / "a.png", folder / "b.png"), 0.0);
}

TEST(LayerOptions, AnOpenShutterBlursWhatMovesAroundItsPlace) {
  const TestFolder folder;
  PixelFile::filled({10, 10}, {255, 255, 255, 255}).write(folder / "layer.png");
  folder.write("track.csv", "0,20,0,30,0,20,10,30,10\n2,60,0,70,0,60,10,70,10\n");
  const std::string shot = "render layer.png --corners track.csv --frames 1-1 --size 100x10 --depth float ";
  const auto spread = [&](const std::string& options) {
    runWell(folder, shot + "-o out.#.exr " + options);
    return alphaSpread(PixelFile::read(folder / "out.1.exr"), 5);
  };
  EXPECT_NEAR(spread("").centre, 45.0, 0.01);
  const Spread centred = spread("--shutter 180");
  EXPECT_NEAR(centred.sum, 10.0, 0.05);
  EXPECT_NEAR(centred.centre, 45.0, 0.05);
  EXPECT_NEAR(PixelFile::read(folder / "out.1.exr").at(36, 5)[3], 0.15, 0.06);  // ten pixels' way in half a frame
  EXPECT_NEAR(spread("--shutter 180 --shutter-offset 0").centre, 50.0, 0.05);

  folder.write("track.csv", "0,20,0,30,0,20,10,30,10\n");
  runWell(folder, shot + "-o still.#.exr");
  runWell(folder, shot + "-o open.#.exr --shutter 360 --shutter-samples 9");
  EXPECT_EQ(difference(folder / "still.1.exr", folder / "open.1.exr"), 0.0);
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
