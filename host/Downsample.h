// Scaling a picture down by a whole number.
#pragma once

#include "host/Image.h"

namespace vantorel::host {

// What a block lacks at the picture's right and bottom edges.
enum class BlockEdges {
  Transparent,  // counts as transparent: a layer's edge fades
  LeftOut       // does not count: the mean is that of the pixels there are
};

// Averages blocks of n by n premultiplied pixels of `picture` into `scaled`, which is of the picture's depth and of the
// size downsampled(picture.size, n). Integers are rounded to nearest, halves up; floats are summed in doubles, by rows.
void downsample(const ConstImageView& picture, int n, BlockEdges edges, const ImageView& scaled);

// The same for the rows [top, bottom) of `scaled` alone, so that several threads can share a picture.
void downsampleRows(const ConstImageView& picture, int n, BlockEdges edges, const ImageView& scaled, int top,
                    int bottom);

}  // namespace vantorel::host
