// Tables as spreadsheets, scripts and people write them.
#include <gtest/gtest.h>

#include "tests/tracks/Samples.h"

namespace vantorel::tracks {
namespace {

constexpr const char* kHeader = "frame,ulx,uly,urx,ury,llx,lly,lrx,lry\n";
constexpr const char* kRow = "1,10,11,20,21,30,31,40,41\n";

void expectRow(const std::string& text) {
  SCOPED_TRACE(text);
  const auto read = readText(text);
  ASSERT_TRUE(read) << faultText(read);
  EXPECT_EQ(read->format->name, "csv");
  EXPECT_EQ(read->track.keys.at(0).points, (Quadrilateral{{{10, 11}, {20, 21}, {30.5, 31}, {40, 41}}}));
}

TEST(Csv, TakesAnySeparatorHeaderAndOrder) {
  expectRow("1,10,11,20,21,30.5,31,40,41");
  expectRow("1;10;11;20;21;30,5;31;40;41\r\n");
  expectRow("1\t10\t11\t20\t21\t30,5\t31\t40\t41\r");
  expectRow("  1   10 11 20 21 30.5 31 40 41  \n");
  expectRow("1, 10, 11, 20, 21, 30.5, 31, 40, 41 # note");
  expectRow("\"1\",\"10\",\"11\",20,21,\"30.5\",31,40,41\n");
  expectRow("\xEF\xBB\xBF# by hand\n\n" + std::string(kHeader) + "1,10,11,20,21,30.5,31,40,41\n");
  expectRow("# frame,ulx,uly,urx,ury,llx,lly,lrx,lry\n1,10,11,20,21,30.5,31,40,41\n");
  expectRow("note,LRY,LRX,LLY,LLX,URY,URX,ULY,ULX,Frame\nx,41,40,31,30.5,21,20,11,10,1\n");
  expectRow(
      "Frame No.;Top Left X;Top Left Y;TRx;TRy;bl_x;bl_y;lower_right.x;lower_right.y\n1;10;11;20;21;30,5;31;40;41\n");
  expectRow("frame x1 y1 x2 y2 x3 y3 x4 y4\n1 10 11 20 21 30.5 31 40 41\n");
  expectRow("frame\tp0_x\tp0_y\tp1_x\tp1_y\tp2_x\tp2_y\tp3_x\tp3_y\n1\t10\t11\t20\t21\t30.5\t31\t40\t41\n");
}

TEST(Csv, TakesPercentFramesBetweenFramesAndMissingCorners) {
  const std::string text =
      std::string(kHeader) + "1,10%,50%,20,21,30,31,40,41\n2.5,,,21,22,31,32,41,42\n3,30,540,20,21,30,31,40,41\n";
  ResolveOptions options;
  options.sizes = {{1920, 1080}, {200, 100}};  // percent are of the layer
  options.order = kAsWritten;
  const auto resolved = resolveText(text, options);
  ASSERT_TRUE(resolved) << faultText(resolved);
  EXPECT_EQ(resolved->track.keys[0].points[kUpperLeft], (Point{20.0, 50.0}));
  EXPECT_EQ(resolved->track.keys[1].frame, 2.5);
  EXPECT_EQ(resolved->track.keys[1].points[kUpperLeft], (Point{27.5, 417.5}));
  EXPECT_EQ(resolved->track.keys[1].points[kUpperRight], (Point{21.0, 22.0}));
}

TEST(Csv, FaultsNameLineFieldAndWhatWasRead) {
  const std::string table = std::string(kHeader) + kRow;
  expectFault("frame,ulx,uly,urx,ury,llx,lly,lrx\n1,2,3,4,5,6,7,8\n", "track: line 1", "'lry' is missing");
  expectFault("frame,ulx,ulx,uly,urx,ury,llx,lly,lrx,lry\n", "track: line 1", "'ulx' appears twice");
  expectFault("frame,TLx,ulx,uly,urx,ury,llx,lly,lrx,lry\n", "track: line 1", "'ulx' appears twice");
  expectFault(table + "2,0,1,2,3,4,5,6\n", "track: line 3", "8 fields instead of 9");
  expectFault("frame;ulx;uly;urx;ury;llx;lly;lrx;lry\n1;2;3;4;5;6;7;8\n", "track: line 2", "8 fields instead of 9");
  expectFault(table + "2,0,1,two,3,4,5,6,7\n", "track: line 3: urx", "'two' is not a number; expected");
  expectFault(table + "2,0,1,2,3,4,5,6,nan\n", "track: line 3: lry", "not finite");
  expectFault(table + "2,0,1,2,3,4,5,6,1e999\n", "track: line 3: lry", "too large");
  expectFault(table + "2,0,1,2,3,4,5,6,1e30\n", "track: line 3: lry", "far outside");
  expectFault(table + "2,,1,2,3,4,5,6,7\n", "track: line 3: ulx", "is empty");
  expectFault(table + "2.25,0,1,2,3,4,99999,6,7\n", "track: line 3: frame 2.25: ll", "outside -32768");
  expectFault("# note\n" + std::string(kRow) + "1.0,0,1,2,3,4,5,6,7\n", "track: line 3: frame", "line 2 already");
  expectFault("inf,0,1,2,3,4,5,6,7\n", "track: line 1: frame", "not finite");
  expectFault("# nothing\n", "track: ", "no keys");
  expectFault("", "track: ", "no keys");
  expectFault(kHeader, "track: ", "no keys");
  expectFault("Dear Sir or Madam\n", "track: line 1", "no known format begins with");
}

}  // namespace
}  // namespace vantorel::tracks
