// Rows of the host's images to and from the four premultiplied channels that the effect draws.
#pragma once

#include "bridges/ofx/ClipImage.h"
#include "host/Image.h"

namespace vantorel::ofx {

// The depth that images of a depth are drawn at: half is drawn as float.
host::Depth drawnDepth(PixelDepth depth);

// Pixels [x1, x2) of row y, premultiplied RGBA of drawnDepth; what lies outside of the bounds is transparent, and an
// image without alpha is opaque. An image of alpha alone has it in all channels.
void loadRow(const ClipImage& image, int y, int x1, int x2, std::byte* row);

// The other way, where [x1, x2) lies in the bounds; the row is used up. An image without alpha gets the premultiplied
// colours.
void storeRow(const ClipImage& image, int y, int x1, int x2, std::byte* row);

// Premultiplied rows of `count` pixels, in place: faded to a share (0 to 1), hidden where another row's alpha is high,
// and laid over another row. Integers are rounded to nearest.
void fadeRow(host::Depth depth, std::byte* row, int count, double share);
void holdOutRow(host::Depth depth, std::byte* row, const std::byte* matte, int count);
void layOverRow(host::Depth depth, std::byte* row, const std::byte* background, int count);

}  // namespace vantorel::ofx
