// Compositing of premultiplied pictures.
#pragma once

#include "host/Image.h"

namespace vantorel::cli {

// Lays `picture` over `plate` and leaves the result in `picture`: each channel becomes f + p * (1 - alpha of f), the
// integer depths rounded to nearest and held at their greatest value. Both must have the same size and depth.
void compositeOver(const host::ImageView& picture, const host::ConstImageView& plate);

}  // namespace vantorel::cli
