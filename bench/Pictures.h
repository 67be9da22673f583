// The pictures that are warped, and memory to warp them into, shared by all that is measured.
#pragma once

#include "bench/Work.h"
#include "host/Image.h"

namespace vantorel::bench {

inline constexpr host::Depth kDepths[] = {host::Depth::Bits8, host::Depth::Bits16, host::Depth::Float};

// A smooth, opaque picture with detail down to eight pixels, the same at every depth up to rounding. Made at its first
// use and kept; not for several threads at once.
host::ConstImageView picture(host::Size size, host::Depth depth);

// An output of that size and depth, cleared at its first use. Whoever asks next gets the same memory.
host::ImageView canvas(host::Size size, host::Depth depth);

// Makes the work's picture and canvas, so that no measurement pays for it.
void preparePictures(const Work& work, host::Depth depth);

}  // namespace vantorel::bench
