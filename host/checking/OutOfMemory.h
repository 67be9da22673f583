// Converts failed allocations to errors.
#pragma once

#include <new>
#include <string>

#include "host/Error.h"

namespace vantorel::host {

// The result of `body`, which returns a Result, or OutOfMemory for `input` if an allocation fails in it. `input` may
// have at most 15 characters, so that the error's string needs no allocation.
template <typename Body>
auto withMemoryErrors(const char* input, Body body) -> decltype(body()) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return failure(ErrorKind::OutOfMemory, input, "out of memory");
  }
}

}  // namespace vantorel::host
