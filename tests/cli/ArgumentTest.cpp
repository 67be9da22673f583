// What the command makes of its arguments' texts.
#include <gtest/gtest.h>

#include "cli/base/CommandError.h"
#include "cli/base/FramePattern.h"
#include "cli/base/FrameRange.h"
#include "cli/base/SizeParsing.h"
#include "cli/base/Text.h"
#include "cli/commands/Suggestion.h"
#include "cli/corners/Corners.h"
#include "cli/pictures/ImageFormats.h"
#include "cli/shots/RunSummary.h"

namespace vantorel::cli {
namespace {

// The fault that `parse` reports for the text; empty when it takes it.
template <typename Parse>
std::string faultOf(const Parse& parse, const std::string& text) try {
  parse("--option", text);
  return "";
} catch (const CommandError& error) {
  EXPECT_EQ(error.code(), ExitCode::BadArguments) << text;
  EXPECT_EQ(error.text().rfind("--option: ", 0), 0u) << error.text();
  return error.text();
}

TEST(Argument, CornersArePixelsOrPercentOfTheLayer) {
  const auto mixed = parseCorner(" -12.5 , 150% ");
  EXPECT_EQ(toLayerPixels(mixed.value(), {640, 480}), (host::Point{-12.5, 720.0}));
  EXPECT_EQ(parseCorner("+1e2,-.5")->x.value, 100.0);
  EXPECT_EQ(parseCorner("-32768,32767.99")->x.value, -32768.0);
  for (const char* text : {"", "1", "1,2,3", ",", "1,", "a,b", "nan,0", "0,inf", "-inf%,0", "1e999,0", "32768,0",
                           "0,-32768.1", "1px,2", "0x10,1", "1 2,3", "1,2%%", "++1,2", "+-1,2"}) {
    EXPECT_FALSE(parseCorner(text)) << text;
  }
  EXPECT_FALSE(toLayerPixels(*parseCorner("2000%,0"), {1920, 1080}));
}

TEST(Argument, SizesAreTwoPositiveNumbers) {
  EXPECT_EQ(parseSize("--size", "1920x1080"), (host::Size{1920, 1080}));
  EXPECT_EQ(parseSize("--size", "1X2"), (host::Size{1, 2}));
  for (const char* text : {"", "x", "10", "10x", "x10", "0x5", "5x0", "-1x5", "1.5x2", "10x10x10", "4294967297x1"}) {
    EXPECT_NE(faultOf(parseSize, text), "") << text;
  }
}

TEST(Argument, FrameRangesCountUpAndMayBeNegative) {
  const FrameRange third = parseFrameRange("--frames", "1-10x3");
  EXPECT_EQ(third.count(), 4);
  EXPECT_EQ(third.at(3), 10);
  EXPECT_EQ(parseFrameRange("--frames", "7").count(), 1);
  const FrameRange negative = parseFrameRange("--frames", "-5--3");
  EXPECT_EQ(negative.first, -5);
  EXPECT_EQ(negative.last, -3);
  EXPECT_EQ(parseFrameRange("--frames", "-2147483648-2147483647").count(), std::int64_t{1} << 32);
  for (const char* text : {"", "-", "1-", "-1-", "a-b", "5-1", "1-5x0", "1-5x", "1-5x-1", "1..5", "1-99999999999"}) {
    EXPECT_NE(faultOf(parseFrameRange, text), "") << text;
  }
  EXPECT_NE(faultOf(parseFrameRange, "1-9999999999").find("beyond the frame numbers"), std::string::npos);
}

TEST(Argument, FrameRatesGiveTheTimesOfFrames) {
  const auto expect_rate = [](const char* text, std::uint32_t scale, std::int32_t step) {
    const FrameRate rate = parseFrameRate("--fps", text);
    EXPECT_EQ(rate.scale, scale) << text;
    EXPECT_EQ(rate.step, step) << text;
  };
  expect_rate("25", 25, 1);
  expect_rate("12.5", 25, 2);
  expect_rate("23.976", 24000, 1001);
  expect_rate("29.97", 30000, 1001);
  expect_rate("30000/1001", 30000, 1001);
  for (const char* text : {"", "0", "-25", "nan", "25/0", "/", "1e9", "fast"}) {
    EXPECT_NE(faultOf(parseFrameRate, text), "") << text;
  }

  const host::FrameTime time = timeOf(100, {24000, 1001});
  EXPECT_EQ(time.time, 100100);
  EXPECT_EQ(time.step, 1001);
  EXPECT_EQ(time.scale, 24000u);
  EXPECT_THROW(timeOf(2145339, {24000, 1001}), CommandError);
  EXPECT_NO_THROW(timeOf(2145338, {24000, 1001}));
}

TEST(Argument, FramePatternsPlaceTheNumber) {
  const auto path = [](const char* text, int frame) { return FramePattern::parse("--output", text).path(frame); };
  EXPECT_EQ(path("a.%04d.png", 7), "a.0007.png");
  EXPECT_EQ(path("a.####.png", 7), "a.0007.png");
  EXPECT_EQ(path("a#.png", 123), "a123.png");
  EXPECT_EQ(path("a%d.png", -3), "a-3.png");
  EXPECT_EQ(path("a.%04d.png", -3), "a.-003.png");
  EXPECT_EQ(path("a.%09d.png", 7), "a.000000007.png");
  EXPECT_EQ(path("50%%.%03d", 1), "50%.001");
  EXPECT_EQ(path("still.png", 1), "still.png");
  EXPECT_EQ(FramePattern::literal("50%#.png").path(9), "50%#.png");
  for (const char* text : {"%s", "100%.png", "%04d.%04d", "##.##", "%", "%04", "%-4d", "%999d", "%04d#"}) {
    EXPECT_NE(faultOf(FramePattern::parse, text), "") << text;
  }
}

TEST(Argument, OutputFormatsFollowTheNameAndKeepTheDepthTheyCan) {
  const auto samples = [](const char* name, DepthChoice choice, SampleType source) {
    return outputSamples(formatForOutput("--option", name), choice, source);
  };
  using enum SampleType;
  EXPECT_EQ(samples("a.PNG", DepthChoice::Auto, Bits8), Bits8);
  EXPECT_EQ(samples("a.png", DepthChoice::Auto, Half), Bits16);
  EXPECT_EQ(samples("a.jpeg", DepthChoice::Float, Float), Bits8);
  EXPECT_EQ(samples("a.exr", DepthChoice::Auto, Bits8), Half);
  EXPECT_EQ(samples("a.exr", DepthChoice::Auto, Bits16), Float);  // half would round
  EXPECT_EQ(samples("a.exr", DepthChoice::Float, Half), Half);
  EXPECT_EQ(samples("a.tif", DepthChoice::Auto, Half), Float);
  EXPECT_EQ(samples("a.dpx", DepthChoice::Bits16, Bits8), Bits16);
  EXPECT_EQ(outputExtensions(), ".png, .jpg, .tif, .exr or .dpx");
  for (const char* name : {"a", "a.gif", ".png", "a.png.", "dir.png/a"}) {
    EXPECT_NE(faultOf(formatForOutput, name), "") << name;
  }
}

TEST(Argument, SuggestionsAreNearOrNone) {
  const std::vector<std::string> known{"--quality", "--depth", "--size"};
  EXPECT_EQ(nearestWord("--qualty", known), "--quality");
  EXPECT_EQ(nearestWord("--dept", known), "--depth");
  EXPECT_EQ(nearestWord("--wallpaper", known), std::nullopt);
}

TEST(Argument, FailedFramesAreListedAsRanges) {
  EXPECT_EQ(frameList({9, 3, 7, 8}), "3, 7-9");
  EXPECT_EQ(frameList({-1, 0}), "-1-0");
}

TEST(Argument, TextsFromOutsideAreSafeToShow) {
  EXPECT_EQ(escaped("plain, \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"), "plain, \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(escaped(std::string("a\0b\x1b[2J\n\x7f", 8)), "a\\x00b\\x1b[2J\\x0a");
  EXPECT_EQ(escaped("\xC2\x9B \x9B \xE2\x82"), "\\xc2\\x9b \\x9b \\xe2\\x82");
  EXPECT_EQ(badArgument("--ul", "'\x1b' is bad").text(), "--ul: '\\x1b' is bad");
}

}  // namespace
}  // namespace vantorel::cli
