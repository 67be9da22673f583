// What is said of broken files of each format.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/tracks/Samples.h"

namespace vantorel::tracks {
namespace {

struct Broken {
  const char* text;
  const char* place;
  const char* matter;
};

void expectFaults(std::initializer_list<Broken> cases) {
  for (const Broken& broken : cases) {
    expectFault(broken.text, broken.place, broken.matter);
  }
}

TEST(Faults, PointFormatsNameLineAndField) {
  expectFaults({
      {"TrackName a\nFrame X Y Correlation\n1.00 2 three 1\n", "track: line 3: y", "'three' is not a number"},
      {"TrackName a\n1.00 2\n", "track: line 2", "too few fields (2)"},
      {"2\na\n0\n2\n1 2 3\n", "track: line 5", "is truncated; expected 2 rows of 'a', found 1"},
      {"1\na\nred\n1\n1 2 3\n", "track: line 1", "no known format begins with"},
      {"\"a\"\n1\n2\n1 2 3 0\n", "track: line 4", "is truncated"},
      {"\"a\"\n1\n1\n1 2\n", "track: line 4", "has 2 fields; expected 3 or more"},
      {"a 1 0.5 0.5 7\na 2 0.5 0.5\n", "track: line 2", "has 4 fields; expected 5"},
      {"# track_id view x y\na 0 1 2\na x 1 2\n", "track: line 3: frame", "'x' is not a number"},
      {"pointTrack \"a\" rgb( 1 2 3 ) {\n1 2 3 p+( 1 )\n2 4 }", "track: line 3: y", "'}' is not a number"},
      {"pointTrack \"a\" rgb( 1 2 3 )", "track: line 1: pointTrack", "is truncated"},
      {"# Size 1920 0 1.7\n# Name a\n", "track: line 1: Size", "is empty"},
      {"1\na\n1\n1 0.5 inf 1\n", "track: line 4: y", "not finite"},
      {"{\"points\": [{\"per_frame\": [\n{\"frame\": 1, \"pos\": [0]}]}]}", "track: line 2: pos", "not a position"},
      {"{\"points\": [{\"per_frame\": [\n{\"frame\": \"1\"}]}]}", "track: line 2: frame", "not a number"},
      {"0=1 2 3\n", "track: line 1", "has 3 numbers after '='"},
      {"1 2 3\n4 5 6\n\n1 2\n", "track: line 4", "too few fields"},
      {"1 2 3\n4 5 6\n1 7 8\n", "track: ", "has 1 point"},
      {"Channel a/ref/x\nKey 0\nValue 3\n", "track: line 3: Value", "before its key's Frame"},
      {"{\"points\": []}", "track: holds no keys", "export the track"},
      {"Channel a/ref/x\nValue 3\n", "track: line 1: a", "no keys for one of its coordinates"},
      {"# Name ul\n# Name ur\n0 1 2 3 0\n# Name ll\n0 1 4 5 0\n# Name lr\n0 1 6 7 0\n", "track: ul: ", "has no keys"},
      {"# Name tree\n0 1 2 3 0\n", "track: has 1 point ('tree')", "name four of them"},
      {"\"a\"\n1\n1\n1 2 3 0\n\"\n", "track: line 5: reads '\"'", "a point's name in quotes is expected"},
  });
}

TEST(Faults, NodesNameTheirPoint) {
  expectFaults({
      {"to1 {1 2}\nto2 {3 4}\nto3 {5 6}\n", "track: line 4: to4", "is missing"},
      {"to1 {{curve 1 2} {curve x1 3}}\n", "track: line 1: to1", "first frame"},
      {"to1 {{curve x1 2 s3} {curve x1 3}}\n", "track: line 1: to1", "reads 's3' in a curve; bake"},
      {"to1 {\n{width/2} 3}\n", "track: line 2: to1", "the expression 'width/2'"},
      {"to1 {{curve x1 2", "track: line 1: to1", "is truncated"},
      {"to1 {1 2 3}\n", "track: line 1: to1", "reads '3' where '}' is expected"},
      {"to1 {1 2} from1 {{frame} 0}", "track: line 1: from1", "reads 'frame'"},
      {"to1 {1 2} to2 {3 4} to3 {5 6} to4 {7 8}\nfrom1 {0 0}\n", "track: line 3: from1", "is incomplete"},
      {"to1 {{curve x1 1 x1 2} {curve x1 3}}\n", "track: line 1: to1", "two keys on frame 1"},
  });
}

std::string jsonKey(const std::string& frame, const std::string& ul) {
  return R"({"frame": )" + frame + R"(, "ul": )" + ul + R"(, "ur": [10, 0], "ll": [0, 10], "lr": [10, 10]})";
}

TEST(Faults, JsonNamesLineAndField) {
  const auto keys = [](const std::string& text) { return "{\"keys\": [\n" + text + "\n]}"; };
  expectFault("{\"keys\": [\n\n}", "track: line 3", "not valid JSON");
  expectFault("{\"keys\": [NaN]}", "track: line 1: keys[0]", "not a keyframe");
  expectFault("[]", "track: line 1", "not an object");
  expectFault("{\"$schema\": " + std::string(100000, '[') + std::string(100000, ']') + "}", "track: line 1",
              "not valid");
  expectFault("{}", "track: ", "has no \"keys\"");
  expectFault("{\n\"keys\": []}", "track: line 2: keys", "at least one");
  expectFault("{\n\n\"units\": \"feet\", \"keys\": []}", "track: line 3: units", "not one of");
  expectFault("{\"keys\": [" + jsonKey("1", "[0, 0]") + "],\n\"speed\": 3}", "track: line 2: speed", "unknown");
  expectFault("{\"units\": \"px\",\n\"units\": \"px\"}", "track: line 2: units", "appears twice");
  expectFault(keys(jsonKey("1", "[0, 0], \"ul\": [1, 1]")), "track: line 2: keys[0].ul", "appears twice");
  expectFault(keys(jsonKey("1", "[0, 0], \"\\u0075l\": [1, 1]")), "track: line 2: keys[0].ul", "appears twice");
  expectFault(keys(jsonKey("1", "[0, 0]") + ",\n" + jsonKey("1", "[0, 0]")), "track: line 3: frame", "line 2 already");
  expectFault(keys(jsonKey("1", "[0,\n\"x\"]")), "track: line 3: keys[0].ul[1]", "not a number");
  expectFault(keys(jsonKey("1", "[0,\n70000\n]")), "track: line 2: frame 1: ", "70000 pixels is outside");
  expectFault(keys(jsonKey("1", "[0]")), "track: line 2: keys[0].ul", "not a position");
  expectFault(keys("{\"frame\": 1}"), "track: line 2: keys[0]", "has no \"ul\"");
  expectFault(keys(jsonKey("1e999", "[0, 0]")), "track: line 2: keys[0].frame", "too large");
  expectFault(keys(jsonKey("01", "[0, 0]")), "track: line 2", "not valid JSON");
  expectFault(keys(jsonKey("1", "[0, 0]")) + "]", "track: line 3", "not valid JSON");
  EXPECT_TRUE(readText(keys(jsonKey("0e1", "[0, 0]"))));
  const auto from = [&](const std::string& source) {
    return fmt::format("{{\"from\":\n{},\n\"keys\": [{}]}}", source, jsonKey("1", "[0, 0]"));
  };
  expectFault(from("3"), "track: line 2: from", "is not a quadrilateral");
  expectFault(from("[]"), "track: line 2: from", "at least one");
  expectFault(from(jsonKey("1", "[0, 0]")), "track: line 2: from.frame", "is unknown");
  expectFault(from("{\"ul\": [0, 0]}"), "track: line 2: from", "has no \"ur\"");
  expectFault(from(fmt::format("[{}]", jsonKey("7", "[20, 20]"))), "track: line 2: from",
              "does not form a convex quadrilateral");
  expectFault(from(fmt::format("[{}, {}]", jsonKey("7", "[0, 0]"), jsonKey("8", "[0, 1e6]"))),
              "track: line 2: from: frame 8: ul", "1000000 pixels is outside");
}

TEST(Faults, LongTextsAndControlCharactersAreShownShort) {
  const std::string fault = faultText(readText("1,2,3,4,5,6,7,8," + std::string(1000, 'x') + "\x1b[0m\n"));
  EXPECT_LT(fault.size(), 150u) << fault;
  EXPECT_EQ(faultText(readText("1,2,3,4,5,6,7,8,\x1b[0m\n")).find('\x1b'), std::string::npos);
}

TEST(Faults, StreamsAreReadWhole) {
  std::istringstream stream(std::string(1000000, 'x'));
  EXPECT_EQ(readStream(stream, "-")->size(), 1000000u);
}

}  // namespace
}  // namespace vantorel::tracks
