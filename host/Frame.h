// What a frame is asked for with, and what comes back beside its pixels.
#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>

#include "host/Image.h"

namespace vantorel::host {

enum class Quality { Standard, High };
enum class Protocol { Smart, Plain };

// The renderer that the effect chose for a frame.
enum class RenderPath { Perspective, Bilinear };

// When a frame is: `time` and `step` in units of 1 / `scale` seconds.
struct FrameTime {
  std::int32_t time = 0;
  std::int32_t step = 1;
  std::uint32_t scale = 24;
};

// What holds for one frame, and can differ from frame to frame.
struct FrameOptions {
  FrameTime time{};
  Quality quality = Quality::High;
  Protocol protocol = Protocol::Smart;
  int downsample = 1;    // renders at 1/n in both axes: 1 and up
  unsigned threads = 0;  // at most so many; 0: as many as the machine has
  // Called with the share of the rows done, 0 to 1 and never falling, from any of the rendering threads, one at a time.
  // What it throws ends the frame and is thrown again by `render`.
  std::function<void(double)> progress = nullptr;
  std::stop_token stop{};
};

struct FrameResult {
  RenderPath path = RenderPath::Perspective;  // Perspective too when there was nothing to draw
  // The rows that the effect was asked to draw, whole, in canvas pixels at this resolution: those of its own answer and
  // a few beside them; empty when it wants to draw nothing of this canvas.
  Rect drawn;
  double render_seconds = 0;  // inside the module's commands
};

// The size at 1/downsample of a canvas or layer: rounded up, so that a partly covered pixel is there. Both sides must
// be 1 or more.
constexpr Size downsampled(Size size, int downsample) {
  return {(size.width - 1) / downsample + 1, (size.height - 1) / downsample + 1};
}

}  // namespace vantorel::host
