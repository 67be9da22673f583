// Where the input buffer's corners land in the output.
#pragma once

#include <cstdint>

#include "math/M_stuff.h"
#include "support/PF_HostRecords.h"

// The layer's size at the current resolution, not rounded to whole pixels. The product with the downsample numerator
// wraps at 32 bits; a zero denominator gives an infinity or NaN.
struct ScaledSize {
  double width;
  double height;
};
ScaledSize scaledLayerSize(const PF_InData* in_data);

// Fills points[0..3] with the output positions of the input buffer's corners (0, 0), (W, 0), (W, H), (0, H). The
// parameters, shifted by the output origin, give the positions of the layer's own corners. The buffer may be larger
// than the layer or offset from it, so its corners are transformed by the same projective map.
//
// Only the size of `input`, the input buffer, is read. If it is null, the buffer is assumed to hold exactly the layer
// at the current resolution, rounded up to whole pixels. `out_data` is not used.
//
// Returns 0, the error of a parameter read, or 1 when there is no such map or a corner maps to infinity. On an error
// `points` holds the buffer's own corners; those before a corner at infinity have already been transformed.
std::int32_t GetCornerPoints(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input, M_Vector2T<double>* points);

// The bounding box of four points.
M_FloatRect cornerBounds(const M_Vector2T<double>* points);
