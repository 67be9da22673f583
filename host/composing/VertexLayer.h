// A layer enlarged so that linear interpolation between its pixels, counted from their borders, gives what bilinear
// interpolation of the layer, counted from pixel centres, gives.
#pragma once

#include "host/Image.h"

namespace vantorel::host {

// Fills `enlarged`, twice the layer's size a side and of its depth: pixel j of an axis is the layer's bilinear
// interpolation at j / 2 pixels from its outline. Odd pixels are the layer's own, even ones lie on the border between
// two of them and are their mean, integer depths rounded to nearest, halves up; the outermost colours are carried on to
// the outline.
void enlargeToVertices(const ConstImageView& layer, const ImageView& enlarged);

}  // namespace vantorel::host
