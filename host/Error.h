// How the embedded host reports failure: as a value that says what went wrong, with which input, and what to do.
#pragma once

#include <cstdint>
#include <string>
#include <tl/expected.hpp>

namespace vantorel::host {

enum class ErrorKind {
  InvalidArgument,  // the caller's request cannot be served
  ModuleUnusable,   // the effect module does not load, lacks its entry, or fails its setup
  EffectFailed,     // a command of the effect returned an error
  OutOfMemory,
  Interrupted,  // the stop token was triggered during a frame; its pixels are unspecified
  Misuse,       // checking mode found the module breaking the interface
};

struct Error {
  ErrorKind kind = ErrorKind::InvalidArgument;
  std::int32_t code = 0;  // the effect's or host callback's code where there is one, else 0
  std::string input;      // what the error is about: a file, a field, a command
  std::string message;    // what is wrong and what to do, for a person, without a trailing line break
};

template <typename T>
using Result = tl::expected<T, Error>;

}  // namespace vantorel::host
