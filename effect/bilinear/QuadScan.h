// The bilinear scan renderers: draw the whole input onto a quadrilateral, row by row, with source positions
// interpolated linearly along its edges and rows. Partly covered pixels (in the first and last row, and at both ends of
// every row) are mixed with the output's by the covered area.
#pragma once

#include "support/KZFX_srect.h"
#include "support/PF_HostRecords.h"

// Corner i of `source` (input pixels, 16.16) is drawn at corner i of `corners` (output pixels, 16.16); both in corner
// order. `in_data` is not used. Degenerate quadrilaterals draw fewer pixels, never more; nothing is written outside the
// output or read outside the input, and an empty input draws nothing.
//
// A row's right end is drawn like its left end: an unfiltered source pixel is mixed in by the covered width (the end's
// fraction, or a whole pixel when the end lies on a pixel boundary) times the covered height. Its source position is
// taken at the pixel's left edge, as for every whole pixel, so that nothing beyond the source corners is read. A span
// that lies within one pixel covers it by the span's width. A pixel whose covered area rounds to 0 is left unchanged.
void FixedToFixed(PF_InData* in_data, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                  PF_LayerDef* output);
void FixedToFixed16(PF_InData* in_data, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                    PF_LayerDef* output);
void FixedToFixedFloat(PF_InData* in_data, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                       PF_LayerDef* output);
