// A sample of every format: found by its content, read to the same positions, and written back to the printed digit.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/tracks/Samples.h"
#include "tracks/Text.h"
#include "tracks/WholeFrames.h"

namespace vantorel::tracks {
namespace {

struct Sample {
  const char* file;
  const char* format;
  bool lower_left = false;  // what the user says where the format does not
};

// All but the boxes hold the same four frames.
constexpr Sample kSamples[]{{"node.nk", "nk"},
                            {"shake.txt", "shake"},
                            {"3de.txt", "3de"},
                            {"pftrack.2dt", "pftrack"},
                            {"syntheyes.txt", "syntheyes"},
                            {"boujou.txt", "boujou"},
                            {"matchmover.rz2", "matchmover"},
                            {"maya.txt", "maya"},
                            {"flame.stabilizer", "flame"},
                            {"version1.uv", "uv"},
                            {"version3.uv", "uv-json"},
                            {"blender.csv", "blender"},
                            {"benchmark.txt", "benchmark"},
                            {"columns.txt", "columns"},
                            {"own.csv", "csv"},
                            {"own.json", "json"},
                            {"spreadsheet.csv", "csv"}};

// The track of the samples, as straight lines of the frame's number.
Quadrilateral expectedAt(double frame) {
  const double f = frame - 1.0;
  return {{{412.5 + 12.25 * f, 208.125 + 3.5 * f},
           {1391.25 + 10.125 * f, 249.5 - 2.75 * f},
           {381.75 + 13.5 * f, 850.25 + 1.25 * f},
           {1449.125 + 9.875 * f, 801.375 - 4.125 * f}}};
}

void expectSamplePositions(const CornerTrack& track) {
  ASSERT_EQ(track.keys.size(), 4u);
  for (std::size_t k = 0; k < 4; ++k) {
    EXPECT_EQ(track.keys[k].frame, 1.0 + static_cast<double>(k));
    const Quadrilateral expected = expectedAt(track.keys[k].frame);
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      EXPECT_NEAR(track.keys[k].points[c].x, expected[c].x, 1.0 / 65536.0) << kCornerNames[c] << " " << k;
      EXPECT_NEAR(track.keys[k].points[c].y, expected[c].y, 1.0 / 65536.0) << kCornerNames[c] << " " << k;
    }
  }
}

// The numbers as a file of that format would print them.
std::string printedNumbers(const CornerTrack& track) {
  std::string text;
  const int decimals = std::min(12, usefulDecimals(track.conventions.units.value_or(Units::Pixels)));
  for (const CornerKey& key : track.keys) {
    text.append(printed(key.frame, 6)).append(":");
    for (const Point& point : key.points) {
      text.append(" ").append(printed(point.x, decimals)).append(",").append(printed(point.y, decimals));
    }
    text.append("\n");
  }
  return text;
}

TEST(Samples, EveryFormatIsFoundByItsContentGivesTheSamePositionsAndIsWrittenBackToThePrintedDigit) {
  std::vector<std::string> written_formats;
  for (const Sample& sample : kSamples) {
    SCOPED_TRACE(sample.file);
    const auto read = readText(sampleText(sample.file));
    ASSERT_TRUE(read) << faultText(read);
    EXPECT_EQ(read->format->name, sample.format);
    ResolveOptions options;
    options.sizes = {kFrame, kFrame};
    const auto resolved = resolveTrack(*read, options);
    ASSERT_TRUE(resolved) << faultText(resolved);
    EXPECT_EQ(resolved->order, kAsWritten);
    expectSamplePositions(resolved->track);
    WriteOptions write_options;
    write_options.frame = kFrame;
    const auto text = writeTrack(resolved->track, *read->format, write_options);
    ASSERT_TRUE(text) << faultText(text);
    const auto again = readText(*text);
    ASSERT_TRUE(again) << faultText(again) << *text;
    EXPECT_EQ(again->format, read->format);
    EXPECT_EQ(printedNumbers(again->track), printedNumbers(read->track));
    EXPECT_EQ(again->track.corners_named, read->track.corners_named || sample.file == std::string("columns.txt"));
    written_formats.emplace_back(sample.format);
  }
  for (const Format* format : formats()) {
    const bool covered =
        std::find(written_formats.begin(), written_formats.end(), format->name) != written_formats.end();
    EXPECT_TRUE(covered || format->name == "mlt") << format->name;
  }
}

TEST(Samples, TracksOfALargerPictureAreScaledToTheOutput) {
  for (const char* file : {"matchmover.rz2", "maya.txt"}) {  // which state the picture's size
    SCOPED_TRACE(file);
    ResolveOptions options;
    options.sizes = {{kFrame.width / 2, kFrame.height / 2}, kFrame};
    const auto resolved = resolveText(sampleText(file), options);
    ASSERT_TRUE(resolved) << faultText(resolved);
    const Point& corner = resolved->track.keys.at(1).points[kLowerRight];
    EXPECT_NEAR(expectedAt(2)[kLowerRight].x / 2, corner.x, 1.0 / 65536.0);
    EXPECT_NEAR(expectedAt(2)[kLowerRight].y / 2, corner.y, 1.0 / 65536.0);
  }
}

TEST(Samples, BoxesAreReadAndWrittenBack) {
  const auto read = readText(sampleText("mlt.txt"));
  ASSERT_TRUE(read) << faultText(read);
  EXPECT_EQ(read->format->name, "mlt");
  const auto resolved = resolveTrack(*read, {});
  ASSERT_TRUE(resolved) << faultText(resolved);
  EXPECT_EQ(resolved->track.keys.at(1).frame, 11.0);
  EXPECT_EQ(resolved->track.keys[1].points[kLowerRight], (Point{780.5, 410.0}));
  const auto text = writeTrack(resolved->track, *read->format, {});
  ASSERT_TRUE(text) << faultText(text);
  EXPECT_EQ(*text, "0~=100 50 640 360 1;\n10~=140.5 50 640 360 1;\n25~=200 80.25 800 450 1\n");

  const std::string clock = "00:00:09.500=1 2 3 4;00:00:13:12=5 6 7 8";
  const auto timed = readText(clock, "boxes", {nullptr, 24.0});
  ASSERT_TRUE(timed) << faultText(timed);
  EXPECT_EQ(timed->track.keys.at(0).frame, 228.0);
  EXPECT_EQ(timed->track.keys.at(1).frame, 324.0);
  EXPECT_NE(faultText(readText(clock)).find("clock value"), std::string::npos);
  // A quadrilateral that is no box is refused rather than written as its bounds.
  const auto other = resolveText(sampleText("own.csv"));
  EXPECT_NE(faultText(writeTrack(other->track, *read->format, {})).find("frame 0: is not an upright box"),
            std::string::npos);
}

TEST(Samples, WhatAFormatCannotSayBetweenKeysIsWrittenOnEveryFrame) {
  const auto corner = [](int x, int y) { return fmt::format("[{}, {}]", x, y); };
  const auto box = [&](double frame, int x) {
    return fmt::format(R"({{"frame": {}, "ul": {}, "ur": {}, "ll": {}, "lr": {}}})", frame, corner(x, 0),
                       corner(x + 100, 0), corner(x, 100), corner(x + 100, 100));
  };
  for (const auto& [word, interpolation] :
       {std::pair{"linear", host::Interpolation::Linear}, std::pair{"hold", host::Interpolation::Hold},
        std::pair{"smooth", host::Interpolation::Smooth}}) {
    const auto resolved = resolveText(fmt::format(R"({{"interpolation": "{}", "keys": [{}, {}, {}, {}]}})", word,
                                                  box(1, 0), box(4.5, 64), box(8, 80), box(10, 500)));
    ASSERT_TRUE(resolved) << faultText(resolved);
    const host::AnimatedPoint expected(
        {{1.0, {0.0, 0.0}}, {4.5, {64.0, 0.0}}, {8.0, {80.0, 0.0}}, {10.0, {500.0, 0.0}}}, interpolation);
    for (const auto& [name, keys] : {std::pair{"json", 4U},
                                     {"csv", interpolation == host::Interpolation::Linear ? 4U : 11U},
                                     {"nk", interpolation == host::Interpolation::Linear ? 4U : 11U},
                                     {"flame", interpolation == host::Interpolation::Smooth ? 11U : 4U},
                                     {"mlt", interpolation == host::Interpolation::Smooth ? 11U : 4U},
                                     {"boujou", 11U}}) {
      SCOPED_TRACE(fmt::format("{} as {}", word, name));
      WriteOptions options;
      options.frame = kFrame;
      const auto text = writeTrack(resolved->track, *formatNamed(name), options);
      ASSERT_TRUE(text) << faultText(text);
      const auto again = resolveText(*text);
      ASSERT_TRUE(again) << faultText(again);
      EXPECT_EQ(keys, again->track.keys.size());
      const host::AnimatedPoint written = animated(again->track, kUpperLeft);
      for (int frame = 1; frame <= 10; ++frame) {
        EXPECT_NEAR(expected.at(frame).x, written.at(frame).x, 1e-5) << frame;
      }
    }
  }
}

TEST(Samples, CoordinatesMayHaveKeysOnDifferentFrames) {
  const char* const curves = " {{curve x1 0 x4 30} {curve x2 8 x3 9}}\n";
  std::string text;
  for (const char* point : {"to1", "to2", "to3", "to4"}) {
    text += point + std::string(curves);
  }
  const auto read = readText(text);
  ASSERT_TRUE(read) << faultText(read);
  std::vector<std::array<double, 3>> keys;
  for (const CornerKey& key : read->track.keys) {
    keys.push_back({key.frame, key.points[0].x, key.points[0].y});
  }
  EXPECT_EQ(keys, (std::vector<std::array<double, 3>>{{1, 0, 8}, {2, 10, 8}, {3, 20, 9}, {4, 30, 9}}));
}

TEST(Samples, FourFilesOfOnePointEach) {
  std::vector<std::string> texts;
  std::vector<TrackSource> sources;
  for (const char* corner : {"ul", "ur", "ll", "lr"}) {
    texts.push_back(sampleText(std::string("columns_") + corner + ".txt"));
  }
  const auto resolve_all = [&](const std::vector<std::pair<const char*, std::size_t>>& files) {
    sources.clear();
    for (const auto& [name, which] : files) {
      sources.push_back({name, texts[which]});
    }
    const auto read = readTrack(sources);
    EXPECT_TRUE(read) << faultText(read);
    return resolveTrack(*read, {});
  };
  // Named files in any order, and nameless ones in the usual order.
  expectSamplePositions(
      resolve_all({{"a/track_lr.txt", 3}, {"a/track_ul.txt", 0}, {"a/track_ur.txt", 1}, {"a/track_ll.txt", 2}})->track);
  expectSamplePositions(resolve_all({{"a.txt", 0}, {"b.txt", 1}, {"c.txt", 2}, {"d.txt", 3}})->track);
  // Nameless in another order, which the corners' places tell.
  const auto shuffled = resolve_all({{"a.txt", 3}, {"b.txt", 0}, {"c.txt", 1}, {"d.txt", 2}});
  expectSamplePositions(shuffled->track);
  EXPECT_EQ(orderText(shuffled->order), "lr,ul,ur,ll");

  const TrackSource three[]{{"a.txt", texts[0]}, {"b.txt", texts[1]}, {"c.txt", texts[2]}};
  EXPECT_NE(faultText(readTrack(three)).find("has 3 points"), std::string::npos);
  const std::string csv = sampleText("own.csv");
  const TrackSource mixed[]{{"a.txt", texts[0]}, {"b.csv", csv}};
  EXPECT_EQ(faultText(readTrack(mixed)).rfind("b.csv: is in the format csv", 0), 0u);
}

}  // namespace
}  // namespace vantorel::tracks
