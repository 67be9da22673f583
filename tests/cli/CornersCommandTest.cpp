// Trackers' files through the command: rendered, shown and converted.
#include <gtest/gtest.h>

#include "CommandRunner.h"

namespace vantorel::cli {
namespace {

const std::string kSamples = VANTOREL_TRACK_SAMPLES "/";

TEST(CornersCommand, OneTrackInAnyFormatAndNumberOfFilesRendersTheSamePicture) {
  const FolderWithCard folder("320x180");
  const std::string shot = " --size 1920x1080 --downsample 8 --frames 3 --corners ";
  runWell(folder, "render card.png -o expected.tif" + shot + kSamples + "own.csv");
  for (const std::string& files :
       {kSamples + "own.json", kSamples + "node.nk", kSamples + "syntheyes.txt", "- < " + kSamples + "node.nk",
        kSamples + "columns_ul.txt," + kSamples + "columns_ur.txt," + kSamples + "columns_ll.txt," + kSamples +
            "columns_lr.txt"}) {
    const CommandResult result = run(folder, "render card.png -o out.tif" + shot + files);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(difference(folder / "out.tif", folder / "expected.tif"), 0.0) << files;
  }
}

TEST(CornersCommand, ConventionsAreGivenAndToldOnce) {
  const FolderWithCard folder("320x180");
  folder.write("wild.csv",
               "Frame;x1;y1;x2;y2;x3;y3;x4;y4\n1;0,25;0,75;0,75;0,75;0,25;0,25;0,75;0,25\n2;0,25;0,75;0,75;0,75;0,25;0,"
               "25;0,75;0,25\n");
  const CommandResult result =
      run(folder,
          "render card.png -o a.##.png --frames 1-2 --corners wild.csv --corners-units fraction --corners-of output");
  EXPECT_EQ(result.code, 0) << result.err;
  const std::string assumed = "vantorel: wild.csv: assumed y downwards";
  EXPECT_NE(result.err.find(assumed), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find(assumed, result.err.find(assumed) + 1), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("in the order ll,lr,ul,ur"), std::string::npos) << result.err;
  EXPECT_EQ(run(folder, "render card.png -o b.png --corners-gap 3").code, 2);
}

TEST(CornersCommand, ShowsConvertsAndPlots) {
  const TestFolder folder;
  const std::string shown =
      runWell(folder, "corners " + kSamples + "shake.txt --size 1920x1080 -o out.nk --plot paths.svg").out;
  EXPECT_NE(shown.find("format      shake: Shake text\n"), std::string::npos) << shown;
  EXPECT_NE(shown.find("frames      1 to 4, 4 keys\n"), std::string::npos) << shown;
  EXPECT_NE(contents(folder / "out.nk").find("to4 {{curve x1 412.5 424.75 437 449.25} "), std::string::npos);
  EXPECT_NE(contents(folder / "paths.svg").find("</svg>"), std::string::npos);
  runWell(folder, "corners out.nk --size 1920x1080 --format columns -o ul.txt,ur.txt,ll.txt,lr.txt");
  EXPECT_EQ(contents(folder / "lr.txt").substr(0, 22), "# lr\n1 1449.125 801.37");

  const std::string before = contents(folder / "out.nk");
  std::filesystem::create_hard_link(folder / "out.nk", folder / "link.nk");
  const std::string sized = "corners out.nk --size 1920x1080 ";
  expectRefused(
      folder,
      {
          {"corners out.nk", 3, "out.nk: has positions that need the tracked picture's size; give it with --size WxH"},
          {sized + "-o out.txt", 2, "the format cannot be told from 'out.txt'; name it with --format, one of"},
          {sized + "-o a.csv,b.csv", 2, "neither one file nor four"},
          {sized + "-o out.txt --format mlt", 2, "frame 0: is not an upright box"},
          {"corners out.nk --corners-order ul,ul,ll,lr", 2, "--corners-order: 'ul,ul,ll,lr' is not an order"},
          {"corners out.nk --smooth 1000", 2, "--smooth: '1000' is not a number from 0 to 100"},
          {"corners", 2, "name the track to read"},
          {sized + "-o link.nk", 2, "'link.nk' is the track itself, 'out.nk'"},
          {sized + "-o a.csv --plot a.csv", 2, "'a.csv' would be written twice"},
          {sized + "-o -", 2, "the format cannot be told from '-'"},
      });
  EXPECT_EQ(contents(folder / "out.nk"), before);
  const CommandResult piped = run(folder, "corners out.nk --size 1920x1080 -o - --format nk");
  EXPECT_EQ(piped.out, before);
  EXPECT_EQ(piped.err.find("format      nk"), 0U) << piped.err;
}

}  // namespace
}  // namespace vantorel::cli
