// The options of a rendering.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <thread>

#include "cli/base/FrameRange.h"
#include "cli/colour/ColourOptions.h"
#include "cli/corners/Corners.h"
#include "cli/corners/TrackOptions.h"
#include "cli/pictures/Encoding.h"
#include "cli/pictures/Enlarge.h"
#include "cli/pictures/ImageFormats.h"
#include "cli/pictures/ImageReader.h"
#include "cli/shots/Crop.h"
#include "cli/shots/InputFiles.h"
#include "host/Instance.h"

namespace vantorel::cli {

constexpr int kMaxThreads = 1024;
constexpr int kMaxDownsample = 1024;

inline unsigned allCores() {
  const unsigned cores = std::thread::hardware_concurrency();
  return cores == 0 ? 1 : std::min<unsigned>(cores, kMaxThreads);
}

struct RenderOptions {
  std::string layer;       // a file name or, with `frames`, the pattern of a sequence's names
  std::string output;      // the same
  std::string format;      // the output's; empty: by its name
  bool overwrite = false;  // may replace inputs
  OptionalCorners corners;
  // The quadrilateral of the layer that is drawn onto the corners; missing corners are the layer's own.
  OptionalCorners source;
  bool hasSource() const {
    return std::ranges::any_of(source, [](const auto& corner) { return corner.has_value(); });
  }
  TrackOptions track;              // corners files, if any
  std::optional<host::Size> size;  // the output picture's, at full resolution
  bool fit = false;
  // The frame that shows a sequence's first file; empty: files are numbered like the shot.
  std::optional<std::int32_t> layer_start;
  std::optional<std::int32_t> plate_start;
  std::optional<std::int32_t> matte_start;
  std::optional<SequenceEnd> layer_end;  // empty: a missing file is an error
  std::optional<std::int32_t> at;        // the frame of the corners that a still shows
  std::string plate;                     // as `layer`; empty if none
  std::optional<Crop> crop;
  AlphaReading alpha = AlphaReading::AsStated;  // the layer's
  std::optional<EnlargeFilter> enlarge;         // empty: the effect's own interpolation
  PictureSelection selection;                   // for the plate, or without one for the layer
  double feather = 0.0;                         // output pixels at full resolution
  host::Shutter shutter;
  double opacity = 1.0;  // 0 to 1
  std::string matte;     // as `layer`; empty if none
  bool linear = false;
  ColourOptions colour;
  host::Quality quality = host::Quality::Best;
  int samples = 0;                   // per pixel along each axis: 1, 2, 4 or 8; 0: depends on the quality
  std::optional<host::Edges> edges;  // empty: depends on the quality
  host::Placement placement = host::Placement::Outline;
  DepthChoice depth = DepthChoice::Auto;
  Encoding encoding;
  host::Protocol protocol = host::Protocol::Smart;
  int downsample = 1;  // 1 to kMaxDownsample
  std::optional<FrameRange> frames;
  FrameRate rate;
  bool resume = false;
  bool keep_going = false;
  unsigned threads = allCores();  // 1 to kMaxThreads
  std::string module;             // empty: the one beside the command
  std::optional<bool> progress;   // empty: if standard error is a terminal
  bool json = false;
  std::string settings;  // the options that affect pictures, as given
};

}  // namespace vantorel::cli
