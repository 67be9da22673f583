// Failed allocations as errors like any other.
#pragma once

#include <new>
#include <string>

#include "host/Error.h"

namespace vantorel::host {

// The result of `body`, which returns a Result; or OutOfMemory about `input` where an allocation fails in it. Texts of
// up to 15 characters take no memory, so `input` may be no longer.
template <typename Body>
auto withMemoryErrors(const char* input, Body body) -> decltype(body()) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return failure(ErrorKind::OutOfMemory, input, "out of memory");
  }
}

}  // namespace vantorel::host
