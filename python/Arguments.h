// Converts Python arguments to the host's corners and sizes, and the host's errors to exceptions.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <utility>

#include "host/Animation.h"
#include "host/Error.h"
#include "host/Image.h"

namespace vantorel::python {

namespace py = pybind11;

// Throws the Python exception for an error: ValueError, MemoryError, KeyboardInterrupt or vantorel.Error.
[[noreturn]] void raise(const host::Error& error);

template <typename T>
T valueOrRaise(host::Result<T> result) {
  if (!result) {
    raise(result.error());
  }
  return *std::move(result);
}

// Throws ValueError: "input: fault; remedy".
[[noreturn]] void refuse(const char* input, const std::string& fault);

// From anything of shape (4, 2). ValueError, naming `input`, for other shapes and for values that are not numbers.
host::Corners cornersFrom(const py::handle& object, const char* input);

// From (width, height). ValueError unless both are from 1 to 32768.
host::Size sizeFrom(const std::pair<std::int64_t, std::int64_t>& size, const char* input);

// Registers vantorel.Error.
void defineError(py::module_& module);

}  // namespace vantorel::python
