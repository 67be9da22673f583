// The source's frame on its corners, in the embedded host.
#pragma once

#include "bridges/ofx/ClipImage.h"
#include "bridges/ofx/Geometry.h"
#include "bridges/ofx/Parameters.h"
#include "host/Instance.h"

namespace vantorel::ofx {

// Throws a Fault for what the embedded host refuses.
template <typename T>
void orFault(const host::Result<T>& result) {
  if (!result) {
    const bool is_memory = result.error().kind == host::ErrorKind::OutOfMemory;
    throw Fault{is_memory ? Status::Memory : Status::Failed, host::errorText(result.error())};
  }
}

// The scale that a render, or a question about one, is at; 1 where the host does not say. A Fault where it gives none
// that can be computed with.
PointD renderScaleOf(const Properties& arguments);

// A frame of the source in pixels, y up, with how the corners and the from-corners come to lie on it.
struct Placement {
  RectI frame;
  PixelScale output_scale;
  PixelScale source_scale;

  // The plane of the output's pixels.
  Plane plane() const { return planeOf(output_scale); }

  // Gives the corners to an instance. A Fault names one that is out of reach.
  void apply(const ParameterValues& values, host::Instance* instance) const;

  // The pixels of the frame that a window of the output depends on, once the corners are given; perhaps none.
  RectI neededFor(const RectI& window, const host::FrameOptions& options, host::Instance* instance) const;

 private:
  Plane planeOf(const PixelScale& scale) const {
    return {scale, static_cast<double>(frame.x1), static_cast<double>(frame.y2)};
  }
};

// What the parameters say about the drawing, in tiles that have the bits of the whole.
host::FrameOptions optionsOf(const ParameterValues& values);

}  // namespace vantorel::ofx
