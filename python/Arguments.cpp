#include "python/Arguments.h"

#include <string>

namespace vantorel::python {

namespace {

PyObject* effect_error = nullptr;  // vantorel.Error, owned by the module

PyObject* exceptionOf(host::ErrorKind kind) {
  switch (kind) {
    case host::ErrorKind::InvalidArgument:
      return PyExc_ValueError;
    case host::ErrorKind::OutOfMemory:
      return PyExc_MemoryError;
    default:
      return effect_error;
  }
}

}  // namespace

void defineError(py::module_& module) {
  effect_error =
      PyErr_NewExceptionWithDoc("vantorel.Error", "The effect or its host failed.", PyExc_RuntimeError, nullptr);
  if (effect_error == nullptr) {
    throw py::error_already_set();
  }
  module.attr("Error") = py::handle(effect_error);
}

void raise(const host::Error& error) {
  PyErr_SetString(exceptionOf(error.kind), (error.input + ": " + error.message).c_str());
  throw py::error_already_set();
}

void refuse(const char* input, const std::string& fault) {
  throw py::value_error(std::string(input) + ": " + fault);
}

host::Corners cornersFrom(const py::handle& object, const char* input) {
  const auto array = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(object);
  if (!array) {
    PyErr_Clear();
    refuse(input, "they are not numbers; give four (x, y) pairs");
  }
  if (array.ndim() != 2 || array.shape(0) != 4 || array.shape(1) != 2) {
    refuse(input, "their shape is not (4, 2); give upper left, upper right, lower left, lower right as (x, y)");
  }
  const double* xy = array.data();
  return {{xy[0], xy[1]}, {xy[2], xy[3]}, {xy[4], xy[5]}, {xy[6], xy[7]}};
}

host::Size sizeFrom(const std::pair<std::int64_t, std::int64_t>& size, const char* input) {
  constexpr std::int64_t kMaxSide = 32768;
  const auto [width, height] = size;
  if (width < 1 || height < 1 || width > kMaxSide || height > kMaxSide) {
    refuse(input, std::to_string(width) + "x" + std::to_string(height) +
                      " is out of range; give (width, height), each from 1 to 32768");
  }
  return {static_cast<int>(width), static_cast<int>(height)};
}

}  // namespace vantorel::python
