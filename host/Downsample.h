// Scaling a layer down by a whole number.
#pragma once

#include "host/Image.h"

namespace vantorel::host {

// Averages blocks of n by n premultiplied pixels of `layer` into `scaled`, which is of the layer's depth and of its
// size divided by n, rounded up. What a block lacks at the layer's right and bottom edges counts as transparent.
// Integers are rounded to nearest, halves up; floats are summed in doubles, by rows.
void downsampleLayer(const ConstImageView& layer, int n, const ImageView& scaled);

}  // namespace vantorel::host
