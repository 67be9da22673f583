// Converts the faults that readers throw to the errors that the library returns.
#pragma once

#include <utility>

#include "host/Error.h"
#include "tracks/Text.h"

namespace vantorel::tracks {

// What `work` returns, or the error of the ReadFault that it threw.
template <typename Work>
auto resultOf(const Work& work) -> host::Result<decltype(work())> {
  try {
    return work();
  } catch (const ReadFault& fault) {
    return tl::unexpected(host::Error{host::ErrorKind::InvalidArgument, 0, fault.input, fault.message});
  }
}

}  // namespace vantorel::tracks
