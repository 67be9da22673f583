// vantorel.warp: draws a picture with its corners at four points.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "python/Arguments.h"

namespace vantorel::python {

struct WarpArguments {
  py::array image;
  py::object corners;
  std::optional<std::pair<std::int64_t, std::int64_t>> size;
  std::optional<std::tuple<int, int, int, int>> canvas;
  std::string quality;
  py::object background;
  py::object from_corners;
  bool premultiplied = false;
  std::optional<std::string> edges;
  int samples = 0;
  int threads = 0;
  std::optional<py::array> out;
};

py::array warp(const WarpArguments& arguments);

}  // namespace vantorel::python
