// Scaling a picture down by a whole number.
#pragma once

#include "host/Image.h"

namespace vantorel::host {

// How blocks that extend beyond the picture's right and bottom edges are averaged.
enum class BlockEdges {
  Transparent,  // pixels outside count as transparent: a layer's edge fades
  LeftOut       // pixels outside do not count: the mean is that of the pixels inside
};

// Averages blocks of n by n premultiplied pixels of `picture` into `scaled`, which has the picture's depth and the size
// downsampled(picture.size, n). Integers are rounded to nearest, halves up; floats are summed in doubles, row by row.
void downsample(const ConstImageView& picture, int n, BlockEdges edges, const ImageView& scaled);

// The same, but only for the rows [top, bottom) of `scaled`, so that several threads can share a picture.
void downsampleRows(const ConstImageView& picture, int n, BlockEdges edges, const ImageView& scaled, int top,
                    int bottom);

}  // namespace vantorel::host
