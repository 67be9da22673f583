// The options of a frame, and what rendering returns besides its pixels.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>

#include "host/Image.h"

namespace vantorel::host {

// Standard and High are the effect's own. Best draws the frame in tiles at High, with as many samples per pixel as each
// tile needs for an accurate picture, and with crisp edges.
enum class Quality { Standard, High, Best };

// Where the coordinates of corners and layer positions are measured from.
enum class Placement {
  // Pixel k covers [k, k + 1) on both sides, and the layer's outline lies exactly on the corners.
  Outline,
  // The effect's own convention: positions are measured from pixel centres, so that a picture enlarged s times is off
  // by (s - 1) / 2 pixels. For testing the effect, and for matching another host.
  Centres
};

enum class Edges {
  Soft,  // the effect's own: the layer fades out over one layer pixel
  Crisp  // the layer's colours extend to its outline, and an edge pixel's alpha is the exact share that the outline
         // covers
};
enum class Protocol { Smart, Plain };

// The renderer with which the effect draws a frame.
enum class RenderPath { Perspective, Bilinear };

// The time of a frame: `time` and `step` are in units of 1 / `scale` seconds.
struct FrameTime {
  std::int32_t time = 0;
  std::int32_t step = 1;
  std::uint32_t scale = 24;
};

// Motion blur: how long the shutter is open for a frame.
struct Shutter {
  double degrees = 0.0;            // 0 (no blur) to 720; 360 is a whole frame, from its time to the next one's
  std::optional<double> offset{};  // when it opens, in degrees after the frame's time; unset: centred on it
  int max_samples = 64;            // the most moments that are drawn, 1 to 1024
};

// The options of one frame, which can differ from frame to frame.
struct FrameOptions {
  FrameTime time{};
  Quality quality = Quality::High;
  Placement placement = Placement::Outline;
  std::optional<Edges> edges{};  // unset: Crisp at Best with Placement::Outline, else Soft
  // Samples per pixel along each axis: 1, 2, 4 or 8; 0: automatic at Best, else 1. A tile uses fewer if its corners,
  // scaled by this factor, would not fit into 16.16 numbers. Placement::Centres allows only 0 or 1, and Soft edges.
  int samples = 0;
  // Also draws Standard and High in tiles of a fixed grid, like Best, so that the result does not depend on the canvas:
  // part of a picture equals that part of the whole to the bit, and costs about its share. Otherwise a perspective
  // picture at Standard or High is drawn in one piece, and its least significant bits depend on where its canvas
  // begins. Requires Placement::Outline.
  bool canvas_independent = false;
  // With motion blur, moving corners are drawn at several moments, in tiles. Requires Placement::Outline.
  Shutter shutter{};
  Protocol protocol = Protocol::Smart;
  int downsample = 1;    // renders at 1/n in both axes: 1 and up
  unsigned threads = 0;  // the maximum; 0: as many as the machine has
  // Called with the share of the rows done, 0 to 1 and never decreasing, from any of the rendering threads, one at a
  // time. An exception that it throws ends the frame and is rethrown by `render`.
  std::function<void(double)> progress = nullptr;
  std::stop_token stop{};
};

struct FrameResult {
  // With several moments, that of the middle one; Perspective if there was nothing to draw.
  RenderPath path = RenderPath::Perspective;
  // The whole rows that the effect was asked to draw, in canvas pixels at this resolution: those that it requested and
  // a few around them. Empty if it wants to draw nothing on this canvas.
  Rect drawn;
  double render_seconds = 0;  // inside the module's commands; for a frame in tiles, of drawing them all
};

// The size of a canvas or layer at 1/downsample, rounded up to include partly covered pixels. Both sides must be 1 or
// more.
constexpr Size downsampled(Size size, int downsample) {
  return {(size.width - 1) / downsample + 1, (size.height - 1) / downsample + 1};
}

}  // namespace vantorel::host
