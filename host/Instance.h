// An instance of the effect: four animated corners and the rendering of frames.
#pragma once

#include <memory>

#include "host/Animation.h"
#include "host/Error.h"
#include "host/Frame.h"
#include "host/Image.h"
#include "host/Module.h"

namespace vantorel::host {

// One instance renders one frame at a time; different instances may render at the same time. Every function that
// returns a Result gives OutOfMemory where memory is lacking, and nothing else throws than what the caller's own
// callbacks throw.
class Instance {
 public:
  // Takes no memory yet. An instance without a module, or moved from, gives InvalidArgument wherever it is used.
  explicit Instance(std::shared_ptr<const Module> module) noexcept;
  ~Instance();
  Instance(Instance&&) noexcept;
  Instance& operator=(Instance&&) noexcept;

  // The corners, in full-resolution layer pixels. InvalidArgument, naming the corner, for a value that is not finite or
  // that 16.16 cannot hold at full resolution (isCoordinate). Corners for all times allocate nothing but the first
  // time.
  Result<void> setCorners(const AnimatedCorners& corners);
  Result<void> setCorners(const Corners& corners);

  // The quadrilateral in the layer, in its pixels, that goes onto the corners, instead of the layer's outline; what
  // lies outside of it is not drawn, nor what of it lies beyond the layer. With Placement::Outline alone, always with
  // crisp edges. Errors as for setCorners; `render` fails with InvalidArgument, naming the source, where it or the
  // corners are not strictly convex.
  Result<void> setSource(const AnimatedCorners& source);
  Result<void> setSource(const Corners& source);
  void clearSource();

  // The module's declared defaults, converted from percent of the layer to layer pixels; (0, 0) for what it does not
  // declare.
  Corners defaultCorners(Size layer_size) const noexcept;

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
  // After the first frame of a size nothing is allocated. An 8-bit layer whose rows are no multiple of 4 bytes apart is
  // copied for each frame.
  Result<FrameResult> render(const ConstImageView& layer, const Rect& canvas, const ImageView& output,
                             const FrameOptions& options);

  // The rectangle, in full-resolution layer pixels, that the effect itself asks for at that time when nothing limits
  // it: the bounding box of the corners, a pixel wider on every side.
  Result<Rect> boundingBox(Size layer_size, const FrameOptions& options);

  // The part of a layer, in its pixels, that the pixels of a canvas depend on at that time: `render` may be given a
  // layer of that size with anything elsewhere. It is empty where the canvas shows nothing of the layer, and all of the
  // layer where no less is known to do. Errors as for `render`.
  Result<Rect> neededPart(Size layer_size, const Rect& canvas, const FrameOptions& options);

 private:
  struct State;
  Result<void> makeReady();

  std::shared_ptr<const Module> module_;
  std::unique_ptr<State> state_;  // from the first use on
};

}  // namespace vantorel::host
