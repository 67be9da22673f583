// The area samplers that a module's row functions call for every pixel.
//
// In the space of pixel centres a whole-number position is a pixel's centre, so pixel k covers [k - 0.5, k + 0.5);
// SampleSpace tells how the other spaces differ from what follows. The sample is the mean over the
// box [x - x_radius, x + x_radius] by [y - y_radius, y + y_radius]: each pixel weighted by its overlap with the box,
// what lies outside of the world counting as transparent. Only pixels with a positive overlap take part. A box that
// lies wholly in one pixel gives that pixel, copied bit by bit.
//
// 8 and 16 bit: exact sums, the mean rounded to nearest, halves up. Float: in doubles, a row's sum is that of
// overlap * channel in the order of the columns, begun at 0, the overlaps in 1/65536 pixel; the box's sum is that of
// overlap * (row's sum) in the order of the rows; the mean is that sum times 1 / (box area), rounded to float.
//
// A null source or a radius that is not positive gives kCodeBadArgument and a transparent pixel. They look at nothing
// but their arguments, and are safe to call from any number of threads. `effect_ref` and PF_SampleParams.area are not
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

// The samplers of an instruction set, which must be available; modules get those of the active one. All give the same
// bits.
const AreaSamplers& areaSamplers(InstructionSet set, SampleSpace space = SampleSpace::Centres);

}  // namespace vantorel::host
