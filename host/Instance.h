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
// returns a Result may give OutOfMemory. Nothing throws except the caller's own callbacks.
class Instance {
 public:
  // Allocates nothing yet. An instance that has no module or was moved from gives InvalidArgument when it is used.
  explicit Instance(std::shared_ptr<const Module> module) noexcept;
  ~Instance();
  Instance(Instance&&) noexcept;
  Instance& operator=(Instance&&) noexcept;

  // The corners, in full-resolution layer pixels. InvalidArgument, naming the corner, for a value that is not finite or
  // outside the 16.16 range at full resolution (isCoordinate). Constant corners allocate only the first time.
  Result<void> setCorners(const AnimatedCorners& corners);
  Result<void> setCorners(const Corners& corners);

  // The quadrilateral of the layer, in layer pixels, that is drawn onto the corners instead of the layer's outline.
  // Anything outside it or outside the layer is not drawn. Requires Placement::Outline; edges are always crisp. Errors
  // as for setCorners; `render` fails with InvalidArgument, naming the source, if it or the corners are not strictly
  // convex.
  Result<void> setSource(const AnimatedCorners& source);
  Result<void> setSource(const Corners& source);
  void clearSource();

  // The defaults that the module declared, converted from percent of the layer to layer pixels; (0, 0) for those that
  // it did not declare.
  Corners defaultCorners(Size layer_size) const noexcept;

  // Renders the layer into `output`, which is the whole canvas: canvas.width() by canvas.height() pixels of the layer's
  // depth, reduced to 1/downsample and rounded up. Every pixel of `output` is written; everything outside the
  // quadrilateral is transparent. `canvas` is in full-resolution layer pixels, with (0, 0) at the layer's upper left
  // corner. The layer is passed at full resolution; the host scales it. The views must not overlap.
  //
  // At 1/n the canvas begins at the reduced pixel that contains its upper left corner, floor(left / n).
  //
  // Errors: InvalidArgument for invalid views, canvas or options; EffectFailed or OutOfMemory with the effect's own
  // message; Interrupted if the stop token ended the frame; Misuse in checking mode. After an error the output's pixels
  // are unspecified.
  //
  // Nothing is allocated after the first frame of a size. An 8-bit layer whose row stride is not a multiple of 4 bytes
  // is copied for each frame.
  Result<FrameResult> render(const ConstImageView& layer, const Rect& canvas, const ImageView& output,
                             const FrameOptions& options);

  // The rectangle, in full-resolution layer pixels, that the effect itself requests at that time if nothing limits it:
  // the bounding box of the corners, extended by a pixel on every side.
  Result<Rect> boundingBox(Size layer_size, const FrameOptions& options);

  // The part of a layer, in its pixels, that the pixels of a canvas depend on at that time: the rest of the layer
  // passed to `render` may have any content. Empty if the canvas shows nothing of the layer, and the whole layer if no
  // smaller part is known to be enough. Errors as for `render`.
  Result<Rect> neededPart(Size layer_size, const Rect& canvas, const FrameOptions& options);

 private:
  struct State;
  Result<void> makeReady();

  std::shared_ptr<const Module> module_;
  std::unique_ptr<State> state_;  // created on first use
};

}  // namespace vantorel::host
