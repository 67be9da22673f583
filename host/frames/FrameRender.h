// Draws one frame, in one piece or in tiles.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/composing/TiledFrame.h"
#include "host/frames/FrameProtocols.h"

namespace vantorel::host {

// Uses an instance's state during its lifetime; the destructor frees the frame's worlds in any case. The arguments must
// outlive it.
class FrameRender {
 public:
  FrameRender(const ModuleState& module, FrameState& frame, TileStore& tiles, const AnimatedCorners& corners,
              const AnimatedCorners* source, Size layer_size, const FrameOptions& options);
  ~FrameRender();
  FrameRender(const FrameRender&) = delete;
  FrameRender& operator=(const FrameRender&) = delete;

  // Renders the layer into `output`, which is the whole canvas; both are at the frame's resolution. The request must
  // have passed checkFrameRequest. An exception thrown by the progress callback is kept in the frame's rows.
  Result<FrameResult> render(const ConstImageView& layer, const Rect& canvas, const ImageView& output);

  // Renders nothing, but returns the rectangle that the effect requests if nothing limits it.
  Result<Rect> boundingBox();

  // The part of the layer, at full resolution, that the pixels of a canvas at the frame's resolution depend on.
  Result<Rect> neededPart(const Rect& canvas);

 private:
  // The three steps of drawing the frame in one piece.
  Result<void> prepare(const ImageView& output);
  Result<Rect> draw(const Rect& canvas);
  Result<FrameResult> deliver(const Rect& drawn, const Rect& canvas, const ImageView& output);

  Result<void> planMoments(Size layer_size, Size scaled_size);
  Result<FrameResult> renderInTiles(const ImageView& layer, const Rect& canvas, const ImageView& output);
  void place(const FramePlan& plan);
  Result<void> endOfFrame();

  FrameJob job_;
  TileStore& tiles_;
};

}  // namespace vantorel::host
