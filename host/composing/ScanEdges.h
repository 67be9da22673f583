// The colours at the borders of what the effect's bilinear scan draws.
#pragma once

#include "host/Image.h"
#include "host/geometry/CoverageRegion.h"

namespace vantorel::host {

// How far the colours reach: a pixel this far beyond the samples asked for must be drawn too.
inline constexpr int kScanApron = 2;

// The scan mixes the pixels at its borders with what lies below. Gives every pixel that `covered` meets and `scanned`
// does not wholly the colour of the nearest pixel that it does, up to kScanApron away along either axis; pixels without
// such a neighbour stay as they are. Only what lies in `part` is looked at and written: pixels at its border need their
// neighbours in it. The regions and the part are in pixels of `drawn`; `scanned` is what the scan was told to draw, one
// span a row, from its borders at the row's top.
void extendScan(const CoverageRegion& scanned, const CoverageRegion& covered, const Rect& part, const ImageView& drawn);

}  // namespace vantorel::host
