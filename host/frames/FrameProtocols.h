// The two ways of having a module draw a frame.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/frames/FrameState.h"
#include "host/module/ModuleState.h"

namespace vantorel::host {

// What a frame is about, beside its state, at the frame's resolution.
struct FrameJob {
  const ModuleState& module;
  FrameState& frame;
  Size layer_size;  // at full resolution
  const FrameOptions& options;
};

// The rectangle that frame setup answers to `hint`: what the module would draw of it, both in layer pixels.
Result<Rect> askFrameSetup(const FrameJob& job, const Rect& hint);

// Draws the frame: the frame's output world is the whole canvas, whose upper left corner is at canvas.left, canvas.top
// in layer pixels. Rows that the module does not want to draw are cleared here. The result is the part of the canvas
// that it was asked to draw, in canvas pixels; empty when it wants to draw nothing.
Result<Rect> drawFrame(const FrameJob& job, const Rect& canvas);

// The same for some rows of the canvas; what it leaves in others is unspecified.
struct RowRange {
  int begin;
  int end;
};
Result<Rect> drawRows(const FrameJob& job, const Rect& canvas, const RowRange& wanted);

}  // namespace vantorel::host
