// What a frame is asked for with, and what comes back beside its pixels.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>

#include "host/Image.h"

namespace vantorel::host {

// Standard and High are the effect's own. Best draws the frame in tiles at High, with as many samples a pixel as each
// tile needs to come near the true picture, and with crisp edges.
enum class Quality { Standard, High, Best };

// What the corners and the layer's positions are counted from.
enum class Placement {
  // Pixel k covers [k, k + 1) on both sides, and the layer's outline lies exactly on the corners.
  Outline,
  // The effect's own way: positions count from pixel centres, so that a picture enlarged s times lies (s - 1) / 2
  // pixels
  // off. For checking the effect, and for matching another host.
  Centres
};

enum class Edges {
  Soft,  // the effect's own: the layer fades into transparency over a layer pixel
  Crisp  // the layer's colours reach to its outline, and an edge pixel has exactly the share that the outline covers
};
enum class Protocol { Smart, Plain };

// The renderer that the effect chose for a frame.
enum class RenderPath { Perspective, Bilinear };

// When a frame is: `time` and `step` in units of 1 / `scale` seconds.
struct FrameTime {
  std::int32_t time = 0;
  std::int32_t step = 1;
  std::uint32_t scale = 24;
};

// Motion blur: how long light falls on a frame.
struct Shutter {
  double degrees = 0.0;            // 360 is a whole frame, from its time to the next one's; 0: no blur; up to 720
  std::optional<double> offset{};  // when it opens, in degrees after the frame's time; unset: centred on it
  int max_samples = 64;            // moments that are drawn, at most: 1 to 1024
};

// What holds for one frame, and can differ from frame to frame.
struct FrameOptions {
  FrameTime time{};
  Quality quality = Quality::High;
  Placement placement = Placement::Outline;
  std::optional<Edges> edges{};  // unset: Crisp at Best with Placement::Outline, else Soft
  // Samples a pixel along each axis: 1, 2, 4 or 8; 0: by rule at Best, else 1. A tile takes fewer where its corners, so
  // many times enlarged, leave the effect's 16.16 numbers. With Placement::Centres 0 or 1 alone, and Soft edges.
  int samples = 0;
  // Draws Standard and High in tiles of a fixed grid too, as Best is. Then no bit depends on the canvas: a part of a
  // picture equals that part of the whole, and costs about its share. Otherwise a perspective picture at Standard or
  // High is drawn in one piece, and its last digits depend on where its canvas begins. With Placement::Outline alone.
  bool canvas_independent = false;
  // Moving corners are drawn at several moments, in tiles; with Placement::Outline alone.
  Shutter shutter{};
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
