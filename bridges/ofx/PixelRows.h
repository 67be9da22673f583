// Converts rows of the host's images to and from the premultiplied RGBA that the effect draws.
#pragma once

#include "bridges/ofx/ClipImage.h"
#include "host/Image.h"

namespace vantorel::ofx {

// The depth that the effect draws at: half is drawn as float.
host::Depth drawnDepth(PixelDepth depth);

// Reads pixels [x1, x2) of row y as premultiplied RGBA of drawnDepth. Pixels outside the bounds are transparent, RGB is
// opaque, and an alpha image has its value in all four channels.
void loadRow(const ClipImage& image, int y, int x1, int x2, std::byte* row);

// Writes them; [x1, x2) must lie within the bounds. `row` serves as scratch memory. RGB gets the premultiplied colours.
void storeRow(const ClipImage& image, int y, int x1, int x2, std::byte* row);

// These change premultiplied rows of `count` pixels in place: multiply them by a share from 0 to 1, by one minus a
// matte's alpha, and put them over a background. Integers are rounded to the nearest.
void fadeRow(host::Depth depth, std::byte* row, int count, double share);
void holdOutRow(host::Depth depth, std::byte* row, const std::byte* matte, int count);
void layOverRow(host::Depth depth, std::byte* row, const std::byte* background, int count);

}  // namespace vantorel::ofx
