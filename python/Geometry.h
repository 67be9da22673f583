// The map that a warp uses, and the box that it fills.
#pragma once

#include <cstdint>
#include <tuple>
#include <utility>

#include "python/Arguments.h"

namespace vantorel::python {

// The 3x3 matrix that maps (x, y, 1) of a layer of that size onto the corners; pixel k covers [k, k + 1).
py::array_t<double> homography(const py::object& corners, const std::pair<std::int64_t, std::int64_t>& size);

// Left, top, right and bottom of the pixels that the effect requests; right and bottom are exclusive.
std::tuple<int, int, int, int> boundingBox(const py::object& corners,
                                           const std::pair<std::int64_t, std::int64_t>& size);

}  // namespace vantorel::python
