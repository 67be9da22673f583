// Shorthands by which the host's parts make their errors.
#pragma once

#include <string>
#include <utility>

#include "host/Error.h"
#include "host/Image.h"

namespace vantorel::host {

// "640x480"
inline std::string sizeText(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

inline tl::unexpected<Error> invalidArgument(std::string input, std::string message) {
  return tl::unexpected(Error{ErrorKind::InvalidArgument, 0, std::move(input), std::move(message)});
}

inline tl::unexpected<Error> moduleUnusable(std::string input, std::string message, std::int32_t code = 0) {
  return tl::unexpected(Error{ErrorKind::ModuleUnusable, code, std::move(input), std::move(message)});
}

}  // namespace vantorel::host
