// Checks the request for a frame before anything is drawn.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/Image.h"
#include "host/Module.h"

namespace vantorel::host {

// InvalidArgument, naming the argument, for an invalid request; ModuleUnusable for a module without four points.
Result<void> checkFrameRequest(const Module& module, const ConstImageView& layer, const Rect& canvas,
                               const ImageView& output, const FrameOptions& options);

// The same for a request for the bounding box.
Result<void> checkBoxRequest(const Module& module, Size layer_size, const FrameOptions& options);

// A canvas at 1/n: it begins at the reduced pixel that contains its upper left corner, and has the size of the output.
Rect canvasAtResolution(const Rect& canvas, Size output_size, int n);

// The pixels at 1/n that overlap a canvas. If the canvas does not begin at a whole reduced pixel, this may be one more
// column or row than the output has.
Rect reducedCanvas(const Rect& canvas, int n);

}  // namespace vantorel::host
