// Pictures upon pictures, premultiplied.
#pragma once

#include "host/Image.h"

namespace vantorel::cli {

// Lays `picture` over `plate` and leaves the result in `picture`: each channel becomes f + p * (1 - alpha of f), the
// integer depths rounded to nearest and held at their greatest value. Both must have the same size and depth.
void compositeOver(const host::ImageView& picture, const host::ConstImageView& plate);

// The picture at 1/n in both axes, rounded up: each pixel the mean of up to n by n, fewer at the right and the lower
// edge.
host::Image reduced(const host::ConstImageView& picture, int n);

}  // namespace vantorel::cli
