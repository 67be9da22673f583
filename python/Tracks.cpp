#include "python/Tracks.h"

#include <cerrno>
#include <fstream>

#include "tracks/Resolve.h"
#include "tracks/TrackFile.h"

namespace vantorel::python {

namespace {

tracks::ResolvedTrack readTrackFile(const std::string& path, const tracks::ResolveOptions& options) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) {
    PyErr_SetFromErrnoWithFilename(PyExc_OSError, path.c_str());
    throw py::error_already_set();
  }
  const std::string text = valueOrRaise(tracks::readStream(stream, path));
  const tracks::TrackSource source{path, text};
  return valueOrRaise(tracks::resolveTrack(valueOrRaise(tracks::readTrack({&source, 1})), options));
}

}  // namespace

py::tuple readCorners(const std::string& path, const OptionalSize& size, const OptionalSize& layer_size) {
  tracks::ResolveOptions options;
  options.sizes.output = size ? sizeFrom(*size, "size") : host::Size{};
  options.sizes.layer = layer_size ? sizeFrom(*layer_size, "layer_size") : host::Size{};
  const tracks::CornerTrack track = readTrackFile(path, options).track;
  if (!track.source_keys.empty()) {
    const std::string message = path +
                                ": its \"from\", the part of the layer that is drawn onto the corners, is ignored; "
                                "crop the picture to it";
    if (PyErr_WarnEx(PyExc_UserWarning, message.c_str(), 1) != 0) {
      throw py::error_already_set();
    }
  }
  const auto count = static_cast<py::ssize_t>(track.keys.size());
  py::array_t<double> frames(count);
  py::array_t<double> corners({count, py::ssize_t{4}, py::ssize_t{2}});
  double* frame = frames.mutable_data();
  double* xy = corners.mutable_data();
  for (const tracks::CornerKey& key : track.keys) {
    *frame++ = key.frame;
    for (const host::Point& point : key.points) {
      *xy++ = point.x;
      *xy++ = point.y;
    }
  }
  return py::make_tuple(frames, corners);
}

}  // namespace vantorel::python
