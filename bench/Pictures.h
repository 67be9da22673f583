// The pictures that are warped and the canvases that they are drawn into, shared by all measurements.
#pragma once

#include "bench/Workload.h"
#include "host/Image.h"

namespace vantorel::bench {

inline constexpr host::Depth kDepths[] = {host::Depth::Bits8, host::Depth::Bits16, host::Depth::Float};

// A smooth, opaque picture with detail down to about ten pixels, the same at every depth up to rounding. Made on first
// use and kept. Not thread-safe.
host::ConstImageView picture(host::Size size, host::Depth depth);

// An output of that size and depth, cleared when it is made. Later calls return the same memory.
host::ImageView canvas(host::Size size, host::Depth depth);

// Creates the workload's picture and canvas in advance, so that no measurement includes the time for it.
void preparePictures(const Workload& workload, host::Depth depth);

}  // namespace vantorel::bench
