// What holds for every frame of a rendering, worked out once before the first.
#pragma once

#include <memory>
#include <optional>

#include "cli/base/FramePattern.h"
#include "cli/corners/CornersTrack.h"
#include "cli/shots/PictureSource.h"
#include "cli/shots/RenderOptions.h"
#include "host/Module.h"

namespace vantorel::cli {

struct Shot {
  RenderOptions options;
  FrameRange frames;
  FramePattern layer_files;
  std::optional<FramePattern> plate_files;
  FramePattern output;
  const ImageFormat* format = nullptr;
  std::unique_ptr<PictureSource> layer;
  std::unique_ptr<PictureSource> plate;  // null without one
  CornersTrack corners;
  host::Size frame_size;                   // the output picture's size at full resolution
  host::Depth depth = host::Depth::Bits8;  // what is rendered at
  SampleType samples = SampleType::Bits8;  // what is written
  std::shared_ptr<const host::Module> module;
  std::uint64_t settings = 0;  // commonSettings, which frames' files record
  int frames_in_flight = 1;
  unsigned threads_per_frame = 1;
};

}  // namespace vantorel::cli
