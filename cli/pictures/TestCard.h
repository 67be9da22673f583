// A picture for trying things out.
#pragma once

#include "host/Image.h"

namespace vantorel::cli {

// Draws the card into an image of any size and 8 or 16 bits or float: a checkerboard of fine and coarse squares, colour
// and grey ramps, rings that show resampling, a line one pixel wide along each edge in a colour of its own, a coloured
// square in each corner, and a transparent window. Premultiplied RGBA.
void drawTestCard(const host::ImageView& image);

}  // namespace vantorel::cli
