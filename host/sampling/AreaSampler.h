// The area samplers that a module's row functions call for every pixel.
//
// In SampleSpace::Centres a whole-number position is a pixel's centre, so pixel k covers [k - 0.5, k + 0.5);
// SampleSpace describes how the other spaces differ. The sample is the mean over the box [x - x_radius, x + x_radius]
// by [y - y_radius, y + y_radius]: each pixel is weighted by its overlap with the box, and everything outside the world
// counts as transparent. Only pixels with a positive overlap are read. A box that lies within one pixel gives a bitwise
// copy of that pixel.
//
// 8 and 16 bits: sums are exact, and the mean is rounded to nearest, halves up. Float: sums are in doubles, start at 0
// and use overlaps in 1/65536 pixel. A row's sum adds up overlap * channel in column order, the box's sum adds up
// overlap * (row's sum) in row order, and the mean is that sum times 1 / (box area), rounded to float.
//
// A null source or a radius that is not positive gives kCodeBadArgument and a transparent pixel. The samplers depend
// only on their arguments, and can be called from any number of threads. `effect_ref` and PF_SampleParams.area are not
// read.
#pragma once

#include "host/sampling/SampleSpace.h"
#include "platform/Cpu.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

struct AreaSamplers {
  PF_AreaSampler<PF_Pixel8> sample8;
  PF_AreaSampler<PF_Pixel16> sample16;
  PF_AreaSampler<PF_PixelFloat> sample_float;
};

// The samplers of an instruction set, which must be available; modules get those of the active set. All give the same
// bits.
const AreaSamplers& areaSamplers(InstructionSet set, SampleSpace space = SampleSpace::Centres);

}  // namespace vantorel::host
