#include "cli/commands/OptionTables.h"

#include "cli/base/NumberParsing.h"
#include "cli/base/SizeParsing.h"
#include "cli/commands/ColourOptionTable.h"
#include "cli/commands/OptionValues.h"
#include "cli/commands/TrackOptionTable.h"

namespace vantorel::cli {

namespace {

constexpr const char* kOptions = "Options";

template <Corner kCorner>
void setPageCorner(RectifyOptions& options, const std::string& name, const std::string& value) {
  const auto position = parseCorner(value);
  if (!position) {
    throw badArgument(name, position.error());
  }
  options.corners[kCorner] = *position;
}

// "W:H", the width over the height.
double parseAspect(const std::string& option, const std::string& text) {
  const std::size_t colon = text.find(':');
  const auto width = parseNumber(text.substr(0, colon));
  const auto height = colon == std::string::npos ? width : parseNumber(text.substr(colon + 1));
  constexpr double kLongest = 1000.0;
  const bool are_sides = colon != std::string::npos && width && height && *width > 0.0 && *height > 0.0;
  if (!are_sides || *width / *height > kLongest || *height / *width > kLongest) {
    throw badArgument(option, fmt::format("'{}' is not a proportion; give width and height, such as 16:9", text));
  }
  return *width / *height;
}

}  // namespace

const std::vector<OptionRow<InfoOptions>>& infoOptionTable() {
  static const std::vector<OptionRow<InfoOptions>> kTable{
      {"FILE", "FILE", kOptions, "A picture to describe: its size, channels and colours (default: the effect module)",
       [](InfoOptions& options, const std::string& name, const std::string& value) {
         options.file = parseFileName(name, value);
       }},
      ocioRow<InfoOptions>(kOptions),
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
  static const std::vector<OptionRow<CornersOptions>> kTable = withTrackOptions<CornersOptions>(
      {
          {"FILE", "FILE[,FILE...]", kOptions, "The track; four files for a point each; - is standard input",
           [](CornersOptions& o, Text name, Text value) { o.track.files = parseFileName(name, value); },
           "name the track to read: vantorel corners FILE"},
          {"-o,--output", "OUT[,OUT...]", kOptions,
           "Write the track here; four files get a corner each; - is standard output",
           [](CornersOptions& o, Text name, Text value) { o.output = parseFileName(name, value); }},
          {"--overwrite", "", kOptions, "Allow OUT or SVG to replace the track's own file",
           [](CornersOptions& o, Text, Text) { o.overwrite = true; }},
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
  return kTable;
}

const std::vector<OptionRow<RectifyOptions>>& rectifyOptionTable() {
  using Options = RectifyOptions;
  using Text = const std::string&;
  constexpr const char* kGiveAll = "give all four corners of the page, in pixels of the photo";
  static const std::vector<OptionRow<Options>> kTable = withColourOptions<Options>(
      {
          {"PHOTO", "FILE", kOptions, "The picture that shows the page; - is standard input",
           [](Options& o, Text name, Text value) { o.photo = parseFileName(name, value); },
           "name the photo: vantorel rectify PHOTO -o PAGE"},
          {"-o,--output", "PAGE", kOptions, "The picture to write: " + outputExtensions() + "; - is standard output",
           [](Options& o, Text name, Text value) { o.output = parseFileName(name, value); },
           "name the picture to write with -o PAGE"},
          {"--format", "NAME", kOptions, "The format to write (default: by the ending of PAGE)",
           [](Options& o, Text, Text value) { o.format = value; }},
          {"--overwrite", "", kOptions, "Allow PAGE to replace the photo",
           [](Options& o, Text, Text) { o.overwrite = true; }},
          {"--ul", "X,Y", kOptions, "Where the page's upper left corner is in the photo", setPageCorner<kUpperLeft>,
           kGiveAll},
          {"--ur", "X,Y", kOptions, "Where its upper right corner is", setPageCorner<kUpperRight>, kGiveAll},
          {"--ll", "X,Y", kOptions, "Where its lower left corner is", setPageCorner<kLowerLeft>, kGiveAll},
          {"--lr", "X,Y", kOptions, "Where its lower right corner is", setPageCorner<kLowerRight>, kGiveAll},
          {"--size", "WxH", kOptions, "The page's size in pixels (default: that of its longest edges in the photo)",
           [](Options& o, Text name, Text value) { o.size = parseSize(name, value); }},
          {"--aspect", "W:H", kOptions, "The page's proportions (default: estimated from the corners)",
           [](Options& o, Text name, Text value) { o.aspect = parseAspect(name, value); }},
          {"--enlarge", "bilinear|bicubic|lanczos", kOptions,
           "First enlarge the photo with this filter, if the page becomes more than twice as large",
           [](Options& o, Text name, Text value) { o.enlarge = parseEnlargeFilter(name, value); }},
          {"--linear", "", kOptions, "Filter in linear light", [](Options& o, Text, Text) { o.linear = true; }},
          {"--module", "FILE", kOptions, "The effect module (default: the one beside the command)",
           [](Options& o, Text name, Text value) { o.module = parseFileName(name, value); }},
      },
      "Colour (the layer is the photo)", false);
  return kTable;
}

const std::vector<OptionRow<TestCardOptions>>& testCardOptionTable() {
  static const std::vector<OptionRow<TestCardOptions>> kTable{
      {"-o,--output", "OUT", kOptions, "The picture to write: " + outputExtensions() + "; - is standard output",
       [](TestCardOptions& options, const std::string& name, const std::string& value) {
         options.output = parseFileName(name, value);
       },
       "name the picture to write with -o OUT"},
      {"--format", "NAME", kOptions, "The format to write (default: by the ending of OUT)",
       [](TestCardOptions& options, const std::string&, const std::string& value) { options.format = value; }},
      {"--size", "WxH", kOptions, "Its size in pixels (default: 1920x1080)",
       [](TestCardOptions& options, const std::string& name, const std::string& value) {
         options.size = parseSize(name, value);
       }},
  };
  return kTable;
}

}  // namespace vantorel::cli
