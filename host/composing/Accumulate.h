// Sums of premultiplied pictures, in float.
#pragma once

#include <cstddef>

#include "host/Image.h"

namespace vantorel::host {

// Adds a picture of any depth to `sums`, which has its size and Depth::Float; integers are added without scaling.
void addTo(const ImageView& sums, const ConstImageView& picture);

// The mean of `count` pictures; integer depths are rounded to nearest, halves up.
void meanOf(const ConstImageView& sums, std::size_t count, const ImageView& picture);

}  // namespace vantorel::host
