#include <fmt/format.h>

#include "cli/base/NumberParsing.h"
#include "cli/base/SizeParsing.h"
#include "cli/commands/OptionTables.h"
#include "cli/commands/OptionValues.h"
#include "cli/commands/TrackOptionTable.h"

namespace vantorel::cli {

namespace {

constexpr const char* kFiles = "Files";
constexpr const char* kPlacing = "Placing (positions in layer pixels, 640,12.5, or percent of the layer, 10%,90%)";
constexpr const char* kRendering = "Rendering";
constexpr const char* kSequences = "Sequences";
constexpr const char* kReporting = "Reporting";

template <Corner corner>
void setCorner(RenderOptions& options, const std::string& name, const std::string& value) {
  const auto position = parseCorner(value);
  if (!position) {
    throw badArgument(name, position.error());
  }
  options.corners[corner] = *position;
}

}  // namespace

const std::vector<OptionRow<RenderOptions>>& renderOptionTable() {
  using Options = RenderOptions;
  using Text = const std::string&;
  static const std::vector<OptionRow<Options>> table = withTrackOptions<Options>(
      {
          {"LAYER", "FILE", kFiles, "The picture to stretch, or a sequence of them",
           [](Options& o, Text name, Text value) { o.layer = parseFileName(name, value); },
           "name the picture to render: vantorel render LAYER -o OUT"},
          {"-o,--output", "OUT", kFiles, "The picture to write: " + outputExtensions(),
           [](Options& o, Text name, Text value) { o.output = parseFileName(name, value); },
           "name the picture to write with -o OUT"},
          {"--overwrite", "", kFiles, "Replace the layer, the plate or the corner file where OUT is one of them",
           [](Options& o, Text, Text) { o.overwrite = true; }},

          {"--ul", "X,Y", kPlacing, "Where the layer's upper left corner goes (default: where it is)",
           setCorner<kUpperLeft>},
          {"--ur", "X,Y", kPlacing, "Where the layer's upper right corner goes (default: where it is)",
           setCorner<kUpperRight>},
          {"--ll", "X,Y", kPlacing, "Where the layer's lower left corner goes (default: where it is)",
           setCorner<kLowerLeft>},
          {"--lr", "X,Y", kPlacing, "Where the layer's lower right corner goes (default: where it is)",
           setCorner<kLowerRight>},
          {"--corners", "FILE[,FILE...]", kPlacing,
           "The corners, or keyframes for them, from a tracker's file, or from four of a point each; - is standard "
           "input",
           [](Options& o, Text name, Text value) { o.track.files = parseFileName(name, value); }},
          {"--size", "WxH", kPlacing, "The output picture's size (default: the plate's, else the layer's)",
           [](Options& o, Text name, Text value) { o.size = parseSize(name, value); }},
          {"--fit", "", kPlacing, "Instead, the size that the effect asks for: the corners' bounding box",
           [](Options& o, Text, Text) { o.fit = true; }},
          {"--over", "PLATE", kPlacing, "Composite the result over this picture or sequence",
           [](Options& o, Text name, Text value) { o.plate = parseFileName(name, value); }},

          {"--quality", "high|standard", kRendering, "high (default) filters by area, standard is fast",
           [](Options& o, Text name, Text value) {
             o.quality = parseChoice<host::Quality>(
                 name, value, {{"high", host::Quality::High}, {"standard", host::Quality::Standard}});
           }},
          {"--depth", "auto|8|16|float", kRendering, "auto (default, the files' own), 8, 16 or float bits per channel",
           [](Options& o, Text name, Text value) {
             o.depth = parseChoice<DepthChoice>(name, value,
                                                {{"auto", DepthChoice::Auto},
                                                 {"8", DepthChoice::Bits8},
                                                 {"16", DepthChoice::Bits16},
                                                 {"float", DepthChoice::Float}});
           }},
          {"--protocol", "smart|plain", kRendering, "How to speak to the effect: smart (default) or plain",
           [](Options& o, Text name, Text value) {
             o.protocol = parseChoice<host::Protocol>(
                 name, value, {{"smart", host::Protocol::Smart}, {"plain", host::Protocol::Plain}});
           }},
          {"--downsample", "N", kRendering, "Render at 1/N of the resolution",
           [](Options& o, Text name, Text value) { o.downsample = parseIntInRange(name, value, 1, kMaxDownsample); }},
          {"--linear", "", kRendering, "Filter and composite in linear light, by the files' colour spaces",
           [](Options& o, Text, Text) { o.linear = true; }},
          {"--threads", "N", kRendering, "Use at most N threads for everything (default: all cores)",
           [](Options& o, Text name, Text value) {
             o.threads = static_cast<unsigned>(parseIntInRange(name, value, 1, kMaxThreads));
           }},
          {"--module", "FILE", kRendering, "The effect module (default: the one beside the command)",
           [](Options& o, Text name, Text value) { o.module = parseFileName(name, value); }},

          {"--frames", "A-B[xS]", kSequences,
           "A sequence, every S-th frame of it; %04d or #### in LAYER, OUT and PLATE stands for the frame",
           [](Options& o, Text name, Text value) { o.frames = parseFrameRange(name, value); }},
          {"--fps", "RATE", kSequences, "Frames per second, such as 25, 23.976 or 24000/1001 (default: 24)",
           [](Options& o, Text name, Text value) { o.rate = parseFrameRate(name, value); }},
          {"--resume", "", kSequences, "Skip frames whose output is whole and newer than its inputs",
           [](Options& o, Text, Text) { o.resume = true; }},
          {"--keep-going", "", kSequences, "Go on after a frame that fails, list those at the end and exit with 1",
           [](Options& o, Text, Text) { o.keep_going = true; }},

          {"--progress", "", kReporting, "Show progress (default: when standard error is a terminal)",
           [](Options& o, Text, Text) { o.progress = true; }},
          {"--no-progress", "", kReporting, "Show none", [](Options& o, Text, Text) { o.progress = false; }},
          {"--json", "", kReporting, "Print a line of JSON on standard output for every finished frame",
           [](Options& o, Text, Text) { o.json = true; }},
      },
      "Files of corners (default: what their format says)");
  return table;
}

}  // namespace vantorel::cli
