// What a rendering was asked to be.
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
  std::string layer;       // a name, or with `frames` the pattern of a sequence's names
  std::string output;      // the same
  std::string format;      // the output's; empty: by its name
  bool overwrite = false;  // inputs too
  OptionalCorners corners;
  // The quadrilateral of the layer that goes onto the corners; a corner that is not given is the layer's own.
  OptionalCorners source;
  bool hasSource() const {
    return std::ranges::any_of(source, [](const auto& corner) { return corner.has_value(); });
  }
  TrackOptions track;              // files of corners; none without any
  std::optional<host::Size> size;  // the output picture's, at full resolution
  bool fit = false;
  // The frame that shows a sequence's first file; nothing: files are numbered as the shot is.
  std::optional<std::int32_t> layer_start;
  std::optional<std::int32_t> plate_start;
  std::optional<std::int32_t> matte_start;
  std::optional<SequenceEnd> layer_end;  // nothing: a file that is missing is an error
  std::optional<std::int32_t> at;        // the frame of the corners that a still shows
  std::string plate;                     // as `layer`; empty without one
  std::optional<Crop> crop;
  AlphaReading alpha = AlphaReading::AsStated;  // the layer's
  std::optional<EnlargeFilter> enlarge;         // nothing: the effect's own interpolation
  PictureSelection selection;                   // the plate's, without one the layer's
  double feather = 0.0;                         // output pixels at full resolution
  host::Shutter shutter;
  double opacity = 1.0;  // 0 to 1
  std::string matte;     // as `layer`; empty without one
  bool linear = false;
  ColourOptions colour;
  host::Quality quality = host::Quality::Best;
  int samples = 0;                   // a pixel along each axis: 1, 2, 4 or 8; 0: as the quality has it
  std::optional<host::Edges> edges;  // nothing: as the quality has them
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
  std::optional<bool> progress;   // nothing: where standard error is a terminal
  bool json = false;
  std::string settings;  // the options that change pictures, as they were given
};

}  // namespace vantorel::cli
