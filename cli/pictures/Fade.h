// Transparency laid on premultiplied pictures: all four channels of a pixel are multiplied by one factor, the integer
// depths rounded to nearest.
#pragma once

#include "host/Image.h"

namespace vantorel::cli {

// Multiplies every pixel by `opacity`, 0 to 1.
void fade(const host::ImageView& picture, double opacity);

// What determines the coverage of a matte: its alpha, or its grey (for colours, their luminance).
enum class MatteChannel { Alpha, Grey };

// Multiplies every pixel by 1 minus the matte there, which is held to 0 to 1. Both must have the same size and depth.
void holdOut(const host::ImageView& picture, const host::ConstImageView& matte, MatteChannel channel);

}  // namespace vantorel::cli
