// The bilinear renderer's entry: reads the corners in 16.16, clears the output and runs the scan renderer of its depth.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// Draws `input` onto the quadrilateral of the corner parameters in `output`; both have the same depth. A failed
// parameter read is returned with the output untouched; a failed depth query with the output cleared.
std::int32_t TracePointBilinear(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, PF_LayerDef* output);
