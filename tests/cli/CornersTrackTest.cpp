// Keyframes from files, and what is said of broken ones.
#include "cli/corners/CornersTrack.h"

#include <gtest/gtest.h>

#include "cli/base/CommandError.h"

namespace vantorel::cli {
namespace {

constexpr const char* kHeader = "frame,ulx,uly,urx,ury,llx,lly,lrx,lry\n";

template <typename Parse>
std::string faultOf(const Parse& parse, const std::string& text) try {
  parse(text, "track");
  return "no fault";
} catch (const CommandError& error) {
  EXPECT_EQ(error.code(), ExitCode::FileFailed) << error.text();
  return error.text();
}

void expectFault(const std::string& fault, const std::string& place, const std::string& matter) {
  EXPECT_EQ(fault.rfind(place, 0), 0u) << fault;
  EXPECT_NE(fault.find(matter), std::string::npos) << fault;
}

std::string jsonKey(const std::string& frame, const std::string& ul) {
  return R"({"frame": )" + frame + R"(, "ul": )" + ul + R"(, "ur": [10, 0], "ll": [0, 10], "lr": [10, 10]})";
}

TEST(CornersTrack, CsvTakesHeadersCommentsSubFramesAndPercent) {
  const CornersTrack track = parseCornersCsv(
      "# tracked\r\n\r\n" + std::string(kHeader) + "1, 0,1,2,3,4,5,6,7 # first\r\n2.5,10%,1,2,3,4,5,6,7", "track");
  ASSERT_EQ(track.keys.size(), 2u);
  EXPECT_EQ(track.keys[0].corners[kLowerRight].y.value, 7.0);
  EXPECT_EQ(track.keys[1].frame, 2.5);
  EXPECT_TRUE(track.keys[1].corners[kUpperLeft].x.percent);

  // Columns in an order of their own, with one that is not needed.
  const CornersTrack swapped =
      parseCornersCsv("note,lry,lrx,lly,llx,ury,urx,uly,ulx,frame\nx,7,6,5,4,3,2,1,0,1\n", "track");
  EXPECT_EQ(swapped.keys.at(0).corners[kLowerRight].y.value, 7.0);
  EXPECT_EQ(swapped.keys.at(0).corners[kUpperLeft].x.value, 0.0);
  EXPECT_EQ(parseCornersCsv("1,0,1,2,3,4,5,6,7\n", "track").keys.size(), 1u);
}

TEST(CornersTrack, CsvFaultsNameLineAndField) {
  const auto fault = [](const std::string& lines) { return faultOf(parseCornersCsv, lines); };
  const std::string good = "1,0,1,2,3,4,5,6,7\n";
  expectFault(fault("frame,ulx,uly,urx,ury,llx,lly,lrx\n"), "track: line 1", "'lry' is missing");
  expectFault(fault("frame,ulx,ulx,uly,urx,ury,llx,lly,lrx,lry\n"), "track: line 1", "'ulx' stands twice");
  expectFault(fault(kHeader + good + "2,0,1,2,3,4,5,6\n"), "track: line 3", "8 fields instead of 9");
  expectFault(fault(good + "2,0,1,two,3,4,5,6,7\n"), "track: line 2: urx", "'two' is not a number");
  expectFault(fault(good + "2,0,1,2,3,4,5,6,nan\n"), "track: line 2: lry", "not finite");
  expectFault(fault(good + "2,0,1,2,3,4,99999,6,7\n"), "track: line 2: lly", "outside");
  expectFault(fault(good + "2,,1,2,3,4,5,6,7\n"), "track: line 2: ulx", "is empty");
  expectFault(fault("# note\n" + good + "1.0,0,1,2,3,4,5,6,7\n"), "track: line 3: frame", "line 2 already");
  expectFault(fault("inf,0,1,2,3,4,5,6,7\n"), "track: line 1: frame", "not finite");
  expectFault(fault("1\n"), "track: line 1", "has 1 field instead");
  expectFault(fault("# nothing\n"), "track", "no keys");
  expectFault(fault(""), "track", "no keys");
}

TEST(CornersTrack, JsonTakesUnitsAndInterpolation) {
  const CornersTrack track = parseCornersJson(
      R"({"units": "percent", "interpolation": "hold", "keys": [)" + jsonKey("1.5", "[50, 25]") + "]}", "track");
  EXPECT_EQ(track.interpolation, host::Interpolation::Hold);
  const host::AnimatedCorners corners = toAnimation(track, {200, 100}, {24, 1});
  EXPECT_EQ(corners.upper_left.at(0.0), (host::Point{100.0, 25.0}));
}

TEST(CornersTrack, JsonFaultsNameLineAndField) {
  const auto fault = [](const std::string& text) { return faultOf(parseCornersJson, text); };
  const auto fault_of_keys = [&](const std::string& keys) { return fault("{\"keys\": [\n" + keys + "\n]}"); };
  expectFault(fault("{\"keys\": [\n\n}"), "track: line 3", "not valid JSON");
  expectFault(fault("{\"keys\": [NaN]}"), "track: line 1", "not valid JSON");
  expectFault(fault("[]"), "track: line 1", "not an object");
  expectFault(fault(std::string(100000, '[') + std::string(100000, ']')), "track: line 1", "not an object");
  expectFault(fault("{}"), "track", "has no \"keys\"");
  expectFault(fault("{\n\"keys\": []}"), "track: line 2: keys", "at least one");
  expectFault(fault("{\n\n\"units\": \"feet\", \"keys\": []}"), "track: line 3: units", "neither");
  expectFault(fault("{\"keys\": [],\n\"speed\": 3}"), "track: line 2: speed", "unknown");
  expectFault(fault_of_keys(jsonKey("1", "[0, 0]") + ",\n" + jsonKey("1", "[0, 0]")), "track: line 3: keys[1].frame",
              "same frame as keys[0]");
  expectFault(fault_of_keys(jsonKey("1", "[0,\n\"x\"]")), "track: line 3: keys[0].ul[1]", "not a number");
  expectFault(fault_of_keys(jsonKey("1", "[0,\n70000\n]")), "track: line 3: keys[0].ul[1]", "outside");
  expectFault(fault_of_keys(jsonKey("1", "[0]")), "track: line 2: keys[0].ul", "not a position");
  expectFault(fault_of_keys("{\"frame\": 1}"), "track: line 2: keys[0]", "has no \"ul\"");
  expectFault(fault("{\"keys\": [],\n\"keys\": [1]}"), "track: line 2: keys", "stands twice");
  expectFault(fault_of_keys("{\"frame\": 1,\n\"frame\": 2}"), "track: line 3: keys[0].frame", "stands twice");
  expectFault(fault_of_keys(jsonKey("1e999", "[0, 0]")), "track", "");
}

TEST(CornersTrack, KeysAreHeldOutsideAndReachedExactly) {
  const CornersTrack track = parseCornersCsv("10,0,0,9,0,0,9,9,9\n20,5,10,9,0,0,9,9,9\n", "track");
  const FrameRate rate{24000, 1001};
  const host::AnimatedPoint point = toAnimation(track, {100, 100}, rate).upper_left;
  EXPECT_EQ(point.at(rate.seconds(1)), (host::Point{0.0, 0.0}));
  EXPECT_EQ(point.at(rate.seconds(20)), (host::Point{5.0, 10.0}));
  EXPECT_EQ(point.at(rate.seconds(99)), (host::Point{5.0, 10.0}));
  EXPECT_NEAR(point.at(rate.seconds(15)).y, 5.0, 1e-9);
  // What only the layer's size puts out of range is the file's fault as well.
  const auto animate = [&](const std::string& text, const std::string& name) {
    toAnimation(parseCornersCsv(text, name), {1920, 1080}, rate);
  };
  expectFault(faultOf(animate, "3,2000%,0,9,0,0,9,9,9\n"), "track: frame 3: ul: 38400 pixels", "outside");
}

}  // namespace
}  // namespace vantorel::cli
