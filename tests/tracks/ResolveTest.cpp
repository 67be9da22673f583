// From a file's numbers to the picture's pixels, and what is reported on the way.
#include "tracks/Resolve.h"

#include <gtest/gtest.h>

#include "tests/tracks/Samples.h"
#include "tracks/Plot.h"
#include "tracks/Smoothing.h"
#include "tracks/Summary.h"

namespace vantorel::tracks {
namespace {

constexpr const char* kWild = "frame x1 y1 x2 y2 x3 y3 x4 y4\n";

// Resolves one row of four points, as written.
Quadrilateral pointsOf(const std::string& row, const Conventions& given, PictureSizes sizes) {
  ResolveOptions options;
  options.given = given;
  options.sizes = sizes;
  options.order = kAsWritten;
  const auto resolved = resolveText(kWild + row, options);
  EXPECT_TRUE(resolved) << faultText(resolved);
  return resolved ? resolved->track.keys[0].points : Quadrilateral{};
}

TEST(Resolve, AppliesEveryConvention) {
  const PictureSizes hd{{1920, 1080}, {400, 200}};
  const std::string row = "1 10 20 1900 20 10 1000 1900 1000\n";
  const std::string shares = "1 0.25 0.1 0.75 0.1 0.25 0.9 0.75 0.9\n";
  EXPECT_EQ(pointsOf(row, {}, hd)[kUpperLeft], (Point{10, 20}));
  EXPECT_EQ(pointsOf(row, {Origin::LowerLeft, {}, {}, {}, {}, {}, {}}, hd)[kUpperLeft], (Point{10, 1060}));
  EXPECT_EQ(pointsOf(row, {{}, {}, {}, {}, 0.0, {}, {}}, hd)[kUpperLeft], (Point{10.5, 20.5}));
  EXPECT_EQ(pointsOf(row, {Origin::LowerLeft, {}, {}, {}, 0.0, {}, {}}, hd)[kUpperLeft], (Point{10.5, 1059.5}));
  EXPECT_EQ(pointsOf(row, {{}, {}, {}, Size{3840, 2160}, {}, {}, {}}, hd)[kLowerRight], (Point{950, 500}));
  EXPECT_EQ(pointsOf(row, {Origin::LowerLeft, {}, {}, Size{3840, 2160}, 0.0, {}, {}}, hd)[kUpperLeft],
            (Point{5.25, (2160 - 20.5) / 2}));
  EXPECT_EQ(pointsOf(shares, {{}, Units::Fraction, Basis::Output, {}, {}, {}, {}}, hd)[kUpperLeft], (Point{480, 108}));
  EXPECT_EQ(pointsOf(shares, {{}, Units::Fraction, Basis::Layer, {}, {}, {}, {}}, hd)[kUpperLeft], (Point{100, 20}));
  EXPECT_EQ(pointsOf(row, {Origin::LowerLeft, Units::Percent, Basis::Layer, {}, {}, {}, {}}, hd)[kUpperLeft],
            (Point{40, 160}));
  const std::string halves = "1 0.5 0.25 0.9 0.25 0.5 0.8 0.9 0.8\n";  // of half the height, from the centre
  EXPECT_EQ(pointsOf(halves, {{}, Units::HalfHeights, {}, {}, {}, {}, {}}, hd)[kUpperLeft], (Point{1230, 675}));
  EXPECT_EQ(pointsOf(halves, {{}, Units::HalfHeights, {}, {}, {}, 2.0, {}}, hd)[kUpperLeft], (Point{1200, 675}));
}

TEST(Resolve, TellsWhatItAssumedOnce) {
  const auto resolved = resolveText(std::string(kWild) + "1 0 0 9 0 0 9 9 9\n2 0 0 9 0 0 9 9 9\n");
  ASSERT_TRUE(resolved);
  ASSERT_EQ(resolved->notes.size(), 1u);
  EXPECT_NE(resolved->notes[0].find("assumed positions in pixels, y downwards"), std::string::npos);
  EXPECT_TRUE(resolveText(sampleText("own.csv"))->notes.empty());
  EXPECT_NE(resolveText(sampleText("boujou.txt"))->notes.at(0).find("frame 0 becomes frame 1"), std::string::npos);
  ResolveOptions at_1001;
  at_1001.first_frame = 1001.0;
  EXPECT_EQ(resolveText(sampleText("boujou.txt"), at_1001)->track.keys.back().frame, 1004.0);
  ResolveOptions unsized;
  unsized.sizes.layer = kFrame;
  EXPECT_NE(faultText(resolveTrack(*readText(sampleText("shake.txt")), unsized)).find("tracked picture's size"),
            std::string::npos);
  unsized.sizes = {kFrame, {}};
  unsized.given = {{}, Units::Fraction, Basis::Layer, {}, {}, {}, {}};
  EXPECT_NE(faultText(resolveTrack(*readText(sampleText("own.csv")), unsized)).find("layer's size"), std::string::npos);
}

// By the status that the tracker gives them.
TEST(Resolve, RowsThatWereNotTrackedAreLeftOutAndCounted) {
  const std::string tracked = "ul 1 -0.5 0.5 7\nur 1 0.5 0.5 15\nll 1 -0.5 -0.5 7\nlr 1 0.5 -0.5 7\n";
  const auto resolved = resolveText(tracked + "ul 2 -0.4 0.5 3\nlr 2 0.4 -0.5 8\n");
  ASSERT_TRUE(resolved) << faultText(resolved);
  EXPECT_EQ(resolved->track.keys.size(), 1u);
  std::string notes;
  for (const std::string& note : resolved->notes) {
    notes += note + '\n';
  }
  EXPECT_NE(notes.find("2 rows have a status other than 7 or 15"), std::string::npos) << notes;

  const auto none = resolveText("ul 1 -0.5 0.5 3\nur 1 0.5 0.5 3\nll 1 -0.5 -0.5 3\nlr 1 0.5 -0.5 3\n");
  EXPECT_NE(faultText(none).find("holds no keys"), std::string::npos) << faultText(none);
}

// Rows of a square of 100 pixels that is at (x, 0) on each of the frames.
std::string squares(const std::vector<std::pair<int, double>>& places) {
  std::string text = "frame,ulx,uly,urx,ury,llx,lly,lrx,lry\n";
  for (const auto& [frame, x] : places) {
    const std::string left = std::to_string(x);
    const std::string right = std::to_string(x + 100.0);
    text += std::to_string(frame) + "," + left + ",0," + right + ",0," + left + ",100," + right + ",100\n";
  }
  return text;
}

TEST(Resolve, BoundsGapsAndTellsThem) {
  ResolveOptions options;
  EXPECT_TRUE(resolveText(squares({{1, 0}, {100, 0}}), options)->notes.empty());  // sparse keys are usual here
  options.longest_gap = 3;
  EXPECT_NE(resolveText(squares({{1, 0}, {5, 0}}), options)->notes.at(0).find("frames 2-4"), std::string::npos);
  EXPECT_NE(faultText(resolveText(squares({{1, 0}, {6, 0}}), options)).find("line 3: frame: the 4 frames from 2 to 5"),
            std::string::npos);
  std::string tracker = sampleText("boujou.txt");
  tracker += "ul 60 1 2\nur 60 9 2\nll 60 1 9\nlr 60 9 9\n";
  EXPECT_NE(faultText(resolveText(tracker)).find("more than 25"), std::string::npos);

  // One corner is lost for a while, and another at the end.
  std::string lost = squares({{1, 0}, {2, 0}, {3, 0}, {4, 0}});
  lost.replace(lost.find("2,0.000000,0,"), 13, "2,,,");
  lost.replace(lost.find("4,0.000000,0,"), 13, "4,,,");
  const auto filled = resolveText(lost, options);
  ASSERT_TRUE(filled) << faultText(filled);
  EXPECT_NE(filled->notes.at(0).find("frames 2 and 4: missing corners"), std::string::npos) << filled->notes.at(0);
  EXPECT_EQ(filled->track.keys[3].points[kUpperLeft], (Point{0, 0}));
  options.longest_gap = 0;
  EXPECT_NE(faultText(resolveText(lost, options)).find("line 3: ul: is missing on frames 2 to 2 (1), more than 0"),
            std::string::npos);
  lost.replace(lost.find("2,,,"), 4, "2,0,0,");
  EXPECT_NE(faultText(resolveText(lost, options)).find("line 5: ul: is missing on frames 4 to 4 (1), more than 0"),
            std::string::npos);
}

TEST(Resolve, WarnsOfJumpsAndCrossings) {
  const auto jumping = resolveText(squares({{1, 0}, {2, 10}, {3, 60}, {4, 70}}));
  ASSERT_EQ(jumping->notes.size(), 1u);
  EXPECT_NE(jumping->notes[0].find("frame 3: a corner jumps"), std::string::npos);
  const auto crossing = resolveText(squares({{1, 0}, {2, 0}}) + "3,0,0,100,0,100,100,0,100\n");
  EXPECT_NE(crossing->notes.at(0).find("frame 3: edges of the quadrilateral cross"), std::string::npos);
}

TEST(Resolve, SmoothsWithTheEndsKept) {
  std::vector<std::pair<int, double>> noisy;
  std::vector<std::pair<int, double>> steady;
  for (int f = 1; f <= 40; ++f) {
    noisy.emplace_back(f, f % 2 == 0 ? 10.0 : 0.0);
    steady.emplace_back(f, 2.0 * f);
  }
  ResolveOptions options;
  options.sigma = 2.0;
  const auto keys = resolveText(squares(noisy), options)->track.keys;
  EXPECT_EQ(keys.front().points[kUpperLeft].x, 0.0);
  EXPECT_EQ(keys.back().points[kUpperLeft].x, 10.0);
  for (std::size_t k = 8; k < 32; ++k) {
    EXPECT_NEAR(keys[k].points[kUpperLeft].x, 5.0, 0.1);
  }
  // Even motion stays as it is, to the ends.
  const auto even = resolveText(squares(steady), options);
  for (const CornerKey& key : even->track.keys) {
    EXPECT_NEAR(key.points[kUpperLeft].x, 2.0 * key.frame, 1e-9);
  }
  options.sigma = kLargestSigma * 2;
  EXPECT_NE(faultText(resolveText(squares(steady), options)).find("sigma"), std::string::npos);
}

TEST(Resolve, MovesSourceCornersToTheLayersOwn) {
  // The middle half of the layer is tracked: the layer's own corners are as far outside.
  const std::string to = "to1 {200 100} to2 {400 100} to3 {400 300} to4 {200 300}\n";
  const std::string from = "from1 {100 100} from2 {300 100} from3 {300 300} from4 {100 300}\n";
  ResolveOptions options;
  options.sizes = {{1920, 1080}, {400, 400}};
  const auto resolved = resolveText(to + from, options);
  ASSERT_TRUE(resolved) << faultText(resolved);
  const Quadrilateral q = resolved->track.keys[0].points;
  EXPECT_NEAR(q[kUpperLeft].x, 100.0, 1e-9);
  EXPECT_NEAR(q[kUpperLeft].y, 1080.0 - 400.0, 1e-9);
  EXPECT_NEAR(q[kLowerRight].x, 500.0, 1e-9);
  EXPECT_NEAR(q[kLowerRight].y, 1080.0, 1e-9);
  EXPECT_EQ(resolveText(to + "from1 {0 0} from2 {{width} 0} from3 {{width} {input.height}} from4 {0 {height}}")
                ->track.keys[0]
                .points[kUpperLeft],
            (Point{200, 780}));
}

TEST(Summary, CountsFramesGapsShapesAndSpeeds) {
  const auto resolved = resolveText(squares({{1, 0}, {2, 10}, {6, 90}}) + "7,0,0,100,0,100,100,0,100\n");
  const TrackSummary summary = summarize(resolved->track);
  EXPECT_EQ(summary.keys, 4u);
  EXPECT_EQ(summary.frames_without_key, (std::vector<double>{3, 4, 5}));
  EXPECT_EQ(summary.most, (Point{190, 100}));
  EXPECT_EQ(summary.crossing, (std::vector<double>{7}));
  EXPECT_EQ(summary.bilinear, (std::vector<double>{7}));
  EXPECT_TRUE(summary.degenerate.empty());
  EXPECT_EQ(summary.fastest_frame, 7.0);
  EXPECT_EQ(summary.fastest, 190.0);
  const std::string text = summaryText(summary);
  EXPECT_NE(text.find("without key frames 3-5\n"), std::string::npos) << text;
  EXPECT_NE(text.find("degenerate  none\n"), std::string::npos) << text;
}

TEST(Plot, DrawsPathsAndSpeedsToScale) {
  const CornerTrack track = resolveText(squares({{1, 0}, {2, 10}, {3, 30}}))->track;
  const auto expect_lines = [](const std::string& svg, std::initializer_list<const char*> lines) {
    for (const char* line : lines) {
      EXPECT_NE(svg.find(line), std::string::npos) << line << " in\n" << svg;
    }
  };
  // 130x100 pixels of track fill the drawing's 880x460 from top to bottom.
  expect_lines(plotSvg(track, {}), {"<polygon points=\" 181,40 641,40 641,500 181,500\"",
                                    "<polygon points=\" 319,40 779,40 779,500 319,500\"",
                                    "<polyline points=\" 641,500 687,500 779,500 779,500\"",
                                    "<polyline points=\" 480,640 920,580\"", "up to 20 pixels a frame"});
  // To the left just as well.
  const CornerTrack back = resolveText(squares({{1, 30}, {2, 20}, {3, 0}}))->track;
  expect_lines(plotSvg(back, {}), {"<polygon points=\" 319,40 779,40 779,500 319,500\"",
                                   "<polygon points=\" 181,40 641,40 641,500 181,500\""});
  expect_lines(plotSvg(track, kFrame), {"<polygon points=\" 71.11,40 888.89,40 888.89,500 71.11,500\""});
}

TEST(Plot, DrawsALinePerCornerAndStaysSmall) {
  std::vector<std::pair<int, double>> places;
  for (int f = 1; f <= 50000; ++f) {
    places.emplace_back(f, f % 1000);
  }
  const std::string svg = plotSvg(resolveText(squares(places))->track, kFrame);
  EXPECT_LT(svg.size(), 400000u);
  std::size_t lines = 0;
  for (std::size_t at = svg.find("<polyline"); at != std::string::npos; at = svg.find("<polyline", at + 1)) {
    ++lines;
  }
  EXPECT_EQ(lines, 8u);
  EXPECT_NE(svg.find("up to 999 pixels a frame"), std::string::npos);
  EXPECT_EQ(svg.find("nan"), std::string::npos);
}

}  // namespace
}  // namespace vantorel::tracks
