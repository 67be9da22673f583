// The drawing of one frame, in three steps: its request made ready for the module, the module's drawing, and the pixels
// handed to the caller.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/frames/FrameProtocols.h"

namespace vantorel::host {

// Uses an instance's state while it lives, and forgets the frame's worlds when it ends, however it ends. The arguments
// must outlive it.
class FrameRender {
 public:
  FrameRender(const ModuleState& module, FrameState& frame, const AnimatedCorners& corners, Size layer_size,
              const FrameOptions& options);
  ~FrameRender();
  FrameRender(const FrameRender&) = delete;
  FrameRender& operator=(const FrameRender&) = delete;

  // Makes the worlds and the parameters. The request must have passed checkFrameRequest.
  Result<void> prepare(const ConstImageView& layer, const ImageView& output);

  // Has the module draw the canvas, which is given at the frame's resolution. The result is the rows drawn. What the
  // progress callback threw is kept in the frame's rows.
  Result<Rect> draw(const Rect& canvas);

  // Brings the pixels to where the caller wants them, and tells of the frame.
  Result<FrameResult> deliver(const Rect& drawn, const Rect& canvas, const ImageView& output);

  // Instead of all that: the rectangle that the effect asks for when nothing limits it.
  Result<Rect> boundingBox();

 private:
  FrameJob job_;
};

}  // namespace vantorel::host
