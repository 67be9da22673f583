// Edges that fade out inside a quadrilateral.
#pragma once

#include <array>

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::cli {

// A quadrilateral around its outline, in pixels of the picture: pixel k covers [k, k + 1).
using Outline = std::array<host::Point, 4>;

// Multiplies every premultiplied pixel by a smooth ramp of the distance of its centre to the nearest edge: 0 on the
// outline and outside it, 1 from `width` pixels inside on. `width` must be positive.
void feather(const host::ImageView& picture, const Outline& outline, double width);

}  // namespace vantorel::cli
