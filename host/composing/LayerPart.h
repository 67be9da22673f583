// Which part of the layer is needed to draw a part of the picture.
#pragma once

#include "host/composing/FramePlan.h"

namespace vantorel::host {

// All parts are rectangles of whole pixels inside the layer.

// The pixels that are read to draw a polygon of the canvas; at least one. For the perspective path; the horizon must
// not intersect the polygon.
Rect readFor(const FramePlan& plan, const ConvexPolygon& shown);

// The part that a canvas shows through the bilinear renderer.
Rect scannedPart(const FramePlan& plan, const Rect& canvas);

// The pixels that any pixel of the canvas can depend on, on either path; the whole layer if no smaller part is known.
Rect neededPart(const FramePlan& plan, const Rect& canvas);

// The bounding box of both; empty rectangles are ignored.
Rect united(const Rect& a, const Rect& b);

}  // namespace vantorel::host
