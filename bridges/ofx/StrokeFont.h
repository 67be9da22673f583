// A few letters made of lines, for viewers that cannot draw text.
#pragma once

#include <functional>
#include <span>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// Calls `draw` for each polyline of the text, whose lower left corner is `at`. Letters are 2 by 4 grid cells of size
// `unit` and look like capitals. Only the letters of the overlay's messages exist; others are left blank.
void drawStrokes(const char* text, const PointD& at, const PointD& unit,
                 const std::function<void(std::span<const PointD>)>& draw);

}  // namespace vantorel::ofx
