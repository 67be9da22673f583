#include "cli/commands/OptionTables.h"

#include "cli/base/SizeParsing.h"
#include "cli/commands/OptionValues.h"
#include "cli/commands/TrackOptionTable.h"

namespace vantorel::cli {

namespace {

constexpr const char* kOptions = "Options";

}  // namespace

const std::vector<OptionRow<InfoOptions>>& infoOptionTable() {
  static const std::vector<OptionRow<InfoOptions>> kTable{
      {"--module", "FILE", kOptions, "The effect module (default: the one beside the command)",
       [](InfoOptions& options, const std::string& name, const std::string& value) {
         options.module = parseFileName(name, value);
       }},
      {"--json", "", kOptions, "Print one JSON object",
       [](InfoOptions& options, const std::string&, const std::string&) { options.json = true; }},
  };
  return kTable;
}

const std::vector<OptionRow<CornersOptions>>& cornersOptionTable() {
  using Text = const std::string&;
  static const std::vector<OptionRow<CornersOptions>> table = withTrackOptions<CornersOptions>(
      {
          {"FILE", "FILE[,FILE...]", kOptions, "The track; four files for a point each; - is standard input",
           [](CornersOptions& o, Text name, Text value) { o.track.files = parseFileName(name, value); },
           "name the track to read: vantorel corners FILE"},
          {"-o,--output", "OUT[,OUT...]", kOptions, "Write the track here; four files get a corner each",
           [](CornersOptions& o, Text name, Text value) { o.output = parseFileName(name, value); }},
          {"--format", "NAME", kOptions, "The format to write (default: by the ending of OUT)",
           [](CornersOptions& o, Text, Text value) { o.format = value; }},
          {"--size", "WxH", kOptions, "The picture's size (default: that of --corners-size)",
           [](CornersOptions& o, Text name, Text value) { o.size = parseSize(name, value); }},
          {"--plot", "SVG", kOptions, "Draw the paths and the speed of each corner into this file",
           [](CornersOptions& o, Text name, Text value) { o.plot = parseFileName(name, value); }},
          {"--fps", "RATE", kOptions, "Frames per second, for formats with clock times (default: 24)",
           [](CornersOptions& o, Text name, Text value) { o.rate = parseFrameRate(name, value); }},
      },
      "What the file means (default: what its format says)");
  return table;
}

const std::vector<OptionRow<TestCardOptions>>& testCardOptionTable() {
  static const std::vector<OptionRow<TestCardOptions>> kTable{
      {"-o,--output", "OUT", kOptions, "The picture to write: " + outputExtensions(),
       [](TestCardOptions& options, const std::string& name, const std::string& value) {
         options.output = parseFileName(name, value);
       },
       "name the picture to write with -o OUT"},
      {"--size", "WxH", kOptions, "Its size in pixels (default: 1920x1080)",
       [](TestCardOptions& options, const std::string& name, const std::string& value) {
         options.size = parseSize(name, value);
       }},
  };
  return kTable;
}

}  // namespace vantorel::cli
