// A few letters made of lines, for viewers without text.
#pragma once

#include <functional>
#include <span>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

// Calls `draw` with each connected line of the text, which stands on `at` and goes to the right; `unit` is the size of
// a letter's grid cell, of which a letter has 2 by 4. Lower case is drawn as capitals; what the overlay does not say is
// left out.
void drawStrokes(const char* text, const PointD& at, const PointD& unit,
                 const std::function<void(std::span<const PointD>)>& draw);

}  // namespace vantorel::ofx
