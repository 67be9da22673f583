// Extends the colours at the borders of the effect's bilinear scan.
#pragma once

#include "host/Image.h"
#include "host/geometry/CoverageRegion.h"

namespace vantorel::host {

// How far colours are extended: samples this far around the requested ones must be drawn too.
inline constexpr int kScanApron = 2;

// The scan mixes the pixels at its borders with the background. This gives every pixel that `covered` overlaps but
// `scanned` does not cover fully the colour of the nearest fully scanned pixel, up to kScanApron away along either
// axis; pixels without such a neighbour are unchanged. Only pixels in `part` are read and written, so it must include
// the neighbours that are needed. The regions and the part are in pixels of `drawn`; `scanned` is the area that the
// scan drew, one span per row, between its borders at the row's top.
void extendScan(const CoverageRegion& scanned, const CoverageRegion& covered, const Rect& part, const ImageView& drawn);

}  // namespace vantorel::host
