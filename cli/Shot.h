// What holds for every frame of a rendering, worked out once before the first.
#pragma once

#include <memory>

#include "cli/CornersFile.h"
#include "cli/FramePattern.h"
#include "cli/Options.h"
#include "cli/PictureSource.h"
#include "host/Module.h"

namespace vantorel::cli {

struct Shot {
  RenderOptions options;
  FrameRange frames;
  FramePattern output;
  const ImageFormat* format = nullptr;
  std::unique_ptr<PictureSource> layer;
  std::unique_ptr<PictureSource> plate;  // null without one
  CornersTrack corners;
  host::Size frame_size;                   // the output picture's size at full resolution
  host::Depth depth = host::Depth::Bits8;  // what is rendered at
  SampleType samples = SampleType::Bits8;  // what is written
  std::shared_ptr<const host::Module> module;
  int frames_in_flight = 1;
  unsigned threads_per_frame = 1;
};

// Checks everything that can be checked before rendering, and reads the heads of the first frame's files (of the first
// frame whose files can be read, where it is to keep going). Throws CommandError.
Shot planShot(const RenderOptions& options);

// Whether that frame's output is there, whole and newer than everything it is made from.
bool isFrameDone(const Shot& shot, std::int32_t frame, host::Size output_size);

}  // namespace vantorel::cli
