// Straightening what lies within four corners of a photo.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "CommandRunner.h"
#include "PixelFile.h"

namespace vantorel::cli {
namespace {

constexpr const char* kWhole = " --ul 0,0 --ur 100%,0 --ll 0,100% --lr 100%,100%";

TEST(RectifyCommand, TheWholePhotoStaysAsItIs) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.png --size 200x150");
  runWell(folder, std::string("rectify card.png -o same.png --size 200x150") + kWhole);
  EXPECT_EQ(difference(folder / "card.png", folder / "same.png"), 0.0);
}

TEST(RectifyCommand, APartInPlaceIsCutOut) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.png --size 200x150");
  runWell(folder, "rectify card.png -o part.png --aspect 2:1 --ul 40,30 --ur 140,30 --ll 40,80 --lr 140,80");
  runWell(folder, "render card.png -o crop.png --crop 40,30,60,70");
  EXPECT_EQ(difference(folder / "part.png", folder / "crop.png"), 0.0);
}

TEST(RectifyCommand, ThereAndBackKeepsThePicture) {
  const TestFolder folder;
  const std::string corners = " --ul 60,40 --ur 1010,10 --ll 20,800 --lr 1090,830";
  runWell(folder, "testcard -o card.png --size 400x300");
  runWell(folder, "render card.png -o there.png --size 1120x850" + corners);
  runWell(folder, "rectify there.png -o back.png --size 400x300" + corners);
  // The card's finest patterns, two pixels a period, lose contrast on the way there and back. A picture that lay half a
  // pixel off would come to 17.5 dB.
  EXPECT_LT(20 * std::log10(difference(folder / "card.png", folder / "back.png")), -22.0);
}

// A part of the layer that goes onto its own place shows that part alone; onto a whole picture it is what rectify
// makes.
TEST(SourceCorners, TheirQuadrilateralGoesOntoTheCorners) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.png --size 200x150");
  const std::string part = "--from-ul 40,30 --from-ur 140,30 --from-ll 40,80 --from-lr 140,80";
  runWell(folder, "render card.png -o there.png --size 100x50 --ul 0,0 --ur 100,0 --ll 0,50 --lr 100,50 " + part);
  runWell(folder, "render card.png -o crop.png --crop 40,30,60,70");
  EXPECT_EQ(difference(folder / "there.png", folder / "crop.png"), 0.0);

  const std::string screen = "--from-ul 50,20 --from-ur 160,40 --from-ll 30,120 --from-lr 170,110";
  const std::string corners = " --ul 0,0 --ur 90,0 --ll 0,70 --lr 90,70 ";
  runWell(folder, "render card.png -o straight.png --size 90x70" + corners + screen);
  runWell(folder, "rectify card.png -o page.png --size 90x70 --ul 50,20 --ur 160,40 --ll 30,120 --lr 170,110");
  EXPECT_LT(difference(folder / "straight.png", folder / "page.png"), 0.01);

  const auto refused = [&](const std::string& options, const std::string& message) {
    const CommandResult result = run(folder, "render card.png -o out.png " + options);
    EXPECT_EQ(result.code, 2) << options;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
  };
  refused("--from-ul 150,140", "--from-ul: with the layer's other corners it makes no convex quadrilateral");
  refused("--placement centres " + part, "--placement: cannot be centres");
  refused("--edges soft " + part, "--edges: cannot be soft");
}

TEST(RectifyCommand, ProportionsAreEstimatedAndTold) {
  const TestFolder folder;
  PixelFile::filled({400, 300}, {90, 90, 90}).write(folder / "photo.png");
  // A rectangle seen straight on tells its proportions, a trapezium with parallel sides does not.
  const CommandResult straight =
      run(folder, "rectify photo.png -o page.png --ul 100,50 --ur 300,50 --ll 100,150 --lr 300,150");
  EXPECT_EQ(straight.code, 0);
  EXPECT_NE(straight.err.find("2.0000 times as wide as high, if the photo is not cropped"), std::string::npos)
      << straight.err;
  EXPECT_EQ(PixelFile::read(folder / "page.png").size(), (host::Size{200, 100}));
  const CommandResult doubtful =
      run(folder, "rectify photo.png -o page.png --ul 150,50 --ur 250,50 --ll 100,150 --lr 300,150");
  EXPECT_NE(doubtful.err.find("give --aspect or --size"), std::string::npos) << doubtful.err;
}

TEST(RectifyCommand, BadCornersAndSizesAreRefused) {
  const TestFolder folder;
  PixelFile::filled({400, 300}, {90, 90, 90}).write(folder / "photo.png");
  const auto refused = [&](const std::string& arguments, const std::string& message) {
    const CommandResult result = run(folder, "rectify photo.png -o page.png " + arguments);
    EXPECT_EQ(result.code, 2) << arguments;
    EXPECT_NE(result.err.find(message), std::string::npos) << arguments << "\n" << result.err;
    EXPECT_EQ(folder.count(), 1u) << arguments;
  };
  refused("--ul 0,0", "--ur: is missing; give all four corners of the page");
  refused("--size 9x9 --aspect 1:1" + std::string(kWhole), "--aspect: cannot be given together with --size");
  refused("--aspect 4" + std::string(kWhole), "--aspect: '4' is no proportion");
  refused("--aspect 1:0" + std::string(kWhole), "--aspect: '1:0' is no proportion");
  refused("--size 9x9 --ul 0,0 --ur 0,90 --ll 90,0 --lr 10,10", "--ul: the corners make no convex quadrilateral");
  refused("--size 9x9 --ul 900,0 --ur 990,0 --ll 900,90 --lr 990,90", "--ul: the corners lie outside the photo");
}

}  // namespace
}  // namespace vantorel::cli
