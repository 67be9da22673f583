// What of the layer a part of the picture is drawn from.
#pragma once

#include "host/composing/FramePlan.h"

namespace vantorel::host {

// All parts are in whole pixels of the layer, and lie in it.

// The pixels that are read for what a polygon of the canvas shows; one at least. On the perspective path, where the
// horizon does not meet the polygon.
Rect readFor(const FramePlan& plan, const ConvexPolygon& shown);

// What a canvas shows through the bilinear renderer.
Rect scannedPart(const FramePlan& plan, const Rect& canvas);

// The pixels that any pixel of the canvas can depend on, on either path; all of the layer where nothing less is known.
Rect neededPart(const FramePlan& plan, const Rect& canvas);

// The smallest rectangle that holds both; empty ones hold nothing.
Rect united(const Rect& a, const Rect& b);

}  // namespace vantorel::host
