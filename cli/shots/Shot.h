// What holds for every frame of a rendering, worked out once before the first.
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
  bool passes_plate = false;  // what the plate holds besides its picture passes into the output
  std::unique_ptr<PictureSource> layer;
  std::unique_ptr<PictureSource> plate;  // null without one
  std::unique_ptr<PictureSource> matte;  // null without one
  std::shared_ptr<ShotColour> colour;    // null where numbers are taken as they are
  CornersTrack corners;
  Enlargement enlargement;                 // of the layer, before the effect
  std::vector<std::string> notes;          // what everybody has to know before the first frame, a line each
  host::Size layer_size;                   // of what is shown of the layer's first picture
  host::Size frame_size;                   // the output picture's size at full resolution
  host::Depth depth = host::Depth::Bits8;  // what is rendered at
  SampleType samples = SampleType::Bits8;  // what is written
  std::shared_ptr<const host::Module> module;
  std::uint64_t settings = 0;  // commonSettings, which frames' files record
  int frames_in_flight = 1;
  unsigned threads_per_frame = 1;
};

}  // namespace vantorel::cli
