// Which renderer draws a frame.
#pragma once

#include <cstdint>

#include "math/M_stuff.h"
#include "support/PF_HostRecords.h"

// True if the bilinear renderer draws the frame: when the corner points cannot be computed, the quadrilateral is not
// strictly convex, or one of its corners is nearly straight (turns by less than about 8.1 degrees). Either winding is
// accepted. `input` is as in GetCornerPoints.
bool UseBilinear(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input);

// The orientation of the turn p0 -> p1 -> p2, by exact comparisons: +1 clockwise on a screen whose y axis points down,
// -1 anticlockwise. For collinear points: -1 if p0 lies between the others, +1 if p2 lies beyond p1, 0 if p2 lies on
// the segment from p0 to p1.
std::int32_t CCW(M_Vector2T<double>* p0, M_Vector2T<double>* p1, M_Vector2T<double>* p2);
