// The components of a frame, each measured on its own.
#pragma once

#include "bench/Case.h"

namespace vantorel::bench {

// The effect's row samplers over a host sampler that does nothing, once per instruction set that this machine has: the
// effect's own cost per pixel of workload (a).
void addRowSamplers(const Effort& effort);

// The host's area samplers, once per instruction set that this machine has, over boxes of several radii inside the
// picture.
void addAreaSamplers(const Effort& effort);

// Baselines that no renderer can beat: copying a picture, and one plain pass that sums the layer's pixels.
void addBaselines(const Effort& effort);

}  // namespace vantorel::bench
