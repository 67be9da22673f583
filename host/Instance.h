// An instance of the effect: four animated corners and the rendering of frames.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include "host/Animation.h"
#include "host/Error.h"
#include "host/Image.h"
#include "host/Module.h"

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

// One instance renders one frame at a time; different instances may render at the same time.
class Instance {
 public:
  explicit Instance(std::shared_ptr<const Module> module);
  ~Instance();
  Instance(Instance&&) noexcept;
  Instance& operator=(Instance&&) noexcept;

  // The corners, in full-resolution layer pixels. InvalidArgument, naming the corner, for a value that is not finite or
  // that 16.16 cannot hold at full resolution (-32768 up to, but not including, 32768).
  Result<void> setCorners(const AnimatedCorners& corners);
  Result<void> setCorners(const Corners& corners);

  // The module's declared defaults, converted from percent of the layer to layer pixels.
  Corners defaultCorners(Size layer_size) const;

  // Renders the layer into `output`, which is the whole canvas: canvas.width() by canvas.height() pixels of the
  // layer's depth, at 1/downsample resolution rounded up. Every pixel of `output` is written; the quadrilateral's
  // outside is transparent. `canvas` is in full-resolution layer pixels, the layer's own upper left corner being
  // (0, 0). The layer is given at full resolution; the host scales it. The views must not overlap.
  //
  // At 1/n the canvas begins at the whole reduced pixel that holds its upper left corner, floor(left / n).
  //
  // Errors: InvalidArgument for views, canvas or options that cannot be served; EffectFailed or OutOfMemory with the
  // effect's own message; Interrupted when the stop token ended the frame; Misuse in checking mode. After an error the
  // output's pixels are unspecified.
  //
  // After the first frame of a size nothing is allocated at downsample 1.
  Result<FrameResult> render(const ConstImageView& layer, const Rect& canvas, const ImageView& output,
                             const FrameOptions& options);

  // The rectangle, in full-resolution layer pixels, that the effect itself asks for at that time when nothing limits
  // it: the bounding box of the corners, a pixel wider on every side.
  Result<Rect> boundingBox(Size layer_size, const FrameOptions& options);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The size at 1/downsample of a canvas or layer: rounded up, so that a partly covered pixel is there. Both sides must
// be 1 or more.
constexpr Size downsampled(Size size, int downsample) {
  return {(size.width - 1) / downsample + 1, (size.height - 1) / downsample + 1};
}

}  // namespace vantorel::host
