// The checks of a request for a frame, made before anything is drawn.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/Image.h"
#include "host/Module.h"

namespace vantorel::host {

// InvalidArgument, naming the argument, for a frame that cannot be served; ModuleUnusable for a module without four
// points.
Result<void> checkFrameRequest(const Module& module, const ConstImageView& layer, const Rect& canvas,
                               const ImageView& output, const FrameOptions& options);

// The same for a question about the bounding box.
Result<void> checkBoxRequest(const Module& module, Size layer_size, const FrameOptions& options);

// A canvas at 1/n: its upper left corner at the whole reduced pixel that holds it, its size that of the output.
Rect canvasAtResolution(const Rect& canvas, Size output_size, int n);

// The pixels at 1/n that hold something of a canvas, one more at the right and at the bottom where it does not begin at
// a whole one.
Rect reducedCanvas(const Rect& canvas, int n);

}  // namespace vantorel::host
