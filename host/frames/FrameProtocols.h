// Drawing a frame through a module with either of the two protocols.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/frames/FrameState.h"
#include "host/module/ModuleState.h"

namespace vantorel::host {

// A frame to draw: its module, state and options.
struct FrameJob {
  const ModuleState& module;
  FrameState& frame;
  Size layer_size;  // at full resolution
  const FrameOptions& options;
};

// The rectangle that frame setup returns for `hint`: the part of it that the module would draw. Both are in layer
// pixels.
Result<Rect> askFrameSetup(const FrameJob& job, const Rect& hint);

// Draws the frame: the frame's output world is the whole canvas, whose upper left corner is at (canvas.left,
// canvas.top) in layer pixels. Rows that the module does not want to draw are cleared here. Returns the part of the
// canvas that the module was asked to draw, in canvas pixels; empty if it wants to draw nothing.
Result<Rect> drawFrame(const FrameJob& job, const Rect& canvas);

// The same for some rows of the canvas; the content of the others is unspecified.
struct RowRange {
  int begin;
  int end;
};
Result<Rect> drawRows(const FrameJob& job, const Rect& canvas, const RowRange& wanted);

}  // namespace vantorel::host
