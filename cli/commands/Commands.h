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
  ColourOptions colour;  // its config counts
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
  CornerPositions corners{};       // the page's in the photo
  std::optional<host::Size> size;  // the page's
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

// An option as it stands on the command line; a flag has no value.
struct GivenOption {
  std::string name;
  std::string value;
};

// What `render` takes, as far as it makes sense for looking: `output` may be empty, and the file of corners need not
// exist.
struct ViewOptions : RenderOptions {
  int port = 0;  // 0: any free one
  bool open_browser = true;
  std::vector<GivenOption> given;  // the options that `render` gets as they are, to draw the same
  std::string layer_label;         // what stands for the layer where none was given
};

// Each does its work and returns how it ended, or throws CommandError.
ExitCode runRender(const RenderOptions& options, const std::stop_token& stop);
ExitCode runInfo(const InfoOptions& options);
// Tells what a picture file is, by its header.
ExitCode runDescribe(const InfoOptions& options);
// Draws what lies within four corners of a photo as a rectangle, resampled once.
ExitCode runRectify(const RectifyOptions& options, const std::stop_token& stop);
ExitCode runCorners(const CornersOptions& options);
ExitCode runTestCard(const TestCardOptions& options, const std::stop_token& stop);
// Serves a page to place corners on until it is stopped.
ExitCode runView(const ViewOptions& options, const std::stop_token& stop);

}  // namespace vantorel::cli
