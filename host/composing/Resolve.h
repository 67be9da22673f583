// Samples into pixels: the mean over every pixel's samples, each weighted by the share of it that a region covers.
#pragma once

#include "host/Image.h"
#include "host/geometry/CoverageRegion.h"

namespace vantorel::host {

// Fills `output` with the means of n by n `samples` a pixel (one of kSampleCounts), premultiplied: pixel (x, y) takes
// those from (n * (x + from_x), n * (y + from_y)) on. Samples outside the region count as transparent, those on its
// border with their covered share. Integer depths are rounded to nearest, halves up. The region is in sample
// coordinates; samples must be there for every pixel of `output`, of its depth. With n = 1 the two may be the same
// memory.
void resolve(const ConstImageView& samples, int n, const CoverageRegion& region, int from_x, int from_y,
             const ImageView& output);

}  // namespace vantorel::host
