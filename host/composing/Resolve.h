// Averages samples to pixels, with each sample weighted by the share of it that a region covers.
#pragma once

#include "host/Image.h"
#include "host/geometry/CoverageRegion.h"

namespace vantorel::host {

// Fills `output` with the means of n by n premultiplied samples per pixel, where n is one of kSampleCounts. Pixel (x,
// y) uses those that begin at (n * (x + from_x), n * (y + from_y)). Samples outside the region count as transparent,
// those on its border count by their covered share. Integer depths are rounded to nearest, halves up. The region is in
// sample coordinates; `samples` has the depth of `output` and must contain the samples of all its pixels. With n = 1
// the two may be the same memory.
void resolve(const ConstImageView& samples, int n, const CoverageRegion& region, int from_x, int from_y,
             const ImageView& output);

}  // namespace vantorel::host
