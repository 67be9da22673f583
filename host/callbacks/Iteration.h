// The iterators with which a module runs a pixel function over a world.
//
// The pixel function is called once for every pixel of the area, clipped to the destination; a null area is the whole
// destination. Rows run in parallel and in any order, the pixels of a row from left to right. The source pixel is the
// one at (x - origin.x, y - origin.y), with origin (0, 0) if none is given:
// - without a source, and outside the source in the non-clip form, it is a separate transparent pixel;
// - in the clipping forms the area is also clipped to the source. The first non-zero code of the pixel function ends
// the iteration and becomes its result; a stopped frame gives kCodeInterrupted.
#pragma once

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Sets the iterators for 8 and 16 bits in the table.
void installIterators(PF_UtilityCallbacks* utilities);

// The iterators for float pixels; the suite lives as long as the program.
const PF_iterateFloatSuite1* iterateFloatSuite();

}  // namespace vantorel::host
