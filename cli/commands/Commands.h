// The subcommands.
#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "cli/base/ExitCode.h"
#include "cli/shots/RenderOptions.h"

namespace vantorel::cli {

struct InfoOptions {
  std::string file;      // a picture to describe; empty: the effect module
  ColourOptions colour;  // only its config is used
  std::string module;    // empty: the one beside the command
  bool json = false;
};

struct TestCardOptions {
  std::string output;
  std::string format;  // of the output; empty: by its name
  host::Size size{1920, 1080};
};

struct RectifyOptions {
  std::string photo;
  std::string output;
  std::string format;  // of the output; empty: by its name
  bool overwrite = false;
  CornerPositions corners{};       // the page's corners in the photo
  std::optional<host::Size> size;  // the page's size
  std::optional<double> aspect;    // width over height; positive
  std::optional<EnlargeFilter> enlarge;
  bool linear = false;
  ColourOptions colour;
  std::string module;    // empty: the one beside the command
  std::string settings;  // the options that change pictures, as they were given
};

struct CornersOptions {
  TrackOptions track;
  std::string output;  // a file, or four for a corner each; empty: the summary alone; - standard output
  bool overwrite = false;
  std::string format;              // of the output; empty: by its name
  std::optional<host::Size> size;  // of the picture that positions are in
  std::string plot;                // an SVG file; empty without one; - standard output
  FrameRate rate;
};

// An option as written on the command line; a flag has no value.
struct GivenOption {
  std::string name;
  std::string value;
};

// The options of `render` that make sense for viewing. `output` may be empty, and the corners file need not exist.
struct ViewOptions : RenderOptions {
  int port = 0;  // 0: any free one
  bool open_browser = true;
  std::vector<GivenOption> given;  // options to pass on to `render` unchanged, to draw the same picture
  std::string layer_label;         // the name shown for the layer if none was given
};

// Each runs its command and returns the exit code, or throws CommandError.
ExitCode runRender(const RenderOptions& options, const std::stop_token& stop);
ExitCode runInfo(const InfoOptions& options);
// Describes a picture file from its header.
ExitCode runDescribe(const InfoOptions& options);
// Straightens the part of a photo inside four corners to a rectangle, resampling only once.
ExitCode runRectify(const RectifyOptions& options, const std::stop_token& stop);
ExitCode runCorners(const CornersOptions& options);
ExitCode runTestCard(const TestCardOptions& options, const std::stop_token& stop);
// Serves the page for placing corners until it is stopped.
ExitCode runView(const ViewOptions& options, const std::stop_token& stop);

}  // namespace vantorel::cli
