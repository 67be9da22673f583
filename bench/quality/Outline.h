// How a quadrilateral's outline divides the canvas.
#pragma once

#include <cstdint>
#include <vector>

#include "bench/quality/Mapping.h"
#include "host/Image.h"

namespace vantorel::quality {

// A pixel's region; Edge if the outline crosses its inside.
enum class Region : std::uint8_t { Outside, Inside, Edge };

// The smallest rectangle of whole pixels around the ring's part of the canvas.
host::Rect frameOf(const Ring& ring, host::Size canvas);

// The region of each pixel of `frame`, rows from the top.
std::vector<Region> regionsOf(const Ring& ring, const host::Rect& frame);

// The exact area, 0 to 1, of the pixel at (x, y) that a convex ring covers.
double coverage(const Ring& ring, int x, int y);

}  // namespace vantorel::quality
