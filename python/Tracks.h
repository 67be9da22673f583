// Reads corners from trackers' files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "python/Arguments.h"

namespace vantorel::python {

using OptionalSize = std::optional<std::pair<std::int64_t, std::int64_t>>;

// The frames (n,) and the corners (n, 4, 2) in pixels of the output.
py::tuple readCorners(const std::string& path, const OptionalSize& size, const OptionalSize& layer_size);

}  // namespace vantorel::python
