// How the embedded host reports errors: as a value that says what went wrong, with which input, and what to do.
#pragma once

#include <cstdint>
#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace vantorel::host {

enum class ErrorKind {
  InvalidArgument,  // the caller's request is not valid
  ModuleUnusable,   // the effect module does not load, lacks its entry, or fails its setup
  EffectFailed,     // a command of the effect returned an error
  OutOfMemory,
  Interrupted,  // the stop token was triggered during a frame; its pixels are unspecified
  Misuse,       // checking mode found the module breaking the interface
};

struct Error {
  ErrorKind kind = ErrorKind::InvalidArgument;
  std::int32_t code = 0;  // the effect's or host callback's error code if there is one, else 0
  std::string input;      // what the error is about: a file, a field, a command
  std::string message;    // what is wrong and what to do, for the user, without a trailing line break
};

template <typename T>
using Result = tl::expected<T, Error>;

// An error to return as a Result of any type.
inline tl::unexpected<Error> failure(ErrorKind kind, std::string input, std::string message, std::int32_t code = 0) {
  return tl::unexpected(Error{kind, code, std::move(input), std::move(message)});
}

inline tl::unexpected<Error> invalidArgument(std::string input, std::string message) {
  return failure(ErrorKind::InvalidArgument, std::move(input), std::move(message));
}

// "input: message", the form in which every program shows errors.
inline std::string errorText(const Error& error) {
  return error.input + ": " + error.message;
}

}  // namespace vantorel::host
