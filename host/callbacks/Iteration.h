// The iterators that a module calls to have a pixel function run over a world.
//
// A pixel function is called once for every pixel of the area, cut to the destination; a null area is the whole
// destination. Rows run in parallel and in any order, the pixels of a row from left to right. Its source pixel is that
// at (x - origin.x, y - origin.y), origin (0, 0) where none is given:
//   - without a source, and in the non-clip form outside of the source, it gets a transparent pixel of its own;
//   - in the clipping forms the area is also cut to where the source has pixels.
// The first code of the pixel function that is not 0 ends the iteration and is its result; a stopped frame gives
// kCodeInterrupted.
#pragma once

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Enters the iterators for 8 and 16 bit into the table.
void installIterators(PF_UtilityCallbacks* utilities);

// The iterators for float pixels; the suite lives as long as the program.
const PF_iterateFloatSuite1* iterateFloatSuite();

}  // namespace vantorel::host
