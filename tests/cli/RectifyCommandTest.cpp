// Straightening what lies within four corners of a photo.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

#include "CommandRunner.h"
#include "PixelFile.h"

namespace vantorel::cli {
namespace {

constexpr const char* kWhole = " --ul 0,0 --ur 100%,0 --ll 0,100% --lr 100%,100%";

TEST(RectifyCommand, TheWholePhotoStaysAsItIsAndAPartInPlaceIsCutOut) {
  const FolderWithCard folder("200x150");
  runWell(folder, std::string("rectify card.png -o same.png --size 200x150") + kWhole);
  EXPECT_EQ(difference(folder / "card.png", folder / "same.png"), 0.0);
  runWell(folder, "rectify card.png -o part.png --aspect 2:1 --ul 40,30 --ur 140,30 --ll 40,80 --lr 140,80");
  runWell(folder, "render card.png -o crop.png --crop 40,30,60,70");
  EXPECT_EQ(difference(folder / "part.png", folder / "crop.png"), 0.0);
}

// A part of the layer that goes onto its own place shows that part alone; onto a whole picture it is what rectify
// makes.
TEST(SourceCorners, TheirQuadrilateralGoesOntoTheCorners) {
  const FolderWithCard folder("200x150");
  const std::string part = "--from-ul 40,30 --from-ur 140,30 --from-ll 40,80 --from-lr 140,80";
  runWell(folder, "render card.png -o there.png --size 100x50 --ul 0,0 --ur 100,0 --ll 0,50 --lr 100,50 " + part);
  runWell(folder, "render card.png -o crop.png --crop 40,30,60,70");
  EXPECT_EQ(difference(folder / "there.png", folder / "crop.png"), 0.0);

  const std::string screen = "--from-ul 50,20 --from-ur 160,40 --from-ll 30,120 --from-lr 170,110";
  const std::string corners = " --ul 0,0 --ur 90,0 --ll 0,70 --lr 90,70 ";
  runWell(folder, "render card.png -o straight.png --size 90x70" + corners + screen);
  runWell(folder, "rectify card.png -o page.png --size 90x70 --ul 50,20 --ur 160,40 --ll 30,120 --lr 170,110");
  EXPECT_LT(difference(folder / "straight.png", folder / "page.png"), 0.01);

  const std::string render = "render card.png -o out.png ";
  expectRefused(folder, {{render + "--from-ul 150,140", 2,
                          "--from-ul: with the layer's other corners it does not form a convex quadrilateral"},
                         {render + "--placement centres " + part, 2, "--placement: cannot be centres"},
                         {render + "--edges soft " + part, 2, "--edges: cannot be soft"}});
}

// By keys in the file of corners, between which it moves as the corners do.
TEST(SourceCorners, TheFileOfCornersMovesThem) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.png --size 200x150");
  const auto part = [](int left, int right) {
    return fmt::format(R"("ul": [{0}, 30], "ur": [{1}, 30], "ll": [{0}, 80], "lr": [{1}, 80]}})", left, right);
  };
  const std::string keys = R"("keys": [{"frame": 1, "ul": [0, 0], "ur": [100, 0], "ll": [0, 50], "lr": [100, 50]}])";
  const std::string moving =
      fmt::format(R"("from": [{{"frame": 1, {}, {{"frame": 3, {}], )", part(40, 140), part(60, 160));
  folder.write("moving.json", "{" + moving + keys + "}");
  folder.write("still.json", "{\"from\": {" + part(50, 150) + ", " + keys + "}");
  const std::string shot = "render card.png --size 100x50 --no-progress --frames 1-3 -o ";
  runWell(folder, shot + "a.#.png --corners moving.json");
  runWell(folder, shot + "b.#.png --corners still.json");
  for (int frame = 1; frame <= 3; ++frame) {
    const int left = 30 + 10 * frame;
    runWell(folder, fmt::format("render card.png -o crop.png --crop {},30,{},70", left, 100 - left));
    EXPECT_LT(difference(folder / fmt::format("a.{}.png", frame), folder / "crop.png"), 0.002) << frame;
  }
  EXPECT_LT(difference(folder / "b.1.png", folder / "a.2.png"), 0.002);

  // Other options take it along: what is enlarged and cropped first, and what moves while the shutter is open.
  runWell(folder,
          "render card.png -o large.png --size 500x250 --from-ul 40,30 --from-ur 140,30 --from-ll 40,80 "
          "--from-lr 140,80 --ul 0,0 --ur 500,0 --ll 0,250 --lr 500,250 --enlarge bicubic");
  runWell(folder,
          "render card.png -o crop.png --size 500x250 --crop 40,30,60,70 --ul 0,0 --ur 500,0 --ll 0,250 "
          "--lr 500,250 --enlarge bicubic");
  EXPECT_LT(difference(folder / "large.png", folder / "crop.png"), 0.05);
  runWell(folder, "render card.png --size 100x50 -o d.#.png --frames 2 --corners moving.json --shutter 360");
  EXPECT_GT(difference(folder / "d.2.png", folder / "a.2.png"), 0.02);

  // The record holds it, and so does what `corners` writes.
  runWell(folder, "corners moving.json -o moving.json --overwrite");
  EXPECT_NE(run(folder, shot + "a.#.png --corners moving.json --resume").err.find("older than the inputs"),
            std::string::npos);
  EXPECT_NE(run(folder, shot + "a.#.png --corners moving.json --resume").err.find("skipped 3"), std::string::npos);

  // Convex at either key, and dented half way.
  folder.write("flips.json",
               "{\"from\": [{\"frame\": 1, " + part(40, 140) +
                   R"(, {"frame": 3, "ul": [160, 80], "ur": [40, 80], "ll": [140, 50], "lr": [44, 34]}], )" + keys +
                   "}");
  folder.write("flat.json", "{\"from\": {" + part(40, 40) + ", " + keys + "}");
  const std::string to_refuse = shot + "e.#.png --corners ";
  expectRefused(
      folder,
      {{to_refuse + "flips.json --frames 2", 3, "flips.json: from: frame 2: it and the corners must both be strictly"},
       {to_refuse + "flat.json", 3, "flat.json: line 1: from: does not form a convex quadrilateral"},
       {to_refuse + "still.json --from-ul 1,1", 2, "--from-ul: cannot be given together with \"from\""},
       {to_refuse + "still.json --edges soft", 2, "--edges: cannot be soft with \"from\" in 'still.json'"},
       {"corners still.json -o still.csv", 2, "which the format csv cannot name; write json"}});
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
  const std::string rectify = "rectify photo.png -o page.png ";
  expectRefused(
      folder,
      {
          {rectify + "--ul 0,0", 2, "--ur: is missing; give all four corners of the page"},
          {rectify + "--size 9x9 --aspect 1:1" + kWhole, 2, "--aspect: cannot be given together with --size"},
          {rectify + "--aspect 4" + kWhole, 2, "--aspect: '4' is not a proportion"},
          {rectify + "--aspect 1:0" + kWhole, 2, "--aspect: '1:0' is not a proportion"},
          {rectify + "--size 9x9 --ul 0,0 --ur 0,90 --ll 90,0 --lr 10,10", 2, "--ul: the corners do not form a convex"},
          {rectify + "--size 9x9 --ul 900,0 --ur 990,0 --ll 900,90 --lr 990,90", 2, "--ul: the corners lie outside"},
      });
}

}  // namespace
}  // namespace vantorel::cli
