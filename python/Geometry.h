// The map that a warp draws by, and the box that it fills.
#pragma once

#include <cstdint>
#include <tuple>
#include <utility>

#include "python/Arguments.h"

namespace vantorel::python {

// The 3x3 matrix that takes (x, y, 1) of a layer of that size, pixel k covering [k, k + 1), onto the corners.
py::array_t<double> homography(const py::object& corners, const std::pair<std::int64_t, std::int64_t>& size);

// Left, top, right, bottom of the pixels that the effect asks for, right and bottom exclusive.
std::tuple<int, int, int, int> boundingBox(const py::object& corners,
                                           const std::pair<std::int64_t, std::int64_t>& size);

}  // namespace vantorel::python
