// The bilinear scan renderers: draw the whole input onto a quadrilateral, row by row, with source positions
// interpolated linearly along its edges and rows. Pixels covered only partly (the first and last row, both ends of
// every row) are mixed with what the output holds, by the covered area.
#pragma once

#include "support/KZFX_srect.h"
#include "support/PF_HostRecords.h"

// Corner i of `source` (input pixels, 16.16) is drawn at corner i of `corners` (output pixels, 16.16); both in corner
// order. `in_data` is not used. Degenerate quadrilaterals draw less, never more; nothing is written outside the output
// nor read outside the input, and an input without pixels draws nothing.
//
// A row's right end is drawn as its left end is: a source pixel, read directly, mixed in by the covered width (the
// end's fraction, or a whole pixel when it lies on a border) times the covered height. Its source position is, as for
// every whole pixel, the one at the pixel's left border, so that what lies beyond the source corners is not read there.
// A row within one pixel covers it by its width. A covered area that rounds to nothing leaves such a pixel as it is.
void FixedToFixed(PF_InData* in_data, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                  PF_LayerDef* output);
void FixedToFixed16(PF_InData* in_data, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                    PF_LayerDef* output);
void FixedToFixedFloat(PF_InData* in_data, PF_LayerDef* input, M_FixedPoint* source, M_FixedPoint* corners,
                       PF_LayerDef* output);
