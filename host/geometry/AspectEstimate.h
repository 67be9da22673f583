// The proportions of a rectangle, from a picture of it in perspective.
#pragma once

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::host {

struct AspectEstimate {
  double aspect = 1.0;        // width over height, positive
  double focal_length = 0.0;  // in pixels; 0 when the picture does not tell
  bool is_reliable = false;   // false: the lengths of the sides decided, since the corners do not fix the perspective
};

// Estimates the proportions of a rectangle whose corners lie at `corners` in a picture of that size (single-view
// metrology), assuming square pixels and a lens centred on the picture. Where two sides are parallel in the picture, or
// nearly, the focal length is lost in the corners' rounding, and where no lens could have made the picture, because it
// is cropped or the corners are no rectangle's, it is not a real number: then the estimate is the ratio of the sides'
// mean lengths and not reliable. A parallelogram with right angles is a rectangle seen straight on, and reliable.
AspectEstimate estimateAspect(const Corners& corners, Size picture_size);

}  // namespace vantorel::host
