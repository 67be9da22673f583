// Estimates the proportions of a rectangle from a perspective picture of it.
#pragma once

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::host {

struct AspectEstimate {
  double aspect = 1.0;        // width over height, positive
  double focal_length = 0.0;  // in pixels; 0 if it cannot be determined
  bool is_reliable = false;   // false: from the side lengths, since the corners do not determine the perspective
};

// Estimates the proportions of a rectangle whose corners lie at `corners` in a picture of that size (single-view
// metrology), assuming square pixels and a lens centred on the picture. Two cases do not determine the focal length: if
// opposite sides are parallel in the picture, or nearly, it is lost in the rounding of the corners; if no lens could
// have made the picture, because it is cropped or the corners are not those of a rectangle, it is not a real number.
// The estimate is then the ratio of the sides' mean lengths, and not reliable. Corners that form a rectangle in the
// picture show it head-on, and are reliable.
AspectEstimate estimateAspect(const Corners& corners, Size picture_size);

}  // namespace vantorel::host
