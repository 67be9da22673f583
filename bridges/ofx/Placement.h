// Where the embedded host draws the source's frame.
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

// The render scale of an action; 1 if the host does not tell it. A Fault if it is not in a usable range.
PointD renderScaleOf(const Properties& arguments);

// The source's frame in pixels, y up, and the scales of the corners and of the from-corners.
struct Placement {
  RectI frame;
  PixelScale output_scale;
  PixelScale source_scale;

  // The plane of the output's pixels.
  Plane plane() const { return planeOf(output_scale); }

  // Sets an instance's corners. A Fault names one that is out of range.
  void apply(const ParameterValues& values, host::Instance* instance) const;

  // The pixels of the frame that a window of the output depends on, possibly none. Call `apply` first.
  RectI neededFor(const RectI& window, const host::FrameOptions& options, host::Instance* instance) const;

 private:
  Plane planeOf(const PixelScale& scale) const {
    return {scale, static_cast<double>(frame.x1), static_cast<double>(frame.y2)};
  }
};

// The drawing options of the parameters. Tiles equal the whole frame to the bit.
host::FrameOptions optionsOf(const ParameterValues& values);

}  // namespace vantorel::ofx
