// The Python module's functions and their docstrings.
#include "python/Arguments.h"
#include "python/Geometry.h"
#include "python/Tracks.h"
#include "python/Warp.h"

#include <pybind11/stl.h>

namespace vantorel::python {

namespace {

constexpr const char* kWarpText =
    R"(Warps a picture so that its corners land on four points, in true perspective.

image: uint8, uint16 or float32 of shape (h, w), (h, w, 1), (h, w, 3) or (h, w, 4), with any strides. A fourth
    channel is alpha. Contiguous four-channel pixels are read without a copy if they are opaque or premultiplied.
corners: (4, 2) in pixels: upper left, upper right, lower left, lower right, each as (x, y), from -32768 to below
    32768. Pixel k covers [k, k + 1). None: the picture's own.
size: (width, height) of the result; the image's own unless given.
canvas: instead, (left, top, right, bottom) of the result in the same coordinates.
quality: 'standard', 'high' or 'best' (supersampled).
background: one value, three or four, composited behind the picture; by default everything outside is zero.
from_corners: (4, 2), the quadrilateral of the image that is drawn onto the corners; the whole image unless given.
premultiplied: whether image and result have colours multiplied by alpha.
edges: 'soft', 'crisp', or None for the quality's default.
samples: 1, 2, 4 or 8 per pixel and axis, or 0 for the quality's default.
threads: the maximum; 0: as many as the machine has.
out: array of the result's shape and dtype to write to; may be image. Its content is unspecified after an exception.

The GIL is released while the picture is drawn; any number of threads may call at once. Do not change image meanwhile.
Raises TypeError or ValueError for invalid arguments, MemoryError, and vantorel.Error when the effect fails.)";

}  // namespace

PYBIND11_MODULE(_vantorel, module) {
  defineError(module);
  module.attr("__version__") = VANTOREL_VERSION;
  module.def(
      "warp",
      [](py::array image, py::object corners, std::optional<std::pair<std::int64_t, std::int64_t>> size,
         std::optional<std::tuple<int, int, int, int>> canvas, std::string quality, py::object background,
         py::object from_corners, bool premultiplied, std::optional<std::string> edges, int samples, int threads,
         std::optional<py::array> out) {
        return warp({std::move(image), std::move(corners), size, canvas, std::move(quality), std::move(background),
                     std::move(from_corners), premultiplied, std::move(edges), samples, threads, std::move(out)});
      },
      py::arg("image").noconvert(), py::arg("corners").none(true), py::arg("size") = py::none(),
      py::arg("canvas") = py::none(), py::arg("quality") = "high", py::arg("background") = py::none(), py::kw_only(),
      py::arg("from_corners") = py::none(), py::arg("premultiplied") = false, py::arg("edges") = py::none(),
      py::arg("samples") = 0, py::arg("threads") = 0, py::arg("out").noconvert() = py::none(), kWarpText);
  module.def("homography", &homography, py::arg("corners"), py::arg("size"),
             "The 3x3 float64 matrix that maps (x, y, 1) of a picture of (width, height) onto the corners (4, 2); "
             "pixel k covers [k, k + 1). ValueError unless they are strictly convex.");
  module.def("bounding_box", &boundingBox, py::arg("corners"), py::arg("size"),
             "(left, top, right, bottom) in pixels of the box around the corners (4, 2), extended by a pixel on every "
             "side, for a picture of (width, height); right and bottom are exclusive.");
  module.def(
      "read_corners",
      [](const py::object& path, const OptionalSize& size, const OptionalSize& layer_size) {
        const py::object name = py::module_::import("os").attr("fspath")(path);
        return readCorners(name.cast<std::string>(), size, layer_size);
      },
      py::arg("path"), py::arg("size") = py::none(), py::arg("layer_size") = py::none(),
      "Frames (n,) and corners (n, 4, 2), in pixels of the output, from a tracker's file in any format that the "
      "command "
      "reads. size and layer_size: (width, height) of output and layer, which some formats need. Raises OSError, or "
      "ValueError naming file, line and field.");
}

}  // namespace vantorel::python
