// The bilinear renderer's entry point: reads the corners in 16.16, clears the output and runs the scan renderer for its
// depth.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// Draws `input` onto the quadrilateral of the corner parameters in `output`; both have the same depth. If reading a
// parameter fails, its error is returned and the output is unchanged; if the depth query fails, the output has been
// cleared.
std::int32_t TracePointBilinear(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, PF_LayerDef* output);
