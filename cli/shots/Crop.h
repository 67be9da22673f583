// Cropping the layer.
#pragma once

#include <string>

#include "cli/corners/Corners.h"
#include "host/Image.h"

namespace vantorel::cli {

// How much is cut from each side: whole pixels, or percent of the layer's width or height, rounded to whole pixels.
struct Crop {
  Coordinate left;
  Coordinate top;
  Coordinate right;
  Coordinate bottom;
};

// "L,T,R,B". Throws CommandError naming `input`.
Crop parseCrop(const std::string& input, const std::string& text);

// What remains of a layer of that size, in its pixels; an error that names the size if nothing remains.
Parsed<host::Rect> remaining(const Crop& crop, host::Size layer);

}  // namespace vantorel::cli
