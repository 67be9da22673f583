// What the command was asked to do.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "cli/CornersArgument.h"
#include "cli/FrameRange.h"
#include "cli/ImageFormats.h"
#include "host/Instance.h"

namespace vantorel::cli {

struct RenderOptions {
  std::string layer;
  std::string output;
  std::array<std::optional<CornerPosition>, kCornerCount> corners;
  std::string corners_file;
  std::optional<host::Size> size;
  bool fit = false;
  std::string plate;
  bool linear = false;
  host::Quality quality = host::Quality::High;
  DepthChoice depth = DepthChoice::Auto;
  host::Protocol protocol = host::Protocol::Smart;
  int downsample = 1;
  std::optional<FrameRange> frames;
  FrameRate rate;
  bool resume = false;
  bool keep_going = false;
  unsigned threads = 1;
  std::string module;
  bool progress = false;
  bool json = false;
};

struct InfoOptions {
  std::string module;
  bool json = false;
};

struct TestCardOptions {
  std::string output;
  host::Size size{1920, 1080};
};

}  // namespace vantorel::cli
