// Everything that is common to all frames of a rendering, determined once before the first frame.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/base/FramePattern.h"
#include "cli/corners/CornersTrack.h"
#include "cli/shots/Enlargement.h"
#include "cli/shots/InputFiles.h"
#include "cli/shots/PictureSource.h"
#include "cli/shots/RenderOptions.h"
#include "host/Module.h"

namespace vantorel::cli {

class ShotColour;

struct Shot {
  RenderOptions options;
  FrameRange frames;
  InputFiles layer_files;
  std::optional<InputFiles> plate_files;
  std::optional<InputFiles> matte_files;
  FramePattern output;
  const ImageFormat* format = nullptr;
  ReadingOptions layer_reading;
  ReadingOptions plate_reading;
  bool passes_plate = false;  // the plate's other contents (channels, overscan, metadata) are passed on to the output
  std::unique_ptr<PictureSource> layer;
  std::unique_ptr<PictureSource> plate;  // null without one
  std::unique_ptr<PictureSource> matte;  // null without one
  std::shared_ptr<ShotColour> colour;    // null if colours are not converted
  CornersTrack corners;
  Enlargement enlargement;                 // of the layer, before the effect
  std::vector<std::string> notes;          // messages to print before the first frame, one per line
  host::Size layer_size;                   // of the visible part of the layer's first picture
  host::Size frame_size;                   // the output picture's size at full resolution
  host::Depth depth = host::Depth::Bits8;  // of rendering
  SampleType samples = SampleType::Bits8;  // of the output file
  std::shared_ptr<const host::Module> module;
  std::uint64_t settings = 0;  // commonSettings(), which is recorded in the frames' files
  int frames_in_flight = 1;
  unsigned threads_per_frame = 1;
};

}  // namespace vantorel::cli
