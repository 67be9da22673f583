// The parts of a frame, each alone.
#pragma once

#include "bench/Case.h"

namespace vantorel::bench {

// The effect's row samplers over a host sampler that does nothing, for each instruction set that this machine has: what
// the effect itself costs per pixel of work (a).
void addRowSamplers(const Effort& effort);

// The host's area samplers alone, for each variant that this machine has, at boxes of several radii inside the picture.
void addAreaSamplers(const Effort& effort);

// The floor: copying the layer and the output, and one plain pass that sums the layer's pixels.
void addFloors(const Effort& effort);

}  // namespace vantorel::bench
