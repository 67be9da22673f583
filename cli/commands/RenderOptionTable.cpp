#include <fmt/format.h>

#include "cli/base/NumberParsing.h"
#include "cli/base/SizeParsing.h"
#include "cli/commands/ColourOptionTable.h"
#include "cli/commands/OptionTables.h"
#include "cli/commands/OptionValues.h"
#include "cli/commands/TrackOptionTable.h"

namespace vantorel::cli {

namespace {

constexpr const char* kFiles = "Files";
constexpr const char* kPlacing = "Placing (positions in layer pixels, 640,12.5, or percent of the layer, 10%,90%)";
constexpr const char* kCompositing = "Layer and compositing";
constexpr const char* kMotionBlur = "Motion blur";
constexpr const char* kRendering = "Rendering";
constexpr const char* kColour = "Colour";
constexpr const char* kSequences = "Sequences";
constexpr const char* kReporting = "Reporting";

constexpr double kMaxFeather = 32768.0;
constexpr double kMaxShutter = 720.0;  // degrees; 360 is a frame
constexpr int kMaxShutterSamples = 1024;

constexpr PictureUse kLeaves = PictureUse::LeavesPicture;

template <OptionalCorners RenderOptions::*Corners, Corner Which>
void setPosition(RenderOptions& options, const std::string& name, const std::string& value) {
  const auto position = parseCorner(value);
  if (!position) {
    throw badArgument(name, position.error());
  }
  (options.*Corners)[Which] = *position;
}

template <Corner Which>
constexpr auto kSetCorner = setPosition<&RenderOptions::corners, Which>;
template <Corner Which>
constexpr auto kSetSourceCorner = setPosition<&RenderOptions::source, Which>;

template <std::optional<std::int32_t> RenderOptions::*Number>
void setNumber(RenderOptions& options, const std::string& name, const std::string& value) {
  const auto number = parseInt(value);
  if (!number) {
    throw badArgument(name, fmt::format("'{}' is not a frame number; give a whole number", value));
  }
  options.*Number = *number;
}

}  // namespace

const std::vector<OptionRow<RenderOptions>>& renderOptionTable() {
  using Options = RenderOptions;
  using Text = const std::string&;
  static const std::vector<OptionRow<Options>> kTable = withTrackOptions<Options>(
      {
          {"LAYER", "FILE", kFiles, "The picture to stretch, or a sequence of them; - is standard input, for PLATE too",
           [](Options& o, Text name, Text value) { o.layer = parseFileName(name, value); },
           "name the picture to render: vantorel render LAYER -o OUT", kLeaves},
          {"-o,--output", "OUT", kFiles, "The picture to write: " + outputExtensions() + "; - is standard output",
           [](Options& o, Text name, Text value) { o.output = parseFileName(name, value); },
           "name the picture to write with -o OUT", kLeaves},
          {"--format", "NAME", kFiles, "The format to write (default: by the ending of OUT)",
           [](Options& o, Text, Text value) { o.format = value; }},
          {"--part", "PART", kFiles,
           "Part of the plate's file, or without a plate of the layer's, by name or number (default: the first)",
           [](Options& o, Text name, Text value) { o.selection.part = parseFileName(name, value); }},
          {"--layer-name", "NAME", kFiles,
           "The channels NAME.R, NAME.G and so on of that file (default: those named only R, G, B, A)",
           [](Options& o, Text name, Text value) { o.selection.layer = parseFileName(name, value); }},
          {"--compression", "NAME[:LEVEL]", kFiles,
           "Compression of OpenEXR and TIFF: none, zip:4, piz, dwaa:45 and so on (default: OpenEXR like the plate)",
           [](Options& o, Text name, Text value) { o.encoding.compression = parseCompression(name, value); }},
          {"--jpeg-quality", "N", kFiles, "1 to 100 (default: 98)",
           [](Options& o, Text name, Text value) { o.encoding.jpeg_quality = parseIntInRange(name, value, 1, 100); }},
          {"--png-level", "N", kFiles, "Compression level of PNG, 0 to 9 (default: 1, fast)",
           [](Options& o, Text name, Text value) { o.encoding.png_level = parseIntInRange(name, value, 0, 9); }},
          {"--overwrite", "", kFiles, "Allow OUT to replace the layer, the plate, the matte or the corners file",
           [](Options& o, Text, Text) { o.overwrite = true; }, nullptr, kLeaves},

          {"--ul", "X,Y", kPlacing, "Where the layer's upper left corner goes (default: where it is)",
           kSetCorner<kUpperLeft>},
          {"--ur", "X,Y", kPlacing, "Where the layer's upper right corner goes (default: where it is)",
           kSetCorner<kUpperRight>},
          {"--ll", "X,Y", kPlacing, "Where the layer's lower left corner goes (default: where it is)",
           kSetCorner<kLowerLeft>},
          {"--lr", "X,Y", kPlacing, "Where the layer's lower right corner goes (default: where it is)",
           kSetCorner<kLowerRight>},
          {"--from-ul", "X,Y", kPlacing,
           "The point of the layer that is drawn at the upper left corner (default: its own corner)",
           kSetSourceCorner<kUpperLeft>},
          {"--from-ur", "X,Y", kPlacing, "The same for the upper right corner", kSetSourceCorner<kUpperRight>},
          {"--from-ll", "X,Y", kPlacing, "The same for the lower left corner", kSetSourceCorner<kLowerLeft>},
          {"--from-lr", "X,Y", kPlacing, "The same for the lower right corner", kSetSourceCorner<kLowerRight>},
          {"--corners", "FILE[,FILE...]", kPlacing,
           "The corners, or keyframes for them, from a tracker's file, or from four of a point each; - is standard "
           "input",
           [](Options& o, Text name, Text value) { o.track.files = parseFileName(name, value); }},
          {"--size", "WxH", kPlacing, "The output picture's size (default: the plate's, else the layer's)",
           [](Options& o, Text name, Text value) { o.size = parseSize(name, value); }},
          {"--fit", "", kPlacing, "Instead, the size that the effect requests: the corners' bounding box",
           [](Options& o, Text, Text) { o.fit = true; }},
          {"--over", "PLATE", kPlacing, "Composite the result over this picture or sequence",
           [](Options& o, Text name, Text value) { o.plate = parseFileName(name, value); }},

          {"--crop", "L,T,R,B", kCompositing,
           "First crop the layer by these numbers of pixels, or percent, on each side",
           [](Options& o, Text name, Text value) { o.crop = parseCrop(name, value); }},
          {"--alpha,--alpha-layer", "straight|premultiplied|ignore", kCompositing,
           "How to read the layer's alpha (default: as its file says): its colours are straight, still to be "
           "multiplied "
           "by it, or premultiplied, multiplied already; ignore: the layer is opaque",
           [](Options& o, Text name, Text value) {
             o.alpha = parseChoice<AlphaReading>(name, value,
                                                 {{"straight", AlphaReading::Straight},
                                                  {"premultiplied", AlphaReading::Premultiplied},
                                                  {"ignore", AlphaReading::Ignored}});
           }},
          {"--opacity", "P", kCompositing, "How opaque the layer is, 0 to 1 or percent (default: 1)",
           [](Options& o, Text name, Text value) { o.opacity = parseShare(name, value); }},
          {"--matte", "PICTURE", kCompositing,
           "What is in front: a grey or alpha picture, or a sequence, that hides the layer where it is white",
           [](Options& o, Text name, Text value) { o.matte = parseFileName(name, value); }},
          {"--feather", "PIXELS", kCompositing,
           "Fade the layer's edges over this many output pixels inside its outline",
           [](Options& o, Text name, Text value) { o.feather = parseNumberInRange(name, value, 0.0, kMaxFeather); }},
          {"--enlarge", "bilinear|bicubic|lanczos", kCompositing,
           "First enlarge the layer with this filter, if it becomes more than twice as large",
           [](Options& o, Text name, Text value) { o.enlarge = parseEnlargeFilter(name, value); }},

          {"--shutter", "DEGREES", kMotionBlur,
           "Motion blur: how long the shutter is open; 180 is half a frame (0: off)",
           [](Options& o, Text name, Text value) {
             o.shutter.degrees = parseNumberInRange(name, value, 0.0, kMaxShutter);
           }},
          {"--shutter-offset", "DEGREES", kMotionBlur,
           "When it opens, after the frame's time (default: centred on the frame)",
           [](Options& o, Text name, Text value) {
             o.shutter.offset = parseNumberInRange(name, value, -kMaxShutter, kMaxShutter);
           }},
          {"--shutter-samples", "N", kMotionBlur, "Draw at most N moments, as many as the motion needs (default: 64)",
           [](Options& o, Text name, Text value) {
             o.shutter.max_samples = parseIntInRange(name, value, 1, kMaxShutterSamples);
           }},

          {"--quality", "best|high|standard", kRendering,
           "best (default) takes as many samples as the picture needs and has crisp edges, high is the effect's own "
           "area filtering, standard is fast",
           [](Options& o, Text name, Text value) {
             o.quality = parseChoice<host::Quality>(
                 name, value,
                 {{"best", host::Quality::Best}, {"high", host::Quality::High}, {"standard", host::Quality::Standard}});
           }},
          {"--samples", "auto|1|2|4|8", kRendering,
           "Samples per pixel along each axis (default: auto at best, 1 at the other qualities)",
           [](Options& o, Text name, Text value) {
             o.samples = parseChoice<int>(name, value, {{"auto", 0}, {"1", 1}, {"2", 2}, {"4", 4}, {"8", 8}});
           }},
          {"--edges", "crisp|soft", kRendering,
           "crisp (default at best): edge pixels have their exact coverage; soft: edges fade over a layer pixel",
           [](Options& o, Text name, Text value) {
             o.edges =
                 parseChoice<host::Edges>(name, value, {{"crisp", host::Edges::Crisp}, {"soft", host::Edges::Soft}});
           }},
          {"--placement", "outline|centres", kRendering,
           "outline (default): the layer's outline is exactly on the corners; centres: positions are measured from "
           "pixel "
           "centres, as in the effect itself",
           [](Options& o, Text name, Text value) {
             o.placement = parseChoice<host::Placement>(
                 name, value, {{"outline", host::Placement::Outline}, {"centres", host::Placement::Centres}});
           }},
          {"--depth", "auto|8|16|half|float", kRendering,
           "Bits per channel: auto (default, those of the files), 8, 16, half or float",
           [](Options& o, Text name, Text value) {
             o.depth = parseChoice<DepthChoice>(name, value,
                                                {{"auto", DepthChoice::Auto},
                                                 {"8", DepthChoice::Bits8},
                                                 {"16", DepthChoice::Bits16},
                                                 {"half", DepthChoice::Half},
                                                 {"float", DepthChoice::Float}});
           }},
          {"--protocol", "smart|plain", kRendering, "The protocol to use with the effect: smart (default) or plain",
           [](Options& o, Text name, Text value) {
             o.protocol = parseChoice<host::Protocol>(
                 name, value, {{"smart", host::Protocol::Smart}, {"plain", host::Protocol::Plain}});
           },
           nullptr, kLeaves},
          {"--downsample", "N", kRendering, "Render at 1/N of the resolution",
           [](Options& o, Text name, Text value) { o.downsample = parseIntInRange(name, value, 1, kMaxDownsample); }},
          {"--linear", "", kRendering, "Filter and composite in linear light",
           [](Options& o, Text, Text) { o.linear = true; }},
          {"--threads", "N", kRendering, "Use at most N threads for everything (default: all cores)",
           [](Options& o, Text name, Text value) {
             o.threads = static_cast<unsigned>(parseIntInRange(name, value, 1, kMaxThreads));
           },
           nullptr, kLeaves},
          {"--module", "FILE", kRendering, "The effect module (default: the one beside the command)",
           [](Options& o, Text name, Text value) { o.module = parseFileName(name, value); }},

          {"--frames", "A-B[xS]", kSequences,
           "A sequence, or every S-th frame of it; %04d or #### in LAYER, OUT and PLATE stands for the frame",
           [](Options& o, Text name, Text value) { o.frames = parseFrameRange(name, value); }, nullptr, kLeaves},
          {"--layer-start", "N", kSequences,
           "The frame that shows the layer's first file (default: its files are numbered like the shot)",
           setNumber<&RenderOptions::layer_start>, nullptr, kLeaves},
          {"--layer-end", "hold|loop|stop", kSequences,
           "After the layer's last file, hold it, start over, or stop the shot (default: a missing file is an error)",
           [](Options& o, Text name, Text value) {
             o.layer_end = parseChoice<SequenceEnd>(
                 name, value, {{"hold", SequenceEnd::Hold}, {"loop", SequenceEnd::Loop}, {"stop", SequenceEnd::Stop}});
           },
           nullptr, kLeaves},
          {"--over-start", "N", kSequences, "The same for the plate", setNumber<&RenderOptions::plate_start>, nullptr,
           kLeaves},
          {"--matte-start", "N", kSequences, "The same for the matte", setNumber<&RenderOptions::matte_start>, nullptr,
           kLeaves},
          {"--at", "FRAME", kSequences, "The frame of the corners file that a still shows (default: 0)",
           setNumber<&RenderOptions::at>, nullptr, kLeaves},
          {"--fps", "RATE", kSequences, "Frames per second, such as 25, 23.976 or 24000/1001 (default: 24)",
           [](Options& o, Text name, Text value) { o.rate = parseFrameRate(name, value); }},
          {"--resume", "", kSequences,
           "Skip finished frames: unchanged, made with these options and newer than the inputs",
           [](Options& o, Text, Text) { o.resume = true; }, nullptr, kLeaves},
          {"--keep-going", "", kSequences,
           "Continue after a frame that fails, list such frames at the end and exit with 1",
           [](Options& o, Text, Text) { o.keep_going = true; }, nullptr, kLeaves},

          {"--progress", "", kReporting, "Show progress (default: when standard error is a terminal)",
           [](Options& o, Text, Text) { o.progress = true; }, nullptr, kLeaves},
          {"--no-progress", "", kReporting, "Show none", [](Options& o, Text, Text) { o.progress = false; }, nullptr,
           kLeaves},
          {"--json", "", kReporting, "Print a line of JSON on standard output for every finished frame",
           [](Options& o, Text, Text) { o.json = true; }, nullptr, kLeaves},
      },
      "Corners files (default: what their format says)");
  static const std::vector<OptionRow<Options>> kWithColour = withColourOptions<Options>(kTable, kColour, true);
  return kWithColour;
}

}  // namespace vantorel::cli
