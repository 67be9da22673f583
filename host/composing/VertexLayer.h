// A layer enlarged so that linear interpolation between its pixels, counted from their borders, gives what bilinear
// interpolation of the layer, counted from pixel centres, gives.
#pragma once

#include "host/Image.h"

namespace vantorel::host {

// Fills `enlarged`, `factor` times the layer's size a side (1, 2, 4 or 8) and of its depth or, for 8 bits and more than
// 2, of 16 bits, whose values are then 257 times the layer's: pixel j of an axis is the layer's bilinear interpolation
// at j / factor pixels from its outline, the outermost colours being carried on to the outline; integer depths are
// rounded to nearest, halves up. All of the interpolation's corners are among them, so that 2 loses nothing; 1, whose
// pixels are means of the layer's, is softer; more makes up for a linear interpolation whose weights are coarse. Only
// the pixels of `part`, which is given in pixels of the layer and lies in it, are written.
void enlargeToVertices(const ConstImageView& layer, int factor, const Rect& part, const ImageView& enlarged);

// The way back from 16 bits to 8, for pictures of one size: a 257th of the values, rounded to nearest.
void narrow(const ConstImageView& fine, const ImageView& picture);

}  // namespace vantorel::host
